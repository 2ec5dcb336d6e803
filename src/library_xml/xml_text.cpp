// Texts as the report library writes them into XML (see xml_text.h).
#include "library_xml/xml_text.h"

#include <cstdint>

namespace utilkit::library_xml {
namespace {

// The length of the valid UTF-8 sequence of a character XML allows at the
// start of `text` (not empty), else 0. ASCII control bytes count as valid
// here; the callers decide about them.
size_t SequenceLength(std::string_view text) {
  const auto b = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char c = b(0);
  if (c < 0x80) return 1;
  size_t length = 0;
  unsigned char low = 0x80, high = 0xBF;  // range of the second byte
  if (c >= 0xC2 && c <= 0xDF) {
    length = 2;
  } else if (c >= 0xE0 && c <= 0xEF) {
    length = 3;
    if (c == 0xE0) low = 0xA0;
    if (c == 0xED) high = 0x9F;  // no surrogates
  } else if (c >= 0xF0 && c <= 0xF4) {
    length = 4;
    if (c == 0xF0) low = 0x90;
    if (c == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (text.size() < length || b(1) < low || b(1) > high) return 0;
  for (size_t i = 2; i < length; ++i) {
    if ((b(i) & 0xC0) != 0x80) return 0;
  }
  // U+FFFE and U+FFFF are not XML characters.
  if (c == 0xEF && b(1) == 0xBF && b(2) >= 0xBE) return 0;
  return length;
}

bool IsAllowedControl(char c) {
  return c == '\t' || c == '\n' || c == '\r';
}

}  // namespace

bool IsXmlText(std::string_view text) {
  while (!text.empty()) {
    const size_t n = SequenceLength(text);
    if (n == 0 || (static_cast<unsigned char>(text[0]) < 0x20 && !IsAllowedControl(text[0]))) {
      return false;
    }
    text.remove_prefix(n);
  }
  return true;
}

void AppendEscapedText(std::string* out, std::string_view text) {
  size_t plain = 0;  // start of the bytes not yet copied
  for (size_t i = 0; i < text.size(); ++i) {
    const char* entity = nullptr;
    switch (text[i]) {
      case '&':
        entity = "&amp;";
        break;
      case '<':
        entity = "&lt;";
        break;
      case '>':
        entity = "&gt;";
        break;
      case '\r':
        entity = "&#13;";
        break;
      default:
        continue;
    }
    out->append(text.substr(plain, i - plain)).append(entity);
    plain = i + 1;
  }
  out->append(text.substr(plain));
}

void AppendEscapedAttribute(std::string* out, std::string_view text) {
  while (!text.empty()) {
    const char c = text[0];
    const size_t n = SequenceLength(text);
    if (n == 0) {
      out->append("\xEF\xBF\xBD");  // U+FFFD for one invalid byte
      text.remove_prefix(1);
      continue;
    }
    switch (c) {
      case '&':
        out->append("&amp;");
        break;
      case '<':
        out->append("&lt;");
        break;
      case '"':
        out->append("&quot;");
        break;
      case '\t':
        out->append("&#9;");
        break;
      case '\n':
        out->append("&#10;");
        break;
      case '\r':
        out->append("&#13;");
        break;
      default:
        if (static_cast<unsigned char>(c) >= 0x20) out->append(text.substr(0, n));
    }
    text.remove_prefix(n);
  }
}

}  // namespace utilkit::library_xml
