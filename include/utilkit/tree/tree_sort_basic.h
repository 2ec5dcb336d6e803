// VCUTreeSortBasic: orders nodes by the value of one property.
//
// Increasing order puts smaller values first and nodes without the property
// (null) after all others; decreasing order reverses both, so the nulls come
// first. Values compare as VCVariant::Compare with kCompareConvert does
// (numbers by value, texts byte-wise), or, with the mixed-string method, by
// their texts with embedded numbers ordered by value ("a9" before "a10").
//
//   VCUTreeSortBasic byName("Name", kTreeSortIncreasing);
//   byName.SetMethod(VCUTreeSortBasic::kMixedString);
//   byName.Compare(&file9, &file10);   // -1
//
// Sort keys: Compare(a, b) is CompareSortKeys(GetSortKey(a), GetSortKey(b)).
// The tree processor reads each node's key once per sorted child list and
// compares the keys, instead of reading properties at every comparison.
//
// Ownership: plain value semantics; handed to VCUTree it belongs to the tree.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_variant.h>
#include <utilkit/tree/tree_private_block.h>
#include <utilkit/tree/tree_sort_def_base.h>

enum VTTreeSortDirection : int32_t { kTreeSortIncreasing = 0, kTreeSortDecreasing = 1 };

class UTILKIT_API VCUTreeSortBasic : public VCUTreeSortDefBase {
 public:
  enum VTSortBasicMethod : int32_t { kVariantCompare = 0, kMixedString = 1 };

  // Increasing by the property "" with the variant comparison.
  VCUTreeSortBasic();
  // Orders by `propName` (null counts as "") in `direction`, variant comparison.
  VCUTreeSortBasic(const char* propName, VTTreeSortDirection direction);
  VCUTreeSortBasic(const VCUTreeSortBasic& other);
  VCUTreeSortBasic& operator=(const VCUTreeSortBasic& other);
  ~VCUTreeSortBasic() override;

  // -1, 0 or 1 by the rules in the header comment.
  int Compare(VCUTreeSourceNode* a, VCUTreeSourceNode* b) override;

  // What Compare orders `node` by: the property value, or with the
  // mixed-string method the VFMakeNumericallySortableString of its text
  // (null stays null).
  VCVariant GetSortKey(VCUTreeSourceNode* node) const;
  // Compare on two keys from GetSortKey.
  int CompareSortKeys(const VCVariant& a, const VCVariant& b) const;

  VCString GetPropName() const;
  void SetPropName(const char* propName);
  VTTreeSortDirection GetDirection() const;
  // A value other than kTreeSortDecreasing sorts increasing.
  void SetDirection(VTTreeSortDirection direction);
  VTSortBasicMethod GetMethod() const;
  // A value other than kMixedString uses the variant comparison.
  void SetMethod(VTSortBasicMethod method);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
