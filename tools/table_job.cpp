#include "table_job.h"

#include <algorithm>

#include <utilkit/base/number_text.h>
#include <utilkit/base/vc_string_array.h>

#include "table_filter_text.h"

namespace utilkit::tool {

void SplitInputArgument(const std::string& argument, std::string* name, std::vector<int64_t>* rows,
                        bool* selected) {
  *name = argument;
  *selected = false;
  const size_t at = argument.rfind('@');
  if (at == std::string::npos) return;
  VCStringArray parts;
  parts.SplitString(argument.substr(at + 1).c_str(), ",", VCStringArray::kSplitTrim);
  std::vector<int64_t> list;
  for (const VCString& part : parts) {
    const int32_t dash = part.Find('-', 1);
    int64_t first = 0, last = 0;
    if (!VFAscToNum(dash < 0 ? part.c_str() : part.Left(dash).c_str(), &first) ||
        !VFAscToNum(dash < 0 ? part.c_str() : part.Mid(dash + 1).c_str(), &last) || last < first ||
        last - first > 100000000) {
      return;
    }
    for (int64_t r = first; r <= last; ++r) list.push_back(r);
  }
  *name = argument.substr(0, at);
  *rows = std::move(list);
  *selected = true;
}

bool RunTableJob(const std::vector<TableInput>& inputs, const TableJob& job,
                 VCUTableProcessor* processor, std::unique_ptr<VCUTableFilter>* filter,
                 std::string* error) {
  error->clear();
  // Once one input selects rows the processor takes selected rows only, so
  // inputs given whole then select all their rows.
  const bool anySelected =
      std::any_of(inputs.begin(), inputs.end(), [](const TableInput& i) { return i.selected; });
  for (const TableInput& input : inputs) {
    std::vector<int64_t> all;
    int64_t count = 0;
    if (anySelected && !input.selected) {
      if (!input.table->GetNumRows(&count)) return false;
      for (int64_t r = 1; r <= count; ++r) all.push_back(r);
    }
    const std::vector<int64_t>& rows = input.selected ? input.rows : all;
    const bool added = anySelected ? processor->AddInputTable(input.table, rows.data(),
                                                              static_cast<int64_t>(rows.size()))
                                   : processor->AddInputTable(input.table);
    if (!added) return false;
  }
  // Adding every merged column is also how the column-set mode is chosen.
  if (!processor->AddAllInputColsToOutput(job.allColumns ? 0 : 1)) return false;
  if (!job.columns.empty()) {
    processor->ClearOutputColumns();
    VCStringArray names;
    names.SplitString(job.columns.c_str(), ",",
                      VCStringArray::kSplitTrim | VCStringArray::kSplitSkipEmpty);
    for (const VCString& name : names) processor->AddOutputColumn(name);
  }
  if (!job.filter.empty()) {
    *filter = ParseTableFilter(job.filter, error);
    if (!*filter) return false;
    processor->SetFilter(filter->get());
  }
  return processor->Process();
}

}  // namespace utilkit::tool
