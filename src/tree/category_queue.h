// Result nodes waiting for their category while the grouping walk runs.
//
// Filing each node the moment the walk meets it sends every node to a
// random category of a large tree: a lookup in a large index, then the
// category, its child list and its own index, each likely a cache miss. The
// walk queues the node instead, with its category path; PlaceAll then files
// the queued nodes in the order of their outermost id's hash. Nodes of one
// category come together, the indexes are walked from start to end, and the
// categories are made next to each other in memory.
//
//   VCTreeCategoryQueue queue;
//   queue.Add(std::move(node), ids);        // node: a root standing for a data object
//   queue.PlaceAll(root, grouping);         // now a child of its innermost category
//
// The tree that results is the one that filing at once gives once the
// categories are sorted by id, which the processor always does: each
// category still receives its nodes in the order they were queued; only
// the order in which the categories are made differs.
//
// Ownership: the queue owns the nodes it holds (and their subtrees) until
// they are placed; Clear and the destructor delete those not placed.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/tree/tree_result_node.h>

class VCUTreeGroupDefBase;

class VCTreeCategoryQueue {
 public:
  VCTreeCategoryQueue() = default;
  VCTreeCategoryQueue(const VCTreeCategoryQueue&) = delete;
  VCTreeCategoryQueue& operator=(const VCTreeCategoryQueue&) = delete;
  ~VCTreeCategoryQueue() { Clear(); }

  // Queues `node` (a root) for the category path `ids` (one non-empty id per
  // grouping level). Throws std::bad_alloc; the node is then deleted.
  void Add(std::unique_ptr<VCUTreeResultNode> node, const VCStringArray& ids);
  // Files every queued node under the category at the end of its path below
  // `root`, making categories where missing (level i described by
  // grouping[i]). Throws std::bad_alloc; the nodes not yet placed stay
  // queued.
  void PlaceAll(VCUTreeResultNode* root, const VCArray<VCUTreeGroupDefBase*>& grouping);
  // Deletes the nodes not placed and frees the queue's memory.
  void Clear();

 private:
  struct Item {
    uint32_t hash;    // of the outermost id
    uint32_t offset;  // of the path in m_text
    VCUTreeResultNode* node;
  };

  // Orders m_items by hash, keeping the queued order among equal hashes.
  void SortByHash();

  std::vector<Item> m_items;
  std::vector<char> m_text;  // the paths: each id followed by a NUL
  size_t m_placed = 0;       // m_items[0, m_placed) belong to the tree
};
