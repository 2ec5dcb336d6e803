#include <utilkit/table/table.h>

#include <cstdio>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_io.h>
#include <utilkit/base/vc_text_io.h>
#include <utilkit/table/table_errors.h>

namespace {

// The text of one cell as both dumps show it: the variant's text, followed
// by "(<status>)" when the column has status.
bool CellText(VCUTable& table, int32_t col, int64_t row, VCString* text) {
  VCVariant value;
  char hasStatus = 0;
  if (!table.GetValue(col, row, &value, VTTableDataType::None)) return false;
  if (!table.GetColHasStatus(col, &hasStatus)) return false;
  *text = value.GetString();
  if (hasStatus) {
    uint16_t status = 0;
    if (!table.GetStatusValues(col, row, 1, &status)) return false;
    *text = VCString::Formatted("%s(%d)", text->c_str(), static_cast<int>(status));
  }
  return true;
}

}  // namespace

VCUTable::~VCUTable() = default;

const double* VCUTable::PeekValues_D(int32_t, int64_t, int64_t) {
  return nullptr;
}

const void* VCUTable::PeekCells(int32_t col, VTTableDataType type, int64_t first, int64_t count,
                                const VCUDictionary**) {
  return type == VTTableDataType::Double ? PeekValues_D(col, first, count) : nullptr;
}

bool VCUTable::GetValues_T(int32_t, int64_t, int64_t, VCString*) {
  return false;
}

bool VCUTable::PeekTexts(int32_t, int64_t, int64_t, std::string_view*) {
  return false;
}

bool VCUTable::GetInputTableIndexForRow(int64_t, int32_t* index) {
  *index = 0;
  return true;
}

bool VCUTable::GetValue(int32_t col, int64_t row, VCVariant* value, VTTableDataType type) {
  if (type == VTTableDataType::None && !GetColType(col, &type)) return false;
  switch (type) {
    case VTTableDataType::Short: {
      int16_t v = 0;
      if (!GetValues_S(col, row, 1, &v)) return false;
      value->SetShort(v);
      return true;
    }
    case VTTableDataType::Long: {
      int32_t v = 0;
      if (!GetValues_L(col, row, 1, &v)) return false;
      value->SetLong(v);
      return true;
    }
    case VTTableDataType::Huge: {
      int64_t v = 0;
      if (!GetValues_H(col, row, 1, &v)) return false;
      value->SetHuge(v);
      return true;
    }
    case VTTableDataType::Float: {
      float v = 0;
      if (!GetValues_F(col, row, 1, &v)) return false;
      value->SetFloat(v);
      return true;
    }
    case VTTableDataType::Double: {
      double v = 0;
      if (!GetValues_D(col, row, 1, &v)) return false;
      value->SetDouble(v);
      return true;
    }
    case VTTableDataType::Text: {
      VCStringArray texts(10);
      if (!GetValues_T(col, row, 1, &texts)) return false;
      return value->SetString(texts.GetSize() > 0 ? texts[0].c_str() : "");
    }
    case VTTableDataType::Enum: {
      int32_t code = 0;
      if (!GetValues_E(col, row, 1, &code, nullptr)) return false;
      value->SetLong(code);
      return true;
    }
    default:
      return VFReportError(kTableErrorColumnType, "VCUTable::GetValue");
  }
}

bool VCUTable::GetValid(int32_t col, int64_t row, char* valid) {
  *valid = 1;
  char hasStatus = 0;
  if (!GetColHasStatus(col, &hasStatus)) return false;
  if (!hasStatus) return true;
  uint16_t status = 0;
  if (!GetStatusValues(col, row, 1, &status)) return false;
  if ((status & kTableStatusValid) == 0) *valid = 0;
  return true;
}

bool VCUTable::GetColIndexFromKeyword(const char* keyword, int32_t* index) {
  *index = -1;
  int32_t count = 0;
  if (!GetNumCols(&count)) return false;
  const char* wanted = keyword ? keyword : "";
  VCString name;
  for (int32_t col = 0; col < count; ++col) {
    if (!GetColKeyword(col, &name)) return false;
    if (name.CompareNoCase(wanted) == 0) {
      *index = col;
      return true;
    }
  }
  return VFReportError(kTableErrorColumnNotFound, "VCUTable::GetColIndexFromKeyword", wanted);
}

void VCUTable::DumpTableToScreen() {
  try {
    DumpToScreen();
  } catch (...) {
    VFReportError(kTableErrorOutOfMemory, "VCUTable::DumpTableToScreen");
    std::printf("Failed VCUTable::DumpTableToScreen. Error message:\n%s\n",
                VFErrorGetFullString().c_str());
  }
}

void VCUTable::DumpToScreen() {
  int64_t rows = 0;
  int32_t cols = 0;
  VCString text;
  bool ok = GetNumRows(&rows) && GetNumCols(&cols);
  if (ok) {
    std::printf("No of rows: %d, No of cols: %d\n", static_cast<int>(rows), static_cast<int>(cols));
    std::printf("Row,");
    for (int32_t col = 0; ok && col < cols; ++col) {
      ok = GetColKeyword(col, &text);
      if (ok) std::printf("%s,", text.c_str());
    }
    if (ok) std::printf("\n");
  }
  for (int64_t row = 1; ok && row <= rows; ++row) {
    std::printf("%d,", static_cast<int>(row));
    for (int32_t col = 0; ok && col < cols; ++col) {
      ok = CellText(*this, col, row, &text);
      if (ok) std::printf("%s,", text.c_str());
    }
    if (ok) std::printf("\n");
  }
  if (!ok) {
    std::printf("Failed VCUTable::DumpTableToScreen. Error message:\n%s\n",
                VFErrorGetFullString().c_str());
  }
}

bool VCUTable::DumpTableToFile(const char* path) {
  try {
    return DumpToFile(path);
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTable::DumpTableToFile");
  }
}

bool VCUTable::DumpToFile(const char* path) {
  int64_t rows = 0;
  int32_t cols = 0;
  VCTextIo file;
  if (!GetNumRows(&rows) || !GetNumCols(&cols) || !file.Open(path, VCIo::kModeCreate)) {
    return false;
  }
  VCString line = VCString::Formatted("No of rows: %d, No of cols: %d", static_cast<int>(rows),
                                      static_cast<int>(cols));
  if (!file.WriteString(line)) return false;
  VCString text;
  line = "Row";
  for (int32_t col = 0; col < cols; ++col) {
    if (!GetColKeyword(col, &text)) return false;
    line += ",";
    line += text;
  }
  if (!file.WriteString(line)) return false;
  for (int64_t row = 1; row <= rows; ++row) {
    line.Format("%d", static_cast<int>(row));
    for (int32_t col = 0; col < cols; ++col) {
      if (!CellText(*this, col, row, &text)) return false;
      line += ",";
      line += text;
    }
    if (!file.WriteString(line)) return false;
  }
  return file.Close();
}
