#include "csv_table.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace utilkit::tool {

namespace {

char Lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return Lower(x) == Lower(y); });
}

// Reads records one at a time, keeping track of the line.
class CsvReader {
 public:
  CsvReader(std::string_view text, const std::string& source) : m_text(text), m_source(source) {
    if (m_text.starts_with("\xEF\xBB\xBF")) m_text.remove_prefix(3);
  }

  bool AtEnd() const { return m_pos == m_text.size(); }
  int64_t Line() const { return m_line; }

  // Reads the next record; *blank is set for an empty line.
  bool Next(std::vector<std::string>* fields, bool* blank, std::string* error) {
    fields->clear();
    bool quotedAny = false;
    for (;;) {
      std::string field;
      if (Peek() == '"') {
        quotedAny = true;
        if (!ReadQuoted(&field, error)) return false;
      } else {
        while (!AtEnd() && Peek() != ',' && Peek() != '\n') field += m_text[m_pos++];
        if (!field.empty() && field.back() == '\r') field.pop_back();
      }
      fields->push_back(std::move(field));
      if (Peek() != ',') break;
      ++m_pos;
    }
    if (!AtEnd()) {  // at the '\n'
      ++m_pos;
      ++m_line;
    }
    *blank = fields->size() == 1 && fields->front().empty() && !quotedAny;
    return true;
  }

 private:
  char Peek() const { return AtEnd() ? '\0' : m_text[m_pos]; }

  bool ReadQuoted(std::string* field, std::string* error) {
    const int64_t startLine = m_line;
    ++m_pos;
    for (;;) {
      if (AtEnd()) return Fail(startLine, "unterminated quoted field", error);
      const char c = m_text[m_pos++];
      if (c == '"') {
        if (Peek() != '"') break;
        ++m_pos;
      } else if (c == '\n') {
        ++m_line;
      }
      *field += c;
    }
    if (Peek() == '\r') ++m_pos;
    if (!AtEnd() && Peek() != ',' && Peek() != '\n') {
      return Fail(m_line, "unexpected text after a closing quote", error);
    }
    return true;
  }

  bool Fail(int64_t line, const std::string& what, std::string* error) const {
    *error = m_source + ":" + std::to_string(line) + ": " + what;
    return false;
  }

  std::string_view m_text;
  const std::string& m_source;
  size_t m_pos = 0;
  int64_t m_line = 1;
};

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
  CsvReader reader(text, source);
  std::vector<std::string> fields;
  bool haveHeader = false;
  while (!reader.AtEnd()) {
    const int64_t line = reader.Line();
    bool blank = false;
    if (!reader.Next(&fields, &blank, error)) return false;
    if (blank) continue;
    if (!haveHeader) {
      table->header = fields;
      haveHeader = true;
      continue;
    }
    if (fields.size() != table->header.size()) {
      *error = source + ":" + std::to_string(line) + ": " + std::to_string(fields.size()) +
               " fields, expected " + std::to_string(table->header.size()) + " as in the header";
      return false;
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

bool ReadCsvFile(const std::string& path, CsvTable* table, std::string* error) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  if (in) content << in.rdbuf();  // an empty file sets failbit on `content` only
  if (!in.is_open() || in.bad()) {
    *error = path + ": cannot be read";
    return false;
  }
  return ParseCsv(content.str(), path, table, error);
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
