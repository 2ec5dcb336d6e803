// Writing a table as CSV (see table_csv.h).
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <utilkit/base/error_stack.h>

#include "csv_column.h"
#include "table_csv.h"

namespace utilkit::tool {

namespace {

// Rows read from the table at a time.
constexpr int64_t kBlock = 4096;
// Bytes gathered before one write to the stream.
constexpr size_t kFlushBytes = size_t{1} << 20;

const char* TypeText(VTTableDataType type) {
  static const char* const kNames[] = {"none",  "short",  "long", "huge",
                                       "float", "double", "text", "enum"};
  const auto at = static_cast<size_t>(type);
  return at < std::size(kNames) ? kNames[at] : "none";
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return VCString(std::string(a)).CompareNoCase(std::string(b).c_str()) == 0;
}

// Writes `value` (finite, not zero) as std::to_chars does, the shortest
// text that reads back as it, where that is quick to do: a value with at
// most six decimals below 2^50 / 10^6, written in fixed notation. Such a
// value times 10^6 lies within a tiny fraction of a whole number m, and m
// with its trailing zeros taken off is the shortest digit string (an exact
// division by a power of ten confirms that it reads back). Returns the end
// of the text, or null where std::to_chars has to do it.
char* WritePlainDecimal(double value, char* out) {
  static constexpr double kPowers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
  constexpr int kDecimals = 6;
  const double size = std::fabs(value);
  const double scaled = size * kPowers[kDecimals];
  if (!(scaled < 0x1p50) || scaled < 0.5) return nullptr;
  const double nearest = std::nearbyint(scaled);
  if (std::fabs(scaled - nearest) > 1e-3) return nullptr;
  auto whole = static_cast<uint64_t>(nearest);
  int decimals = kDecimals;
  while (decimals > 0 && whole % 10 == 0) whole /= 10, --decimals;
  if (static_cast<double>(whole) / kPowers[decimals] != size) return nullptr;
  char digits[24];
  const auto length =
      static_cast<int>(std::to_chars(digits, digits + sizeof digits, whole).ptr - digits);
  // Fixed notation only where it is no longer than scientific ("1.5e+07").
  int significant = length;
  while (decimals == 0 && significant > 1 && digits[significant - 1] == '0') --significant;
  const int fixed = decimals == 0 ? length : std::max(length, decimals + 1) + 1;
  if (fixed > significant + (significant > 1 ? 1 : 0) + 4) return nullptr;
  if (value < 0) *out++ = '-';
  if (decimals >= length) {  // 0.00ddd
    *out++ = '0';
    *out++ = '.';
    out = std::fill_n(out, decimals - length, '0');
    return std::copy_n(digits, length, out);
  }
  out = std::copy_n(digits, length - decimals, out);
  if (decimals == 0) return out;
  *out++ = '.';
  return std::copy_n(digits + length - decimals, decimals, out);
}

// CSV records gathered in a buffer and written in large pieces.
class CsvBuffer {
 public:
  explicit CsvBuffer(std::ostream& out) : m_out(out), m_text(kFlushBytes + kSlack, '\0') {}

  void Field(std::string_view text) {
    Room(2 * text.size() + 4);
    Separate();
    bool quote = text.starts_with("\xEF\xBB\xBF");
    for (const char c : text) quote |= c == ',' || c == '"' || c == '\r' || c == '\n';
    if (!quote) {
      if (!text.empty()) std::memcpy(m_text.data() + m_used, text.data(), text.size());
      m_used += text.size();
      return;
    }
    m_text[m_used++] = '"';
    for (const char c : text) {
      if (c == '"') m_text[m_used++] = '"';
      m_text[m_used++] = c;
    }
    m_text[m_used++] = '"';
  }
  template <class T>
  void Number(T value) {
    Room(kNumberBytes);
    Separate();
    char* at = m_text.data() + m_used;
    if constexpr (std::is_floating_point_v<T>) {
      if (std::isnan(value)) return;  // an empty cell
    }
    if constexpr (std::is_same_v<T, double>) {
      if (char* end = WritePlainDecimal(value, at)) {
        m_used = static_cast<size_t>(end - m_text.data());
        return;
      }
    }
    m_used = static_cast<size_t>(std::to_chars(at, at + kNumberBytes, value).ptr - m_text.data());
  }
  // Ends a record; a record of one empty field is written "" so that it is
  // not read as a blank line.
  void EndRecord() {
    Room(4);
    if (m_fields == 1 && m_used == m_recordStart) {
      m_text[m_used++] = '"';
      m_text[m_used++] = '"';
    }
    m_text[m_used++] = '\n';
    m_fields = 0;
    m_recordStart = m_used;
    if (m_used >= kFlushBytes) Flush();
  }
  void Flush() {
    m_out.write(m_text.data(), static_cast<std::streamsize>(m_used));
    m_used = m_recordStart = 0;
  }

 private:
  // Room kept past the flush mark, and the most a number's text takes.
  static constexpr size_t kSlack = 4096;
  static constexpr size_t kNumberBytes = 48;

  // Makes room for `bytes` more (the buffer grows for a record larger than
  // the flush mark).
  void Room(size_t bytes) {
    if (m_text.size() - m_used < bytes + 1) m_text.resize(m_used + bytes + kSlack);
  }
  void Separate() {
    if (m_fields++ > 0) m_text[m_used++] = ',';
  }

  std::ostream& m_out;
  std::string m_text;  // m_text[0, m_used) is written
  size_t m_used = 0;
  size_t m_fields = 0;
  size_t m_recordStart = 0;
};

// One column of the table and a block of its values.
struct OutColumn {
  int32_t index = 0;
  VCString keyword;
  VTTableDataType type = VTTableDataType::None;
  char hasStatus = 0;
  VCArrayWithSort<int32_t> codes;
  VCStringArray names;
  std::unordered_map<int32_t, std::string> codeTexts;  // how each Enum code is written
  bool padCodes = false;
  std::vector<int16_t> shorts;
  std::vector<int32_t> longs;
  std::vector<int64_t> huges;
  std::vector<float> floats;
  std::vector<double> doubles;
  VCStringArray texts;                  // copies, where the table cannot lend them
  std::vector<std::string_view> views;  // the block's texts
  std::vector<uint16_t> status;

  // An Enum cell is written by its option's name. For typed output, which
  // must read back alike, only when that name reads back as its code (the
  // first option of that exact name), else by its code, zero-padded until
  // no option has that name.
  void PrepareCodeTexts(bool typed) {
    for (int32_t i = 0; i < codes.GetSize(); ++i) {
      const std::string name = names[i].str();
      bool first = true;
      for (int32_t j = 0; j < i && typed; ++j) first = first && names[j].str() != name;
      if (first) codeTexts.emplace(codes[i], name);
    }
    padCodes = typed;
  }
  const std::string& CodeText(int32_t code) {
    if (auto known = codeTexts.find(code); known != codeTexts.end()) return known->second;
    std::string text = std::to_string(code);
    for (bool taken = padCodes; taken;) {
      taken = false;
      for (int32_t i = 0; i < names.GetSize() && !taken; ++i) {
        taken = EqualNoCase(names[i].view(), text);
      }
      if (taken) text.insert(text.begin() + (text[0] == '-' ? 1 : 0), '0');
    }
    return codeTexts.emplace(code, text).first->second;
  }

  std::string Header(bool typed) const {
    std::string text = keyword.str();
    if (!typed) return text;
    text.append(":").append(TypeText(type));
    if (type != VTTableDataType::Enum) return text;
    text.append("(");
    for (int32_t i = 0; i < codes.GetSize(); ++i) {
      if (i > 0) text.append("|");
      text.append(std::to_string(codes[i])).append("=");
      for (char c : names[i].view()) text.append(c == '|' ? "||" : std::string(1, c));
    }
    return text.append(")");
  }

  // Whether typed header `text` reads back as this column's name, type and
  // options (a name holding ":long", say, would end at that colon).
  bool ReadsBack(const std::string& text) const {
    CsvColumnHeader read;
    if (!ParseCsvHeaderCell(text, &read) || read.name != keyword.str() || read.type != type ||
        read.isStatus) {
      return false;
    }
    if (type != VTTableDataType::Enum) return true;
    if (read.codes.size() != static_cast<size_t>(codes.GetSize())) return false;
    for (int32_t i = 0; i < codes.GetSize(); ++i) {
      if (read.codes[i] != codes[i] || read.names[i] != names[i].str()) return false;
    }
    return true;
  }

  // Reads rows first..first+n-1.
  bool Read(VCUTable& t, int64_t first, int64_t n) {
    const auto size = static_cast<size_t>(n);
    if (hasStatus && (status.resize(size), !t.GetStatusValues(index, first, n, status.data()))) {
      return false;
    }
    switch (type) {
      case VTTableDataType::Short:
        return shorts.resize(size), t.GetValues_S(index, first, n, shorts.data());
      case VTTableDataType::Long:
        return longs.resize(size), t.GetValues_L(index, first, n, longs.data());
      case VTTableDataType::Enum:
        return longs.resize(size), t.GetValues_E(index, first, n, longs.data(), nullptr);
      case VTTableDataType::Huge:
        return huges.resize(size), t.GetValues_H(index, first, n, huges.data());
      case VTTableDataType::Float:
        return floats.resize(size), t.GetValues_F(index, first, n, floats.data());
      case VTTableDataType::Double:
        return doubles.resize(size), t.GetValues_D(index, first, n, doubles.data());
      default:
        views.resize(size);
        if (t.PeekTexts(index, first, n, views.data())) return true;
        if (!t.GetValues_T(index, first, n, &texts)) return false;
        for (size_t r = 0; r < size; ++r) views[r] = texts[static_cast<int32_t>(r)].view();
        return true;
    }
  }

  // Writes the cells of block row `r`.
  void Write(size_t r, CsvBuffer* out) {
    switch (type) {
      case VTTableDataType::Short:
        out->Number(shorts[r]);
        break;
      case VTTableDataType::Long:
        out->Number(longs[r]);
        break;
      case VTTableDataType::Enum:
        out->Field(CodeText(longs[r]));
        break;
      case VTTableDataType::Huge:
        out->Number(huges[r]);
        break;
      case VTTableDataType::Float:
        out->Number(floats[r]);
        break;
      case VTTableDataType::Double:
        out->Number(doubles[r]);
        break;
      default:
        out->Field(views[r]);
    }
    if (hasStatus) out->Number(status[r]);
  }
};

bool Failed(std::string* error) {
  *error = VFErrorGetFullString().str();
  VFErrorClear();
  return false;
}

}  // namespace

bool WriteTableCsv(VCUTable& table, bool typedHeader, std::ostream& out, std::string* error,
                   const CsvProgress& progress) {
  int32_t cols = 0;
  int64_t rows = 0;
  if (!table.GetNumCols(&cols) || !table.GetNumRows(&rows)) return Failed(error);
  std::vector<OutColumn> columns(static_cast<size_t>(cols));
  CsvBuffer buffer(out);
  for (int32_t i = 0; i < cols; ++i) {
    OutColumn& c = columns[static_cast<size_t>(i)];
    c.index = i;
    if (!table.GetColKeyword(i, &c.keyword) || !table.GetColType(i, &c.type) ||
        !table.GetColHasStatus(i, &c.hasStatus) ||
        (c.type == VTTableDataType::Enum && !table.GetEnumColOptions(i, &c.codes, &c.names))) {
      return Failed(error);
    }
    c.PrepareCodeTexts(typedHeader);
    const std::string header = c.Header(typedHeader);
    if (typedHeader && !c.ReadsBack(header)) {
      *error = "column " + c.keyword.str() +
               ": its name or an option name holds ':' and a type, so a typed header would "
               "read back otherwise";
      return false;
    }
    buffer.Field(header);
    if (c.hasStatus) buffer.Field(c.keyword.str() + ":status");
  }
  buffer.EndRecord();
  for (int64_t first = 1; first <= rows; first += kBlock) {
    const int64_t n = std::min(kBlock, rows - first + 1);
    for (OutColumn& c : columns) {
      if (!c.Read(table, first, n)) return Failed(error);
    }
    for (size_t r = 0; r < static_cast<size_t>(n); ++r) {
      for (OutColumn& c : columns) c.Write(r, &buffer);
      buffer.EndRecord();
    }
    if (progress) progress("Writing", first + n - 1, rows);
  }
  buffer.Flush();
  return true;
}

}  // namespace utilkit::tool
