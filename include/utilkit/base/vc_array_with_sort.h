// VCArrayWithSort<T>: an array kept in ascending order.
//
// Used for sets of codes (an Enum column's option codes) that are searched
// by value. Add puts each value at its place in the order and returns that
// place, so a caller can keep a parallel array (the option names) in step:
//
//   VCArrayWithSort<int32_t> codes;
//   VCStringArray names;
//   int32_t at = codes.Add(2);               // or codes.GetInsertPosition(2)
//   if (at >= 0) names.InsertAt(at, "low");
//   int32_t found = codes.Find(2);           // 0; -1 when absent
//
// Equal values are allowed: a new value goes after the equal ones already
// present, so equal values keep the order in which they were added, and Find
// gives the first of them. T needs operator<.
//
// Ownership, growth, memory failures and bad indices: as for VCArray<T>
// (see vc_array.h). Elements are read-only through this interface, so the
// order cannot be broken from outside.
#pragma once

#include <algorithm>
#include <cstdint>

#include <utilkit/base/vc_array.h>

template <class T>
class VCArrayWithSort {
 public:
  // An empty array with growth step `growBy` (values below 1 mean 10).
  explicit VCArrayWithSort(int32_t growBy = VCArray<T>::kDefaultGrowBy) : m_items(growBy) {}

  void SetGrowBy(int32_t growBy) { m_items.SetGrowBy(growBy); }
  int32_t GetSize() const { return m_items.GetSize(); }
  bool IsEmpty() const { return m_items.IsEmpty(); }

  // Inserts `value` after any equal values; returns its index, or -1 when
  // memory runs out (array unchanged).
  int32_t Add(const T& value) {
    const int32_t at = GetInsertPosition(value);
    return m_items.InsertAt(at, value) ? at : -1;
  }

  // The index that Add(value) would give, without inserting.
  int32_t GetInsertPosition(const T& value) const {
    return static_cast<int32_t>(std::upper_bound(begin(), end(), value) - begin());
  }

  // Index of the first element equal to `value` (binary search), or -1.
  int32_t Find(const T& value) const {
    const T* at = std::lower_bound(begin(), end(), value);
    return (at != end() && !(value < *at)) ? static_cast<int32_t>(at - begin()) : -1;
  }

  // The element at `index` (0 <= index < GetSize(); bad indices as in VCArray).
  const T& GetAt(int32_t index) const { return m_items.GetAt(index); }
  const T& operator[](int32_t index) const { return m_items.GetAt(index); }

  // Removes `count` elements from `index` (the order stays intact).
  void RemoveAt(int32_t index, int32_t count = 1) { m_items.RemoveAt(index, count); }
  // Removes every element and frees the storage.
  void RemoveAll() { m_items.RemoveAll(); }

  const T* GetData() const { return m_items.GetData(); }
  const T* begin() const { return m_items.begin(); }
  const T* end() const { return m_items.end(); }

 private:
  VCArray<T> m_items;
};
