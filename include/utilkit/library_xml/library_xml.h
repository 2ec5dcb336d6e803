// VCULibraryXML: a report library, pages of images, texts and tables saved
// as one XML file ("library.lxm" by convention).
//
// A host collects the results of an analysis (rendered plots, notes, result
// tables) into pages and saves them; another program reads them back.
//
//   VCULibraryXML library;
//   library.SetTitle("Fatigue run 12");
//   auto* page = new VCULibraryXML_Page("Overview");
//   auto* plot = new VCULibraryXML_ItemImage();
//   if (plot->SetDataFromFile("force.png") && page->AppendItem(plot) &&
//       library.AppendPage(page) && library.SaveToFile("library.lxm")) { ... }
//
// The file (UTF-8, in the XML helper's human-readable layout: an XML
// declaration, each start tag on its own line indented by one tab per
// level, attributes sorted by name):
//
//   <?xml version="1.0" encoding="UTF-8"?>
//
//   <LibraryXML title="Fatigue run 12" version="1">
//   	<Page title="Overview">
//   		<Image format="PNG" height="480" size="20731" width="640">iVBORw0KGgo...
//   		</Image>
//   		<Text>Peak force 12.5 kN
//   		</Text>
//   		<Table columns="1" rows="1" title="Peaks">
//   			<Column name="Force" type="Double" units="kN"/>
//   			<Row>
//   				<Cell value="12.5"/>
//   			</Row>
//   		</Table>
//   	</Page>
//   </LibraryXML>
//
// The root "LibraryXML" has the attributes "version" (always "1") and
// "title" (left out when empty, as every optional attribute). The items'
// elements are described in their headers. As in the layout, the text of an
// "Image" or "Text" element ends with a line feed and its indentation, which
// readers drop. Attribute texts escape '&', '<', '"' and write tab, line
// feed and carriage return as character references; control bytes other
// than those are dropped and invalid UTF-8 becomes U+FFFD (only text items
// keep every byte, see library_xml_item_text.h).
//
// Memory: the file is written and read in pieces (a few 64 KiB blocks), not
// through a document tree: images are encoded and decoded block by block, so
// saving to or loading from a file needs little more than the library
// itself, and the data buffer forms add only the buffer.
//
// Reading uses the XML helper's safe parser settings (no external entities,
// a bounded parser memory) and refuses any DOCTYPE, which a report library
// never has. It refuses, pushing the code on the error stack:
//  -656061 a root element other than "LibraryXML";
//  -656062 a version other than "1";
//  -656063 an element, attribute, count or text out of place (named);
//  -656064 image or text data that is not base64;
//  -656065 image bytes that are not the stated format, width and height;
//  -656066 a table above the cells limit (library_xml_item_table.h);
//  -656067 a file that cannot be read or written (on top of the file layer's record);
//  -656068 text that is not well-formed XML (with the parser's message);
//  -655577 when memory runs out.
// A failed load leaves the library as it was.
//
// Ownership: the library owns the pages appended to it (and they their
// items); it deletes them with itself. Not copyable; one thread at a time.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/library_xml/library_xml_item_image.h>
#include <utilkit/library_xml/library_xml_item_table.h>
#include <utilkit/library_xml/library_xml_item_text.h>
#include <utilkit/library_xml/library_xml_page.h>
#include <utilkit/xml/data_buffer.h>

class UTILKIT_API VCULibraryXML {
 public:
  // The version this class writes and reads.
  static constexpr int32_t kVersion = 1;
  // Longest file LoadFromFile reads (data buffers hold at most this much).
  static constexpr int64_t kMaxFileBytes = 0x7FFFFFFE;

  VCULibraryXML() = default;
  ~VCULibraryXML();
  VCULibraryXML(const VCULibraryXML&) = delete;
  VCULibraryXML& operator=(const VCULibraryXML&) = delete;

  // The library's title (UTF-8; null counts as "").
  void SetTitle(const char* title) { m_title = title; }
  const VCString& GetTitle() const { return m_title; }

  // Appends `page` and takes it over. False for a null page, and with
  // -655577 when memory runs out (the page is then deleted).
  bool AppendPage(VCULibraryXML_Page* page);
  int32_t GetNumPages() const { return m_pages.GetSize(); }
  // The page at `index` (from 0); null out of range.
  VCULibraryXML_Page* GetPage(int32_t index) const {
    return index >= 0 && index < GetNumPages() ? m_pages.GetAt(index) : nullptr;
  }
  // Deletes all pages and empties the title.
  void RemoveAll();

  // Writes the library to the file at `path`, created anew. False with
  // -656067 when the file cannot be written (it may then be partly written),
  // -655577 when memory runs out.
  bool SaveToFile(const char* path) const;
  // Replaces `*out` with the library's text. False with -655577 when the
  // buffer cannot grow (also beyond its 2 GiB limit).
  bool SaveToBuffer(VCUDataBuffer* out) const;
  // Replaces the library by the one in the file at `path`. False, leaving
  // the library as it was, with the codes listed above; -656067 also for a
  // file longer than kMaxFileBytes.
  bool LoadFromFile(const char* path);
  // As LoadFromFile from `length` bytes of `text` (negative: up to the first 0).
  bool LoadFromBuffer(const char* text, int32_t length);

 private:
  VCString m_title;
  VCArray<VCULibraryXML_Page*> m_pages;
};
