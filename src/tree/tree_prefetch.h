// A hint to start loading memory that is about to be read: walks of large
// result trees wait mostly on memory, and the nodes a loop visits next are
// known in advance. No effect where the compiler has no prefetch builtin.
#pragma once

inline void VFTreePrefetch(const void* address) {
#if defined(__GNUC__) || defined(__clang__)
  __builtin_prefetch(address);
#else
  static_cast<void>(address);
#endif
}
