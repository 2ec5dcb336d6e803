#include <utilkit/xml/dom_node_list.h>

#include "xml/dom_access.h"

uint32_t DOM_NodeList::getLength() const {
  return isNull() ? 0 : static_cast<uint32_t>(VCUDomAccess::List(*this)->getLength());
}

DOM_Node DOM_NodeList::item(uint32_t index) const {
  return isNull() ? DOM_Node()
                  : VCUDomAccess::Wrap(m_document, VCUDomAccess::List(*this)->item(index));
}
