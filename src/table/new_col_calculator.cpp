#include <utilkit/table/new_col_calculator.h>

#include <cstring>
#include <new>

#include <utilkit/table/table_errors.h>

namespace {

constexpr const char* kStatusSuffix = "_status";
constexpr int32_t kSuffixLength = 7;

}  // namespace

VCUNewColCalculator::VCUNewColCalculator() : m_valueCols(10), m_statusCols(10) {}

VCUNewColCalculator::~VCUNewColCalculator() = default;

bool VCUNewColCalculator::GetColumnOfId(int32_t id, int32_t* col, bool* status) const {
  *status = id >= kStatusIdBase;
  const int32_t at = *status ? id - kStatusIdBase : id;
  const VCArray<int32_t>& cols = *status ? m_statusCols : m_valueCols;
  if (at < 0 || at >= cols.GetSize()) return false;
  *col = cols[at];
  return true;
}

bool VCUNewColCalculator::GetVariableValue(int32_t id, double* value) {
  int32_t col = -1;
  bool status = false;
  if (m_table == nullptr || !GetColumnOfId(id, &col, &status)) {
    return VFReportError(kTableErrorColumnIndex, "VCUNewColCalculator::GetVariableValue");
  }
  if (!status) return m_table->GetValues_D(col, m_row, 1, value);
  uint16_t word = 0;
  if (!m_table->GetStatusValues(col, m_row, 1, &word)) return false;
  *value = word;
  return true;
}

bool VCUNewColCalculator::GetVariableId(const char* name, int32_t* id) {
  const size_t length = name ? std::strlen(name) : 0;
  if (length < 3 || name[0] != '#' || name[length - 1] != '#' || m_table == nullptr) return false;
  const VCString text(name + 1, length - 2);
  const bool status = text.GetLength() >= kSuffixLength &&
                      text.Right(kSuffixLength).CompareNoCase(kStatusSuffix) == 0;
  auto& ids = status ? m_statusIds : m_valueIds;
  VCArray<int32_t>& cols = status ? m_statusCols : m_valueCols;
  const int32_t base = status ? kStatusIdBase : 0;
  try {
    VCString upper(text);
    const std::string key = upper.MakeUpper().c_str();  // up to a NUL, as CompareNoCase
    const auto found = ids.find(key);
    if (found != ids.end()) {
      *id = base + found->second;
      return true;
    }
    if (!status && cols.GetSize() >= kStatusIdBase) return false;
    const VCString keyword = status ? text.Left(text.GetLength() - kSuffixLength) : text;
    int32_t col = -1;
    if (!m_table->GetColIndexFromKeyword(keyword, &col)) return false;
    const int32_t at = cols.Add(col);
    if (at < 0) return VFReportError(kTableErrorOutOfMemory, "VCUNewColCalculator::GetVariableId");
    ids.emplace(key, at);
    *id = base + at;
  } catch (const std::bad_alloc&) {
    return VFReportError(kTableErrorOutOfMemory, "VCUNewColCalculator::GetVariableId");
  }
  return true;
}
