#include <utilkit/tree/tree.h>

#include "tree/tree_data.h"

namespace {

template <class T>
void DeleteAll(VCArray<T*>& list) {
  for (T* op : list) delete op;
  list.RemoveAll();
}

template <class T>
char AppendOwned(VCArray<T*>& list, T* op) {
  if (!op) return 0;
  if (list.Add(op) < 0) {
    delete op;
    return 0;
  }
  return 1;
}

}  // namespace

VCUTree::VCUTree() : m_pData() {}

VCUTree::~VCUTree() {
  ClearGrouping();
  ClearSorting();
  delete m_pData->filter;
}

char VCUTree::AppendGroupingOp(VCUTreeGroupDefBase* op) {
  return AppendOwned(m_pData->grouping, op);
}

char VCUTree::AppendSortingOp(VCUTreeSortDefBase* op) {
  return AppendOwned(m_pData->sorting, op);
}

void VCUTree::SetFilteringOp(VCUTreeFilterDefBase* op) {
  if (op == m_pData->filter) return;
  delete m_pData->filter;
  m_pData->filter = op;
}

VCUTreeFilterDefBase* VCUTree::GetFilteringOp() const {
  return m_pData->filter;
}

VCArray<VCUTreeGroupDefBase*> VCUTree::GetGroupingOps() const {
  return m_pData->grouping;
}

VCArray<VCUTreeSortDefBase*> VCUTree::GetSortingOps() const {
  return m_pData->sorting;
}

void VCUTree::ClearGrouping() {
  DeleteAll(m_pData->grouping);
}

void VCUTree::ClearSorting() {
  DeleteAll(m_pData->sorting);
}

void VCUTree::SetRecurseChildren(char recurse) {
  m_pData->recurse = recurse != 0;
}

char VCUTree::GetRecurseChildren() const {
  return m_pData->recurse ? 1 : 0;
}
