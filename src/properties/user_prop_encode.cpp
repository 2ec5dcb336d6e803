// Writing an R5PropertySet as a "Properties" definition.
#include <utilkit/properties/user_defined_properties.h>
#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/dom.h>
#include <utilkit/xml/xml_helper.h>

namespace {

void SetText(DOM_Element& element, const char* name, const char* value) {
  element.setAttribute(name, VCUXmlHelper::VCToDOMString(value));
}

// Writes the bounds that differ from the type's whole range, each with its flag.
template <class T>
void WriteRange(DOM_Element& element, const R5RangedProperty<T>& property) {
  using P = R5RangedProperty<T>;
  if (property.GetMin() != P::Lowest() || !property.GetMinAllowEqual()) {
    SetText(element, "min", P::ValueToText(property.GetMin()));
    SetText(element, "minallowequal", property.GetMinAllowEqual() ? "True" : "False");
  }
  if (property.GetMax() != P::Highest() || !property.GetMaxAllowEqual()) {
    SetText(element, "max", P::ValueToText(property.GetMax()));
    SetText(element, "maxallowequal", property.GetMaxAllowEqual() ? "True" : "False");
  }
}

void WriteEntries(DOM_Element& element, const R5EnumProperty& property) {
  VCString options;
  for (int32_t i = 0; i < property.GetValidCount(); ++i) {
    if (i > 0) options += ",";
    options += property.GetValidEntry(i).GetName();
  }
  SetText(element, "enumopts", options);
}

void WriteTypeDetails(DOM_Element& element, const R5Property& property) {
  switch (property.GetType()) {
    case R5PropertyType::kLong:
      return WriteRange(element, static_cast<const R5LongProperty&>(property));
    case R5PropertyType::kHuge:
      return WriteRange(element, static_cast<const R5HugeProperty&>(property));
    case R5PropertyType::kFloat:
      return WriteRange(element, static_cast<const R5FloatProperty&>(property));
    case R5PropertyType::kDouble:
      return WriteRange(element, static_cast<const R5DoubleProperty&>(property));
    case R5PropertyType::kEnum:
      return WriteEntries(element, static_cast<const R5EnumProperty&>(property));
    default:
      return;
  }
}

// The "Property" element of `property`; null for a type that a definition cannot name.
DOM_Element PropertyElement(DOM_Document& document, const R5Property& property) {
  const char* type = R5Property::GetTypeName(property.GetType());
  if (!*type) return DOM_Element();
  DOM_Element element = document.createElement("Property");
  if (element.isNull()) return element;
  SetText(element, "name", property.GetName());
  SetText(element, "type", type);
  SetText(element, "mandatory", property.IsMandatory() ? "true" : "false");
  WriteTypeDetails(element, property);
  if (!property.GetDescription().IsEmpty()) {
    SetText(element, "description", property.GetDescription());
  }
  if (!property.GetHelp().IsEmpty()) {
    VCString help = property.GetHelp();
    help.Replace("\n", "|");
    SetText(element, "help", help);
  }
  return element;
}

}  // namespace

VCString VCUUserDefinedProperties::EncodeUserPropDef(const R5PropertySet& set) {
  DOM_Document document = DOM_Document::createDocument();
  DOM_Element root = document.createElement("Properties");
  if (root.isNull() || document.appendChild(root).isNull()) return VCString();
  for (int32_t i = 0; i < set.GetCount(); ++i) {
    const DOM_Element element = PropertyElement(document, *set.GetProperty(i));
    if (!element.isNull() && root.appendChild(element).isNull()) return VCString();
  }
  VCUDataBuffer buffer;
  if (!VCUXmlHelper::ConvertNodeTreeToHumanReadableText(root, &buffer)) return VCString();
  const char* text = buffer.GetBasePtr();
  return VCString(text[0] == '\n' ? text + 1 : text);
}
