// Prefetch: a hint that brings memory into the cache before it is read.
//
// Reading cells of rows in no order (after a sort, say) or walking the
// nodes of a large tree costs a cache miss a read; asking for what a loop
// reads a few steps ahead lets those misses overlap.
//
//   for (i...) { Prefetch(&cells[rows[i + 16]]); use(cells[rows[i]]); }
#pragma once

#if defined(_MSC_VER) && !defined(__clang__)
#include <xmmintrin.h>
#endif

namespace utilkit {

// Asks the processor to bring `address` into the cache. Only a hint: it
// never faults, even for an address that holds nothing.
inline void Prefetch(const void* address) {
#if defined(_MSC_VER) && !defined(__clang__)
  _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#else
  __builtin_prefetch(address);
#endif
}

}  // namespace utilkit
