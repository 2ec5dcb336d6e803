// The DOM handles over the XML parser in one include: DOM_Node, DOM_Element,
// DOM_Document, DOM_DocumentType, DOM_NodeList, DOM_NamedNodeMap, DOMString and
// DOM_DOMException. See dom_node.h for their shared rules (value semantics,
// null handles, ownership, failure without exceptions).
//
// The handles keep the parser's own types out of this library's headers:
// hosts need neither its headers nor its library to use them.
#pragma once

#include <utilkit/xml/dom_document.h>
#include <utilkit/xml/dom_document_type.h>
#include <utilkit/xml/dom_element.h>
#include <utilkit/xml/dom_exception.h>
#include <utilkit/xml/dom_named_node_map.h>
#include <utilkit/xml/dom_node.h>
#include <utilkit/xml/dom_node_list.h>
#include <utilkit/xml/dom_string.h>
