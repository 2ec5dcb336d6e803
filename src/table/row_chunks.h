// Reading the cells of a list of row numbers in blocks.
//
// The sort and the compression read their columns for an array of row
// numbers that is mostly made of runs of consecutive rows (whole tables,
// filtered tables). Each run, cut into chunks of at most `maxChunk` rows, is
// read with one block read of the table instead of one read per row.
#pragma once

#include <cstdint>

namespace utilkit::table {

// Calls visit(firstRow, count, at) for each run of consecutive row numbers
// in rows[begin, end), at most `maxChunk` long, `at` being the run's
// position in `rows`. Stops and returns false as soon as visit does.
template <class Visit>
bool ForEachRowRun(const int32_t* rows, int64_t begin, int64_t end, int64_t maxChunk,
                   Visit&& visit) {
  for (int64_t i = begin; i < end;) {
    int64_t j = i + 1;
    while (j < end && j - i < maxChunk && rows[j] == rows[j - 1] + 1) ++j;
    if (!visit(static_cast<int64_t>(rows[i]), j - i, i)) return false;
    i = j;
  }
  return true;
}

}  // namespace utilkit::table
