#include <utilkit/tree/tree_node_base.h>

#include <algorithm>
#include <new>

#include "tree/tree_node_data.h"

void VCTreeChildList::Reserve(uint32_t capacity) {
  auto* items = new VCUTreeNodeBase*[capacity];
  std::copy(m_items, m_items + m_size, items);
  delete[] m_items;
  m_items = items;
  m_capacity = capacity;
}

void VCTreeChildList::Append(VCUTreeNodeBase* node) {
  if (m_size == m_capacity) {
    if (m_capacity >= 0x40000000u) throw std::bad_alloc();  // an int32 counts the children
    Reserve(m_capacity < 2 ? 2 : 2 * m_capacity);
  }
  m_items[m_size++] = node;
}

bool VCTreeChildList::Remove(VCUTreeNodeBase* node) {
  VCUTreeNodeBase** const last = m_items + m_size;
  VCUTreeNodeBase** const at = std::find(m_items, last, node);
  if (at == last) return false;
  std::copy(at + 1, last, at);
  --m_size;
  return true;
}

void VCTreeChildList::Assign(VCUTreeNodeBase* const* nodes, int32_t count) {
  const auto size = static_cast<uint32_t>(count < 0 ? 0 : count);
  if (size > m_capacity) Reserve(size);
  std::copy(nodes, nodes + size, m_items);
  m_size = size;
}

VCUTreeNodeBase::VCUTreeNodeBase(int32_t nodeType) : m_pData(new Data) {
  m_pData->nodeType = nodeType;
}

VCUTreeNodeBase::VCUTreeNodeBase(int32_t nodeType, VCUTreeNodeBase* parent)
    : VCUTreeNodeBase(nodeType) {
  if (parent) {
    parent->m_pData->children.Append(this);
    m_pData->parent = parent;
  }
}

VCUTreeNodeBase::VCUTreeNodeBase(const VCUTreeNodeBase& other)
    : VCUTreeNodeBase(other.m_pData->nodeType) {}

VCUTreeNodeBase& VCUTreeNodeBase::operator=(const VCUTreeNodeBase& other) {
  m_pData->nodeType = other.m_pData->nodeType;
  return *this;
}

VCUTreeNodeBase::~VCUTreeNodeBase() {
  if (m_pData->parent) m_pData->parent->RemoveChild(this);
  // Children see a null parent, so they do not search this list on their way out.
  for (VCUTreeNodeBase* child : m_pData->children) {
    child->m_pData->parent = nullptr;
    delete child;
  }
  delete m_pData;
}

VCUTreeNodeBase* VCUTreeNodeBase::GetParent() {
  return m_pData->parent;
}

int VCUTreeNodeBase::GetChildren(VCArray<VCUTreeNodeBase*>* out) {
  const VCTreeChildList& children = m_pData->children;
  if (!out) return children.Size();
  out->SetGrowBy(10);
  if (!out->SetSize(children.Size())) {
    out->RemoveAll();
    return -1;
  }
  std::copy(children.begin(), children.end(), out->GetData());
  return children.Size();
}

void VCUTreeNodeBase::SetNewChildOrder(VCArray<VCUTreeNodeBase*>& order) {
  try {
    m_pData->children.Assign(order.GetData(), order.GetSize());
  } catch (const std::bad_alloc&) {
    return;  // a longer list than before could not be stored: keep the old one
  }
  VCTreeNodeAccess::ChildListChanged(this);
}

int32_t VCUTreeNodeBase::GetNodeType() const {
  return m_pData->nodeType;
}

void VCUTreeNodeBase::SetNodeType(int32_t nodeType) {
  m_pData->nodeType = nodeType;
}

void VCUTreeNodeBase::RemoveChild(VCUTreeNodeBase* child) {
  if (!m_pData->children.Remove(child)) return;
  child->m_pData->parent = nullptr;
  VCTreeNodeAccess::ChildListChanged(this);
}
