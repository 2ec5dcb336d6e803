// VCULibraryXML_ItemText: a plain text on a report library page.
//
// The text is kept exactly, byte for byte: line ends (CR included), markup
// characters, non-ASCII UTF-8 and even 0 bytes survive a save and load.
// In the file a text that is valid UTF-8 without control bytes other than
// tab, line feed and carriage return is the escaped text of its "Text"
// element (CR as "&#13;"); any other text is stored as base64 with the
// attribute encoding="base64".
//
//   auto* note = new VCULibraryXML_ItemText();
//   note->SetText("Peak force 12.5 kN < limit");
//   page->AppendItem(note);  // the page owns it now
//
// Ownership: the item owns a copy of its text.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/library_xml/library_xml_item.h>

class UTILKIT_API VCULibraryXML_ItemText : public VCULibraryXML_Item {
 public:
  VCULibraryXML_ItemText() = default;
  ~VCULibraryXML_ItemText() override;

  VTLibraryXMLItemType GetType() const override { return VTLibraryXMLItemType::Text; }
  // Replaces the text by `length` bytes of `text` (negative: up to the first
  // 0; null counts as ""). False with -655577 when memory runs out.
  bool SetText(const char* text, int32_t length = -1);
  const VCString& GetText() const { return m_text; }
  // True when the text can be stored as XML text (see above), false when it
  // is stored as base64.
  bool IsXmlText() const;

 private:
  VCString m_text;
};
