// GroupIndex: finds the group of a row by the row's search keys.
//
// The compression gives each distinct combination of search keys (64-bit
// keys, one per search column, see column_keys.h) a group number in the
// order met. The index is an open-addressing hash table of group numbers
// with a fingerprint of each group's hash beside it, kept at most a quarter
// full while small (so that a lookup nearly always ends at its first slot)
// and at most half full once large; the keys themselves live in one flat
// array, `columns` per group.
//
// Search columns of small integers (channel numbers, flags, enum codes)
// are common, so when the first keys seen span few values the index starts
// as a direct table over that span (each column's span rounded up to a power
// of two), one entry per combination; the first key outside the span moves
// every group to the hash table for good.
//
//   GroupIndex index(2);
//   index.Hint(low, high);                    // per column, of a first sample
//   const uint64_t keys[] = {channel, flag};
//   int32_t group = index.Find(keys);
//   if (group < 0) group = index.Add(keys);   // may throw std::bad_alloc
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace utilkit::table {

class GroupIndex {
 public:
  explicit GroupIndex(size_t columns)
      : m_columns(columns), m_low(columns), m_bits(columns), m_slots(kFirstSlots, 0) {}

  // Before the first Add: the smallest and largest key of each column in a
  // first sample of rows. Uses a direct table when they span few values.
  // Throws std::bad_alloc when memory runs out.
  void Hint(const uint64_t* low, const uint64_t* high) {
    if (m_count != 0) return;
    int bits = 0;
    for (size_t c = 0; c < m_columns; ++c) {
      if (high[c] - low[c] >= kMaxDirect) return;
      m_low[c] = low[c];
      m_bits[c] = std::bit_width(high[c] - low[c]);
      bits += m_bits[c];
      if (bits > kMaxDirectBits) return;
    }
    m_direct.assign(size_t{1} << bits, -1);
  }

  // The group holding `keys` (one per column), or -1. Remembers where a new
  // group of these keys would go, for Add. May leave the direct table
  // (throwing std::bad_alloc when memory runs out).
  int32_t Find(const uint64_t* keys) {
    if (!m_direct.empty()) {
      uint64_t at = 0, outside = 0;
      for (size_t c = 0; c < m_columns; ++c) {
        const uint64_t offset = keys[c] - m_low[c];
        outside |= offset >> m_bits[c];
        at = (at << m_bits[c]) | offset;
      }
      if (outside == 0) {
        m_slot = static_cast<size_t>(at);
        return m_direct[m_slot];
      }
      LeaveDirect();
    }
    m_hash = Hash(keys);
    const uint64_t tag = m_hash & kTagMask;
    size_t slot = m_hash & (m_slots.size() - 1);
    for (;; slot = (slot + 1) & (m_slots.size() - 1)) {
      const uint64_t entry = m_slots[slot];
      if (entry == 0) break;
      if ((entry & kTagMask) != tag) continue;
      const auto group = static_cast<int32_t>((entry & ~kTagMask) - 1);
      if (SameKeys(group, keys)) return group;
    }
    m_slot = slot;
    return -1;
  }

  // With a direct table whose span holds every row's keys (keys[c][i] for
  // rows i of [0, count)): each row's entry into entries[i], and true.
  // Otherwise false, changing nothing.
  bool DirectSlots(const uint64_t* const* keys, int64_t count, uint32_t* entries) const {
    if (m_direct.empty()) return false;
    uint64_t outside = 0;
    for (size_t c = 0; c < m_columns; ++c) {
      const uint64_t low = m_low[c];
      const int bits = m_bits[c];
      const uint64_t* column = keys[c];
      if (c == 0) {
        for (int64_t i = 0; i < count; ++i) {
          const uint64_t offset = column[i] - low;
          outside |= offset >> bits;
          entries[i] = static_cast<uint32_t>(offset);
        }
        continue;
      }
      for (int64_t i = 0; i < count; ++i) {
        const uint64_t offset = column[i] - low;
        outside |= offset >> bits;
        entries[i] = (entries[i] << bits) | static_cast<uint32_t>(offset);
      }
    }
    return outside == 0;
  }
  // The group at direct entry `entry`, or -1.
  int32_t DirectGroup(uint32_t entry) const { return m_direct[entry]; }
  // Adds a group of `keys` at direct entry `entry`; see Add.
  int32_t AddDirect(uint32_t entry, const uint64_t* keys) {
    m_slot = entry;
    return Add(keys);
  }

  // Adds a group of `keys` (just looked up by Find, which returned -1) and
  // returns its number. Throws std::bad_alloc when memory runs out.
  int32_t Add(const uint64_t* keys) {
    const auto group = static_cast<int32_t>(m_count++);
    m_keys.insert(m_keys.end(), keys, keys + m_columns);
    if (!m_direct.empty()) {
      m_direct[m_slot] = group;
      return group;
    }
    m_slots[m_slot] = (m_hash & kTagMask) | (static_cast<uint64_t>(group) + 1);
    const size_t limit = m_slots.size() <= kSmallSlots ? m_slots.size() / 4 : m_slots.size() / 2;
    if (m_count > limit) Grow();
    return group;
  }

  // The number of groups.
  size_t Size() const { return m_count; }

 private:
  static constexpr size_t kFirstSlots = 1024;
  static constexpr int kMaxDirectBits = 16;
  static constexpr uint64_t kMaxDirect = uint64_t{1} << kMaxDirectBits;
  static constexpr size_t kSmallSlots = size_t{1} << 16;
  static constexpr uint64_t kTagMask = ~uint64_t{0} << 32;

  uint64_t Hash(const uint64_t* keys) const {
    uint64_t hash = 0x9E3779B97F4A7C15ull;
    for (size_t c = 0; c < m_columns; ++c) {
      hash = (hash ^ keys[c]) * 0xBF58476D1CE4E5B9ull;
      hash ^= hash >> 31;
    }
    hash *= 0x94D049BB133111EBull;
    return hash ^ (hash >> 29);
  }

  bool SameKeys(int32_t group, const uint64_t* keys) const {
    const uint64_t* stored = m_keys.data() + static_cast<size_t>(group) * m_columns;
    for (size_t c = 0; c < m_columns; ++c) {
      if (stored[c] != keys[c]) return false;
    }
    return true;
  }

  // Moves every group from the direct table to the hash table.
  void LeaveDirect() {
    std::vector<int32_t>().swap(m_direct);
    while (m_count > m_slots.size() / 4) m_slots.resize(m_slots.size() * 2);
    Rehash(m_slots.size());
  }

  void Grow() { Rehash(m_slots.size() * 2); }

  void Rehash(size_t size) {
    std::vector<uint64_t> slots(size, 0);
    const size_t mask = slots.size() - 1;
    for (size_t group = 0; group < m_count; ++group) {
      const uint64_t hash = Hash(m_keys.data() + group * m_columns);
      size_t slot = hash & mask;
      while (slots[slot] != 0) slot = (slot + 1) & mask;
      slots[slot] = (hash & kTagMask) | (static_cast<uint64_t>(group) + 1);
    }
    m_slots.swap(slots);
  }

  size_t m_columns;
  // The direct table's span per column: keys low .. low + 2^bits - 1, so
  // that a row's entry is its columns' offsets side by side in bits.
  std::vector<uint64_t> m_low;
  std::vector<int> m_bits;
  std::vector<int32_t> m_direct;  // group per combination; empty: hashing
  std::vector<uint64_t> m_slots;  // fingerprint << 32 | (group + 1); 0 is empty
  std::vector<uint64_t> m_keys;   // `m_columns` keys per group
  size_t m_count = 0;
  uint64_t m_hash = 0;  // of the keys last looked up
  size_t m_slot = 0;    // where they would go (a slot or a direct entry)
};

}  // namespace utilkit::table
