#include <utilkit/tree/tree_group_alphabetic.h>

namespace {
constexpr int32_t kGroupAlphabeticType = 2;
}

struct VCUTreeGroupAlphabetic::Data {
  VCString propName;
  int32_t numLetters = 0;
};

VCUTreeGroupAlphabetic::VCUTreeGroupAlphabetic() : VCUTreeGroupAlphabetic("") {}

VCUTreeGroupAlphabetic::VCUTreeGroupAlphabetic(const char* propName)
    : VCUTreeGroupDefBase(kGroupAlphabeticType), m_pData(propName) {}

VCUTreeGroupAlphabetic::VCUTreeGroupAlphabetic(const VCUTreeGroupAlphabetic&) = default;

VCUTreeGroupAlphabetic& VCUTreeGroupAlphabetic::operator=(const VCUTreeGroupAlphabetic&) = default;

VCUTreeGroupAlphabetic::~VCUTreeGroupAlphabetic() = default;

VCString VCUTreeGroupAlphabetic::GetCategoryIdForData(VCUTreeSourceNode* dataObject) {
  const VCVariant value = dataObject->GetPropertyValue(m_pData->propName);
  if (value.IsNull()) return VCString();
  char c = value.GetString().GetAt(0);
  if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  if (c < 'A' || c > 'Z') return VCString();
  const int64_t k = c - 'A';
  const int64_t n = m_pData->numLetters < 1 ? 1 : m_pData->numLetters;
  const int64_t group = k / n;
  if (n == 1) return VCString(std::string(1, c));
  // Characters as "%c" writes them: the low byte of the number.
  const auto first = static_cast<char>(static_cast<unsigned char>(n * group + 65));
  const auto last = static_cast<char>(static_cast<unsigned char>((group + 1) * n + 64));
  return VCString(std::string{first, '-', last});
}

VCString VCUTreeGroupAlphabetic::GetPropName() const {
  return m_pData->propName;
}

void VCUTreeGroupAlphabetic::SetPropName(const char* propName) {
  m_pData->propName = propName;
}

int32_t VCUTreeGroupAlphabetic::GetNumLettersPerGroup() const {
  return m_pData->numLetters;
}

void VCUTreeGroupAlphabetic::SetNumLettersPerGroup(int32_t numLetters) {
  m_pData->numLetters = numLetters;
}
