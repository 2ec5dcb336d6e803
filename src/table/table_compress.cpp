#include <utilkit/table/table_compress.h>

#include <algorithm>
#include <string>
#include <vector>

#include "table/column_keys.h"
#include "table/row_chunks.h"
#include "table/table_errors.h"

using namespace utilkit::table;

namespace {

constexpr const char* kValidate = "VCUTableCompress::Validate";
constexpr const char* kDoCompress = "VCUTableCompress::DoCompress";
// Rows loaded at a time.
constexpr int64_t kChunk = 4096;

// One group met so far: its first member and its best one.
struct Group {
  int32_t firstRow;  // row number of the first member
  int32_t bestAt;    // position in the row array of the best member
  int32_t bestTable;
  int32_t count;
  uint64_t bestKey;      // numeric select values
  std::string bestText;  // text select values
  double sum;
  uint16_t status;
};

uint64_t Mix(uint64_t hash, uint64_t key) {
  hash ^= key + 0x9E3779B97F4A7C15ull + (hash << 6) + (hash >> 2);
  return hash * 0xBF58476D1CE4E5B9ull;
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
  for (size_t c = 0; c < columns; ++c) {
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

  std::vector<Group> groups;
  std::vector<uint64_t> groupKeys;  // `columns` keys per group
  std::vector<int32_t> slots(1024, -1);
  size_t mask = slots.size() - 1;

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

    for (int64_t i = 0; i < count; ++i) {
      uint64_t hash = 0;
      bool alone = false;
      for (size_t c = 0; c < columns; ++c) {
        const uint64_t key = keys[c][static_cast<size_t>(i)];
        alone = alone || (real[c] && key == ColumnKeys::kNaNKey);
        hash = Mix(hash, key);
      }
      if (alone) continue;  // a NaN search value never joins a group
      size_t slot = (hash >> 20) & mask;
      int32_t g = -1;
      while ((g = slots[slot]) >= 0) {
        const uint64_t* stored = groupKeys.data() + static_cast<size_t>(g) * columns;
        size_t c = 0;
        while (c < columns && stored[c] == keys[c][static_cast<size_t>(i)]) ++c;
        if (c == columns) break;
        slot = (slot + 1) & mask;
      }
      const int64_t at = begin + i;
      int32_t table = 0;
      if (prefer && !data.GetInputTableIndexForRow(rows[at], &table)) return false;
      const auto ii = static_cast<size_t>(i);
      if (g < 0) {
        slots[slot] = static_cast<int32_t>(groups.size());
        for (size_t c = 0; c < columns; ++c) groupKeys.push_back(keys[c][ii]);
        groups.push_back({rows[at], static_cast<int32_t>(at), table, 1, selectKeys[ii],
                          textSelect ? texts[static_cast<int32_t>(i)].str() : std::string(),
                          values[ii], status[ii]});
        if (groups.size() * 2 > slots.size()) {
          slots.assign(slots.size() * 2, -1);
          mask = slots.size() - 1;
          for (size_t k = 0; k < groups.size(); ++k) {
            uint64_t h = 0;
            for (size_t c = 0; c < columns; ++c) h = Mix(h, groupKeys[k * columns + c]);
            size_t to = (h >> 20) & mask;
            while (slots[to] >= 0) to = (to + 1) & mask;
            slots[to] = static_cast<int32_t>(k);
          }
        }
        continue;
      }
      Group& group = groups[static_cast<size_t>(g)];
      ++group.count;
      if (sum) {
        group.sum += values[ii];
        group.status |= status[ii];
        rows[at] = -1;
        continue;
      }
      bool better = false;
      if (prefer && table != group.bestTable) {
        better = table > group.bestTable;
      } else if (textSelect) {
        const std::string& text = texts[static_cast<int32_t>(i)].str();
        better = s.type == VTCompressType::Maximum ? text > group.bestText : text < group.bestText;
      } else {
        better = s.type == VTCompressType::Maximum ? selectKeys[ii] > group.bestKey
                                                   : selectKeys[ii] < group.bestKey;
      }
      if (!better) {
        rows[at] = -1;
        continue;
      }
      if (textSelect) group.bestText = texts[static_cast<int32_t>(i)].str();
      rows[group.bestAt] = -1;
      group.bestAt = static_cast<int32_t>(at);
      group.bestTable = table;
      group.bestKey = selectKeys[ii];
    }
  }
  for (const Group& group : groups) {
    if (!sum || group.count < 2) continue;
    if (!data.WriteInputColValue(s.selectIndex, group.firstRow, group.sum) ||
        (s.selectHasStatus &&
         !data.WriteInputColStatusValue(s.selectIndex, group.firstRow, group.status))) {
      return false;
    }
  }
  return true;
}
