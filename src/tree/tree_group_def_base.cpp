#include <utilkit/tree/tree_group_def_base.h>

struct VCUTreeGroupDefBase::Data {
  int32_t groupType = 0;
};

VCUTreeGroupDefBase::VCUTreeGroupDefBase(int32_t groupType) : m_pData(new Data{groupType}) {}

VCUTreeGroupDefBase::VCUTreeGroupDefBase(const VCUTreeGroupDefBase& other)
    : m_pData(new Data(*other.m_pData)) {}

VCUTreeGroupDefBase& VCUTreeGroupDefBase::operator=(const VCUTreeGroupDefBase& other) {
  *m_pData = *other.m_pData;
  return *this;
}

VCUTreeGroupDefBase::~VCUTreeGroupDefBase() {
  delete m_pData;
}

VCString VCUTreeGroupDefBase::GetCategoryDescription(const char* id) {
  return VCString(id);
}

VCUTreeResultNode* VCUTreeGroupDefBase::CreateCategoryResult(VCUTreeResultNode* parent,
                                                             const char* id) {
  return new VCUTreeResultNode(parent, id, GetCategoryDescription(id));
}

int32_t VCUTreeGroupDefBase::GetGroupType() const {
  return m_pData->groupType;
}
