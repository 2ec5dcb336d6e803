// Tables of `utilkit table` as CSV: a CSV file's cells as a typed memory
// table, and any table written back as CSV.
//
// Header cells name the columns and may declare their type as `name:type`,
// type being short, long, huge, float, double, text or enum (or the letters
// S, L, H, F, D, T, E), in any case. An Enum column may list its options as
// `name:enum(1=low|2=high)`; its cells are then option names (ignoring
// case) or codes. Without options every distinct text of the column becomes
// an option, numbered from 1 in order of appearance. A column headed
// `name:status` holds the status words of column `name` (decimal or 0x
// hex; bit 0x8000 marks a cell valid). A column without a type is long
// when every cell is a 32-bit integer, huge for 64-bit integers, double
// when every non-empty cell is a number, text otherwise. An empty cell of a
// float or double column is NaN (written back as an empty cell); in an
// integer column it is an error.
//
//   CsvTable csv;                       // from ReadCsvFile / ParseCsv
//   VCUTableMemory table("tests_a.csv");
//   std::string error;
//   if (!CsvToMemoryTable(csv, "tests_a.csv", &table, &error)) puts(error.c_str());
//   // error: "tests_a.csv:4:2: 'high' is not a double (column Force)"
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include <utilkit/table/memory_table.h>

#include "csv_table.h"

namespace utilkit::tool {

// Told the number of columns converted so far and the total.
using ConvertProgress = std::function<void(size_t done, size_t total)>;

// Adds the columns of `csv` to `table` and sets its row count. Errors name
// `source`, the line and the column number: "source:line:column: what".
bool CsvToMemoryTable(const CsvTable& csv, const std::string& source, VCUTableMemory* table,
                      std::string* error, const ConvertProgress& progress = {});

// Writes `table` as CSV: a header of keywords (`keyword:type` with
// `typedHeader`, so that the file reads back with the same types), a
// `keyword:status` column after each column with status, then one record
// per row. Fails with the error stack's text when a read fails.
bool WriteTableCsv(VCUTable& table, bool typedHeader, std::ostream& out, std::string* error);

}  // namespace utilkit::tool
