// The report library as one web page (see report_html.h).
#include "report_html.h"

#include <string>
#include <string_view>

namespace utilkit::tool {
namespace {

constexpr const char* kStyle =
    "body{font-family:sans-serif;margin:2em;color:#222}"
    "section{border-top:1px solid #bbb;margin-top:2em}"
    "figure{margin:1em 0}img{max-width:100%;height:auto}"
    "pre{background:#f4f4f4;padding:.5em;white-space:pre-wrap}"
    "table{border-collapse:collapse;margin:1em 0}"
    "th,td{border:1px solid #bbb;padding:.2em .5em;text-align:left}"
    "th small{font-weight:normal;color:#666}caption{font-weight:bold;text-align:left}";

// `text` with the characters HTML gives meaning to as entities.
std::string Escape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\r':
        break;
      default:
        out += c;
    }
  }
  return out;
}

bool WriteImage(const VCULibraryXML_ItemImage& image, std::ostream& out) {
  VCUDataBuffer data;
  if (!image.AppendBase64(&data)) return false;
  out << "<figure><img src=\"data:" << image.GetMimeType() << ";base64,";
  out.write(data.GetBasePtr(), data.GetSize());
  out << "\" width=\"" << image.GetWidth() << "\" height=\"" << image.GetHeight() << "\" alt=\""
      << Escape(image.GetTitle().view()) << "\">";
  if (!image.GetTitle().IsEmpty())
    out << "<figcaption>" << Escape(image.GetTitle().view()) << "</figcaption>";
  out << "</figure>\n";
  return true;
}

void WriteTable(const VCULibraryXML_ItemTable& table, std::ostream& out) {
  out << "<table>";
  if (!table.GetTitle().IsEmpty())
    out << "<caption>" << Escape(table.GetTitle().view()) << "</caption>";
  out << "<thead><tr>";
  for (int32_t c = 0; c < table.GetNumCols(); ++c) {
    out << "<th>" << Escape(table.GetColName(c).view()) << "<br><small>"
        << VCULibraryXML_ItemTable::TypeName(table.GetColType(c));
    if (!table.GetColUnits(c).IsEmpty()) out << ", " << Escape(table.GetColUnits(c).view());
    out << "</small></th>";
  }
  out << "</tr></thead><tbody>\n";
  for (int64_t r = 1; r <= table.GetNumRows(); ++r) {
    out << "<tr>";
    for (int32_t c = 0; c < table.GetNumCols(); ++c) {
      out << "<td>" << Escape(table.GetCell(r, c).view()) << "</td>";
    }
    out << "</tr>\n";
  }
  out << "</tbody></table>\n";
}

}  // namespace

bool WriteReportHtml(const VCULibraryXML& library, std::ostream& out) {
  const std::string title = Escape(library.GetTitle().view());
  out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>" << title
      << "</title>\n<style>" << kStyle << "</style></head>\n<body>\n<h1>" << title
      << "</h1>\n<nav><ol>\n";
  for (int32_t p = 0; p < library.GetNumPages(); ++p) {
    out << "<li><a href=\"#page-" << p + 1 << "\">" << Escape(library.GetPage(p)->GetTitle().view())
        << "</a></li>\n";
  }
  out << "</ol></nav>\n";
  for (int32_t p = 0; p < library.GetNumPages(); ++p) {
    const VCULibraryXML_Page& page = *library.GetPage(p);
    out << "<section id=\"page-" << p + 1 << "\"><h2>" << Escape(page.GetTitle().view())
        << "</h2>\n";
    for (int32_t i = 0; i < page.GetNumItems(); ++i) {
      const VCULibraryXML_Item* item = page.GetItem(i);
      switch (item->GetType()) {
        case VTLibraryXMLItemType::Image:
          if (!WriteImage(static_cast<const VCULibraryXML_ItemImage&>(*item), out)) return false;
          break;
        case VTLibraryXMLItemType::Text:
          if (!item->GetTitle().IsEmpty())
            out << "<h3>" << Escape(item->GetTitle().view()) << "</h3>";
          out << "<pre>"
              << Escape(static_cast<const VCULibraryXML_ItemText&>(*item).GetText().view())
              << "</pre>\n";
          break;
        case VTLibraryXMLItemType::Table:
          WriteTable(static_cast<const VCULibraryXML_ItemTable&>(*item), out);
          break;
      }
    }
    out << "</section>\n";
  }
  out << "</body></html>\n";
  return static_cast<bool>(out);
}

}  // namespace utilkit::tool
