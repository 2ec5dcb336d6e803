#include <utilkit/tree/tree_filter_def_base.h>

struct VCUTreeFilterDefBase::Data {
  int32_t filterType = 0;
};

VCUTreeFilterDefBase::VCUTreeFilterDefBase(int32_t filterType) : m_pData(new Data{filterType}) {}

VCUTreeFilterDefBase::VCUTreeFilterDefBase(const VCUTreeFilterDefBase& other)
    : m_pData(new Data(*other.m_pData)) {}

VCUTreeFilterDefBase& VCUTreeFilterDefBase::operator=(const VCUTreeFilterDefBase& other) {
  *m_pData = *other.m_pData;
  return *this;
}

VCUTreeFilterDefBase::~VCUTreeFilterDefBase() {
  delete m_pData;
}

int32_t VCUTreeFilterDefBase::GetFilterType() const {
  return m_pData->filterType;
}
