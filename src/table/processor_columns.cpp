// The table processor's merged columns: which columns take part, and where
// each input table keeps them.
#include <string>
#include <unordered_map>
#include <unordered_set>

#include <utilkit/base/error_stack.h>
#include <utilkit/table/table_errors.h>
#include <utilkit/table/table_processor.h>

#include "table/processor_state.h"

using namespace utilkit::table;

namespace {

std::string UpperKey(const char* keyword) {
  VCString key(keyword);
  return key.MakeUpper().c_str();  // up to a NUL, as CompareNoCase compares
}

// Like VCUTable::GetColIndexFromKeyword, but a missing keyword is an answer
// (index -1), not an error. Fails only when the table cannot be read. Uses
// `index` (one input's keyword index) when it is given.
bool FindColumn(VCUTable& table, const char* keyword, int32_t* index,
                const std::unordered_map<std::string, int32_t>* keywordIndex = nullptr) {
  *index = -1;
  if (keywordIndex != nullptr) {
    const auto found = keywordIndex->find(UpperKey(keyword));
    if (found != keywordIndex->end()) *index = found->second;
    return true;
  }
  int32_t count = 0;
  if (!table.GetNumCols(&count)) return false;
  VCString name;
  for (int32_t col = 0; col < count; ++col) {
    if (!table.GetColKeyword(col, &name)) return false;
    if (name.CompareNoCase(keyword) == 0) {
      *index = col;
      return true;
    }
  }
  return true;
}

// Common-columns mode: the first table's columns that every other table
// has with the same type.
bool CollectCommon(const std::vector<VCUTable*>& inputs,
                   const std::vector<std::unordered_map<std::string, int32_t>>& index,
                   VCArray<VCString>* keywords, VCArray<VTTableDataType>* types) {
  VCUTable& first = *inputs.front();
  int32_t count = 0;
  if (!first.GetNumCols(&count)) return false;
  VCString keyword;
  for (int32_t col = 0; col < count; ++col) {
    VTTableDataType type = VTTableDataType::None;
    if (!first.GetColKeyword(col, &keyword) || !first.GetColType(col, &type)) return false;
    bool everywhere = true;
    for (size_t t = 1; everywhere && t < inputs.size(); ++t) {
      int32_t found = -1;
      VTTableDataType other = VTTableDataType::None;
      if (!FindColumn(*inputs[t], keyword, &found, index.empty() ? nullptr : &index[t])) {
        return false;
      }
      if (found >= 0 && !inputs[t]->GetColType(found, &other)) return false;
      everywhere = found >= 0 && other == type;
    }
    if (everywhere && (keywords->Add(keyword) < 0 || types->Add(type) < 0)) return false;
  }
  return true;
}

// All-columns mode: every keyword of every table, at its first place.
bool CollectAll(const std::vector<VCUTable*>& inputs, VCArray<VCString>* keywords,
                VCArray<VTTableDataType>* types) {
  std::unordered_set<std::string> seen;
  VCString keyword;
  for (VCUTable* table : inputs) {
    int32_t count = 0;
    if (!table->GetNumCols(&count)) return false;
    for (int32_t col = 0; col < count; ++col) {
      VTTableDataType type = VTTableDataType::None;
      if (!table->GetColKeyword(col, &keyword) || !table->GetColType(col, &type)) return false;
      VCString key(keyword);
      if (!seen.insert(key.MakeUpper().str()).second) continue;
      if (keywords->Add(keyword) < 0 || types->Add(type) < 0) return false;
    }
  }
  return true;
}

}  // namespace

bool VCUTableProcessor::CollectColumns(VCArray<VCString>* keywords,
                                       VCArray<VTTableDataType>* types) {
  const std::vector<VCUTable*>& inputs = m_state->inputs;
  if (inputs.empty()) return true;
  const size_t records = VFErrorGetCount();
  const bool ok = m_state->commonColumns
                      ? CollectCommon(inputs, m_state->keywordIndex, keywords, types)
                      : CollectAll(inputs, keywords, types);
  // A failed read has pushed its error; a failed Add has not.
  if (!ok && VFErrorGetCount() == records)
    return VFReportError(kTableErrorOutOfMemory, "VCUTableProcessor::CollectColumns");
  return ok;
}

bool VCUTableProcessor::GetColIndeces(const char* keyword, VCArray<int32_t>* indices,
                                      VCArray<char>* hasStatus, VTTableDataType* type) {
  static constexpr const char* kLocation = "VCUTableProcessor::GetColIndeces";
  const char* wanted = keyword ? keyword : "";
  if (m_state->inputs.empty()) return VFReportError(kTableErrorNoInputTables, kLocation);
  indices->RemoveAll();
  hasStatus->RemoveAll();
  *type = VTTableDataType::None;
  bool found = false;
  const auto& keywordIndex = m_state->keywordIndex;
  for (size_t t = 0; t < m_state->inputs.size(); ++t) {
    VCUTable* table = m_state->inputs[t];
    int32_t index = -1;
    char status = 0;
    if (!keywordIndex.empty()) {
      FindColumn(*table, wanted, &index, &keywordIndex[t]);
      if (index < 0 && m_state->commonColumns) {
        return VFReportError(kTableErrorColumnNotFound, "VCUTable::GetColIndexFromKeyword",
                             wanted);  // as the table says
      }
    } else if (m_state->commonColumns ? !table->GetColIndexFromKeyword(wanted, &index)
                                      : !FindColumn(*table, wanted, &index)) {
      return false;
    }
    if (index >= 0) {
      VTTableDataType colType = VTTableDataType::None;
      if (!table->GetColHasStatus(index, &status) || !table->GetColType(index, &colType)) {
        return false;
      }
      if (found && colType != *type)
        return VFReportError(kTableErrorColumnTypesDiffer, kLocation, wanted);
      *type = colType;
      found = true;
    }
    if (indices->Add(index) < 0 || hasStatus->Add(status) < 0)
      return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
  return found || VFReportError(kTableErrorColumnNotFound, kLocation, wanted);
}

bool VFBuildKeywordIndex(VCUTableProcessorState* state) {
  VCUTableProcessorState& s = *state;
  try {
    s.keywordIndex.assign(s.inputs.size(), {});
    VCString keyword;
    for (size_t t = 0; t < s.inputs.size(); ++t) {
      int32_t count = 0;
      if (!s.inputs[t]->GetNumCols(&count)) return s.keywordIndex.clear(), false;
      s.keywordIndex[t].reserve(static_cast<size_t>(count));
      for (int32_t col = 0; col < count; ++col) {
        if (!s.inputs[t]->GetColKeyword(col, &keyword)) return s.keywordIndex.clear(), false;
        s.keywordIndex[t].emplace(UpperKey(keyword), col);
      }
    }
  } catch (...) {
    s.keywordIndex.clear();
    return VFReportError(kTableErrorOutOfMemory, "VCUTableProcessor::CollectColumns");
  }
  return true;
}
