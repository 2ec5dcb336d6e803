#include <utilkit/tree/tree_sort_basic.h>

#include <utilkit/base/text_helpers.h>

namespace {
constexpr int32_t kSortBasicType = 1;
}

struct VCUTreeSortBasic::Data {
  VCString propName;
  VTTreeSortDirection direction = kTreeSortIncreasing;
  VTSortBasicMethod method = kVariantCompare;
};

VCUTreeSortBasic::VCUTreeSortBasic() : VCUTreeSortBasic("", kTreeSortIncreasing) {}

VCUTreeSortBasic::VCUTreeSortBasic(const char* propName, VTTreeSortDirection direction)
    : VCUTreeSortDefBase(kSortBasicType), m_pData(propName, direction) {}

VCUTreeSortBasic::VCUTreeSortBasic(const VCUTreeSortBasic&) = default;

VCUTreeSortBasic& VCUTreeSortBasic::operator=(const VCUTreeSortBasic&) = default;

VCUTreeSortBasic::~VCUTreeSortBasic() = default;

int VCUTreeSortBasic::Compare(VCUTreeSourceNode* a, VCUTreeSourceNode* b) {
  return CompareSortKeys(GetSortKey(a), GetSortKey(b));
}

VCVariant VCUTreeSortBasic::GetSortKey(VCUTreeSourceNode* node) const {
  VCVariant value = node->GetPropertyValue(m_pData->propName);
  if (m_pData->method != kMixedString || value.IsNull()) return value;
  return VCVariant(VFMakeNumericallySortableString(value.GetString()).c_str());
}

int VCUTreeSortBasic::CompareSortKeys(const VCVariant& a, const VCVariant& b) const {
  const bool increasing = m_pData->direction != kTreeSortDecreasing;
  if (a.IsNull() || b.IsNull()) {
    if (a.IsNull() && b.IsNull()) return 0;
    return (a.IsNull() == increasing) ? 1 : -1;
  }
  // Mixed-string keys are texts, which the variant comparison orders byte-wise.
  return increasing ? a.Compare(b, VCVariant::kCompareConvert)
                    : b.Compare(a, VCVariant::kCompareConvert);
}

VCString VCUTreeSortBasic::GetPropName() const {
  return m_pData->propName;
}

void VCUTreeSortBasic::SetPropName(const char* propName) {
  m_pData->propName = propName;
}

VTTreeSortDirection VCUTreeSortBasic::GetDirection() const {
  return m_pData->direction;
}

void VCUTreeSortBasic::SetDirection(VTTreeSortDirection direction) {
  m_pData->direction = direction;
}

VCUTreeSortBasic::VTSortBasicMethod VCUTreeSortBasic::GetMethod() const {
  return m_pData->method;
}

void VCUTreeSortBasic::SetMethod(VTSortBasicMethod method) {
  m_pData->method = method;
}
