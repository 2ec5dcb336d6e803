// VCULibraryXMLReader (see library_xml_reader.h; the format is in library_xml.h).
#include "library_xml/library_xml_reader.h"

#include <algorithm>
#include <limits>
#include <new>

#include <utilkit/base/error_report.h>
#include <utilkit/library_xml/library_xml_errors.h>

#include "xml/text_conversion.h"

namespace {

constexpr size_t kPieceChars = 64 * 1024;  // base64 characters decoded at a time
constexpr int64_t kMaxInt32 = std::numeric_limits<int32_t>::max();

std::string Utf8(std::u16string_view text) {
  return utilkit::xml::Utf16ToUtf8(text).str();
}

bool IsSpace(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

}  // namespace

VCULibraryXMLReader::VCULibraryXMLReader(VCULibraryXML* library, size_t inputBytes)
    : m_library(library), m_inputBytes(inputBytes) {}

void VCULibraryXMLReader::Fail(int32_t code, std::string name) {
  m_code = code;
  m_name = std::move(name);
  throw Abort();
}

int64_t VCULibraryXMLReader::Count(const Attributes& attributes, std::u16string_view name,
                                   int64_t max) {
  const auto value = attributes(name);
  int64_t count = 0;
  bool ok = value && !value->empty() && value->size() <= 18;
  for (size_t i = 0; ok && i < value->size(); ++i) {
    const char16_t c = (*value)[i];
    ok = c >= u'0' && c <= u'9';
    count = count * 10 + (c - u'0');
  }
  if (!ok || count > max) Fail(kLibraryXMLErrorItem, Utf8(name));
  return count;
}

void VCULibraryXMLReader::AddItem(VCULibraryXML_Item* item, const Attributes& attributes) {
  item->SetTitle(Utf8(attributes(u"title").value_or(u"")).c_str());
  if (!m_page->AppendItem(item)) Fail(kErrorOutOfMemory, "");
}

void VCULibraryXMLReader::Start(std::u16string_view name, const Attributes& attributes) {
  const Kind parent = m_open.empty() ? Kind::Cell : m_open.back();  // Cell: no parent yet
  Kind kind = Kind::Root;
  if (m_open.empty()) {
    StartRoot(name, attributes);
  } else if (parent == Kind::Root && name == u"Page") {
    kind = Kind::Page;
    m_page = new VCULibraryXML_Page(Utf8(attributes(u"title").value_or(u"")).c_str());
    if (!m_library->AppendPage(m_page)) Fail(kErrorOutOfMemory, "");
  } else if (parent == Kind::Page && name == u"Text") {
    kind = Kind::Text;
    const auto encoding = attributes(u"encoding");
    if (encoding && *encoding != u"base64") Fail(kLibraryXMLErrorItem, "encoding");
    m_textBase64 = encoding.has_value();
    m_text = new VCULibraryXML_ItemText();
    AddItem(m_text, attributes);
    m_chars.clear();
  } else if (parent == Kind::Page && name == u"Image") {
    kind = Kind::Image;
    StartImage(attributes);
  } else if (parent == Kind::Page && name == u"Table") {
    kind = Kind::Table;
    StartTable(attributes);
  } else if (parent == Kind::Table && name == u"Column" && m_rowsRead == 0) {
    kind = Kind::Column;
    StartColumn(attributes);
  } else if (parent == Kind::Table && name == u"Row") {
    kind = Kind::Row;
    if (m_table->GetNumCols() != m_columns) Fail(kLibraryXMLErrorItem, "columns");
    if (++m_rowsRead > m_rows) Fail(kLibraryXMLErrorItem, "rows");
    m_row.RemoveAll();
  } else if (parent == Kind::Row && name == u"Cell") {
    kind = Kind::Cell;
    if (m_row.Add(VCString(Utf8(attributes(u"value").value_or(u"")))) < 0) {
      Fail(kErrorOutOfMemory, "");
    }
  } else {
    Fail(kLibraryXMLErrorItem, Utf8(name));
  }
  m_open.push_back(kind);
}

void VCULibraryXMLReader::StartRoot(std::u16string_view name, const Attributes& attributes) {
  if (name != u"LibraryXML") Fail(kLibraryXMLErrorRoot, Utf8(name));
  const auto version = attributes(u"version");
  if (!version || *version != u"1") Fail(kLibraryXMLErrorVersion, Utf8(version.value_or(u"")));
  m_library->SetTitle(Utf8(attributes(u"title").value_or(u"")).c_str());
}

void VCULibraryXMLReader::StartImage(const Attributes& attributes) {
  m_format =
      VCULibraryXML_ItemImage::FormatFromName(Utf8(attributes(u"format").value_or(u"")).c_str());
  if (m_format == VTLibraryXMLImageFormat::None) Fail(kLibraryXMLErrorItem, "format");
  m_width = Count(attributes, u"width", kMaxInt32);
  m_height = Count(attributes, u"height", kMaxInt32);
  // Every 4 characters of the text give at most 3 bytes.
  const auto bound = static_cast<int64_t>(
      std::min<size_t>(m_inputBytes / 4 * 3, VCULibraryXML_ItemImage::kMaxImageBytes));
  m_size = Count(attributes, u"size", bound);
  m_image = new VCULibraryXML_ItemImage();
  AddItem(m_image, attributes);
  if (!m_image->m_data.SetAllocSize(static_cast<int32_t>(m_size) + 1)) Fail(0, "");
  try {
    m_piece.resize(kPieceChars / 4 * 3);
  } catch (const std::bad_alloc&) {
    Fail(kErrorOutOfMemory, "");
  }
  m_decoder.emplace(m_piece.data(), m_piece.size());
}

void VCULibraryXMLReader::StartTable(const Attributes& attributes) {
  m_columns = Count(attributes, u"columns", kMaxInt32);
  m_rows = Count(attributes, u"rows", std::numeric_limits<int64_t>::max() / 10);
  m_rowsRead = 0;
  const bool overflows = m_columns > 0 && m_rows > std::numeric_limits<int64_t>::max() / m_columns;
  if (overflows || m_columns * m_rows > VCULibraryXML_ItemTable::GetMaxTableCells()) {
    Fail(kLibraryXMLErrorTableSize, overflows ? "too many" : std::to_string(m_columns * m_rows));
  }
  m_table = new VCULibraryXML_ItemTable();
  AddItem(m_table, attributes);
}

void VCULibraryXMLReader::StartColumn(const Attributes& attributes) {
  const auto name = attributes(u"name");
  const VTTableDataType type =
      VCULibraryXML_ItemTable::TypeFromName(Utf8(attributes(u"type").value_or(u"")).c_str());
  if (!name) Fail(kLibraryXMLErrorItem, "name");
  if (type == VTTableDataType::None) Fail(kLibraryXMLErrorItem, "type");
  if (m_table->GetNumCols() == m_columns) Fail(kLibraryXMLErrorItem, "columns");
  if (!m_table->AddColumn(Utf8(*name).c_str(), type,
                          Utf8(attributes(u"units").value_or(u"")).c_str())) {
    Fail(0, "");
  }
}

void VCULibraryXMLReader::Characters(std::u16string_view text) {
  const Kind kind = m_open.empty() ? Kind::Root : m_open.back();
  if (kind == Kind::Text) {
    try {
      m_chars.append(text);
    } catch (const std::bad_alloc&) {
      Fail(kErrorOutOfMemory, "");
    }
  } else if (kind == Kind::Image) {
    for (size_t done = 0; done < text.size(); done += kPieceChars) {
      const std::u16string_view piece = text.substr(done, kPieceChars);
      if (!m_decoder->Feed(piece.data(), piece.size())) Fail(kLibraryXMLErrorBase64, "Image");
      const size_t got = m_decoder->GetSize();
      VCUDataBuffer& data = m_image->m_data;
      if (static_cast<int64_t>(data.GetSize() + got) > m_size) Fail(kLibraryXMLErrorItem, "size");
      if (!data.Append(reinterpret_cast<const char*>(m_piece.data()), static_cast<int32_t>(got))) {
        Fail(0, "");
      }
      m_decoder->Rewind();
    }
  } else if (!std::all_of(text.begin(), text.end(), IsSpace)) {
    static constexpr const char* kNames[] = {"LibraryXML", "Page",   "Text", "Image",
                                             "Table",      "Column", "Row",  "Cell"};
    Fail(kLibraryXMLErrorItem, kNames[static_cast<int>(kind)]);
  }
}

void VCULibraryXMLReader::End() {
  switch (m_open.back()) {
    case Kind::Text:
      EndText();
      break;
    case Kind::Image:
      EndImage();
      break;
    case Kind::Table:
      EndTable();
      break;
    case Kind::Row:
      if (m_row.GetSize() != m_columns) Fail(kLibraryXMLErrorItem, "Row");
      if (!m_table->AddRow(m_row)) Fail(0, "");
      break;
    default:
      break;
  }
  m_open.pop_back();
}

void VCULibraryXMLReader::EndText() {
  // The layout's line feed and indentation before the end tag are not text.
  const std::u16string_view layout = u"\n\t\t";
  if (m_chars.size() >= layout.size() &&
      m_chars.compare(m_chars.size() - layout.size(), layout.size(), layout) == 0) {
    m_chars.resize(m_chars.size() - layout.size());
  }
  std::string text;
  if (!m_textBase64) {
    text = Utf8(m_chars);
  } else {
    text.resize(m_chars.size() / 4 * 3 + 3);
    utilkit::library_xml::Base64Decoder decoder(reinterpret_cast<unsigned char*>(text.data()),
                                                text.size());
    if (!decoder.Feed(m_chars.data(), m_chars.size()) || !decoder.Finish()) {
      Fail(kLibraryXMLErrorBase64, "Text");
    }
    text.resize(decoder.GetSize());
  }
  if (!m_text->SetText(text.data(), static_cast<int32_t>(text.size()))) Fail(0, "");
  m_chars.clear();
}

void VCULibraryXMLReader::EndImage() {
  if (!m_decoder->Finish()) Fail(kLibraryXMLErrorBase64, "Image");
  const VCUDataBuffer& data = m_image->m_data;
  if (data.GetSize() != m_size) Fail(kLibraryXMLErrorItem, "size");
  VTLibraryXMLImageFormat format = VTLibraryXMLImageFormat::None;
  int32_t width = 0, height = 0;
  if (!VCULibraryXML_ItemImage::ReadHeader(
          reinterpret_cast<const unsigned char*>(data.GetBasePtr()), data.GetSize(), &format,
          &width, &height) ||
      format != m_format || width != m_width || height != m_height) {
    Fail(kLibraryXMLErrorImage, m_format == VTLibraryXMLImageFormat::PNG ? "PNG" : "JPEG");
  }
  m_image->m_format = format;
  m_image->m_width = width;
  m_image->m_height = height;
  m_decoder.reset();
}

void VCULibraryXMLReader::EndTable() {
  if (m_table->GetNumCols() != m_columns) Fail(kLibraryXMLErrorItem, "columns");
  if (m_rowsRead != m_rows) Fail(kLibraryXMLErrorItem, "rows");
}
