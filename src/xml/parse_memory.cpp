#include "xml/parse_memory.h"

#include <limits>
#include <new>
#include <utility>

#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace xc = XERCES_CPP_NAMESPACE;

namespace utilkit::xml {

ParseMemory::ParseMemory(size_t budget) : m_ring{&m_ring, &m_ring, 0}, m_budget(budget) {}

ParseMemory::~ParseMemory() {
  while (m_ring.next != &m_ring) deallocate(m_ring.next + 1);
  for (Header* cached : m_cache) ::operator delete(cached);
}

void ParseMemory::LiftBudget() {
  m_budget = std::numeric_limits<size_t>::max();
}

xc::MemoryManager* ParseMemory::getExceptionMemoryManager() {
  return xc::XMLPlatformUtils::fgMemoryManager;
}

void* ParseMemory::allocate(XMLSize_t size) {
  if (size > m_budget - m_used || size > std::numeric_limits<size_t>::max() - sizeof(Header)) {
    throw xc::OutOfMemoryException();
  }
  Header* header = nullptr;
  for (Header*& cached : m_cache) {
    if (cached && cached->size == size) {
      header = std::exchange(cached, nullptr);
      break;
    }
  }
  if (!header) header = static_cast<Header*>(::operator new(sizeof(Header) + size, std::nothrow));
  if (!header) throw xc::OutOfMemoryException();
  *header = Header{&m_ring, m_ring.next, size};
  m_ring.next->previous = header;
  m_ring.next = header;
  m_used += size;
  return header + 1;
}

void ParseMemory::deallocate(void* p) {
  if (!p) return;
  Header* header = static_cast<Header*>(p) - 1;
  header->previous->next = header->next;
  header->next->previous = header->previous;
  m_used -= header->size;
  if (header->size >= kCachedMinimum) {
    for (Header*& cached : m_cache) {
      if (!cached) {
        cached = header;
        return;
      }
    }
  }
  ::operator delete(header);
}

}  // namespace utilkit::xml
