#include "tree/category_index.h"

#include <bit>
#include <cstring>
#include <functional>
#include <new>

namespace {

// Up to this many entries a lookup scans them; beyond, they move to the table.
constexpr size_t kScanLimit = 8;
constexpr size_t kInlineBytes = sizeof(VCTreeCategoryIndex::Entry::text);

}  // namespace

uint32_t VCTreeCategoryIndex::HashOf(std::string_view id) {
  const auto hash = static_cast<uint64_t>(std::hash<std::string_view>()(id));
  return static_cast<uint32_t>(hash ^ (hash >> 32));
}

bool VCTreeCategoryIndex::Matches(const Entry& entry, std::string_view id, uint32_t hash) {
  if (entry.hash != hash || entry.length != id.size()) return false;
  const char* text = entry.length <= kInlineBytes ? entry.text : entry.external;
  return std::memcmp(text, id.data(), id.size()) == 0;
}

const VCTreeCategoryIndex::Entry* VCTreeCategoryIndex::Find(std::string_view id,
                                                            uint32_t hash) const {
  if (m_capacity == 0) {
    for (const Entry& entry : m_entries) {
      if (Matches(entry, id, hash)) return &entry;
    }
    return nullptr;
  }
  for (uint32_t at = SlotOf(hash);; at = (at + 1) & (m_capacity - 1)) {
    const Entry& slot = m_table[at];
    if (!slot.node) return nullptr;
    if (Matches(slot, id, hash)) return &slot;
  }
}

void VCTreeCategoryIndex::Add(std::string_view id, VCUTreeResultNode* node,
                              VCTreeCategoryIndex* childIndex) {
  const uint32_t hash = HashOf(id);
  if (Find(id, hash)) return;
  Entry entry{hash, static_cast<uint32_t>(id.size()), node, childIndex, {}};
  if (id.size() <= kInlineBytes) {
    std::memcpy(entry.text, id.data(), id.size());
  } else {
    entry.external = id.data();
  }
  if (m_capacity == 0 && m_entries.size() < kScanLimit) {
    m_entries.push_back(entry);
    return;
  }
  // Keep the table at most half full, so that probe runs stay short.
  const size_t count = (m_capacity == 0 ? m_entries.size() : m_count) + 1;
  if (2 * count > m_capacity) Rehash(m_capacity == 0 ? 32 : 2 * m_capacity);
  Place(entry);
}

void VCTreeCategoryIndex::Reserve(size_t count) {
  if (count <= kScanLimit || 2 * count <= m_capacity) return;
  if (count > (size_t{1} << 30)) throw std::bad_alloc();
  Rehash(std::bit_ceil(static_cast<uint32_t>(2 * count)));
}

void VCTreeCategoryIndex::Invalidate() {
  std::vector<Entry>().swap(m_entries);
  m_table.reset();
  m_capacity = 0;
  m_shift = 32;
  m_count = 0;
  m_built = false;
}

void VCTreeCategoryIndex::Place(const Entry& entry) {
  uint32_t at = SlotOf(entry.hash);
  while (m_table[at].node) at = (at + 1) & (m_capacity - 1);
  m_table[at] = entry;
  ++m_count;
}

void VCTreeCategoryIndex::Rehash(uint32_t capacity) {
  std::unique_ptr<Entry[]> old(new Entry[capacity]());
  old.swap(m_table);
  const uint32_t oldCapacity = m_capacity;
  m_capacity = capacity;
  m_shift = static_cast<uint32_t>(32 - std::countr_zero(capacity));
  m_count = 0;
  for (uint32_t i = 0; i < oldCapacity; ++i) {
    if (old[i].node) Place(old[i]);
  }
  for (const Entry& entry : m_entries) Place(entry);
  std::vector<Entry>().swap(m_entries);  // the table holds them from now on
}
