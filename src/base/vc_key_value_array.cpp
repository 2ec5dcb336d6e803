#include <utilkit/base/vc_key_value_array.h>

namespace {

const VCString& EmptyText() {
  static const VCString empty;
  return empty;
}

}  // namespace

bool VCKeyValueArray::SetValue(const char* key, const char* value) {
  try {
    const int32_t at = Find(key);
    if (at >= 0) {
      m_pairs[static_cast<size_t>(at)].second = VCString(value);
    } else {
      m_pairs.emplace_back(VCString(key), VCString(value));
    }
    return true;
  } catch (...) {
    return false;
  }
}

bool VCKeyValueArray::GetValue(const char* key, VCString* value) const {
  const int32_t at = Find(key);
  if (at < 0) return false;
  if (value) *value = m_pairs[static_cast<size_t>(at)].second;
  return true;
}

int32_t VCKeyValueArray::Find(const char* key) const {
  for (size_t i = 0; i < m_pairs.size(); ++i) {
    if (m_pairs[i].first.Compare(key) == 0) return static_cast<int32_t>(i);
  }
  return -1;
}

const VCString& VCKeyValueArray::GetKeyAt(int32_t index) const {
  return index >= 0 && index < GetSize() ? m_pairs[static_cast<size_t>(index)].first : EmptyText();
}

const VCString& VCKeyValueArray::GetValueAt(int32_t index) const {
  return index >= 0 && index < GetSize() ? m_pairs[static_cast<size_t>(index)].second : EmptyText();
}
