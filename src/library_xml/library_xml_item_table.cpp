// VCULibraryXML_ItemTable (see library_xml_item_table.h).
#include <utilkit/library_xml/library_xml_item_table.h>

#include <charconv>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include <utilkit/base/error_report.h>
#include <utilkit/base/preference_system.h>
#include <utilkit/library_xml/library_xml_errors.h>

namespace {

constexpr const char* kTypeNames[] = {"Short", "Long", "Huge", "Float", "Double", "Text", "Enum"};
constexpr int64_t kChunkRows = 4096;  // rows read from a table at a time

// The shortest text that reads back as `value`.
template <typename T>
VCString NumberText(T value) {
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return VCString(text, static_cast<size_t>(result.ptr - text));
}

const VCString& Empty() {
  static const VCString empty;
  return empty;
}

// Reads rows first..first+count-1 of column `col` of `table` as display
// texts into `out` (count texts).
bool ReadColumnTexts(VCUTable& table, int32_t col, VTTableDataType type, int64_t first,
                     int64_t count, VCString* out) {
  const auto convert = [&](auto* values, auto read) {
    if (!read(values)) return false;
    for (int64_t i = 0; i < count; ++i) out[i] = NumberText(values[i]);
    return true;
  };
  switch (type) {
    case VTTableDataType::Short: {
      std::vector<int16_t> v(static_cast<size_t>(count));
      return convert(v.data(), [&](int16_t* p) { return table.GetValues_S(col, first, count, p); });
    }
    case VTTableDataType::Long: {
      std::vector<int32_t> v(static_cast<size_t>(count));
      return convert(v.data(), [&](int32_t* p) { return table.GetValues_L(col, first, count, p); });
    }
    case VTTableDataType::Huge: {
      std::vector<int64_t> v(static_cast<size_t>(count));
      return convert(v.data(), [&](int64_t* p) { return table.GetValues_H(col, first, count, p); });
    }
    case VTTableDataType::Float: {
      std::vector<float> v(static_cast<size_t>(count));
      return convert(v.data(), [&](float* p) { return table.GetValues_F(col, first, count, p); });
    }
    case VTTableDataType::Double: {
      std::vector<double> v(static_cast<size_t>(count));
      return convert(v.data(), [&](double* p) { return table.GetValues_D(col, first, count, p); });
    }
    case VTTableDataType::Text: {
      VCStringArray texts;
      if (!table.GetValues_T(col, first, count, &texts)) return false;
      for (int64_t i = 0; i < count; ++i) out[i] = texts[static_cast<int32_t>(i)];
      return true;
    }
    case VTTableDataType::Enum: {
      std::vector<int32_t> codes(static_cast<size_t>(count));
      VCStringArray names;
      if (!table.GetValues_E(col, first, count, codes.data(), &names)) return false;
      for (int64_t i = 0; i < count; ++i) {
        const VCString& name = names[static_cast<int32_t>(i)];
        out[i] = name.IsEmpty() ? NumberText(codes[static_cast<size_t>(i)]) : name;
      }
      return true;
    }
    default:
      return false;
  }
}

// Empties the cells of rows whose status word marks them invalid.
bool ClearInvalid(VCUTable& table, int32_t col, int64_t first, int64_t count, VCString* out) {
  char hasStatus = 0;
  if (!table.GetColHasStatus(col, &hasStatus)) return false;
  if (!hasStatus) return true;
  std::vector<uint16_t> status(static_cast<size_t>(count));
  if (!table.GetStatusValues(col, first, count, status.data())) return false;
  for (int64_t i = 0; i < count; ++i) {
    if (!(status[static_cast<size_t>(i)] & kTableStatusValid)) out[i].Empty();
  }
  return true;
}

}  // namespace

VCULibraryXML_ItemTable::~VCULibraryXML_ItemTable() = default;

int64_t VCULibraryXML_ItemTable::GetMaxTableCells() {
  const int64_t limit =
      VCPreferenceSystem::GetHugeValue(kMaxTableSizePreference, kDefaultMaxTableCells);
  return limit < 0 ? kDefaultMaxTableCells : limit;
}

const char* VCULibraryXML_ItemTable::TypeName(VTTableDataType type) {
  const auto index = static_cast<int32_t>(type) - 1;
  return index >= 0 && index < 7 ? kTypeNames[index] : "";
}

VTTableDataType VCULibraryXML_ItemTable::TypeFromName(const char* name) {
  for (int32_t i = 0; name && i < 7; ++i) {
    if (std::strcmp(name, kTypeNames[i]) == 0) return static_cast<VTTableDataType>(i + 1);
  }
  return VTTableDataType::None;
}

bool VCULibraryXML_ItemTable::CheckCells(int64_t cells, const char* location) {
  if (cells <= GetMaxTableCells()) return true;
  return VFReportError(kLibraryXMLErrorTableSize, location, std::to_string(cells).c_str());
}

int64_t VCULibraryXML_ItemTable::GetNumRows() const {
  return m_names.IsEmpty() ? 0 : static_cast<int64_t>(m_cells.size()) / m_names.GetSize();
}

VCString VCULibraryXML_ItemTable::GetColName(int32_t col) const {
  return col >= 0 && col < GetNumCols() ? m_names.GetAt(col) : VCString();
}

VCString VCULibraryXML_ItemTable::GetColUnits(int32_t col) const {
  return col >= 0 && col < GetNumCols() ? m_units.GetAt(col) : VCString();
}

VTTableDataType VCULibraryXML_ItemTable::GetColType(int32_t col) const {
  return col >= 0 && col < GetNumCols() ? m_types[static_cast<size_t>(col)] : VTTableDataType::None;
}

const VCString& VCULibraryXML_ItemTable::GetCell(int64_t row, int32_t col) const {
  if (row < 1 || row > GetNumRows() || col < 0 || col >= GetNumCols()) return Empty();
  return m_cells[static_cast<size_t>((row - 1) * GetNumCols() + col)];
}

void VCULibraryXML_ItemTable::RemoveAll() {
  m_names.RemoveAll();
  m_units.RemoveAll();
  m_types.clear();
  m_cells.clear();
}

bool VCULibraryXML_ItemTable::AddColumn(const char* name, VTTableDataType type, const char* units) {
  static constexpr const char* kWhere = "VCULibraryXML_ItemTable::AddColumn";
  if (!m_cells.empty()) return VFReportError(kLibraryXMLErrorItem, kWhere, "Column");
  if (*TypeName(type) == 0) return VFReportError(kLibraryXMLErrorItem, kWhere, "type");
  try {
    m_types.push_back(type);
    m_names.Add(VCString(name));
    m_units.Add(VCString(units));
  } catch (const std::bad_alloc&) {
    RemoveAll();
    return VFReportError(kErrorOutOfMemory, kWhere);
  }
  return true;
}

bool VCULibraryXML_ItemTable::AddRow(const VCStringArray& cells) {
  static constexpr const char* kWhere = "VCULibraryXML_ItemTable::AddRow";
  if (cells.GetSize() != GetNumCols()) return VFReportError(kLibraryXMLErrorItem, kWhere, "Row");
  if (!CheckCells(static_cast<int64_t>(m_cells.size()) + cells.GetSize(), kWhere)) return false;
  try {
    m_cells.insert(m_cells.end(), cells.begin(), cells.end());
  } catch (const std::bad_alloc&) {
    return VFReportError(kErrorOutOfMemory, kWhere);
  }
  return true;
}

bool VCULibraryXML_ItemTable::SetFromTable(VCUTable& table) {
  static constexpr const char* kWhere = "VCULibraryXML_ItemTable::SetFromTable";
  int32_t cols = 0;
  int64_t rows = 0;
  VCString name;
  if (!table.GetNumCols(&cols) || !table.GetNumRows(&rows) || !table.GetTableName(&name)) {
    return false;
  }
  const bool overflows = cols > 0 && rows > std::numeric_limits<int64_t>::max() / cols;
  if (!CheckCells(overflows ? std::numeric_limits<int64_t>::max() : cols * rows, kWhere)) {
    return false;
  }
  try {
    VCULibraryXML_ItemTable filled;
    std::vector<VCString> column;
    for (int32_t c = 0; c < cols; ++c) {
      VCString keyword, units;
      VTTableDataType type = VTTableDataType::None;
      if (!table.GetColKeyword(c, &keyword) || !table.GetColUnits(c, &units) ||
          !table.GetColType(c, &type) || !filled.AddColumn(keyword, type, units)) {
        return false;
      }
    }
    filled.m_cells.resize(static_cast<size_t>(cols * rows));
    for (int32_t c = 0; c < cols; ++c) {
      for (int64_t first = 1; first <= rows; first += kChunkRows) {
        const int64_t count = std::min(kChunkRows, rows - first + 1);
        column.resize(static_cast<size_t>(count));
        if (!ReadColumnTexts(table, c, filled.m_types[static_cast<size_t>(c)], first, count,
                             column.data()) ||
            !ClearInvalid(table, c, first, count, column.data())) {
          return false;
        }
        for (int64_t i = 0; i < count; ++i) {
          filled.m_cells[static_cast<size_t>((first - 1 + i) * cols + c)] =
              std::move(column[static_cast<size_t>(i)]);
        }
      }
    }
    m_names = std::move(filled.m_names);
    m_units = std::move(filled.m_units);
    m_types = std::move(filled.m_types);
    m_cells = std::move(filled.m_cells);
    if (GetTitle().IsEmpty()) SetTitle(name);
  } catch (const std::bad_alloc&) {
    return VFReportError(kErrorOutOfMemory, kWhere);
  }
  return true;
}
