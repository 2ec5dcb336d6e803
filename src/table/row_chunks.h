// Reading the cells of a list of row numbers in blocks.
//
// The sort and the compression read their columns for an array of row
// numbers that is mostly made of runs of consecutive rows (whole tables,
// filtered tables). Each run, cut into chunks of at most `maxChunk` rows, is
// read with one block read of the table instead of one read per row.
#pragma once

#include <algorithm>
#include <cstdint>

namespace utilkit::table {

// Whether rows[begin, end) are consecutive row numbers. Written as one
// pass without early exit, so that the compiler can vectorise it.
inline bool RowsAreConsecutive(const int32_t* rows, int64_t begin, int64_t end) {
  if (end - begin < 2) return true;
  if (int64_t{rows[end - 1]} - rows[begin] != end - 1 - begin) return false;
  uint32_t gaps = 0;
  for (int64_t i = begin + 1; i < end; ++i) {
    gaps |= static_cast<uint32_t>(rows[i]) ^ (static_cast<uint32_t>(rows[i - 1]) + 1);
  }
  return gaps == 0;
}

// Calls visit(firstRow, n, at) for rows first..first+count-1 cut into
// chunks of at most `maxChunk` rows, `at` being the chunk's offset.
template <class Visit>
bool ForEachChunk(int64_t first, int64_t count, int64_t maxChunk, Visit&& visit) {
  for (int64_t at = 0; at < count; at += maxChunk) {
    if (!visit(first + at, std::min(maxChunk, count - at), at)) return false;
  }
  return true;
}

// Calls visit(firstRow, count, at) for each run of consecutive row numbers
// in rows[begin, end), at most `maxChunk` long, `at` being the run's
// position in `rows`. Stops and returns false as soon as visit does. Runs
// are cut at every `maxChunk` rows from `begin`; a window of consecutive
// rows (the common case) is found with one quick pass.
template <class Visit>
bool ForEachRowRun(const int32_t* rows, int64_t begin, int64_t end, int64_t maxChunk,
                   Visit&& visit) {
  for (int64_t window = begin; window < end; window += maxChunk) {
    const int64_t limit = end - window > maxChunk ? window + maxChunk : end;
    if (RowsAreConsecutive(rows, window, limit)) {
      if (!visit(static_cast<int64_t>(rows[window]), limit - window, window)) return false;
      continue;
    }
    for (int64_t i = window; i < limit;) {
      int64_t j = i + 1;
      while (j < limit && rows[j] == rows[j - 1] + 1) ++j;
      if (!visit(static_cast<int64_t>(rows[i]), j - i, i)) return false;
      i = j;
    }
  }
  return true;
}

}  // namespace utilkit::table
