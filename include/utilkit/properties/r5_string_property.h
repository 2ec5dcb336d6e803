// R5StringProperty: a text property of an R5PropertySet.
//
// Any text is a valid value, so a string property is always defined unless
// a host clears the flag. The multi-line flag of R5Property only tells
// editors that the text may hold line feeds; single-line strings accept
// them too.
//
//   R5StringProperty* note = set.AddString("Note", "");
//   note->SetMultiLineString(true);
//   note->Set("first line\nsecond line");
//
// Ownership: see r5_property.h; the property owns a copy of its text.
#pragma once

#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/properties/r5_property.h>

class UTILKIT_API R5StringProperty : public R5Property {
 public:
  // A defined property named `name` holding `value` (null counts as "").
  explicit R5StringProperty(const char* name, const char* value = "");

  R5PropertyType GetType() const override { return R5PropertyType::kString; }

  const VCString& Get() const { return m_value; }
  // Stores `value` (null counts as "") and marks the property defined; always true.
  bool Set(const char* value);

  // The text itself.
  VCString GetValueText() const override { return m_value; }
  // As Set; false only for a null text.
  bool SetValueText(const char* text) override;
  std::unique_ptr<R5Property> Clone() const override;

 protected:
  bool HoldsValidValue() const override { return true; }

 private:
  VCString m_value;
};
