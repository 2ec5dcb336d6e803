#include <utilkit/base/number_text.h>

#include <charconv>
#include <cmath>
#include <iterator>
#include <string_view>
#include <system_error>

#include <utilkit/base/text_helpers.h>

namespace {

// Reads all of `text` (white space at the ends allowed) as a T with
// std::from_chars, which takes "-" but not "+", so a lone "+" is taken here.
template <class T, class... Format>
bool ReadNumber(const char* text, T* value, Format... format) {
  if (!text) return false;
  std::string_view s = VFTrimView(text);
  if (!s.empty() && s.front() == '+') {
    s.remove_prefix(1);
    if (!s.empty() && (s.front() == '-' || s.front() == '+')) return false;
  }
  T parsed{};
  const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), parsed, format...);
  if (ec != std::errc() || end != s.data() + s.size()) return false;
  if (value) *value = parsed;
  return true;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const char c = (a[i] >= 'A' && a[i] <= 'Z') ? static_cast<char>(a[i] - 'A' + 'a') : a[i];
    if (c != b[i]) return false;
  }
  return true;
}

}  // namespace

bool VFAscToNum(const char* text, int32_t* value) {
  return ReadNumber(text, value, 10);
}

bool VFAscToNum(const char* text, int64_t* value) {
  return ReadNumber(text, value, 10);
}

bool VFAscToNum(const char* text, double* value) {
  return ReadNumber(text, value, std::chars_format::general);
}

bool VFAscToBoolean(const char* text, bool* value) {
  static constexpr std::string_view kTrue[] = {"true", "yes", "on", "1"};
  static constexpr std::string_view kFalse[] = {"false", "no", "off", "0"};
  if (!text) return false;
  const std::string_view s = VFTrimView(text);
  for (size_t i = 0; i < std::size(kTrue); ++i) {
    const bool isTrue = EqualNoCase(s, kTrue[i]);
    if (isTrue || EqualNoCase(s, kFalse[i])) {
      if (value) *value = isTrue;
      return true;
    }
  }
  return false;
}

VCString VFFormatDouble(double value, int32_t significantDigits) {
  if (std::isnan(value)) return VCString("nan");
  char text[64];
  const std::to_chars_result r =
      significantDigits <= 0
          ? std::to_chars(text, text + sizeof text, value)
          : std::to_chars(text, text + sizeof text, value, std::chars_format::general,
                          significantDigits > 17 ? 17 : significantDigits);
  return VCString(text, static_cast<size_t>(r.ptr - text));
}
