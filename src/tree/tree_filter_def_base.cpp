#include <utilkit/tree/tree_filter_def_base.h>

struct VCUTreeFilterDefBase::Data {
  int32_t filterType = 0;
};

VCUTreeFilterDefBase::VCUTreeFilterDefBase(int32_t filterType) : m_pData(filterType) {}

VCUTreeFilterDefBase::VCUTreeFilterDefBase(const VCUTreeFilterDefBase&) = default;

VCUTreeFilterDefBase& VCUTreeFilterDefBase::operator=(const VCUTreeFilterDefBase&) = default;

VCUTreeFilterDefBase::~VCUTreeFilterDefBase() = default;

int32_t VCUTreeFilterDefBase::GetFilterType() const {
  return m_pData->filterType;
}
