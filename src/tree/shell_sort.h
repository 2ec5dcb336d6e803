// The Shell sort that orders tree children: Knuth's gaps (1, 4, 13, 40, ...,
// the largest not above the count first, each next one a third of it) with
// a gapped insertion pass per gap. It is not stable, and hosts see the exact
// order it gives, so both category and data sorting go through this one copy.
#pragma once

#include <cstdint>
#include <utility>

// Sorts `items[0, count)`. `movesPast(neighbour, element)` says whether
// `element` moves down past `neighbour` (the one a gap below it).
template <class T, class MovesPast>
void ShellSortTreeItems(T* items, int64_t count, MovesPast movesPast) {
  int64_t gap = 1;
  while (gap <= count) gap = 3 * gap + 1;
  while ((gap /= 3) >= 1) {
    for (int64_t i = gap; i < count; ++i) {
      T element = std::move(items[i]);
      int64_t j = i;
      while (j >= gap && movesPast(items[j - gap], element)) {
        items[j] = std::move(items[j - gap]);
        j -= gap;
      }
      items[j] = std::move(element);
    }
  }
}
