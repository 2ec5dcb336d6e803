#include <utilkit/xml/dom_string.h>

#include <cstring>

#include "xml/text_conversion.h"

DOMString::DOMString(const char16_t* text) : m_null(text == nullptr) {
  if (text) m_text = text;
}

DOMString::DOMString(const char16_t* text, size_t length) : m_null(text == nullptr) {
  if (text) m_text.assign(text, length);
}

DOMString::DOMString(std::u16string text) : m_text(std::move(text)), m_null(false) {}

DOMString::DOMString(const char* text) : m_null(text == nullptr) {
  if (text) m_text = utilkit::xml::ProcessToUtf16(text);
}

VCString DOMString::transcode() const {
  return utilkit::xml::Utf16ToProcess(m_text);
}

DOMString& DOMString::appendData(const DOMString& other) {
  m_text += other.m_text;
  m_null = false;
  return *this;
}
