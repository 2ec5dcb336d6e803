// R5BooleanProperty: a true-or-false property of an R5PropertySet.
//
//   R5BooleanProperty* flag = set.AddBoolean("Calibrated", false);
//   flag->SetValueText("yes");          // true, as VFAscToBoolean reads it
//   VCString text = flag->GetValueText();   // "true"
//
// Ownership: see r5_property.h.
#pragma once

#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/properties/r5_property.h>

class UTILKIT_API R5BooleanProperty : public R5Property {
 public:
  // A defined property named `name` holding `value`.
  explicit R5BooleanProperty(const char* name, bool value = false);

  R5PropertyType GetType() const override { return R5PropertyType::kBoolean; }

  bool Get() const { return m_value; }
  // Stores `value` and marks the property defined; always true.
  bool Set(bool value);

  // "true" or "false".
  VCString GetValueText() const override;
  // Reads the words of VFAscToBoolean ("true", "yes", "on", "1", "false",
  // "no", "off", "0", any case); false, unchanged, for anything else.
  bool SetValueText(const char* text) override;
  std::unique_ptr<R5Property> Clone() const override;

 protected:
  bool HoldsValidValue() const override { return true; }

 private:
  bool m_value;
};
