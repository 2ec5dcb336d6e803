// Case files for the parameterised tests that run the table and tree
// processors on text input.
//
// A case file (tests/data/<folder>/*.case) holds cases, each opened by a
// line "=== title" and made of sections opened by "[name]" lines; what a
// section holds is up to the runner. Lines before a case's first section
// are comments.
//
//   INSTANTIATE_TEST_SUITE_P(Files, MyCaseTest,
//                            testing::ValuesIn(case_file::Load("table")),
//                            case_file::TestName);
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <utilkit/base/error_stack.h>

namespace case_file {

struct Case {
  std::string name;  // file stem and title, for the test's name
  std::vector<std::pair<std::string, std::string>> sections;  // in file order

  // The text of the first section called `section`, or null.
  const std::string* Find(const std::string& section) const {
    for (const auto& [title, text] : sections) {
      if (title == section) return &text;
    }
    return nullptr;
  }
};

inline void PrintTo(const Case& c, std::ostream* out) {
  *out << c.name;
}

// The text without trailing line ends, plus one line end when not empty.
inline std::string Block(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text.empty() ? text : text + "\n";
}

// Block of the section's text, or "" when the case has no such section.
inline std::string BlockOf(const Case& c, const std::string& section) {
  const std::string* text = c.Find(section);
  return text ? Block(*text) : std::string();
}

// Every case of the files tests/data/<folder>/*.case, files in name order.
inline std::vector<Case> Load(const char* folder) {
  std::vector<Case> cases;
  const std::filesystem::path dir = std::filesystem::path(UTILKIT_TEST_DATA_DIR) / folder;
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    if (entry.path().extension() == ".case") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto& file : files) {
    std::ifstream in(file);
    std::string line;
    bool inSection = false;
    while (std::getline(in, line)) {
      if (line.rfind("=== ", 0) == 0) {
        cases.push_back({file.stem().string() + ": " + line.substr(4), {}});
        inSection = false;
      } else if (!cases.empty() && line.size() > 2 && line.front() == '[' && line.back() == ']') {
        cases.back().sections.emplace_back(line.substr(1, line.size() - 2), "");
        inSection = true;
      } else if (inSection) {
        cases.back().sections.back().second += line + "\n";
      }
    }
  }
  return cases;
}

// The records on the error stack, one a line: "code | location | message",
// with " | flag" when `withFlag`.
inline std::string ErrorRecords(bool withFlag) {
  std::string out;
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    out += std::to_string(VFErrorGetCode(e)) + " | " + VFErrorGetLocation(e) + " | " +
           VFErrorGetMessage(e);
    if (withFlag) out += " | " + std::to_string(VFErrorGetFlag(e));
    out += "\n";
  }
  return out;
}

// A test name made of the case's name and its place in the list.
inline std::string TestName(const testing::TestParamInfo<Case>& param) {
  std::string name = param.param.name;
  for (char& c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return name + "_" + std::to_string(param.index);
}

}  // namespace case_file
