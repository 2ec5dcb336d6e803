#include "table_csv.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/number_text.h>

namespace utilkit::tool {

namespace {

struct TypeName {
  const char* name;
  const char* letter;
  VTTableDataType type;
};
constexpr TypeName kTypeNames[] = {
    {"short", "s", VTTableDataType::Short},   {"long", "l", VTTableDataType::Long},
    {"huge", "h", VTTableDataType::Huge},     {"float", "f", VTTableDataType::Float},
    {"double", "d", VTTableDataType::Double}, {"text", "t", VTTableDataType::Text},
    {"enum", "e", VTTableDataType::Enum},
};

const char* NameOf(VTTableDataType type) {
  for (const TypeName& t : kTypeNames) {
    if (t.type == type) return t.name;
  }
  return "none";
}

// One CSV column as the header declares it.
struct ColumnHeader {
  std::string name;
  size_t field = 0;
  VTTableDataType type = VTTableDataType::None;  // None: inferred from the cells
  bool isStatus = false;
  bool hasOptions = false;
  std::vector<int32_t> codes;
  std::vector<std::string> names;
};

std::string Where(const std::string& source, int64_t line, size_t field) {
  return source + ":" + std::to_string(line) + ":" + std::to_string(field + 1) + ": ";
}

bool ParseOptions(std::string_view list, ColumnHeader* header) {
  header->hasOptions = true;
  while (!list.empty()) {
    const size_t bar = std::min(list.find('|'), list.size());
    const std::string_view option = list.substr(0, bar);
    const size_t eq = option.find('=');
    int32_t code = 0;
    if (eq == std::string_view::npos ||
        !VFAscToNum(std::string(option.substr(0, eq)).c_str(), &code)) {
      return false;
    }
    header->codes.push_back(code);
    header->names.emplace_back(option.substr(eq + 1));
    list.remove_prefix(std::min(bar + 1, list.size()));
  }
  return true;
}

// Reads "name", "name:type", "name:enum(options)" or "name:status".
bool ParseHeaderCell(const std::string& cell, ColumnHeader* header) {
  const size_t colon = cell.find(':');
  header->name = cell.substr(0, colon);
  if (colon == std::string::npos) return true;
  const VCString suffix(cell.substr(colon + 1));
  if (suffix.CompareNoCase("status") == 0) return header->isStatus = true;
  for (const TypeName& t : kTypeNames) {
    if (suffix.CompareNoCase(t.name) == 0 || suffix.CompareNoCase(t.letter) == 0) {
      header->type = t.type;
      return true;
    }
  }
  if (suffix.Left(5).CompareNoCase("enum(") == 0 && suffix.view().back() == ')') {
    header->type = VTTableDataType::Enum;
    return ParseOptions(suffix.view().substr(5, suffix.GetLength() - 6), header);
  }
  return false;
}

bool ParseCell(const std::string& cell, int16_t* value) {
  int32_t v = 0;
  if (!VFAscToNum(cell.c_str(), &v) || v < INT16_MIN || v > INT16_MAX) return false;
  *value = static_cast<int16_t>(v);
  return true;
}
bool ParseCell(const std::string& cell, int32_t* value) {
  return VFAscToNum(cell.c_str(), value);
}
bool ParseCell(const std::string& cell, int64_t* value) {
  return VFAscToNum(cell.c_str(), value);
}
bool ParseCell(const std::string& cell, double* value) {
  if (cell.find_first_not_of(" \t") == std::string::npos) {
    *value = std::numeric_limits<double>::quiet_NaN();
    return true;
  }
  return VFAscToNum(cell.c_str(), value);
}
bool ParseCell(const std::string& cell, float* value) {
  double v = 0;
  if (!ParseCell(cell, &v)) return false;
  *value = static_cast<float>(v);
  return true;
}

// The type of a column declared without one.
VTTableDataType Infer(const CsvTable& csv, size_t field) {
  bool any = false, empty = false, int32 = true, int64 = true, number = true;
  for (const auto& row : csv.rows) {
    const std::string& cell = row[field];
    if (cell.find_first_not_of(" \t") == std::string::npos) {
      empty = true;
      continue;
    }
    any = true;
    int64_t i = 0;
    double d = 0;
    int64 = int64 && VFAscToNum(cell.c_str(), &i);
    int32 = int32 && int64 && i >= INT32_MIN && i <= INT32_MAX;
    number = number && VFAscToNum(cell.c_str(), &d);
    if (!number) break;
  }
  if (!any || !number) return VTTableDataType::Text;
  if (!empty && int32) return VTTableDataType::Long;
  if (!empty && int64) return VTTableDataType::Huge;
  return VTTableDataType::Double;
}

class Converter {
 public:
  Converter(const CsvTable& csv, const std::string& source, VCUTableMemory* table)
      : m_csv(csv), m_source(source), m_table(table), m_rows(csv.rows.size()) {}

  bool Add(const ColumnHeader& header, std::string* error) {
    switch (header.type) {
      case VTTableDataType::Short:
        return AddNumbers<int16_t>(header, error);
      case VTTableDataType::Long:
        return AddNumbers<int32_t>(header, error);
      case VTTableDataType::Huge:
        return AddNumbers<int64_t>(header, error);
      case VTTableDataType::Float:
        return AddNumbers<float>(header, error);
      case VTTableDataType::Double:
        return AddNumbers<double>(header, error);
      case VTTableDataType::Enum:
        return AddEnum(header, error);
      default: {
        std::vector<const char*> texts(m_rows);
        for (size_t r = 0; r < m_rows; ++r) texts[r] = m_csv.rows[r][header.field].c_str();
        m_table->AddCol(header.name.c_str(), static_cast<int32_t>(m_rows), texts.data());
        return true;
      }
    }
  }

  bool AddStatus(const ColumnHeader& header, std::string* error) {
    std::vector<uint16_t> words(m_rows);
    for (size_t r = 0; r < m_rows; ++r) {
      const std::string& cell = m_csv.rows[r][header.field];
      int32_t v = -1;
      if (cell.size() > 2 && cell[0] == '0' && (cell[1] == 'x' || cell[1] == 'X')) {
        const auto [end, ec] = std::from_chars(cell.data() + 2, cell.data() + cell.size(), v, 16);
        if (ec != std::errc() || end != cell.data() + cell.size()) v = -1;
      } else if (!VFAscToNum(cell.c_str(), &v)) {
        v = -1;
      }
      if (v < 0 || v > 0xFFFF) return Bad(r, header, "a status word", error);
      words[r] = static_cast<uint16_t>(v);
    }
    m_table->SetColStatus(header.name.c_str(), static_cast<int32_t>(m_rows), words.data());
    return true;
  }

 private:
  bool Bad(size_t row, const ColumnHeader& header, const std::string& what, std::string* error) {
    *error = Where(m_source, m_csv.lines[row], header.field) + "'" + m_csv.rows[row][header.field] +
             "' is not " + what + " (column " + header.name + ")";
    return false;
  }

  template <class T>
  bool AddNumbers(const ColumnHeader& header, std::string* error) {
    std::vector<T> values(m_rows);
    for (size_t r = 0; r < m_rows; ++r) {
      if (!ParseCell(m_csv.rows[r][header.field], &values[r])) {
        return Bad(r, header, std::string("a ") + NameOf(header.type), error);
      }
    }
    m_table->AddCol(header.name.c_str(), static_cast<int32_t>(m_rows), values.data());
    return true;
  }

  bool AddEnum(const ColumnHeader& header, std::string* error) {
    std::vector<int32_t> codes = header.codes;
    std::vector<std::string> names = header.names;
    std::vector<int32_t> values(m_rows);
    for (size_t r = 0; r < m_rows; ++r) {
      const std::string& cell = m_csv.rows[r][header.field];
      auto named = std::find_if(names.begin(), names.end(), [&](const std::string& n) {
        return VCString(n).CompareNoCase(cell.c_str()) == 0;
      });
      if (!header.hasOptions && named == names.end()) {
        codes.push_back(static_cast<int32_t>(codes.size()) + 1);
        names.push_back(cell);
        named = names.end() - 1;
      }
      if (named != names.end()) {
        values[r] = codes[static_cast<size_t>(named - names.begin())];
      } else if (!ParseCell(cell, &values[r])) {
        return Bad(r, header, "an option of the column", error);
      }
    }
    std::vector<const char*> optionNames;
    for (const std::string& n : names) optionNames.push_back(n.c_str());
    m_table->AddCol(header.name.c_str(), static_cast<int32_t>(codes.size()), codes.data(),
                    optionNames.data(), static_cast<int32_t>(m_rows), values.data());
    return true;
  }

  const CsvTable& m_csv;
  const std::string& m_source;
  VCUTableMemory* m_table;
  size_t m_rows;
};

}  // namespace

bool CsvToMemoryTable(const CsvTable& csv, const std::string& source, VCUTableMemory* table,
                      std::string* error, const ConvertProgress& progress) {
  if (csv.rows.size() > static_cast<size_t>(INT32_MAX)) {
    *error = source + ": too many rows for one table";
    return false;
  }
  std::vector<ColumnHeader> headers(csv.header.size());
  for (size_t f = 0; f < headers.size(); ++f) {
    headers[f].field = f;
    if (!ParseHeaderCell(csv.header[f], &headers[f])) {
      *error =
          Where(source, 1, f) + "'" + csv.header[f] + "' is not name, name:type or name:status";
      return false;
    }
    if (!headers[f].isStatus && headers[f].type == VTTableDataType::None) {
      headers[f].type = Infer(csv, f);
    }
  }
  Converter converter(csv, source, table);
  size_t done = 0;
  for (const ColumnHeader& header : headers) {
    if (!header.isStatus && !converter.Add(header, error)) return false;
    if (progress) progress(++done, headers.size());
  }
  for (const ColumnHeader& header : headers) {
    if (!header.isStatus) continue;
    const bool found = std::any_of(headers.begin(), headers.end(), [&](const ColumnHeader& s) {
      return !s.isStatus && VCString(s.name).CompareNoCase(header.name.c_str()) == 0;
    });
    if (!found) {
      *error = Where(source, 1, header.field) + "status column of a column that does not exist (" +
               header.name + ")";
      return false;
    }
    if (!converter.AddStatus(header, error)) return false;
  }
  table->SetNumRows(static_cast<int32_t>(csv.rows.size()));
  return true;
}

}  // namespace utilkit::tool
