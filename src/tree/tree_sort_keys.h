// The sort keys of one child list, read once per list so that the Shell
// sort compares stored keys instead of asking the host at every comparison.
#pragma once

#include <cstdint>
#include <vector>

#include <utilkit/base/vc_variant.h>
#include <utilkit/tree/tree_sort_basic.h>

#include "tree/tree_node_data.h"

class VCTreeSortKeys {
 public:
  // Reads the keys of every child that stands for a source node. Keys are
  // stored for the library's VCUTreeSortBasic; any other key class is asked
  // at each comparison. The buffers are kept for the next list.
  void Load(const VCArray<VCUTreeSortDefBase*>& sorting, const VCTreeChildList& children);

  // The order of children `a` and `b` (positions in the loaded list): -1
  // when either has no data object (categories never move), else the first
  // key that orders them, else 0.
  int Compare(int32_t a, int32_t b) const;

  // Frees the buffers.
  void Release();

 private:
  const VCArray<VCUTreeSortDefBase*>* m_sorting = nullptr;
  size_t m_keyCount = 0;
  std::vector<VCUTreeSortBasic*> m_basic;  // per key: the stored-key class, or null
  std::vector<VCUTreeSourceNode*> m_data;  // per child
  std::vector<VCVariant> m_keys;           // per child, per key
};
