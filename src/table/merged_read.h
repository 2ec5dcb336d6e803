// Reading merged rows from the input tables, run by run.
//
// The merged view and the output view both read cells of a merged column
// for a range of merged rows. Each run of the row map is read with one call
// of the input table's reader; a run whose block read fails is read again
// cell by cell (after taking its errors back), so that callers see exactly
// the result and the error of a cell-by-cell read.
#pragma once

#include <utilkit/table/table_errors.h>

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/prefetch.h"
#include "table/error_mark.h"
#include "table/processor_state.h"

namespace utilkit::table {

// Texts are read through a scratch array in chunks of this many rows.
inline constexpr int64_t kTextChunk = 4096;

// Cells of a numeric type (or status words, type None), read with `Reader`.
template <class T, bool (VCUTable::*Reader)(int32_t, int64_t, int64_t, T*), VTTableDataType Type>
struct NumericCells {
  using Cell = T;
  T* out;
  // The type whose peeked arrays hold these cells (None: none do).
  VTTableDataType PeekType() const { return Type; }
  size_t CellBytes() const { return sizeof(T); }
  void Put(int64_t at, const void* cells, int64_t index, const VCUDictionary*) const {
    out[at] = static_cast<const T*>(cells)[index];
  }
  bool Read(VCUTable& t, int32_t col, int64_t row, int64_t count, int64_t at,
            VCStringArray&) const {
    return (t.*Reader)(col, row, count, out + at);
  }
  void Fill(int64_t at, int64_t count, T value = T{}) const { std::fill_n(out + at, count, value); }
};

using CellsS = NumericCells<int16_t, &VCUTable::GetValues_S, VTTableDataType::Short>;
using CellsL = NumericCells<int32_t, &VCUTable::GetValues_L, VTTableDataType::Long>;
using CellsH = NumericCells<int64_t, &VCUTable::GetValues_H, VTTableDataType::Huge>;
using CellsF = NumericCells<float, &VCUTable::GetValues_F, VTTableDataType::Float>;
using CellsD = NumericCells<double, &VCUTable::GetValues_D, VTTableDataType::Double>;
using CellsStatus = NumericCells<uint16_t, &VCUTable::GetStatusValues, VTTableDataType::None>;

// Texts, and Enum codes with their names when `names` is not null.
// `codes` null means a text read.
struct TextOrEnumCells {
  VCString* names;
  int32_t* codes;
  bool Read(VCUTable& t, int32_t col, int64_t row, int64_t count, int64_t at,
            VCStringArray& scratch) const {
    for (int64_t done = 0; done < count; done += kTextChunk) {
      const int64_t n = std::min(kTextChunk, count - done);
      const bool ok =
          codes ? t.GetValues_E(col, row + done, n, codes + at + done, names ? &scratch : nullptr)
                : t.GetValues_T(col, row + done, n, &scratch);
      if (!ok) return false;
      if (names == nullptr) continue;
      // Swapping keeps the scratch strings' storage for the next chunk.
      for (int64_t i = 0; i < n && i < scratch.GetSize(); ++i) {
        std::swap(names[at + done + i], scratch[static_cast<int32_t>(i)]);
      }
    }
    return true;
  }
  // Texts and bare Enum codes are gathered from peeked arrays; Enum names
  // are not.
  VTTableDataType PeekType() const {
    return codes ? (names ? VTTableDataType::None : VTTableDataType::Enum) : VTTableDataType::Text;
  }
  size_t CellBytes() const { return codes ? sizeof(int32_t) : sizeof(VCUDictionaryRef*); }
  void Put(int64_t at, const void* cells, int64_t index, const VCUDictionary* dictionary) const {
    if (codes) {
      codes[at] = static_cast<const int32_t*>(cells)[index];
    } else {
      names[at] = dictionary->GetString(static_cast<VCUDictionaryRef* const*>(cells)[index]);
    }
  }
  void Fill(int64_t at, int64_t count) const {
    if (codes) std::fill_n(codes + at, count, 0);
    for (int64_t i = 0; names && i < count; ++i) names[at + i].Empty();
  }
};

// Texts as views of the input tables' own texts (VCUTable::PeekTexts); a
// read fails, adding no error record, where an input keeps them otherwise.
struct TextViewCells {
  std::string_view* out;
  VTTableDataType PeekType() const { return VTTableDataType::Text; }
  size_t CellBytes() const { return sizeof(VCUDictionaryRef*); }
  void Put(int64_t at, const void* cells, int64_t index, const VCUDictionary* dictionary) const {
    out[at] = dictionary->GetView(static_cast<VCUDictionaryRef* const*>(cells)[index]);
  }
  bool Read(VCUTable& t, int32_t col, int64_t row, int64_t count, int64_t at,
            VCStringArray&) const {
    return t.PeekTexts(col, row, count, out + at);
  }
  void Fill(int64_t at, int64_t count) const { std::fill_n(out + at, count, std::string_view()); }
};

// Reads `count` rows from input table `table`'s row `row` on into `cells`
// at position `at`.
template <class Cells>
bool ReadRun(VCUTableProcessorState& s, const MergedColumn& mc, const char* location, int32_t table,
             int64_t row, int64_t count, const Cells& cells, int64_t at) {
  if (static_cast<size_t>(table) >= s.inputs.size() || table >= mc.index.GetSize()) {
    return VFReportError(kTableErrorRowNumber, location);
  }
  const int32_t col = mc.index[table];
  if (col < 0) {
    cells.Fill(at, count);
    return true;
  }
  if constexpr (std::is_same_v<Cells, CellsStatus>) {
    if (mc.anyStatus && !mc.hasStatus[table]) {
      cells.Fill(at, count, kTableStatusValid);
      return true;
    }
  }
  VCUTable& input = *s.inputs[static_cast<size_t>(table)];
  const ErrorMark mark;
  if (cells.Read(input, col, row, count, at, s.scratch)) return true;
  if (count == 1) return false;
  mark.Rollback();
  for (int64_t i = 0; i < count; ++i) {
    if (!cells.Read(input, col, row + i, 1, at + i, s.scratch)) return false;
  }
  return true;
}

// kTableErrorRowNumber unless merged rows first..first+count-1 exist (count >= 0).
inline bool CheckMergedRows(const VCUTableProcessorState& s, const char* location, int64_t first,
                            int64_t count) {
  if (first < 1 || count < 0 || count > s.rowMap.Size() - first + 1) {
    return VFReportError(kTableErrorRowNumber, location);
  }
  return true;
}

// Lays the cells written to writable column `mc` over merged rows
// first..first+count-1 read into out[0, count): values when `status` is
// false, status words when it is true.
template <class T>
void PatchWritten(const MergedColumn& mc, int64_t first, int64_t count, T* out, bool status) {
  if (mc.written.empty()) return;
  const int64_t begin = first - 1;
  const int64_t end = begin + count;
  for (int64_t word = begin >> 6; word <= (end - 1) >> 6; ++word) {
    uint64_t bits = mc.writtenBits[static_cast<size_t>(word)];
    while (bits != 0) {
      const int64_t at = (word << 6) + std::countr_zero(bits);
      bits &= bits - 1;
      if (at < begin || at >= end) continue;
      const WrittenCell& cell = mc.written.at(at + 1);
      if (status && cell.hasStatus) out[at - begin] = static_cast<T>(cell.status);
      if (!status && cell.hasValue) out[at - begin] = static_cast<T>(cell.value);
    }
  }
}

// Reads merged rows first..first+count-1 of merged column `col` (an index
// the caller has checked) into `cells` from position `at` on.
template <class Cells>
bool ReadMergedCells(VCUTableProcessorState& s, const char* location, int32_t col, int64_t first,
                     int64_t count, const Cells& cells, int64_t at = 0) {
  if (!CheckMergedRows(s, location, first, count)) return false;
  const MergedColumn& mc = s.merged[static_cast<size_t>(col)];
  const bool ok =
      s.rowMap.ForEachRun(first, count, [&](int32_t table, int64_t row, int64_t n, int64_t off) {
        return ReadRun(s, mc, location, table, row, n, cells, at + off);
      });
  if constexpr (std::is_same_v<Cells, CellsD> || std::is_same_v<Cells, CellsStatus>) {
    if (ok && mc.writable && count > 0) {
      PatchWritten(mc, first, count, cells.out + at, std::is_same_v<Cells, CellsStatus>);
    }
  }
  return ok;
}

// Gathers the merged rows rows[0, count) of merged column `col` (an index
// the caller has checked, rows too) into `cells` from position `at` on,
// straight from the arrays the input tables keep (VCUTable::PeekCells):
// no call and no allocation per cell. False, having written nothing, when
// an input keeps its cells otherwise or the column has written cells; the
// caller then reads as usual.
template <class Cells>
bool GatherMergedCells(VCUTableProcessorState& s, int32_t col, const int32_t* rows, int64_t count,
                       const Cells& cells, int64_t at = 0) {
  const MergedColumn& mc = s.merged[static_cast<size_t>(col)];
  const VTTableDataType type = cells.PeekType();
  if (mc.writable || type == VTTableDataType::None) return false;
  struct Source {
    const void* cells = nullptr;  // null: the table lacks the column
    const VCUDictionary* dictionary = nullptr;
  };
  std::vector<Source> sources(s.inputs.size());
  for (size_t t = 0; t < sources.size(); ++t) {
    const auto table = static_cast<int32_t>(t);
    const int64_t length = s.rowMap.TableRows(table);
    const int32_t c = table < mc.index.GetSize() ? mc.index[table] : -1;
    if (c < 0 || length == 0) continue;
    sources[t].cells = s.inputs[t]->PeekCells(c, type, 1, length, &sources[t].dictionary);
    if (sources[t].cells == nullptr) return false;
  }
  // The run of the row map last found: rows that stay in it (all of them
  // for a single input) are gathered without a search. The cell a few rows
  // on is fetched ahead when it lies in that run too, so that the cache
  // misses of rows in no order overlap.
  constexpr int64_t kAhead = 16;
  const size_t bytes = cells.CellBytes();
  int64_t first = 1, last = 0, offset = 0;
  const Source* source = nullptr;
  for (int64_t i = 0; i < count; ++i) {
    const int64_t row = rows[i];
    if (row < first || row > last) {
      const RowRun& run = s.rowMap.Find(row);
      first = run.mergedFirst;
      last = first + run.count - 1;
      offset = run.tableRow - 1 - first;
      source = &sources[static_cast<size_t>(run.table)];
    }
    if (const int64_t ahead = i + kAhead < count ? rows[i + kAhead] : 0;
        ahead >= first && ahead <= last && source->cells != nullptr) {
      Prefetch(static_cast<const char*>(source->cells) +
               static_cast<size_t>(offset + ahead) * bytes);
    }
    if (source->cells == nullptr) {
      cells.Fill(at + i, 1);
    } else {
      cells.Put(at + i, source->cells, offset + row, source->dictionary);
    }
  }
  return true;
}

// Makes merged column `mc` writable with no cell written yet (forgetting
// any written before). Fails only when memory runs out.
bool ResetWritable(VCUTableProcessorState& s, MergedColumn& mc, const char* location);

}  // namespace utilkit::table
