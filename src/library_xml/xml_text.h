// Texts as the report library writes them into XML (UTF-8).
//
// XML 1.0 cannot carry every byte: control characters other than tab, line
// feed and carriage return, U+FFFE, U+FFFF and invalid UTF-8 have no form in
// it, and a parser turns a raw carriage return into a line feed (and tab and
// line feed in attributes into spaces). These helpers decide and write the
// forms the file format uses (see library_xml.h).
#pragma once

#include <string>
#include <string_view>

namespace utilkit::library_xml {

// True when `text` is valid UTF-8 holding only characters XML 1.0 allows.
bool IsXmlText(std::string_view text);
// Appends `text` (which IsXmlText accepts) as element content: '&', '<', '>'
// as entities, carriage return as "&#13;".
void AppendEscapedText(std::string* out, std::string_view text);
// Appends `text` as an attribute value: '&', '<', '"' as entities, tab, line
// feed and carriage return as character references; other control bytes
// are dropped and invalid UTF-8 bytes become U+FFFD.
void AppendEscapedAttribute(std::string* out, std::string_view text);

}  // namespace utilkit::library_xml
