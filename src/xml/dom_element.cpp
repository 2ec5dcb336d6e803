#include <utilkit/xml/dom_element.h>

#include "xml/dom_access.h"

using utilkit::xml::FromXml;
using utilkit::xml::Guarded;
using utilkit::xml::XmlChars;

namespace {

xc::DOMElement* ElementOf(const DOM_Node& handle) {
  return static_cast<xc::DOMElement*>(VCUDomAccess::Node(handle));
}

xc::DOMElement* RequireElement(const DOM_Node& handle) {
  return static_cast<xc::DOMElement*>(utilkit::xml::Require(handle));
}

}  // namespace

DOM_Element::DOM_Element(const DOM_Node& node) {
  if (node.getNodeType() == ELEMENT_NODE) static_cast<DOM_Node&>(*this) = node;
}

DOMString DOM_Element::getTagName() const {
  return isNull() ? DOMString() : FromXml(ElementOf(*this)->getTagName());
}

DOMString DOM_Element::getAttribute(const DOMString& name) const {
  return isNull() ? DOMString() : FromXml(ElementOf(*this)->getAttribute(XmlChars(name)));
}

bool DOM_Element::hasAttribute(const DOMString& name) const {
  return !isNull() && ElementOf(*this)->getAttributeNode(XmlChars(name)) != nullptr;
}

bool DOM_Element::setAttribute(const DOMString& name, const DOMString& value,
                               DOM_DOMException* error) {
  return Guarded(error, [&] {
    RequireElement(*this)->setAttribute(XmlChars(name), XmlChars(value));
    return true;
  });
}

bool DOM_Element::removeAttribute(const DOMString& name, DOM_DOMException* error) {
  return Guarded(error, [&] {
    RequireElement(*this)->removeAttribute(XmlChars(name));
    return true;
  });
}

DOM_NodeList DOM_Element::getElementsByTagName(const DOMString& name) const {
  if (isNull()) return DOM_NodeList();
  return Guarded(nullptr, [&] {
    return VCUDomAccess::Wrap(m_document, ElementOf(*this)->getElementsByTagName(XmlChars(name)));
  });
}
