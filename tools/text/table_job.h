// A table job of `utilkit table`: input tables (whole or with selected
// rows), the column-set mode, the output columns, and the texts of the
// filter, the sort, the compressions and the computed columns, run through
// a VCUTableProcessor. Shared by the command and its tests.
//
//   std::vector<TableInput> inputs = {{&testsA}, {&testsB, true, {2, 1}}};
//   TableJob job;
//   job.filter = "Peak > 10";
//   job.sort = "Channel,Peak:desc";
//   TableOperations operations;
//   std::string error;
//   if (!BuildTableOperations(job, &operations, &error)) { ... error }
//   VCUTableProcessor processor;
//   if (RunTableJob(inputs, job, operations, &processor)) { ... processor.GetOutputTable() }
//
// Output columns: the names of `columns` in order (every merged column when
// empty). A name there that is a computed column's (ignoring case) places
// that column; computed columns not named follow, those of `newColumns` in
// order, then the row index.
//
// Ownership: the caller keeps the input tables and the operations; both
// must outlive the processor's use of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <utilkit/table/table_processor.h>

#include "table_filter_text.h"

namespace utilkit::tool {

struct TableInput {
  VCUTable* table = nullptr;
  bool selected = false;      // only `rows` take part
  std::vector<int64_t> rows;  // 1-based, in merged order
};

// The texts of table_filter_text.h and table_ops_text.h; empty: none.
struct TableJob {
  bool allColumns = false;                  // all-columns mode instead of common columns
  std::string columns;                      // comma-separated output columns
  std::string filter;                       // the filter
  std::string sort;                         // the sort keys
  std::string category;                     // the category trim of the sort
  std::vector<std::string> compress;        // compressions, run in this order
  std::vector<std::string> newColumns;      // computed columns
  std::string rowIndex;                     // a row index column
  std::vector<std::string> newStatus;       // "name=column": a computed column's status
  std::string divZero, logZero;             // trap values of every computed column
  size_t maxFilterDepth = kMaxFilterDepth;  // deepest nesting of the filter's parentheses
};

// The operations a job's texts describe.
struct TableOperations {
  std::unique_ptr<VCUTableFilter> filter;
  std::unique_ptr<VCUTableSort> sort;
  std::vector<std::unique_ptr<VCUTableCompress>> compressions;
  std::vector<std::unique_ptr<VCUTableNewColumn>> newColumns;  // the row index last
  std::vector<FilterTextValue> filterTexts;  // the filter's comparisons with a text value
};

// The most rows a FILE@ROWS argument may list by default, all its ranges
// together (`utilkit table --max-rows` sets another).
inline constexpr int64_t kMaxSelectedRows = 100000000;

// Splits "name@5,1-3" into the name and its rows (5, 1, 2, 3). An argument
// without a valid row list after its last "@" (a range ending before it
// starts, a row below 1, or more than `maxRows` rows) is all name, not
// selected.
void SplitInputArgument(const std::string& argument, std::string* name, std::vector<int64_t>* rows,
                        bool* selected, int64_t maxRows = kMaxSelectedRows);

// Reads the job's texts into `*operations`. False with `*error` a one-line
// message for a text that does not read, a computed column named twice or a
// new-status naming no computed column.
bool BuildTableOperations(const TableJob& job, TableOperations* operations, std::string* error);

// False with `*error` naming the column and the position when the filter
// compares a column of numbers (in the first input) with a text that is not a
// number; columns the input lacks are left to the processor to report.
bool CheckFilterValues(const std::vector<TableInput>& inputs, const TableOperations& operations,
                       std::string* error);

// Configures `processor` for the job and its operations and runs Process.
// When some inputs select rows, the others take part with all their rows.
// False when the processor fails (its errors are on the error stack).
bool RunTableJob(const std::vector<TableInput>& inputs, const TableJob& job,
                 const TableOperations& operations, VCUTableProcessor* processor);

}  // namespace utilkit::tool
