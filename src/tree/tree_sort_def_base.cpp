#include <utilkit/tree/tree_sort_def_base.h>

struct VCUTreeSortDefBase::Data {
  int32_t sortType = 0;
};

VCUTreeSortDefBase::VCUTreeSortDefBase(int32_t sortType) : m_pData(sortType) {}

VCUTreeSortDefBase::VCUTreeSortDefBase(const VCUTreeSortDefBase&) = default;

VCUTreeSortDefBase& VCUTreeSortDefBase::operator=(const VCUTreeSortDefBase&) = default;

VCUTreeSortDefBase::~VCUTreeSortDefBase() = default;

int32_t VCUTreeSortDefBase::GetSortType() const {
  return m_pData->sortType;
}
