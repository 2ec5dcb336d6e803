// RowMap: the merged rows of the table processor, as runs of consecutive
// rows of one input table.
//
// Merged row m (1-based) is row `tableRow + (m - mergedFirst)` of input table
// `table` for the run holding it. Whole input tables are one run each, and
// selected rows that follow one another in a table share a run, so a read of
// many merged rows costs one lookup and one block read per run, not per row.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace utilkit::table {

struct RowRun {
  int64_t mergedFirst;  // merged number of the run's first row
  int32_t table;        // input table index
  int32_t tableRow;     // the first row's number in that table
  int32_t count;        // rows in the run
};

class RowMap {
 public:
  // Number of merged rows.
  int64_t Size() const { return m_size; }
  // The last row of input table `table` that the map holds (0: none).
  int64_t TableRows(int32_t table) const {
    return table >= 0 && static_cast<size_t>(table) < m_tableRows.size()
               ? m_tableRows[static_cast<size_t>(table)]
               : 0;
  }
  void Clear();

  // Appends `count` rows of `table` from `tableRow` on, joining the last run
  // when they continue it. False when memory runs out (the map is unchanged).
  bool Append(int32_t table, int32_t tableRow, int32_t count);

  // The run holding merged row `row` (1 <= row <= Size()). Consecutive
  // lookups of nearby rows are answered from the last run found.
  const RowRun& Find(int64_t row) const;

  // Calls visit(table, tableRow, count, offset) for each piece of a run that
  // covers merged rows first..first+count-1 (which must exist), offset
  // being the piece's position from `first`. Stops and returns false as
  // soon as visit does.
  template <class Visit>
  bool ForEachRun(int64_t first, int64_t count, Visit&& visit) const {
    if (count <= 0) return true;
    size_t at = static_cast<size_t>(&Find(first) - m_runs.data());
    int64_t done = 0;
    while (done < count) {
      const RowRun& run = m_runs[at++];
      const int64_t skip = first + done - run.mergedFirst;
      const int64_t take = std::min<int64_t>(run.count - skip, count - done);
      if (!visit(run.table, run.tableRow + skip, take, done)) return false;
      done += take;
    }
    return true;
  }

 private:
  std::vector<RowRun> m_runs;
  int64_t m_size = 0;
  std::vector<int64_t> m_tableRows;  // TableRows, by input table
  mutable size_t m_last = 0;         // index of the run found last
};

}  // namespace utilkit::table
