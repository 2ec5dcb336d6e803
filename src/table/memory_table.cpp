#include <utilkit/table/memory_table.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/table/table_errors.h>

// One column of a memory table.
struct VCUTableMemory_Col {
  VCString keyword;
  VCString description;
  VCString units;
  VTTableDataType type = VTTableDataType::None;
  VCVariant data;  // typed buffer, one value per row (empty for a dictionary column)
  VCArray<uint16_t> status{10};
  VCStringArray statusBitTexts{10};
  VCUDictionary* dictionary = nullptr;  // not owned
  VCArray<VCUDictionaryRef*> refs{10};
  VCStringArray optionNames{10};
  VCArrayWithSort<int32_t> optionCodes{10};

  int64_t Length() const { return refs.GetSize() > 0 ? refs.GetSize() : data.GetBufferSize(); }
  const char* Text(int64_t index) const {
    return refs.GetSize() > 0 ? dictionary->GetString(refs[static_cast<int32_t>(index)])
                              : data.GetBuffer_T()[index].c_str();
  }
  const char* OptionName(int32_t code) const {
    const int32_t at = optionCodes.Find(code);
    return at < 0 ? "" : optionNames[at].c_str();
  }
};

struct VCUTableMemory::Impl {
  VCString name;
  int32_t rows = 0;
  std::vector<std::unique_ptr<VCUTableMemory_Col>> cols;

  VCUTableMemory_Col* Find(const char* keyword) {
    for (auto& col : cols) {
      if (col->keyword.CompareNoCase(keyword ? keyword : "") == 0) return col.get();
    }
    return nullptr;
  }
};

namespace {

constexpr const char* kGetValues = "VCUTableMemory::GetValues";

bool Refuse(const char* message, const char* location) {
  VFErrorSet(kTableErrorRead, message, location, 0);
  return false;
}

// The typed buffer of a column's variant, by element type.
template <class T>
struct Buffer;
template <>
struct Buffer<int16_t> {
  static int16_t* Make(VCVariant& v, int64_t n) { return v.SetBuffer_S(n); }
  static const int16_t* Get(const VCVariant& v) { return v.GetBuffer_S(); }
};
template <>
struct Buffer<int32_t> {
  static int32_t* Make(VCVariant& v, int64_t n) { return v.SetBuffer_L(n); }
  static const int32_t* Get(const VCVariant& v) { return v.GetBuffer_L(); }
};
template <>
struct Buffer<int64_t> {
  static int64_t* Make(VCVariant& v, int64_t n) { return v.SetBuffer_H(n); }
  static const int64_t* Get(const VCVariant& v) { return v.GetBuffer_H(); }
};
template <>
struct Buffer<float> {
  static float* Make(VCVariant& v, int64_t n) { return v.SetBuffer_F(n); }
  static const float* Get(const VCVariant& v) { return v.GetBuffer_F(); }
};
template <>
struct Buffer<double> {
  static double* Make(VCVariant& v, int64_t n) { return v.SetBuffer_D(n); }
  static const double* Get(const VCVariant& v) { return v.GetBuffer_D(); }
};
template <>
struct Buffer<VCString> {
  static VCString* Make(VCVariant& v, int64_t n) { return v.SetBuffer_T(n); }
};

// Copies `n` values (zeros / "" when `values` is null) into a new buffer.
template <class T, class Source>
bool FillBuffer(VCVariant& data, int32_t n, const Source* values) {
  const int64_t count = std::max<int32_t>(n, 0);
  T* out = Buffer<T>::Make(data, count);
  if (out == nullptr) return false;
  if (values == nullptr) return true;
  for (int64_t i = 0; i < count; ++i) out[i] = T(values[i]);
  return true;
}

}  // namespace

VCUTableMemory::VCUTableMemory(const char* name) : m_impl(std::make_shared<Impl>()) {
  m_impl->name = name;
}
VCUTableMemory::VCUTableMemory(const VCUTableMemory& other) = default;
VCUTableMemory& VCUTableMemory::operator=(const VCUTableMemory& other) = default;
VCUTableMemory::~VCUTableMemory() = default;

void VCUTableMemory::SetNumRows(int32_t rows) {
  m_impl->rows = rows;
}

// Makes a column record, lets `fill` put the values in, and appends it.
template <class Fill>
static void AddColumn(std::vector<std::unique_ptr<VCUTableMemory_Col>>& cols, const char* keyword,
                      VTTableDataType type, Fill&& fill) {
  try {
    auto col = std::make_unique<VCUTableMemory_Col>();
    col->keyword = keyword;
    col->type = type;
    if (!fill(*col)) {
      VFReportError(kTableErrorOutOfMemory, "VCUTableMemory::AddCol");
      return;
    }
    cols.push_back(std::move(col));
  } catch (...) {
    VFReportError(kTableErrorOutOfMemory, "VCUTableMemory::AddCol");
  }
}

void VCUTableMemory::AddCol(const char* keyword, int32_t n, const int16_t* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Short,
            [&](VCUTableMemory_Col& c) { return FillBuffer<int16_t>(c.data, n, values); });
}
void VCUTableMemory::AddCol(const char* keyword, int32_t n, const int32_t* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Long,
            [&](VCUTableMemory_Col& c) { return FillBuffer<int32_t>(c.data, n, values); });
}
void VCUTableMemory::AddCol(const char* keyword, int32_t n, const int64_t* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Huge,
            [&](VCUTableMemory_Col& c) { return FillBuffer<int64_t>(c.data, n, values); });
}
void VCUTableMemory::AddCol(const char* keyword, int32_t n, const float* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Float,
            [&](VCUTableMemory_Col& c) { return FillBuffer<float>(c.data, n, values); });
}
void VCUTableMemory::AddCol(const char* keyword, int32_t n, const double* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Double,
            [&](VCUTableMemory_Col& c) { return FillBuffer<double>(c.data, n, values); });
}
// A numeric column of type `type` taking over `values`.
template <class T>
static void AdoptColumn(std::vector<std::unique_ptr<VCUTableMemory_Col>>& cols, const char* keyword,
                        VTTableDataType type, std::vector<T>& values) {
  AddColumn(cols, keyword, type, [&](VCUTableMemory_Col& c) {
    if (values.size() > static_cast<size_t>(INT32_MAX)) return false;
    c.data.AdoptBuffer(std::move(values));
    return true;
  });
}

void VCUTableMemory::AddCol(const char* keyword, std::vector<int16_t>&& values) {
  AdoptColumn(m_impl->cols, keyword, VTTableDataType::Short, values);
}
void VCUTableMemory::AddCol(const char* keyword, std::vector<int32_t>&& values) {
  AdoptColumn(m_impl->cols, keyword, VTTableDataType::Long, values);
}
void VCUTableMemory::AddCol(const char* keyword, std::vector<int64_t>&& values) {
  AdoptColumn(m_impl->cols, keyword, VTTableDataType::Huge, values);
}
void VCUTableMemory::AddCol(const char* keyword, std::vector<float>&& values) {
  AdoptColumn(m_impl->cols, keyword, VTTableDataType::Float, values);
}
void VCUTableMemory::AddCol(const char* keyword, std::vector<double>&& values) {
  AdoptColumn(m_impl->cols, keyword, VTTableDataType::Double, values);
}
void VCUTableMemory::AddCol(const char* keyword, std::vector<VCUDictionaryRef*>&& refs,
                            VCUDictionary& dictionary) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Text, [&](VCUTableMemory_Col& c) {
    c.dictionary = &dictionary;
    return c.refs.Adopt(std::move(refs));
  });
}

void VCUTableMemory::AddCol(const char* keyword, int32_t n, const VCString* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Text,
            [&](VCUTableMemory_Col& c) { return FillBuffer<VCString>(c.data, n, values); });
}
void VCUTableMemory::AddCol(const char* keyword, int32_t n, const char* const* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Text,
            [&](VCUTableMemory_Col& c) { return FillBuffer<VCString>(c.data, n, values); });
}
void VCUTableMemory::AddCol(const char* keyword, const VCStringArray& values) {
  AddCol(keyword, values.GetSize(), values.GetData());
}

void VCUTableMemory::AddCol(const char* keyword, int32_t n, VCUDictionaryRef* const* refs,
                            VCUDictionary& dictionary) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Text, [&](VCUTableMemory_Col& c) {
    c.dictionary = &dictionary;
    if (n <= 0) return true;
    if (refs != nullptr) return c.refs.Append(refs, n);
    return c.refs.SetSize(n);
  });
}

// Enum column from options given as any indexable list of names.
template <class Names>
static bool FillEnum(VCUTableMemory_Col& c, int32_t nOptions, const int32_t* codes,
                     const Names& names, int32_t n, const int32_t* values) {
  for (int32_t i = 0; codes != nullptr && i < nOptions; ++i) {
    const int32_t at = c.optionCodes.Add(codes[i]);
    if (at < 0 || !c.optionNames.InsertAt(at, VCString(names(i)))) return false;
  }
  return FillBuffer<int32_t>(c.data, n, values);
}

void VCUTableMemory::AddCol(const char* keyword, int32_t nOptions, const int32_t* codes,
                            const char* const* names, int32_t n, const int32_t* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Enum, [&](VCUTableMemory_Col& c) {
    return FillEnum(
        c, nOptions, codes, [&](int32_t i) { return names ? names[i] : ""; }, n, values);
  });
}
void VCUTableMemory::AddCol(const char* keyword, int32_t nOptions, const int32_t* codes,
                            const VCStringArray& names, int32_t n, const int32_t* values) {
  AddColumn(m_impl->cols, keyword, VTTableDataType::Enum, [&](VCUTableMemory_Col& c) {
    return FillEnum(
        c, nOptions, codes, [&](int32_t i) { return i < names.GetSize() ? names[i].c_str() : ""; },
        n, values);
  });
}

void VCUTableMemory::SetColStatus(const char* keyword, int32_t n, const uint16_t* status) {
  VCUTableMemory_Col* col = m_impl->Find(keyword);
  if (col == nullptr || n <= 0 || status == nullptr) return;
  if (!col->status.Append(status, n))
    VFReportError(kTableErrorOutOfMemory, "VCUTableMemory::SetColStatus");
}

void VCUTableMemory::SetColStatusBitText(const char* keyword, const VCStringArray& texts) {
  VCUTableMemory_Col* col = m_impl->Find(keyword);
  if (col == nullptr) return;
  try {
    col->statusBitTexts = texts;
  } catch (...) {
    VFReportError(kTableErrorOutOfMemory, "VCUTableMemory::SetColStatusBitText");
  }
}

// The column at `col`, or null after pushing "Invalid column index" at `location`.
static VCUTableMemory_Col* ColumnAt(const std::vector<std::unique_ptr<VCUTableMemory_Col>>& cols,
                                    int32_t col, const char* location) {
  if (col < 0 || static_cast<size_t>(col) >= cols.size()) {
    Refuse(kTableTextColumnIndex, location);
    return nullptr;
  }
  return cols[static_cast<size_t>(col)].get();
}

bool VCUTableMemory::SetColDescription(int32_t col, const VCString& text) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::SetColDescription");
  if (c != nullptr) c->description = text;
  return c != nullptr;
}

bool VCUTableMemory::SetColUnits(int32_t col, const VCString& text) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::SetColUnits");
  if (c != nullptr) c->units = text;
  return c != nullptr;
}

bool VCUTableMemory::GetTableName(VCString* name) {
  *name = m_impl->name;
  return true;
}

bool VCUTableMemory::GetNumCols(int32_t* count) {
  *count = static_cast<int32_t>(m_impl->cols.size());
  return true;
}

bool VCUTableMemory::GetNumRows(int64_t* count) {
  *count = m_impl->rows;
  return true;
}

bool VCUTableMemory::GetColKeyword(int32_t col, VCString* keyword) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::GetColKeyword");
  if (c != nullptr) *keyword = c->keyword;
  return c != nullptr;
}

bool VCUTableMemory::GetColDescription(int32_t col, VCString* description) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::GetColDescription");
  if (c != nullptr) *description = c->description;
  return c != nullptr;
}

bool VCUTableMemory::GetColUnits(int32_t col, VCString* units) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::GetColUnits");
  if (c != nullptr) *units = c->units;
  return c != nullptr;
}

bool VCUTableMemory::GetColType(int32_t col, VTTableDataType* type) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::GetColType");
  if (c != nullptr) *type = c->type;
  return c != nullptr;
}

bool VCUTableMemory::GetColHasStatus(int32_t col, char* hasStatus) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::GetColHasStatus");
  if (c != nullptr) *hasStatus = c->status.IsEmpty() ? 0 : 1;
  return c != nullptr;
}

bool VCUTableMemory::GetStatusColBitText(int32_t col, VCStringArray* texts) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::GetStatusColBitText");
  if (c == nullptr) return false;
  try {
    *texts = c->statusBitTexts;
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableMemory::GetStatusColBitText");
  }
  return true;
}

bool VCUTableMemory::GetEnumColOptions(int32_t col, VCArrayWithSort<int32_t>* codes,
                                       VCStringArray* names) {
  VCUTableMemory_Col* c = ColumnAt(m_impl->cols, col, "VCUTableMemory::GetEnumColOptions");
  if (c == nullptr) return false;
  try {
    *codes = c->optionCodes;
    *names = c->optionNames;
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableMemory::GetEnumColOptions");
  }
  return true;
}

// The checks shared by every bulk reader; `type` None asks for status.
// Returns the column, or null after pushing the first failed check.
static const VCUTableMemory_Col* CheckRead(
    const std::vector<std::unique_ptr<VCUTableMemory_Col>>& cols, int32_t col, int64_t first,
    int64_t count, VTTableDataType type) {
  const VCUTableMemory_Col* c = ColumnAt(cols, col, kGetValues);
  if (c == nullptr) return nullptr;
  const int64_t length = c->Length();
  if (first < 1 || first > length) {
    Refuse(kTableTextRowNumber, kGetValues);
    return nullptr;
  }
  if (count < 0 || count > length - first + 1) {
    Refuse(kTableTextRowCount, kGetValues);
    return nullptr;
  }
  if (type == VTTableDataType::None ? c->status.IsEmpty() : c->type != type) {
    Refuse(type == VTTableDataType::None ? kTableTextNoStatus : kTableTextTypeMismatch, kGetValues);
    return nullptr;
  }
  return c;
}

template <class T>
static bool CopyValues(const std::vector<std::unique_ptr<VCUTableMemory_Col>>& cols, int32_t col,
                       int64_t first, int64_t count, VTTableDataType type, T* out) {
  const VCUTableMemory_Col* c = CheckRead(cols, col, first, count, type);
  if (c == nullptr) return false;
  if (count > 0) std::memcpy(out, Buffer<T>::Get(c->data) + (first - 1), sizeof(T) * count);
  return true;
}

bool VCUTableMemory::GetValues_S(int32_t col, int64_t first, int64_t count, int16_t* out) {
  return CopyValues(m_impl->cols, col, first, count, VTTableDataType::Short, out);
}
bool VCUTableMemory::GetValues_L(int32_t col, int64_t first, int64_t count, int32_t* out) {
  return CopyValues(m_impl->cols, col, first, count, VTTableDataType::Long, out);
}
bool VCUTableMemory::GetValues_H(int32_t col, int64_t first, int64_t count, int64_t* out) {
  return CopyValues(m_impl->cols, col, first, count, VTTableDataType::Huge, out);
}
bool VCUTableMemory::GetValues_F(int32_t col, int64_t first, int64_t count, float* out) {
  return CopyValues(m_impl->cols, col, first, count, VTTableDataType::Float, out);
}
bool VCUTableMemory::GetValues_D(int32_t col, int64_t first, int64_t count, double* out) {
  return CopyValues(m_impl->cols, col, first, count, VTTableDataType::Double, out);
}

const double* VCUTableMemory::PeekValues_D(int32_t col, int64_t first, int64_t count) {
  return static_cast<const double*>(PeekCells(col, VTTableDataType::Double, first, count, nullptr));
}

const void* VCUTableMemory::PeekCells(int32_t col, VTTableDataType type, int64_t first,
                                      int64_t count, const VCUDictionary** dictionary) {
  const auto& cols = m_impl->cols;
  if (col < 0 || static_cast<size_t>(col) >= cols.size()) return nullptr;
  const VCUTableMemory_Col& c = *cols[static_cast<size_t>(col)];
  if (c.type != type || first < 1 || count < 1 || count > c.Length() - first + 1) return nullptr;
  switch (type) {
    case VTTableDataType::Short:
      return Buffer<int16_t>::Get(c.data) + (first - 1);
    case VTTableDataType::Long:
    case VTTableDataType::Enum:
      return Buffer<int32_t>::Get(c.data) + (first - 1);
    case VTTableDataType::Huge:
      return Buffer<int64_t>::Get(c.data) + (first - 1);
    case VTTableDataType::Float:
      return Buffer<float>::Get(c.data) + (first - 1);
    case VTTableDataType::Double:
      return Buffer<double>::Get(c.data) + (first - 1);
    case VTTableDataType::Text:
      if (c.refs.GetSize() == 0 || dictionary == nullptr) return nullptr;
      *dictionary = c.dictionary;
      return c.refs.GetData() + (first - 1);
    default:
      return nullptr;
  }
}

bool VCUTableMemory::PeekTexts(int32_t col, int64_t first, int64_t count, std::string_view* out) {
  const auto& cols = m_impl->cols;
  if (col < 0 || static_cast<size_t>(col) >= cols.size()) return false;
  const VCUTableMemory_Col& c = *cols[static_cast<size_t>(col)];
  if (c.type != VTTableDataType::Text || first < 1 || count < 1 || count > c.Length() - first + 1) {
    return false;
  }
  if (c.refs.GetSize() > 0) {
    VCUDictionaryRef* const* refs = c.refs.GetData() + (first - 1);
    for (int64_t i = 0; i < count; ++i) out[i] = c.dictionary->GetView(refs[i]);
  } else {
    const VCString* texts = c.data.GetBuffer_T() + (first - 1);
    for (int64_t i = 0; i < count; ++i) out[i] = texts[i].view();
  }
  return true;
}

// Copies the texts of rows first..first+count-1 of a checked column.
static bool CopyTexts(const VCUTableMemory_Col& c, int64_t first, int64_t count, VCString* out) {
  try {
    for (int64_t i = 0; i < count; ++i) out[i] = c.Text(first - 1 + i);
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, kGetValues);
  }
  return true;
}

bool VCUTableMemory::GetValues_T(int32_t col, int64_t first, int64_t count, VCString* out) {
  const VCUTableMemory_Col* c = CheckRead(m_impl->cols, col, first, count, VTTableDataType::Text);
  return c != nullptr && CopyTexts(*c, first, count, out);
}

bool VCUTableMemory::GetValues_T(int32_t col, int64_t first, int64_t count, VCStringArray* out) {
  const VCUTableMemory_Col* c = CheckRead(m_impl->cols, col, first, count, VTTableDataType::Text);
  if (c == nullptr) return false;
  if (!out->SetSize(static_cast<int32_t>(count), 10))
    return VFReportError(kTableErrorOutOfMemory, kGetValues);
  return CopyTexts(*c, first, count, out->GetData());
}

bool VCUTableMemory::GetValues_E(int32_t col, int64_t first, int64_t count, int32_t* codes,
                                 VCStringArray* names) {
  const VCUTableMemory_Col* c = CheckRead(m_impl->cols, col, first, count, VTTableDataType::Enum);
  if (c == nullptr) return false;
  const int32_t* values = c->data.GetBuffer_L() + (first - 1);
  if (count > 0) std::memcpy(codes, values, sizeof(int32_t) * count);
  if (names == nullptr) return true;
  try {
    if (!names->SetSize(static_cast<int32_t>(count), 10))
      return VFReportError(kTableErrorOutOfMemory, kGetValues);
    for (int64_t i = 0; i < count; ++i)
      (*names)[static_cast<int32_t>(i)] = c->OptionName(values[i]);
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, kGetValues);
  }
  return true;
}

bool VCUTableMemory::GetStatusValues(int32_t col, int64_t first, int64_t count, uint16_t* out) {
  const VCUTableMemory_Col* c = CheckRead(m_impl->cols, col, first, count, VTTableDataType::None);
  if (c == nullptr) return false;
  const int64_t have = std::clamp<int64_t>(c->status.GetSize() - (first - 1), 0, count);
  if (have > 0) std::memcpy(out, c->status.GetData() + (first - 1), sizeof(uint16_t) * have);
  std::fill(out + have, out + count, uint16_t{0});
  return true;
}
