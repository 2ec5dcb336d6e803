// R5EnumProperty: a property whose value is one of a list of named entries.
//
// The valid entries (R5EnumValue) are kept in the order they were added and
// have distinct, non-empty names. The value is one of them, chosen by name;
// a new enumeration has no entry chosen and is therefore not defined.
//
//   R5EnumProperty unit("Unit");
//   unit.Add(R5EnumValue("mm"));
//   unit.Add(R5EnumValue("inch"));
//   R5EnumProperty* added = set.AddEnum(unit);   // the set keeps a copy
//   added->Set(R5EnumValue("inch"));             // true; GetValue() == 1
//   added->SetValueText("yard");                 // false: not an entry
//
// Ownership: see r5_property.h; the property owns copies of its entries.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/properties/r5_property.h>

// One entry of an enumeration, identified by its name.
class UTILKIT_API R5EnumValue {
 public:
  // An empty value: the value of an enumeration with no entry chosen.
  R5EnumValue() = default;
  explicit R5EnumValue(const char* name) : m_name(name) {}

  const VCString& GetName() const { return m_name; }
  bool IsEmpty() const { return m_name.IsEmpty(); }
  friend bool operator==(const R5EnumValue& a, const R5EnumValue& b) {
    return a.m_name == b.m_name;
  }

 private:
  VCString m_name;
};

class UTILKIT_API R5EnumProperty : public R5Property {
 public:
  // A property named `name` with no entries, not defined.
  explicit R5EnumProperty(const char* name);

  R5PropertyType GetType() const override { return R5PropertyType::kEnum; }

  // Appends a valid entry. False, unchanged, when its name is empty or
  // already an entry, or memory runs out.
  bool Add(const R5EnumValue& value);
  int32_t GetValidCount() const { return m_entries.GetSize(); }
  // The entry at `index` (from 0, in the order added); an empty value when
  // `index` is out of range.
  R5EnumValue GetValidEntry(int32_t index) const;

  // The chosen entry; an empty value when none is chosen.
  R5EnumValue Get() const;
  // Chooses the entry named as `value` and marks the property defined;
  // false, unchanged, when there is no such entry.
  bool Set(const R5EnumValue& value);
  // The index of the chosen entry, -1 when none is chosen.
  int32_t GetValue() const { return m_chosen; }

  // The chosen entry's name ("" when none).
  VCString GetValueText() const override;
  // As Set of the entry with that name; false for null text.
  bool SetValueText(const char* text) override;
  std::unique_ptr<R5Property> Clone() const override;
  // Also compares the entries and their order.
  bool HasSameDefinition(const R5Property& other) const override;

 protected:
  bool HoldsValidValue() const override { return m_chosen >= 0; }

 private:
  int32_t Find(const VCString& name) const;

  VCArray<R5EnumValue> m_entries;
  std::unordered_map<std::string, int32_t> m_index;  // entry name -> position (hashed look-up)
  int32_t m_chosen = -1;
};
