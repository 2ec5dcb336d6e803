// The one pointer to a private block behind which each tree class keeps its
// state: allocated by the owner's constructor, freed by its destructor, and
// copied deeply by the owner's copy constructor and assignment.
//
//   // tree_sort_basic.h
//   class VCUTreeSortBasic : public VCUTreeSortDefBase {
//     ...
//    private:
//     struct Data;                        // defined in the .cpp only
//     VCTreePrivateBlock<Data> m_pData;
//   };
//   // tree_sort_basic.cpp: with Data complete, the owner's copy, assignment
//   // and destructor are the defaults.
//   VCUTreeSortBasic::VCUTreeSortBasic(const VCUTreeSortBasic&) = default;
//   VCUTreeSortBasic::~VCUTreeSortBasic() = default;
//
// `T` may be incomplete where the owner is declared: every member that needs
// it is instantiated in the owner's source file, so the owner declares its
// copy members and destructor there (not inline). Allocation failures throw
// std::bad_alloc out of the owner's constructor, as `new` does.
#pragma once

#include <type_traits>
#include <utility>

template <class T>
class VCTreePrivateBlock {
 public:
  // A value-initialised block.
  VCTreePrivateBlock() : m_block(new T()) {}
  // A block made from the arguments (brace-initialised, so an aggregate
  // takes them in order).
  template <
      class First, class... Rest,
      class = std::enable_if_t<!std::is_same_v<std::remove_cvref_t<First>, VCTreePrivateBlock>>>
  explicit VCTreePrivateBlock(First&& first, Rest&&... rest)
      : m_block(new T{std::forward<First>(first), std::forward<Rest>(rest)...}) {}
  VCTreePrivateBlock(const VCTreePrivateBlock& other) : m_block(new T(*other.m_block)) {}
  VCTreePrivateBlock& operator=(const VCTreePrivateBlock& other) {
    *m_block = *other.m_block;
    return *this;
  }
  ~VCTreePrivateBlock() { delete m_block; }

  T* operator->() const { return m_block; }
  T& operator*() const { return *m_block; }
  // The block's address (for prefetching).
  T* get() const { return m_block; }

 private:
  T* m_block;
};
