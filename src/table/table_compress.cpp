#include <utilkit/table/table_compress.h>

#include <algorithm>
#include <string>
#include <vector>

#include "table/column_keys.h"
#include "table/group_index.h"
#include "table/row_chunks.h"
#include "table/table_errors.h"

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
         FailMemory("VCUTableCompress::AddSearchColumn");
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
  if (value < 0 || value > 2) return Fail(-655980, "VCUTableCompress::SetSelectType");
  m_impl->type = type;
  return true;
}

VTCompressType VCUTableCompress::GetSelectType() const {
  return m_impl->type;
}

bool VCUTableCompress::Validate(VCUTableData* data) {
  Impl& s = *m_impl;
  auto bind = [&] {
    if (s.searchKeywords.GetSize() == 0) return Fail(-655981, kValidate);
    if (s.selectKeyword.IsEmpty()) return Fail(-655982, kValidate);
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
      return Fail(-656000, kValidate);
    }
    return true;
  };
  if (bind()) return true;
  return Fail(-655983, kValidate, nullptr, 1);
}

bool VCUTableCompress::DoCompress(VCUTableData* data, VCDataArray<int32_t>& rows) {
  Impl& s = *m_impl;
  s.data = data;
  s.rows = &rows;
  bool ok = false;
  try {
    ok = rows.GetSize() == 0 || Compress();
  } catch (...) {
    Fail(-655998, kDoCompress);
  }
  s.data = nullptr;
  s.rows = nullptr;
  if (!ok) return Fail(-655985, kDoCompress, nullptr, 1);
  int32_t* data_ = rows.GetData();
  int32_t kept = 0;
  for (int32_t k = 0; k < rows.GetSize(); ++k) {
    if (data_[k] != -1) data_[kept++] = data_[k];
  }
  if (!rows.SetSize(kept)) {
    FailMemory(kDoCompress);
    return Fail(-655985, kDoCompress, nullptr, 1);
  }
  return true;
}

// Walks the rows in order, a chunk at a time, finding each row's group by
// hashing its search keys. A member that loses to its group's best is
// marked -1 at once, and so is a best that a later member replaces; sums
// are written to the groups' first rows at the end.
bool VCUTableCompress::Compress() {
  Impl& s = *m_impl;
  VCUTableData& data = *s.data;
  int32_t* rows = s.rows->GetData();
  const int64_t n = s.rows->GetSize();
  const bool sum = s.type == VTCompressType::Sum;
  const bool textSelect = !sum && s.selectType == VTTableDataType::Text;
  const bool prefer = s.preferLaterTables != 0 && !sum;
  if (sum && !data.SetColWritable(s.selectIndex)) return false;

  const size_t columns = s.searchIndex.size();
  std::vector<std::unique_ptr<ColumnKeys>> loaders(columns);
  std::vector<std::vector<uint64_t>> keys(columns, std::vector<uint64_t>(kChunk));
  std::vector<bool> real(columns);
  std::vector<const uint64_t*> keyColumns(columns);
  std::vector<uint32_t> entries(kChunk);
  for (size_t c = 0; c < columns; ++c) {
    keyColumns[c] = keys[c].data();
    loaders[c] = std::make_unique<ColumnKeys>();
    const VTTableDataType type = s.searchType[c];
    real[c] = type == VTTableDataType::Float || type == VTTableDataType::Double;
    if (!loaders[c]->Bind(&data, s.searchIndex[c], type, ColumnKeys::Mode::Equality, false)) {
      return false;
    }
  }
  ColumnKeys selectLoader;
  if (!sum && !textSelect &&
      !selectLoader.Bind(&data, s.selectIndex, s.selectType, ColumnKeys::Mode::Equality, false)) {
    return false;
  }
  std::vector<uint64_t> selectKeys(kChunk);
  std::vector<double> values(kChunk);
  std::vector<uint16_t> status(kChunk);
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
      if (!texts.SetSize(static_cast<int32_t>(count))) return FailMemory(kDoCompress);
      read = ForEachRowRun(chunk, 0, count, kChunk, [&](int64_t first, int64_t m, int64_t at) {
        return data.GetValues_T(s.selectIndex, first, m, texts.GetData() + at);
      });
    } else {
      read = selectLoader.Load(chunk, 0, count, selectKeys.data());
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
    // The direct table serves rows whose tables need not be told apart and
    // whose keys cannot be NaN.
    const bool direct = !prefer && std::find(real.begin(), real.end(), true) == real.end();

    // A group's first member starts it; a later one joins it.
    auto start = [&](int64_t i, int32_t table) {
      const auto ii = static_cast<size_t>(i);
      groups.bestKey.push_back(selectKeys[ii]);
      groups.sum.push_back(values[ii]);
      groups.bestAt.push_back(static_cast<int32_t>(begin + i));
      groups.bestTable.push_back(table);
      groups.count.push_back(1);
      groups.status.push_back(status[ii]);
      if (textSelect) groups.bestText.push_back(texts[static_cast<int32_t>(i)].str());
    };
    auto joinSum = [&](size_t g, int64_t i) {
      ++groups.count[g];
      groups.sum[g] += values[static_cast<size_t>(i)];
      if (s.selectHasStatus) groups.status[g] |= status[static_cast<size_t>(i)];
      rows[begin + i] = -1;
    };
    auto joinBest = [&](size_t g, int64_t i, int32_t table) {
      const auto ii = static_cast<size_t>(i);
      const int64_t at = begin + i;
      ++groups.count[g];
      bool better = false;
      if (prefer && table != groups.bestTable[g]) {
        better = table > groups.bestTable[g];
      } else if (textSelect) {
        const std::string& text = texts[static_cast<int32_t>(i)].str();
        better = s.type == VTCompressType::Maximum ? text > groups.bestText[g]
                                                   : text < groups.bestText[g];
      } else {
        better = s.type == VTCompressType::Maximum ? selectKeys[ii] > groups.bestKey[g]
                                                   : selectKeys[ii] < groups.bestKey[g];
      }
      if (!better) {
        rows[at] = -1;
        return;
      }
      if (textSelect) groups.bestText[g] = texts[static_cast<int32_t>(i)].str();
      rows[groups.bestAt[g]] = -1;
      groups.bestAt[g] = static_cast<int32_t>(at);
      groups.bestTable[g] = table;
      groups.bestKey[g] = selectKeys[ii];
    };
    auto join = [&](int32_t group, int64_t i, int32_t table) {
      if (sum) {
        joinSum(static_cast<size_t>(group), i);
      } else {
        joinBest(static_cast<size_t>(group), i, table);
      }
    };

    // Integer search keys within the direct table: every row's entry at once.
    if (direct && index.DirectSlots(keyColumns.data(), count, entries.data())) {
      for (int64_t i = 0; i < count; ++i) {
        const uint32_t entry = entries[static_cast<size_t>(i)];
        const int32_t g = index.DirectGroup(entry);
        if (g >= 0) {
          join(g, i, 0);
          continue;
        }
        for (size_t c = 0; c < columns; ++c) rowKeys[c] = keys[c][static_cast<size_t>(i)];
        index.AddDirect(entry, rowKeys.data());
        start(i, 0);
      }
      continue;
    }
    for (int64_t i = 0; i < count; ++i) {
      bool alone = false;
      for (size_t c = 0; c < columns; ++c) {
        rowKeys[c] = keys[c][static_cast<size_t>(i)];
        alone = alone || (real[c] && rowKeys[c] == ColumnKeys::kNaNKey);
      }
      if (alone) continue;  // a NaN search value never joins a group
      const int32_t g = index.Find(rowKeys.data());
      int32_t table = 0;
      if (prefer && !data.GetInputTableIndexForRow(rows[begin + i], &table)) return false;
      if (g >= 0) {
        join(g, i, table);
      } else {
        index.Add(rowKeys.data());
        start(i, table);
      }
    }
  }
  for (size_t g = 0; sum && g < groups.count.size(); ++g) {
    if (groups.count[g] < 2) continue;
    const int32_t first = rows[groups.bestAt[g]];  // the first member is never dropped
    if (!data.WriteInputColValue(s.selectIndex, first, groups.sum[g]) ||
        (s.selectHasStatus &&
         !data.WriteInputColStatusValue(s.selectIndex, first, groups.status[g]))) {
      return false;
    }
  }
  return true;
}
