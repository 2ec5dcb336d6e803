// Cutting a table to the sections of one channel (VCUSections::GetTableRows).
#include <algorithm>
#include <string>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/sections/sections.h>
#include <utilkit/sections/sections_errors.h>

#include "section_spans.h"

namespace {

constexpr const char* kWhere = "VCUSections::GetTableRows";
// Rows read and scanned at a time.
constexpr int64_t kChunkRows = 1 << 16;

// Reads `n` times of a numeric column from row `first` into `out`.
template <class T>
bool ReadConverted(VCUTable* table, int32_t col, int64_t first, int64_t n, double* out) {
  std::vector<T> raw(static_cast<size_t>(n));
  if (!table->GetValues(col, first, n, raw.data())) return false;
  std::copy(raw.begin(), raw.end(), out);
  return true;
}

bool ReadTimes(VCUTable* table, int32_t col, VTTableDataType type, int64_t first, int64_t n,
               double* out) {
  switch (type) {
    case VTTableDataType::Short:
      return ReadConverted<int16_t>(table, col, first, n, out);
    case VTTableDataType::Long:
      return ReadConverted<int32_t>(table, col, first, n, out);
    case VTTableDataType::Huge:
      return ReadConverted<int64_t>(table, col, first, n, out);
    case VTTableDataType::Float:
      return ReadConverted<float>(table, col, first, n, out);
    default:
      return table->GetValues_D(col, first, n, out);
  }
}

// Checks that `col` is a numeric column of `table`, giving its type.
bool CheckTimeColumn(VCUTable* table, int32_t col, VTTableDataType* type) {
  int32_t cols = 0;
  if (!table->GetNumCols(&cols)) return false;
  if (col >= cols)
    return VFReportError(kSectionsErrorTimeColumn, kWhere, std::to_string(col).c_str());
  if (!table->GetColType(col, type)) return false;
  if (*type >= VTTableDataType::Short && *type <= VTTableDataType::Double) return true;
  VCString keyword;
  if (!table->GetColKeyword(col, &keyword)) return false;
  return VFReportError(kSectionsErrorTimeColumn, kWhere, keyword);
}

bool AppendRows(VCArray<int64_t>* rows, const int64_t* values, size_t count) {
  if (count > static_cast<size_t>(VCArray<int64_t>::kMaxSize) ||
      !rows->Append(values, static_cast<int32_t>(count))) {
    return VFReportError(kSectionsErrorOutOfMemory, kWhere);
  }
  return true;
}

// Point spans: row r is point r - 1.
bool CutByPoints(const std::vector<VCUSectionSpan<int64_t>>& spans, int64_t rowCount,
                 VCArray<int64_t>* rows) {
  std::vector<int64_t> kept;
  for (const VCUSectionSpan<int64_t>& span : spans) {
    const int64_t first = std::max<int64_t>(span.start, 0);
    const int64_t last = std::min(span.end, rowCount - 1);
    for (int64_t point = first; point <= last; ++point) {
      kept.push_back(point + 1);
      if (kept.size() == kChunkRows) {
        if (!AppendRows(rows, kept.data(), kept.size())) return false;
        kept.clear();
      }
    }
  }
  return AppendRows(rows, kept.data(), kept.size());
}

// A walk over times in row order against sorted, disjoint time spans. The
// span index only moves forward while the times ascend; a time below the
// previous one (or NaN) looks its span up again.
class TimeScan {
 public:
  explicit TimeScan(const std::vector<VCUSectionSpan<double>>& spans) {
    for (const VCUSectionSpan<double>& span : spans) {
      m_starts.push_back(span.start);
      m_ends.push_back(span.end);
    }
  }

  // Rows first..first+n-1 with `times`: writes the rows inside a span to
  // `out` when kWrite, and returns how many there are.
  template <bool kWrite>
  size_t Run(const double* times, int64_t n, int64_t first, int64_t* out) {
    const double* starts = m_starts.data();
    const double* ends = m_ends.data();
    const size_t spans = m_ends.size();
    size_t k = m_k, count = 0;
    double previous = m_previous;
    for (int64_t i = 0; i < n; ++i) {
      const double time = times[i];
      if (!(time >= previous))
        k = static_cast<size_t>(std::lower_bound(ends, ends + spans, time) - ends);
      previous = time;
      while (k < spans && ends[k] < time) ++k;
      const bool inside = k < spans && starts[k] <= time;
      if constexpr (kWrite) {
        if (inside) out[count] = first + i;
      }
      count += inside;
    }
    m_k = k;
    m_previous = previous;
    return count;
  }

 private:
  std::vector<double> m_starts, m_ends;
  size_t m_k = 0;
  double m_previous = 0.0;
};

// Time spans against the times of column `col`. A Double column the table
// lends as one array is scanned twice (count, then fill the rows sized
// once); other columns are read and scanned one chunk at a time.
bool CutByTime(const std::vector<VCUSectionSpan<double>>& spans, VCUTable* table, int32_t col,
               VTTableDataType type, int64_t rowCount, VCArray<int64_t>* rows) {
  const double* peeked =
      type == VTTableDataType::Double ? table->PeekValues_D(col, 1, rowCount) : nullptr;
  if (peeked != nullptr) {
    const size_t count = TimeScan(spans).Run<false>(peeked, rowCount, 1, nullptr);
    if (count > static_cast<size_t>(VCArray<int64_t>::kMaxSize) ||
        !rows->SetSize(static_cast<int32_t>(count))) {
      return VFReportError(kSectionsErrorOutOfMemory, kWhere);
    }
    TimeScan(spans).Run<true>(peeked, rowCount, 1, rows->GetData());
    return true;
  }
  TimeScan scan(spans);
  std::vector<double> times(static_cast<size_t>(std::min(rowCount, kChunkRows)));
  std::vector<int64_t> kept(times.size());
  for (int64_t first = 1; first <= rowCount; first += kChunkRows) {
    const int64_t n = std::min(kChunkRows, rowCount - first + 1);
    if (!ReadTimes(table, col, type, first, n, times.data())) return false;
    if (!AppendRows(rows, kept.data(), scan.Run<true>(times.data(), n, first, kept.data()))) {
      return false;
    }
  }
  return true;
}

// The merged spans of `channel`, reporting one with start > end.
template <class T>
bool ChannelSpans(const VCArray<VCUSections::Item>& items, int32_t channel, VTSectionUnits units,
                  std::vector<VCUSectionSpan<T>>* spans) {
  for (int32_t i = 0; i < items.GetSize(); ++i) {
    if (items[i].channel != channel) continue;
    const VCUSectionSpan<T> span = VFSectionSpan(items[i], T{});
    if (!(span.start <= span.end)) {
      return VFReportSection(kSectionsErrorStartAfterEnd, kWhere, items[i], i, units);
    }
    spans->push_back(span);
  }
  VFMergeSectionSpans(spans);
  return true;
}

}  // namespace

bool VCUSections::GetTableRows(VCUTable* table, int32_t channel, int32_t timeColumn,
                               VCArray<int64_t>* rows) const {
  rows->RemoveAll();
  const bool time = m_units == VTSectionUnits::Time;
  if (time ? timeColumn < 0 : timeColumn != -1) {
    return VFReportError(kSectionsErrorUnits, kWhere,
                         time ? "time, without a time column" : "points, with a time column");
  }
  VTTableDataType type = VTTableDataType::None;
  int64_t rowCount = 0;
  if ((time && !CheckTimeColumn(table, timeColumn, &type)) || !table->GetNumRows(&rowCount)) {
    return false;
  }
  try {
    bool ok = false;
    if (time) {
      std::vector<VCUSectionSpan<double>> spans;
      ok = ChannelSpans(m_items, channel, m_units, &spans) &&
           CutByTime(spans, table, timeColumn, type, rowCount, rows);
    } else {
      std::vector<VCUSectionSpan<int64_t>> spans;
      ok = ChannelSpans(m_items, channel, m_units, &spans) && CutByPoints(spans, rowCount, rows);
    }
    if (!ok) rows->RemoveAll();
    return ok;
  } catch (...) {
    rows->RemoveAll();
    return VFReportError(kSectionsErrorOutOfMemory, kWhere);
  }
}
