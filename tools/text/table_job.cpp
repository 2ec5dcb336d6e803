#include "table_job.h"

#include <algorithm>
#include <exception>
#include <unordered_map>

#include <utilkit/base/number_text.h>
#include <utilkit/base/vc_string_array.h>

#include "table_filter_text.h"
#include "table_ops_text.h"

namespace utilkit::tool {

void SplitInputArgument(const std::string& argument, std::string* name, std::vector<int64_t>* rows,
                        bool* selected, int64_t maxRows) {
  *name = argument;
  *selected = false;
  const size_t at = argument.rfind('@');
  if (at == std::string::npos) return;
  VCStringArray parts;
  parts.SplitString(argument.substr(at + 1).c_str(), ",", VCStringArray::kSplitTrim);
  std::vector<int64_t> list;
  int64_t count = 0;  // rows listed so far, checked before any is expanded
  for (const VCString& part : parts) {
    const int32_t dash = part.Find('-', 1);
    int64_t first = 0, last = 0;
    if (!VFAscToNum(dash < 0 ? part.c_str() : part.Left(dash).c_str(), &first) ||
        !VFAscToNum(dash < 0 ? part.c_str() : part.Mid(dash + 1).c_str(), &last) || first < 1 ||
        last < first || last - first >= maxRows - count) {
      return;
    }
    count += last - first + 1;
  }
  try {
    list.reserve(static_cast<size_t>(count));
  } catch (const std::exception&) {
    return;
  }
  for (const VCString& part : parts) {
    const int32_t dash = part.Find('-', 1);
    int64_t first = 0, last = 0;
    VFAscToNum(dash < 0 ? part.c_str() : part.Left(dash).c_str(), &first);
    VFAscToNum(dash < 0 ? part.c_str() : part.Mid(dash + 1).c_str(), &last);
    for (int64_t r = first; r <= last; ++r) list.push_back(r);
  }
  *name = argument.substr(0, at);
  *rows = std::move(list);
  *selected = true;
}

namespace {

// The computed column named `name` ignoring case, or null.
VCUTableNewColumn* FindNewColumn(const TableOperations& operations, const VCString& name) {
  for (const auto& column : operations.newColumns) {
    if (column->GetKeyword().CompareNoCase(name) == 0) return column.get();
  }
  return nullptr;
}

bool BuildNewColumns(const TableJob& job, TableOperations* operations, std::string* error) {
  auto& columns = operations->newColumns;
  for (const std::string& text : job.newColumns) {
    columns.push_back(ParseNewColumnText(text, error));
    if (!columns.back()) return false;
  }
  if (!job.rowIndex.empty()) {
    columns.push_back(ParseRowIndexText(job.rowIndex, error));
    if (!columns.back()) return false;
  }
  for (size_t i = 0; i < columns.size(); ++i) {
    if (FindNewColumn(*operations, columns[i]->GetKeyword()) != columns[i].get()) {
      *error = "new: two computed columns are named " + columns[i]->GetKeyword().str();
      return false;
    }
  }
  for (const std::string& text : job.newStatus) {
    std::string name, source;
    if (!ParseNewStatusText(text, &name, &source, error)) return false;
    VCUTableNewColumn* column = FindNewColumn(*operations, name.c_str());
    if (column == nullptr) {
      *error = "new-status: no computed column is named " + name;
      return false;
    }
    column->SetHasStatus(1);
    column->SetStatusColumn(source.c_str());
  }
  double divZero = 0, logZero = 0;
  if ((!job.divZero.empty() && !ParseTrapText("div-zero", job.divZero, &divZero, error)) ||
      (!job.logZero.empty() && !ParseTrapText("log-zero", job.logZero, &logZero, error))) {
    return false;
  }
  for (const auto& column : columns) {
    column->SetDivZeroTrap(job.divZero.empty() ? 0 : 1, divZero);
    column->SetLogZeroTrap(job.logZero.empty() ? 0 : 1, logZero);
  }
  return true;
}

}  // namespace

bool CheckFilterValues(const std::vector<TableInput>& inputs, const TableOperations& operations,
                       std::string* error) {
  if (inputs.empty() || operations.filterTexts.empty()) return true;
  VCUTable* table = inputs.front().table;
  int32_t count = 0;
  if (!table->GetNumCols(&count)) return true;
  std::unordered_map<std::string, VTTableDataType> types;  // upper-cased keyword
  for (int32_t col = 0; col < count; ++col) {
    VCString keyword;
    VTTableDataType type{};
    if (!table->GetColKeyword(col, &keyword) || !table->GetColType(col, &type)) continue;
    keyword.MakeUpper();
    types.emplace(keyword.c_str(), type);
  }
  for (const FilterTextValue& text : operations.filterTexts) {
    VCString column(text.column.c_str());
    column.MakeUpper();
    const auto found = types.find(column.c_str());
    if (found == types.end() || found->second == VTTableDataType::Text ||
        found->second == VTTableDataType::Enum) {
      continue;
    }
    *error = "filter: '" + text.value + "' is not a number, and column " + text.column +
             " holds numbers (character " + std::to_string(text.at) + ")";
    return false;
  }
  return true;
}

bool BuildTableOperations(const TableJob& job, TableOperations* operations, std::string* error) {
  error->clear();
  if (!job.filter.empty()) {
    operations->filter =
        ParseTableFilter(job.filter, error, &operations->filterTexts, job.maxFilterDepth);
    if (!operations->filter) return false;
  }
  if (!job.sort.empty() || !job.category.empty()) {
    operations->sort = ParseSortText(job.sort, job.category, error);
    if (!operations->sort) return false;
  }
  for (const std::string& text : job.compress) {
    operations->compressions.push_back(ParseCompressText(text, error));
    if (!operations->compressions.back()) return false;
  }
  return BuildNewColumns(job, operations, error);
}

bool RunTableJob(const std::vector<TableInput>& inputs, const TableJob& job,
                 const TableOperations& operations, VCUTableProcessor* processor) {
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
  std::vector<const VCUTableNewColumn*> placed;
  if (!job.columns.empty()) {
    processor->ClearOutputColumns();
    VCStringArray names;
    names.SplitString(job.columns.c_str(), ",",
                      VCStringArray::kSplitTrim | VCStringArray::kSplitSkipEmpty);
    for (const VCString& name : names) {
      VCUTableNewColumn* column = FindNewColumn(operations, name);
      if (column) placed.push_back(column);
      if (!(column ? processor->AddOutputColumn(column) : processor->AddOutputColumn(name))) {
        return false;
      }
    }
  }
  for (const auto& column : operations.newColumns) {
    if (std::find(placed.begin(), placed.end(), column.get()) == placed.end() &&
        !processor->AddOutputColumn(column.get())) {
      return false;
    }
  }
  processor->SetFilter(operations.filter.get());
  processor->SetSort(operations.sort.get());
  for (const auto& compress : operations.compressions) {
    if (!processor->AddCompress(compress.get())) return false;
  }
  return processor->Process();
}

}  // namespace utilkit::tool
