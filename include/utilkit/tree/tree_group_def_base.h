// VCUTreeGroupDefBase: one grouping level of the tree processor.
//
// A grouping definition maps a source node to the id of its category at one
// level (an empty id: the node is not grouped) and gives the display
// description of an id. VCUTree holds an ordered list of them, the first
// being the outermost category level. The library's definitions are
// VCUTreeGroupByProperty (type 1), VCUTreeGroupAlphabetic (2) and
// VCUTreeGroupByDate (3); a host may derive its own.
//
//   VCUTree tree;
//   tree.AppendGroupingOp(new VCUTreeGroupByProperty("Channel"));  // tree owns it
//   VCUTreeGroupDefBase* level = tree.GetGroupingOps()[0];
//   VCString description = level->GetCategoryDescription("3");      // "Channel=3"
//
// Ownership: a definition handed to VCUTree belongs to the tree, which
// deletes it through the virtual destructor. Definitions never fail: a
// missing property gives an empty id.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/tree/tree_private_block.h>
#include <utilkit/tree/tree_result_node.h>
#include <utilkit/tree/tree_source_node.h>

class UTILKIT_API VCUTreeGroupDefBase {
 public:
  virtual ~VCUTreeGroupDefBase();

  // The category id of `dataObject` at this level; "" when it is not grouped.
  virtual VCString GetCategoryIdForData(VCUTreeSourceNode* dataObject) = 0;
  // The display text of category `id` (here: the id itself).
  virtual VCString GetCategoryDescription(const char* id);
  // A new category node with `id` and GetCategoryDescription(id), appended
  // to `parent`'s children (null: a root, owned by the caller). For hosts:
  // VCUTree makes its categories itself, with the same id and description.
  virtual VCUTreeResultNode* CreateCategoryResult(VCUTreeResultNode* parent, const char* id);

  // 1 by property, 2 alphabetic, 3 by date (0 for a definition without type).
  int32_t GetGroupType() const;

 protected:
  explicit VCUTreeGroupDefBase(int32_t groupType = 0);
  VCUTreeGroupDefBase(const VCUTreeGroupDefBase& other);
  VCUTreeGroupDefBase& operator=(const VCUTreeGroupDefBase& other);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
