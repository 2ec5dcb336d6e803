#include "table/key_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include "base/prefetch.h"

namespace utilkit::table {

namespace {

// Runs whose keys span at most this many values may be ordered by counting.
constexpr uint64_t kMaxCountingRange = uint64_t{1} << 16;
// Runs up to this long are ordered by insertion.
constexpr int64_t kInsertionLength = 32;

}  // namespace

bool KeyOrder::Start(int64_t n, int32_t* order) {
  m_n = n;
  m_order = order;
  for (int64_t k = 0; k < n; ++k) order[k] = static_cast<int32_t>(k);
  try {
    m_starts.assign(static_cast<size_t>((n + 63) / 64), 0);
  } catch (...) {
    return false;
  }
  if (n > 0) MarkStart(0);
  m_runs = n > 1 ? 1 : 0;
  return true;
}

bool KeyOrder::Refine(const uint64_t* keys, bool descending, bool last) {
  const uint64_t flip = descending ? ~uint64_t{0} : 0;
  m_runs = 0;
  int64_t begin = 0;
  while (begin < m_n) {
    // The next run starts at the first marked position after `begin`.
    int64_t end = begin + 1;
    size_t word = static_cast<size_t>(end >> 6);
    uint64_t bits = end < m_n ? m_starts[word] & (~uint64_t{0} << (end & 63)) : 0;
    while (end < m_n && bits == 0) {
      if (++word >= m_starts.size()) break;
      bits = m_starts[word];
    }
    end = bits != 0 ? static_cast<int64_t>(word * 64) + std::countr_zero(bits) : m_n;
    end = std::min(end, m_n);
    try {
      if (end - begin > 1 && !SortRun(begin, end, keys, flip, last)) return false;
    } catch (...) {
      return false;
    }
    begin = end;
  }
  return true;
}

// Orders positions order[begin, end) by their keys (xor `flip`).
bool KeyOrder::SortRun(int64_t begin, int64_t end, const uint64_t* keys, uint64_t flip, bool last) {
  const int64_t length = end - begin;
  int32_t* order = m_order + begin;
  uint64_t low = ~uint64_t{0}, high = 0;
  constexpr int64_t kAhead = 16;  // the keys of rows in no order: fetched ahead
  for (int64_t i = 0; i < length; ++i) {
    if (i + kAhead < length) Prefetch(keys + order[i + kAhead]);
    const uint64_t key = keys[order[i]] ^ flip;
    low = std::min(low, key);
    high = std::max(high, key);
  }
  const uint64_t range = high - low;
  if (range == 0) {  // all equal: the run stays as it is
    m_runs += 1;
    return true;
  }
  if (length > kInsertionLength && range < kMaxCountingRange &&
      range <= static_cast<uint64_t>(length) * 4) {
    // Counting: keys are read again rather than copied.
    m_counts.assign(static_cast<size_t>(range) + 2, 0);
    int32_t* pos = m_pos.Reserve(length);
    for (int64_t i = 0; i < length; ++i) ++m_counts[((keys[order[i]] ^ flip) - low) + 1];
    for (uint64_t v = 1; v <= range + 1; ++v) {
      const int64_t count = m_counts[v];
      if (!last && count > 0) {
        MarkStart(begin + m_counts[v - 1]);
        if (count > 1) ++m_runs;
      }
      m_counts[v] += m_counts[v - 1];
    }
    for (int64_t i = 0; i < length; ++i) {
      pos[m_counts[(keys[order[i]] ^ flip) - low]++] = order[i];
    }
    std::memcpy(order, pos, sizeof(int32_t) * static_cast<size_t>(length));
    return true;
  }
  uint64_t* runKeys = m_keys.Reserve(length);
  int32_t* pos = m_pos.Reserve(length);
  for (int64_t i = 0; i < length; ++i) {
    runKeys[i] = (keys[order[i]] ^ flip) - low;
    pos[i] = order[i];
  }
  if (length <= kInsertionLength) {
    for (int64_t i = 1; i < length; ++i) {
      const uint64_t key = runKeys[i];
      const int32_t at = pos[i];
      int64_t j = i;
      for (; j > 0 && runKeys[j - 1] > key; --j) {
        runKeys[j] = runKeys[j - 1];
        pos[j] = pos[j - 1];
      }
      runKeys[j] = key;
      pos[j] = at;
    }
  } else {
    RadixRun(length, range);
  }
  std::memcpy(order, pos, sizeof(int32_t) * static_cast<size_t>(length));
  if (!last) {
    int64_t runStart = 0;
    for (int64_t i = 1; i <= length; ++i) {
      if (i < length && runKeys[i] == runKeys[i - 1]) continue;
      if (i - runStart > 1) ++m_runs;
      if (i < length) MarkStart(begin + i);
      runStart = i;
    }
  }
  return true;
}

// Sorts m_keys[0, length) (below `range` + 1) with m_pos alongside, byte by
// byte from the lowest, skipping bytes that every key shares.
void KeyOrder::RadixRun(int64_t length, uint64_t range) {
  const int bytes = (std::bit_width(range) + 7) / 8;
  std::array<std::array<int64_t, 256>, 8> counts{};
  for (int64_t i = 0; i < length; ++i) {
    const uint64_t key = m_keys.data[static_cast<size_t>(i)];
    for (int b = 0; b < bytes; ++b) ++counts[b][(key >> (8 * b)) & 0xFF];
  }
  uint64_t* keyFrom = m_keys.data.get();
  uint64_t* keyTo = m_keys2.Reserve(length);
  int32_t* posFrom = m_pos.data.get();
  int32_t* posTo = m_pos2.Reserve(length);
  for (int b = 0; b < bytes; ++b) {
    auto& count = counts[b];
    if (count[(keyFrom[0] >> (8 * b)) & 0xFF] == length) continue;
    int64_t start = 0;
    for (auto& c : count) start += std::exchange(c, start);
    for (int64_t i = 0; i < length; ++i) {
      const uint64_t key = keyFrom[i];
      const int64_t at = count[(key >> (8 * b)) & 0xFF]++;
      keyTo[at] = key;
      posTo[at] = posFrom[i];
    }
    std::swap(keyFrom, keyTo);
    std::swap(posFrom, posTo);
  }
  if (keyFrom != m_keys.data.get()) {
    std::memcpy(m_keys.data.get(), keyFrom, sizeof(uint64_t) * static_cast<size_t>(length));
    std::memcpy(m_pos.data.get(), posFrom, sizeof(int32_t) * static_cast<size_t>(length));
  }
}

}  // namespace utilkit::table
