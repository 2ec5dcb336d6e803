// libFuzzer target for the table command's option texts.
//
// The input holds up to five lines: the filter, the sort keys, a
// compression, a computed column and a row index (missing ones are empty).
// Each text is read; when all read, the job runs over a small fixed table
// and every output cell is read back.
// A refusal must say why; nothing may crash, hang or leak.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <utilkit/base/dictionary.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "table_csv.h"
#include "table_job.h"

namespace {

constexpr std::string_view kTable =
    "Test,Channel:long,Peak:double,Grade:enum(1=low|2=mid|3=high),Operator:text,Count:huge\n"
    "run-001,1,12.5,high,Ann,3\n"
    "run-002,2,8.25,low,Ben,-4\n"
    "run-003,1,,mid,ann,9000000000\n"
    "run-004,3,-10,mid,Carl,0\n"
    "run-005,2,21.5,3,Ben,7\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 4096) return 0;
  std::vector<std::string> lines(5);
  size_t line = 0;
  for (size_t i = 0; i < size && line < lines.size(); ++i) {
    if (data[i] == '\n') {
      ++line;
    } else {
      lines[line] += static_cast<char>(data[i]);
    }
  }
  utilkit::tool::TableJob job;
  job.filter = lines[0];
  job.sort = lines[1];
  if (!lines[2].empty()) job.compress.push_back(lines[2]);
  if (!lines[3].empty()) job.newColumns.push_back(lines[3]);
  job.rowIndex = lines[4];

  VFErrorClear();
  utilkit::tool::TableOperations operations;
  std::string error;
  if (!utilkit::tool::BuildTableOperations(job, &operations, &error)) {
    if (error.empty()) std::abort();
    return 0;
  }
  VCUDictionary texts;
  VCUTableMemory table("fuzz");
  if (!utilkit::tool::CsvToMemoryTable(kTable, "fuzz", &table, &texts, &error)) std::abort();
  std::vector<utilkit::tool::TableInput> inputs = {{&table}};
  if (!utilkit::tool::CheckFilterValues(inputs, operations, &error)) return 0;
  VCUTableProcessor processor;
  if (utilkit::tool::RunTableJob(inputs, job, operations, &processor)) {
    std::ostringstream out;  // every output cell read back
    utilkit::tool::WriteTableCsv(*processor.GetOutputTable(), true, out, &error);
  } else if (VFErrorGetLast() == nullptr) {
    std::abort();
  }
  VFErrorClear();
  return 0;
}
