// CsvTable: the utilkit tool's small CSV reader and writer.
//
// The first record names the columns; every other record is a row of text
// fields, as many as the header has (typed reading is left to the command
// that needs it). Fields are separated by commas; a field in double quotes
// may hold commas, line breaks and "" for one quote. CRLF line ends and a
// UTF-8 byte order mark are accepted; blank lines are skipped.
//
//   CsvTable table;
//   std::string error;
//   if (!ReadCsvFile("signals.csv", &table, &error)) {
//     std::fprintf(stderr, "%s\n", error.c_str());  // "signals.csv:7: 4 fields, expected 5"
//   }
//   WriteCsvRecord(std::cout, table.header);
//
// Ownership: a CsvTable owns copies of all its texts.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace utilkit::tool {

struct CsvTable {
  std::vector<std::string> header;
  std::vector<std::vector<std::string>> rows;
  std::vector<int64_t> lines;  // the line each row starts on, counting from 1

  // The column called `name`: an exact match first, else the first match
  // ignoring ASCII case; -1 when there is none.
  int32_t FindColumn(std::string_view name) const;
};

// Parses CSV `text` into `*table`. Errors name `source` and the line:
// "source:3: unterminated quoted field". An empty text (no header) is an error.
bool ParseCsv(std::string_view text, const std::string& source, CsvTable* table,
              std::string* error);

// Reads the file at `path` and parses it; a directory, a file that cannot be
// read and one over `limit` bytes are errors.
bool ReadCsvFile(const std::string& path, CsvTable* table, std::string* error,
                 size_t limit = size_t{256} << 20);

// Writes one record ending in "\n", quoting the fields that hold a comma, a
// quote or a line break.
void WriteCsvRecord(std::ostream& out, const std::vector<std::string>& fields);

}  // namespace utilkit::tool
