// VCULibraryXMLReader: builds a report library from the parser's element
// events (start with attributes, characters, end), checking the format of
// library_xml.h as they come.
//
//   VCULibraryXMLReader reader(&library, inputBytes);
//   try {
//     reader.Start(u"LibraryXML", attributes);  // ... from the parser's callbacks
//   } catch (const VCULibraryXMLReader::Abort&) {
//     VFReportError(reader.GetCode(), location, reader.GetName().c_str());
//   }
//
// A failure is recorded (code and the name for its text) and thrown as
// Abort, which ends the parse; code 0 means the record is already on the
// error stack. Ownership: pages and items go into the library as they start.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <utilkit/library_xml/library_xml.h>

#include "library_xml/base64.h"

class VCULibraryXMLReader {
 public:
  struct Abort {};
  // The value of the attribute called `name` (a terminated literal), if present.
  using Attributes = std::function<std::optional<std::u16string_view>(std::u16string_view name)>;

  // Reads into `library`; `inputBytes` bounds the sizes that the file may state.
  VCULibraryXMLReader(VCULibraryXML* library, size_t inputBytes);

  void Start(std::u16string_view name, const Attributes& attributes);
  void End();
  void Characters(std::u16string_view text);
  // Records the failure and throws Abort.
  [[noreturn]] void Fail(int32_t code, std::string name);

  int32_t GetCode() const { return m_code; }
  const std::string& GetName() const { return m_name; }

 private:
  enum class Kind { Root, Page, Text, Image, Table, Column, Row, Cell };

  // Gives `item` its title and puts it on the current page (fails for memory).
  void AddItem(VCULibraryXML_Item* item, const Attributes& attributes);
  void StartRoot(std::u16string_view name, const Attributes& attributes);
  void StartImage(const Attributes& attributes);
  void StartTable(const Attributes& attributes);
  void StartColumn(const Attributes& attributes);
  void EndText();
  void EndImage();
  void EndTable();
  // A count attribute: decimal digits, at most `max`; fails naming it otherwise.
  int64_t Count(const Attributes& attributes, std::u16string_view name, int64_t max);

  VCULibraryXML* m_library;
  size_t m_inputBytes;
  std::vector<Kind> m_open;  // the elements started and not yet ended

  VCULibraryXML_Page* m_page = nullptr;
  VCULibraryXML_ItemText* m_text = nullptr;
  bool m_textBase64 = false;
  std::u16string m_chars;  // the text of the current "Text" element

  VCULibraryXML_ItemImage* m_image = nullptr;
  VTLibraryXMLImageFormat m_format = VTLibraryXMLImageFormat::None;
  int64_t m_width = 0, m_height = 0, m_size = 0;  // as stated
  std::vector<unsigned char> m_piece;             // decoded bytes of one piece of text
  std::optional<utilkit::library_xml::Base64Decoder> m_decoder;

  VCULibraryXML_ItemTable* m_table = nullptr;
  int64_t m_columns = 0, m_rows = 0, m_rowsRead = 0;  // as stated, and rows so far
  VCStringArray m_row;                                // cells of the current row

  int32_t m_code = 0;
  std::string m_name;
};
