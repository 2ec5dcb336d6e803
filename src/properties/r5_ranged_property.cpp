#include <utilkit/base/number_text.h>
#include <utilkit/properties/r5_ranged_property.h>

#include <cinttypes>
#include <cmath>
#include <limits>
#include <type_traits>

namespace {

template <class T>
constexpr R5PropertyType kTypeOf = std::is_same_v<T, int32_t>   ? R5PropertyType::kLong
                                   : std::is_same_v<T, int64_t> ? R5PropertyType::kHuge
                                   : std::is_same_v<T, float>   ? R5PropertyType::kFloat
                                                                : R5PropertyType::kDouble;

template <class T>
bool IsNaN(T value) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::isnan(value);
  } else {
    return false;
  }
}

// Reads `text` as a T; floats must not overflow to infinity.
template <class T>
bool ReadValue(const char* text, T* value) {
  if constexpr (std::is_same_v<T, float>) {
    double wide = 0;
    if (!VFAscToNum(text, &wide)) return false;
    const float narrow = static_cast<float>(wide);
    if (std::isinf(narrow) && !std::isinf(wide)) return false;
    *value = narrow;
    return true;
  } else {
    return VFAscToNum(text, value);
  }
}

}  // namespace

template <class T>
R5RangedProperty<T>::R5RangedProperty(const char* name, T value)
    : R5Property(name, !IsNaN(value)),
      m_value(IsNaN(value) ? T() : value),
      m_min(Lowest()),
      m_max(Highest()) {}

template <class T>
R5PropertyType R5RangedProperty<T>::GetType() const {
  return kTypeOf<T>;
}

template <class T>
T R5RangedProperty<T>::Lowest() {
  if constexpr (std::is_floating_point_v<T>) {
    return -std::numeric_limits<T>::infinity();
  } else {
    return std::numeric_limits<T>::lowest();
  }
}

template <class T>
T R5RangedProperty<T>::Highest() {
  if constexpr (std::is_floating_point_v<T>) {
    return std::numeric_limits<T>::infinity();
  } else {
    return std::numeric_limits<T>::max();
  }
}

template <class T>
VCString R5RangedProperty<T>::ValueToText(T value) {
  if constexpr (std::is_same_v<T, int32_t>) {
    return VCString::Formatted("%" PRId32, value);
  } else if constexpr (std::is_same_v<T, int64_t>) {
    return VCString::Formatted("%" PRId64, value);
  } else if constexpr (std::is_same_v<T, float>) {
    // The fewest significant digits that read back as the same float.
    for (int32_t digits = 1; digits < std::numeric_limits<float>::max_digits10; ++digits) {
      VCString text = VFFormatDouble(value, digits);
      float back = 0;
      if (ReadValue(text, &back) && back == value) return text;
    }
    return VFFormatDouble(value, std::numeric_limits<float>::max_digits10);
  } else {
    return VFFormatDouble(value);
  }
}

template <class T>
T R5RangedProperty<T>::Get() const {
  return m_value;
}

template <class T>
bool R5RangedProperty<T>::Set(T value) {
  if (!IsInRange(value)) return false;
  m_value = value;
  MarkDefined();
  return true;
}

template <class T>
bool R5RangedProperty<T>::SetRange(T min, bool minAllowEqual, T max, bool maxAllowEqual) {
  if (IsNaN(min) || IsNaN(max)) return false;
  m_min = min;
  m_max = max;
  m_minAllowEqual = minAllowEqual;
  m_maxAllowEqual = maxAllowEqual;
  if (!IsInRange(m_value)) SetDefined(false);
  return true;
}

template <class T>
T R5RangedProperty<T>::GetMin() const {
  return m_min;
}

template <class T>
T R5RangedProperty<T>::GetMax() const {
  return m_max;
}

template <class T>
bool R5RangedProperty<T>::GetMinAllowEqual() const {
  return m_minAllowEqual;
}

template <class T>
bool R5RangedProperty<T>::GetMaxAllowEqual() const {
  return m_maxAllowEqual;
}

template <class T>
bool R5RangedProperty<T>::IsInRange(T value) const {
  if (IsNaN(value)) return false;
  const bool aboveMin = m_minAllowEqual ? value >= m_min : value > m_min;
  const bool belowMax = m_maxAllowEqual ? value <= m_max : value < m_max;
  return aboveMin && belowMax;
}

template <class T>
VCString R5RangedProperty<T>::GetValueText() const {
  return ValueToText(m_value);
}

template <class T>
bool R5RangedProperty<T>::SetValueText(const char* text) {
  T value{};
  return text && ReadValue(text, &value) && Set(value);
}

template <class T>
std::unique_ptr<R5Property> R5RangedProperty<T>::Clone() const {
  return std::make_unique<R5RangedProperty<T>>(*this);
}

template <class T>
bool R5RangedProperty<T>::HasSameDefinition(const R5Property& other) const {
  if (!R5Property::HasSameDefinition(other)) return false;
  const auto& same = static_cast<const R5RangedProperty<T>&>(other);
  return m_min == same.m_min && m_max == same.m_max && m_minAllowEqual == same.m_minAllowEqual &&
         m_maxAllowEqual == same.m_maxAllowEqual;
}

template <class T>
bool R5RangedProperty<T>::HoldsValidValue() const {
  return IsInRange(m_value);
}

template class R5RangedProperty<int32_t>;
template class R5RangedProperty<int64_t>;
template class R5RangedProperty<float>;
template class R5RangedProperty<double>;
