// DOM_NodeList: a handle to a live, ordered list of nodes (children or search results).
//
//   DOM_NodeList children = element.getChildNodes();
//   for (uint32_t i = 0; i < children.getLength(); ++i) use(children.item(i));
//
// "Live": the list reflects later changes of the tree. Ownership as for
// DOM_Node (dom_node.h): the list keeps its document alive.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/xml/dom_node.h>

struct VCUDomNodeListRef;  // the parser's list, opaque to hosts

class UTILKIT_API DOM_NodeList {
 public:
  // A null list.
  DOM_NodeList() = default;

  bool isNull() const { return m_list == nullptr; }
  // Number of nodes; 0 for a null list.
  uint32_t getLength() const;
  // The node at `index` (from 0); null when `index` is out of range.
  DOM_Node item(uint32_t index) const;

 private:
  std::shared_ptr<void> m_document;
  VCUDomNodeListRef* m_list = nullptr;

  friend struct VCUDomAccess;
};
