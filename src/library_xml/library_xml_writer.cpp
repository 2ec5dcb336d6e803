// The report library writer (see library_xml_writer.h and, for the
// format, library_xml.h).
#include "library_xml/library_xml_writer.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <string>
#include <string_view>

#include <utilkit/base/error_report.h>

#include "library_xml/base64.h"
#include "library_xml/xml_text.h"

namespace utilkit::library_xml {
namespace {

constexpr size_t kBlock = 64 * 1024;
constexpr size_t kBase64Piece = 48 * 1024;  // bytes encoded at a time (a multiple of 3)

class Writer {
 public:
  explicit Writer(WriteSink& sink) : m_sink(sink) { m_out.reserve(2 * kBlock); }

  bool Library(const VCULibraryXML& library);

 private:
  // Hands the block to the sink when it is full (or at the end).
  bool Flush(bool always = false) {
    if (m_out.size() < kBlock && !always) return true;
    const bool ok = m_sink.Put(m_out.data(), m_out.size());
    m_out.clear();
    return ok;
  }
  void NewLine(int depth) { m_out.append(1, '\n').append(static_cast<size_t>(depth), '\t'); }
  // Writes `<name` at `depth`.
  void Open(int depth, std::string_view name) {
    NewLine(depth);
    m_out.append(1, '<').append(name);
  }
  // Writes ` name="value"`; an empty optional value is left out.
  void Attribute(std::string_view name, std::string_view value, bool optional = true) {
    if (value.empty() && optional) return;
    m_out.append(1, ' ').append(name).append("=\"");
    AppendEscapedAttribute(&m_out, value);
    m_out.append(1, '"');
  }
  void Attribute(std::string_view name, int64_t value) {
    char text[24];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    Attribute(name, std::string_view(text, static_cast<size_t>(end - text)), false);
  }
  void Close(int depth, std::string_view name) {
    NewLine(depth);
    m_out.append("</").append(name).append(1, '>');
  }
  bool Base64(const unsigned char* data, size_t size);
  bool Page(const VCULibraryXML_Page& page);
  bool Image(const VCULibraryXML_ItemImage& image);
  bool Text(const VCULibraryXML_ItemText& text);
  bool Table(const VCULibraryXML_ItemTable& table);

  WriteSink& m_sink;
  std::string m_out;  // the block being filled
};

bool Writer::Library(const VCULibraryXML& library) {
  m_out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
  Open(0, "LibraryXML");
  Attribute("title", library.GetTitle().view());
  Attribute("version", VCULibraryXML::kVersion);
  if (library.GetNumPages() == 0) {
    m_out.append("/>");
  } else {
    m_out.append(1, '>');
    for (int32_t i = 0; i < library.GetNumPages(); ++i) {
      if (!Page(*library.GetPage(i))) return false;
    }
    Close(0, "LibraryXML");
  }
  m_out.append(1, '\n');
  return Flush(true);
}

bool Writer::Page(const VCULibraryXML_Page& page) {
  Open(1, "Page");
  Attribute("title", page.GetTitle().view());
  if (page.GetNumItems() == 0) {
    m_out.append("/>");
    return Flush();
  }
  m_out.append(1, '>');
  for (int32_t i = 0; i < page.GetNumItems(); ++i) {
    const VCULibraryXML_Item* item = page.GetItem(i);
    bool ok = true;
    switch (item->GetType()) {
      case VTLibraryXMLItemType::Image:
        ok = Image(static_cast<const VCULibraryXML_ItemImage&>(*item));
        break;
      case VTLibraryXMLItemType::Text:
        ok = Text(static_cast<const VCULibraryXML_ItemText&>(*item));
        break;
      case VTLibraryXMLItemType::Table:
        ok = Table(static_cast<const VCULibraryXML_ItemTable&>(*item));
        break;
    }
    if (!ok) return false;
  }
  Close(1, "Page");
  return Flush();
}

bool Writer::Base64(const unsigned char* data, size_t size) {
  for (size_t done = 0; done < size; done += kBase64Piece) {
    const size_t piece = std::min(kBase64Piece, size - done);
    const size_t at = m_out.size();
    m_out.resize(at + Base64Length(piece));
    Base64Encode(data + done, piece, m_out.data() + at);
    if (!Flush()) return false;
  }
  return true;
}

bool Writer::Image(const VCULibraryXML_ItemImage& image) {
  const VCUDataBuffer& data = image.GetData();
  Open(2, "Image");
  Attribute("format", image.GetFormatName(), false);
  Attribute("height", image.GetHeight());
  Attribute("size", data.GetSize());
  Attribute("title", image.GetTitle().view());
  Attribute("width", image.GetWidth());
  if (data.GetSize() == 0) {
    m_out.append("/>");
    return Flush();
  }
  m_out.append(1, '>');
  if (!Base64(reinterpret_cast<const unsigned char*>(data.GetBasePtr()),
              static_cast<size_t>(data.GetSize()))) {
    return false;
  }
  Close(2, "Image");
  return Flush();
}

bool Writer::Text(const VCULibraryXML_ItemText& item) {
  const std::string_view text = item.GetText().view();
  const bool xmlText = item.IsXmlText();
  Open(2, "Text");
  if (!xmlText) Attribute("encoding", "base64");
  Attribute("title", item.GetTitle().view());
  if (text.empty()) {
    m_out.append("/>");
    return Flush();
  }
  m_out.append(1, '>');
  if (!xmlText) {
    if (!Base64(reinterpret_cast<const unsigned char*>(text.data()), text.size())) return false;
  } else {
    // The escaped characters are ASCII, so any cut between pieces is safe.
    for (size_t done = 0; done < text.size(); done += kBlock) {
      AppendEscapedText(&m_out, text.substr(done, kBlock));
      if (!Flush()) return false;
    }
  }
  Close(2, "Text");
  return Flush();
}

bool Writer::Table(const VCULibraryXML_ItemTable& table) {
  const int32_t cols = table.GetNumCols();
  const int64_t rows = table.GetNumRows();
  Open(2, "Table");
  Attribute("columns", cols);
  Attribute("rows", rows);
  Attribute("title", table.GetTitle().view());
  if (cols == 0) {
    m_out.append("/>");
    return Flush();
  }
  m_out.append(1, '>');
  for (int32_t c = 0; c < cols; ++c) {
    Open(3, "Column");
    Attribute("name", table.GetColName(c).view(), false);
    Attribute("type", VCULibraryXML_ItemTable::TypeName(table.GetColType(c)), false);
    Attribute("units", table.GetColUnits(c).view());
    m_out.append("/>");
  }
  for (int64_t r = 1; r <= rows; ++r) {
    Open(3, "Row");
    m_out.append(1, '>');
    for (int32_t c = 0; c < cols; ++c) {
      Open(4, "Cell");
      Attribute("value", table.GetCell(r, c).view());
      m_out.append("/>");
    }
    Close(3, "Row");
    if (!Flush()) return false;
  }
  Close(2, "Table");
  return Flush();
}

}  // namespace

bool WriteLibrary(const VCULibraryXML& library, WriteSink& sink, const char* location) {
  try {
    return Writer(sink).Library(library);
  } catch (const std::bad_alloc&) {
    return VFReportError(kErrorOutOfMemory, location);
  }
}

}  // namespace utilkit::library_xml
