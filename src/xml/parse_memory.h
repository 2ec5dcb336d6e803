// ParseMemory: the Xerces memory manager of one parse and of the document it builds.
//
// Two jobs:
//  - a budget: an allocation beyond it throws Xerces' OutOfMemoryException,
//    which ends the parse. This bounds what entity expansion can amplify
//    (the parser's expansion limit counts references, not bytes). Once the
//    document is built, the budget is lifted so hosts can extend it freely.
//  - reclaiming: blocks still live when the manager goes are freed. Xerces
//    3.2 as shipped leaks a few objects for every document that names an
//    external DTD (the scanner gives up ownership of the DTD's entity
//    declaration); a server parsing such documents would otherwise grow
//    without bound. The manager is destroyed only after the parser and the
//    document, so nothing refers to those blocks any more.
// It also keeps a few freed large blocks for reuse: the scanner allocates
// and frees a large reader for every entity expansion, and handing such
// blocks back to the heap each time dominates entity-heavy documents.
//
// Ownership: one manager per parse, owned together with its document
// (xml_parse.cpp). Not thread-safe, like the document it serves.
#pragma once

#include <cstddef>

#include <xercesc/framework/MemoryManager.hpp>

namespace utilkit::xml {

class ParseMemory : public XERCES_CPP_NAMESPACE::MemoryManager {
 public:
  explicit ParseMemory(size_t budget);
  ~ParseMemory() override;
  ParseMemory(const ParseMemory&) = delete;
  ParseMemory& operator=(const ParseMemory&) = delete;

  // Removes the budget.
  void LiftBudget();

  XERCES_CPP_NAMESPACE::MemoryManager* getExceptionMemoryManager() override;
  // Throws OutOfMemoryException beyond the budget or when the heap is exhausted.
  void* allocate(XMLSize_t size) override;
  void deallocate(void* p) override;

 private:
  // Precedes every block handed out; the live blocks form a ring through m_ring.
  struct alignas(alignof(std::max_align_t)) Header {
    Header* previous;
    Header* next;
    size_t size;
  };

  static constexpr size_t kCachedMinimum = 16 * 1024;  // smaller blocks go back to the heap
  static constexpr size_t kCacheSlots = 4;

  Header m_ring;
  Header* m_cache[kCacheSlots] = {};  // freed large blocks, kept for the same size
  size_t m_budget;
  size_t m_used = 0;
};

}  // namespace utilkit::xml
