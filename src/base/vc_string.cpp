#include <utilkit/base/vc_string.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

char FoldUpper(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

char VCString::GetAt(int32_t index) const {
  if (index < 0 || index >= GetLength()) return 0;
  return m_text[static_cast<size_t>(index)];
}

void VCString::FormatV(const char* format, va_list args) {
  m_text.clear();
  if (!format) return;
  char small[256];
  va_list copy;
  va_copy(copy, args);
  int needed = std::vsnprintf(small, sizeof small, format, copy);
  va_end(copy);
  if (needed < 0) return;
  if (static_cast<size_t>(needed) < sizeof small) {
    m_text.assign(small, static_cast<size_t>(needed));
    return;
  }
  m_text.resize(static_cast<size_t>(needed));
  std::vsnprintf(m_text.data(), static_cast<size_t>(needed) + 1, format, args);
}

void VCString::Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  FormatV(format, args);
  va_end(args);
}

VCString VCString::Formatted(const char* format, ...) {
  VCString result;
  va_list args;
  va_start(args, format);
  result.FormatV(format, args);
  va_end(args);
  return result;
}

int VCString::Compare(const char* other) const {
  const int order = std::strcmp(m_text.c_str(), other ? other : "");
  return (order > 0) - (order < 0);
}

int VCString::CompareNoCase(const char* other) const {
  const unsigned char* a = reinterpret_cast<const unsigned char*>(m_text.c_str());
  const unsigned char* b = reinterpret_cast<const unsigned char*>(other ? other : "");
  for (;; ++a, ++b) {
    unsigned char ca = static_cast<unsigned char>(FoldUpper(static_cast<char>(*a)));
    unsigned char cb = static_cast<unsigned char>(FoldUpper(static_cast<char>(*b)));
    if (ca != cb) return ca < cb ? -1 : 1;
    if (ca == 0) return 0;
  }
}

int32_t VCString::Find(const char* what, int32_t start) const {
  if (!what || start < 0 || start > GetLength()) return -1;
  size_t at = m_text.find(what, static_cast<size_t>(start));
  return at == std::string::npos ? -1 : static_cast<int32_t>(at);
}

int32_t VCString::Find(char what, int32_t start) const {
  if (start < 0 || start > GetLength()) return -1;
  size_t at = m_text.find(what, static_cast<size_t>(start));
  return at == std::string::npos ? -1 : static_cast<int32_t>(at);
}

int32_t VCString::ReverseFind(char what) const {
  size_t at = m_text.rfind(what);
  return at == std::string::npos ? -1 : static_cast<int32_t>(at);
}

VCString VCString::Left(int32_t count) const {
  count = std::clamp(count, 0, GetLength());
  return VCString(m_text.substr(0, static_cast<size_t>(count)));
}

VCString VCString::Right(int32_t count) const {
  count = std::clamp(count, 0, GetLength());
  return VCString(m_text.substr(m_text.size() - static_cast<size_t>(count)));
}

VCString VCString::Mid(int32_t first, int32_t count) const {
  first = std::clamp(first, 0, GetLength());
  int32_t available = GetLength() - first;
  if (count < 0 || count > available) count = available;
  return VCString(m_text.substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

VCString& VCString::MakeUpper() {
  for (char& c : m_text) c = FoldUpper(c);
  return *this;
}

VCString& VCString::MakeLower() {
  for (char& c : m_text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return *this;
}

VCString& VCString::TrimLeft() {
  size_t i = 0;
  while (i < m_text.size() && IsBlank(m_text[i])) ++i;
  m_text.erase(0, i);
  return *this;
}

VCString& VCString::TrimRight() {
  size_t n = m_text.size();
  while (n > 0 && IsBlank(m_text[n - 1])) --n;
  m_text.resize(n);
  return *this;
}

int32_t VCString::Replace(const char* from, const char* to) {
  if (!from || !*from) return 0;
  const std::string needle(from), repl(to ? to : "");
  int32_t count = 0;
  for (size_t at = m_text.find(needle); at != std::string::npos;
       at = m_text.find(needle, at + repl.size())) {
    m_text.replace(at, needle.size(), repl);
    ++count;
  }
  return count;
}
