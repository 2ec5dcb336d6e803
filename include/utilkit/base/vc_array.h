// VCArray<T>: a growable array of values or pointers.
//
// The general-purpose sequence of the library: elements live in one
// contiguous block, are indexed from 0 and can be walked with range-for.
//
//   VCArray<VCUTreeNodeBase*> children;      // grows in steps of 10
//   int32_t at = children.Add(node);         // index of the new element, -1 if out of memory
//   for (VCUTreeNodeBase* child : children) { ... }
//   children.RemoveAt(0);
//
// Ownership: the array owns its elements. An array of pointers owns the
// pointers only, never what they point to; deleting the pointees is the
// caller's business. Copies are independent (element-wise copies).
//
// Growth: when full, the array adds at least the growth step (10 unless set)
// and at least half its current size, so n calls of Add cost O(n) overall.
// Sizes and indices are 32-bit; the array holds at most INT32_MAX elements.
// Operations that need memory return a failure value (-1 or false) when the
// allocation fails, leaving the array as it was; they never throw.
//
// Index errors are programmer errors: they assert in debug builds. In
// release builds they never touch memory outside the array: GetAt and
// operator[] then give a reference to a default-valued scratch element
// (writes to it are lost), SetAt does nothing, InsertAt clamps the index to
// [0, size] and RemoveAt removes only the part of the range that exists.
//
// VCArray<bool> is refused at compile time (use VCArray<char>), so that
// GetData always points at the elements.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <functional>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

template <class T>
class VCArray {
  static_assert(!std::is_same_v<T, bool>, "VCArray<bool> has no contiguous storage; use char");

 public:
  static constexpr int32_t kDefaultGrowBy = 10;
  static constexpr int32_t kMaxSize = std::numeric_limits<int32_t>::max();

  // An empty array with growth step `growBy` (values below 1 mean 10).
  explicit VCArray(int32_t growBy = kDefaultGrowBy) { SetGrowBy(growBy); }

  // Sets the minimum number of slots added when the array is full (below 1 means 10).
  void SetGrowBy(int32_t growBy) { m_growBy = growBy > 0 ? growBy : kDefaultGrowBy; }
  int32_t GetGrowBy() const { return m_growBy; }

  int32_t GetSize() const { return static_cast<int32_t>(m_items.size()); }
  bool IsEmpty() const { return m_items.empty(); }

  // Resizes to `size` elements; new elements are value-initialised (0, null).
  // Shrinking keeps the storage. `growBy` > 0 also sets the growth step.
  // False (array unchanged) when memory runs out, or `size` is negative (asserts in debug).
  bool SetSize(int32_t size, int32_t growBy = -1) {
    assert(size >= 0);
    if (growBy > 0) m_growBy = growBy;
    if (size < 0) return false;
    return NoThrow([&] { m_items.resize(static_cast<size_t>(size)); });
  }

  // The element at `index` (0 <= index < GetSize(); see the header on bad indices).
  const T& GetAt(int32_t index) const { return InRange(index) ? m_items[Pos(index)] : Scratch(); }
  const T& operator[](int32_t index) const { return GetAt(index); }
  T& operator[](int32_t index) { return InRange(index) ? m_items[Pos(index)] : Scratch(); }

  // Replaces the element at `index`; a bad index does nothing (asserts in debug).
  void SetAt(int32_t index, const T& value) {
    if (InRange(index)) m_items[Pos(index)] = value;
  }

  // Appends `value`; returns its index, or -1 when the array is full or memory runs out.
  int32_t Add(const T& value) { return Emplace(value); }
  int32_t Add(T&& value) { return Emplace(std::move(value)); }

  // Appends `count` elements copied from `values` (which may point into this
  // array). False (array unchanged) when memory runs out or the size limit is hit.
  bool Append(const T* values, int32_t count) {
    if (count <= 0 || !values) return count <= 0;
    if (count > kMaxSize - GetSize()) return false;
    return NoThrow([&] {
      if (std::greater_equal<const T*>()(values, GetData()) &&
          std::less<const T*>()(values, GetData() + GetSize())) {
        std::vector<T> copy(values, values + count);  // source would move when growing
        Grow(count);
        m_items.insert(m_items.end(), copy.begin(), copy.end());
      } else {
        Grow(count);
        m_items.insert(m_items.end(), values, values + count);
      }
    });
  }

  // Inserts `count` copies of `value` before `index` (0 <= index <= size;
  // clamped in release). False (array unchanged) when memory runs out.
  bool InsertAt(int32_t index, const T& value, int32_t count = 1) {
    assert(index >= 0 && index <= GetSize());
    if (count <= 0) return true;
    if (count > kMaxSize - GetSize()) return false;
    const int32_t at = index < 0 ? 0 : (index > GetSize() ? GetSize() : index);
    return NoThrow([&] {
      T copy(value);  // `value` may be an element of this array
      Grow(count);
      m_items.insert(m_items.begin() + at, static_cast<size_t>(count), copy);
    });
  }

  // Removes `count` elements from `index`; the part of the range outside the
  // array is ignored (asserts in debug).
  void RemoveAt(int32_t index, int32_t count = 1) {
    assert(index >= 0 && count >= 0 && count <= GetSize() - index);
    const int64_t first = index < 0 ? 0 : index;
    const int64_t last = std::min<int64_t>(static_cast<int64_t>(index) + count, GetSize());
    if (first >= last) return;
    m_items.erase(m_items.begin() + first, m_items.begin() + last);
  }

  // Replaces the elements with `items`, taken over without a copy (`items`
  // is left empty). False (both unchanged) when `items` exceeds the size limit.
  bool Adopt(std::vector<T>&& items) {
    if (items.size() > static_cast<size_t>(kMaxSize)) return false;
    m_items = std::move(items);
    std::vector<T>().swap(items);
    return true;
  }

  // Removes every element and frees the storage.
  void RemoveAll() { std::vector<T>().swap(m_items); }

  // The contiguous elements (may be null when the array is empty).
  T* GetData() { return m_items.data(); }
  const T* GetData() const { return m_items.data(); }

  T* begin() { return GetData(); }
  T* end() { return GetData() + GetSize(); }
  const T* begin() const { return GetData(); }
  const T* end() const { return GetData() + GetSize(); }

 private:
  bool InRange(int32_t index) const {
    assert(index >= 0 && index < GetSize());
    return index >= 0 && index < GetSize();
  }
  static size_t Pos(int32_t index) { return static_cast<size_t>(index); }

  // Target of out-of-range accesses in release builds; reset on every use.
  static T& Scratch() {
    thread_local T scratch{};
    scratch = T{};
    return scratch;
  }

  // Runs `f`, turning any exception (bad_alloc, length_error) into false.
  template <class F>
  static bool NoThrow(F&& f) noexcept {
    try {
      f();
      return true;
    } catch (...) {
      return false;
    }
  }

  // Makes room for `extra` more elements by the growth rule in the header.
  void Grow(int32_t extra) {
    const size_t needed = m_items.size() + static_cast<size_t>(extra);
    if (needed <= m_items.capacity()) return;
    const size_t step = std::max(static_cast<size_t>(m_growBy), m_items.size() / 2);
    m_items.reserve(
        std::min(std::max(needed, m_items.size() + step), static_cast<size_t>(kMaxSize)));
  }

  template <class U>
  int32_t Emplace(U&& value) {
    const int32_t index = GetSize();
    if (index == kMaxSize) return -1;
    const bool ok = NoThrow([&] {
      if (m_items.size() < m_items.capacity()) {
        m_items.push_back(std::forward<U>(value));
      } else {
        T copy(std::forward<U>(value));  // `value` may be an element of this array
        Grow(1);
        m_items.push_back(std::move(copy));
      }
    });
    return ok ? index : -1;
  }

  std::vector<T> m_items;
  int32_t m_growBy = kDefaultGrowBy;
};
