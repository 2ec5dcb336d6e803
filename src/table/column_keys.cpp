#include "table/column_keys.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <utilkit/base/text_helpers.h>

#include "table/row_chunks.h"

namespace utilkit::table {

namespace {

// Rows read from the table at a time.
constexpr int64_t kChunk = 4096;

// Byte-wise order of two zero-terminated texts, as unsigned characters.
bool TextLess(const char* a, const char* b) {
  return std::strcmp(a, b) < 0;
}

}  // namespace

uint64_t DoubleKey(double value) {
  if (std::isnan(value)) return ColumnKeys::kNaNKey;
  if (value == 0) value = 0.0;
  uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  constexpr uint64_t kSign = uint64_t{1} << 63;
  return (bits & kSign) ? ~bits : (bits | kSign);
}

bool ColumnKeys::Bind(VCUTable* table, int32_t col, VTTableDataType type, Mode mode,
                      bool foldCase) {
  m_table = table;
  m_col = col;
  m_type = type;
  m_mode = mode;
  m_foldCase = foldCase;
  Clear();
  return type != VTTableDataType::Enum || mode != Mode::Order || BindEnumNames();
}

void ColumnKeys::Clear() {
  m_ids.clear();
  m_refIds.clear();
  m_refs.clear();
  m_pool.Clear();
}

// Ranks the option names (with the empty name) and gives each code the rank
// of the name at its first option.
bool ColumnKeys::BindEnumNames() {
  VCArrayWithSort<int32_t> codes;
  VCStringArray names;
  if (!m_table->GetEnumColOptions(m_col, &codes, &names)) return false;
  std::vector<const char*> sorted{""};
  for (int32_t i = 0; i < names.GetSize(); ++i) sorted.push_back(names[i]);
  std::sort(sorted.begin(), sorted.end(), TextLess);
  auto rank = [&](const char* name) {
    return static_cast<uint32_t>(std::lower_bound(sorted.begin(), sorted.end(), name, TextLess) -
                                 sorted.begin());
  };
  m_enumRank.clear();
  for (int32_t i = 0; i < codes.GetSize() && i < names.GetSize(); ++i) {
    m_enumRank.emplace(codes[i], rank(names[i]));
  }
  m_emptyNameRank = rank("");
  return true;
}

template <class T, class Read, class Key>
bool ColumnKeys::LoadNumbers(const int32_t* rows, int64_t begin, int64_t end, uint64_t* keys,
                             std::vector<T>& scratch, Read read, Key key) {
  scratch.resize(static_cast<size_t>(std::min(kChunk, end - begin)));
  return ForEachRowRun(rows, begin, end, kChunk, [&](int64_t first, int64_t n, int64_t at) {
    if (!(m_table->*read)(m_col, first, n, scratch.data())) return false;
    for (int64_t i = 0; i < n; ++i) keys[at + i] = key(scratch[static_cast<size_t>(i)]);
    return true;
  });
}

bool ColumnKeys::IdOf(std::string_view text, uint32_t* id) {
  auto it = m_ids.find(text);
  if (it == m_ids.end()) {
    it = m_ids.emplace(text, static_cast<uint32_t>(m_ids.size())).first;
    if (m_mode == Mode::Order) {
      VCString form(text);
      if (m_foldCase) form.MakeUpper();
      VCUDictionaryRef* ref = m_pool.InsertString(VFMakeNumericallySortableString(form).c_str());
      if (ref == nullptr) return false;
      m_refs.push_back(ref);
    }
  }
  *id = it->second;
  return true;
}

// Texts kept in a dictionary are read as references, each text looked up
// once; others as views, or as copies where the table lends none.
bool ColumnKeys::LoadTexts(const int32_t* rows, int64_t begin, int64_t end, uint64_t* keys) {
  return ForEachRowRun(rows, begin, end, kChunk, [&](int64_t first, int64_t n, int64_t at) {
    const VCUDictionary* dictionary = nullptr;
    if (const auto* refs = static_cast<VCUDictionaryRef* const*>(
            m_table->PeekCells(m_col, VTTableDataType::Text, first, n, &dictionary))) {
      for (int64_t i = 0; i < n; ++i) {
        auto [it, added] = m_refIds.try_emplace(refs[i], 0);
        if (added && !IdOf(dictionary->GetView(refs[i]), &it->second)) return false;
        keys[at + i] = it->second;
      }
      return true;
    }
    m_views.resize(static_cast<size_t>(n));
    if (!m_table->PeekTexts(m_col, first, n, m_views.data())) {
      if (!m_table->GetValues_T(m_col, first, n, &m_texts)) return false;
      for (int64_t i = 0; i < n; ++i) m_views[i] = m_texts[static_cast<int32_t>(i)].view();
    }
    for (int64_t i = 0; i < n; ++i) {
      uint32_t id = 0;
      if (!IdOf(m_views[static_cast<size_t>(i)], &id)) return false;
      keys[at + i] = id;
    }
    return true;
  });
}

bool ColumnKeys::Load(const int32_t* rows, int64_t begin, int64_t end, uint64_t* keys) {
  auto integer = [](auto v) { return IntegerKey(v); };
  auto real = [](auto v) { return DoubleKey(static_cast<double>(v)); };
  switch (m_type) {
    case VTTableDataType::Short:
      return LoadNumbers(rows, begin, end, keys, m_s, &VCUTable::GetValues_S, integer);
    case VTTableDataType::Long:
      return LoadNumbers(rows, begin, end, keys, m_l, &VCUTable::GetValues_L, integer);
    case VTTableDataType::Huge:
      return LoadNumbers(rows, begin, end, keys, m_h, &VCUTable::GetValues_H, integer);
    case VTTableDataType::Float:
      return LoadNumbers(rows, begin, end, keys, m_f, &VCUTable::GetValues_F, real);
    case VTTableDataType::Double:
      return LoadNumbers(rows, begin, end, keys, m_d, &VCUTable::GetValues_D, real);
    case VTTableDataType::Text:
      return LoadTexts(rows, begin, end, keys);
    case VTTableDataType::Enum: {
      auto read = [](VCUTable& t, int32_t col, int64_t first, int64_t n, int32_t* out) {
        return t.GetValues_E(col, first, n, out, nullptr);
      };
      m_l.resize(static_cast<size_t>(std::min(kChunk, end - begin)));
      return ForEachRowRun(rows, begin, end, kChunk, [&](int64_t first, int64_t n, int64_t at) {
        if (!read(*m_table, m_col, first, n, m_l.data())) return false;
        for (int64_t i = 0; i < n; ++i) {
          const int32_t code = m_l[static_cast<size_t>(i)];
          if (m_mode == Mode::Equality) {
            keys[at + i] = IntegerKey(code);
          } else {
            auto it = m_enumRank.find(code);
            keys[at + i] = it == m_enumRank.end() ? m_emptyNameRank : it->second;
          }
        }
        return true;
      });
    }
    default:
      for (int64_t k = begin; k < end; ++k) keys[k] = 0;
      return true;
  }
}

bool ColumnKeys::Finish(uint64_t* keys, int64_t n) {
  if (m_type != VTTableDataType::Text || m_mode != Mode::Order) return true;
  try {
    std::vector<uint32_t> ids(m_refs.size());
    for (size_t i = 0; i < ids.size(); ++i) ids[i] = static_cast<uint32_t>(i);
    std::sort(ids.begin(), ids.end(), [&](uint32_t a, uint32_t b) {
      return m_refs[a] != m_refs[b] &&
             TextLess(m_pool.GetString(m_refs[a]), m_pool.GetString(m_refs[b]));
    });
    std::vector<uint64_t> rank(ids.size());
    uint64_t next = 0;
    for (size_t i = 0; i < ids.size(); ++i) {
      if (i > 0 && m_refs[ids[i]] != m_refs[ids[i - 1]]) ++next;
      rank[ids[i]] = next;
    }
    for (int64_t k = 0; k < n; ++k) keys[k] = rank[static_cast<size_t>(keys[k])];
  } catch (...) {
    return false;
  }
  return true;
}

}  // namespace utilkit::table
