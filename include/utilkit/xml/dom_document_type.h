// DOM_DocumentType: a handle to a document's DOCTYPE node.
//
//   DOM_DocumentType type = doc.getDoctype();
//   if (!type.isNull()) {
//     DOM_NamedNodeMap entities = type.getEntities();   // ENTITY_NODE items
//     DOMString subset = type.getInternalSubset();
//   }
//
// External DTDs are never read (see xml_helper.h), so the entities and
// notations are those of the internal subset. Ownership and failure as for
// DOM_Node (dom_node.h).
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/xml/dom_named_node_map.h>
#include <utilkit/xml/dom_node.h>

class UTILKIT_API DOM_DocumentType : public DOM_Node {
 public:
  // A null handle.
  DOM_DocumentType() = default;
  // The same node when it is a document type; otherwise a null handle.
  explicit DOM_DocumentType(const DOM_Node& node);

  // The name after DOCTYPE (the root element's expected tag).
  DOMString getName() const;
  // The general entities declared, as ENTITY_NODE items.
  DOM_NamedNodeMap getEntities() const;
  // The notations declared, as NOTATION_NODE items.
  DOM_NamedNodeMap getNotations() const;
  // The identifiers of the external subset; empty or null when absent.
  DOMString getPublicId() const;
  DOMString getSystemId() const;
  // The text between "[" and "]"; empty or null when there is none.
  DOMString getInternalSubset() const;
};
