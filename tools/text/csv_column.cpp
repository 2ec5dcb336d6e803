#include "csv_column.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <type_traits>
#include <utility>

#include <utilkit/base/text_helpers.h>

namespace utilkit::tool {

namespace {

// A cell of nothing but spaces and tabs.
bool IsBlank(std::string_view cell) {
  if (!cell.empty() && cell[0] != ' ' && cell[0] != '\t') return false;  // the usual case
  return cell.find_first_not_of(" \t") == std::string_view::npos;
}

bool IsSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Reads `s` of the form [-]digits[.digits] with at most 19 digits, none
// after an exponent, as the nearest double, where that is quick to do
// exactly: a whole number below 2^53 and a power of ten up to 10^22 are
// both exact doubles, so their quotient is correctly rounded. False for any
// other text, which is left to std::from_chars.
bool ReadPlainDecimal(std::string_view s, double* value) {
  static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  const char* p = s.data();
  const char* const end = p + s.size();
  const bool negative = p < end && *p == '-';
  p += negative ? 1 : 0;
  uint64_t whole = 0;
  int digits = 0;
  int decimals = -1;  // -1: no point yet
  for (; p < end; ++p) {
    const auto digit = static_cast<unsigned>(*p - '0');
    if (digit < 10) {
      whole = whole * 10 + digit;
      ++digits;
      decimals += decimals >= 0 ? 1 : 0;
    } else if (*p == '.' && decimals < 0) {
      decimals = 0;
    } else {
      return false;
    }
  }
  if (digits == 0 || digits > 19 || whole > (uint64_t{1} << 53) || decimals > 22) return false;
  const double v = static_cast<double>(whole) / kPowers[decimals < 0 ? 0 : decimals];
  *value = negative ? -v : v;
  return true;
}

// Reads all of `cell` as a T, white space at the ends and a leading '+'
// allowed (as VFAscToNum reads). Out-of-range values are refused.
template <class T, class... Format>
bool ReadNumber(std::string_view cell, T* value, Format... format) {
  std::string_view s = cell;
  if (!s.empty() && (IsSpace(s.front()) || IsSpace(s.back()))) s = VFTrimView(s);
  if (!s.empty() && s.front() == '+') {
    s.remove_prefix(1);
    if (!s.empty() && (s.front() == '-' || s.front() == '+')) return false;
  }
  if constexpr (std::is_same_v<T, double>) {
    if (ReadPlainDecimal(s, value)) return true;
  }
  const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), *value, format...);
  return ec == std::errc() && end == s.data() + s.size() && !s.empty();
}

bool ReadCell(std::string_view cell, int16_t* value) {
  int32_t v = 0;
  if (!ReadNumber(cell, &v, 10) || v < INT16_MIN || v > INT16_MAX) return false;
  *value = static_cast<int16_t>(v);
  return true;
}
bool ReadCell(std::string_view cell, int32_t* value) {
  return ReadNumber(cell, value, 10);
}
bool ReadCell(std::string_view cell, int64_t* value) {
  return ReadNumber(cell, value, 10);
}
template <class T>
bool ReadReal(std::string_view cell, T* value) {
  if (IsBlank(cell)) {
    *value = std::numeric_limits<T>::quiet_NaN();
    return true;
  }
  return ReadNumber(cell, value, std::chars_format::general);
}

template <class T>
bool Push(std::string_view cell, std::vector<T>* values) {
  T v{};
  if constexpr (std::is_floating_point_v<T>) {
    if (!ReadReal(cell, &v)) return false;
  } else {
    if (!ReadCell(cell, &v)) return false;
  }
  values->push_back(v);
  return true;
}

void Lower(std::string_view text, std::string* out) {
  out->assign(text);
  for (char& c : *out) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

template <class From, class To>
void Convert(std::vector<From>* from, std::vector<To>* to) {
  to->reserve(from->capacity());
  to->assign(from->begin(), from->end());
  std::vector<From>().swap(*from);
}

}  // namespace

CsvColumn::CsvColumn(CsvColumnHeader header)
    : m_header(std::move(header)),
      m_type(m_header.type == VTTableDataType::None ? VTTableDataType::Long : m_header.type),
      m_inferred(m_header.type == VTTableDataType::None && !m_header.isStatus) {
  for (size_t i = 0; i < m_header.codes.size(); ++i) {
    m_exact.try_emplace(m_header.names[i], m_header.codes[i]);
    Lower(m_header.names[i], &m_key);
    m_folded.try_emplace(m_key, m_header.codes[i]);
  }
}

std::string CsvColumn::Expected() const {
  static const char* const kNames[] = {"none",    "a short",  "a long", "a huge",
                                       "a float", "a double", "a text", "an option of the column"};
  if (m_header.isStatus) return "a status word";
  return kNames[static_cast<size_t>(m_type)];
}

CsvColumn::Result CsvColumn::Add(std::string_view cell, VCUDictionary* dictionary) {
  if (m_header.isStatus) return AddStatus(cell) ? kOk : kBad;
  switch (m_type) {
    case VTTableDataType::Short:
      return Push(cell, &m_shorts) ? kOk : kBad;
    case VTTableDataType::Long:
      if (Push(cell, &m_longs)) return kOk;
      if (!m_inferred) return kBad;
      Widen(IsBlank(cell) ? VTTableDataType::Double : VTTableDataType::Huge);
      return Add(cell, dictionary);
    case VTTableDataType::Huge:
      if (Push(cell, &m_huges)) return kOk;
      if (!m_inferred) return kBad;
      Widen(VTTableDataType::Double);
      return Add(cell, dictionary);
    case VTTableDataType::Float:
      return Push(cell, &m_floats) ? kOk : kBad;
    case VTTableDataType::Double:
      if (Push(cell, &m_doubles)) {
        m_anyNumber = m_anyNumber || !IsBlank(cell);
        return kOk;
      }
      if (!m_inferred) return kBad;
      Widen(VTTableDataType::Text);
      return kToText;
    case VTTableDataType::Enum:
      return AddEnum(cell) ? kOk : kBad;
    default:
      AddText(cell, dictionary);
      return kOk;
  }
}

void CsvColumn::Widen(VTTableDataType to) {
  if (m_type == VTTableDataType::Long && to == VTTableDataType::Huge) {
    Convert(&m_longs, &m_huges);
  } else if (to == VTTableDataType::Double) {
    m_anyNumber = !m_longs.empty() || !m_huges.empty();
    if (m_type == VTTableDataType::Long) Convert(&m_longs, &m_doubles);
    if (m_type == VTTableDataType::Huge) Convert(&m_huges, &m_doubles);
  } else {  // text: every cell is read again
    m_refs.reserve(std::max({m_longs.capacity(), m_huges.capacity(), m_doubles.capacity()}));
    Release(m_longs);
    Release(m_huges);
    Release(m_doubles);
  }
  m_type = to;
}

bool CsvColumn::AddEnum(std::string_view cell) {
  m_key.assign(cell);
  if (auto exact = m_exact.find(m_key); exact != m_exact.end()) {
    m_longs.push_back(exact->second);
    return true;
  }
  Lower(cell, &m_key);
  if (auto folded = m_folded.find(m_key); folded != m_folded.end()) {
    m_longs.push_back(folded->second);
    return true;
  }
  if (!m_header.hasOptions) {  // every new text is the next option
    const auto code = static_cast<int32_t>(m_header.codes.size()) + 1;
    m_header.codes.push_back(code);
    m_header.names.emplace_back(cell);
    m_folded.emplace(m_key, code);
    m_longs.push_back(code);
    return true;
  }
  return Push(cell, &m_longs);
}

bool CsvColumn::AddStatus(std::string_view cell) {
  int32_t v = -1;
  if (cell.size() > 2 && cell[0] == '0' && (cell[1] == 'x' || cell[1] == 'X')) {
    const auto [end, ec] = std::from_chars(cell.data() + 2, cell.data() + cell.size(), v, 16);
    if (ec != std::errc() || end != cell.data() + cell.size()) v = -1;
  } else if (!ReadCell(cell, &v)) {
    v = -1;
  }
  if (v < 0 || v > 0xFFFF) return false;
  m_status.push_back(static_cast<uint16_t>(v));
  return true;
}

void CsvColumn::Reserve(size_t rows) {
  if (m_header.isStatus) return m_status.reserve(rows);
  switch (m_type) {
    case VTTableDataType::Short:
      return m_shorts.reserve(rows);
    case VTTableDataType::Long:
    case VTTableDataType::Enum:
      return m_longs.reserve(rows);
    case VTTableDataType::Huge:
      return m_huges.reserve(rows);
    case VTTableDataType::Float:
      return m_floats.reserve(rows);
    case VTTableDataType::Double:
      return m_doubles.reserve(rows);
    default:
      return m_refs.reserve(rows);
  }
}

bool CsvColumn::Finish() {
  if (!m_inferred || m_type != VTTableDataType::Double || m_anyNumber) return true;
  Widen(VTTableDataType::Text);
  return false;
}

void CsvColumn::MoveInto(VCUTableMemory* table, VCUDictionary* dictionary) {
  const char* name = m_header.name.c_str();
  if (m_header.isStatus) {
    table->SetColStatus(name, static_cast<int32_t>(m_status.size()), m_status.data());
    Release(m_status);
    return;
  }
  switch (m_type) {
    case VTTableDataType::Short:
      return table->AddCol(name, std::move(m_shorts));
    case VTTableDataType::Long:
      return table->AddCol(name, std::move(m_longs));
    case VTTableDataType::Huge:
      return table->AddCol(name, std::move(m_huges));
    case VTTableDataType::Float:
      return table->AddCol(name, std::move(m_floats));
    case VTTableDataType::Double:
      return table->AddCol(name, std::move(m_doubles));
    case VTTableDataType::Enum: {
      std::vector<const char*> names;
      for (const std::string& n : m_header.names) names.push_back(n.c_str());
      table->AddCol(name, static_cast<int32_t>(names.size()), m_header.codes.data(), names.data(),
                    static_cast<int32_t>(m_longs.size()), m_longs.data());
      return Release(m_longs);
    }
    default:
      return table->AddCol(name, std::move(m_refs), *dictionary);
  }
}

}  // namespace utilkit::tool
