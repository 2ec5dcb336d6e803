// VCUTreeNodeBase: the common base of source and result tree nodes.
//
// A node has a type number (1 source, 2 result), a parent and an ordered
// list of children. Children are added in one way only: a node constructed
// under a parent appends itself to the end of that parent's list.
//
//   VCUTreeNodeBase root(1);
//   VCUTreeNodeBase* child = new VCUTreeNodeBase(1, &root);  // root owns it now
//   VCArray<VCUTreeNodeBase*> children;
//   int count = root.GetChildren(&children);                 // 1
//   delete child;                                            // unlinks itself
//
// Ownership: a node owns its children. Deleting a node first unlinks it from
// its parent's list (when it has a parent), then deletes every child through
// its virtual destructor, so a whole subtree goes with its root.
//
// Copies: the copy constructor and operator= copy the node's own data (the
// type number), never its place in a tree. A copy is a root without
// children; an assigned node keeps its parent and children.
//
// The child list is an array: appending is amortised O(1), removing one
// child (deleting it) O(number of children); deleting a whole subtree is
// linear. Like any C++ object creation, constructing a node throws
// std::bad_alloc when memory runs out; no other exception leaves a node.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>

class UTILKIT_API VCUTreeNodeBase {
 public:
  // A root node of type `nodeType` without parent and children.
  explicit VCUTreeNodeBase(int32_t nodeType);
  // As above, then appended to the end of `parent`'s child list (null: a root).
  VCUTreeNodeBase(int32_t nodeType, VCUTreeNodeBase* parent);
  VCUTreeNodeBase(const VCUTreeNodeBase& other);
  VCUTreeNodeBase& operator=(const VCUTreeNodeBase& other);
  // Unlinks the node from its parent, then deletes every child.
  virtual ~VCUTreeNodeBase();

  // The parent, or null for a root.
  virtual VCUTreeNodeBase* GetParent();
  // The number of children. A non-null `out` is resized to that number (grow
  // step 10) and filled with the children in list order; when it cannot be
  // resized (out of memory) it is left empty and -1 is returned.
  virtual int GetChildren(VCArray<VCUTreeNodeBase*>* out);
  // Empties the child list without deleting anything, then appends the
  // elements of `order` in array order. The caller passes exactly this
  // node's children (a permutation of what GetChildren gave); nothing is
  // checked and the parents of the listed nodes are not changed. When a
  // longer list than before cannot be stored (out of memory) the old list stays.
  virtual void SetNewChildOrder(VCArray<VCUTreeNodeBase*>& order);

  // 1 for a source node, 2 for a result node.
  int32_t GetNodeType() const;
  void SetNodeType(int32_t nodeType);

 private:
  friend struct VCTreeNodeAccess;  // the library's own node classes and processor
  struct Data;

  // Removes the first entry equal to `child` and clears its parent; nothing
  // when `child` is not in the list.
  void RemoveChild(VCUTreeNodeBase* child);

  Data* m_pData;
};
