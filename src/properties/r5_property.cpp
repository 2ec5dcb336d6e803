#include <utilkit/properties/r5_property.h>

R5Property::R5Property(const char* name, bool defined)
    : m_name(name), m_flags(defined ? m_nDefinedMask : 0) {}

R5Property::R5Property(const R5Property& other) = default;

R5Property::~R5Property() = default;

const char* R5Property::GetTypeName(R5PropertyType type) {
  switch (type) {
    case R5PropertyType::kString:
      return "string";
    case R5PropertyType::kLong:
      return "long";
    case R5PropertyType::kHuge:
      return "huge";
    case R5PropertyType::kFloat:
      return "float";
    case R5PropertyType::kDouble:
      return "double";
    case R5PropertyType::kEnum:
      return "enum";
    case R5PropertyType::kBoolean:
      return "boolean";
    default:
      return "";
  }
}

bool R5Property::SetDefined(bool defined) {
  if (defined && !HoldsValidValue()) return false;
  SetFlag(m_nDefinedMask, defined);
  return true;
}

void R5Property::SetMandatory(bool mandatory) {
  SetFlag(m_nMandatoryMask, mandatory);
}

void R5Property::SetMultiLineString(bool multiLine) {
  SetFlag(m_nMultiLineStringMask, multiLine);
}

void R5Property::SetDescription(const char* description) {
  m_description = description;
}

void R5Property::SetHelp(const char* help) {
  m_help = help;
}

bool R5Property::HasSameDefinition(const R5Property& other) const {
  return m_name == other.m_name && GetType() == other.GetType() &&
         IsMandatory() == other.IsMandatory() && m_description == other.m_description &&
         m_help == other.m_help;
}

void R5Property::SetFlag(int32_t mask, bool on) {
  if (on) {
    m_flags |= mask;
  } else {
    m_flags &= ~mask;
  }
}
