#include <utilkit/base/text_helpers.h>

#include <string>
#include <string_view>

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Appends a self-delimiting form of the number written by `digits` (no
// leading zeros; "" is zero) whose byte-wise order is the numeric order:
// the digit count as one digit '0'..'8', or '9' and the count written the
// same way, followed by the digits. Every byte is an ASCII digit.
void AppendNumberKey(std::string& out, std::string_view digits) {
  if (digits.size() < 9) {
    out += static_cast<char>('0' + digits.size());
  } else {
    out += '9';
    AppendNumberKey(out, std::to_string(digits.size()));
  }
  out += digits;
}

char FoldCase(char c, bool noCase) {
  return (noCase && c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Length of the character starting at `p`: a UTF-8 lead byte with the
// continuation bytes it announces, else 1.
size_t CharLength(const char* p, const char* end) {
  const unsigned char lead = static_cast<unsigned char>(*p);
  const size_t n = lead >= 0xF5 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
  if (n == 1 || n > static_cast<size_t>(end - p)) return 1;
  for (size_t i = 1; i < n; ++i) {
    if ((static_cast<unsigned char>(p[i]) & 0xC0) != 0x80) return 1;
  }
  return n;
}

}  // namespace

VCString VFMakeNumericallySortableString(const VCString& text) {
  const std::string_view in = text.view();
  std::string key;
  key.reserve(in.size() + 8);
  for (size_t i = 0; i < in.size();) {
    if (!IsDigit(in[i])) {
      key += in[i++];
      continue;
    }
    const size_t start = i;
    while (i < in.size() && in[i] == '0') ++i;
    const size_t zeros = i - start;
    while (i < in.size() && IsDigit(in[i])) ++i;
    AppendNumberKey(key, in.substr(start + zeros, i - start - zeros));
    AppendNumberKey(key, zeros ? std::to_string(zeros) : std::string());
  }
  return VCString(std::move(key));
}

bool VFPatternMatch(int32_t flags, const char* pattern, const char* text) {
  const bool noCase = (flags & kPatternMatchNoCase) != 0;
  const std::string_view pat(pattern ? pattern : "");
  const std::string_view txt(text ? text : "");
  const char* t = txt.data();
  const char* const tEnd = t + txt.size();
  size_t p = 0;
  // Where the last "*" was seen: the pattern after it, and the text position
  // it is retried from. Only the last "*" ever needs retrying.
  size_t starP = std::string_view::npos;
  const char* starT = nullptr;
  while (t < tEnd) {
    if (p < pat.size() && pat[p] == '*') {
      starP = ++p;
      starT = t;
    } else if (p < pat.size() && pat[p] == '?') {
      ++p;
      t += CharLength(t, tEnd);
    } else if (p < pat.size() && FoldCase(pat[p], noCase) == FoldCase(*t, noCase)) {
      ++p;
      ++t;
    } else if (starP != std::string_view::npos) {
      starT += CharLength(starT, tEnd);  // let the "*" take one more character
      t = starT;
      p = starP;
    } else {
      return false;
    }
  }
  while (p < pat.size() && pat[p] == '*') ++p;
  return p == pat.size();
}

bool VFSplitIntoKeyValue(const char* text, VCString* key, VCString* value, int32_t flags) {
  const std::string_view all(text ? text : "");
  const size_t eq = all.find('=');
  if (eq == std::string_view::npos) return false;
  std::string_view k = all.substr(0, eq);
  std::string_view v = all.substr(eq + 1);
  if (!(flags & kSplitKeyValueKeepBlanks)) {
    k = VFTrimView(k);
    v = VFTrimView(v);
  }
  if (k.empty()) return false;
  if (key) *key = VCString(k);
  if (value) *value = VCString(v);
  return true;
}

std::string_view VFTrimView(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

VCString& VFSqueeze(VCString& text, int32_t flags) {
  if (flags & kSqueezeLeading) text.TrimLeft();
  if (flags & kSqueezeTrailing) text.TrimRight();
  return text;
}
