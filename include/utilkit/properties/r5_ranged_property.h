// R5RangedProperty<T>: a numeric property of an R5PropertySet with a range.
//
// Four types are provided: R5LongProperty (int32_t), R5HugeProperty
// (int64_t), R5FloatProperty and R5DoubleProperty. The range has a lower
// and an upper bound, each with an allow-equal flag that says whether the
// bound itself is a valid value. A new property's range is the whole type:
// for the integers the type's limits, for float and double -infinity and
// +infinity, both bounds allowed. NaN is never a valid value.
//
//   R5DoubleProperty* gain = set.AddDouble("Gain", 1.0);
//   gain->SetRange(0.0, false, 100.0, true);   // 0 < gain <= 100
//   gain->Set(0.0);                            // false: outside, gain stays 1
//   gain->SetValueText("2.5");                 // true, defined
//
// Values never leave the range: Set refuses them, and a SetRange that
// leaves the value held outside marks the property not defined (the value
// is kept, but can be marked defined again only once it is valid). A range
// whose lower bound lies above its upper one admits no value.
//
// Ownership: see r5_property.h.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/properties/r5_property.h>

template <class T>
class R5RangedProperty : public R5Property {
 public:
  // A defined property named `name` holding `value` over the whole type; a
  // NaN `value` is stored as 0 and leaves the property not defined.
  explicit R5RangedProperty(const char* name, T value = T());

  R5PropertyType GetType() const override;

  // The lowest and highest bound of the type: the integer limits, or
  // -infinity and +infinity.
  static T Lowest();
  static T Highest();
  // `value` as text: decimal integers; for float and double the shortest
  // text that reads back as exactly `value` ("0.1", "1e+20", "inf", "nan").
  static VCString ValueToText(T value);

  T Get() const;
  // Stores `value` and marks the property defined; false, unchanged, when
  // `value` is outside the range (or NaN).
  bool Set(T value);

  // Replaces the range. False, unchanged, when a bound is NaN. When the
  // value held falls outside, the property is marked not defined.
  bool SetRange(T min, bool minAllowEqual, T max, bool maxAllowEqual);
  T GetMin() const;
  T GetMax() const;
  bool GetMinAllowEqual() const;
  bool GetMaxAllowEqual() const;
  // True when `value` lies in the range (never for NaN).
  bool IsInRange(T value) const;

  // ValueToText of the value held.
  VCString GetValueText() const override;
  // Reads a number as VFAscToNum does (integers for long and huge; for
  // float also refused when a finite text is too large for a float); false,
  // unchanged, for other text or a value outside the range.
  bool SetValueText(const char* text) override;
  std::unique_ptr<R5Property> Clone() const override;
  // Also compares the bounds and their allow-equal flags.
  bool HasSameDefinition(const R5Property& other) const override;

 protected:
  bool HoldsValidValue() const override;

 private:
  T m_value;
  T m_min;
  T m_max;
  bool m_minAllowEqual = true;
  bool m_maxAllowEqual = true;
};

// The four instantiations live in the library.
extern template class UTILKIT_API R5RangedProperty<int32_t>;
extern template class UTILKIT_API R5RangedProperty<int64_t>;
extern template class UTILKIT_API R5RangedProperty<float>;
extern template class UTILKIT_API R5RangedProperty<double>;

using R5LongProperty = R5RangedProperty<int32_t>;
using R5HugeProperty = R5RangedProperty<int64_t>;
using R5FloatProperty = R5RangedProperty<float>;
using R5DoubleProperty = R5RangedProperty<double>;
