// VCUTreeFilterDefBase: a test that decides which source nodes enter a
// result tree.
//
// The library's filters are VCUTreeFilterBasic (type 1, one property test),
// VCUTreeFilterAND (2) and VCUTreeFilterOR (3), which combine two owned
// operands (their common base is VCUTreeFilterPair); a host may derive its
// own.
//
//   VCUTree tree;
//   tree.SetFilteringOp(new VCUTreeFilterBasic("Size", VCUTreeFilterBasic::kGreater,
//                                              VCVariant(int64_t{10})));   // tree owns it
//   char passes = tree.GetFilteringOp()->DoesObjectPassFilter(&node);
//
// Ownership: a filter handed to VCUTree (or to an AND or OR) belongs to the
// receiver, which deletes it through the virtual destructor. Filters never
// fail: a missing property is a failed test (or a passed "does not exist").
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_private_block.h>
#include <utilkit/tree/tree_source_node.h>

class UTILKIT_API VCUTreeFilterDefBase {
 public:
  virtual ~VCUTreeFilterDefBase();

  // True (1) when `node` passes the filter.
  virtual char DoesObjectPassFilter(VCUTreeSourceNode* node) = 0;

  // 1 basic, 2 AND, 3 OR (0 for a filter without type).
  int32_t GetFilterType() const;

 protected:
  explicit VCUTreeFilterDefBase(int32_t filterType = 0);
  VCUTreeFilterDefBase(const VCUTreeFilterDefBase& other);
  VCUTreeFilterDefBase& operator=(const VCUTreeFilterDefBase& other);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
