#include "xml/text_conversion.h"

#include <xercesc/util/XMLString.hpp>

#include <utilkit/base/encoding.h>

#include "xml/xerces_platform.h"

namespace xc = XERCES_CPP_NAMESPACE;

namespace utilkit::xml {

namespace {

bool ProcessIsUtf8() {
  return VFGetEncodingType() == "utf8";
}

// A string that Xerces allocated, released when the holder goes.
template <class Char>
struct XercesText {
  Char* text;
  ~XercesText() { xc::XMLString::release(&text); }
};

}  // namespace

std::u16string Utf8ToUtf16(std::string_view text) {
  std::u16string out;
  VFUtf8ToUnicode(text.data(), text.size(), &out);
  return out;
}

VCString Utf16ToUtf8(std::u16string_view text) {
  VCString out;
  VFUnicodeToUtf8(text.data(), text.size(), &out);
  return out;
}

std::u16string ProcessToUtf16(std::string_view text) {
  if (ProcessIsUtf8()) return Utf8ToUtf16(text);
  if (!EnsureXercesPlatform()) return {};
  try {
    const std::string terminated(text);  // Xerces reads up to the first 0
    const XercesText<XMLCh> wide{xc::XMLString::transcode(terminated.c_str())};
    return wide.text ? std::u16string(reinterpret_cast<const char16_t*>(wide.text)) : u"";
  } catch (...) {  // TranscodingException, OutOfMemoryException, bad_alloc
    return {};
  }
}

VCString Utf16ToProcess(std::u16string_view text) {
  if (ProcessIsUtf8()) return Utf16ToUtf8(text);
  if (!EnsureXercesPlatform()) return {};
  try {
    const std::u16string terminated(text);
    const XercesText<char> local{
        xc::XMLString::transcode(reinterpret_cast<const XMLCh*>(terminated.c_str()))};
    return VCString(local.text);
  } catch (...) {
    return {};
  }
}

}  // namespace utilkit::xml
