// CsvSplitter: splits CSV text into fields without copying them.
//
// Fields are separated by commas and records by line breaks (LF or CRLF). A
// field in double quotes may hold commas, line breaks and "" for one quote;
// it is unescaped into a buffer of the splitter. A UTF-8 byte order mark at
// the start of the text is skipped. The splitter counts lines from 1, a
// line break inside a quoted field included.
//
//   CsvSplitter splitter(text);
//   while (!splitter.AtEnd()) {
//     const int64_t line = splitter.Line();  // where this record starts
//     CsvField field;
//     do {
//       if (!splitter.Next(&field)) return Fail(splitter.ErrorLine(), splitter.Error());
//       use(field.text);                      // valid until the next call
//     } while (!field.last);
//   }
//
// Ownership: the splitter views `text`, which must outlive it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace utilkit::tool {

// The error for a NUL byte in CSV text.
inline constexpr const char* kCsvNulByte = "a NUL byte, which no cell can hold";

struct CsvField {
  std::string_view text;  // the field's text, quotes removed
  bool quoted = false;    // the field was in double quotes
  bool last = false;      // the field ends its record
};

class CsvSplitter {
 public:
  explicit CsvSplitter(std::string_view text) : m_pos(text.data()), m_end(m_pos + text.size()) {
    if (text.starts_with("\xEF\xBB\xBF")) m_pos += 3;
  }

  bool AtEnd() const { return m_pos == m_end; }
  // The line the next field starts on.
  int64_t Line() const { return m_line; }
  // Where the next field starts in the text.
  const char* Position() const { return m_pos; }

  // True when `text` holds a NUL byte, which no text cell can hold;
  // `*line` is then the line it is on.
  static bool FindNul(std::string_view text, int64_t* line) {
    const size_t at = text.find('\0');
    if (at == std::string_view::npos) return false;
    *line = 1;
    for (size_t i = 0; i < at; ++i) *line += text[i] == '\n';
    return true;
  }

  // Reads the next field of the current record. False for a quoted field
  // without its closing quote or with text after it (Error, ErrorLine).
  bool Next(CsvField* field) {
    if (m_pos < m_end && *m_pos == '"') return NextQuoted(field);
    const char* p = m_pos;
    while (p < m_end && *p != ',' && *p != '\n') ++p;
    const char* stop = (p > m_pos && p[-1] == '\r') ? p - 1 : p;
    field->text = std::string_view(m_pos, static_cast<size_t>(stop - m_pos));
    field->quoted = false;
    return Finish(p, field);
  }

  // Skips the rest of the current record, counting its fields.
  bool SkipRecord(int64_t* fields) {
    CsvField field;
    do {
      if (!Next(&field)) return false;
      ++*fields;
    } while (!field.last);
    return true;
  }

  const char* Error() const { return m_error; }
  int64_t ErrorLine() const { return m_errorLine; }

 private:
  bool Finish(const char* p, CsvField* field) {
    field->last = p == m_end || *p == '\n';
    if (p != m_end) {
      if (*p == '\n') ++m_line;
      ++p;
    }
    m_pos = p;
    return true;
  }

  bool NextQuoted(CsvField* field) {
    const int64_t startLine = m_line;
    m_quoted.clear();
    const char* p = m_pos + 1;
    for (;;) {
      const char* run = p;
      while (p < m_end && *p != '"') {
        if (*p == '\n') ++m_line;
        ++p;
      }
      m_quoted.append(run, static_cast<size_t>(p - run));
      if (p == m_end) return Fail(startLine, "unterminated quoted field");
      ++p;  // the quote
      if (p == m_end || *p != '"') break;
      m_quoted.push_back('"');
      ++p;
    }
    if (p < m_end && *p == '\r') ++p;
    if (p < m_end && *p != ',' && *p != '\n') {
      return Fail(m_line, "unexpected text after a closing quote");
    }
    field->text = m_quoted;
    field->quoted = true;
    return Finish(p, field);
  }

  bool Fail(int64_t line, const char* what) {
    m_errorLine = line;
    m_error = what;
    return false;
  }

  const char* m_pos;
  const char* m_end;
  int64_t m_line = 1;
  std::string m_quoted;
  const char* m_error = "";
  int64_t m_errorLine = 0;
};

}  // namespace utilkit::tool
