// VCUTreeResultNode: a node of a result tree built by the tree processor.
//
// A result node either stands for one source node (its data object, never
// owned) or is a category that groups other result nodes: a category has a
// non-empty id (what hosts match on, e.g. "A-C" or "2024") and a display
// description (e.g. "Channel=3"). The root that VCUTree::Process returns is
// neither: no data object and an empty id.
//
// A node marked with SetChildrenFromDataObject mirrors its data object's
// subtree on demand: the first GetChildren builds one result node per source
// child (each marked the same way), so a subtree that was not walked is
// expanded one level per request, each level once.
//
//   VCUTreeResultNode root;
//   VCUTreeResultNode* cat = new VCUTreeResultNode(&root, "A", "Name=A");
//   new VCUTreeResultNode(cat, &fileNode);     // stands for fileNode, owned by cat
//   root.SortCategories(1, 1);                 // categories by id, every level
//   // leaving scope, root deletes cat and its child; fileNode is untouched
//
// Ownership: as for VCUTreeNodeBase, a node owns its children; it never owns
// its data object, so the source tree must outlive the result tree. Only
// source nodes are mirrored: other children of a data object are skipped.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/tree/tree_node_base.h>
#include <utilkit/tree/tree_source_node.h>

class UTILKIT_API VCUTreeResultNode : public VCUTreeNodeBase {
 public:
  // A root result node (node type 2): no parent, no data object, empty id
  // and description.
  VCUTreeResultNode();
  // A node standing for `dataObject` (may be null), appended to `parent`'s
  // children (null: a root).
  VCUTreeResultNode(VCUTreeResultNode* parent, VCUTreeSourceNode* dataObject);
  // A category with `id` and `description` (null texts count as ""),
  // appended to `parent`'s children (null: a root).
  VCUTreeResultNode(VCUTreeResultNode* parent, const char* id, const char* description);
  // Copies the node's own data (data object, expansion mark, id,
  // description) only: the copy is a root without children.
  VCUTreeResultNode(const VCUTreeResultNode& other);
  VCUTreeResultNode& operator=(const VCUTreeResultNode& other);
  ~VCUTreeResultNode() override;

  // The children, as VCUTreeNodeBase::GetChildren, after building the mirror
  // of the data object's children when the node is marked for it (also when
  // `out` is null). Out of memory: pushes kTreeErrorOutOfMemory, leaves the
  // node as it was (still marked) and returns -1.
  int GetChildren(VCArray<VCUTreeNodeBase*>* out) override;

  // The source node this node stands for; null for categories and roots.
  VCUTreeSourceNode* GetDataObject() const;
  VCString GetId() const;
  VCString GetDescription() const;
  // True exactly when the id is not empty.
  char IsCategory() const;
  // Marks the node to mirror its data object's children on the first
  // GetChildren (a node without data object just drops the mark then).
  void SetChildrenFromDataObject();

  // The first child category whose id is `id`, or null (also for ""). O(1)
  // expected: the node keeps an index of its child categories beside the
  // child list (rebuilt after a child leaves or the order changes; without
  // memory for it the list is walked). Never expands the node: a mirrored
  // child is never a category.
  VCUTreeResultNode* FindChildCategory(const char* id);

  // Orders the children by id (VCString::Compare: byte by byte, so "B" comes
  // before "a"; ascending when `ascending` is true) with a Shell sort over
  // Knuth's gaps, which is not stable, then does the same in every child.
  // Stops at a node whose first child is not a category: that node's
  // children and everything below keep their order. `recurse` is only handed
  // on: the recursion always happens. Out of memory: pushes
  // kTreeErrorOutOfMemory and leaves the rest of the tree in its order.
  void SortCategories(char ascending, char recurse);

 private:
  friend struct VCTreeNodeAccess;  // the library's own node classes and processor
  struct Extra;
  struct Data;
  struct CategoryData;

  Data* m_pData;
};
