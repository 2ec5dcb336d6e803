// Tables of `utilkit table` as CSV: a CSV file's cells as a typed memory
// table, and any table written back as CSV.
//
// Header cells name the columns and may declare their type as `name:type`,
// type being short, long, huge, float, double, text or enum (or the letters
// S, L, H, F, D, T, E), in any case. An Enum column may list its options as
// `name:enum(1=low|2=high)`; its cells are then option names (an exact
// match first, then ignoring case) or codes. Without options every distinct text of the column
// becomes an option, numbered from 1 in order of appearance. A column headed `name:status` holds
// the status words of column `name` (decimal or 0x hex; bit 0x8000 marks a cell valid). A column
// without a type is long when every cell is a 32-bit integer, huge for 64-bit integers, double when
// every non-empty cell is a number, text otherwise. An empty cell of a float or double column is
// NaN (written back as an empty cell); in an integer column it is an error.
//
// Names of Enum options write '|' as "||". A name holding ':' is read up
// to the first ':' after which a type reads (`a:b:long` is column a:b). A file written with typed
// headers reads back as the same table.
//
// The reader parses the file's text in one pass, straight into typed
// columns; text cells are pooled in a dictionary that the caller keeps for
// as long as the table lives.
//
//   VCUDictionary texts;
//   VCUTableMemory table("tests_a.csv");
//   std::string error;
//   if (!ReadCsvToMemoryTable("tests_a.csv", &table, &texts, &error)) puts(error.c_str());
//   // error: "tests_a.csv:4:2: 'high' is not a double (column Force)"
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

#include <utilkit/base/dictionary.h>
#include <utilkit/table/memory_table.h>

namespace utilkit::tool {

// Told how many bytes of `total` are done in `stage` ("Reading", "Parsing").
using CsvProgress = std::function<void(const char* stage, int64_t done, int64_t total)>;

// Adds the columns of CSV `text` to `table` (texts pooled in `dictionary`)
// and sets its row count. Errors name `source`, the line and the column
// number: "source:line:column: what"; a malformed record, a NUL byte, a
// header cell that does not read, a column named twice (ignoring case), a
// status column of no column, a cell that is not of its column's type and
// more than INT32_MAX rows are errors.
bool CsvToMemoryTable(std::string_view text, const std::string& source, VCUTableMemory* table,
                      VCUDictionary* dictionary, std::string* error,
                      const CsvProgress& progress = {});

// Reads the file at `path` and adds its columns as CsvToMemoryTable does;
// a file that cannot be read (or is over 16 GiB) is an error too.
bool ReadCsvToMemoryTable(const std::string& path, VCUTableMemory* table, VCUDictionary* dictionary,
                          std::string* error, const CsvProgress& progress = {});

// Writes `table` as CSV: a header of keywords (`keyword:type` with
// `typedHeader`, so that the file reads back with the same types), a
// `keyword:status` column after each column with status, then one record
// per row, in buffered writes. Fails with the error stack's text when a
// read fails, and with typed headers when a column's name or an option name
// holds ':' and a type (so that the header would read back otherwise).
// `progress` is told the rows written (stage "Writing").
bool WriteTableCsv(VCUTable& table, bool typedHeader, std::ostream& out, std::string* error,
                   const CsvProgress& progress = {});

}  // namespace utilkit::tool
