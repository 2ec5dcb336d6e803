#include "tree/tree_sort_keys.h"

#include <typeinfo>

#include "base/prefetch.h"

void VCTreeSortKeys::Load(const VCArray<VCUTreeSortDefBase*>& sorting,
                          const VCTreeChildList& children) {
  m_sorting = &sorting;
  m_keyCount = static_cast<size_t>(sorting.GetSize());
  m_basic.clear();
  for (VCUTreeSortDefBase* def : sorting) {
    m_basic.push_back(typeid(*def) == typeid(VCUTreeSortBasic) ? static_cast<VCUTreeSortBasic*>(def)
                                                               : nullptr);
  }
  // First every data object, then every key: the source nodes of a sorted
  // list lie anywhere in memory, so the next ones are fetched ahead.
  m_data.clear();
  for (int32_t i = 0; i < children.Size(); ++i) {
    VCTreeNodeAccess::PrefetchAhead(children, i);
    const VCUTreeResultNode* result = VCTreeNodeAccess::AsResult(children[i]);
    m_data.push_back(result ? result->GetDataObject() : nullptr);
  }
  constexpr size_t kAhead = 4;
  m_keys.resize(m_data.size() * m_keyCount);
  for (size_t i = 0; i < m_data.size(); ++i) {
    if (i + kAhead < m_data.size() && m_data[i + kAhead]) utilkit::Prefetch(m_data[i + kAhead]);
    VCUTreeSourceNode* data = m_data[i];
    for (size_t k = 0; k < m_keyCount && data; ++k) {
      if (m_basic[k]) m_keys[i * m_keyCount + k] = m_basic[k]->GetSortKey(data);
    }
  }
}

int VCTreeSortKeys::Compare(int32_t a, int32_t b) const {
  VCUTreeSourceNode* dataA = m_data[static_cast<size_t>(a)];
  VCUTreeSourceNode* dataB = m_data[static_cast<size_t>(b)];
  if (!dataA || !dataB) return -1;
  const size_t keysA = static_cast<size_t>(a) * m_keyCount;
  const size_t keysB = static_cast<size_t>(b) * m_keyCount;
  for (size_t k = 0; k < m_keyCount; ++k) {
    const int order = m_basic[k] ? m_basic[k]->CompareSortKeys(m_keys[keysA + k], m_keys[keysB + k])
                                 : (*m_sorting)[static_cast<int32_t>(k)]->Compare(dataA, dataB);
    if (order != 0) return order;
  }
  return 0;
}

void VCTreeSortKeys::Release() {
  std::vector<VCUTreeSortBasic*>().swap(m_basic);
  std::vector<VCUTreeSourceNode*>().swap(m_data);
  std::vector<VCVariant>().swap(m_keys);
}
