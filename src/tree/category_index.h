// The index of a result node's child categories, kept beside its child list.
//
// For the first child of each id it holds the id (its bytes inline when
// short), the id's hash, the child and the child's own index, so a lookup
// reads this compact index and never the children themselves, and a walk
// down several levels goes from index to index. Up to a few entries they
// are scanned; past that they move into an open-addressing table, which
// makes lookups O(1) expected. A table slot is taken from the top bits of
// the hash, so ids visited in the order of their hashes walk the table from
// its start to its end (see VCTreeCategoryQueue). The owner drops the index (Invalidate)
// whenever a child leaves the list or the list is reordered, and rebuilds
// it when next needed; ids of indexed children never change while indexed.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

class VCUTreeResultNode;

class VCTreeCategoryIndex {
 public:
  struct Entry {
    uint32_t hash;
    uint32_t length;  // of the id
    VCUTreeResultNode* node;
    VCTreeCategoryIndex* childIndex;  // the index inside `node`
    union {
      char text[16];         // an id of up to 16 bytes
      const char* external;  // a longer id, in the child's own block
    };
  };

  // The hash under which `id` is indexed.
  static uint32_t HashOf(std::string_view id);

  // The entry of the child with `id`, or null; `hash` is HashOf(id).
  const Entry* Find(std::string_view id, uint32_t hash) const;
  const Entry* Find(std::string_view id) const { return Find(id, HashOf(id)); }
  // Indexes `node` (whose own index is `childIndex`) under `id` unless an
  // earlier child has that id. Throws std::bad_alloc (index unchanged).
  void Add(std::string_view id, VCUTreeResultNode* node, VCTreeCategoryIndex* childIndex);
  // Makes room for `count` entries in all, so that adding them never grows
  // the table; ids added in the order of their hashes need that, or they
  // would crowd the start of a table too small for them. Throws
  // std::bad_alloc (index unchanged).
  void Reserve(size_t count);
  // Empties the index, frees its memory and marks it not built.
  void Invalidate();

  // Whether the index describes the owner's children.
  bool IsBuilt() const { return m_built; }
  void SetBuilt() { m_built = true; }

 private:
  static bool Matches(const Entry& entry, std::string_view id, uint32_t hash);
  uint32_t SlotOf(uint32_t hash) const { return hash >> m_shift; }
  void Place(const Entry& entry);
  void Rehash(uint32_t capacity);

  std::vector<Entry> m_entries;      // while there are few
  std::unique_ptr<Entry[]> m_table;  // then: slots, node null when empty
  uint32_t m_capacity = 0;           // of the table: 0 or a power of two
  uint32_t m_shift = 32;             // 32 - log2(m_capacity)
  uint32_t m_count = 0;              // entries in the table
  bool m_built = false;
};
