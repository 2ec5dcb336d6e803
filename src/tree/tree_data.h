// The private block of VCUTree, shared by the files that implement it.
#pragma once

#include <cstdint>
#include <vector>

#include <utilkit/tree/tree.h>

#include "tree/category_queue.h"
#include "tree/tree_sort_keys.h"

struct VCUTree::Data {
  bool recurse = false;
  int32_t maxFilterNesting = 256;              // parentheses of the filter text
  VCArray<VCUTreeGroupDefBase*> grouping{10};  // owned, outermost level first
  VCUTreeFilterDefBase* filter = nullptr;      // owned
  VCArray<VCUTreeSortDefBase*> sorting{10};    // owned, most significant first

  // The grouping walk's nodes waiting for their categories.
  VCTreeCategoryQueue categoryQueue;
  // Scratch of SortChildren, reused from one child list to the next.
  VCTreeSortKeys sortKeys;
  std::vector<int32_t> sortOrder;
  VCArray<VCUTreeNodeBase*> sortedChildren;

  void ReleaseScratch() {
    categoryQueue.Clear();
    sortKeys.Release();
    std::vector<int32_t>().swap(sortOrder);
    sortedChildren.RemoveAll();
  }
};
