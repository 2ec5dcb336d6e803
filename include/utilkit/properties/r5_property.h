// R5Property: the common base of the typed properties of an R5PropertySet.
//
// A property has a name, a type, a value and a few flags: "defined" (it
// carries a value), "mandatory" (a host must give it a value) and
// "multi-line string" (a hint to editors that the text may span lines). It
// also carries a description and a help text for the user. The typed
// classes (R5StringProperty, R5BooleanProperty, the ranged numbers
// R5LongProperty, R5HugeProperty, R5FloatProperty, R5DoubleProperty and
// R5EnumProperty) add typed Get and Set members and their ranges.
//
//   R5PropertySet set;
//   R5LongProperty* count = set.AddLong("Count", 0);
//   count->SetRange(1, true, 10, true);        // 0 is outside: no longer defined
//   count->SetMandatory(true);
//   if (!count->SetValueText("12")) { ... }    // refused: out of range, unchanged
//   VCString shown = count->GetValueText();    // "0": the value held, defined or not
//
// Values never leave their range: a setter that is given a value outside
// the range (or text that does not read as a value of the type) returns
// false and leaves the property as it was. A property is defined only while
// it holds a valid value. The framework reports by return value only; it
// pushes nothing on the error stack.
//
// Hosts may derive their own property types; GetType of such a class must
// return a value from R5PropertyType::kFirstHostType on, since the values
// of the built-in types identify the framework's own classes.
//
// Ownership: a property in a set belongs to the set (see r5_property_set.h).
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

// The type of a property; each built-in value names one class of the framework.
enum class R5PropertyType : int32_t {
  kString = 1,           // R5StringProperty
  kLong = 2,             // R5LongProperty (signed 32-bit)
  kHuge = 3,             // R5HugeProperty (signed 64-bit)
  kFloat = 4,            // R5FloatProperty
  kDouble = 5,           // R5DoubleProperty
  kEnum = 6,             // R5EnumProperty
  kBoolean = 7,          // R5BooleanProperty
  kFirstHostType = 1000  // first value free for host-derived types
};

class UTILKIT_API R5Property {
 public:
  // Bits of GetFlags() (enumerators, so that hosts never need them as
  // objects exported by the library).
  enum : int32_t { m_nDefinedMask = 0x1, m_nMandatoryMask = 0x2, m_nMultiLineStringMask = 0x4 };

  virtual ~R5Property();
  R5Property& operator=(const R5Property&) = delete;

  // The keyword of a built-in type in definitions ("string", "long", "huge",
  // "float", "double", "enum", "boolean"); "" for any other value.
  static const char* GetTypeName(R5PropertyType type);

  const VCString& GetName() const { return m_name; }
  virtual R5PropertyType GetType() const = 0;

  // The flag bits (m_n...Mask).
  int32_t GetFlags() const { return m_flags; }
  bool IsDefined() const { return (m_flags & m_nDefinedMask) != 0; }
  bool IsMandatory() const { return (m_flags & m_nMandatoryMask) != 0; }
  bool IsMultiLineString() const { return (m_flags & m_nMultiLineStringMask) != 0; }

  // Marks the property as carrying its value or not. Marking it defined is
  // refused (false, unchanged) while the value held is not valid: outside
  // the range, or no enumeration entry chosen. Clearing always succeeds.
  bool SetDefined(bool defined);
  void SetMandatory(bool mandatory);
  void SetMultiLineString(bool multiLine);

  const VCString& GetDescription() const { return m_description; }
  void SetDescription(const char* description);  // null counts as ""
  // Help text; line breaks are line feeds.
  const VCString& GetHelp() const { return m_help; }
  void SetHelp(const char* help);  // null counts as ""

  // The value held as text, whether defined or not (see each type's text form).
  virtual VCString GetValueText() const = 0;
  // Reads the value from text and marks the property defined. False,
  // unchanged, when the text is null, not a value of the type, or outside the range.
  virtual bool SetValueText(const char* text) = 0;

  // A copy of the property (name, flags, texts, range and value). Throws
  // std::bad_alloc only; R5PropertySet catches it.
  virtual std::unique_ptr<R5Property> Clone() const = 0;
  // True when `other` has the same definition: name, type, mandatory flag,
  // description, help and (in the typed classes) range or entries. Values,
  // the defined flag and the multi-line hint are not compared.
  virtual bool HasSameDefinition(const R5Property& other) const;

 protected:
  // A property named `name` (null counts as ""), defined or not.
  R5Property(const char* name, bool defined);
  R5Property(const R5Property& other);

  // True when the value held may be marked defined.
  virtual bool HoldsValidValue() const = 0;
  // Marks the property defined after a typed setter has stored a valid value.
  void MarkDefined() { m_flags |= m_nDefinedMask; }

 private:
  void SetFlag(int32_t mask, bool on);

  VCString m_name;
  VCString m_description;
  VCString m_help;
  int32_t m_flags = 0;
};
