#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_variant.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <exception>
#include <functional>
#include <iterator>
#include <limits>
#include <optional>
#include <type_traits>

namespace {

// Type number of each alternative of VCVariant's storage, by index.
constexpr VTVariantType kTypeOfIndex[] = {
    VTVariantType::Null,         VTVariantType::Short,        VTVariantType::Long,
    VTVariantType::Huge,         VTVariantType::Float,        VTVariantType::Double,
    VTVariantType::String,       VTVariantType::Bool,         VTVariantType::DateTime,
    VTVariantType::ShortBuffer,  VTVariantType::LongBuffer,   VTVariantType::HugeBuffer,
    VTVariantType::FloatBuffer,  VTVariantType::DoubleBuffer, VTVariantType::StringBuffer,
    VTVariantType::StatusBuffer, VTVariantType::PointerBuffer};

// Kinds in comparison order.
enum class Kind { Null, Number, DateTime, Text, Buffer };

// A numeric value, integral or floating.
struct Number {
  bool isInteger = true;
  int64_t integer = 0;
  double real = 0;
};

constexpr Kind KindOfType(VTVariantType type) {
  switch (type) {
    case VTVariantType::Null:
      return Kind::Null;
    case VTVariantType::DateTime:
      return Kind::DateTime;
    case VTVariantType::String:
      return Kind::Text;
    default:
      return type >= VTVariantType::ShortBuffer ? Kind::Buffer : Kind::Number;
  }
}

template <class T>
struct IsBuffer : std::false_type {};
template <class T>
struct IsBuffer<std::vector<T>> : std::true_type {};

template <class T>
int32_t ThreeWay(const T& a, const T& b) {
  const std::less<T> less;
  return less(a, b) ? -1 : (less(b, a) ? 1 : 0);
}

// Exact order of an integer and a finite-or-infinite (not NaN) double.
int32_t CompareIntegerWithReal(int64_t i, double d) {
  constexpr double kTwo63 = 9223372036854775808.0;
  if (d >= kTwo63) return -1;
  if (d < -kTwo63) return 1;
  const double whole = std::trunc(d);
  const int32_t byWhole = ThreeWay(i, static_cast<int64_t>(whole));
  return byWhole != 0 ? byWhole : ThreeWay(0.0, d - whole);
}

int32_t CompareNumbers(const Number& a, const Number& b) {
  if (a.isInteger && b.isInteger) return ThreeWay(a.integer, b.integer);
  const bool aNaN = !a.isInteger && std::isnan(a.real);
  const bool bNaN = !b.isInteger && std::isnan(b.real);
  if (aNaN || bNaN) return ThreeWay(aNaN, bNaN);
  if (a.isInteger) return CompareIntegerWithReal(a.integer, b.real);
  if (b.isInteger) return -CompareIntegerWithReal(b.integer, a.real);
  return ThreeWay(a.real, b.real);
}

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// The number that all of `text` (blanks around it aside) spells, if any.
std::optional<Number> ParseNumber(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  const char* first = text.data();
  const char* last = first + text.size();
  Number n;
  auto [end, error] = std::from_chars(first, last, n.integer);
  if (error == std::errc() && end == last && first != last) return n;
  n.isInteger = false;
  auto [realEnd, realError] = std::from_chars(first, last, n.real);
  if (realError == std::errc() && realEnd == last && first != last) return n;
  return std::nullopt;
}

template <class T>
T ToInteger(const Number& n, bool* ok) {
  using Limits = std::numeric_limits<T>;
  if (n.isInteger) {
    *ok = n.integer >= Limits::min() && n.integer <= Limits::max();
    return static_cast<T>(std::clamp<int64_t>(n.integer, Limits::min(), Limits::max()));
  }
  if (std::isnan(n.real)) {
    *ok = false;
    return 0;
  }
  const double low = static_cast<double>(Limits::min());  // a power of two: exact
  const double whole = std::trunc(n.real);
  *ok = whole >= low && whole < -low;
  if (!*ok) return whole < 0 ? Limits::min() : Limits::max();
  return static_cast<T>(whole);
}

template <class T>
VCString NumberText(T value) {
  char text[64];
  auto [end, error] = std::to_chars(text, text + sizeof text, value);
  return error == std::errc() ? VCString(text, static_cast<size_t>(end - text)) : VCString();
}

void Report(bool* ok, bool value) {
  if (ok) *ok = value;
}

}  // namespace

struct VCVariant::Ops {
  // The variant as a number, if it converts to one.
  static std::optional<Number> ToNumber(const VCVariant& v) {
    return std::visit(
        [](const auto& value) -> std::optional<Number> {
          using T = std::decay_t<decltype(value)>;
          if constexpr (std::is_integral_v<T>) {
            return Number{true, static_cast<int64_t>(value), 0};
          } else if constexpr (std::is_floating_point_v<T>) {
            return Number{false, 0, static_cast<double>(value)};
          } else if constexpr (std::is_same_v<T, VCString>) {
            return ParseNumber(value.view());
          } else if constexpr (std::is_same_v<T, VCTime>) {
            return Number{false, 0, value.GetSeconds()};
          } else {
            return std::nullopt;
          }
        },
        v.m_value);
  }

  template <class T>
  static T Integer(const VCVariant& v, bool* ok) {
    bool converted = false;
    const std::optional<Number> n = ToNumber(v);
    const T value = n ? ToInteger<T>(*n, &converted) : T{0};
    Report(ok, converted);
    return value;
  }

  static int32_t CompareBuffers(const VCVariant& a, const VCVariant& b) {
    const int32_t byType = ThreeWay(a.m_value.index(), b.m_value.index());
    if (byType != 0) return byType;
    return std::visit(
        [&b](const auto& left) -> int32_t {
          using T = std::decay_t<decltype(left)>;
          if constexpr (IsBuffer<T>::value) {
            const T& right = std::get<T>(b.m_value);
            for (size_t i = 0; i < left.size() && i < right.size(); ++i) {
              const int32_t byValue = ThreeWay(left[i], right[i]);
              if (byValue != 0) return byValue;
            }
            return ThreeWay(left.size(), right.size());
          } else {
            return 0;
          }
        },
        a.m_value);
  }

  template <class T>
  static T* SetBuffer(VCVariant& v, int64_t count, const char* location) {
    if (count < 0) {
      VFErrorSet(kVCVariantErrorBufferSize,
                 VCString::Formatted("Invalid buffer size: %lld", static_cast<long long>(count)),
                 location, 0);
      return nullptr;
    }
    try {
      std::vector<T>* buffer = std::get_if<std::vector<T>>(&v.m_value);
      std::vector<T> fresh;
      std::vector<T>& target = buffer ? *buffer : fresh;
      if (static_cast<uint64_t>(count) > target.max_size()) throw std::bad_alloc();
      target.resize(static_cast<size_t>(count));
      if (target.capacity() == 0) target.reserve(1);
      if (!buffer) buffer = &v.m_value.emplace<std::vector<T>>(std::move(fresh));
      return buffer->data();
    } catch (const std::exception&) {
      VFErrorSet(kVCVariantErrorMemory,
                 VCString::Formatted("Out of memory for a buffer of %lld values",
                                     static_cast<long long>(count)),
                 location, 0);
      return nullptr;
    }
  }
};

VCVariant::VCVariant(const char* text) {
  SetString(text);
}

VCVariant::VCVariant(const VCVariant& other) {
  *this = other;
}

VCVariant& VCVariant::operator=(const VCVariant& other) {
  if (this == &other) return *this;
  try {
    m_value = other.m_value;
  } catch (const std::exception&) {
    m_value.emplace<std::monostate>();
    VFErrorSet(kVCVariantErrorMemory, "Out of memory copying a value", "VCVariant::operator=", 0);
  }
  return *this;
}

VTVariantType VCVariant::GetType() const {
  static_assert(std::size(kTypeOfIndex) == std::variant_size_v<decltype(m_value)>);
  return kTypeOfIndex[m_value.index()];
}

bool VCVariant::SetString(const char* text) {
  try {
    m_value.emplace<VCString>(text);
    return true;
  } catch (const std::exception&) {
    m_value.emplace<std::monostate>();
    VFErrorSet(kVCVariantErrorMemory, "Out of memory setting a text", "VCVariant::SetString", 0);
    return false;
  }
}

int16_t VCVariant::GetShort(bool* ok) const {
  return Ops::Integer<int16_t>(*this, ok);
}

int32_t VCVariant::GetLong(bool* ok) const {
  return Ops::Integer<int32_t>(*this, ok);
}

int64_t VCVariant::GetHuge(bool* ok) const {
  return Ops::Integer<int64_t>(*this, ok);
}

float VCVariant::GetFloat(bool* ok) const {
  const double value = GetDouble(ok);
  constexpr double kMax = std::numeric_limits<float>::max();
  if (std::abs(value) > kMax && std::isfinite(value)) {
    Report(ok, false);
    return value < 0 ? -std::numeric_limits<float>::infinity()
                     : std::numeric_limits<float>::infinity();
  }
  return static_cast<float>(value);
}

double VCVariant::GetDouble(bool* ok) const {
  const std::optional<Number> n = Ops::ToNumber(*this);
  Report(ok, n.has_value());
  if (!n) return 0;
  return n->isInteger ? static_cast<double>(n->integer) : n->real;
}

bool VCVariant::GetBool(bool* ok) const {
  if (const VCString* text = std::get_if<VCString>(&m_value)) {
    VCString word = *text;
    word.Trim();
    const bool isTrue = word.CompareNoCase("true") == 0;
    if (isTrue || word.CompareNoCase("false") == 0) {
      Report(ok, true);
      return isTrue;
    }
  }
  std::optional<Number> n;
  if (!std::holds_alternative<VCTime>(m_value)) n = Ops::ToNumber(*this);
  Report(ok, n.has_value());
  return n && (n->isInteger ? n->integer != 0 : n->real != 0);
}

VCString VCVariant::GetString(bool* ok) const {
  try {
    Report(ok, true);
    return std::visit(
        [ok](const auto& value) -> VCString {
          using T = std::decay_t<decltype(value)>;
          if constexpr (std::is_same_v<T, bool>) {
            return value ? "1" : "0";
          } else if constexpr (std::is_arithmetic_v<T>) {
            return NumberText(value);
          } else if constexpr (std::is_same_v<T, VCString>) {
            return value;
          } else if constexpr (std::is_same_v<T, VCTime>) {
            return value.Format();
          } else {
            Report(ok, false);
            return VCString();
          }
        },
        m_value);
  } catch (const std::exception&) {
    Report(ok, false);
    return VCString();
  }
}

VCTime VCVariant::GetTime(bool* ok) const {
  VCTime time;
  if (const VCTime* held = std::get_if<VCTime>(&m_value)) {
    time = *held;
    Report(ok, true);
  } else {
    const VCString* text = std::get_if<VCString>(&m_value);
    Report(ok, text && time.DecodeString(*text, VCTime::kDecodeDate | VCTime::kDecodeDateTime));
  }
  return time;
}

int16_t* VCVariant::SetBuffer_S(int64_t count) {
  return Ops::SetBuffer<int16_t>(*this, count, "VCVariant::SetBuffer_S");
}

int32_t* VCVariant::SetBuffer_L(int64_t count) {
  return Ops::SetBuffer<int32_t>(*this, count, "VCVariant::SetBuffer_L");
}

int64_t* VCVariant::SetBuffer_H(int64_t count) {
  return Ops::SetBuffer<int64_t>(*this, count, "VCVariant::SetBuffer_H");
}

float* VCVariant::SetBuffer_F(int64_t count) {
  return Ops::SetBuffer<float>(*this, count, "VCVariant::SetBuffer_F");
}

double* VCVariant::SetBuffer_D(int64_t count) {
  return Ops::SetBuffer<double>(*this, count, "VCVariant::SetBuffer_D");
}

VCString* VCVariant::SetBuffer_T(int64_t count) {
  return Ops::SetBuffer<VCString>(*this, count, "VCVariant::SetBuffer_T");
}

uint16_t* VCVariant::SetBuffer_U(int64_t count) {
  return Ops::SetBuffer<uint16_t>(*this, count, "VCVariant::SetBuffer_U");
}

void** VCVariant::SetBuffer_P(int64_t count) {
  return Ops::SetBuffer<void*>(*this, count, "VCVariant::SetBuffer_P");
}

int64_t VCVariant::GetBufferSize() const {
  return std::visit(
      [](const auto& value) -> int64_t {
        if constexpr (IsBuffer<std::decay_t<decltype(value)>>::value) {
          return static_cast<int64_t>(value.size());
        } else {
          return 0;
        }
      },
      m_value);
}

int32_t VCVariant::Compare(const VCVariant& other, int32_t flags) const {
  const Kind mine = KindOfType(GetType());
  const Kind theirs = KindOfType(other.GetType());
  if ((flags & kCompareConvert) && (mine == Kind::Text) != (theirs == Kind::Text)) {
    const bool textIsMine = mine == Kind::Text;
    const VCVariant& text = textIsMine ? *this : other;
    const VCVariant& value = textIsMine ? other : *this;
    const int32_t sign = textIsMine ? 1 : -1;
    if (KindOfType(value.GetType()) == Kind::Number) {
      if (const std::optional<Number> n = Ops::ToNumber(text)) {
        return sign * CompareNumbers(*n, *Ops::ToNumber(value));
      }
    } else if (KindOfType(value.GetType()) == Kind::DateTime) {
      bool decoded = false;
      const VCTime time = text.GetTime(&decoded);
      if (decoded) return sign * ThreeWay(time, std::get<VCTime>(value.m_value));
    }
  }
  if (mine != theirs) return ThreeWay(mine, theirs);
  switch (mine) {
    case Kind::Number:
      return CompareNumbers(*Ops::ToNumber(*this), *Ops::ToNumber(other));
    case Kind::DateTime:
      return ThreeWay(std::get<VCTime>(m_value), std::get<VCTime>(other.m_value));
    case Kind::Text: {
      const VCString& a = std::get<VCString>(m_value);
      const VCString& b = std::get<VCString>(other.m_value);
      const int byText = (flags & kCompareNoCase) ? a.CompareNoCase(b) : a.Compare(b);
      return ThreeWay(byText, 0);
    }
    case Kind::Buffer:
      return Ops::CompareBuffers(*this, other);
    case Kind::Null:
      break;
  }
  return 0;
}
