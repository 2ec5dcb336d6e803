#include "csv_table.h"

#include <algorithm>

#include "csv_splitter.h"
#include "input_file.h"

namespace utilkit::tool {

namespace {

char Lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return Lower(x) == Lower(y); });
}

}  // namespace

int32_t CsvTable::FindColumn(std::string_view name) const {
  auto exact = std::find(header.begin(), header.end(), name);
  if (exact == header.end()) {
    exact = std::find_if(header.begin(), header.end(),
                         [&](const std::string& h) { return EqualNoCase(h, name); });
  }
  return exact == header.end() ? -1 : static_cast<int32_t>(exact - header.begin());
}

bool ParseCsv(std::string_view text, const std::string& source, CsvTable* table,
              std::string* error) {
  *table = CsvTable{};
  auto fail = [&](int64_t line, const std::string& what) {
    *error = source + ":" + std::to_string(line) + ": " + what;
    return false;
  };
  if (int64_t line = 0; CsvSplitter::FindNul(text, &line)) return fail(line, kCsvNulByte);
  CsvSplitter splitter(text);
  std::vector<std::string> fields;
  bool haveHeader = false;
  while (!splitter.AtEnd()) {
    const int64_t line = splitter.Line();
    fields.clear();
    CsvField field;
    do {
      if (!splitter.Next(&field)) return fail(splitter.ErrorLine(), splitter.Error());
      fields.emplace_back(field.text);
    } while (!field.last);
    if (fields.size() == 1 && fields[0].empty() && !field.quoted) continue;  // a blank line
    if (!haveHeader) {
      table->header = fields;
      haveHeader = true;
      continue;
    }
    if (fields.size() != table->header.size()) {
      return fail(line, std::to_string(fields.size()) + " fields, expected " +
                            std::to_string(table->header.size()) + " as in the header");
    }
    table->rows.push_back(fields);
    table->lines.push_back(line);
  }
  if (!haveHeader) {
    *error = source + ": no header line (the file is empty)";
    return false;
  }
  return true;
}

bool ReadCsvFile(const std::string& path, CsvTable* table, std::string* error, size_t limit) {
  std::string content;
  if (!tool_input::ReadInputFile(path, limit, &content, error)) {
    return false;
  }
  return ParseCsv(content, path, table, error);
}

void WriteCsvRecord(std::ostream& out, const std::vector<std::string>& fields) {
  for (size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) out << ',';
    const std::string& field = fields[i];
    if (field.find_first_of(",\"\r\n") == std::string::npos) {
      out << field;
      continue;
    }
    out << '"';
    for (char c : field) {
      if (c == '"') out << '"';
      out << c;
    }
    out << '"';
  }
  out << '\n';
}

}  // namespace utilkit::tool
