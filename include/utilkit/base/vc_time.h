// VCTime: a calendar date and time of day, to the microsecond.
//
// A plain value without a time zone: the fields are taken as given (a "Z"
// in decoded text is accepted and ignored). Years run from 1 to 9999.
//
// MONTHS COUNT FROM 0: GetMonth() gives 0 for January and 11 for December,
// and SetDateTime takes the month the same way, so a month maps directly to
// the month-name text with code 101 + month. Text (DecodeString, Format)
// uses the usual 01 to 12.
//
//   VCTime t;
//   if (t.DecodeString("2024-02-29T10:20:30.5", VCTime::kDecodeDate | VCTime::kDecodeDateTime)) {
//     int32_t month = t.GetMonth();  // 1 (February)
//     VCString iso = t.Format();     // "2024-02-29T10:20:30.5"
//   }
//
// Ownership: a plain copyable value; it holds no resources.
#pragma once

#include <compare>
#include <cstdint>

#include <utilkit/base/base_errors.h>
#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API VCTime {
 public:
  // DecodeString flags: which forms of text are accepted.
  static constexpr int32_t kDecodeDate = 1;      // "YYYY-MM-DD" (time 00:00:00)
  static constexpr int32_t kDecodeDateTime = 2;  // date, "T" or one blank, "HH:MM[:SS[.fff]]"

  // 1970-01-01T00:00:00.
  VCTime() = default;

  int32_t GetYear() const { return m_year; }
  // 0 = January ... 11 = December.
  int32_t GetMonth() const { return m_month; }
  // 1 to the month's last day.
  int32_t GetDay() const { return m_day; }
  int32_t GetHour() const { return m_hour; }
  int32_t GetMinute() const { return m_minute; }
  int32_t GetSecond() const { return m_second; }
  // 0 to 999999.
  int32_t GetMicrosecond() const { return m_microsecond; }

  // Sets every field (month 0-11, day within that month of that year, hour
  // 0-23, minute and second 0-59, microsecond 0-999999, year 1-9999).
  // Out-of-range values push kVCTimeErrorInvalid, return false and leave
  // the time unchanged.
  bool SetDateTime(int32_t year, int32_t month, int32_t day, int32_t hour = 0, int32_t minute = 0,
                   int32_t second = 0, int32_t microsecond = 0);

  // Parses ISO 8601 text of the forms allowed by `flags` (kDecodeDate,
  // kDecodeDateTime or both): "2024-01-05", "2024-01-05T10:20",
  // "2024-01-05 10:20:30", "2024-01-05T10:20:30.123456Z". The whole text must
  // match: no surrounding blanks, no zone offsets, hour 0-23, second 0-59;
  // fraction digits beyond the sixth are dropped. Months are 01-12 in text.
  // Anything else (null, "", "12", "2024", "2023-02-29") returns false,
  // leaves the time unchanged and pushes nothing: callers use it to probe
  // whether a text is a date.
  bool DecodeString(const char* text, int32_t flags);

  // ISO 8601 "YYYY-MM-DDTHH:MM:SS", with "." and the fraction (trailing zeros
  // dropped) when the microseconds are not 0. DecodeString reads it back.
  VCString Format() const;

  // Seconds since 1970-01-01T00:00:00 (negative before), fraction included.
  double GetSeconds() const;
  // Sets the time from such a count, rounded to the microsecond. A count that
  // is not finite or falls outside years 1-9999 pushes kVCTimeErrorInvalid,
  // returns false and leaves the time unchanged.
  bool SetSeconds(double seconds);

  // Chronological order.
  friend auto operator<=>(const VCTime&, const VCTime&) = default;

 private:
  // Declaration order is the comparison order.
  int32_t m_year = 1970;
  int32_t m_month = 0;
  int32_t m_day = 1;
  int32_t m_hour = 0;
  int32_t m_minute = 0;
  int32_t m_second = 0;
  int32_t m_microsecond = 0;
};
