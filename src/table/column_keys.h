// ColumnKeys: the cells of one column as 64-bit keys, for the sort and the
// compression.
//
// Comparing keys as unsigned integers orders (or groups) the cells the way
// the table operations compare them, so the operations can sort and hash
// flat arrays of integers instead of comparing typed cells:
// - Short, Long, Huge: by signed value.
// - Float, Double: by value, -0 equal to 0; every NaN gives kNaNKey, above
//   every number.
// - Enum: ordering keys follow the option names (a code without an option
//   counts as the empty name); equality keys are the codes.
// - Text: ordering keys are ranks of the texts' numerically sortable forms
//   (upper-cased first when folding case), given by Finish once every row
//   is loaded; equality keys number each distinct exact text.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <utilkit/base/dictionary.h>
#include <utilkit/table/table.h>

namespace utilkit::table {

class ColumnKeys {
 public:
  enum class Mode { Order, Equality };
  static constexpr uint64_t kNaNKey = UINT64_MAX;

  // Prepares to read column `col` of `table`, of type `type`. Fails with the
  // table's error (reading an Enum column's options).
  bool Bind(VCUTable* table, int32_t col, VTTableDataType type, Mode mode, bool foldCase);
  // The keys of rows[begin, end) (row numbers of the table) into
  // keys[begin, end). Fails with the table's read error.
  bool Load(const int32_t* rows, int64_t begin, int64_t end, uint64_t* keys);
  // Ordering text keys: turns the loaded keys[0, n) into ranks. Others:
  // nothing to do. False when memory runs out.
  bool Finish(uint64_t* keys, int64_t n);
  // Forgets the texts seen so far.
  void Clear();

 private:
  template <class T, class Read, class Key>
  bool LoadNumbers(const int32_t* rows, int64_t begin, int64_t end, uint64_t* keys,
                   std::vector<T>& scratch, Read read, Key key);
  bool LoadTexts(const int32_t* rows, int64_t begin, int64_t end, uint64_t* keys);
  // The id of `text`, numbering it (and in Order mode pooling its sortable
  // form) when it is new; false when memory runs out.
  bool IdOf(std::string_view text, uint32_t* id);
  bool BindEnumNames();

  VCUTable* m_table = nullptr;
  int32_t m_col = -1;
  VTTableDataType m_type = VTTableDataType::None;
  Mode m_mode = Mode::Order;
  bool m_foldCase = false;

  std::vector<int16_t> m_s;
  std::vector<int32_t> m_l;
  std::vector<int64_t> m_h;
  std::vector<float> m_f;
  std::vector<double> m_d;
  // Hashes texts and views alike, so that a view is looked up as it is.
  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const noexcept {
      return std::hash<std::string_view>()(text);
    }
  };

  VCStringArray m_texts;                  // copies, where the table cannot lend them
  std::vector<std::string_view> m_views;  // a chunk's texts
  std::unordered_map<std::string, uint32_t, TextHash, std::equal_to<>> m_ids;  // text -> id
  // Ids by dictionary reference, for texts read as references (hashing a
  // pointer instead of the text); emptied by Bind and Clear.
  std::unordered_map<const VCUDictionaryRef*, uint32_t> m_refIds;
  VCUDictionary m_pool;                              // sortable forms
  std::vector<VCUDictionaryRef*> m_refs;             // id -> sortable form
  std::unordered_map<int32_t, uint32_t> m_enumRank;  // code -> rank of its name
  uint32_t m_emptyNameRank = 0;
};

// The ordering key of a signed integer.
inline uint64_t IntegerKey(int64_t value) {
  return static_cast<uint64_t>(value) ^ (uint64_t{1} << 63);
}

// The ordering key of a floating-point value.
uint64_t DoubleKey(double value);

}  // namespace utilkit::table
