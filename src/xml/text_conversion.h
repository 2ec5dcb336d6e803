// Conversions between the library's `char` texts and the parser's UTF-16.
//
// The process encoding is asked for on every call (VFGetEncodingType):
// "utf8" converts with the base library's UTF-8 functions (invalid bytes
// become U+FFFD), any other name lets Xerces transcode from or to the local
// code page (characters it cannot convert are dropped by Xerces' rules;
// a failed transcoding gives an empty text).
#pragma once

#include <string>
#include <string_view>

#include <utilkit/base/vc_string.h>

namespace utilkit::xml {

std::u16string Utf8ToUtf16(std::string_view text);
VCString Utf16ToUtf8(std::u16string_view text);

// `text` in the process encoding to UTF-16 and back.
std::u16string ProcessToUtf16(std::string_view text);
VCString Utf16ToProcess(std::u16string_view text);

}  // namespace utilkit::xml
