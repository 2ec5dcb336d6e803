#include <utilkit/xml/dom_named_node_map.h>

#include "xml/dom_access.h"

using utilkit::xml::XmlChars;

uint32_t DOM_NamedNodeMap::getLength() const {
  return isNull() ? 0 : static_cast<uint32_t>(VCUDomAccess::Map(*this)->getLength());
}

DOM_Node DOM_NamedNodeMap::item(uint32_t index) const {
  return isNull() ? DOM_Node()
                  : VCUDomAccess::Wrap(m_document, VCUDomAccess::Map(*this)->item(index));
}

DOM_Node DOM_NamedNodeMap::getNamedItem(const DOMString& name) const {
  return isNull() ? DOM_Node()
                  : VCUDomAccess::Wrap(m_document,
                                       VCUDomAccess::Map(*this)->getNamedItem(XmlChars(name)));
}
