#include <utilkit/xml/dom_document_type.h>

#include "xml/dom_access.h"

using utilkit::xml::FromXml;

namespace {

xc::DOMDocumentType* TypeOf(const DOM_Node& handle) {
  return static_cast<xc::DOMDocumentType*>(VCUDomAccess::Node(handle));
}

}  // namespace

DOM_DocumentType::DOM_DocumentType(const DOM_Node& node) {
  if (node.getNodeType() == DOCUMENT_TYPE_NODE) static_cast<DOM_Node&>(*this) = node;
}

DOMString DOM_DocumentType::getName() const {
  return isNull() ? DOMString() : FromXml(TypeOf(*this)->getName());
}

DOM_NamedNodeMap DOM_DocumentType::getEntities() const {
  return isNull() ? DOM_NamedNodeMap()
                  : VCUDomAccess::Wrap(m_document, TypeOf(*this)->getEntities());
}

DOM_NamedNodeMap DOM_DocumentType::getNotations() const {
  return isNull() ? DOM_NamedNodeMap()
                  : VCUDomAccess::Wrap(m_document, TypeOf(*this)->getNotations());
}

DOMString DOM_DocumentType::getPublicId() const {
  return isNull() ? DOMString() : FromXml(TypeOf(*this)->getPublicId());
}

DOMString DOM_DocumentType::getSystemId() const {
  return isNull() ? DOMString() : FromXml(TypeOf(*this)->getSystemId());
}

DOMString DOM_DocumentType::getInternalSubset() const {
  return isNull() ? DOMString() : FromXml(TypeOf(*this)->getInternalSubset());
}
