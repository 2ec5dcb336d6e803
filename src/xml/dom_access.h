// The bridge between the DOM handles and the Xerces-C DOM they wrap.
//
// Handles store the Xerces objects as opaque pointers so that no Xerces type
// appears in the public headers; VCUDomAccess (a friend of every handle)
// converts in both directions. Wrapping a node always shares the owner
// reference of the handle it came from, which keeps the document alive.
#pragma once

#include <memory>
#include <new>
#include <type_traits>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>

#include <utilkit/xml/dom.h>

namespace xc = XERCES_CPP_NAMESPACE;

static_assert(sizeof(XMLCh) == sizeof(char16_t), "DOMString keeps Xerces' UTF-16 units");

struct VCUDomAccess {
  static xc::DOMNode* Node(const DOM_Node& handle) {
    return reinterpret_cast<xc::DOMNode*>(handle.m_node);
  }
  static const std::shared_ptr<void>& Owner(const DOM_Node& handle) { return handle.m_document; }

  // A handle of type `Handle` (DOM_Node or a derived handle) to `node`, or a null handle.
  template <class Handle = DOM_Node>
  static Handle Wrap(const std::shared_ptr<void>& owner, xc::DOMNode* node) {
    static_assert(std::is_base_of_v<DOM_Node, Handle>);
    Handle handle;
    if (node) {
      DOM_Node& base = handle;
      base.m_document = owner;
      base.m_node = reinterpret_cast<VCUDomNodeRef*>(node);
    }
    return handle;
  }

  static xc::DOMNodeList* List(const DOM_NodeList& list) {
    return reinterpret_cast<xc::DOMNodeList*>(list.m_list);
  }
  static const std::shared_ptr<void>& Owner(const DOM_NodeList& list) { return list.m_document; }
  static DOM_NodeList Wrap(const std::shared_ptr<void>& owner, xc::DOMNodeList* list) {
    DOM_NodeList handle;
    if (list) {
      handle.m_document = owner;
      handle.m_list = reinterpret_cast<VCUDomNodeListRef*>(list);
    }
    return handle;
  }

  static xc::DOMNamedNodeMap* Map(const DOM_NamedNodeMap& map) {
    return reinterpret_cast<xc::DOMNamedNodeMap*>(map.m_map);
  }
  static const std::shared_ptr<void>& Owner(const DOM_NamedNodeMap& map) { return map.m_document; }
  static DOM_NamedNodeMap Wrap(const std::shared_ptr<void>& owner, xc::DOMNamedNodeMap* map) {
    DOM_NamedNodeMap handle;
    if (map) {
      handle.m_document = owner;
      handle.m_map = reinterpret_cast<VCUDomNamedNodeMapRef*>(map);
    }
    return handle;
  }
};

namespace utilkit::xml {

// The characters of `text` for Xerces ("" for a null string).
inline const XMLCh* XmlChars(const DOMString& text) {
  return reinterpret_cast<const XMLCh*>(text.rawBuffer());
}
// A DOMString of Xerces text (null for a null pointer).
inline DOMString FromXml(const XMLCh* text) {
  return DOMString(reinterpret_cast<const char16_t*>(text));
}

// The node type as the handles report it: a processing instruction with the
// target "xml" is an XML declaration made by DOM_Document::createXMLDecl
// (the parser never produces one: the real declaration is not a node).
int16_t NodeTypeOf(const xc::DOMNode* node);

// The Xerces node of `handle`; throws INVALID_STATE_ERR for a null handle
// (inside Guarded, which turns it into the caller's DOM_DOMException).
xc::DOMNode* Require(const DOM_Node& handle);

// Stores the refusal of the DOM operation in flight into `*error` (when
// given). Call only inside a catch block.
void ReportDomFailure(DOM_DOMException* error) noexcept;

// Runs `operation`; any exception from Xerces or the C++ runtime becomes a
// default result (a null handle, false) and a DOM_DOMException in `*error`.
template <class Operation>
auto Guarded(DOM_DOMException* error, Operation&& operation) noexcept -> decltype(operation()) {
  try {
    return operation();
  } catch (...) {
    ReportDomFailure(error);
    return {};
  }
}

}  // namespace utilkit::xml
