// The private block of VCUTreeNodeBase, and the library's own access to it.
//
// Every node of a result tree carries one, so it is kept small: the child
// list is a bare array, and the node's kind (set only by the constructors of
// the library's node classes, unlike the host-settable type number) lets the
// library tell source and result nodes apart without a dynamic_cast.
#pragma once

#include <cstdint>
#include <string_view>

#include <utilkit/tree/tree_node_base.h>
#include <utilkit/tree/tree_result_node.h>
#include <utilkit/tree/tree_source_node.h>

#include "base/prefetch.h"

class VCTreeCategoryIndex;
class VCUTreeGroupDefBase;

// The ordered child list of a node.
class VCTreeChildList {
 public:
  VCTreeChildList() = default;
  VCTreeChildList(const VCTreeChildList&) = delete;
  VCTreeChildList& operator=(const VCTreeChildList&) = delete;
  ~VCTreeChildList() { delete[] m_items; }

  int32_t Size() const { return static_cast<int32_t>(m_size); }
  VCUTreeNodeBase* operator[](int32_t index) const { return m_items[index]; }
  VCUTreeNodeBase* const* begin() const { return m_items; }
  VCUTreeNodeBase* const* end() const { return m_items + m_size; }

  // Appends `node`; throws std::bad_alloc (list unchanged) when memory runs out.
  void Append(VCUTreeNodeBase* node);
  // Removes the first entry equal to `node`; false when there is none.
  bool Remove(VCUTreeNodeBase* node);
  // Replaces the list by `count` nodes; throws std::bad_alloc (list unchanged).
  void Assign(VCUTreeNodeBase* const* nodes, int32_t count);

 private:
  void Reserve(uint32_t capacity);

  VCUTreeNodeBase** m_items = nullptr;
  uint32_t m_size = 0;
  uint32_t m_capacity = 0;
};

// Which of the library's node classes built a node.
enum class VCTreeNodeKind : uint8_t { kBase, kSource, kResult };

struct VCUTreeNodeBase::Data {
  VCUTreeNodeBase* parent = nullptr;
  VCTreeChildList children;
  int32_t nodeType = 0;
  VCTreeNodeKind kind = VCTreeNodeKind::kBase;
};

// The library's access to a node's private block.
struct VCTreeNodeAccess {
  static VCUTreeNodeBase::Data& Of(const VCUTreeNodeBase* node) { return *node->m_pData; }
  static void SetKind(VCUTreeNodeBase* node, VCTreeNodeKind kind) { Of(node).kind = kind; }
  // The node as a source / result node, or null when it is not one.
  static VCUTreeSourceNode* AsSource(VCUTreeNodeBase* node) {
    return Of(node).kind == VCTreeNodeKind::kSource ? static_cast<VCUTreeSourceNode*>(node)
                                                    : nullptr;
  }
  static VCUTreeResultNode* AsResult(VCUTreeNodeBase* node) {
    return Of(node).kind == VCTreeNodeKind::kResult ? static_cast<VCUTreeResultNode*>(node)
                                                    : nullptr;
  }
  // To be called whenever a child leaves the list of `node` or the list is
  // reordered: a result node then drops the index of its child categories
  // (appends keep it valid; the new category adds itself).
  static void ChildListChanged(VCUTreeNodeBase* node);
  // Appends `child`, a root that is not a category, to the children of
  // `parent` (whose category index stays valid). Throws std::bad_alloc
  // (nothing changed).
  static void Adopt(VCUTreeNodeBase* parent, VCUTreeNodeBase* child) {
    Of(parent).children.Append(child);
    Of(child).parent = parent;
  }
  // Starts loading the private block of `node`, whose own memory is loaded
  // or on its way.
  static void PrefetchBlock(const VCUTreeNodeBase* node) { utilkit::Prefetch(node->m_pData); }
  // For a walk over `children` now at `index`: starts loading the node a few
  // places on, and the private block of the one that follows sooner (whose
  // node was requested a few steps before).
  static void PrefetchAhead(const VCTreeChildList& children, int32_t index) {
    constexpr int32_t kFar = 8, kNear = 4;
    if (index + kFar < children.Size()) utilkit::Prefetch(children[index + kFar]);
    if (index + kNear < children.Size()) utilkit::Prefetch(children[index + kNear]->m_pData);
  }

  // Result nodes.
  // A private block, with a category's label when `id` or `description` is set.
  static VCUTreeResultNode::Data* NewResultData(const char* id, const char* description);
  // The id of `node` ("" for a node that is no category), without a copy.
  static std::string_view IdView(const VCUTreeResultNode* node);
  // The label, data object and mark of `other`, copied into `node`.
  static void CopyOwnData(VCUTreeResultNode* node, const VCUTreeResultNode& other);
  // Builds one marked result node per source child of the data object of
  // `node`. Throws std::bad_alloc.
  static void ExpandFromDataObject(VCUTreeResultNode* node);
  // The index of the child categories of `node`, built when missing (it is
  // dropped whenever the list changes other than by appending). Throws
  // std::bad_alloc.
  static VCTreeCategoryIndex& CurrentIndex(VCUTreeResultNode* node);
  // Orders the children of `node` by id when the first one is a category;
  // false when it is not, when there are none, or when memory runs out
  // (reported).
  static bool SortChildCategories(VCUTreeResultNode* node, char ascending);
  // SortCategories for the tree processor's grouped trees, whose categories
  // `levels` down hold only data nodes: those are not visited.
  static void SortCategoryLevels(VCUTreeResultNode* node, char ascending, int32_t levels);
  // The tree processor's FindOrCreateCategory: the category at the end of
  // the path `ids` (one id per grouping level; `firstHash` is the category
  // index's hash of ids[0]) below `root`, made (level i described by
  // grouping[i]) where missing. Throws std::bad_alloc.
  static VCUTreeResultNode* FindOrCreateCategoryPath(VCUTreeResultNode* root,
                                                     const char* const* ids, uint32_t firstHash,
                                                     const VCArray<VCUTreeGroupDefBase*>& grouping);
};
