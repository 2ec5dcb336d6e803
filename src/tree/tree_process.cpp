// VCUTree::Process and its steps: grouping, filtering and sorting.
#include <utilkit/tree/tree.h>

#include <memory>
#include <new>

#include <utilkit/base/error_report.h>

#include "tree/shell_sort.h"
#include "tree/tree_data.h"
#include "tree/tree_node_data.h"

namespace {

constexpr char kProcessLocation[] = "VCUTree::Process";

// The source node that `node` stands for: itself for a source node, the data
// object of a result node, else null.
VCUTreeSourceNode* DataObjectOf(VCUTreeNodeBase* node) {
  if (VCUTreeSourceNode* source = VCTreeNodeAccess::AsSource(node)) return source;
  const VCUTreeResultNode* result = VCTreeNodeAccess::AsResult(node);
  return result ? result->GetDataObject() : nullptr;
}

// The children of `node`; a failure to list them is a failure to allocate.
VCArray<VCUTreeNodeBase*> ChildrenOf(VCUTreeNodeBase* node) {
  VCArray<VCUTreeNodeBase*> children;
  if (node->GetChildren(&children) < 0) throw std::bad_alloc();
  return children;
}

}  // namespace

VCUTreeResultNode* VCUTree::Process(VCUTreeNodeBase* sourceRoot) {
  Data& d = *m_pData;
  // However the run ends, its scratch is freed (and queued nodes with it).
  struct RunScope {
    Data& d;
    ~RunScope() { d.ReleaseScratch(); }
  } scope{d};
  try {
    std::unique_ptr<VCUTreeResultNode> root(new VCUTreeResultNode);
    if (d.grouping.IsEmpty() && !d.filter && d.sorting.IsEmpty()) {
      VFReportError(kTreeErrorNoOperations, kProcessLocation);
      return nullptr;
    }
    if (!sourceRoot) {
      VFReportError(kTreeErrorNoSourceTree, kProcessLocation);
      return nullptr;
    }
    VCStringArray noIds;
    for (VCUTreeNodeBase* child : ChildrenOf(sourceRoot)) {
      if (d.grouping.IsEmpty()) {
        DoFilterAndSort(root.get(), child);
      } else {
        DoGroup(child, nullptr, noIds);
      }
    }
    d.categoryQueue.PlaceAll(root.get(), d.grouping);
    SortChildren(root.get());
    // Categories by id at every level, as root->SortCategories(1, 1) orders
    // them, without visiting the innermost ones, which hold only data nodes.
    if (!d.grouping.IsEmpty())
      VCTreeNodeAccess::SortCategoryLevels(root.get(), 1, d.grouping.GetSize());
    return root.release();
  } catch (const std::bad_alloc&) {
    VFReportError(kTreeErrorOutOfMemory, kProcessLocation);
    return nullptr;
  }
}

void VCUTree::DoFilterAndSort(VCUTreeResultNode* parent, VCUTreeNodeBase* node) {
  VCUTreeSourceNode* data = DataObjectOf(node);
  if (m_pData->filter && data && !m_pData->filter->DoesObjectPassFilter(data)) return;
  const VCUTreeResultNode* result = VCTreeNodeAccess::AsResult(node);
  VCUTreeResultNode* newNode =
      result && result->IsCategory()
          ? new VCUTreeResultNode(parent, result->GetId(), result->GetDescription())
          : new VCUTreeResultNode(parent, data);
  if (!m_pData->recurse) {
    newNode->SetChildrenFromDataObject();
    return;
  }
  for (VCUTreeNodeBase* child : ChildrenOf(node)) DoFilterAndSort(newNode, child);
}

void VCUTree::DoGroup(VCUTreeNodeBase* node, VCUTreeResultNode* parent, VCStringArray& parentIds) {
  const VCArray<VCUTreeGroupDefBase*>& grouping = m_pData->grouping;
  VCStringArray ids;
  if (!ids.SetSize(grouping.GetSize())) throw std::bad_alloc();
  VCUTreeSourceNode* data = DataObjectOf(node);
  VCUTreeResultNode* newNode = nullptr;
  if (data && (!m_pData->filter || m_pData->filter->DoesObjectPassFilter(data))) {
    bool grouped = true;
    for (int32_t level = 0; level < grouping.GetSize() && grouped; ++level) {
      ids[level] = grouping[level]->GetCategoryIdForData(data);
      grouped = !ids[level].IsEmpty();
    }
    bool underParent = parent != nullptr;
    if (grouped && parent) {
      for (int32_t level = 0; level < parentIds.GetSize() && underParent; ++level) {
        underParent = parentIds[level].Compare(ids[level]) == 0;
      }
    }
    if (underParent) {
      newNode = new VCUTreeResultNode(parent, data);
    } else if (grouped) {
      // Filed under its category once the walk is over (VCTreeCategoryQueue).
      auto queued = std::make_unique<VCUTreeResultNode>(nullptr, data);
      newNode = queued.get();
      m_pData->categoryQueue.Add(std::move(queued), ids);
    }
  }
  if (!m_pData->recurse) {
    if (newNode) newNode->SetChildrenFromDataObject();
    return;
  }
  for (VCUTreeNodeBase* child : ChildrenOf(node)) DoGroup(child, newNode, ids);
}

void VCUTree::SortChildren(VCUTreeResultNode* node) {
  if (m_pData->sorting.IsEmpty()) return;
  const int count = node->GetChildren(nullptr);  // expands a marked node first
  if (count < 0) throw std::bad_alloc();
  const VCTreeChildList& children = VCTreeNodeAccess::Of(node).children;
  if (count > 1) {
    // The scratch buffers serve every list in turn: each sort ends before
    // the recursion below starts the next.
    VCTreeSortKeys& keys = m_pData->sortKeys;
    keys.Load(m_pData->sorting, children);
    std::vector<int32_t>& order = m_pData->sortOrder;
    order.resize(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) order[static_cast<size_t>(i)] = i;
    ShellSortTreeItems(order.data(), count, [&keys](int32_t neighbour, int32_t element) {
      return keys.Compare(neighbour, element) > 0;
    });
    VCArray<VCUTreeNodeBase*>& sorted = m_pData->sortedChildren;
    if (!sorted.SetSize(count)) throw std::bad_alloc();
    for (int32_t i = 0; i < count; ++i) sorted[i] = children[order[static_cast<size_t>(i)]];
    node->SetNewChildOrder(sorted);
  }
  if (!m_pData->recurse) return;
  for (int32_t i = 0; i < children.Size(); ++i) {
    VCTreeNodeAccess::PrefetchAhead(children, i);
    if (VCUTreeResultNode* child = VCTreeNodeAccess::AsResult(children[i])) SortChildren(child);
  }
}
