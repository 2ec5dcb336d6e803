// Writing a table as CSV (see table_csv.h).
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/number_text.h>

#include "table_csv.h"

namespace utilkit::tool {

namespace {

// Rows read from the table at a time.
constexpr int64_t kBlock = 4096;

struct OutColumn {
  int32_t index = 0;
  VCString keyword;
  VTTableDataType type = VTTableDataType::None;
  char hasStatus = 0;
  VCArrayWithSort<int32_t> codes;
  VCStringArray names;
};

const char* TypeText(VTTableDataType type) {
  static const char* const kNames[] = {"none",  "short",  "long", "huge",
                                       "float", "double", "text", "enum"};
  const auto at = static_cast<size_t>(type);
  return at < std::size(kNames) ? kNames[at] : "none";
}

std::string HeaderOf(const OutColumn& c, bool typed) {
  std::string text = c.keyword.str();
  if (!typed) return text;
  text.append(":").append(TypeText(c.type));
  if (c.type == VTTableDataType::Enum && c.codes.GetSize() > 0) {
    text.append("(");
    for (int32_t i = 0; i < c.codes.GetSize(); ++i) {
      if (i > 0) text.append("|");
      text.append(std::to_string(c.codes[i])).append("=").append(c.names[i].str());
    }
    text.append(")");
  }
  return text;
}

std::string FloatText(float value) {
  if (std::isnan(value)) return "";
  char buffer[32];
  const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, ec == std::errc() ? end : buffer);
}

// Reads `n` values with `read` and formats each with `format` into out[i].
template <class T, class Read, class Format>
bool Numbers(int64_t n, std::vector<std::string>* out, Read&& read, Format&& format) {
  std::vector<T> values(static_cast<size_t>(n));
  if (!read(values.data())) return false;
  for (int64_t i = 0; i < n; ++i) (*out)[static_cast<size_t>(i)] = format(values[i]);
  return true;
}

// The cells of rows first..first+n-1 of column `c`, as text.
bool FormatBlock(VCUTable& t, const OutColumn& c, int64_t first, int64_t n,
                 std::vector<std::string>* out) {
  const int32_t col = c.index;
  auto decimal = [](auto v) { return std::to_string(v); };
  switch (c.type) {
    case VTTableDataType::Short:
      return Numbers<int16_t>(
          n, out, [&](int16_t* v) { return t.GetValues_S(col, first, n, v); }, decimal);
    case VTTableDataType::Long:
      return Numbers<int32_t>(
          n, out, [&](int32_t* v) { return t.GetValues_L(col, first, n, v); }, decimal);
    case VTTableDataType::Huge:
      return Numbers<int64_t>(
          n, out, [&](int64_t* v) { return t.GetValues_H(col, first, n, v); }, decimal);
    case VTTableDataType::Float:
      return Numbers<float>(
          n, out, [&](float* v) { return t.GetValues_F(col, first, n, v); }, FloatText);
    case VTTableDataType::Double:
      return Numbers<double>(
          n, out, [&](double* v) { return t.GetValues_D(col, first, n, v); },
          [](double v) { return std::isnan(v) ? std::string() : VFFormatDouble(v).str(); });
    case VTTableDataType::Enum:
      return Numbers<int32_t>(
          n, out, [&](int32_t* v) { return t.GetValues_E(col, first, n, v, nullptr); },
          [&](int32_t code) {
            const int32_t at = c.codes.Find(code);
            return at >= 0 ? c.names[at].str() : std::to_string(code);
          });
    default: {
      VCStringArray texts;
      if (!t.GetValues_T(col, first, n, &texts)) return false;
      for (int64_t i = 0; i < n; ++i) {
        (*out)[static_cast<size_t>(i)] = texts[static_cast<int32_t>(i)].str();
      }
      return true;
    }
  }
}

bool FormatStatus(VCUTable& t, const OutColumn& c, int64_t first, int64_t n,
                  std::vector<std::string>* out) {
  return Numbers<uint16_t>(
      n, out, [&](uint16_t* v) { return t.GetStatusValues(c.index, first, n, v); },
      [](uint16_t v) { return std::to_string(v); });
}

bool Failed(std::string* error) {
  *error = VFErrorGetFullString().str();
  VFErrorClear();
  return false;
}

}  // namespace

bool WriteTableCsv(VCUTable& table, bool typedHeader, std::ostream& out, std::string* error) {
  int32_t cols = 0;
  int64_t rows = 0;
  if (!table.GetNumCols(&cols) || !table.GetNumRows(&rows)) return Failed(error);
  std::vector<OutColumn> columns(static_cast<size_t>(cols));
  std::vector<std::string> record;
  for (int32_t i = 0; i < cols; ++i) {
    OutColumn& c = columns[static_cast<size_t>(i)];
    c.index = i;
    if (!table.GetColKeyword(i, &c.keyword) || !table.GetColType(i, &c.type) ||
        !table.GetColHasStatus(i, &c.hasStatus) ||
        (c.type == VTTableDataType::Enum && !table.GetEnumColOptions(i, &c.codes, &c.names))) {
      return Failed(error);
    }
    record.push_back(HeaderOf(c, typedHeader));
    if (c.hasStatus) record.push_back(c.keyword.str() + ":status");
  }
  WriteCsvRecord(out, record);
  std::vector<std::vector<std::string>> cells(record.size());
  for (int64_t first = 1; first <= rows; first += kBlock) {
    const int64_t n = std::min(kBlock, rows - first + 1);
    size_t field = 0;
    for (const OutColumn& c : columns) {
      cells[field].resize(static_cast<size_t>(n));
      if (!FormatBlock(table, c, first, n, &cells[field++])) return Failed(error);
      if (!c.hasStatus) continue;
      cells[field].resize(static_cast<size_t>(n));
      if (!FormatStatus(table, c, first, n, &cells[field++])) return Failed(error);
    }
    for (int64_t r = 0; r < n; ++r) {
      for (size_t f = 0; f < record.size(); ++f) record[f] = std::move(cells[f][r]);
      WriteCsvRecord(out, record);
    }
  }
  return true;
}

}  // namespace utilkit::tool
