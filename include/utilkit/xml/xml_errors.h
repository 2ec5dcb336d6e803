// Error codes of the XML helper, the DOM handles and the data buffer.
//
// Every failure is pushed on the error stack with one of these codes, the
// library's message for it (VFTextGet(VFGetUtilKitText(), code), followed by
// the tag or attribute name where the message ends in ": ") and the
// qualified name of the reporting member as location, e.g.
//
//   DOM_Element child;
//   if (!VCUXmlHelper::GetSingleElementChild(parent, "Name", &child)) {
//     const VCErrorRecord* e = VFErrorGetLast();
//     // VFErrorGetCode(e) == kXmlErrorNoElement,
//     // VFErrorGetMessage(e) == "No element found with name : Name"
//   }
//
// A parse that fails pushes kXmlErrorParse with the parser's own message
// when it gives one.
#pragma once

#include <cstdint>

#include <utilkit/base/base_errors.h>

// clang-format off
inline constexpr int32_t kXmlErrorParse = -655761;          // Error parsing XML text
inline constexpr int32_t kXmlErrorManyElements = -655762;   // There is more than one element...: <tag>
inline constexpr int32_t kXmlErrorUnknown = -655763;        // Unknown error in XML
inline constexpr int32_t kXmlErrorNoElement = -655764;      // No element found with name : <tag>
inline constexpr int32_t kXmlErrorNoAttributes = -655765;   // No attributes available...: <name>
inline constexpr int32_t kXmlErrorNoAttribute = -655766;    // No attribute found with name : <name>
inline constexpr int32_t kXmlErrorGetAttribute = -655767;   // Unknown error in GetAttribute
inline constexpr int32_t kXmlErrorNoTextChild = -655768;    // Node does not have a Text child : <tag>
inline constexpr int32_t kXmlErrorEmptyText = -655769;      // No text specified in Text child of node :<tag>
inline constexpr int32_t kXmlErrorOutOfMemory = kErrorOutOfMemory;  // Out of memory
// clang-format on
