#include <utilkit/tree/tree_group_by_property.h>

namespace {
constexpr int32_t kGroupByPropertyType = 1;
}

struct VCUTreeGroupByProperty::Data {
  VCString propName;
};

VCUTreeGroupByProperty::VCUTreeGroupByProperty() : VCUTreeGroupByProperty("") {}

VCUTreeGroupByProperty::VCUTreeGroupByProperty(const char* propName)
    : VCUTreeGroupDefBase(kGroupByPropertyType), m_pData(propName) {}

VCUTreeGroupByProperty::VCUTreeGroupByProperty(const VCUTreeGroupByProperty&) = default;

VCUTreeGroupByProperty& VCUTreeGroupByProperty::operator=(const VCUTreeGroupByProperty&) = default;

VCUTreeGroupByProperty::~VCUTreeGroupByProperty() = default;

VCString VCUTreeGroupByProperty::GetCategoryIdForData(VCUTreeSourceNode* dataObject) {
  const VCVariant value = dataObject->GetPropertyValue(m_pData->propName);
  return value.IsNull() ? VCString() : value.GetString();
}

VCString VCUTreeGroupByProperty::GetCategoryDescription(const char* id) {
  return m_pData->propName + "=" + id;
}

VCString VCUTreeGroupByProperty::GetPropName() const {
  return m_pData->propName;
}

void VCUTreeGroupByProperty::SetPropName(const char* propName) {
  m_pData->propName = propName;
}
