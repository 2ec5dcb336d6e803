// KeyOrder: the stable order of rows by several columns of 64-bit keys.
//
// The sort reduces each sort column to keys that compare as unsigned
// integers (see column_keys.h) and asks for the order of the positions
// 0..n-1 by the first column, then the second, and so on, equal rows
// keeping their positions' order. KeyOrder refines the order one column at
// a time: it keeps the runs of positions that are equal in every column
// seen so far (a bit per position marks where a run starts) and sorts each
// run by the next column alone. A run whose keys span a small range is
// ordered by counting; a long one by a least significant digit radix sort
// over the bytes that differ; a short one by comparison. Within a run the
// positions are always ascending before it is sorted, so every step is
// stable.
//
//   KeyOrder order;
//   order.Start(n, positions);                   // 0..n-1, one run
//   order.Refine(nameKeys, false, false);        // keys[position]
//   if (!order.Sorted()) order.Refine(timeKeys, true, true);
//
// Only one column's keys are needed at a time, so the caller can load each
// column into one reused buffer. Work memory grows with the longest run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace utilkit::table {

class KeyOrder {
 public:
  // Sets order[0, n) to 0..n-1, all one run. The array stays the caller's.
  // False when memory runs out.
  bool Start(int64_t n, int32_t* order);
  // Sorts every run by keys[position] (largest first when `descending`) and,
  // unless `last`, splits the runs where the keys differ. False when memory
  // runs out (the order is then unspecified).
  bool Refine(const uint64_t* keys, bool descending, bool last);
  // True when no run holds two positions (later columns change nothing).
  bool Sorted() const { return m_runs == 0; }

 private:
  bool SortRun(int64_t begin, int64_t end, const uint64_t* keys, uint64_t flip, bool last);
  bool CountRun(int64_t begin, int64_t length, uint64_t low, uint64_t range, bool last);
  void RadixRun(int64_t length, uint64_t range);
  void MarkStart(int64_t at) { m_starts[static_cast<size_t>(at >> 6)] |= uint64_t{1} << (at & 63); }

  int64_t m_n = 0;
  int32_t* m_order = nullptr;
  int64_t m_runs = 0;              // runs of two or more positions
  std::vector<uint64_t> m_starts;  // bit k: position k of the order starts a run
  // A buffer that grows without initialising its elements.
  template <class T>
  struct Scratch {
    std::unique_ptr<T[]> data;
    int64_t size = 0;
    T* Reserve(int64_t n) {
      if (n > size) {
        data.reset();
        data.reset(new T[static_cast<size_t>(n)]);
        size = n;
      }
      return data.get();
    }
  };

  // Scratch for one run: keys and positions, twice for the radix passes.
  Scratch<uint64_t> m_keys, m_keys2;
  Scratch<int32_t> m_pos, m_pos2;
  std::vector<int64_t> m_counts;
};

}  // namespace utilkit::table
