// A table job of `utilkit table`: input tables (whole or with selected
// rows), the column-set mode, the output columns and a filter text, run
// through a VCUTableProcessor. Shared by the command and its tests.
//
//   std::vector<TableInput> inputs = {{&testsA}, {&testsB, true, {2, 1}}};
//   TableJob job;
//   job.filter = "Peak > 10";
//   VCUTableProcessor processor;
//   std::unique_ptr<VCUTableFilter> filter;
//   std::string error;
//   if (RunTableJob(inputs, job, &processor, &filter, &error)) { ... processor.GetOutputTable() }
//
// Ownership: the caller keeps the input tables and gets the filter in
// `*filter`; both must outlive the processor's use of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <utilkit/table/table_processor.h>

namespace utilkit::tool {

struct TableInput {
  VCUTable* table = nullptr;
  bool selected = false;      // only `rows` take part
  std::vector<int64_t> rows;  // 1-based, in merged order
};

struct TableJob {
  bool allColumns = false;  // all-columns mode instead of common columns
  std::string columns;      // comma-separated output columns; empty: every merged column
  std::string filter;       // filter text (see table_filter_text.h); empty: none
};

// Splits "name@5,1-3" into the name and its rows (5, 1, 2, 3). A argument
// without a valid row list after its last "@" is all name, not selected.
void SplitInputArgument(const std::string& argument, std::string* name, std::vector<int64_t>* rows,
                        bool* selected);

// Configures `processor` for the job and runs Process. When some inputs
// select rows, the others take part with all their rows. False with
// `*error` set for a bad filter text, false with `*error` empty when the
// processor fails (its errors are on the error stack).
bool RunTableJob(const std::vector<TableInput>& inputs, const TableJob& job,
                 VCUTableProcessor* processor, std::unique_ptr<VCUTableFilter>* filter,
                 std::string* error);

}  // namespace utilkit::tool
