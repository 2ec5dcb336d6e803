// DOM_Document: a handle to an XML document, the factory of its nodes.
//
// Documents come from VCUXmlHelper::ParseXml / ParseXmlFromFile or from
// createDocument(). Nodes are created in a document and then placed with
// appendChild or insertBefore; a node belongs to the document that created
// it (importNode copies a node from another document).
//
//   DOM_Document doc = DOM_Document::createDocument();
//   DOM_Element root = doc.createElement("Properties");
//   doc.appendChild(root);
//   root.appendChild(doc.createTextNode("x"));
//
// Ownership and failure as for DOM_Node (dom_node.h): the document lives
// while any handle to it or to one of its nodes exists.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/xml/dom_document_type.h>
#include <utilkit/xml/dom_element.h>
#include <utilkit/xml/dom_node.h>
#include <utilkit/xml/dom_node_list.h>

class UTILKIT_API DOM_Document : public DOM_Node {
 public:
  // A null handle.
  DOM_Document() = default;
  // The same node when it is a document; otherwise a null handle.
  explicit DOM_Document(const DOM_Node& node);

  // A new, empty document; null only when the XML platform could not be
  // initialised or memory ran out.
  static DOM_Document createDocument();

  // The root element; null when there is none.
  DOM_Element getDocumentElement() const;
  // The document type node; null when there is none.
  DOM_DocumentType getDoctype() const;
  // All elements with that tag ("*": all) in document order.
  DOM_NodeList getElementsByTagName(const DOMString& tagName) const;

  // Each create member makes a node without a parent; null when refused.
  // INVALID_CHARACTER_ERR for a tag that is not an XML name.
  DOM_Element createElement(const DOMString& tagName, DOM_DOMException* error = nullptr);
  DOM_Node createTextNode(const DOMString& data, DOM_DOMException* error = nullptr);
  DOM_Node createComment(const DOMString& data, DOM_DOMException* error = nullptr);
  DOM_Node createCDATASection(const DOMString& data, DOM_DOMException* error = nullptr);
  // INVALID_CHARACTER_ERR for a target that is not an XML name.
  DOM_Node createProcessingInstruction(const DOMString& target, const DOMString& data,
                                       DOM_DOMException* error = nullptr);
  // A reference to a general entity; its contents are copied from the
  // document type's entity of that name, if any. INVALID_CHARACTER_ERR for a bad name.
  DOM_Node createEntityReference(const DOMString& name, DOM_DOMException* error = nullptr);
  // An XML declaration node (XML_DECL_NODE) to be placed first in the
  // document; `encoding` and `standalone` may be null or empty (left out).
  // The serialiser always writes the encoding "UTF-8" it produces.
  DOM_Node createXMLDecl(const DOMString& version, const DOMString& encoding,
                         const DOMString& standalone, DOM_DOMException* error = nullptr);
  // A copy of a node of any document, owned by this one and without a
  // parent (with all descendants when `deep`); NOT_SUPPORTED_ERR for
  // documents and document types.
  DOM_Node importNode(const DOM_Node& node, bool deep, DOM_DOMException* error = nullptr);
};
