#include <utilkit/base/vc_string_array.h>
#include <utilkit/properties/property_to_dom_element.h>
#include <utilkit/properties/r5_boolean_property.h>
#include <utilkit/properties/r5_enum_property.h>
#include <utilkit/xml/dom_document.h>
#include <utilkit/xml/xml_helper.h>

namespace {

// Builds elements in one document; remembers whether the DOM refused any step.
class Writer {
 public:
  explicit Writer(const DOM_Document& document) : m_document(document) {}

  bool Ok() const { return m_ok; }

  // A new element, not yet placed.
  DOM_Element Create(const char* tag) {
    DOM_Element element = m_document.createElement(tag);
    m_ok = m_ok && !element.isNull();
    return element;
  }

  DOM_Element Child(DOM_Element& parent, const char* tag) {
    DOM_Element element = Create(tag);
    m_ok = m_ok && !parent.appendChild(element).isNull();
    return element;
  }

  void Text(DOM_Element& element, const char* text) {
    const DOM_Node node = m_document.createTextNode(VCUXmlHelper::VCToDOMString(text));
    m_ok = m_ok && !node.isNull() && !element.appendChild(node).isNull();
  }

  void TextChild(DOM_Element& parent, const char* tag, const char* text) {
    DOM_Element element = Child(parent, tag);
    Text(element, text);
  }

  void Attribute(DOM_Element& element, const char* name, const char* value) {
    m_ok = m_ok && element.setAttribute(name, VCUXmlHelper::VCToDOMString(value));
  }

 private:
  DOM_Document m_document;
  bool m_ok = true;
};

// The editing child and, for numbers, their display format; null when none.
const char* EditorTag(R5PropertyType type, const char** format) {
  *format = nullptr;
  switch (type) {
    case R5PropertyType::kFloat:
    case R5PropertyType::kDouble:
      *format = "%g";
      return "real";
    case R5PropertyType::kLong:
      *format = "%d";
      return "integer";
    case R5PropertyType::kHuge:
      *format = "%lld";
      return "integer";
    case R5PropertyType::kEnum:
    case R5PropertyType::kBoolean:
      return "options";
    default:
      return "edit";
  }
}

void WriteItems(Writer& writer, DOM_Element& options, const R5Property& property) {
  VCStringArray names;
  if (property.GetType() == R5PropertyType::kBoolean) {
    names.Add("false");
    names.Add("true");
  } else {
    const auto& enumeration = static_cast<const R5EnumProperty&>(property);
    for (int32_t i = 0; i < enumeration.GetValidCount(); ++i) {
      names.Add(enumeration.GetValidEntry(i).GetName());
    }
  }
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    DOM_Element item = writer.Child(options, "item");
    writer.Attribute(item, "index", VCString::Formatted("%d", i));
    writer.Text(item, names[i]);
  }
}

}  // namespace

bool VFPropertyToDomElement(const R5Property* property, int32_t index, DOM_Element& parent,
                            const VCString& name) {
  if (!property || parent.isNull()) return false;
  Writer writer(parent.getOwnerDocument());
  // The description is built apart and appended when complete.
  DOM_Element description = writer.Create("property");
  const VCString& lookup = name.IsEmpty() ? property->GetName() : name;
  writer.Attribute(description, "index", VCString::Formatted("%d", index));
  writer.Attribute(description, "lookup_en", lookup);
  writer.Attribute(description, "label_en",
                   property->GetDescription().IsEmpty() ? lookup : property->GetDescription());
  writer.Attribute(description, "generated", "true");
  const char* format = nullptr;
  DOM_Element editor = writer.Child(description, EditorTag(property->GetType(), &format));
  if (format) {
    writer.TextChild(editor, "dimension", "DIMENSIONLESS");
    writer.TextChild(editor, "default_units", "(no units)");
    writer.TextChild(editor, "default_format", format);
  }
  if (editor.getTagName() == DOMString("options")) WriteItems(writer, editor, *property);
  if (property->IsDefined()) {
    writer.TextChild(editor, "default_value", property->GetValueText());
  }
  return writer.Ok() && !parent.appendChild(description).isNull();
}

bool VCUXmlHelper::PropertyToDomElement(R5Property* property, int32_t index, DOM_Element& parent,
                                        const VCString& name) {
  return VFPropertyToDomElement(property, index, parent, name);
}
