// DOM_Node: a handle to one node of an XML document.
//
// The DOM handles (DOM_Node, DOM_Element, DOM_Document, DOM_DocumentType,
// DOM_NodeList, DOM_NamedNodeMap) are small values over the parser's DOM: copying a
// handle copies the reference, not the node, and two handles compare equal
// when they refer to the same node. A default-constructed handle is null
// (isNull()); on a null handle every reader returns a null handle, a null
// string, 0 or false, so navigation chains need one test at the end.
//
//   DOM_Document doc = VCUXmlHelper::ParseXml(text, -1);
//   for (DOM_Node n = doc.getDocumentElement().getFirstChild(); !n.isNull();
//        n = n.getNextSibling()) {
//     if (n.getNodeType() == DOM_Node::ELEMENT_NODE) use(n.getNodeName().transcode());
//   }
//
// Ownership: every handle keeps its whole document alive (shared, counted
// reference), so nodes stay valid while any handle to any node of the
// document exists; the document is freed with the last handle. Nodes
// removed from the tree live as long as their document. Handles to one
// document are used by one thread at a time.
//
// Failure: the handles never throw. Members that the DOM may refuse return
// a null handle or false and describe the refusal in an optional
// DOM_DOMException (dom_exception.h). Calling one on a null handle is
// refused with INVALID_STATE_ERR.
//
// Include <utilkit/xml/dom.h> for all handle classes at once.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/xml/dom_exception.h>
#include <utilkit/xml/dom_string.h>

class DOM_Document;
class DOM_NamedNodeMap;
class DOM_NodeList;
struct VCUDomNodeRef;  // the parser's node, opaque to hosts
struct VCUDomAccess;   // the library's access to the parser's objects

class UTILKIT_API DOM_Node {
 public:
  // Node types as getNodeType() reports them. XML_DECL_NODE is an XML
  // declaration made with DOM_Document::createXMLDecl (parsed documents do
  // not keep their declaration as a node).
  enum NodeType : int16_t {
    ELEMENT_NODE = 1,
    ATTRIBUTE_NODE = 2,
    TEXT_NODE = 3,
    CDATA_SECTION_NODE = 4,
    ENTITY_REFERENCE_NODE = 5,
    ENTITY_NODE = 6,
    PROCESSING_INSTRUCTION_NODE = 7,
    COMMENT_NODE = 8,
    DOCUMENT_NODE = 9,
    DOCUMENT_TYPE_NODE = 10,
    DOCUMENT_FRAGMENT_NODE = 11,
    NOTATION_NODE = 12,
    XML_DECL_NODE = 13
  };

  // A null handle.
  DOM_Node() = default;

  // True when the handle refers to no node.
  bool isNull() const { return m_node == nullptr; }
  // Same node (two null handles are equal).
  friend bool operator==(const DOM_Node& a, const DOM_Node& b) { return a.m_node == b.m_node; }

  // The name: the tag of an element, the target of a processing
  // instruction, "#text", "#comment", "#document" and so on.
  DOMString getNodeName() const;
  // The value: the text of text, CDATA, comment and attribute nodes and the
  // data of a processing instruction; null for elements and documents.
  DOMString getNodeValue() const;
  // One of NodeType; 0 for a null handle.
  int16_t getNodeType() const;
  // Replaces the value; false when the node is read-only (entity
  // reference contents) or the handle is null.
  bool setNodeValue(const DOMString& value, DOM_DOMException* error = nullptr);

  DOM_Node getParentNode() const;
  DOM_Node getFirstChild() const;
  DOM_Node getLastChild() const;
  DOM_Node getPreviousSibling() const;
  DOM_Node getNextSibling() const;
  bool hasChildNodes() const;
  // The live list of children (null only for a null handle).
  DOM_NodeList getChildNodes() const;
  // The live attribute map of an element; a null map for any other node.
  DOM_NamedNodeMap getAttributes() const;
  // The document the node belongs to; null for a document itself.
  DOM_Document getOwnerDocument() const;

  // Appends `newChild` (moved from its old place if it has one) and
  // returns it; null when the DOM refuses (HIERARCHY_REQUEST_ERR,
  // WRONG_DOCUMENT_ERR for a node of another document, ...).
  DOM_Node appendChild(const DOM_Node& newChild, DOM_DOMException* error = nullptr);
  // Inserts `newChild` before `refChild` (at the end when `refChild` is
  // null) and returns it; null when refused (NOT_FOUND_ERR, ...).
  DOM_Node insertBefore(const DOM_Node& newChild, const DOM_Node& refChild,
                        DOM_DOMException* error = nullptr);
  // Puts `newChild` in the place of `oldChild` and returns `oldChild`; null when refused.
  DOM_Node replaceChild(const DOM_Node& newChild, const DOM_Node& oldChild,
                        DOM_DOMException* error = nullptr);
  // Detaches `oldChild` and returns it; null when it is not a child (NOT_FOUND_ERR).
  DOM_Node removeChild(const DOM_Node& oldChild, DOM_DOMException* error = nullptr);
  // A copy in the same document, without a parent (with all descendants
  // when `deep`); null for a document (NOT_SUPPORTED_ERR) or when refused.
  DOM_Node cloneNode(bool deep, DOM_DOMException* error = nullptr) const;

 protected:
  std::shared_ptr<void> m_document;  // keeps the owning document alive
  VCUDomNodeRef* m_node = nullptr;

  friend struct VCUDomAccess;
};
