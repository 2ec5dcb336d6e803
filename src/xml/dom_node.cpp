#include <utilkit/xml/dom_node.h>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include <utilkit/base/text_table.h>
#include <utilkit/xml/xml_errors.h>

#include "xml/dom_access.h"
#include "xml/xerces_platform.h"

namespace utilkit::xml {

int16_t NodeTypeOf(const xc::DOMNode* node) {
  if (!node) return 0;
  const auto type = static_cast<int16_t>(node->getNodeType());
  if (type == DOM_Node::PROCESSING_INSTRUCTION_NODE &&
      std::u16string_view(reinterpret_cast<const char16_t*>(node->getNodeName())) == u"xml") {
    return DOM_Node::XML_DECL_NODE;
  }
  return type;
}

xc::DOMNode* Require(const DOM_Node& handle) {
  xc::DOMNode* node = VCUDomAccess::Node(handle);
  if (node) return node;
  // Xerces supplies the message; without a platform there is none to give.
  if (!EnsureXercesPlatform()) throw std::bad_alloc();
  throw xc::DOMException(xc::DOMException::INVALID_STATE_ERR);
}

void ReportDomFailure(DOM_DOMException* error) noexcept {
  try {
    try {
      throw;
    } catch (const xc::DOMException& e) {
      if (error) *error = DOM_DOMException(e.code, FromXml(e.getMessage()));
    } catch (const xc::XMLException& e) {
      if (error) *error = DOM_DOMException(DOM_DOMException::NO_ERR, FromXml(e.getMessage()));
    } catch (...) {  // OutOfMemoryException, std::bad_alloc
      if (error) {
        *error = DOM_DOMException(DOM_DOMException::NO_ERR,
                                  DOMString(VFTextGet(VFGetUtilKitText(), kXmlErrorOutOfMemory)));
      }
    }
  } catch (...) {  // no memory left even for the description
    if (error) *error = DOM_DOMException();
  }
}

}  // namespace utilkit::xml

using utilkit::xml::FromXml;
using utilkit::xml::Guarded;
using utilkit::xml::Require;
using utilkit::xml::XmlChars;

namespace {

// The handle of `node`, sharing `from`'s document.
DOM_Node Related(const DOM_Node& from, xc::DOMNode* node) {
  return VCUDomAccess::Wrap(VCUDomAccess::Owner(from), node);
}

xc::DOMNode* NodeOf(const DOM_Node& handle) {
  return VCUDomAccess::Node(handle);
}

}  // namespace

DOMString DOM_Node::getNodeName() const {
  return isNull() ? DOMString() : FromXml(NodeOf(*this)->getNodeName());
}

DOMString DOM_Node::getNodeValue() const {
  return isNull() ? DOMString() : FromXml(NodeOf(*this)->getNodeValue());
}

int16_t DOM_Node::getNodeType() const {
  return utilkit::xml::NodeTypeOf(NodeOf(*this));
}

bool DOM_Node::setNodeValue(const DOMString& value, DOM_DOMException* error) {
  return Guarded(error, [&] {
    Require(*this)->setNodeValue(XmlChars(value));
    return true;
  });
}

DOM_Node DOM_Node::getParentNode() const {
  return isNull() ? DOM_Node() : Related(*this, NodeOf(*this)->getParentNode());
}

DOM_Node DOM_Node::getFirstChild() const {
  return isNull() ? DOM_Node() : Related(*this, NodeOf(*this)->getFirstChild());
}

DOM_Node DOM_Node::getLastChild() const {
  return isNull() ? DOM_Node() : Related(*this, NodeOf(*this)->getLastChild());
}

DOM_Node DOM_Node::getPreviousSibling() const {
  return isNull() ? DOM_Node() : Related(*this, NodeOf(*this)->getPreviousSibling());
}

DOM_Node DOM_Node::getNextSibling() const {
  return isNull() ? DOM_Node() : Related(*this, NodeOf(*this)->getNextSibling());
}

bool DOM_Node::hasChildNodes() const {
  return !isNull() && NodeOf(*this)->hasChildNodes();
}

DOM_NodeList DOM_Node::getChildNodes() const {
  return isNull() ? DOM_NodeList() : VCUDomAccess::Wrap(m_document, NodeOf(*this)->getChildNodes());
}

DOM_NamedNodeMap DOM_Node::getAttributes() const {
  return isNull() ? DOM_NamedNodeMap()
                  : VCUDomAccess::Wrap(m_document, NodeOf(*this)->getAttributes());
}

DOM_Document DOM_Node::getOwnerDocument() const {
  return isNull() ? DOM_Document()
                  : VCUDomAccess::Wrap<DOM_Document>(m_document, NodeOf(*this)->getOwnerDocument());
}

DOM_Node DOM_Node::appendChild(const DOM_Node& newChild, DOM_DOMException* error) {
  return Guarded(error,
                 [&] { return Related(*this, Require(*this)->appendChild(Require(newChild))); });
}

DOM_Node DOM_Node::insertBefore(const DOM_Node& newChild, const DOM_Node& refChild,
                                DOM_DOMException* error) {
  return Guarded(error, [&] {
    return Related(*this, Require(*this)->insertBefore(Require(newChild), NodeOf(refChild)));
  });
}

DOM_Node DOM_Node::replaceChild(const DOM_Node& newChild, const DOM_Node& oldChild,
                                DOM_DOMException* error) {
  return Guarded(error, [&] {
    return Related(*this, Require(*this)->replaceChild(Require(newChild), Require(oldChild)));
  });
}

DOM_Node DOM_Node::removeChild(const DOM_Node& oldChild, DOM_DOMException* error) {
  return Guarded(error,
                 [&] { return Related(*this, Require(*this)->removeChild(Require(oldChild))); });
}

DOM_Node DOM_Node::cloneNode(bool deep, DOM_DOMException* error) const {
  return Guarded(error, [&] {
    xc::DOMNode* node = Require(*this);
    // A cloned document would be a second, unowned document.
    if (node->getNodeType() == xc::DOMNode::DOCUMENT_NODE) {
      throw xc::DOMException(xc::DOMException::NOT_SUPPORTED_ERR);
    }
    return Related(*this, node->cloneNode(deep));
  });
}
