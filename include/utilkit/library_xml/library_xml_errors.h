// Error codes of the report library files (VCULibraryXML and its page and
// item classes).
//
// Every failure is pushed on the error stack with one of these codes, the
// library's message for it (VFTextGet(VFGetUtilKitText(), code)) followed by
// the name the text refers to, and the qualified name of the reporting
// member as location, e.g.
//
//   VCULibraryXML library;
//   if (!library.LoadFromFile("library.lxm")) {
//     const VCErrorRecord* e = VFErrorGetLast();
//     // VFErrorGetCode(e) == kLibraryXMLErrorVersion,
//     // VFErrorGetMessage(e) == "Unsupported report library version: 2",
//     // VFErrorGetLocation(e) == "VCULibraryXML::LoadFromFile"
//   }
#pragma once

#include <cstdint>

// clang-format off
inline constexpr int32_t kLibraryXMLErrorRoot = -656061;       // Not a report library, root element: <name>
inline constexpr int32_t kLibraryXMLErrorVersion = -656062;    // Unsupported report library version: <version>
inline constexpr int32_t kLibraryXMLErrorItem = -656063;       // Malformed report library item: <element/attribute>
inline constexpr int32_t kLibraryXMLErrorBase64 = -656064;     // Bad base64 data in report library item: <element>
inline constexpr int32_t kLibraryXMLErrorImage = -656065;      // Image data does not match its format: <format>
inline constexpr int32_t kLibraryXMLErrorTableSize = -656066;  // Table too large for a report library, cells: <count>
inline constexpr int32_t kLibraryXMLErrorFile = -656067;       // Cannot read or write report library file: <path>
inline constexpr int32_t kLibraryXMLErrorXml = -656068;        // Report library is not well-formed XML: <parser message>
// clang-format on
