// The report library as one self-contained web page (`utilkit report html`).
//
// The page needs no server or network: images are inline data URIs, tables
// are HTML tables whose headers show each column's type (and units), texts
// are escaped into <pre> blocks, and a page index links to each page.
//
//   std::ofstream out("page.html", std::ios::binary);
//   WriteReportHtml(library, out);
#pragma once

#include <ostream>

#include <utilkit/library_xml/library_xml.h>

namespace utilkit::tool {

// Writes the page; false when an image cannot be encoded (memory) or the
// stream fails.
bool WriteReportHtml(const VCULibraryXML& library, std::ostream& out);

}  // namespace utilkit::tool
