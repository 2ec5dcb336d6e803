#include <utilkit/base/number_text.h>
#include <utilkit/properties/r5_boolean_property.h>

R5BooleanProperty::R5BooleanProperty(const char* name, bool value)
    : R5Property(name, true), m_value(value) {}

bool R5BooleanProperty::Set(bool value) {
  m_value = value;
  MarkDefined();
  return true;
}

VCString R5BooleanProperty::GetValueText() const {
  return m_value ? "true" : "false";
}

bool R5BooleanProperty::SetValueText(const char* text) {
  bool value = false;
  return text && VFAscToBoolean(text, &value) && Set(value);
}

std::unique_ptr<R5Property> R5BooleanProperty::Clone() const {
  return std::make_unique<R5BooleanProperty>(*this);
}
