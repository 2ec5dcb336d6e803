#include <utilkit/properties/r5_string_property.h>

R5StringProperty::R5StringProperty(const char* name, const char* value)
    : R5Property(name, true), m_value(value) {}

bool R5StringProperty::Set(const char* value) {
  m_value = value;
  MarkDefined();
  return true;
}

bool R5StringProperty::SetValueText(const char* text) {
  return text && Set(text);
}

std::unique_ptr<R5Property> R5StringProperty::Clone() const {
  return std::make_unique<R5StringProperty>(*this);
}
