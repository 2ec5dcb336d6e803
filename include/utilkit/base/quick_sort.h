// VFQuickSortWithPtr: in-place sort of a C array with a context-aware comparison.
//
// Like qsort, but the comparison receives a caller's context pointer, so it
// can reach loaded column values or other state without globals:
//
//   int CompareRows(const void* a, const void* b, void* context) {
//     const Values* v = static_cast<const Values*>(context);
//     int32_t ra = *static_cast<const int32_t*>(a), rb = *static_cast<const int32_t*>(b);
//     return v->at[ra] < v->at[rb] ? -1 : (v->at[rb] < v->at[ra] ? 1 : 0);
//   }
//   VFQuickSortWithPtr(rows, count, sizeof(int32_t), CompareRows, &values);
//
// The algorithm is an introsort (median-of-three quicksort that falls back to
// heapsort when partitions go bad, insertion sort for short ranges): at most
// O(n log n) comparisons for any input, including sorted, reversed and
// all-equal arrays, and no recursion deeper than O(log n). It is not stable:
// callers that need the input order of equal elements kept make the
// comparison break ties (for example by comparing positions).
//
// A comparison that is not a consistent ordering (for example one that calls
// NaN equal to everything) gives an unspecified order, but the sort still
// ends and never touches memory outside the array.
//
// Ownership: the sort only moves the caller's bytes; it allocates nothing.
#pragma once

#include <cstddef>

#include <utilkit/base/export.h>

// Three-way comparison: negative when `a` goes before `b`, 0 when they are
// equivalent, positive when `a` goes after `b`.
using VTQuickSortCompare = int (*)(const void* a, const void* b, void* context);

// Sorts `count` elements of `elementSize` bytes at `base` ascending by
// `compare`, which gets `context` as its third argument. Fewer than two
// elements: nothing to do (`base` may then be null). Otherwise a null `base`
// or `compare`, or `elementSize` 0, is a programmer error: asserts in debug
// builds, does nothing in release builds.
UTILKIT_API void VFQuickSortWithPtr(void* base, size_t count, size_t elementSize,
                                    VTQuickSortCompare compare, void* context);
