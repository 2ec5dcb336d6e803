#include "tree/category_queue.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

#include "base/prefetch.h"
#include "tree/category_index.h"
#include "tree/tree_node_data.h"

namespace {

// Below this many items a comparison sort beats the counting passes.
constexpr size_t kRadixFrom = 256;
constexpr int kDigitBits = 11;
constexpr size_t kDigits = size_t{1} << kDigitBits;

}  // namespace

void VCTreeCategoryQueue::Add(std::unique_ptr<VCUTreeResultNode> node, const VCStringArray& ids) {
  size_t bytes = 0;
  for (const VCString& id : ids) bytes += id.view().size() + 1;
  if (m_text.size() + bytes > UINT32_MAX) throw std::bad_alloc();
  const auto offset = static_cast<uint32_t>(m_text.size());
  // Room for the item first: once the text has grown, nothing may fail.
  if (m_items.size() == m_items.capacity())
    m_items.reserve(std::max<size_t>(64, 2 * m_items.size()));
  for (const VCString& id : ids) {
    m_text.insert(m_text.end(), id.view().begin(), id.view().end());
    m_text.push_back('\0');
  }
  m_items.push_back({VCTreeCategoryIndex::HashOf(ids[0].view()), offset, node.release()});
}

void VCTreeCategoryQueue::PlaceAll(VCUTreeResultNode* root,
                                   const VCArray<VCUTreeGroupDefBase*>& grouping) {
  if (m_placed == 0) {
    SortByHash();
    // The outermost ids arrive in the order of their hashes: the root's
    // index gets its full size first (see VCTreeCategoryIndex::Reserve).
    size_t distinct = 0;
    for (size_t i = 0; i < m_items.size(); ++i) {
      distinct += i == 0 || m_items[i].hash != m_items[i - 1].hash;
    }
    VCTreeNodeAccess::CurrentIndex(root).Reserve(distinct);
  }
  std::vector<const char*> path(static_cast<size_t>(grouping.GetSize()));
  // The nodes, their private blocks and their paths lie anywhere in memory:
  // each is fetched some items ahead of its turn.
  constexpr size_t kFar = 16, kNear = 8;
  const size_t count = m_items.size();
  for (; m_placed < count; ++m_placed) {
    if (m_placed + kFar < count) {
      utilkit::Prefetch(m_items[m_placed + kFar].node);
      utilkit::Prefetch(m_text.data() + m_items[m_placed + kFar].offset);
    }
    if (m_placed + kNear < count) VCTreeNodeAccess::PrefetchBlock(m_items[m_placed + kNear].node);
    const Item& item = m_items[m_placed];
    const char* id = m_text.data() + item.offset;
    for (const char*& level : path) {
      level = id;
      id += std::strlen(id) + 1;
    }
    VCUTreeResultNode* category =
        VCTreeNodeAccess::FindOrCreateCategoryPath(root, path.data(), item.hash, grouping);
    VCTreeNodeAccess::Adopt(category, item.node);
  }
}

void VCTreeCategoryQueue::Clear() {
  for (size_t i = m_placed; i < m_items.size(); ++i) delete m_items[i].node;
  std::vector<Item>().swap(m_items);
  std::vector<char>().swap(m_text);
  m_placed = 0;
}

void VCTreeCategoryQueue::SortByHash() {
  const size_t count = m_items.size();
  if (count < kRadixFrom) {
    std::stable_sort(m_items.begin(), m_items.end(),
                     [](const Item& a, const Item& b) { return a.hash < b.hash; });
    return;
  }
  // Least significant digit first: each counting pass is stable, so the
  // queued order survives among equal hashes.
  std::vector<Item> buffer(count);
  std::array<size_t, kDigits> starts;
  for (int shift = 0; shift < 32; shift += kDigitBits) {
    starts.fill(0);
    for (const Item& item : m_items) ++starts[(item.hash >> shift) & (kDigits - 1)];
    size_t start = 0;
    for (size_t& digit : starts) start += std::exchange(digit, start);
    for (const Item& item : m_items) buffer[starts[(item.hash >> shift) & (kDigits - 1)]++] = item;
    m_items.swap(buffer);
  }
}
