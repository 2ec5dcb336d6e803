// DOMString: the text type of the DOM handles, a UTF-16 string that may be null.
//
// Node names, values and attribute texts travel as DOMString. "Null" (no
// string at all, as the value of an element node) and "empty" are distinct,
// as in the DOM; isNull() tells them apart and both read as "".
//
//   DOMString name = node.getNodeName();
//   if (name == DOMString("Channel")) { VCString text = name.transcode(); }
//
// Ownership: a DOMString owns its characters; copies are independent.
// Conversions from and to `char` text use the process encoding of the base
// library (UTF-8 when VFGetEncodingType() is "utf8", else the local code
// page), asked for on every conversion. VCUXmlHelper has the variants that
// filter control characters or always use UTF-8.
#pragma once

#include <cstddef>
#include <string>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API DOMString {
 public:
  // A null string.
  DOMString() = default;
  // A copy of NUL-terminated UTF-16 text; null when `text` is null.
  DOMString(const char16_t* text);  // NOLINT: implicit by design
  // A copy of `length` UTF-16 units; null when `text` is null.
  DOMString(const char16_t* text, size_t length);
  // Takes `text` (not null).
  explicit DOMString(std::u16string text);
  // `text` converted from the process encoding; null when `text` is null.
  // Bytes that do not convert are replaced (see VFUtf8ToUnicode) or dropped.
  DOMString(const char* text);  // NOLINT: implicit by design

  // True when no string is held.
  bool isNull() const { return m_null; }
  // Number of UTF-16 units (0 when null).
  size_t length() const { return m_text.size(); }
  // The NUL-terminated characters; "" when null. Valid until the string changes.
  const char16_t* rawBuffer() const { return m_text.c_str(); }
  const std::u16string& str() const { return m_text; }

  // The text in the process encoding ("" when null).
  VCString transcode() const;
  // Appends `other`; a null string becomes non-null.
  DOMString& appendData(const DOMString& other);

  // Equal characters; a null string equals only a null string.
  bool equals(const DOMString& other) const {
    return m_null == other.m_null && m_text == other.m_text;
  }
  friend bool operator==(const DOMString& a, const DOMString& b) { return a.equals(b); }

 private:
  std::u16string m_text;
  bool m_null = true;
};
