#include "table_csv.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/number_text.h>

#include "csv_column.h"
#include "csv_splitter.h"

namespace utilkit::tool {

namespace {

// Files larger than this are refused rather than read.
constexpr int64_t kMaxFileBytes = int64_t{16} << 30;
// Cells reserved at most for a column before the rows are counted.
constexpr int64_t kMaxReservedRows = int64_t{1} << 26;
// Records parsed between two progress reports.
constexpr int64_t kProgressRecords = 1 << 16;

struct TypeName {
  const char* name;
  const char* letter;
  VTTableDataType type;
};
constexpr TypeName kTypeNames[] = {
    {"short", "s", VTTableDataType::Short},   {"long", "l", VTTableDataType::Long},
    {"huge", "h", VTTableDataType::Huge},     {"float", "f", VTTableDataType::Float},
    {"double", "d", VTTableDataType::Double}, {"text", "t", VTTableDataType::Text},
    {"enum", "e", VTTableDataType::Enum},
};

std::string Where(const std::string& source, int64_t line, size_t field) {
  return source + ":" + std::to_string(line) + ":" + std::to_string(field + 1) + ": ";
}

// Reads "1=low|2=high", where "||" is a '|' of a name.
bool ParseOptions(std::string_view list, CsvColumnHeader* header) {
  header->hasOptions = true;
  while (!list.empty()) {
    std::string option;
    size_t at = 0;
    for (; at < list.size(); ++at) {
      if (list[at] != '|') {
        option.push_back(list[at]);
      } else if (at + 1 < list.size() && list[at + 1] == '|') {
        option.push_back(list[at++]);
      } else {
        break;
      }
    }
    const size_t eq = option.find('=');
    int32_t code = 0;
    if (eq == std::string::npos || !VFAscToNum(option.substr(0, eq).c_str(), &code)) return false;
    header->codes.push_back(code);
    header->names.push_back(option.substr(eq + 1));
    list.remove_prefix(std::min(at + 1, list.size()));
  }
  return true;
}

// Reads the type after a colon: "long", "status", "enum(options)", ...
bool ParseSuffix(const VCString& suffix, CsvColumnHeader* header) {
  if (suffix.CompareNoCase("status") == 0) return header->isStatus = true;
  for (const TypeName& t : kTypeNames) {
    if (suffix.CompareNoCase(t.name) == 0 || suffix.CompareNoCase(t.letter) == 0) {
      header->type = t.type;
      return true;
    }
  }
  if (suffix.Left(5).CompareNoCase("enum(") == 0 && suffix.view().back() == ')') {
    header->type = VTTableDataType::Enum;
    return ParseOptions(suffix.view().substr(5, suffix.GetLength() - 6), header);
  }
  return false;
}

// `name` upper-cased as VCString::CompareNoCase compares.
std::string UpperName(const std::string& name) {
  VCString upper(name.c_str());
  return upper.MakeUpper().str();
}

// Reads records of CSV text into columns.
class Reader {
 public:
  Reader(std::string_view text, const std::string& source, VCUDictionary* dictionary,
         std::string* error)
      : m_text(text), m_source(source), m_dictionary(dictionary), m_error(error) {}

  // `nulFree`: the caller has already made sure the text holds no NUL byte.
  bool Run(const CsvProgress& progress, bool nulFree) {
    if (int64_t line = 0; !nulFree && CsvSplitter::FindNul(m_text, &line)) {
      return Fail(m_source + ":" + std::to_string(line) + ": " + kCsvNulByte);
    }
    CsvSplitter splitter(m_text);
    std::vector<std::string_view> header;
    if (!NextRecord(&splitter, &header)) return false;
    if (header.empty()) return Fail(m_source + ": no header line (the file is empty)");
    if (!ReadHeader(header)) return false;
    const char* body = splitter.Position();
    while (!splitter.AtEnd()) {
      if (!ReadRow(&splitter)) return false;
      if (m_rows == 1) Reserve(splitter.Position() - body);
      if (progress && m_rows % kProgressRecords == 0) {
        progress("Parsing", splitter.Position() - m_text.data(), std::ssize(m_text));
      }
    }
    for (size_t c = 0; c < m_columns.size(); ++c) {
      if (!m_columns[c].Finish()) Reread(c, m_rows);
    }
    return true;
  }

  // Hands the columns to `table`, freeing each as it goes.
  void MoveInto(VCUTableMemory* table) {
    for (CsvColumn& column : m_columns) {
      if (!column.Header().isStatus) column.MoveInto(table, m_dictionary);
    }
    for (CsvColumn& column : m_columns) {
      if (column.Header().isStatus) column.MoveInto(table, m_dictionary);
    }
    table->SetNumRows(static_cast<int32_t>(m_rows));
  }

 private:
  bool Fail(std::string message) {
    *m_error = std::move(message);
    return false;
  }

  bool SplitFailed(const CsvSplitter& splitter) {
    return Fail(m_source + ":" + std::to_string(splitter.ErrorLine()) + ": " + splitter.Error());
  }

  // The fields of the next record that is not a blank line (none at the end).
  bool NextRecord(CsvSplitter* splitter, std::vector<std::string_view>* fields) {
    fields->clear();
    m_copies.clear();
    while (!splitter->AtEnd() && fields->empty()) {
      CsvField field;
      do {
        if (!splitter->Next(&field)) return SplitFailed(*splitter);
        m_copies.emplace_back(field.text);
      } while (!field.last);
      if (m_copies.size() == 1 && m_copies[0].empty() && !field.quoted) {
        m_copies.clear();
        continue;
      }
      fields->assign(m_copies.begin(), m_copies.end());
    }
    return true;
  }

  bool ReadHeader(const std::vector<std::string_view>& cells) {
    std::vector<CsvColumnHeader> headers(cells.size());
    // Names seen, upper-cased, of data columns and of status columns.
    std::unordered_set<std::string> names[2];
    for (size_t f = 0; f < cells.size(); ++f) {
      if (!ParseCsvHeaderCell(cells[f], &headers[f])) {
        return Fail(Where(m_source, 1, f) + "'" + std::string(cells[f]) +
                    "' is not name, name:type or name:status");
      }
      headers[f].field = f;
      if (!names[headers[f].isStatus].insert(UpperName(headers[f].name)).second) {
        return Fail(Where(m_source, 1, f) + "a second column named " + headers[f].name);
      }
    }
    for (const CsvColumnHeader& h : headers) {
      const bool found = !h.isStatus || names[0].count(UpperName(h.name)) != 0;
      if (!found) {
        return Fail(Where(m_source, 1, h.field) +
                    "status column of a column that does not exist (" + h.name + ")");
      }
    }
    for (CsvColumnHeader& h : headers) m_columns.emplace_back(std::move(h));
    return true;
  }

  bool ReadRow(CsvSplitter* splitter) {
    const int64_t line = splitter->Line();
    size_t f = 0;
    CsvField field;
    do {
      if (!splitter->Next(&field)) return SplitFailed(*splitter);
      if (f == 0 && field.last && field.text.empty() && !field.quoted) return true;  // blank
      if (f < m_columns.size() && !AddCell(f, field.text, line)) return false;
      ++f;
    } while (!field.last);
    if (f != m_columns.size()) {
      return Fail(m_source + ":" + std::to_string(line) + ": " + std::to_string(f) +
                  " fields, expected " + std::to_string(m_columns.size()) + " as in the header");
    }
    if (++m_rows > INT32_MAX) return Fail(m_source + ": too many rows for one table");
    return true;
  }

  bool AddCell(size_t f, std::string_view cell, int64_t line) {
    CsvColumn& column = m_columns[f];
    switch (column.Add(cell, m_dictionary)) {
      case CsvColumn::kOk:
        return true;
      case CsvColumn::kToText: {
        const std::string copy(cell);  // the splitter's buffer is reused
        Reread(f, m_rows);
        column.AddText(copy, m_dictionary);
        return true;
      }
      default:
        return Fail(Where(m_source, line, f) + "'" + std::string(cell) + "' is not " +
                    column.Expected() + " (column " + column.Header().name + ")");
    }
  }

  // Makes room in every column for the rows the text seems to hold, judged
  // by the length of its first record, `length`.
  void Reserve(int64_t length) {
    const int64_t rows = std::ssize(m_text) / std::max<int64_t>(length, 1) * 9 / 8;
    for (CsvColumn& column : m_columns) {
      column.Reserve(static_cast<size_t>(std::min<int64_t>(rows, kMaxReservedRows)));
    }
  }

  // Adds the first `rows` cells of column `f` again, as texts.
  void Reread(size_t f, int64_t rows) {
    CsvSplitter splitter(m_text);
    std::vector<std::string_view> fields;
    NextRecord(&splitter, &fields);  // the header
    for (int64_t r = 0; r < rows; ++r) {
      NextRecord(&splitter, &fields);
      m_columns[f].AddText(fields[f], m_dictionary);
    }
  }

  std::string_view m_text;
  const std::string& m_source;
  VCUDictionary* m_dictionary;
  std::string* m_error;
  std::vector<CsvColumn> m_columns;
  std::vector<std::string> m_copies;
  int64_t m_rows = 0;
};

// Reads `text` into `table`; `owned`, when given, holds the text and is
// freed before the columns are handed over, to keep the peak memory low.
// `nulFree`: the text is known to hold no NUL byte.
bool Load(std::string_view text, std::unique_ptr<char[]>* owned, const std::string& source,
          VCUTableMemory* table, VCUDictionary* dictionary, std::string* error,
          const CsvProgress& progress, bool nulFree = false) {
  // The table reports a failed AddCol (out of memory) on the error stack.
  auto records = [] {
    int32_t n = 0;
    for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) ++n;
    return n;
  };
  const int32_t before = records();
  try {
    Reader reader(text, source, dictionary, error);
    if (!reader.Run(progress, nulFree)) return false;
    if (owned) owned->reset();
    reader.MoveInto(table);
  } catch (const std::bad_alloc&) {
    *error = source + ": out of memory";
    return false;
  }
  if (records() != before) {
    *error = source + ": out of memory";
    return false;
  }
  return true;
}

}  // namespace

// Reads "name", "name:type", "name:enum(options)" or "name:status"; the
// name ends at the first colon after which a type reads.
bool ParseCsvHeaderCell(std::string_view cell, CsvColumnHeader* header) {
  size_t colon = cell.find(':');
  if (colon == std::string_view::npos) {
    header->name = cell;
    return true;
  }
  for (; colon != std::string_view::npos; colon = cell.find(':', colon + 1)) {
    CsvColumnHeader h;
    if (ParseSuffix(VCString(cell.substr(colon + 1)), &h)) {
      *header = std::move(h);
      header->name = cell.substr(0, colon);
      return true;
    }
  }
  return false;
}

bool CsvToMemoryTable(std::string_view text, const std::string& source, VCUTableMemory* table,
                      VCUDictionary* dictionary, std::string* error, const CsvProgress& progress) {
  return Load(text, nullptr, source, table, dictionary, error, progress);
}

bool ReadCsvToMemoryTable(const std::string& path, VCUTableMemory* table, VCUDictionary* dictionary,
                          std::string* error, const CsvProgress& progress) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                       &std::fclose);
  std::unique_ptr<char[]> text;  // not zero-filled first
  size_t used = 0, capacity = 0;
  constexpr size_t kChunk = size_t{16} << 20;
  int64_t size = 0;
  bool nul = false;  // a NUL byte was read
  if (file && std::fseek(file.get(), 0, SEEK_END) == 0) {
    size = std::max<int64_t>(std::ftell(file.get()), 0);
    std::rewind(file.get());
  }
  try {
    while (file && !std::ferror(file.get()) && !std::feof(file.get())) {
      if (used >= static_cast<size_t>(kMaxFileBytes)) {
        *error = path + ": larger than 16 GiB";
        return false;
      }
      if (capacity - used < kChunk) {
        const size_t grown =
            std::max(capacity * 2, static_cast<size_t>(std::min(size, kMaxFileBytes)) + kChunk);
        auto bigger = std::make_unique_for_overwrite<char[]>(grown);
        if (used > 0) std::memcpy(bigger.get(), text.get(), used);
        text = std::move(bigger);
        capacity = grown;
      }
      const size_t got = std::fread(text.get() + used, 1, kChunk, file.get());
      nul = std::memchr(text.get() + used, 0, got) != nullptr;
      used += got;
      if (nul) break;  // reported while parsing
      if (progress) progress("Reading", static_cast<int64_t>(used), std::max<int64_t>(size, 1));
    }
  } catch (const std::bad_alloc&) {
    *error = path + ": out of memory";
    return false;
  }
  if (!file || std::ferror(file.get())) {
    *error = path + ": cannot be read";
    return false;
  }
  file.reset();
  return Load(std::string_view(text.get(), used), &text, path, table, dictionary, error, progress,
              !nul);
}

}  // namespace utilkit::tool
