#include "table/key_order.h"

#include <algorithm>
#include <array>
#include <utility>

namespace utilkit::table {

bool KeyOrder(const std::vector<KeyColumn>& columns, int64_t n, int32_t* order) {
  for (int64_t k = 0; k < n; ++k) order[k] = static_cast<int32_t>(k);
  if (n < 2 || columns.empty()) return true;
  const auto size = static_cast<size_t>(n);
  std::vector<uint64_t> keyA, keyB;
  std::vector<int32_t> orderB;
  try {
    keyA.resize(size);
    keyB.resize(size);
    orderB.resize(size);
  } catch (...) {
    return false;
  }
  int32_t* from = order;
  int32_t* to = orderB.data();
  for (auto column = columns.rbegin(); column != columns.rend(); ++column) {
    const uint64_t flip = column->descending ? ~uint64_t{0} : 0;
    std::array<std::array<int64_t, 256>, 8> counts{};
    for (size_t k = 0; k < size; ++k) {
      const uint64_t key = column->keys[from[k]] ^ flip;
      keyA[k] = key;
      for (int b = 0; b < 8; ++b) ++counts[b][(key >> (8 * b)) & 0xFF];
    }
    uint64_t* keyFrom = keyA.data();
    uint64_t* keyTo = keyB.data();
    for (int b = 0; b < 8; ++b) {
      auto& count = counts[b];
      if (count[(keyFrom[0] >> (8 * b)) & 0xFF] == n) continue;  // every row shares the byte
      int64_t start = 0;
      for (auto& c : count) start += std::exchange(c, start);
      for (size_t k = 0; k < size; ++k) {
        const uint64_t key = keyFrom[k];
        const int64_t at = count[(key >> (8 * b)) & 0xFF]++;
        keyTo[at] = key;
        to[at] = from[k];
      }
      std::swap(keyFrom, keyTo);
      std::swap(from, to);
    }
  }
  if (from != order) std::copy(from, from + n, order);
  return true;
}

}  // namespace utilkit::table
