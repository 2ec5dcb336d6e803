// VCUDictionary: a pool of texts that holds each distinct text once.
//
// Inserting a text gives its reference; inserting an equal text again gives
// the same reference, so code that has pooled its texts can test texts for
// equality by comparing references, and store one pointer per value instead
// of a string (the memory table's dictionary-backed text columns, the table
// sort and compression).
//
//   VCUDictionary pool;
//   VCUDictionaryRef* a = pool.InsertString("Force");
//   VCUDictionaryRef* b = pool.InsertString(VCString("Force"));
//   // a == b, pool.GetSize() == 1, pool.GetString(a) is "Force"
//   for (VCUDictionaryRef* r = pool.GetFirstString(); r; r = pool.GetNextString(r))
//     puts(pool.GetString(r));
//
// A reference (`VCUDictionaryRef*`) is an opaque handle: compare it with ==
// and give it back to the dictionary that made it; null means "none". It
// stays valid, and keeps its text, until that text is removed, the
// dictionary is cleared or destroyed; later insertions never move it.
//
// Ownership: the dictionary owns the texts; GetString's pointer lives as
// long as the reference. The dictionary is neither copyable nor movable,
// since references point into it.
//
// Cost: insert and find take O(1) expected time (hashing); finding or
// re-inserting a text already present allocates nothing. The walk visits the
// texts in the order in which they were first inserted.
// Texts are compared byte-wise (case-sensitive); a null text counts as "".
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <utilkit/base/export.h>

// One pooled text (opaque to hosts).
struct VCUDictionaryRef;

class UTILKIT_API VCUDictionary {
 public:
  VCUDictionary();
  ~VCUDictionary();
  VCUDictionary(const VCUDictionary&) = delete;
  VCUDictionary& operator=(const VCUDictionary&) = delete;

  // The reference of `text`, inserting the text when it is absent. Null only
  // when memory runs out (the dictionary is then unchanged).
  VCUDictionaryRef* InsertString(const char* text) { return InsertString(View(text)); }
  VCUDictionaryRef* InsertString(std::string_view text);

  // The reference of `text`, or null when it is not in the pool.
  VCUDictionaryRef* FindString(const char* text) const { return FindString(View(text)); }
  VCUDictionaryRef* FindString(std::string_view text) const;

  // The text of `ref` (zero-terminated); "" for a null reference.
  const char* GetString(const VCUDictionaryRef* ref) const;
  // The same text as a view (its length known, no scan); "" for null.
  std::string_view GetView(const VCUDictionaryRef* ref) const;

  // The first text in insertion order, or null when the pool is empty.
  VCUDictionaryRef* GetFirstString() const;
  // The text inserted after `ref`, or null after the last one (or for null).
  VCUDictionaryRef* GetNextString(const VCUDictionaryRef* ref) const;

  // Number of distinct texts.
  int64_t GetSize() const;

  // Removes the text of `ref`; `ref` is invalid afterwards. False for a null
  // reference or a reference of another dictionary. A reference that was
  // already removed must not be passed again (it no longer points anywhere).
  bool RemoveString(const VCUDictionaryRef* ref);

  // Removes every text; every reference becomes invalid.
  void Clear();

 private:
  static std::string_view View(const char* text) { return text ? text : ""; }

  struct Pool;
  std::unique_ptr<Pool> m_pool;
};
