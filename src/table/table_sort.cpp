#include <utilkit/table/table_sort.h>

#include <algorithm>
#include <memory>
#include <vector>

#include <utilkit/base/vc_string.h>
#include <utilkit/table/table_errors.h>

#include "table/column_keys.h"
#include "table/key_order.h"

using namespace utilkit::table;

namespace {

constexpr const char* kValidate = "VCUTableSort::Validate";
constexpr const char* kDoSort = "VCUTableSort::DoSort";
constexpr const char* kLoad = "VCUTableSort::LoadColumnData";

}  // namespace

// One sort column: its settings and what Validate bound it to.
struct VCUTableSort_Col {
  VCString keyword;
  char ascending = 1;
  char caseSensitive = 0;
  int32_t colIndex = -1;
  VTTableDataType type = VTTableDataType::None;
};

struct VCUTableSort::Impl {
  std::vector<VCUTableSort_Col> columns;
  VCString categoryKeyword;
  int32_t categoryIndex = -1;
  int32_t categoryPosition = 0;  // 1-based place among the sort columns
  int32_t rowsPerCategory = 0;

  // During DoSort only.
  VCUTable* table = nullptr;
  const int32_t* rows = nullptr;
  int64_t count = 0;
  std::unique_ptr<uint64_t[]> keys;  // one sort column's keys, one per row
  ColumnKeys loader;
};

VCUTableSort::VCUTableSort()
    : VCUTableOperation(VTTableOperationKind::Sort), m_impl(std::make_unique<Impl>()) {}

VCUTableSort::~VCUTableSort() = default;

bool VCUTableSort::AddColumn(const char* keyword, char ascending, char caseSensitive) {
  VCUTableSort_Col col;
  col.keyword = keyword;
  col.ascending = ascending;
  col.caseSensitive = caseSensitive;
  m_impl->columns.push_back(std::move(col));
  return true;
}

bool VCUTableSort::ClearColumns() {
  m_impl->columns.clear();
  return true;
}

bool VCUTableSort::SetCategory(const char* keyword, int32_t rowsPerCategory) {
  m_impl->categoryKeyword = keyword;
  m_impl->rowsPerCategory = rowsPerCategory;
  return true;
}

bool VCUTableSort::Validate(VCUTable* table) {
  Impl& s = *m_impl;
  auto bind = [&] {
    if (s.columns.empty()) return VFReportError(kTableErrorNoSortColumns, kValidate);
    s.categoryIndex = -1;
    if (!s.categoryKeyword.IsEmpty() &&
        !table->GetColIndexFromKeyword(s.categoryKeyword, &s.categoryIndex)) {
      return false;
    }
    s.categoryPosition = 0;
    for (size_t i = 0; i < s.columns.size(); ++i) {
      VCUTableSort_Col& col = s.columns[i];
      if (!table->GetColIndexFromKeyword(col.keyword, &col.colIndex) ||
          !table->GetColType(col.colIndex, &col.type)) {
        return false;
      }
      if (s.categoryIndex >= 0 && s.categoryPosition == 0 && s.categoryIndex == col.colIndex) {
        s.categoryPosition = static_cast<int32_t>(i + 1);
      }
    }
    if (s.categoryIndex < 0 || s.categoryPosition != 0) return true;
    return VFReportError(kTableErrorCategoryColumn, kValidate);
  };
  if (bind()) return true;
  return VFReportError(kTableErrorSort, kValidate, nullptr, 1);
}

// Orders the positions of the rows column by column (see key_order.h),
// loading one column's keys at a time into one buffer, and stops early once
// no two rows are left equal.
bool VCUTableSort::DoSort(VCUTable* table, VCDataArray<int32_t>& rows) {
  Impl& s = *m_impl;
  s.table = table;
  s.rows = rows.GetData();
  s.count = rows.GetSize();
  auto run = [&] {
    const auto n = static_cast<size_t>(s.count);
    std::unique_ptr<int32_t[]> order;
    KeyOrder keyOrder;
    try {
      order.reset(new int32_t[n]);
      s.keys.reset(new uint64_t[n]);
    } catch (...) {
      return VFReportError(kTableErrorBufferSize, kDoSort);
    }
    if (!keyOrder.Start(s.count, order.get())) return VFReportError(kTableErrorBufferSize, kDoSort);
    for (size_t i = 0; i < s.columns.size() && !keyOrder.Sorted(); ++i) {
      if (!LoadColumnData(static_cast<int32_t>(i))) return false;
      if (!keyOrder.Refine(s.keys.get(), s.columns[i].ascending == 0, i + 1 == s.columns.size())) {
        return VFReportError(kTableErrorBufferSize, kDoSort);
      }
    }
    s.keys.reset();
    for (size_t k = 0; k < n; ++k) order[k] = s.rows[order[k]];
    std::copy(order.get(), order.get() + n, rows.GetData());
    return s.categoryIndex < 0 || DoCategoryTrim(table, rows);
  };
  bool ok = false;
  try {
    ok = run();
  } catch (...) {
    VFReportError(kTableErrorOutOfMemory, kDoSort);
  }
  s.keys.reset();
  s.loader.Clear();
  s.table = nullptr;
  s.rows = nullptr;
  if (ok) return true;
  return VFReportError(kTableErrorSortFailed, kDoSort, nullptr, 1);
}

bool VCUTableSort::LoadColumnData(int32_t sortColumn) {
  Impl& s = *m_impl;
  const VCUTableSort_Col& col = s.columns[static_cast<size_t>(sortColumn)];
  if (!s.keys) return VFReportError(kTableErrorBufferSize, kLoad);
  if (!s.loader.Bind(s.table, col.colIndex, col.type, ColumnKeys::Mode::Order,
                     col.caseSensitive == 0) ||
      !s.loader.Load(s.rows, 0, s.count, s.keys.get())) {
    return false;
  }
  if (!s.loader.Finish(s.keys.get(), s.count)) return VFReportError(kTableErrorBufferSize, kLoad);
  s.loader.Clear();
  return true;
}

// Keeps the first rowsPerCategory rows (at least one) of each run of sorted
// rows sharing the values of the sort columns up to the category column.
bool VCUTableSort::DoCategoryTrim(VCUTable* table, VCDataArray<int32_t>& rows) {
  Impl& s = *m_impl;
  const auto keyCount = static_cast<size_t>(s.categoryPosition);
  std::vector<VCVariant> previous(keyCount), current(keyCount);
  int32_t* data = rows.GetData();
  int32_t kept = 0;
  int32_t inCategory = 0;
  for (int32_t k = 0; k < rows.GetSize(); ++k) {
    bool starts = k == 0;
    for (size_t c = 0; c < keyCount; ++c) {
      const VCUTableSort_Col& col = s.columns[c];
      VCVariant& value = current[c];
      if (!table->GetValue(col.colIndex, data[k], &value, col.type)) return false;
      if (value.IsString()) value.SetString(value.GetString().MakeUpper());
      if (!starts && value.Compare(previous[c]) != 0) starts = true;
    }
    if (starts) {
      inCategory = 1;
      std::swap(previous, current);
    } else if (inCategory < s.rowsPerCategory) {
      ++inCategory;
    } else {
      continue;
    }
    data[kept++] = data[k];
  }
  if (!rows.SetSize(kept)) return VFReportError(kTableErrorOutOfMemory, kDoSort);
  return true;
}
