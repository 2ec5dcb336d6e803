// VCULibraryXML_Item and VCULibraryXML_ItemText (see their headers).
#include <utilkit/library_xml/library_xml_item.h>
#include <utilkit/library_xml/library_xml_item_text.h>

#include <cstring>
#include <new>

#include <utilkit/base/error_report.h>

#include "library_xml/xml_text.h"

VCULibraryXML_Item::~VCULibraryXML_Item() = default;

VCULibraryXML_ItemText::~VCULibraryXML_ItemText() = default;

bool VCULibraryXML_ItemText::SetText(const char* text, int32_t length) {
  if (!text) text = "";
  try {
    m_text = length < 0 ? VCString(text) : VCString(text, static_cast<size_t>(length));
  } catch (const std::bad_alloc&) {
    return VFReportError(kErrorOutOfMemory, "VCULibraryXML_ItemText::SetText");
  }
  return true;
}

bool VCULibraryXML_ItemText::IsXmlText() const {
  return utilkit::library_xml::IsXmlText(m_text.view());
}
