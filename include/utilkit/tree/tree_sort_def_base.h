// VCUTreeSortDefBase: one key of the order of a result tree's data nodes.
//
// VCUTree holds an ordered list of sort keys, the first being the most
// significant. The library's key is VCUTreeSortBasic (type 1); a host may
// derive its own.
//
//   VCUTree tree;
//   tree.AppendSortingOp(new VCUTreeSortBasic("Size", kTreeSortDecreasing));  // tree owns it
//   int order = tree.GetSortingOps()[0]->Compare(&a, &b);   // > 0: a goes after b
//
// Ownership: a key handed to VCUTree belongs to the tree, which deletes it
// through the virtual destructor. Keys never fail.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_private_block.h>
#include <utilkit/tree/tree_source_node.h>

class UTILKIT_API VCUTreeSortDefBase {
 public:
  virtual ~VCUTreeSortDefBase();

  // Negative when `a` goes before `b`, 0 when this key does not order them,
  // positive when `a` goes after `b`.
  virtual int Compare(VCUTreeSourceNode* a, VCUTreeSourceNode* b) = 0;

  // 1 basic (0 for a key without type).
  int32_t GetSortType() const;

 protected:
  explicit VCUTreeSortDefBase(int32_t sortType = 0);
  VCUTreeSortDefBase(const VCUTreeSortDefBase& other);
  VCUTreeSortDefBase& operator=(const VCUTreeSortDefBase& other);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
