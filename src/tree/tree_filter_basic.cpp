#include <utilkit/tree/tree_filter_basic.h>

#include <utilkit/base/text_helpers.h>

namespace {
constexpr int32_t kFilterBasicType = 1;
}

struct VCUTreeFilterBasic::Data {
  VCString propName;
  VTFilterBasicType type = kNone;
  VCVariant value;
};

VCUTreeFilterBasic::VCUTreeFilterBasic() : VCUTreeFilterBasic("", kNone, VCVariant()) {}

VCUTreeFilterBasic::VCUTreeFilterBasic(const char* propName, VTFilterBasicType type,
                                       const VCVariant& value)
    : VCUTreeFilterDefBase(kFilterBasicType), m_pData(propName, type, value) {}

VCUTreeFilterBasic::VCUTreeFilterBasic(const VCUTreeFilterBasic&) = default;

VCUTreeFilterBasic& VCUTreeFilterBasic::operator=(const VCUTreeFilterBasic&) = default;

VCUTreeFilterBasic::~VCUTreeFilterBasic() = default;

char VCUTreeFilterBasic::DoesObjectPassFilter(VCUTreeSourceNode* node) {
  const VTFilterBasicType type = m_pData->type;
  if (type == kNone) return 1;
  if (type < kNone || type > kPatternMatch) return 0;
  const VCVariant v = node->GetPropertyValue(m_pData->propName);
  switch (type) {
    case kExists:
      return v.IsNull() ? 0 : 1;
    case kNotExists:
      return v.IsNull() ? 1 : 0;
    case kPatternMatch:
      return VFPatternMatch(kPatternMatchNoCase, m_pData->value.GetString(), v.GetString()) ? 1 : 0;
    default:
      break;
  }
  if (v.IsNull()) return 0;
  const int32_t r = v.Compare(m_pData->value, VCVariant::kCompareConvert);
  switch (type) {
    case kEqual:
      return r == 0;
    case kNotEqual:
      return r != 0;
    case kGreater:
      return r >= 1;
    case kGreaterOrEqual:
      return r >= 0;
    case kLess:
      return r < 0;
    default:  // kLessOrEqual
      return r < 1;
  }
}

VCString VCUTreeFilterBasic::GetPropName() const {
  return m_pData->propName;
}

void VCUTreeFilterBasic::SetPropName(const char* propName) {
  m_pData->propName = propName;
}

VCUTreeFilterBasic::VTFilterBasicType VCUTreeFilterBasic::GetType() const {
  return m_pData->type;
}

void VCUTreeFilterBasic::SetType(VTFilterBasicType type) {
  m_pData->type = type;
}

VCVariant VCUTreeFilterBasic::GetValue() const {
  return m_pData->value;
}

void VCUTreeFilterBasic::SetValue(const VCVariant& value) {
  m_pData->value = value;
}
