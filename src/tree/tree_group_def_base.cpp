#include <utilkit/tree/tree_group_def_base.h>

struct VCUTreeGroupDefBase::Data {
  int32_t groupType = 0;
};

VCUTreeGroupDefBase::VCUTreeGroupDefBase(int32_t groupType) : m_pData(groupType) {}

VCUTreeGroupDefBase::VCUTreeGroupDefBase(const VCUTreeGroupDefBase&) = default;

VCUTreeGroupDefBase& VCUTreeGroupDefBase::operator=(const VCUTreeGroupDefBase&) = default;

VCUTreeGroupDefBase::~VCUTreeGroupDefBase() = default;

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
