// VCDataArray<T>: a flat array of plain values (numbers, positions, handles).
//
// A VCArray restricted to trivially copyable element types, so that its
// storage can be filled, copied and handed to C-style code as one block
// (memcpy, VFQuickSortWithPtr). The table sort and compression keep their
// row lists and work indices in these arrays, reorder them in place through
// GetData and shorten them with SetSize.
//
//   VCDataArray<int32_t> rows;
//   if (!rows.SetSize(n)) { ... out of memory ... }   // n zeros
//   int32_t* p = rows.GetData();
//   for (int32_t k = 0; k < n; ++k) p[k] = k;
//   VFQuickSortWithPtr(p, n, sizeof *p, CompareRows, &context);
//   rows.SetSize(kept);                                  // shrinking keeps the storage
//   rows.RemoveAll();                                    // frees it
//
// Ownership, growth, memory failures and bad indices: as for VCArray<T>
// (see vc_array.h).
#pragma once

#include <type_traits>

#include <utilkit/base/vc_array.h>

template <class T>
class VCDataArray : public VCArray<T> {
  static_assert(std::is_trivially_copyable_v<T>,
                "VCDataArray holds trivially copyable values only");

 public:
  using VCArray<T>::VCArray;
};
