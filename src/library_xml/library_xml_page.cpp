// VCULibraryXML_Page (see library_xml_page.h).
#include <utilkit/library_xml/library_xml_page.h>

#include <utilkit/base/error_report.h>

VCULibraryXML_Page::~VCULibraryXML_Page() {
  for (VCULibraryXML_Item* item : m_items) delete item;
}

bool VCULibraryXML_Page::AppendItem(VCULibraryXML_Item* item) {
  if (!item) return false;
  if (m_items.Add(item) < 0) {
    delete item;
    return VFReportError(kErrorOutOfMemory, "VCULibraryXML_Page::AppendItem");
  }
  return true;
}
