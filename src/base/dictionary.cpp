#include <utilkit/base/dictionary.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// A pooled text, linked to its neighbours in insertion order.
struct VCUDictionaryRef {
  std::string text;
  size_t hash = 0;  // of text, kept so that lookups and growth hash no stored text
  VCUDictionaryRef* prev = nullptr;
  VCUDictionaryRef* next = nullptr;
};

namespace {

size_t HashOf(std::string_view text) {
  return std::hash<std::string_view>()(text);
}

}  // namespace

// The texts are found through an open-addressed index (linear probing, at
// most half full) of their hashes and nodes; the nodes themselves never
// move, so references stay valid as the index grows.
struct VCUDictionary::Pool {
  struct Slot {
    size_t hash = 0;
    VCUDictionaryRef* ref = nullptr;  // null: a free slot
  };
  std::vector<Slot> slots;  // a power of two in size, or empty
  int64_t size = 0;
  VCUDictionaryRef* first = nullptr;
  VCUDictionaryRef* last = nullptr;

  ~Pool() { Clear(); }

  // The slot holding `text`, or the free slot where it would go (slots
  // must not be empty).
  size_t Probe(size_t hash, std::string_view text) const {
    const size_t mask = slots.size() - 1;
    for (size_t i = hash & mask;; i = (i + 1) & mask) {
      const Slot& slot = slots[i];
      if (slot.ref == nullptr || (slot.hash == hash && slot.ref->text == text)) return i;
    }
  }

  // Makes room for one more text. Throws std::bad_alloc.
  void Reserve() {
    if (static_cast<size_t>(size + 1) * 2 <= slots.size()) return;
    std::vector<Slot> old(std::max<size_t>(16, slots.size() * 2));
    old.swap(slots);
    const size_t mask = slots.size() - 1;
    for (const Slot& slot : old) {
      if (slot.ref == nullptr) continue;
      size_t i = slot.hash & mask;
      while (slots[i].ref != nullptr) i = (i + 1) & mask;
      slots[i] = slot;
    }
  }

  // Frees slot `i`, moving back the slots after it that probing would no
  // longer reach.
  void Erase(size_t i) {
    const size_t mask = slots.size() - 1;
    for (size_t j = (i + 1) & mask; slots[j].ref != nullptr; j = (j + 1) & mask) {
      const size_t home = slots[j].hash & mask;
      const bool stays = i <= j ? (i < home && home <= j) : (i < home || home <= j);
      if (stays) continue;
      slots[i] = slots[j];
      i = j;
    }
    slots[i] = Slot();
  }

  void Clear() {
    for (VCUDictionaryRef* ref = first; ref != nullptr;) delete std::exchange(ref, ref->next);
    slots.clear();
    size = 0;
    first = last = nullptr;
  }
};

VCUDictionary::VCUDictionary() : m_pool(std::make_unique<Pool>()) {}

VCUDictionary::~VCUDictionary() = default;

VCUDictionaryRef* VCUDictionary::InsertString(std::string_view text) {
  Pool& pool = *m_pool;
  const size_t hash = HashOf(text);
  try {
    pool.Reserve();
    const size_t at = pool.Probe(hash, text);
    if (pool.slots[at].ref != nullptr) return pool.slots[at].ref;
    auto* ref = new VCUDictionaryRef{std::string(text), hash, pool.last, nullptr};
    (pool.last ? pool.last->next : pool.first) = ref;
    pool.last = ref;
    pool.slots[at] = {hash, ref};
    ++pool.size;
    return ref;
  } catch (...) {
    return nullptr;
  }
}

VCUDictionaryRef* VCUDictionary::FindString(std::string_view text) const {
  if (m_pool->slots.empty()) return nullptr;
  return m_pool->slots[m_pool->Probe(HashOf(text), text)].ref;
}

const char* VCUDictionary::GetString(const VCUDictionaryRef* ref) const {
  return ref ? ref->text.c_str() : "";
}

std::string_view VCUDictionary::GetView(const VCUDictionaryRef* ref) const {
  return ref ? std::string_view(ref->text) : std::string_view();
}

VCUDictionaryRef* VCUDictionary::GetFirstString() const {
  return m_pool->first;
}

VCUDictionaryRef* VCUDictionary::GetNextString(const VCUDictionaryRef* ref) const {
  return ref ? ref->next : nullptr;
}

int64_t VCUDictionary::GetSize() const {
  return m_pool->size;
}

bool VCUDictionary::RemoveString(const VCUDictionaryRef* ref) {
  Pool& pool = *m_pool;
  if (!ref || pool.slots.empty()) return false;
  const size_t at = pool.Probe(ref->hash, ref->text);
  if (pool.slots[at].ref != ref) return false;
  (ref->prev ? ref->prev->next : pool.first) = ref->next;
  (ref->next ? ref->next->prev : pool.last) = ref->prev;
  pool.Erase(at);
  --pool.size;
  delete ref;
  return true;
}

void VCUDictionary::Clear() {
  m_pool->Clear();
}
