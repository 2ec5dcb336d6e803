#include <utilkit/table/table_data.h>

#include "table/merged_read.h"

using namespace utilkit::table;

namespace {

// The merged column `col`, or null after kTableErrorColumnIndex at `location`.
MergedColumn* Column(VCUTableProcessorState& s, int32_t col, const char* location) {
  if (col < 0 || static_cast<size_t>(col) >= s.merged.size()) {
    VFReportError(kTableErrorColumnIndex, location);
    return nullptr;
  }
  return &s.merged[static_cast<size_t>(col)];
}

template <class Cells>
bool Read(VCUTableProcessorState& s, const char* location, int32_t col, int64_t first,
          int64_t count, const Cells& cells) {
  return Column(s, col, location) && ReadMergedCells(s, location, col, first, count, cells);
}

// Texts or Enum names into an array resized to `count` once the checks pass.
bool ReadIntoArray(VCUTableProcessorState& s, const char* location, int32_t col, int64_t first,
                   int64_t count, int32_t* codes, VCStringArray* names) {
  if (!Column(s, col, location) || !CheckMergedRows(s, location, first, count)) return false;
  try {
    if (names && !names->SetSize(static_cast<int32_t>(count), 10))
      return VFReportError(kTableErrorOutOfMemory, location);
    return ReadMergedCells(s, location, col, first, count,
                           TextOrEnumCells{names ? names->GetData() : nullptr, codes});
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, location);
  }
}

// Asks `get` of the first input table that has merged column `col`; a
// column no table has (never the case for a merged column) keeps `out` as is.
template <class Get>
bool FromFirstTable(VCUTableProcessorState& s, int32_t col, const char* location, Get&& get) {
  MergedColumn* mc = Column(s, col, location);
  if (mc == nullptr) return false;
  const int32_t t = mc->FirstTable();
  if (t < 0 || static_cast<size_t>(t) >= s.inputs.size()) return true;
  return get(*s.inputs[static_cast<size_t>(t)], mc->index[t]);
}

}  // namespace

namespace utilkit::table {

bool ResetWritable(VCUTableProcessorState& s, MergedColumn& mc, const char* location) {
  mc.written.clear();
  try {
    mc.writtenBits.assign(static_cast<size_t>((s.rowMap.Size() + 63) / 64), 0);
  } catch (...) {
    mc.writable = false;
    return VFReportError(kTableErrorOutOfMemory, location);
  }
  mc.writable = true;
  return true;
}

}  // namespace utilkit::table

VCUTableData::~VCUTableData() = default;

bool VCUTableData::SetColWritable(int32_t col) {
  static constexpr const char* kLocation = "VCUTableData::SetColWritable";
  MergedColumn* mc = Column(*m_state, col, kLocation);
  if (mc == nullptr) return false;
  if (mc->type != VTTableDataType::Double) return VFReportError(kTableErrorWritableType, kLocation);
  return mc->writable || ResetWritable(*m_state, *mc, kLocation);
}

bool VCUTableData::GetColWritable(int32_t col) const {
  return col >= 0 && static_cast<size_t>(col) < m_state->merged.size() &&
         m_state->merged[static_cast<size_t>(col)].writable;
}

// Records a write to merged row `row` of writable column `col`; `status`
// tells whether a status word is written (the column must have status).
static bool WriteCell(VCUTableProcessorState& s, int32_t col, int64_t row, double value,
                      uint16_t statusWord, bool status, const char* location) {
  MergedColumn* mc = Column(s, col, location);
  if (mc == nullptr) return false;
  if (!mc->writable || (status && !mc->anyStatus))
    return VFReportError(kTableErrorNotWritable, location);
  if (!CheckMergedRows(s, location, row, 1)) return false;
  try {
    WrittenCell& cell = mc->written[row];
    if (status) {
      cell.status = statusWord;
      cell.hasStatus = true;
    } else {
      cell.value = value;
      cell.hasValue = true;
    }
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, location);
  }
  mc->writtenBits[static_cast<size_t>((row - 1) >> 6)] |= uint64_t{1} << ((row - 1) & 63);
  return true;
}

bool VCUTableData::WriteInputColValue(int32_t col, int64_t row, double value) {
  return WriteCell(*m_state, col, row, value, 0, false, "VCUTableData::WriteInputColValue");
}

bool VCUTableData::WriteInputColStatusValue(int32_t col, int64_t row, uint16_t status) {
  return WriteCell(*m_state, col, row, 0, status, true, "VCUTableData::WriteInputColStatusValue");
}

bool VCUTableData::GetTableName(VCString* name) {
  *name = "Input";
  return true;
}

bool VCUTableData::GetNumCols(int32_t* count) {
  *count = static_cast<int32_t>(m_state->merged.size());
  return true;
}

bool VCUTableData::GetNumRows(int64_t* count) {
  *count = m_state->rowMap.Size();
  return true;
}

bool VCUTableData::GetColKeyword(int32_t col, VCString* keyword) {
  MergedColumn* mc = Column(*m_state, col, "VCUTableData::GetColKeyword");
  if (mc != nullptr) *keyword = mc->keyword;
  return mc != nullptr;
}

bool VCUTableData::GetColDescription(int32_t col, VCString* description) {
  return FromFirstTable(
      *m_state, col, "VCUTableData::GetColDescription",
      [&](VCUTable& t, int32_t c) { return t.GetColDescription(c, description); });
}

bool VCUTableData::GetColUnits(int32_t col, VCString* units) {
  return FromFirstTable(*m_state, col, "VCUTableData::GetColUnits",
                        [&](VCUTable& t, int32_t c) { return t.GetColUnits(c, units); });
}

bool VCUTableData::GetColType(int32_t col, VTTableDataType* type) {
  MergedColumn* mc = Column(*m_state, col, "VCUTableData::GetColType");
  if (mc != nullptr) *type = mc->type;
  return mc != nullptr;
}

bool VCUTableData::GetColHasStatus(int32_t col, char* hasStatus) {
  MergedColumn* mc = Column(*m_state, col, "VCUTableData::GetColHasStatus");
  if (mc != nullptr) *hasStatus = mc->anyStatus ? 1 : 0;
  return mc != nullptr;
}

bool VCUTableData::GetStatusColBitText(int32_t col, VCStringArray* texts) {
  return FromFirstTable(*m_state, col, "VCUTableData::GetStatusColBitText",
                        [&](VCUTable& t, int32_t c) { return t.GetStatusColBitText(c, texts); });
}

bool VCUTableData::GetEnumColOptions(int32_t col, VCArrayWithSort<int32_t>* codes,
                                     VCStringArray* names) {
  return FromFirstTable(
      *m_state, col, "VCUTableData::GetEnumColOptions",
      [&](VCUTable& t, int32_t c) { return t.GetEnumColOptions(c, codes, names); });
}

bool VCUTableData::GetValues_S(int32_t col, int64_t first, int64_t count, int16_t* out) {
  return Read(*m_state, "VCUTableData::GetValues_S", col, first, count, CellsS{out});
}
bool VCUTableData::GetValues_L(int32_t col, int64_t first, int64_t count, int32_t* out) {
  return Read(*m_state, "VCUTableData::GetValues_L", col, first, count, CellsL{out});
}
bool VCUTableData::GetValues_H(int32_t col, int64_t first, int64_t count, int64_t* out) {
  return Read(*m_state, "VCUTableData::GetValues_H", col, first, count, CellsH{out});
}
bool VCUTableData::GetValues_F(int32_t col, int64_t first, int64_t count, float* out) {
  return Read(*m_state, "VCUTableData::GetValues_F", col, first, count, CellsF{out});
}
bool VCUTableData::GetValues_D(int32_t col, int64_t first, int64_t count, double* out) {
  return Read(*m_state, "VCUTableData::GetValues_D", col, first, count, CellsD{out});
}
const double* VCUTableData::PeekValues_D(int32_t col, int64_t first, int64_t count) {
  return static_cast<const double*>(PeekCells(col, VTTableDataType::Double, first, count));
}

// One run of one input table's column, with no cell written over it.
const void* VCUTableData::PeekCells(int32_t col, VTTableDataType type, int64_t first, int64_t count,
                                    const VCUDictionary** dictionary) {
  VCUTableProcessorState& s = *m_state;
  if (col < 0 || static_cast<size_t>(col) >= s.merged.size() || first < 1 || count < 1 ||
      count > s.rowMap.Size() - first + 1) {
    return nullptr;
  }
  const MergedColumn& mc = s.merged[static_cast<size_t>(col)];
  if (!mc.written.empty()) return nullptr;
  const void* cells = nullptr;
  s.rowMap.ForEachRun(first, count, [&](int32_t table, int64_t row, int64_t n, int64_t) {
    if (n == count && static_cast<size_t>(table) < s.inputs.size() && table < mc.index.GetSize() &&
        mc.index[table] >= 0) {
      cells = s.inputs[static_cast<size_t>(table)]->PeekCells(mc.index[table], type, row, n,
                                                              dictionary);
    }
    return false;  // one run is all it can use
  });
  return cells;
}

bool VCUTableData::GetStatusValues(int32_t col, int64_t first, int64_t count, uint16_t* out) {
  return Read(*m_state, "VCUTableData::GetStatusValues", col, first, count, CellsStatus{out});
}

bool VCUTableData::GetValues_T(int32_t col, int64_t first, int64_t count, VCString* out) {
  static constexpr const char* kLocation = "VCUTableData::GetValues_T";
  try {
    return Read(*m_state, kLocation, col, first, count, TextOrEnumCells{out, nullptr});
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
}

bool VCUTableData::GetValues_T(int32_t col, int64_t first, int64_t count, VCStringArray* out) {
  return ReadIntoArray(*m_state, "VCUTableData::GetValues_T", col, first, count, nullptr, out);
}

bool VCUTableData::PeekTexts(int32_t col, int64_t first, int64_t count, std::string_view* out) {
  VCUTableProcessorState& s = *m_state;
  if (col < 0 || static_cast<size_t>(col) >= s.merged.size() || first < 1 || count < 1 ||
      count > s.rowMap.Size() - first + 1 ||
      s.merged[static_cast<size_t>(col)].type != VTTableDataType::Text) {
    return false;
  }
  return ReadMergedCells(s, "VCUTableData::PeekTexts", col, first, count, TextViewCells{out});
}

bool VCUTableData::GetValues_E(int32_t col, int64_t first, int64_t count, int32_t* codes,
                               VCStringArray* names) {
  return ReadIntoArray(*m_state, "VCUTableData::GetValues_E", col, first, count, codes, names);
}

bool VCUTableData::GetInputTableIndexForRow(int64_t row, int32_t* index) {
  if (!CheckMergedRows(*m_state, "VCUTableData::GetInputTableIndexForRow", row, 1)) return false;
  *index = m_state->rowMap.Find(row).table;
  return true;
}
