// Runs every case of the files under tests/data/tree/*.case.
//
// A case file holds cases, each opened by "=== title", with sections:
//   [tree]     the source tree as indented text (tools/tree_text.h)
//   [group] [filter] [sort]   an operation text, set when the section is
//              present (an empty section sets the empty text)
//   [recurse]  turns on recursion into children (no content)
//   [result]   Process is run and its print (categories with [id]) must
//              be this text; "null" when Process is expected to fail
//   [errors]   the records on the error stack afterwards, one a line:
//              code, location and message separated by " | " (none: empty)
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

#include "tree_text.h"

namespace {

struct TreeCase {
  std::string name;  // file stem and title, for the test's name
  std::map<std::string, std::string> sections;
};

void PrintTo(const TreeCase& treeCase, std::ostream* out) {
  *out << treeCase.name;
}

std::string Trimmed(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text;
}

// The lines of a section without the blank lines that separate cases.
std::string Block(const std::string& text) {
  std::string block = Trimmed(text);
  return block.empty() ? block : block + "\n";
}

std::vector<TreeCase> LoadCases() {
  std::vector<TreeCase> cases;
  const std::filesystem::path dir = std::filesystem::path(UTILKIT_TEST_DATA_DIR) / "tree";
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    if (entry.path().extension() == ".case") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto& file : files) {
    std::ifstream in(file);
    std::string line, section;
    while (std::getline(in, line)) {
      if (line.rfind("=== ", 0) == 0) {
        cases.push_back({file.stem().string() + ": " + line.substr(4), {}});
        section.clear();
      } else if (!cases.empty() && line.size() > 2 && line.front() == '[' && line.back() == ']') {
        section = line.substr(1, line.size() - 2);
        cases.back().sections[section];
      } else if (!cases.empty() && !section.empty()) {
        cases.back().sections[section] += line + "\n";
      }
    }
  }
  return cases;
}

std::string ErrorRecords() {
  std::string out;
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    out += std::to_string(VFErrorGetCode(e)) + " | " + VFErrorGetLocation(e) + " | " +
           VFErrorGetMessage(e) + "\n";
  }
  return out;
}

class TreeCaseTest : public testing::TestWithParam<TreeCase> {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

TEST_P(TreeCaseTest, GivesTheExpectedTreeAndErrors) {
  const auto& sections = GetParam().sections;
  const auto text = [&](const char* name) { return Trimmed(sections.at(name)); };
  tree_tool::PropertyNode source(nullptr);
  std::string problem;
  if (sections.count("tree")) {
    ASSERT_TRUE(tree_tool::ParseIndentedTree(sections.at("tree"), &source, &problem)) << problem;
  }
  VCUTree tree;
  if (sections.count("group")) tree.SetGroupOpsFromText(text("group").c_str());
  if (sections.count("filter")) tree.SetFilterOpsFromText(text("filter").c_str());
  if (sections.count("sort")) tree.SetSortOpsFromText(text("sort").c_str());
  if (sections.count("recurse")) tree.SetRecurseChildren(1);
  if (sections.count("result")) {
    std::unique_ptr<VCUTreeResultNode> result(
        tree.Process(sections.count("tree") ? &source : nullptr));
    EXPECT_EQ(result ? tree_tool::FormatResultTree(result.get(), true) : "null\n",
              Block(sections.at("result")));
  }
  EXPECT_EQ(ErrorRecords(), sections.count("errors") ? Block(sections.at("errors")) : "");
}

INSTANTIATE_TEST_SUITE_P(Files, TreeCaseTest, testing::ValuesIn(LoadCases()),
                         [](const testing::TestParamInfo<TreeCase>& param) {
                           std::string name = param.param.name;
                           for (char& c : name) {
                             if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                           }
                           return name + "_" + std::to_string(param.index);
                         });

}  // namespace
