// VCVariant: one value of one of several types, or a typed buffer of values.
//
// A scalar variant is null or holds a 16-, 32- or 64-bit integer, a float, a
// double, a text, a boolean or a date and time; it converts to any of them and
// compares with a three-way Compare. A buffer variant holds a contiguous array
// of N values of one type; the table code reads columns into such buffers and
// works on them through a plain pointer.
//
//   VCVariant v(int32_t{2});
//   v.Compare(VCVariant(2.5), 0);           // < 0: numbers compare by value
//   VCString text = v.GetString();          // "2"
//   double* d = v.SetBuffer_D(rows);        // now a buffer of `rows` doubles
//   table->GetValues_D(col, 1, rows, d);
//
// Ownership: a variant owns its text and its buffer; copies are deep and
// independent. A buffer pointer stays valid until the variant is changed
// (another Set..., assignment, destruction).
//
// Type numbers (GetType) are fixed: the scalars 1 to 6 match the table column
// types (1 short ... 6 text); 7 is boolean; 25 is date and time; the buffers
// are 30 + the column type letter's number (31 short ... 36 text), 37 status
// words and 38 pointers.
//
// Conversions (Get...) never push errors; they report through `ok` (optional):
// - a null converts to 0, "" or false with ok false;
// - numbers convert to one another by value; a fraction is cut towards zero,
//   a value outside the target's range is clamped to it with ok false, and
//   NaN gives 0 with ok false; booleans are the numbers 0 and 1;
// - a text converts to a number when, after trimming blanks, all of it is a
//   decimal integer or floating-point number ("42", "-1.5e3", "+7"); any
//   other text gives 0 with ok false; GetBool also takes "true" and "false"
//   in any case; GetTime takes the ISO forms of VCTime::DecodeString;
// - a date and time converts to its VCTime::GetSeconds count as a number
//   (not to a boolean); numbers do not convert to a date and time;
// - GetString gives integers in decimal, floats and doubles as the shortest
//   text that reads back to the same value ("0.1", "1e+21", "nan", "inf"),
//   booleans as "1"/"0", date-times as VCTime::Format;
// - a buffer converts to nothing (0, "", ok false).
#pragma once

#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

#include <utilkit/base/base_errors.h>
#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_time.h>

enum class VTVariantType : int32_t {
  Null = 0,
  Short = 1,
  Long = 2,
  Huge = 3,
  Float = 4,
  Double = 5,
  String = 6,
  Bool = 7,
  DateTime = 25,
  ShortBuffer = 31,
  LongBuffer = 32,
  HugeBuffer = 33,
  FloatBuffer = 34,
  DoubleBuffer = 35,
  StringBuffer = 36,
  StatusBuffer = 37,
  PointerBuffer = 38,
};

class UTILKIT_API VCVariant {
 public:
  // Compare flags.
  // Texts compare ignoring the case of ASCII letters.
  static constexpr int32_t kCompareNoCase = 1;
  // A text compared with a number or a date-time is first converted to that
  // kind (as GetDouble / GetTime would), and compared by value when that
  // works; tree filters and sorts use this so "3" matches 3.
  static constexpr int32_t kCompareConvert = 2;

  VCVariant() = default;  // null
  explicit VCVariant(int16_t value) : m_value(std::in_place_type<int16_t>, value) {}
  explicit VCVariant(int32_t value) : m_value(std::in_place_type<int32_t>, value) {}
  explicit VCVariant(int64_t value) : m_value(std::in_place_type<int64_t>, value) {}
  explicit VCVariant(float value) : m_value(std::in_place_type<float>, value) {}
  explicit VCVariant(double value) : m_value(std::in_place_type<double>, value) {}
  explicit VCVariant(bool value) : m_value(std::in_place_type<bool>, value) {}
  explicit VCVariant(const char* text);  // null `text` is ""
  explicit VCVariant(const VCTime& time) : m_value(std::in_place_type<VCTime>, time) {}
  // A copy that cannot be allocated leaves a null variant and pushes
  // kVCVariantErrorMemory.
  VCVariant(const VCVariant& other);
  VCVariant& operator=(const VCVariant& other);
  VCVariant(VCVariant&& other) noexcept = default;
  VCVariant& operator=(VCVariant&& other) noexcept = default;
  ~VCVariant() = default;

  VTVariantType GetType() const;
  bool IsNull() const { return m_value.index() == 0; }
  bool IsString() const { return std::holds_alternative<VCString>(m_value); }

  // Scalar setters; each replaces whatever the variant held (and frees a buffer).
  void SetNull() { m_value.emplace<std::monostate>(); }
  void SetShort(int16_t value) { m_value.emplace<int16_t>(value); }
  void SetLong(int32_t value) { m_value.emplace<int32_t>(value); }
  void SetHuge(int64_t value) { m_value.emplace<int64_t>(value); }
  void SetFloat(float value) { m_value.emplace<float>(value); }
  void SetDouble(double value) { m_value.emplace<double>(value); }
  void SetBool(bool value) { m_value.emplace<bool>(value); }
  void SetTime(const VCTime& time) { m_value.emplace<VCTime>(time); }
  // Null `text` is "". Out of memory: pushes kVCVariantErrorMemory, leaves
  // a null variant and returns false.
  bool SetString(const char* text);

  // Conversions: see the header comment. `ok` may be null.
  int16_t GetShort(bool* ok = nullptr) const;
  int32_t GetLong(bool* ok = nullptr) const;
  int64_t GetHuge(bool* ok = nullptr) const;
  float GetFloat(bool* ok = nullptr) const;
  double GetDouble(bool* ok = nullptr) const;
  bool GetBool(bool* ok = nullptr) const;
  VCString GetString(bool* ok = nullptr) const;
  // A date-time, or a text that VCTime::DecodeString(text, 3) accepts;
  // anything else gives VCTime() with ok false.
  VCTime GetTime(bool* ok = nullptr) const;

  // Makes the variant a buffer that takes over `values` (no copy; `values`
  // is left empty). T is one of the buffer element types below.
  template <class T>
  void AdoptBuffer(std::vector<T>&& values) {
    m_value = std::move(values);
    std::vector<T>().swap(values);
  }

  // Typed buffers. SetBuffer_X(count) makes the variant a buffer of `count`
  // values and returns a pointer to them (never null on success, even for 0).
  // If the variant already is a buffer of that type its storage is reused and
  // its first min(old, new) values are kept; otherwise the values start as 0
  // (or "" / null). A negative count pushes kVCVariantErrorBufferSize, an
  // allocation failure kVCVariantErrorMemory; both return null and leave the
  // variant unchanged. Letters: S int16, L int32 (also enum codes), H int64,
  // F float, D double, T text, U status words, P untyped pointers.
  int16_t* SetBuffer_S(int64_t count);
  int32_t* SetBuffer_L(int64_t count);
  int64_t* SetBuffer_H(int64_t count);
  float* SetBuffer_F(int64_t count);
  double* SetBuffer_D(int64_t count);
  VCString* SetBuffer_T(int64_t count);
  uint16_t* SetBuffer_U(int64_t count);
  void** SetBuffer_P(int64_t count);

  // The buffer's values, or null when the variant is not a buffer of that type.
  int16_t* GetBuffer_S() { return Buffer<int16_t>(); }
  const int16_t* GetBuffer_S() const { return Buffer<int16_t>(); }
  int32_t* GetBuffer_L() { return Buffer<int32_t>(); }
  const int32_t* GetBuffer_L() const { return Buffer<int32_t>(); }
  int64_t* GetBuffer_H() { return Buffer<int64_t>(); }
  const int64_t* GetBuffer_H() const { return Buffer<int64_t>(); }
  float* GetBuffer_F() { return Buffer<float>(); }
  const float* GetBuffer_F() const { return Buffer<float>(); }
  double* GetBuffer_D() { return Buffer<double>(); }
  const double* GetBuffer_D() const { return Buffer<double>(); }
  VCString* GetBuffer_T() { return Buffer<VCString>(); }
  const VCString* GetBuffer_T() const { return Buffer<VCString>(); }
  uint16_t* GetBuffer_U() { return Buffer<uint16_t>(); }
  const uint16_t* GetBuffer_U() const { return Buffer<uint16_t>(); }
  void** GetBuffer_P() { return Buffer<void*>(); }
  void* const* GetBuffer_P() const { return Buffer<void*>(); }
  // Number of values in the buffer; 0 when the variant is not a buffer.
  int64_t GetBufferSize() const;

  // Three-way comparison: -1, 0 or 1. Order of kinds: null first, then
  // numbers (all numeric types and booleans, by value; NaN after every other
  // number and equal to NaN), then date-times (chronological), then texts
  // (byte-wise, or see kCompareNoCase), then buffers (by type number, then
  // value by value, then size). Values of different kinds order by kind,
  // except as kCompareConvert allows.
  int32_t Compare(const VCVariant& other, int32_t flags = 0) const;

  // Compare with flags 0.
  friend bool operator==(const VCVariant& a, const VCVariant& b) { return a.Compare(b) == 0; }
  friend bool operator<(const VCVariant& a, const VCVariant& b) { return a.Compare(b) < 0; }
  friend bool operator>(const VCVariant& a, const VCVariant& b) { return a.Compare(b) > 0; }

 private:
  struct Ops;  // conversion and comparison helpers, in the source file

  template <class T>
  T* Buffer() {
    auto* buffer = std::get_if<std::vector<T>>(&m_value);
    return buffer ? buffer->data() : nullptr;
  }
  template <class T>
  const T* Buffer() const {
    auto* buffer = std::get_if<std::vector<T>>(&m_value);
    return buffer ? buffer->data() : nullptr;
  }

  // Alternative order matters: the source file maps index to VTVariantType.
  std::variant<std::monostate, int16_t, int32_t, int64_t, float, double, VCString, bool, VCTime,
               std::vector<int16_t>, std::vector<int32_t>, std::vector<int64_t>, std::vector<float>,
               std::vector<double>, std::vector<VCString>, std::vector<uint16_t>,
               std::vector<void*>>
      m_value;
};
