#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_time.h>

#include <cmath>
#include <string>

namespace {

constexpr int64_t kSecondsPerDay = 86400;
constexpr int64_t kMicrosPerSecond = 1000000;

bool IsLeapYear(int32_t year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// Days in month `month` (0-11) of `year`.
int32_t DaysInMonth(int32_t year, int32_t month) {
  static constexpr int32_t kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 1 && IsLeapYear(year) ? 29 : kDays[month];
}

bool IsValid(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t second,
             int32_t microsecond) {
  return year >= 1 && year <= 9999 && month >= 0 && month <= 11 && day >= 1 &&
         day <= DaysInMonth(year, month) && hour >= 0 && hour <= 23 && minute >= 0 &&
         minute <= 59 && second >= 0 && second <= 59 && microsecond >= 0 &&
         microsecond < kMicrosPerSecond;
}

// Days since 1970-01-01 of a proleptic Gregorian date (month 1-12).
int64_t DaysFromCivil(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const int64_t yoe = year - era * 400;
  const int64_t doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

// Inverse of DaysFromCivil; month 1-12.
void CivilFromDays(int64_t days, int32_t* year, int32_t* month, int32_t* day) {
  days += 719468;
  const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const int64_t doe = days - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  *day = static_cast<int32_t>(doy - (153 * mp + 2) / 5 + 1);
  *month = static_cast<int32_t>(mp < 10 ? mp + 3 : mp - 9);
  *year = static_cast<int32_t>(yoe + era * 400 + (*month <= 2));
}

// Reads exactly `count` digits at `*p` into `*value`; advances `*p`.
bool ReadDigits(const char** p, int count, int32_t* value) {
  int32_t v = 0;
  for (int i = 0; i < count; ++i) {
    const char c = (*p)[i];
    if (c < '0' || c > '9') return false;
    v = v * 10 + (c - '0');
  }
  *p += count;
  *value = v;
  return true;
}

bool ReadDigitsAfter(const char** p, char separator, int count, int32_t* value) {
  if (**p != separator) return false;
  ++*p;
  return ReadDigits(p, count, value);
}

// Reads ".fff" into microseconds (digits beyond the sixth are dropped).
bool ReadFraction(const char** p, int32_t* microsecond) {
  if (**p != '.') return true;
  ++*p;
  const char* start = *p;
  int32_t scale = 100000;
  for (; **p >= '0' && **p <= '9'; ++*p, scale /= 10) *microsecond += (**p - '0') * scale;
  return *p != start;
}

}  // namespace

bool VCTime::SetDateTime(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute,
                         int32_t second, int32_t microsecond) {
  if (!IsValid(year, month, day, hour, minute, second, microsecond)) {
    VFErrorSet(kVCTimeErrorInvalid,
               VCString::Formatted("Invalid date or time: %d-%d-%d %d:%d:%d.%d (month from 0)",
                                   year, month, day, hour, minute, second, microsecond),
               "VCTime::SetDateTime", 0);
    return false;
  }
  m_year = year;
  m_month = month;
  m_day = day;
  m_hour = hour;
  m_minute = minute;
  m_second = second;
  m_microsecond = microsecond;
  return true;
}

bool VCTime::DecodeString(const char* text, int32_t flags) {
  if (!text) return false;
  const char* p = text;
  int32_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, micro = 0;
  if (!ReadDigits(&p, 4, &year) || !ReadDigitsAfter(&p, '-', 2, &month) ||
      !ReadDigitsAfter(&p, '-', 2, &day)) {
    return false;
  }
  if (*p == '\0') {
    if (!(flags & kDecodeDate)) return false;
  } else {
    if (!(flags & kDecodeDateTime) || (*p != 'T' && *p != ' ')) return false;
    ++p;
    if (!ReadDigits(&p, 2, &hour) || !ReadDigitsAfter(&p, ':', 2, &minute)) return false;
    if (*p == ':' && (!ReadDigitsAfter(&p, ':', 2, &second) || !ReadFraction(&p, &micro))) {
      return false;
    }
    if (*p == 'Z') ++p;
    if (*p != '\0') return false;
  }
  if (!IsValid(year, month - 1, day, hour, minute, second, micro)) return false;
  return SetDateTime(year, month - 1, day, hour, minute, second, micro);
}

VCString VCTime::Format() const {
  VCString text = VCString::Formatted("%04d-%02d-%02dT%02d:%02d:%02d", m_year, m_month + 1, m_day,
                                      m_hour, m_minute, m_second);
  if (m_microsecond != 0) {
    std::string fraction = VCString::Formatted(".%06d", m_microsecond).str();
    fraction.erase(fraction.find_last_not_of('0') + 1);
    text += fraction.c_str();
  }
  return text;
}

double VCTime::GetSeconds() const {
  const int64_t days = DaysFromCivil(m_year, m_month + 1, m_day);
  const int64_t seconds = days * kSecondsPerDay + m_hour * 3600 + m_minute * 60 + m_second;
  return static_cast<double>(seconds) + static_cast<double>(m_microsecond) / kMicrosPerSecond;
}

bool VCTime::SetSeconds(double seconds) {
  static const double kFirst = static_cast<double>(DaysFromCivil(1, 1, 1) * kSecondsPerDay);
  static const double kEnd = static_cast<double>(DaysFromCivil(10000, 1, 1) * kSecondsPerDay);
  const double micros = std::round(seconds * kMicrosPerSecond);
  if (!(micros >= kFirst * kMicrosPerSecond && micros < kEnd * kMicrosPerSecond)) {
    VFErrorSet(kVCTimeErrorInvalid, VCString::Formatted("Invalid time in seconds: %g", seconds),
               "VCTime::SetSeconds", 0);
    return false;
  }
  const int64_t total = static_cast<int64_t>(micros);
  const int64_t microsPerDay = kSecondsPerDay * kMicrosPerSecond;
  const int64_t days = total / microsPerDay - (total % microsPerDay < 0);
  const int64_t inDay = total - days * microsPerDay;
  const int64_t second = inDay / kMicrosPerSecond;
  int32_t year = 0, month = 0, day = 0;
  CivilFromDays(days, &year, &month, &day);
  return SetDateTime(year, month - 1, day, static_cast<int32_t>(second / 3600),
                     static_cast<int32_t>(second / 60 % 60), static_cast<int32_t>(second % 60),
                     static_cast<int32_t>(inDay % kMicrosPerSecond));
}
