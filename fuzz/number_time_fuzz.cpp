// libFuzzer target for number and time texts.
//
// The input is one text, read as an int32, an int64, a double, a boolean
// and a date-time. What reads must come back from its own formatting: the
// integer's decimal text, the double's shortest text (bit for bit, any NaN
// for a NaN) and the time's ISO text all read again as the same value.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <utilkit/base/number_text.h>
#include <utilkit/base/vc_time.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 256) return 0;
  const std::string text(reinterpret_cast<const char*>(data), size);
  int32_t small = 0;
  if (VFAscToNum(text.c_str(), &small)) {
    int32_t again = 0;
    if (!VFAscToNum(std::to_string(small).c_str(), &again) || again != small) std::abort();
  }
  int64_t large = 0;
  if (VFAscToNum(text.c_str(), &large)) {
    int64_t again = 0;
    if (!VFAscToNum(std::to_string(large).c_str(), &again) || again != large) std::abort();
  }
  double number = 0;
  if (VFAscToNum(text.c_str(), &number)) {
    double again = 0;
    if (!VFAscToNum(VFFormatDouble(number).c_str(), &again)) std::abort();
    if (std::isnan(number) ? !std::isnan(again) : std::memcmp(&number, &again, sizeof again) != 0) {
      std::abort();
    }
  }
  bool flag = false;
  VFAscToBoolean(text.c_str(), &flag);
  VCTime time;
  if (time.DecodeString(text.c_str(), VCTime::kDecodeDate | VCTime::kDecodeDateTime)) {
    VCTime again;
    if (!again.DecodeString(time.Format().c_str(), VCTime::kDecodeDateTime) || again != time) {
      std::abort();
    }
  }
  return 0;
}
