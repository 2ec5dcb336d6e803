// Reading a "Properties" definition into an R5PropertySet.
#include <utilkit/base/error_report.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/base/number_text.h>
#include <utilkit/base/text_table.h>
#include <utilkit/properties/properties_errors.h>
#include <utilkit/properties/user_defined_properties.h>
#include <utilkit/xml/dom.h>
#include <utilkit/xml/xml_helper.h>

#include <cmath>
#include <limits>

namespace {

constexpr const char* kLocation = "VCUUserDefinedProperties::DecodeUserPropDef";

// Reads an optional attribute; false, with nothing pushed, when it is absent.
bool ReadOptional(const DOM_Element& element, const char* name, VCString* value) {
  return element.hasAttribute(name) && VCUXmlHelper::GetAttribute(element, name, value);
}

// One bound as the definition gives it.
struct Bound {
  bool present = false;
  VCString text;
  double value = 0;
  bool allowEqual = true;
};

bool ReadBound(const DOM_Element& element, const char* name, int32_t code, Bound* bound) {
  bound->present = ReadOptional(element, name, &bound->text);
  if (bound->present && (!VFAscToNum(bound->text, &bound->value) || std::isnan(bound->value))) {
    VFReportError(code, kLocation);
    return false;
  }
  return true;
}

bool ReadAllowEqual(const DOM_Element& element, const char* name, int32_t code, Bound* bound) {
  VCString text;
  if (ReadOptional(element, name, &text) && !VFAscToBoolean(text, &bound->allowEqual)) {
    VFReportError(code, kLocation);
    return false;
  }
  return true;
}

// An integer bound: exact when the text is an integer, else rounded half
// away from zero; clamped to the type.
template <class I>
I IntegerBound(const Bound& bound, I absent) {
  constexpr I kLowest = std::numeric_limits<I>::lowest();
  constexpr I kHighest = std::numeric_limits<I>::max();
  if (!bound.present) return absent;
  int64_t exact = 0;
  if (VFAscToNum(bound.text, &exact)) {
    return exact < kLowest ? kLowest : exact > kHighest ? kHighest : static_cast<I>(exact);
  }
  const double rounded = std::trunc(bound.value >= 0 ? bound.value + 0.5 : bound.value - 0.5);
  if (rounded <= static_cast<double>(kLowest)) return kLowest;
  if (rounded >= static_cast<double>(kHighest)) return kHighest;
  return static_cast<I>(rounded);
}

template <class T>
T BoundOf(const Bound& bound, T absent) {
  if constexpr (std::is_integral_v<T>) {
    return IntegerBound<T>(bound, absent);
  } else {
    return bound.present ? static_cast<T>(bound.value) : absent;
  }
}

// Gives a new numeric property its range and leaves it without a value.
template <class T>
R5Property* Ranged(R5RangedProperty<T>* property, const Bound& min, const Bound& max) {
  if (!property) return nullptr;
  using P = R5RangedProperty<T>;
  property->SetRange(BoundOf<T>(min, P::Lowest()), min.allowEqual, BoundOf<T>(max, P::Highest()),
                     max.allowEqual);
  property->SetDefined(false);
  return property;
}

R5Property* AddEnumeration(const DOM_Element& element, const VCString& name, R5PropertySet& set) {
  VCString options;
  if (!VCUXmlHelper::GetAttribute(element, "enumopts", &options)) return nullptr;
  VCStringArray pieces;
  pieces.SplitString(options, ",", VCStringArray::kSplitSkipEmpty);
  R5EnumProperty enumeration(name);
  bool valid = pieces.GetSize() >= 1;
  for (const VCString& piece : pieces) valid = valid && enumeration.Add(R5EnumValue(piece));
  if (!valid) {
    VFReportError(kPropertiesErrorEnumOpts, kLocation);
    return nullptr;
  }
  return set.AddEnum(enumeration);
}

// Creates the property of `type` (lower case); null when the decode must end.
R5Property* CreateProperty(const DOM_Element& element, const VCString& name, const VCString& type,
                           const Bound& min, const Bound& max, R5PropertySet& set) {
  if (type == "string") {
    R5StringProperty* property = set.AddString(name, "");
    if (property) property->SetMultiLineString(true);
    return property;
  }
  if (type == "long") return Ranged(set.AddLong(name, 0), min, max);
  if (type == "huge") return Ranged(set.AddHuge(name, 0), min, max);
  if (type == "float") return Ranged(set.AddFloat(name, 0), min, max);
  if (type == "double") return Ranged(set.AddDouble(name, 0), min, max);
  if (type == "enum") return AddEnumeration(element, name, set);
  if (type == "boolean") return set.AddBoolean(name, false);
  VFReportError(kPropertiesErrorUnsupportedType, kLocation, type);
  return nullptr;
}

// Decodes one "Property" element into `set`; false when the decode must end.
bool DecodeProperty(const DOM_Element& element, R5PropertySet& set) {
  VCString name;
  if (!VCUXmlHelper::GetAttribute(element, "name", &name) || name.IsEmpty()) return false;
  VCString type = "string";
  VCString mandatory = "false";
  ReadOptional(element, "type", &type);
  ReadOptional(element, "mandatory", &mandatory);
  Bound min;
  Bound max;
  if (!ReadBound(element, "min", kPropertiesErrorMin, &min) ||
      !ReadBound(element, "max", kPropertiesErrorMax, &max) ||
      !ReadAllowEqual(element, "minallowequal", kPropertiesErrorMinAllowEqual, &min) ||
      !ReadAllowEqual(element, "maxallowequal", kPropertiesErrorMaxAllowEqual, &max)) {
    return false;
  }
  type.MakeLower();
  R5Property* property = CreateProperty(element, name, type, min, max, set);
  if (!property) return false;
  VCString text;
  if (ReadOptional(element, "description", &text)) property->SetDescription(text);
  if (ReadOptional(element, "help", &text)) {
    text.Replace("|", "\n");
    property->SetHelp(text);
  }
  property->SetMandatory(mandatory.CompareNoCase("true") == 0);
  return true;
}

}  // namespace

bool VCUUserDefinedProperties::DecodeUserPropDef(const DOM_Node& root, R5PropertySet& set) {
  set.Clear();
  const DOM_Element properties(root.getNodeType() == DOM_Node::DOCUMENT_NODE
                                   ? DOM_Document(root).getDocumentElement()
                                   : root);
  if (properties.isNull() || !(properties.getTagName() == DOMString("Properties"))) {
    VFReportError(kPropertiesErrorSyntax, kLocation);
    return false;
  }
  // Children are walked by sibling: a node list read by index rescans from its start.
  for (DOM_Node node = properties.getFirstChild(); !node.isNull(); node = node.getNextSibling()) {
    const DOM_Element child(node);
    if (child.isNull() || !(child.getTagName() == DOMString("Property"))) continue;
    if (!DecodeProperty(child, set)) {
      VFReportError(kPropertiesErrorSyntax, kLocation, nullptr, 1);
      return false;
    }
  }
  return true;
}

bool VCUUserDefinedProperties::DecodeUserPropDef(const VCString& text, R5PropertySet& set) {
  VCString trimmed = text;
  if (trimmed.Trim().IsEmpty()) {
    set.Clear();
    return true;
  }
  const DOM_Document document = VCUXmlHelper::ParseXml(text, text.GetLength());
  if (document.isNull()) {
    set.Clear();
    VFReportError(kPropertiesErrorSyntax, kLocation, nullptr, 1);
    return false;
  }
  return DecodeUserPropDef(document.getDocumentElement(), set);
}
