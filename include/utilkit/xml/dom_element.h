// DOM_Element: a handle to an element node, with its attributes.
//
//   DOM_Element channel = doc.createElement("Channel");
//   channel.setAttribute("name", "Force");
//   DOMString unit = channel.getAttribute("unit");   // "" when absent
//   DOM_Element e(node);                             // null unless node is an element
//
// Ownership and failure as for DOM_Node (dom_node.h).
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/xml/dom_node.h>
#include <utilkit/xml/dom_node_list.h>

class UTILKIT_API DOM_Element : public DOM_Node {
 public:
  // A null handle.
  DOM_Element() = default;
  // The same node when it is an element; otherwise a null handle.
  explicit DOM_Element(const DOM_Node& node);

  // The element's name.
  DOMString getTagName() const;
  // The attribute's value; an empty (not null) string when there is no such attribute.
  DOMString getAttribute(const DOMString& name) const;
  // True when the element has the attribute (also when its value is empty).
  bool hasAttribute(const DOMString& name) const;
  // Adds or replaces an attribute; false when refused (INVALID_CHARACTER_ERR
  // for a bad name, NO_MODIFICATION_ALLOWED_ERR for read-only elements).
  bool setAttribute(const DOMString& name, const DOMString& value,
                    DOM_DOMException* error = nullptr);
  // Removes the attribute if present; false when refused (read-only element).
  bool removeAttribute(const DOMString& name, DOM_DOMException* error = nullptr);
  // All descendant elements with that tag ("*": all) in document order.
  DOM_NodeList getElementsByTagName(const DOMString& name) const;
};
