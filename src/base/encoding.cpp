#include <utilkit/base/encoding.h>

#include <cassert>
#include <mutex>
#include <string_view>

namespace {

constexpr char16_t kReplacement = 0xFFFD;

std::mutex& EncodingLock() {
  static std::mutex lock;
  return lock;
}

std::string& EncodingName() {
  static std::string name = "utf8";
  return name;
}

// True for "utf8", "utf-8" and "utf_8" in any case.
bool IsUtf8Name(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return folded == "utf8" || folded == "utf-8" || folded == "utf_8";
}

// Decodes one character from [p, end) (p < end) into `*code`; returns the
// number of bytes used. A part that is not well-formed gives false and the
// length of its maximal valid prefix (at least 1), which is replaced by one
// U+FFFD.
bool DecodeOne(const unsigned char* p, const unsigned char* end, char32_t* code, size_t* used) {
  const unsigned char lead = p[0];
  size_t count;                        // continuation bytes that follow
  unsigned char lo = 0x80, hi = 0xBF;  // allowed range of the first continuation byte
  if (lead >= 0xC2 && lead <= 0xDF) {
    count = 1;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    count = 2;
    if (lead == 0xE0) lo = 0xA0;  // no overlong forms
    if (lead == 0xED) hi = 0x9F;  // no surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    count = 3;
    if (lead == 0xF0) lo = 0x90;  // no overlong forms
    if (lead == 0xF4) hi = 0x8F;  // nothing above U+10FFFF
  } else {
    *used = 1;
    return false;
  }
  char32_t c = lead & (0x3F >> count);
  for (size_t i = 1; i <= count; ++i) {
    if (p + i == end || p[i] < lo || p[i] > hi) {
      *used = i;
      return false;
    }
    c = (c << 6) | (p[i] & 0x3F);
    lo = 0x80;
    hi = 0xBF;
  }
  *code = c;
  *used = count + 1;
  return true;
}

}  // namespace

VCString VFGetEncodingType() {
  std::lock_guard<std::mutex> guard(EncodingLock());
  return VCString(EncodingName());
}

void VFSetEncodingType(const char* name) {
  const std::string_view given(name ? name : "");
  const bool utf8 = given.empty() || IsUtf8Name(given);
  std::lock_guard<std::mutex> guard(EncodingLock());
  EncodingName() = utf8 ? std::string("utf8") : std::string(given);
}

bool VFUtf8ToUnicode(const char* utf8, size_t length, std::u16string* out) {
  assert(out && (utf8 || length == 0));
  if (!out) return false;
  out->clear();
  if (!utf8) return length == 0;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(utf8);
  const unsigned char* const end = p + length;
  bool valid = true;
  try {
    out->resize(length);  // never more units than bytes
    char16_t* w = out->data();
    while (p < end) {
      if (*p < 0x80) {
        *w++ = *p++;
        continue;
      }
      char32_t code;
      size_t used;
      if (!DecodeOne(p, end, &code, &used)) {
        valid = false;
        code = kReplacement;
      }
      p += used;
      if (code >= 0x10000) {
        code -= 0x10000;
        *w++ = static_cast<char16_t>(0xD800 + (code >> 10));
        *w++ = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
      } else {
        *w++ = static_cast<char16_t>(code);
      }
    }
    out->resize(static_cast<size_t>(w - out->data()));
  } catch (...) {
    out->clear();
    return false;
  }
  return valid;
}

bool VFUnicodeToUtf8(const char16_t* text, size_t length, VCString* out) {
  assert(out && (text || length == 0));
  if (!out) return false;
  std::string& s = out->str();
  s.clear();
  if (!text) return length == 0;
  bool valid = true;
  try {
    s.resize(3 * length);  // a unit gives at most 3 bytes, a pair 4
    char* w = s.data();
    for (size_t i = 0; i < length; ++i) {
      char32_t c = text[i];
      if (c >= 0xD800 && c <= 0xDFFF) {
        if (c <= 0xDBFF && i + 1 < length && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
          c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else {
          valid = false;
          c = kReplacement;
        }
      }
      if (c < 0x80) {
        *w++ = static_cast<char>(c);
      } else if (c < 0x800) {
        *w++ = static_cast<char>(0xC0 | (c >> 6));
        *w++ = static_cast<char>(0x80 | (c & 0x3F));
      } else if (c < 0x10000) {
        *w++ = static_cast<char>(0xE0 | (c >> 12));
        *w++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        *w++ = static_cast<char>(0x80 | (c & 0x3F));
      } else {
        *w++ = static_cast<char>(0xF0 | (c >> 18));
        *w++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        *w++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        *w++ = static_cast<char>(0x80 | (c & 0x3F));
      }
    }
    s.resize(static_cast<size_t>(w - s.data()));
  } catch (...) {
    s.clear();
    return false;
  }
  return valid;
}
