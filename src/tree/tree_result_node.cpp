#include <utilkit/tree/tree_errors.h>
#include <utilkit/tree/tree_result_node.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/tree/tree_group_def_base.h>

#include "tree/category_index.h"
#include "tree/shell_sort.h"
#include "tree/tree_node_data.h"

namespace {

constexpr int32_t kResultNodeType = 2;

// The first eight bytes of `id`, big-endian, zero-padded: comparing two of
// them orders ids as their first eight bytes do.
uint64_t SortPrefix(std::string_view id) {
  unsigned char bytes[8] = {};
  std::memcpy(bytes, id.data(), std::min<size_t>(id.size(), 8));
  uint64_t prefix = 0;
  for (unsigned char byte : bytes) prefix = (prefix << 8) | byte;
  return prefix;
}

}  // namespace

// What only some result nodes need: the label of a category, and the index
// of its child categories (the root and categories have children that are
// categories).
struct VCUTreeResultNode::Extra {
  VCString id;
  VCString description;
  VCTreeCategoryIndex index;
};

struct VCUTreeResultNode::Data {
  VCUTreeSourceNode* dataObject = nullptr;
  Extra* extra = nullptr;  // owned; part of this block when `extraInBlock`
  bool childrenFromDataObject = false;
  bool extraInBlock = false;
};

// A category's block: its label comes in the same allocation.
struct VCUTreeResultNode::CategoryData : Data {
  Extra label;
};

VCUTreeResultNode::Data* VCTreeNodeAccess::NewResultData(const char* id, const char* description) {
  if ((!id || !*id) && (!description || !*description)) return new VCUTreeResultNode::Data;
  auto* data = new VCUTreeResultNode::CategoryData;
  data->label.id = id;
  data->label.description = description;
  data->extra = &data->label;
  data->extraInBlock = true;
  return data;
}

VCUTreeResultNode::VCUTreeResultNode() : VCUTreeResultNode(nullptr, nullptr) {}

VCUTreeResultNode::VCUTreeResultNode(VCUTreeResultNode* parent, VCUTreeSourceNode* dataObject)
    : VCUTreeNodeBase(kResultNodeType, parent),
      m_pData(VCTreeNodeAccess::NewResultData(nullptr, nullptr)) {
  VCTreeNodeAccess::SetKind(this, VCTreeNodeKind::kResult);
  m_pData->dataObject = dataObject;
}

VCUTreeResultNode::VCUTreeResultNode(VCUTreeResultNode* parent, const char* id,
                                     const char* description)
    : VCUTreeNodeBase(kResultNodeType, parent),
      m_pData(VCTreeNodeAccess::NewResultData(id, description)) {
  VCTreeNodeAccess::SetKind(this, VCTreeNodeKind::kResult);
  // The parent's index, when it has a current one, learns of the new category.
  if (!parent || VCTreeNodeAccess::IdView(this).empty() || !parent->m_pData->extra) return;
  VCTreeCategoryIndex& index = parent->m_pData->extra->index;
  if (!index.IsBuilt()) return;
  try {
    index.Add(VCTreeNodeAccess::IdView(this), this, &m_pData->extra->index);
  } catch (const std::bad_alloc&) {
    index.Invalidate();  // rebuilt at the next lookup
  }
}

void VCTreeNodeAccess::ChildListChanged(VCUTreeNodeBase* node) {
  VCUTreeResultNode* result = AsResult(node);
  if (result && result->m_pData->extra) result->m_pData->extra->index.Invalidate();
}

VCUTreeResultNode::VCUTreeResultNode(const VCUTreeResultNode& other)
    : VCUTreeNodeBase(other),
      m_pData(VCTreeNodeAccess::NewResultData(other.GetId(), other.GetDescription())) {
  VCTreeNodeAccess::SetKind(this, VCTreeNodeKind::kResult);
  m_pData->dataObject = other.m_pData->dataObject;
  m_pData->childrenFromDataObject = other.m_pData->childrenFromDataObject;
}

VCUTreeResultNode& VCUTreeResultNode::operator=(const VCUTreeResultNode& other) {
  if (this == &other) return *this;
  VCUTreeNodeBase::operator=(other);
  VCTreeNodeAccess::CopyOwnData(this, other);
  // The parent's index may hold the old id.
  if (VCUTreeNodeBase* parent = GetParent()) VCTreeNodeAccess::ChildListChanged(parent);
  return *this;
}

VCUTreeResultNode::~VCUTreeResultNode() {
  if (m_pData->extraInBlock) {
    delete static_cast<CategoryData*>(m_pData);
  } else {
    delete m_pData->extra;
    delete m_pData;
  }
}

void VCTreeNodeAccess::CopyOwnData(VCUTreeResultNode* node, const VCUTreeResultNode& other) {
  const VCUTreeResultNode::Extra* from = other.m_pData->extra;
  if (from && !node->m_pData->extra)
    node->m_pData->extra = new VCUTreeResultNode::Extra;  // before anything changes
  node->m_pData->dataObject = other.m_pData->dataObject;
  node->m_pData->childrenFromDataObject = other.m_pData->childrenFromDataObject;
  if (!node->m_pData->extra) return;
  node->m_pData->extra->id = from ? from->id : VCString();
  node->m_pData->extra->description = from ? from->description : VCString();
  node->m_pData->extra->index.Invalidate();  // rebuilt from the node's children when next needed
}

std::string_view VCTreeNodeAccess::IdView(const VCUTreeResultNode* node) {
  return node->m_pData->extra ? node->m_pData->extra->id.view() : std::string_view();
}

int VCUTreeResultNode::GetChildren(VCArray<VCUTreeNodeBase*>* out) {
  if (m_pData->childrenFromDataObject) {
    if (m_pData->dataObject) {
      const VCTreeChildList& children = VCTreeNodeAccess::Of(this).children;
      const int32_t before = children.Size();
      try {
        VCTreeNodeAccess::ExpandFromDataObject(this);
      } catch (const std::bad_alloc&) {
        // Take back what this expansion made; the mark stays for a retry.
        while (children.Size() > before) delete children[children.Size() - 1];
        VFReportError(kTreeErrorOutOfMemory, "VCUTreeResultNode::GetChildren");
        return -1;
      }
    }
    m_pData->childrenFromDataObject = false;
  }
  return VCUTreeNodeBase::GetChildren(out);
}

void VCTreeNodeAccess::ExpandFromDataObject(VCUTreeResultNode* node) {
  VCArray<VCUTreeNodeBase*> sourceChildren;
  if (node->m_pData->dataObject->GetChildren(&sourceChildren) < 0) throw std::bad_alloc();
  for (VCUTreeNodeBase* child : sourceChildren) {
    VCUTreeSourceNode* sourceChild = VCTreeNodeAccess::AsSource(child);
    if (!sourceChild) continue;  // only source nodes can be data objects
    auto* mirror = new VCUTreeResultNode(node, sourceChild);
    mirror->m_pData->childrenFromDataObject = true;
  }
}

VCUTreeSourceNode* VCUTreeResultNode::GetDataObject() const {
  return m_pData->dataObject;
}

VCString VCUTreeResultNode::GetId() const {
  return m_pData->extra ? m_pData->extra->id : VCString();
}

VCString VCUTreeResultNode::GetDescription() const {
  return m_pData->extra ? m_pData->extra->description : VCString();
}

char VCUTreeResultNode::IsCategory() const {
  return VCTreeNodeAccess::IdView(this).empty() ? 0 : 1;
}

void VCUTreeResultNode::SetChildrenFromDataObject() {
  m_pData->childrenFromDataObject = true;
}

VCUTreeResultNode* VCUTreeResultNode::FindChildCategory(const char* id) {
  const std::string_view key(id ? id : "");
  if (key.empty()) return nullptr;
  try {
    const VCTreeCategoryIndex::Entry* entry = VCTreeNodeAccess::CurrentIndex(this).Find(key);
    return entry ? entry->node : nullptr;
  } catch (const std::bad_alloc&) {
    // No memory for the index: walk the list instead.
    for (VCUTreeNodeBase* child : VCTreeNodeAccess::Of(this).children) {
      VCUTreeResultNode* category = VCTreeNodeAccess::AsResult(child);
      if (category && VCTreeNodeAccess::IdView(category) == key) return category;
    }
    return nullptr;
  }
}

VCTreeCategoryIndex& VCTreeNodeAccess::CurrentIndex(VCUTreeResultNode* node) {
  if (!node->m_pData->extra) node->m_pData->extra = new VCUTreeResultNode::Extra;
  VCTreeCategoryIndex& index = node->m_pData->extra->index;
  if (index.IsBuilt()) return index;
  try {
    for (VCUTreeNodeBase* child : VCTreeNodeAccess::Of(node).children) {
      VCUTreeResultNode* category = VCTreeNodeAccess::AsResult(child);
      if (category && !VCTreeNodeAccess::IdView(category).empty()) {
        index.Add(VCTreeNodeAccess::IdView(category), category, &category->m_pData->extra->index);
      }
    }
  } catch (const std::bad_alloc&) {
    index.Invalidate();
    throw;
  }
  index.SetBuilt();
  return index;
}

VCUTreeResultNode* VCTreeNodeAccess::FindOrCreateCategoryPath(
    VCUTreeResultNode* root, const char* const* ids, uint32_t firstHash,
    const VCArray<VCUTreeGroupDefBase*>& grouping) {
  // Down from index to index while the ids are found: the categories on the
  // way are not touched themselves.
  VCUTreeResultNode* current = root;
  VCTreeCategoryIndex* index = &CurrentIndex(root);
  int32_t level = 0;
  for (; level < grouping.GetSize(); ++level) {
    const std::string_view id(ids[level]);
    const VCTreeCategoryIndex::Entry* entry =
        level == 0 ? index->Find(id, firstHash) : index->Find(id);
    if (!entry) break;
    current = entry->node;
    index = entry->childIndex->IsBuilt() ? entry->childIndex : &CurrentIndex(current);
  }
  for (; level < grouping.GetSize(); ++level) {
    current = new VCUTreeResultNode(current, ids[level],
                                    grouping[level]->GetCategoryDescription(ids[level]));
  }
  return current;
}

void VCUTreeResultNode::SortCategories(char ascending, char recurse) {
  if (!VCTreeNodeAccess::SortChildCategories(this, ascending)) return;
  const VCTreeChildList& children = VCTreeNodeAccess::Of(this).children;
  for (int32_t i = 0; i < children.Size(); ++i) {
    VCTreeNodeAccess::PrefetchAhead(children, i);
    if (VCUTreeResultNode* child = VCTreeNodeAccess::AsResult(children[i])) {
      child->SortCategories(ascending, recurse);
    }
  }
}

void VCTreeNodeAccess::SortCategoryLevels(VCUTreeResultNode* node, char ascending, int32_t levels) {
  if (levels <= 0 || !SortChildCategories(node, ascending)) return;
  const VCTreeChildList& children = VCTreeNodeAccess::Of(node).children;
  for (int32_t i = 0; i < children.Size(); ++i) {
    VCTreeNodeAccess::PrefetchAhead(children, i);
    if (VCUTreeResultNode* child = VCTreeNodeAccess::AsResult(children[i])) {
      SortCategoryLevels(child, ascending, levels - 1);
    }
  }
}

bool VCTreeNodeAccess::SortChildCategories(VCUTreeResultNode* node, char ascending) {
  const int count = node->GetChildren(nullptr);  // expands a marked node first
  if (count <= 0) return false;
  const VCTreeChildList& children = VCTreeNodeAccess::Of(node).children;
  const auto idAt = [&children](int32_t position) {
    const VCUTreeResultNode* child = VCTreeNodeAccess::AsResult(children[position]);
    return child ? VCTreeNodeAccess::IdView(child) : std::string_view();
  };
  if (idAt(0).empty()) return false;
  if (count == 1) return true;
  try {
    // Each child as its position and the first bytes of its id, so most
    // comparisons never leave the array.
    struct Entry {
      uint64_t prefix;
      int32_t position;
    };
    std::vector<Entry> entries(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
      VCTreeNodeAccess::PrefetchAhead(children, i);
      entries[static_cast<size_t>(i)] = {SortPrefix(idAt(i)), i};
    }
    ShellSortTreeItems(entries.data(), count, [&](const Entry& neighbour, const Entry& element) {
      int order = neighbour.prefix < element.prefix ? -1 : (neighbour.prefix > element.prefix);
      if (order == 0) order = idAt(neighbour.position).compare(idAt(element.position));
      return ascending ? order > 0 : order < 0;
    });
    VCArray<VCUTreeNodeBase*> order;
    if (!order.SetSize(count)) throw std::bad_alloc();
    for (int32_t i = 0; i < count; ++i)
      order[i] = children[entries[static_cast<size_t>(i)].position];
    node->SetNewChildOrder(order);
  } catch (const std::bad_alloc&) {
    VFReportError(kTreeErrorOutOfMemory, "VCUTreeResultNode::SortCategories");
    return false;
  }
  return true;
}
