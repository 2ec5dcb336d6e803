#include <utilkit/table/output_table.h>

#include <algorithm>

#include "table/merged_read.h"

using namespace utilkit::table;

namespace {

// The merged column shown by output column `col`, or -1 after -655974.
int32_t MergedOf(const VCUTableProcessorState& s, int32_t col, const char* location) {
  const int32_t merged = col >= 0 && static_cast<size_t>(col) < s.outputCols.size()
                             ? s.outputCols[static_cast<size_t>(col)].merged
                             : -1;
  if (merged < 0 || static_cast<size_t>(merged) >= s.merged.size()) {
    Fail(-655974, location);
    return -1;
  }
  return merged;
}

// Output rows tested at a time for being consecutive merged rows.
constexpr int64_t kChunk = 65536;

// The number of consecutive merged rows from rows[0] on, at most `limit`.
int64_t ConsecutiveRun(const int32_t* rows, int64_t limit) {
  if (int64_t{rows[limit - 1]} - rows[0] == limit - 1) {
    int64_t gaps = 0;  // one pass without branches for the common case
    for (int64_t k = 0; k < limit; ++k) gaps |= rows[k] ^ (int64_t{rows[0]} + k);
    if (gaps == 0) return limit;
  }
  int64_t n = 1;
  while (n < limit && rows[n] == rows[n - 1] + 1) ++n;
  return n;
}

// -655975 unless output rows first..first+count-1 exist (count >= 0).
bool CheckOutputRows(const VCUTableProcessorState& s, const char* location, int64_t first,
                     int64_t count) {
  if (first < 1 || count < 0 || count > s.outputRows.GetSize() - first + 1) {
    return Fail(-655975, location);
  }
  return true;
}

// Reads output rows first..first+count-1 of output column `col`: each run
// of output rows holding consecutive merged rows is one merged read.
template <class Cells>
bool Read(VCUTableProcessorState& s, const char* location, int32_t col, int64_t first,
          int64_t count, const Cells& cells) {
  const int32_t merged = MergedOf(s, col, location);
  if (merged < 0 || !CheckOutputRows(s, location, first, count)) return false;
  const int32_t* rows = s.outputRows.GetData() + (first - 1);
  for (int64_t i = 0; i < count;) {
    const int64_t n = ConsecutiveRun(rows + i, std::min(count - i, kChunk));
    if (!ReadMergedCells(s, location, merged, rows[i], n, cells, i)) return false;
    i += n;
  }
  return true;
}

// Texts or Enum names into an array resized to `count` once the checks pass.
bool ReadIntoArray(VCUTableProcessorState& s, const char* location, int32_t col, int64_t first,
                   int64_t count, int32_t* codes, VCStringArray* names) {
  if (MergedOf(s, col, location) < 0 || !CheckOutputRows(s, location, first, count)) return false;
  try {
    if (names && !names->SetSize(static_cast<int32_t>(count), 10)) return FailMemory(location);
    return Read(s, location, col, first, count,
                TextOrEnumCells{names ? names->GetData() : nullptr, codes});
  } catch (...) {
    return FailMemory(location);
  }
}

}  // namespace

VCUOutputTable::~VCUOutputTable() = default;

bool VCUOutputTable::GetTableName(VCString* name) {
  *name = "Output";
  return true;
}

bool VCUOutputTable::GetNumCols(int32_t* count) {
  *count = static_cast<int32_t>(m_state->outputCols.size());
  return true;
}

bool VCUOutputTable::GetNumRows(int64_t* count) {
  *count = m_state->outputRows.GetSize();
  return true;
}

bool VCUOutputTable::GetColKeyword(int32_t col, VCString* keyword) {
  const int32_t m = MergedOf(*m_state, col, "VCUOutputTable::GetColKeyword");
  return m >= 0 && m_state->data.GetColKeyword(m, keyword);
}

bool VCUOutputTable::GetColDescription(int32_t col, VCString* description) {
  const int32_t m = MergedOf(*m_state, col, "VCUOutputTable::GetColDescription");
  return m >= 0 && m_state->data.GetColDescription(m, description);
}

bool VCUOutputTable::GetColUnits(int32_t col, VCString* units) {
  const int32_t m = MergedOf(*m_state, col, "VCUOutputTable::GetColUnits");
  return m >= 0 && m_state->data.GetColUnits(m, units);
}

bool VCUOutputTable::GetColType(int32_t col, VTTableDataType* type) {
  const int32_t m = MergedOf(*m_state, col, "VCUOutputTable::GetColType");
  return m >= 0 && m_state->data.GetColType(m, type);
}

bool VCUOutputTable::GetColHasStatus(int32_t col, char* hasStatus) {
  const int32_t m = MergedOf(*m_state, col, "VCUOutputTable::GetColHasStatus");
  return m >= 0 && m_state->data.GetColHasStatus(m, hasStatus);
}

bool VCUOutputTable::GetStatusColBitText(int32_t col, VCStringArray* texts) {
  const int32_t m = MergedOf(*m_state, col, "VCUOutputTable::GetStatusColBitText");
  return m >= 0 && m_state->data.GetStatusColBitText(m, texts);
}

bool VCUOutputTable::GetEnumColOptions(int32_t col, VCArrayWithSort<int32_t>* codes,
                                       VCStringArray* names) {
  const int32_t m = MergedOf(*m_state, col, "VCUOutputTable::GetEnumColOptions");
  return m >= 0 && m_state->data.GetEnumColOptions(m, codes, names);
}

bool VCUOutputTable::GetValues_S(int32_t col, int64_t first, int64_t count, int16_t* out) {
  return Read(*m_state, "VCUOutputTable::GetValues_S", col, first, count, CellsS{out});
}
bool VCUOutputTable::GetValues_L(int32_t col, int64_t first, int64_t count, int32_t* out) {
  return Read(*m_state, "VCUOutputTable::GetValues_L", col, first, count, CellsL{out});
}
bool VCUOutputTable::GetValues_H(int32_t col, int64_t first, int64_t count, int64_t* out) {
  return Read(*m_state, "VCUOutputTable::GetValues_H", col, first, count, CellsH{out});
}
bool VCUOutputTable::GetValues_F(int32_t col, int64_t first, int64_t count, float* out) {
  return Read(*m_state, "VCUOutputTable::GetValues_F", col, first, count, CellsF{out});
}
bool VCUOutputTable::GetValues_D(int32_t col, int64_t first, int64_t count, double* out) {
  return Read(*m_state, "VCUOutputTable::GetValues_D", col, first, count, CellsD{out});
}
bool VCUOutputTable::GetStatusValues(int32_t col, int64_t first, int64_t count, uint16_t* out) {
  return Read(*m_state, "VCUOutputTable::GetStatusValues", col, first, count, CellsStatus{out});
}

bool VCUOutputTable::GetValues_T(int32_t col, int64_t first, int64_t count, VCString* out) {
  static constexpr const char* kLocation = "VCUOutputTable::GetValues_T";
  try {
    return Read(*m_state, kLocation, col, first, count, TextOrEnumCells{out, nullptr});
  } catch (...) {
    return FailMemory(kLocation);
  }
}

bool VCUOutputTable::GetValues_T(int32_t col, int64_t first, int64_t count, VCStringArray* out) {
  return ReadIntoArray(*m_state, "VCUOutputTable::GetValues_T", col, first, count, nullptr, out);
}

bool VCUOutputTable::GetValues_E(int32_t col, int64_t first, int64_t count, int32_t* codes,
                                 VCStringArray* names) {
  return ReadIntoArray(*m_state, "VCUOutputTable::GetValues_E", col, first, count, codes, names);
}

bool VCUOutputTable::GetInputTableIndexForRow(int64_t row, int32_t* index) {
  static constexpr const char* kLocation = "VCUOutputTable::GetInputTableIndexForRow";
  if (!CheckOutputRows(*m_state, kLocation, row, 1)) return false;
  const int32_t merged = m_state->outputRows[static_cast<int32_t>(row - 1)];
  if (!CheckMergedRows(*m_state, kLocation, merged, 1)) return false;
  *index = m_state->rowMap.Find(merged).table;
  return true;
}
