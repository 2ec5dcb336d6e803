#include <utilkit/table/output_table.h>

#include <algorithm>
#include <type_traits>

#include <utilkit/base/error_stack.h>

#include "table/merged_read.h"
#include "table/row_chunks.h"

using namespace utilkit::table;

namespace {

// Output column `col` once resolved by Validate, or null after kTableErrorColumnIndex.
const OutputColumn* OutputAt(const VCUTableProcessorState& s, int32_t col, const char* location) {
  const OutputColumn* c = col >= 0 && static_cast<size_t>(col) < s.outputCols.size()
                              ? &s.outputCols[static_cast<size_t>(col)]
                              : nullptr;
  if (c == nullptr || !c->resolved ||
      (c->computed == nullptr && static_cast<size_t>(c->merged) >= s.merged.size())) {
    VFReportError(kTableErrorColumnIndex, location);
    return nullptr;
  }
  return c;
}

// A computed column read with a reader of another type, or for a status it
// does not have: the refusal a table gives.
bool Refuse(const char* location, bool status = false) {
  VFErrorSet(kTableErrorRead, status ? kTableTextNoStatus : kTableTextTypeMismatch, location, 0);
  return false;
}

// Output rows read at a time, at most.
constexpr int64_t kChunk = 65536;

// kTableErrorRowNumber unless output rows first..first+count-1 exist (count >= 0).
bool CheckOutputRows(const VCUTableProcessorState& s, const char* location, int64_t first,
                     int64_t count) {
  if (first < 1 || count < 0 || count > s.outputRows.GetSize() - first + 1) {
    return VFReportError(kTableErrorRowNumber, location);
  }
  return true;
}

// Reads output rows first..first+count-1 of computed column `column`
// (whose output rows the caller has checked): values and status words come
// from the merged rows shown, row indices from the output rows' positions.
template <class Cells>
bool ReadComputed(VCUTableProcessorState& s, const char* location, VCUTableNewColumn& column,
                  int64_t first, int64_t count, const Cells& cells) {
  const bool rowIndex = column.GetType() == VTTableDataType::Huge;
  if constexpr (std::is_same_v<Cells, CellsD>) {
    if (rowIndex) return Refuse(location);
    if (s.outputInOrder) return column.CalculateRangeValues_D(&s.data, first, count, cells.out);
    return column.CalculateValues_D(&s.data, s.outputRows.GetData() + (first - 1), count,
                                    cells.out);
  } else if constexpr (std::is_same_v<Cells, CellsH>) {
    if (!rowIndex) return Refuse(location);
    for (int64_t i = 0; i < count; ++i) {
      if (!column.CalculateRowValue_H(&s.data, first - 1 + i, cells.out + i)) return false;
    }
    return true;
  } else if constexpr (std::is_same_v<Cells, CellsStatus>) {
    if (!column.GetHasStatus()) return Refuse(location, true);
    return column.CalculateStatuses(&s.data, s.outputRows.GetData() + (first - 1), count,
                                    cells.out);
  } else {
    return Refuse(location);
  }
}

// Reads output rows first..first+count-1 of output column `col`: each run
// of output rows holding consecutive merged rows is one merged read.
template <class Cells>
bool Read(VCUTableProcessorState& s, const char* location, int32_t col, int64_t first,
          int64_t count, const Cells& cells) {
  const OutputColumn* c = OutputAt(s, col, location);
  if (c == nullptr || !CheckOutputRows(s, location, first, count)) return false;
  if (c->computed) return ReadComputed(s, location, *c->computed, first, count, cells);
  auto read = [&](int64_t row, int64_t n, int64_t at) {
    return ReadMergedCells(s, location, c->merged, row, n, cells, at);
  };
  if (s.outputInOrder) return ForEachChunk(first, count, kChunk, read);
  // Rows that are not one run (sorted, filtered) are gathered when they can be.
  const int32_t* rows = s.outputRows.GetData() + (first - 1);
  if (!RowsAreConsecutive(rows, 0, count) && GatherMergedCells(s, c->merged, rows, count, cells)) {
    return true;
  }
  return ForEachRowRun(rows, 0, count, kChunk, read);
}

// Texts or Enum names into an array resized to `count` once the checks pass.
bool ReadIntoArray(VCUTableProcessorState& s, const char* location, int32_t col, int64_t first,
                   int64_t count, int32_t* codes, VCStringArray* names) {
  const OutputColumn* c = OutputAt(s, col, location);
  if (c == nullptr || !CheckOutputRows(s, location, first, count)) return false;
  if (c->computed) return Refuse(location);
  try {
    if (names && !names->SetSize(static_cast<int32_t>(count), 10))
      return VFReportError(kTableErrorOutOfMemory, location);
    return Read(s, location, col, first, count,
                TextOrEnumCells{names ? names->GetData() : nullptr, codes});
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, location);
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

// Answers a metadata question about output column `col`: `plain` with the
// merged view and the merged column, `computed` with the computed column.
template <class Plain, class Computed>
static bool Describe(VCUTableProcessorState& s, int32_t col, const char* location, Plain&& plain,
                     Computed&& computed) {
  const OutputColumn* c = OutputAt(s, col, location);
  if (c == nullptr) return false;
  return c->computed ? computed(*c->computed) : plain(s.data, c->merged);
}

bool VCUOutputTable::GetColKeyword(int32_t col, VCString* keyword) {
  return Describe(
      *m_state, col, "VCUOutputTable::GetColKeyword",
      [&](VCUTableData& d, int32_t m) { return d.GetColKeyword(m, keyword); },
      [&](VCUTableNewColumn& n) { return (*keyword = n.GetKeyword(), true); });
}

bool VCUOutputTable::GetColDescription(int32_t col, VCString* description) {
  return Describe(
      *m_state, col, "VCUOutputTable::GetColDescription",
      [&](VCUTableData& d, int32_t m) { return d.GetColDescription(m, description); },
      [&](VCUTableNewColumn& n) { return (*description = n.GetDescription(), true); });
}

bool VCUOutputTable::GetColUnits(int32_t col, VCString* units) {
  return Describe(
      *m_state, col, "VCUOutputTable::GetColUnits",
      [&](VCUTableData& d, int32_t m) { return d.GetColUnits(m, units); },
      [&](VCUTableNewColumn& n) { return (*units = n.GetUnits(), true); });
}

bool VCUOutputTable::GetColType(int32_t col, VTTableDataType* type) {
  return Describe(
      *m_state, col, "VCUOutputTable::GetColType",
      [&](VCUTableData& d, int32_t m) { return d.GetColType(m, type); },
      [&](VCUTableNewColumn& n) { return (*type = n.GetType(), true); });
}

bool VCUOutputTable::GetColHasStatus(int32_t col, char* hasStatus) {
  return Describe(
      *m_state, col, "VCUOutputTable::GetColHasStatus",
      [&](VCUTableData& d, int32_t m) { return d.GetColHasStatus(m, hasStatus); },
      [&](VCUTableNewColumn& n) { return (*hasStatus = n.GetHasStatus() ? 1 : 0, true); });
}

bool VCUOutputTable::GetStatusColBitText(int32_t col, VCStringArray* texts) {
  return Describe(
      *m_state, col, "VCUOutputTable::GetStatusColBitText",
      [&](VCUTableData& d, int32_t m) { return d.GetStatusColBitText(m, texts); },
      [&](VCUTableNewColumn& n) {
        if (n.GetHasStatus()) return n.GetStatusColBitText(&m_state->data, texts);
        texts->RemoveAll();
        return true;
      });
}

bool VCUOutputTable::GetEnumColOptions(int32_t col, VCArrayWithSort<int32_t>* codes,
                                       VCStringArray* names) {
  return Describe(
      *m_state, col, "VCUOutputTable::GetEnumColOptions",
      [&](VCUTableData& d, int32_t m) { return d.GetEnumColOptions(m, codes, names); },
      [&](VCUTableNewColumn&) {
        codes->RemoveAll();
        names->RemoveAll();
        return true;
      });
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
    return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
}

bool VCUOutputTable::GetValues_T(int32_t col, int64_t first, int64_t count, VCStringArray* out) {
  return ReadIntoArray(*m_state, "VCUOutputTable::GetValues_T", col, first, count, nullptr, out);
}

bool VCUOutputTable::PeekTexts(int32_t col, int64_t first, int64_t count, std::string_view* out) {
  VCUTableProcessorState& s = *m_state;
  if (col < 0 || static_cast<size_t>(col) >= s.outputCols.size() || first < 1 || count < 1 ||
      count > s.outputRows.GetSize() - first + 1) {
    return false;
  }
  const OutputColumn& c = s.outputCols[static_cast<size_t>(col)];
  if (!c.resolved || c.computed || static_cast<size_t>(c.merged) >= s.merged.size() ||
      s.merged[static_cast<size_t>(c.merged)].type != VTTableDataType::Text) {
    return false;
  }
  return Read(s, "VCUOutputTable::PeekTexts", col, first, count, TextViewCells{out});
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
