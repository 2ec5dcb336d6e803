// The text form of VCUSections: writing and reading (grammar in sections.h).
#include <charconv>
#include <string>
#include <utility>

#include <utilkit/base/error_report.h>
#include <utilkit/base/number_text.h>
#include <utilkit/sections/sections.h>
#include <utilkit/sections/sections_errors.h>

#include "section_spans.h"

namespace {

constexpr const char* kReadWhere = "VCUSections::SetFromText";
// Most characters of the offending piece quoted in a syntax error.
constexpr size_t kPieceLength = 24;

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Reads a sections text into items, reporting the first malformed piece.
class SectionsTextReader {
 public:
  SectionsTextReader(std::string_view text, VTSectionUnits units) : m_text(text), m_units(units) {}

  bool Read(VCArray<VCUSections::Item>* items) {
    for (SkipSpace(); m_pos < m_text.size(); SkipSpace()) {
      int32_t channel = 0;
      if (!ReadChannel(&channel)) return false;
      SkipSpace();
      if (m_pos == m_text.size() || m_text[m_pos] == 'c') continue;  // a group without sections
      for (;;) {
        VCUSections::Item item;
        item.channel = channel;
        if (!ReadSection(&item)) return false;
        if (items->Add(item) < 0) return VFReportError(kSectionsErrorOutOfMemory, kReadWhere);
        SkipSpace();
        if (m_pos == m_text.size() || m_text[m_pos] != ';') break;
        ++m_pos;
        SkipSpace();
      }
    }
    return true;
  }

 private:
  void SkipSpace() {
    while (m_pos < m_text.size() && IsSpace(m_text[m_pos])) ++m_pos;
  }

  // Reports the piece at `at`: its line and column (from 1) and its text.
  bool Fail(size_t at) const {
    try {
      size_t line = 1, lineStart = 0;
      for (size_t i = 0; i < at; ++i) {
        if (m_text[i] == '\n') {
          ++line;
          lineStart = i + 1;
        }
      }
      const size_t column = at - lineStart + 1;
      size_t end = at;
      while (end < m_text.size() && end - at < kPieceLength && !IsSpace(m_text[end])) ++end;
      std::string name =
          "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
      name += at == m_text.size() ? std::string("end of text")
                                  : "'" + std::string(m_text.substr(at, end - at)) + "'";
      return VFReportError(kSectionsErrorSyntax, kReadWhere, name.c_str());
    } catch (...) {
      return VFReportError(kSectionsErrorSyntax, kReadWhere);
    }
  }

  // [-]digits from m_pos; the end of the digits, or npos when there are none.
  size_t ScanInteger(size_t from) const {
    size_t at = from;
    if (at < m_text.size() && m_text[at] == '-') ++at;
    const size_t digits = at;
    while (at < m_text.size() && IsDigit(m_text[at])) ++at;
    return at == digits ? std::string_view::npos : at;
  }

  // "ch" channel ":".
  bool ReadChannel(int32_t* channel) {
    const size_t start = m_pos;
    if (m_text.substr(m_pos, 2) != "ch") return Fail(start);
    const size_t end = ScanInteger(m_pos + 2);
    if (end == std::string_view::npos || end == m_text.size() || m_text[end] != ':' ||
        !VFAscToNum(std::string(m_text.substr(m_pos + 2, end - m_pos - 2)).c_str(), channel)) {
      return Fail(start);
    }
    m_pos = end + 1;
    return true;
  }

  // number "," number.
  bool ReadSection(VCUSections::Item* item) {
    const bool time = m_units == VTSectionUnits::Time;
    if (!(time ? ReadNumber(&item->startTime) : ReadNumber(&item->startPoint))) return false;
    SkipSpace();
    if (m_pos == m_text.size() || m_text[m_pos] != ',') return Fail(m_pos);
    ++m_pos;
    SkipSpace();
    return time ? ReadNumber(&item->endTime) : ReadNumber(&item->endPoint);
  }

  // The extent of a number at m_pos: [-]digits[.digits]; false when none.
  bool ScanNumber(size_t* integerEnd, size_t* end) const {
    *integerEnd = ScanInteger(m_pos);
    if (*integerEnd == std::string_view::npos) return false;
    *end = *integerEnd;
    if (*end < m_text.size() && m_text[*end] == '.') {
      for (++*end; *end < m_text.size() && IsDigit(m_text[*end]);) ++*end;
    }
    return true;
  }

  bool ReadNumber(double* value) {
    size_t integerEnd = 0, end = 0;
    if (!ScanNumber(&integerEnd, &end) ||
        !VFAscToNum(std::string(m_text.substr(m_pos, end - m_pos)).c_str(), value)) {
      return Fail(m_pos);
    }
    m_pos = end;
    return true;
  }

  bool ReadNumber(int64_t* value) {
    size_t integerEnd = 0, end = 0;
    if (!ScanNumber(&integerEnd, &end)) return Fail(m_pos);
    for (size_t at = integerEnd + 1; at < end; ++at) {
      if (m_text[at] != '0') return Fail(m_pos);  // a fraction of a point
    }
    if (!VFAscToNum(std::string(m_text.substr(m_pos, integerEnd - m_pos)).c_str(), value)) {
      return Fail(m_pos);
    }
    m_pos = end;
    return true;
  }

  std::string_view m_text;
  VTSectionUnits m_units;
  size_t m_pos = 0;
};

}  // namespace

void VFAppendSectionNumber(std::string* text, double value) {
  char buffer[400];  // the largest double has 309 integer digits
  const std::to_chars_result r =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 12);
  text->append(buffer, r.ptr);
}

void VFAppendSectionNumber(std::string* text, int64_t value) {
  *text += std::to_string(value);
  *text += ".000000000000";
}

bool VCUSections::GetText(VCString* text) const {
  try {
    std::string out;
    for (int32_t i = 0; i < GetCount(); ++i) {
      const Item& item = m_items[i];
      if (i == 0 || item.channel != m_items[i - 1].channel) {
        if (i > 0) out += '\n';
        out += "ch" + std::to_string(item.channel) + ":";
      } else {
        out += ';';
      }
      if (m_units == VTSectionUnits::Time) {
        VFAppendSectionNumber(&out, item.startTime);
        out += ',';
        VFAppendSectionNumber(&out, item.endTime);
      } else {
        VFAppendSectionNumber(&out, item.startPoint);
        out += ',';
        VFAppendSectionNumber(&out, item.endPoint);
      }
    }
    if (!out.empty()) out += '\n';
    *text = VCString(std::move(out));
    return true;
  } catch (...) {
    return VFReportError(kSectionsErrorOutOfMemory, "VCUSections::GetText");
  }
}

bool VCUSections::SetFromText(const char* text) {
  if (text == nullptr) return VFReportError(kSectionsErrorSyntax, kReadWhere, "null text");
  VCArray<Item> items;
  try {
    if (!SectionsTextReader(text, m_units).Read(&items)) return false;
  } catch (...) {
    return VFReportError(kSectionsErrorOutOfMemory, kReadWhere);
  }
  m_items = std::move(items);
  return true;
}
