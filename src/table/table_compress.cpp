#include <utilkit/table/table_compress.h>

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include <utilkit/table/table_errors.h>

#include "table/column_keys.h"
#include "table/group_index.h"
#include "table/row_chunks.h"

using namespace utilkit::table;

namespace {

constexpr const char* kValidate = "VCUTableCompress::Validate";
constexpr const char* kDoCompress = "VCUTableCompress::DoCompress";
// Rows loaded at a time.
constexpr int64_t kChunk = 4096;

// The groups met so far, a field an array (the fields a row touches stay
// close together): each group's best member (for a sum, its first).
struct Groups {
  std::vector<uint64_t> bestKey;   // numeric select values
  std::vector<double> sum;         // sums
  std::vector<int32_t> bestAt;     // position in the row array of the best member
  std::vector<int32_t> bestTable;  // its input table
  std::vector<int32_t> count;
  std::vector<uint16_t> status;       // sums with status
  std::vector<std::string> bestText;  // text select values
};

// Shortens `list` to the rows at `best` and `alone` (positions in
// it, in any order), keeping their order.
void KeepRows(VCDataArray<int32_t>& list, const std::vector<int32_t>& best,
              const std::vector<int32_t>& alone) {
  const auto n = static_cast<size_t>(list.GetSize());
  std::vector<uint64_t> kept((n + 63) / 64, 0);
  for (const std::vector<int32_t>* positions : {&best, &alone}) {
    for (const int32_t at : *positions)
      kept[static_cast<size_t>(at) / 64] |= uint64_t{1} << (at % 64);
  }
  int32_t* rows = list.GetData();
  int32_t size = 0;
  for (size_t w = 0; w < kept.size(); ++w) {
    for (uint64_t bits = kept[w]; bits != 0; bits &= bits - 1) {
      rows[size++] = rows[w * 64 + static_cast<size_t>(std::countr_zero(bits))];
    }
  }
  list.SetSize(size);  // shrinking keeps the storage and cannot fail
}

}  // namespace

struct VCUTableCompress::Impl {
  char preferLaterTables = 0;
  VCStringArray searchKeywords;
  VCString selectKeyword;
  VTCompressType type = VTCompressType::Maximum;
  std::vector<int32_t> searchIndex;
  std::vector<VTTableDataType> searchType;
  int32_t selectIndex = -1;
  VTTableDataType selectType = VTTableDataType::None;
  char selectHasStatus = 0;

  // During DoCompress only.
  VCUTableData* data = nullptr;
  VCDataArray<int32_t>* rows = nullptr;
};

VCUTableCompress::VCUTableCompress(char preferLaterTables)
    : VCUTableOperation(VTTableOperationKind::Compress), m_impl(std::make_unique<Impl>()) {
  m_impl->preferLaterTables = preferLaterTables;
}

VCUTableCompress::~VCUTableCompress() = default;

bool VCUTableCompress::AddSearchColumn(const char* keyword) {
  return m_impl->searchKeywords.Add(VCString(keyword)) >= 0 ||
         VFReportError(kTableErrorOutOfMemory, "VCUTableCompress::AddSearchColumn");
}

bool VCUTableCompress::ClearSearchColumns() {
  m_impl->searchKeywords.RemoveAll();
  return true;
}

VCStringArray VCUTableCompress::GetSearchColumns() const {
  return m_impl->searchKeywords;
}

bool VCUTableCompress::SetSelectColumn(const char* keyword) {
  m_impl->selectKeyword = keyword;
  return true;
}

VCString VCUTableCompress::GetSelectColumn() const {
  return m_impl->selectKeyword;
}

bool VCUTableCompress::SetSelectType(VTCompressType type) {
  const auto value = static_cast<int32_t>(type);
  if (value < 0 || value > 2)
    return VFReportError(kTableErrorSelectionType, "VCUTableCompress::SetSelectType");
  m_impl->type = type;
  return true;
}

VTCompressType VCUTableCompress::GetSelectType() const {
  return m_impl->type;
}

bool VCUTableCompress::Validate(VCUTableData* data) {
  Impl& s = *m_impl;
  auto bind = [&] {
    if (s.searchKeywords.GetSize() == 0)
      return VFReportError(kTableErrorNoSearchColumns, kValidate);
    if (s.selectKeyword.IsEmpty()) return VFReportError(kTableErrorNoSelectColumn, kValidate);
    const auto n = static_cast<size_t>(s.searchKeywords.GetSize());
    s.searchIndex.assign(n, -1);
    s.searchType.assign(n, VTTableDataType::None);
    for (size_t i = 0; i < n; ++i) {
      if (!data->GetColIndexFromKeyword(s.searchKeywords[static_cast<int32_t>(i)],
                                        &s.searchIndex[i]) ||
          !data->GetColType(s.searchIndex[i], &s.searchType[i])) {
        return false;
      }
    }
    if (!data->GetColIndexFromKeyword(s.selectKeyword, &s.selectIndex) ||
        !data->GetColType(s.selectIndex, &s.selectType) ||
        !data->GetColHasStatus(s.selectIndex, &s.selectHasStatus)) {
      return false;
    }
    // The sum is written back through a writable column, which must be Double.
    if (s.type == VTCompressType::Sum && s.selectType != VTTableDataType::Double) {
      return VFReportError(kTableErrorWritableType, kValidate);
    }
    return true;
  };
  if (bind()) return true;
  return VFReportError(kTableErrorCompression, kValidate, nullptr, 1);
}

bool VCUTableCompress::DoCompress(VCUTableData* data, VCDataArray<int32_t>& rows) {
  Impl& s = *m_impl;
  s.data = data;
  s.rows = &rows;
  bool ok = false;
  try {
    ok = rows.GetSize() == 0 || Compress();
  } catch (...) {
    VFReportError(kTableErrorBufferSize, kDoCompress);
  }
  s.data = nullptr;
  s.rows = nullptr;
  if (!ok) return VFReportError(kTableErrorCompressionFailed, kDoCompress, nullptr, 1);
  return true;
}

// Walks the rows in order, a chunk at a time. A first pass over a chunk
// finds each row's group by its search keys (starting the groups met for
// the first time), a second one folds each row into its group: the sum, or
// the best member so far. The kept rows (each group's best or first member,
// and the rows that join no group) are gathered at the end; sums are
// written to the groups' first rows.
bool VCUTableCompress::Compress() {
  Impl& s = *m_impl;
  VCUTableData& data = *s.data;
  int32_t* rows = s.rows->GetData();
  const int64_t n = s.rows->GetSize();
  const bool sum = s.type == VTCompressType::Sum;
  const bool maximum = s.type == VTCompressType::Maximum;
  const bool textSelect = !sum && s.selectType == VTTableDataType::Text;
  const bool prefer = s.preferLaterTables != 0 && !sum;
  if (sum && !data.SetColWritable(s.selectIndex)) return false;

  const size_t columns = s.searchIndex.size();
  std::vector<std::unique_ptr<ColumnKeys>> loaders(columns);
  std::vector<std::vector<uint64_t>> keys(columns, std::vector<uint64_t>(kChunk));
  std::vector<bool> real(columns);
  std::vector<const uint64_t*> keyColumns(columns);
  for (size_t c = 0; c < columns; ++c) {
    keyColumns[c] = keys[c].data();
    loaders[c] = std::make_unique<ColumnKeys>();
    const VTTableDataType type = s.searchType[c];
    real[c] = type == VTTableDataType::Float || type == VTTableDataType::Double;
    if (!loaders[c]->Bind(&data, s.searchIndex[c], type, ColumnKeys::Mode::Equality, false)) {
      return false;
    }
  }
  // The direct table serves rows whose tables need not be told apart and
  // whose keys cannot be NaN.
  const bool maybeDirect = !prefer && std::find(real.begin(), real.end(), true) == real.end();
  ColumnKeys selectLoader;
  if (!sum && !textSelect &&
      !selectLoader.Bind(&data, s.selectIndex, s.selectType, ColumnKeys::Mode::Equality, false)) {
    return false;
  }
  std::vector<uint64_t> selectKeys(kChunk);
  std::vector<double> values(kChunk);
  std::vector<uint16_t> status(kChunk);
  std::vector<int32_t> tables(kChunk);
  std::vector<int32_t> groupOf(kChunk);
  std::vector<uint32_t> entries(kChunk);
  std::vector<int32_t> alone;  // positions of rows that join no group
  VCStringArray texts;

  Groups groups;
  GroupIndex index(columns);
  std::vector<uint64_t> rowKeys(columns);

  for (int64_t begin = 0; begin < n; begin += kChunk) {
    const int64_t count = std::min(kChunk, n - begin);
    const int32_t* chunk = rows + begin;
    for (size_t c = 0; c < columns; ++c) {
      if (!loaders[c]->Load(chunk, 0, count, keys[c].data())) return false;
    }
    bool read = true;
    if (sum) {
      read = ForEachRowRun(chunk, 0, count, kChunk, [&](int64_t first, int64_t m, int64_t at) {
        return data.GetValues_D(s.selectIndex, first, m, values.data() + at) &&
               (!s.selectHasStatus ||
                data.GetStatusValues(s.selectIndex, first, m, status.data() + at));
      });
    } else if (textSelect) {
      if (!texts.SetSize(static_cast<int32_t>(count)))
        return VFReportError(kTableErrorOutOfMemory, kDoCompress);
      read = ForEachRowRun(chunk, 0, count, kChunk, [&](int64_t first, int64_t m, int64_t at) {
        return data.GetValues_T(s.selectIndex, first, m, texts.GetData() + at);
      });
    } else {
      read = selectLoader.Load(chunk, 0, count, selectKeys.data());
    }
    for (int64_t i = 0; read && prefer && i < count; ++i) {
      read = data.GetInputTableIndexForRow(chunk[i], &tables[static_cast<size_t>(i)]);
    }
    if (!read) return false;
    if (begin == 0) {
      std::vector<uint64_t> low(columns), high(columns);
      for (size_t c = 0; c < columns; ++c) {
        const auto [lo, hi] = std::minmax_element(keys[c].begin(), keys[c].begin() + count);
        low[c] = *lo;
        high[c] = *hi;
      }
      index.Hint(low.data(), high.data());
    }

    // First pass: each row's group, starting the groups met for the first
    // time with their first member as best (and a sum of 0, which the
    // second pass adds every member to).
    auto start = [&](int64_t i) {
      const auto ii = static_cast<size_t>(i);
      const auto group = static_cast<int32_t>(groups.bestAt.size());
      groups.bestKey.push_back(selectKeys[ii]);
      groups.sum.push_back(0);
      groups.bestAt.push_back(static_cast<int32_t>(begin + i));
      groups.bestTable.push_back(prefer ? tables[ii] : 0);
      groups.count.push_back(0);
      groups.status.push_back(0);
      if (textSelect) groups.bestText.push_back(texts[static_cast<int32_t>(i)].str());
      return group;
    };
    auto keysOf = [&](int64_t i) {
      for (size_t c = 0; c < columns; ++c) rowKeys[c] = keys[c][static_cast<size_t>(i)];
      return rowKeys.data();
    };
    if (maybeDirect && index.DirectSlots(keyColumns.data(), count, entries.data())) {
      for (int64_t i = 0; i < count; ++i) {
        const uint32_t entry = entries[static_cast<size_t>(i)];
        int32_t g = index.DirectGroup(entry);
        if (g < 0) {
          index.AddDirect(entry, keysOf(i));
          g = start(i);
        }
        groupOf[static_cast<size_t>(i)] = g;
      }
    } else {
      for (int64_t i = 0; i < count; ++i) {
        const uint64_t* rowKey = keysOf(i);
        bool nan = false;
        for (size_t c = 0; c < columns; ++c)
          nan = nan || (real[c] && rowKey[c] == ColumnKeys::kNaNKey);
        int32_t g = -1;
        if (nan) {
          alone.push_back(static_cast<int32_t>(begin + i));  // a NaN search value never joins
        } else if ((g = index.Find(rowKey)) < 0) {
          index.Add(rowKey);
          g = start(i);
        }
        groupOf[static_cast<size_t>(i)] = g;
      }
    }

    // Second pass: each row into its group.
    if (sum) {
      for (int64_t i = 0; i < count; ++i) {
        const int32_t g = groupOf[static_cast<size_t>(i)];
        if (g < 0) continue;
        groups.sum[static_cast<size_t>(g)] += values[static_cast<size_t>(i)];
        ++groups.count[static_cast<size_t>(g)];
      }
      for (int64_t i = 0; s.selectHasStatus && i < count; ++i) {
        const int32_t g = groupOf[static_cast<size_t>(i)];
        if (g >= 0) groups.status[static_cast<size_t>(g)] |= status[static_cast<size_t>(i)];
      }
      continue;
    }
    for (int64_t i = 0; i < count; ++i) {
      const auto ii = static_cast<size_t>(i);
      const int32_t group = groupOf[ii];
      if (group < 0) continue;
      const auto g = static_cast<size_t>(group);
      bool better = false;
      if (prefer && tables[ii] != groups.bestTable[g]) {
        better = tables[ii] > groups.bestTable[g];
      } else if (textSelect) {
        const std::string& text = texts[static_cast<int32_t>(i)].str();
        better = maximum ? text > groups.bestText[g] : text < groups.bestText[g];
        if (better) groups.bestText[g] = text;
      } else {
        better = maximum ? selectKeys[ii] > groups.bestKey[g] : selectKeys[ii] < groups.bestKey[g];
      }
      if (!better) continue;
      groups.bestAt[g] = static_cast<int32_t>(begin + i);
      groups.bestTable[g] = prefer ? tables[ii] : 0;
      groups.bestKey[g] = selectKeys[ii];
    }
  }
  for (size_t g = 0; sum && g < groups.count.size(); ++g) {
    if (groups.count[g] < 2) continue;
    const int32_t first = rows[groups.bestAt[g]];
    if (!data.WriteInputColValue(s.selectIndex, first, groups.sum[g]) ||
        (s.selectHasStatus &&
         !data.WriteInputColStatusValue(s.selectIndex, first, groups.status[g]))) {
      return false;
    }
  }
  KeepRows(*s.rows, groups.bestAt, alone);
  return true;
}
