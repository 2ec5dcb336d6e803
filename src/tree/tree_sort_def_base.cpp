#include <utilkit/tree/tree_sort_def_base.h>

struct VCUTreeSortDefBase::Data {
  int32_t sortType = 0;
};

VCUTreeSortDefBase::VCUTreeSortDefBase(int32_t sortType) : m_pData(new Data{sortType}) {}

VCUTreeSortDefBase::VCUTreeSortDefBase(const VCUTreeSortDefBase& other)
    : m_pData(new Data(*other.m_pData)) {}

VCUTreeSortDefBase& VCUTreeSortDefBase::operator=(const VCUTreeSortDefBase& other) {
  *m_pData = *other.m_pData;
  return *this;
}

VCUTreeSortDefBase::~VCUTreeSortDefBase() {
  delete m_pData;
}

int32_t VCUTreeSortDefBase::GetSortType() const {
  return m_pData->sortType;
}
