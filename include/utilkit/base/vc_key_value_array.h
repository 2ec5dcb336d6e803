// VCKeyValueArray: an ordered list of key = value text pairs.
//
// Holds a short list of named settings, such as the modifiers of one tree
// operation ("Name{TYPE=ALPHA,NUM=3}" gives TYPE = ALPHA and NUM = 3). Each
// key appears at most once; pairs stay in the order in which their keys
// were first set.
//
//   VCKeyValueArray modifiers;
//   modifiers.SetValue("TYPE", "PROP");
//   modifiers.SetValue("TYPE", "ALPHA");     // replaces: still one pair
//   VCString type;
//   if (modifiers.GetValue("TYPE", &type)) { ... }   // "ALPHA"
//   for (int32_t i = 0; i < modifiers.GetSize(); ++i)
//     Use(modifiers.GetKeyAt(i), modifiers.GetValueAt(i));
//
// Keys are compared exactly (byte-wise, case-sensitive), so "TYPE" and
// "type" are two keys; callers that want case-insensitive keys normalise
// them first. Lookups are linear: the class is meant for short lists.
//
// Ownership: the array owns copies of its texts; copies are independent.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API VCKeyValueArray {
 public:
  // Sets the value of `key`: replaces the value when the key is present,
  // else appends the pair. Null texts count as "". False only when memory
  // runs out (array unchanged).
  bool SetValue(const char* key, const char* value);

  // True and `*value` set when `key` is present; false (and `*value`
  // untouched) otherwise. `value` may be null to test for the key.
  bool GetValue(const char* key, VCString* value) const;

  // Index of `key`, or -1.
  int32_t Find(const char* key) const;

  int32_t GetSize() const { return static_cast<int32_t>(m_pairs.size()); }
  // Key / value of pair `index`; "" for an index outside [0, GetSize()).
  const VCString& GetKeyAt(int32_t index) const;
  const VCString& GetValueAt(int32_t index) const;

  void RemoveAll() { m_pairs.clear(); }

 private:
  std::vector<std::pair<VCString, VCString>> m_pairs;
};
