// VCString: the library's text type.
//
// A value type holding a sequence of bytes (normally UTF-8 or the local code
// page) that never contains an embedded zero as far as the C-string views are
// concerned. It converts implicitly to `const char*`, so it can be handed to
// any C interface, and offers the MFC-like editing members that the rest of
// the library uses.
//
//   VCString s("Force");
//   s += "_status";
//   s.MakeUpper();                       // "FORCE_STATUS"
//   VCString t = VCString::Formatted("%s=%d", "Channel", 3);
//   if (t.CompareNoCase("channel=3") == 0) { ... }
//
// Ownership: a VCString owns its bytes; copies are independent.
// Positions are 0-based; `Find` returns -1 when nothing is found. Left, Right
// and Mid clamp their arguments to the text, so they never fail.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>
#include <string_view>

#include <utilkit/base/export.h>

class UTILKIT_API VCString {
 public:
  VCString() = default;
  VCString(const char* text) : m_text(text ? text : "") {}  // NOLINT: implicit by design
  VCString(const char* text, size_t length) : m_text(text ? text : "", text ? length : 0) {}
  VCString(std::string text) : m_text(std::move(text)) {}  // NOLINT: implicit by design
  VCString(std::string_view text) : m_text(text) {}        // NOLINT: implicit by design

  // Length in bytes.
  int32_t GetLength() const { return static_cast<int32_t>(m_text.size()); }
  bool IsEmpty() const { return m_text.empty(); }
  void Empty() { m_text.clear(); }

  operator const char*() const { return m_text.c_str(); }  // NOLINT: implicit by design
  const char* c_str() const { return m_text.c_str(); }
  const std::string& str() const { return m_text; }
  std::string& str() { return m_text; }
  std::string_view view() const { return m_text; }

  // Byte at `index`; 0 when `index` is outside the text.
  char GetAt(int32_t index) const;

  // Replaces the content with printf-style formatted text. A bad format
  // string leaves the text empty.
  void Format(const char* format, ...)
#if defined(__GNUC__)
      __attribute__((format(printf, 2, 3)))
#endif
      ;
  void FormatV(const char* format, va_list args);
  // Returns a new formatted text.
  static VCString Formatted(const char* format, ...)
#if defined(__GNUC__)
      __attribute__((format(printf, 1, 2)))
#endif
      ;

  // Three-way byte-wise comparison: -1, 0 or 1.
  int Compare(const char* other) const;
  // Three-way comparison with ASCII letters folded to upper case: -1, 0 or 1.
  int CompareNoCase(const char* other) const;

  // Position of the first `what` at or after `start`, or -1.
  int32_t Find(const char* what, int32_t start = 0) const;
  int32_t Find(char what, int32_t start = 0) const;
  // Position of the last `what`, or -1.
  int32_t ReverseFind(char what) const;

  // The first / last `count` bytes, or the `count` bytes from `first`
  // (to the end when `count` is negative).
  VCString Left(int32_t count) const;
  VCString Right(int32_t count) const;
  VCString Mid(int32_t first, int32_t count = -1) const;

  // ASCII case changes in place; other bytes are kept.
  VCString& MakeUpper();
  VCString& MakeLower();
  // Removes leading / trailing white space (space, tab, CR, LF, VT, FF).
  VCString& TrimLeft();
  VCString& TrimRight();
  VCString& Trim() {
    return TrimLeft().TrimRight();
  }
  // Replaces every occurrence of `from` (non-empty) by `to`; returns the count.
  int32_t Replace(const char* from, const char* to);

  VCString& operator+=(const VCString& other) {
    m_text += other.m_text;
    return *this;
  }
  VCString& operator+=(const char* other) {
    if (other) m_text += other;
    return *this;
  }
  VCString& operator+=(char c) {
    m_text += c;
    return *this;
  }

  friend VCString operator+(VCString a, const VCString& b) {
    a += b;
    return a;
  }
  friend VCString operator+(VCString a, const char* b) {
    a += b;
    return a;
  }
  friend VCString operator+(const char* a, const VCString& b) {
    VCString r(a);
    r += b;
    return r;
  }
  friend bool operator==(const VCString& a, const VCString& b) {
    return a.m_text == b.m_text;
  }
  friend bool operator==(const VCString& a, const char* b) {
    return a.m_text == (b ? b : "");
  }
  friend bool operator<(const VCString& a, const VCString& b) {
    return a.m_text < b.m_text;
  }

 private:
  std::string m_text;
};

template <>
struct std::hash<VCString> {
  size_t operator()(const VCString& s) const noexcept { return std::hash<std::string>()(s.str()); }
};
