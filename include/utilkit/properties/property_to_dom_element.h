// VFPropertyToDomElement: describes one property as an XML "property" element.
//
// Property editors and catalogues of the host family read property
// descriptions in this vocabulary; VCUXmlHelper::PropertyToDomElement is
// the XML helper's name for the same operation. The element appended to
// `parent` looks like
//
//   <property index="2" lookup_en="Runs" label_en="Number of runs" generated="true">
//     <integer>
//       <dimension>DIMENSIONLESS</dimension>
//       <default_units>(no units)</default_units>
//       <default_format>%d</default_format>
//       <default_value>4</default_value>
//     </integer>
//   </property>
//
// "lookup_en" is the name a host looks the property up by: `name`, or the
// property's own name when `name` is empty. "label_en" is the text shown
// to users: the description, or the lookup name when there is none.
// "index" is the caller's position of the property; "generated" marks the
// description as made from a property rather than written by hand. The
// child says how the value is edited:
//   - "real" (float, double; format "%g") or "integer" (long "%d", huge
//     "%lld"), each with "dimension", "default_units" and "default_format";
//   - "options" (enumerations and booleans) with one "item" per entry,
//     each with its "index" from 0 and the entry's name as text (booleans:
//     "false", "true");
//   - "edit" for strings and host-derived types.
// The child holds "default_value", the value as text, only while the
// property is defined.
//
//   DOM_Document doc = DOM_Document::createDocument();
//   DOM_Element list = doc.createElement("properties");
//   doc.appendChild(list);
//   for (int32_t i = 0; i < set.GetCount(); ++i)
//     VFPropertyToDomElement(set.GetProperty(i), i, list, "");
//
// Ownership: the new element belongs to `parent`'s document; the property
// is only read.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/properties/r5_property.h>
#include <utilkit/xml/dom_element.h>

// Appends the description of `property` (not null) to `parent`. False, with
// `parent` unchanged and nothing on the error stack, when `parent` is null
// or the DOM refuses a node (a name or text that XML cannot hold).
UTILKIT_API bool VFPropertyToDomElement(const R5Property* property, int32_t index,
                                        DOM_Element& parent, const VCString& name);
