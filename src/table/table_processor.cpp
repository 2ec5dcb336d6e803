#include <utilkit/table/table_processor.h>

#include <algorithm>
#include <cassert>
#include <string>
#include <unordered_map>
#include <vector>

#include <utilkit/base/preference_system.h>

#include "table/merged_read.h"

using namespace utilkit::table;

namespace {

constexpr const char* kRowLimitPreference = "/Libraries/utilkit/MaximumTableProcessorRows";
constexpr int64_t kDefaultRowLimit = 50000000;
constexpr int64_t kMaxRowLimit = 2000000000;
// Rows handed to the filter at a time.
constexpr int64_t kFilterBlock = 4096;

}  // namespace

VCUTableProcessor::VCUTableProcessor() : m_state(std::make_unique<VCUTableProcessorState>()) {
  m_state->rowLimit = std::clamp<int64_t>(
      VCPreferenceSystem::GetHugeValue(kRowLimitPreference, kDefaultRowLimit), 0, kMaxRowLimit);
}

VCUTableProcessor::~VCUTableProcessor() = default;

bool VCUTableProcessor::AddInputTable(VCUTable* table) {
  static constexpr const char* kLocation = "VCUTableProcessor::AddInputTable";
  assert(table != nullptr);
  if (table == nullptr) return VFReportError(kTableErrorNoInputTables, kLocation);
  auto& inputs = m_state->inputs;
  if (std::find(inputs.begin(), inputs.end(), table) != inputs.end()) {
    return VFReportError(kTableErrorTableAddedTwice, kLocation);
  }
  try {
    inputs.push_back(table);
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
  m_state->DropMergedColumns();
  return true;
}

bool VCUTableProcessor::AddInputTable(VCUTable* table, const int64_t* rows, int64_t count) {
  static constexpr const char* kLocation = "VCUTableProcessor::AddInputTable";
  VCUTableProcessorState& s = *m_state;
  int64_t tableRows = 0;
  if (table != nullptr && std::find(s.inputs.begin(), s.inputs.end(), table) != s.inputs.end()) {
    return VFReportError(kTableErrorTableAddedTwice, kLocation);
  }
  if (table != nullptr && !table->GetNumRows(&tableRows)) return false;
  if (!AddInputTable(table)) return false;
  if (count > s.rowLimit - s.rowMap.Size()) return VFReportError(kTableErrorTooManyRows, kLocation);
  if (count < 0 || (count > 0 && rows == nullptr))
    return VFReportError(kTableErrorInputRow, kLocation);
  for (int64_t i = 0; i < count; ++i) {
    if (rows[i] < 1 || rows[i] > tableRows) return VFReportError(kTableErrorInputRow, kLocation);
  }
  const int32_t index = static_cast<int32_t>(s.inputs.size() - 1);
  for (int64_t i = 0; i < count; ++i) {
    if (!s.rowMap.Append(index, static_cast<int32_t>(rows[i]), 1))
      return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
  s.rowMapGiven = true;
  return true;
}

bool VCUTableProcessor::RemoveInputTable(VCUTable* table) {
  auto& inputs = m_state->inputs;
  auto at = std::find(inputs.begin(), inputs.end(), table);
  if (at == inputs.end())
    return VFReportError(kTableErrorTableNotDefined, "VCUTableProcessor::RemoveInputTable");
  inputs.erase(at);
  m_state->DropMergedColumns();
  return true;
}

bool VCUTableProcessor::ClearInputTables() {
  VCUTableProcessorState& s = *m_state;
  s.inputs.clear();
  s.rowMap.Clear();
  s.rowMapGiven = false;
  s.outputRows.RemoveAll();
  s.outputInOrder = false;
  s.DropMergedColumns();
  return true;
}

bool VCUTableProcessor::SetFilter(VCUTableFilter* filter) {
  m_state->filter = filter;
  return true;
}

bool VCUTableProcessor::SetSort(VCUTableSort* sort) {
  m_state->sort = sort;
  return true;
}

bool VCUTableProcessor::AddCompress(VCUTableCompress* compress) {
  try {
    m_state->compressions.push_back(compress);
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableProcessor::AddCompress");
  }
  return true;
}

bool VCUTableProcessor::ClearOperations() {
  m_state->filter = nullptr;
  m_state->sort = nullptr;
  m_state->compressions.clear();
  return true;
}

bool VCUTableProcessor::AddOutputColumn(const char* keyword) {
  try {
    m_state->outputCols.push_back({VCString(keyword)});
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableProcessor::AddOutputColumn");
  }
  return true;
}

bool VCUTableProcessor::AddOutputColumn(VCUTableNewColumn* column) {
  assert(column != nullptr);
  try {
    m_state->outputCols.push_back({VCString(), column});
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableProcessor::AddOutputColumn");
  }
  return true;
}

bool VCUTableProcessor::RemoveOutputColumn(const char* keyword) {
  auto& cols = m_state->outputCols;
  const char* wanted = keyword ? keyword : "";
  auto at = std::find_if(cols.begin(), cols.end(), [&](const OutputColumn& c) {
    return (c.computed ? c.computed->GetKeyword() : c.keyword).CompareNoCase(wanted) == 0;
  });
  if (at == cols.end())
    return VFReportError(kTableErrorColumnNotFound, "VCUTableProcessor::RemoveOutputColumn",
                         wanted);
  cols.erase(at);
  return true;
}

bool VCUTableProcessor::ClearOutputColumns() {
  m_state->outputCols.clear();
  return true;
}

bool VCUTableProcessor::AddAllInputColsToOutput(char commonColumns) {
  m_state->commonColumns = commonColumns;
  VCArray<VCString> keywords;
  VCArray<VTTableDataType> types;
  const VCKeywordIndexScope index(m_state.get());
  if (!index.ok() || !CollectColumns(&keywords, &types)) return false;
  for (int32_t i = 0; i < keywords.GetSize(); ++i) {
    if (types[i] != VTTableDataType::None && !AddOutputColumn(keywords[i])) return false;
  }
  return true;
}

bool VCUTableProcessor::Validate() {
  static constexpr const char* kLocation = "VCUTableProcessor::Validate";
  VCUTableProcessorState& s = *m_state;
  if (s.inputs.empty()) return VFReportError(kTableErrorNoInputTables, kLocation);
  s.DropMergedColumns();
  VCArray<VCString> keywords;
  VCArray<VTTableDataType> types;
  const VCKeywordIndexScope index(&s);
  if (!index.ok() || !CollectColumns(&keywords, &types)) return false;
  try {
    for (int32_t i = 0; i < keywords.GetSize(); ++i) {
      if (types[i] == VTTableDataType::None) continue;
      MergedColumn mc;
      mc.keyword = keywords[i];
      if (!GetColIndeces(mc.keyword, &mc.index, &mc.hasStatus, &mc.type)) {
        s.merged.clear();
        return false;
      }
      mc.anyStatus = std::find(mc.hasStatus.begin(), mc.hasStatus.end(), 1) != mc.hasStatus.end();
      s.merged.push_back(std::move(mc));
    }
  } catch (...) {
    s.merged.clear();
    return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
  if (s.outputCols.empty()) return VFReportError(kTableErrorNoOutputColumns, kLocation);
  // The merged columns by upper-cased keyword (the first of each), so that
  // placing n output columns is not n^2 comparisons; a keyword not there is
  // left to the merged view to report.
  std::unordered_map<std::string, int32_t> mergedIndex;
  try {
    mergedIndex.reserve(s.merged.size());
    for (size_t i = 0; i < s.merged.size(); ++i) {
      VCString key(s.merged[i].keyword);
      mergedIndex.emplace(key.MakeUpper().c_str(), static_cast<int32_t>(i));
    }
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
  for (OutputColumn& col : s.outputCols) {
    if (col.computed) {
      if (!col.computed->Validate(&s.data)) return false;
    } else {
      VCString key(col.keyword);
      const auto found = mergedIndex.find(key.MakeUpper().c_str());
      if (found != mergedIndex.end()) {
        col.merged = found->second;
      } else if (!s.data.GetColIndexFromKeyword(col.keyword, &col.merged)) {
        return false;
      }
    }
    col.resolved = true;
  }
  if (s.filter != nullptr && !s.filter->Validate(&s.data)) return false;
  for (VCUTableCompress* compress : s.compressions) {
    if (!compress->Validate(&s.data)) return false;
  }
  return s.sort == nullptr || s.sort->Validate(&s.data);
}

bool VCUTableProcessor::Process() {
  bool ok = false;
  try {
    ok = Validate() && BuildRowMap() && RunFilter() && RunCompressionsAndSort();
  } catch (...) {
    VFReportError(kTableErrorOutOfMemory, "VCUTableProcessor::Process");
  }
  if (!ok) return VFReportError(kTableErrorProcessFailed, "VCUTableProcessor::Process", nullptr, 1);
  return true;
}

bool VCUTableProcessor::BuildRowMap() {
  static constexpr const char* kLocation = "VCUTableProcessor::Process";
  VCUTableProcessorState& s = *m_state;
  if (!s.rowMapGiven) {
    std::vector<int64_t> counts(s.inputs.size());
    int64_t total = 0;
    for (size_t t = 0; t < s.inputs.size(); ++t) {
      if (!s.inputs[t]->GetNumRows(&counts[t])) return false;
      counts[t] = std::max<int64_t>(counts[t], 0);
      if (counts[t] > s.rowLimit - total) return VFReportError(kTableErrorTooManyRows, kLocation);
      total += counts[t];
    }
    s.rowMap.Clear();
    for (size_t t = 0; t < s.inputs.size(); ++t) {
      if (!s.rowMap.Append(static_cast<int32_t>(t), 1, static_cast<int32_t>(counts[t]))) {
        return VFReportError(kTableErrorOutOfMemory, kLocation);
      }
    }
  }
  for (MergedColumn& mc : s.merged) {
    if (mc.writable && !ResetWritable(s, mc, kLocation)) return false;
  }
  return true;
}

// The output rows are the merged rows 1..N; with a filter, only those that
// pass it. The filter is asked about a block of rows at a time, and the
// rows it passes are appended to the list (whose storage is kept from one
// Process to the next).
bool VCUTableProcessor::RunFilter() {
  static constexpr const char* kLocation = "VCUTableProcessor::Process";
  VCUTableProcessorState& s = *m_state;
  const auto count = static_cast<int32_t>(s.rowMap.Size());
  s.outputInOrder = false;
  if (s.filter == nullptr) {
    if (!s.outputRows.SetSize(count)) return VFReportError(kTableErrorOutOfMemory, kLocation);
    int32_t* out = s.outputRows.GetData();
    for (int32_t i = 0; i < count; ++i) out[i] = i + 1;
    s.outputInOrder = true;
    return true;
  }
  s.outputRows.SetSize(0);
  std::vector<int32_t> passed(static_cast<size_t>(std::min<int64_t>(count, kFilterBlock)));
  for (int32_t first = 0; first < count; first += static_cast<int32_t>(kFilterBlock)) {
    const int32_t n = std::min(static_cast<int32_t>(kFilterBlock), count - first);
    int32_t kept = 0;
    if (!s.filter->CheckRange(&s.data, first + 1, n, passed.data(), &kept)) return false;
    for (int32_t k = 0; k < kept; ++k) passed[static_cast<size_t>(k)] += first + 1;
    if (!s.outputRows.Append(passed.data(), kept))
      return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
  return true;
}

bool VCUTableProcessor::RunCompressionsAndSort() {
  VCUTableProcessorState& s = *m_state;
  if (!s.compressions.empty() || s.sort != nullptr) s.outputInOrder = false;
  for (VCUTableCompress* compress : s.compressions) {
    if (!compress->DoCompress(&s.data, s.outputRows)) return false;
  }
  return s.sort == nullptr || s.sort->DoSort(&s.data, s.outputRows);
}

VCUTable* VCUTableProcessor::GetOutputTable() {
  return &m_state->output;
}

VCUTableData* VCUTableProcessor::GetInputData() {
  return &m_state->data;
}
