#include <utilkit/base/quick_sort.h>

#include <cassert>
#include <cstring>

namespace {

// Ranges this short are finished by insertion sort.
constexpr size_t kInsertionLimit = 16;

// Element access for elements of a size known at compile time (N > 0), or
// given at run time (N == 0). Every index stays below the caller's count.
template <size_t N>
class Elements {
 public:
  Elements(void* base, size_t size, VTQuickSortCompare compare, void* context)
      : m_base(static_cast<unsigned char*>(base)),
        m_size(N ? N : size),
        m_compare(compare),
        m_context(context) {}

  int Compare(size_t i, size_t j) const { return m_compare(At(i), At(j), m_context); }

  void Swap(size_t i, size_t j) const {
    if (N) {
      unsigned char t[N ? N : 1];
      std::memcpy(t, At(i), N);
      std::memcpy(At(i), At(j), N);
      std::memcpy(At(j), t, N);
      return;
    }
    unsigned char* a = At(i);
    unsigned char* b = At(j);
    for (size_t left = m_size; left > 0;) {
      unsigned char t[64];
      const size_t n = left < sizeof t ? left : sizeof t;
      std::memcpy(t, a, n);
      std::memcpy(a, b, n);
      std::memcpy(b, t, n);
      a += n;
      b += n;
      left -= n;
    }
  }

 private:
  unsigned char* At(size_t i) const { return m_base + i * (N ? N : m_size); }

  unsigned char* m_base;
  size_t m_size;
  VTQuickSortCompare m_compare;
  void* m_context;
};

template <class E>
void InsertionSort(const E& e, size_t lo, size_t hi) {
  for (size_t i = lo + 1; i < hi; ++i) {
    for (size_t j = i; j > lo && e.Compare(j - 1, j) > 0; --j) e.Swap(j - 1, j);
  }
}

// Restores the max-heap rooted at `root` of the heap [lo, lo + n).
template <class E>
void SiftDown(const E& e, size_t lo, size_t root, size_t n) {
  for (;;) {
    size_t child = 2 * root + 1;
    if (child >= n) return;
    if (child + 1 < n && e.Compare(lo + child, lo + child + 1) < 0) ++child;
    if (e.Compare(lo + root, lo + child) >= 0) return;
    e.Swap(lo + root, lo + child);
    root = child;
  }
}

template <class E>
void HeapSort(const E& e, size_t lo, size_t hi) {
  const size_t n = hi - lo;
  for (size_t root = n / 2; root-- > 0;) SiftDown(e, lo, root, n);
  for (size_t end = n - 1; end > 0; --end) {
    e.Swap(lo, lo + end);
    SiftDown(e, lo, 0, end);
  }
}

// Partitions [lo, hi) (at least 3 elements) around the median of its first,
// middle and last elements; returns the pivot's final index. Both scans stop
// at elements equal to the pivot, so runs of equal elements split evenly.
template <class E>
size_t Partition(const E& e, size_t lo, size_t hi) {
  const size_t mid = lo + (hi - lo) / 2;
  if (e.Compare(mid, lo) < 0) e.Swap(mid, lo);
  if (e.Compare(hi - 1, mid) < 0) {
    e.Swap(hi - 1, mid);
    if (e.Compare(mid, lo) < 0) e.Swap(mid, lo);
  }
  e.Swap(lo, mid);  // the pivot waits at lo
  size_t i = lo + 1;
  size_t j = hi - 1;
  for (;;) {
    while (i <= j && e.Compare(i, lo) < 0) ++i;
    while (i <= j && e.Compare(j, lo) > 0) --j;
    if (i >= j) break;
    e.Swap(i++, j--);
  }
  e.Swap(lo, j);
  return j;
}

template <class E>
void IntroSort(const E& e, size_t lo, size_t hi, int depthLeft) {
  while (hi - lo > kInsertionLimit) {
    if (depthLeft-- == 0) {
      HeapSort(e, lo, hi);
      return;
    }
    const size_t p = Partition(e, lo, hi);
    // Recurse into the smaller side, loop on the larger one.
    if (p - lo < hi - p - 1) {
      IntroSort(e, lo, p, depthLeft);
      lo = p + 1;
    } else {
      IntroSort(e, p + 1, hi, depthLeft);
      hi = p;
    }
  }
  InsertionSort(e, lo, hi);
}

template <size_t N>
void Sort(void* base, size_t count, size_t elementSize, VTQuickSortCompare compare, void* context) {
  int depth = 0;
  for (size_t n = count; n > 1; n >>= 1) depth += 2;
  IntroSort(Elements<N>(base, elementSize, compare, context), 0, count, depth);
}

}  // namespace

void VFQuickSortWithPtr(void* base, size_t count, size_t elementSize, VTQuickSortCompare compare,
                        void* context) {
  if (count < 2) return;
  assert(base && compare && elementSize > 0);
  if (!base || !compare || elementSize == 0) return;
  switch (elementSize) {
    case 4:
      return Sort<4>(base, count, elementSize, compare, context);
    case 8:
      return Sort<8>(base, count, elementSize, compare, context);
    case 16:
      return Sort<16>(base, count, elementSize, compare, context);
    default:
      return Sort<0>(base, count, elementSize, compare, context);
  }
}
