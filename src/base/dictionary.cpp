#include <utilkit/base/dictionary.h>

#include <functional>
#include <string>
#include <unordered_set>

// A pooled text, linked to its neighbours in insertion order. The links are
// mutable because the hash set only hands out const elements; they are not
// part of the element's key.
struct VCUDictionaryRef {
  std::string text;
  mutable const VCUDictionaryRef* prev = nullptr;
  mutable const VCUDictionaryRef* next = nullptr;
};

namespace {

std::string_view KeyOf(std::string_view text) {
  return text;
}
std::string_view KeyOf(const VCUDictionaryRef& ref) {
  return ref.text;
}

// Hash and equality that accept a string_view, so lookups need no string.
struct RefHash {
  using is_transparent = void;
  template <class K>
  size_t operator()(const K& key) const noexcept {
    return std::hash<std::string_view>()(KeyOf(key));
  }
};

struct RefEqual {
  using is_transparent = void;
  template <class A, class B>
  bool operator()(const A& a, const B& b) const noexcept {
    return KeyOf(a) == KeyOf(b);
  }
};

VCUDictionaryRef* Handle(const VCUDictionaryRef* ref) {
  return const_cast<VCUDictionaryRef*>(ref);  // handles are opaque to callers
}

}  // namespace

struct VCUDictionary::Pool {
  std::unordered_set<VCUDictionaryRef, RefHash, RefEqual> texts;
  const VCUDictionaryRef* first = nullptr;
  const VCUDictionaryRef* last = nullptr;
};

VCUDictionary::VCUDictionary() : m_pool(std::make_unique<Pool>()) {}

VCUDictionary::~VCUDictionary() = default;

VCUDictionaryRef* VCUDictionary::InsertString(std::string_view text) {
  if (VCUDictionaryRef* found = FindString(text)) return found;
  try {
    const VCUDictionaryRef& ref = *m_pool->texts.insert(VCUDictionaryRef{std::string(text)}).first;
    ref.prev = m_pool->last;
    (m_pool->last ? m_pool->last->next : m_pool->first) = &ref;
    m_pool->last = &ref;
    return Handle(&ref);
  } catch (...) {
    return nullptr;
  }
}

VCUDictionaryRef* VCUDictionary::FindString(std::string_view text) const {
  const auto it = m_pool->texts.find(text);
  return it == m_pool->texts.end() ? nullptr : Handle(&*it);
}

const char* VCUDictionary::GetString(const VCUDictionaryRef* ref) const {
  return ref ? ref->text.c_str() : "";
}

VCUDictionaryRef* VCUDictionary::GetFirstString() const {
  return Handle(m_pool->first);
}

VCUDictionaryRef* VCUDictionary::GetNextString(const VCUDictionaryRef* ref) const {
  return ref ? Handle(ref->next) : nullptr;
}

int64_t VCUDictionary::GetSize() const {
  return static_cast<int64_t>(m_pool->texts.size());
}

bool VCUDictionary::RemoveString(const VCUDictionaryRef* ref) {
  if (!ref) return false;
  const auto it = m_pool->texts.find(std::string_view(ref->text));
  if (it == m_pool->texts.end() || &*it != ref) return false;
  (ref->prev ? ref->prev->next : m_pool->first) = ref->next;
  (ref->next ? ref->next->prev : m_pool->last) = ref->prev;
  m_pool->texts.erase(it);
  return true;
}

void VCUDictionary::Clear() {
  m_pool->texts.clear();
  m_pool->first = nullptr;
  m_pool->last = nullptr;
}
