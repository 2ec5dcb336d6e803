// Number text: reading numbers and booleans from text, writing doubles.
//
// Locale-independent ("." is always the decimal point) and strict: the
// whole text must be the number, apart from white space at either end.
//
//   int32_t n;
//   if (!VFAscToNum(" 42 ", &n)) { ... }      // n == 42
//   VFAscToNum("12abc", &n);                  // false, n unchanged
//   double d;
//   VFAscToNum("1.5e3", &d);                  // d == 1500
//   bool b;
//   VFAscToBoolean("Yes", &b);                // b == true
//   VCString t = VFFormatDouble(0.1);         // "0.1", reads back as 0.1
//
// The readers return false for text that is not a number; they report
// nothing on the error stack (a caller trying several readings in turn is
// not making errors) and leave `*value` unchanged. A null `text` is refused;
// a null `value` only checks the text. White space is as for VCString::Trim.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

// Decimal integer with an optional sign ("+" or "-"); no hex, no grouping,
// no decimal point or exponent. Refused: empty text, trailing characters
// ("12abc", "1.0"), values outside the type's range ("2147483648" for int32).
UTILKIT_API bool VFAscToNum(const char* text, int32_t* value);
UTILKIT_API bool VFAscToNum(const char* text, int64_t* value);

// Decimal floating-point number with an optional sign, decimal point and
// exponent ("-1.5", ".5", "2e-3"), and "inf", "infinity" and "nan" in any
// case (as VFFormatDouble writes them). Refused: empty text, trailing
// characters, hex floats, magnitudes too large or (non-zero) too small for
// a double ("1e400", "1e-400"), the nearest double being taken otherwise.
UTILKIT_API bool VFAscToNum(const char* text, double* value);

// "true", "yes", "on", "1" (true) and "false", "no", "off", "0" (false), in
// any case; anything else is refused.
UTILKIT_API bool VFAscToBoolean(const char* text, bool* value);

// `value` as text. With `significantDigits` 0 (or less): the shortest text
// that VFAscToNum reads back as exactly `value` ("0.1", "100", "1e+20",
// "-0"). With 1 to 17: rounded to that many significant digits, in fixed or
// exponent form as printf's "%.*g" chooses (more than 17 counts as 17).
// Infinities give "inf" and "-inf", every NaN gives "nan".
UTILKIT_API VCString VFFormatDouble(double value, int32_t significantDigits = 0);
