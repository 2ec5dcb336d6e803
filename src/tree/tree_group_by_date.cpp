#include <utilkit/tree/tree_group_by_date.h>

#include <cstdio>
#include <cstdlib>

#include <utilkit/base/text_table.h>

namespace {

constexpr int32_t kGroupByDateType = 3;
constexpr int32_t kFirstMonthText = 101;  // "January"

// The library's name of `month` (0 = January); "" outside 0 to 11.
const char* MonthName(int64_t month) {
  if (month < 0 || month > 11) return "";
  return VFTextGet(VFGetUtilKitText(), kFirstMonthText + static_cast<int32_t>(month));
}

}  // namespace

struct VCUTreeGroupByDate::Data {
  VCString propName;
  VTGroupByDateType type = kByDay;
};

VCUTreeGroupByDate::VCUTreeGroupByDate() : VCUTreeGroupByDate("", kByDay) {}

VCUTreeGroupByDate::VCUTreeGroupByDate(const char* propName, VTGroupByDateType type)
    : VCUTreeGroupDefBase(kGroupByDateType), m_pData(propName, type) {}

VCUTreeGroupByDate::VCUTreeGroupByDate(const VCUTreeGroupByDate&) = default;

VCUTreeGroupByDate& VCUTreeGroupByDate::operator=(const VCUTreeGroupByDate&) = default;

VCUTreeGroupByDate::~VCUTreeGroupByDate() = default;

VCString VCUTreeGroupByDate::GetCategoryIdForData(VCUTreeSourceNode* dataObject) {
  const VCVariant value = dataObject->GetPropertyValue(m_pData->propName);
  if (value.GetType() != VTVariantType::DateTime) return VCString();
  const VCTime time = value.GetTime();
  switch (m_pData->type) {
    case kByDay:
      return VCString::Formatted("%04d-%02d-%02d", static_cast<int>(time.GetYear()),
                                 static_cast<int>(time.GetMonth()),
                                 static_cast<int>(time.GetDay()));
    case kByMonth:
      return VCString::Formatted("%02d", static_cast<int>(time.GetMonth()));
    case kByYear:
      return VCString::Formatted("%d", static_cast<int>(time.GetYear()));
  }
  return VCString();
}

VCString VCUTreeGroupByDate::GetCategoryDescription(const char* id) {
  const char* text = id ? id : "";
  switch (m_pData->type) {
    case kByDay: {
      int year = 0, month = -1, day = 0;
      if (std::sscanf(text, "%d-%d-%d", &year, &month, &day) != 3) return VCString(text);
      return VCString::Formatted("%02d-%s-%4d", day, MonthName(month), year);
    }
    case kByMonth:
      return VCString(MonthName(std::strtoll(text, nullptr, 10)));
    case kByYear:
      break;
  }
  return VCString(text);
}

VCString VCUTreeGroupByDate::GetPropName() const {
  return m_pData->propName;
}

void VCUTreeGroupByDate::SetPropName(const char* propName) {
  m_pData->propName = propName;
}

VCUTreeGroupByDate::VTGroupByDateType VCUTreeGroupByDate::GetGroupByDateType() const {
  return m_pData->type;
}

void VCUTreeGroupByDate::SetGroupByDateType(VTGroupByDateType type) {
  m_pData->type = type;
}
