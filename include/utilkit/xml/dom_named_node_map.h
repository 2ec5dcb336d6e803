// DOM_NamedNodeMap: a handle to the live attribute map of an element.
//
//   DOM_NamedNodeMap attributes = element.getAttributes();
//   DOM_Node unit = attributes.getNamedItem("unit");   // null when absent
//   for (uint32_t i = 0; i < attributes.getLength(); ++i) use(attributes.item(i));
//
// Attribute nodes are listed sorted by name (the parser's map order), not in
// the order of the source text. Ownership as for DOM_Node (dom_node.h): the
// map keeps its document alive.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/xml/dom_node.h>

struct VCUDomNamedNodeMapRef;  // the parser's map, opaque to hosts

class UTILKIT_API DOM_NamedNodeMap {
 public:
  // A null map (the attributes of a node that is not an element).
  DOM_NamedNodeMap() = default;

  bool isNull() const { return m_map == nullptr; }
  // Number of attributes; 0 for a null map.
  uint32_t getLength() const;
  // The attribute node at `index` (from 0); null when out of range.
  DOM_Node item(uint32_t index) const;
  // The attribute node with that name; null when absent.
  DOM_Node getNamedItem(const DOMString& name) const;

 private:
  std::shared_ptr<void> m_document;
  VCUDomNamedNodeMapRef* m_map = nullptr;

  friend struct VCUDomAccess;
};
