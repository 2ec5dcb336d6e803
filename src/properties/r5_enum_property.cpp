#include <utilkit/properties/r5_enum_property.h>

R5EnumProperty::R5EnumProperty(const char* name) : R5Property(name, false) {}

bool R5EnumProperty::Add(const R5EnumValue& value) {
  if (value.IsEmpty()) return false;
  try {
    const auto [slot, inserted] = m_index.emplace(value.GetName().c_str(), m_entries.GetSize());
    if (!inserted) return false;
    if (m_entries.Add(value) >= 0) return true;
    m_index.erase(slot);
  } catch (...) {
  }
  return false;
}

R5EnumValue R5EnumProperty::GetValidEntry(int32_t index) const {
  if (index < 0 || index >= m_entries.GetSize()) return R5EnumValue();
  return m_entries[index];
}

R5EnumValue R5EnumProperty::Get() const {
  return GetValidEntry(m_chosen);
}

bool R5EnumProperty::Set(const R5EnumValue& value) {
  const int32_t index = Find(value.GetName());
  if (index < 0) return false;
  m_chosen = index;
  MarkDefined();
  return true;
}

VCString R5EnumProperty::GetValueText() const {
  return Get().GetName();
}

bool R5EnumProperty::SetValueText(const char* text) {
  return text && Set(R5EnumValue(text));
}

std::unique_ptr<R5Property> R5EnumProperty::Clone() const {
  return std::make_unique<R5EnumProperty>(*this);
}

bool R5EnumProperty::HasSameDefinition(const R5Property& other) const {
  if (!R5Property::HasSameDefinition(other)) return false;
  const auto& same = static_cast<const R5EnumProperty&>(other);
  if (GetValidCount() != same.GetValidCount()) return false;
  for (int32_t i = 0; i < GetValidCount(); ++i) {
    if (!(m_entries[i] == same.m_entries[i])) return false;
  }
  return true;
}

int32_t R5EnumProperty::Find(const VCString& name) const {
  try {
    const auto it = m_index.find(name.c_str());
    return it == m_index.end() ? -1 : it->second;
  } catch (...) {
    return -1;
  }
}
