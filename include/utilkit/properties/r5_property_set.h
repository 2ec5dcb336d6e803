// R5PropertySet: an ordered collection of named, typed properties.
//
// Hosts keep the values that describe one object (a test, a channel) in a
// set: each property has a unique, non-empty name (compared exactly) and
// one of the types of r5_property.h. Properties keep the order in which
// they were added; adding a property under a name that is already taken
// replaces the old property in its place.
//
//   R5PropertySet set;
//   set.AddString("Operator", "");
//   R5LongProperty* runs = set.AddLong("Runs", 1);
//   if (runs) runs->SetRange(1, true, 99, true);
//   for (int32_t i = 0; i < set.GetCount(); ++i) use(set.GetProperty(i)->GetName());
//   R5Property* p = set.GetProperty("Runs");   // null when absent
//
// Ownership: the set owns its properties and deletes them on Clear,
// RemoveProperty, replacement, Copy and destruction. Pointers returned by
// the Add and Get members stay valid until then. The Add members that take
// a property store a copy of it.
//
// Look-ups by name are hashed, so building a set of n properties takes O(n).
//
// Failure: the Add members return null for an empty or null name or when
// memory runs out (the set is then unchanged). Nothing is pushed on the
// error stack.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/properties/r5_boolean_property.h>
#include <utilkit/properties/r5_enum_property.h>
#include <utilkit/properties/r5_property.h>
#include <utilkit/properties/r5_ranged_property.h>
#include <utilkit/properties/r5_string_property.h>

class UTILKIT_API R5PropertySet {
 public:
  R5PropertySet() = default;
  ~R5PropertySet();
  R5PropertySet(const R5PropertySet&) = delete;
  R5PropertySet& operator=(const R5PropertySet&) = delete;

  // Replaces the contents by copies of `other`'s properties. False when
  // memory runs out; the set is then unchanged.
  bool Copy(const R5PropertySet& other);
  // Deletes every property.
  void Clear();

  int32_t GetCount() const { return m_properties.GetSize(); }
  // The property at `index` (from 0); null when `index` is out of range.
  R5Property* GetProperty(int32_t index);
  const R5Property* GetProperty(int32_t index) const;
  // The property named `name`; null when there is none (or `name` is null).
  R5Property* GetProperty(const char* name);
  const R5Property* GetProperty(const char* name) const;
  // Deletes the property named `name`; false when there is none.
  bool RemoveProperty(const char* name);

  // New properties, defined and over the whole range of their type (see
  // each class); null as described in the header.
  R5StringProperty* AddString(const char* name, const char* value);
  R5LongProperty* AddLong(const char* name, int32_t value);
  R5HugeProperty* AddHuge(const char* name, int64_t value);
  R5FloatProperty* AddFloat(const char* name, float value);
  R5DoubleProperty* AddDouble(const char* name, double value);
  R5BooleanProperty* AddBoolean(const char* name, bool value);
  // A copy of `property` with its entries and value.
  R5EnumProperty* AddEnum(const R5EnumProperty& property);
  // A copy of any property, also of a host-derived type.
  R5Property* Add(const R5Property& property);

  // True when both sets hold, in the same order, properties with the same
  // definitions (R5Property::HasSameDefinition); values are not compared.
  bool HasSameDefinitions(const R5PropertySet& other) const;

 private:
  int32_t Find(const char* name) const;
  // Stores `property` (null when its creation failed), replacing one of the same name.
  R5Property* Insert(std::unique_ptr<R5Property> property);
  // Rebuilds m_index from m_properties; false when memory runs out.
  bool Reindex();
  template <class P, class... Args>
  P* Create(const char* name, Args... args);

  VCArray<R5Property*> m_properties;                 // owned
  std::unordered_map<std::string, int32_t> m_index;  // name -> position in m_properties
};
