#include "table/row_map.h"

#include <algorithm>
#include <cassert>

namespace utilkit::table {

void RowMap::Clear() {
  std::vector<RowRun>().swap(m_runs);
  m_tableRows.clear();
  m_size = 0;
  m_last = 0;
}

bool RowMap::Append(int32_t table, int32_t tableRow, int32_t count) {
  if (count <= 0) return true;
  try {
    if (m_tableRows.size() <= static_cast<size_t>(table)) {
      m_tableRows.resize(static_cast<size_t>(table) + 1, 0);
    }
  } catch (...) {
    return false;
  }
  int64_t& rows = m_tableRows[static_cast<size_t>(table)];
  const int64_t end = std::max(rows, int64_t{tableRow} + count - 1);
  if (!m_runs.empty()) {
    RowRun& last = m_runs.back();
    if (last.table == table && static_cast<int64_t>(last.tableRow) + last.count == tableRow &&
        last.count <= INT32_MAX - count) {
      last.count += count;
      m_size += count;
      rows = end;
      return true;
    }
  }
  try {
    m_runs.push_back({m_size + 1, table, tableRow, count});
  } catch (...) {
    return false;
  }
  m_size += count;
  rows = end;
  return true;
}

const RowRun& RowMap::Find(int64_t row) const {
  assert(row >= 1 && row <= m_size);
  auto holds = [row](const RowRun& run) {
    return run.mergedFirst <= row && row < run.mergedFirst + run.count;
  };
  if (m_last < m_runs.size() && holds(m_runs[m_last])) return m_runs[m_last];
  if (m_last + 1 < m_runs.size() && holds(m_runs[m_last + 1])) return m_runs[++m_last];
  auto after = std::upper_bound(m_runs.begin(), m_runs.end(), row,
                                [](int64_t r, const RowRun& run) { return r < run.mergedFirst; });
  m_last = static_cast<size_t>(after - m_runs.begin()) - 1;
  return m_runs[m_last];
}

}  // namespace utilkit::table
