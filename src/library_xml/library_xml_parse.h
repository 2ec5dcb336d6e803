// Reading a report library file or text with Xerces' SAX parser (see
// library_xml.h for the format), so that no document tree is built: image
// text arrives in pieces of at most 64 KiB characters and is decoded as it
// comes (by VCULibraryXMLReader).
//
//   VCULibraryXML fresh;
//   if (ReadLibraryFile(path, &fresh, "VCULibraryXML::LoadFromFile")) { ... }
//
// The parser has the XML helper's safe settings (external entities resolve
// to nothing, a memory bound per parse, the same entity expansion limit),
// and a DOCTYPE is refused outright. Ownership: pages and items go into the
// caller's library as they are read; on failure the caller drops it.
#pragma once

#include <cstddef>

#include <utilkit/library_xml/library_xml.h>

namespace utilkit::library_xml {

// Reads the file at `path` into `*library` (empty). False with the codes of
// library_xml.h pushed at `location`.
bool ReadLibraryFile(const char* path, VCULibraryXML* library, const char* location);
// As ReadLibraryFile from `length` bytes of `text`.
bool ReadLibraryBuffer(const char* text, size_t length, VCULibraryXML* library,
                       const char* location);

}  // namespace utilkit::library_xml
