#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_time.h>

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

constexpr int32_t kAny = VCTime::kDecodeDate | VCTime::kDecodeDateTime;

class VCTimeTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  static VCTime Decoded(const char* text) {
    VCTime t;
    EXPECT_TRUE(t.DecodeString(text, kAny)) << text;
    return t;
  }
};

TEST_F(VCTimeTest, FieldsCountMonthsFromZero) {
  const VCTime t = Decoded("2024-12-31T23:58:57.25");
  EXPECT_EQ(t.GetYear(), 2024);
  EXPECT_EQ(t.GetMonth(), 11);
  EXPECT_EQ(t.GetDay(), 31);
  EXPECT_EQ(t.GetHour(), 23);
  EXPECT_EQ(t.GetMinute(), 58);
  EXPECT_EQ(t.GetSecond(), 57);
  EXPECT_EQ(t.GetMicrosecond(), 250000);
  EXPECT_EQ(VCTime().Format(), "1970-01-01T00:00:00");
}

TEST_F(VCTimeTest, DecodesIsoDatesAndDateTimesAndFormatsThemBack) {
  // Leap days follow the Gregorian rules (1900 and 2100 are refused below).
  const std::pair<const char*, const char*> cases[] = {
      {"2024-01-05", "2024-01-05T00:00:00"},
      {"2024-01-05T10:20:30", "2024-01-05T10:20:30"},
      {"2024-01-05 10:20:30", "2024-01-05T10:20:30"},
      {"2024-01-05T10:20:30Z", "2024-01-05T10:20:30"},
      {"2024-01-05T10:20:30.25", "2024-01-05T10:20:30.25"},
      {"2024-01-05T10:20:30.1234569Z", "2024-01-05T10:20:30.123456"},
      {"2024-01-05T10:20:30.000120", "2024-01-05T10:20:30.00012"},
      {"2024-12-31T23:59", "2024-12-31T23:59:00"},
      {"0001-09-05T07:08:09.5", "0001-09-05T07:08:09.5"},
      {"2024-02-29", "2024-02-29T00:00:00"},
      {"2000-02-29", "2000-02-29T00:00:00"},
  };
  for (const auto& [text, formatted] : cases) {
    EXPECT_EQ(Decoded(text).Format(), formatted) << text;
    EXPECT_EQ(Decoded(formatted), Decoded(text)) << text;
  }
}

TEST_F(VCTimeTest, RefusesEverythingElseWithoutTouchingTheValueOrTheStack) {
  VCTime t = Decoded("2000-06-15T01:02:03");
  const VCTime before = t;
  const char* const texts[] = {"",           "2024-00-10",  "2024-01-05T",
                               "12",         "2024-01-32",  " 2024-01-05",
                               "-12",        "1900-02-29",  "2024-01-05T10:60",
                               "2.5",        "2024/01/05",  "2024-01-05TT10:20",
                               "2024",       "2100-02-29",  "2024-01-05T24:00:00",
                               "2024-01",    "2024-04-31",  "2024-01-05T10:20:60",
                               "2024-1-5",   "2024-13-01",  "2024-01-05T10:20:30.",
                               "2023-02-29", "2024-01-05 ", "2024-01-05T10:20:30ZZ",
                               "0000-01-01", "2024-01-05x", "2024-01-05T10:20:30+01:00",
                               nullptr};
  for (const char* text : texts) EXPECT_FALSE(t.DecodeString(text, kAny)) << (text ? text : "");
  EXPECT_EQ(t, before);
  EXPECT_EQ(VFErrorGetCount(), 0u);
}
TEST_F(VCTimeTest, FlagsChooseTheAcceptedForms) {
  VCTime t;
  EXPECT_TRUE(t.DecodeString("2024-01-05", VCTime::kDecodeDate));
  EXPECT_FALSE(t.DecodeString("2024-01-05T10:20", VCTime::kDecodeDate));
  EXPECT_TRUE(t.DecodeString("2024-01-05T10:20", VCTime::kDecodeDateTime));
  EXPECT_FALSE(t.DecodeString("2024-01-05", VCTime::kDecodeDateTime));
  EXPECT_FALSE(t.DecodeString("2024-01-05", 0));
}
TEST_F(VCTimeTest, SetDateTimeTakesMonthsFromZeroAndValidates) {
  VCTime t;
  EXPECT_TRUE(t.SetDateTime(2024, 0, 31, 23, 59, 59, 999999));
  EXPECT_EQ(t.Format(), "2024-01-31T23:59:59.999999");
  EXPECT_TRUE(t.SetDateTime(2024, 1, 29));
  EXPECT_EQ(t.Format(), "2024-02-29T00:00:00");
  const VCTime before = t;
  EXPECT_FALSE(t.SetDateTime(2024, 1, 30));
  EXPECT_FALSE(t.SetDateTime(2024, 12, 1));
  EXPECT_FALSE(t.SetDateTime(2024, -1, 1));
  EXPECT_FALSE(t.SetDateTime(2024, 0, 1, 0, 0, 0, 1000000));
  EXPECT_FALSE(t.SetDateTime(10000, 0, 1));
  EXPECT_EQ(t, before);
  EXPECT_EQ(VFErrorGetCount(), 5u);
  EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kVCTimeErrorInvalid);
  EXPECT_STREQ(VFErrorGetLocation(VFGetUtLibError()), "VCTime::SetDateTime");
}

TEST_F(VCTimeTest, SecondsCountFromTheEpochBothWays) {
  EXPECT_EQ(VCTime().GetSeconds(), 0.0);
  EXPECT_EQ(Decoded("1970-01-02").GetSeconds(), 86400.0);
  EXPECT_EQ(Decoded("1969-12-31T23:59:59.5").GetSeconds(), -0.5);
  EXPECT_EQ(Decoded("2000-03-01").GetSeconds(), 951868800.0);
  VCTime t;
  ASSERT_TRUE(t.SetSeconds(-0.5));
  EXPECT_EQ(t.Format(), "1969-12-31T23:59:59.5");
  const VCTime leap = Decoded("2024-02-29T12:34:56.789");
  ASSERT_TRUE(t.SetSeconds(leap.GetSeconds()));
  EXPECT_EQ(t, leap);
  ASSERT_TRUE(t.SetSeconds(Decoded("0001-01-01").GetSeconds()));
  EXPECT_EQ(t.Format(), "0001-01-01T00:00:00");

  // Counts outside the calendar are refused.
  const VCTime before = t;
  EXPECT_FALSE(t.SetSeconds(std::nan("")));
  EXPECT_FALSE(t.SetSeconds(INFINITY));
  EXPECT_FALSE(t.SetSeconds(Decoded("9999-12-31T23:59:59").GetSeconds() + 1));
  EXPECT_FALSE(t.SetSeconds(Decoded("0001-01-01").GetSeconds() - 1));
  EXPECT_EQ(t, before);
  EXPECT_TRUE(VFErrorCheck(kVCTimeErrorInvalid));
}
TEST_F(VCTimeTest, ComparisonIsChronological) {
  EXPECT_LT(Decoded("2023-12-31T23:59:59"), Decoded("2024-01-01"));
  EXPECT_LT(Decoded("2024-01-31"), Decoded("2024-02-01"));
  EXPECT_LT(Decoded("2024-01-05T10:20:30.1"), Decoded("2024-01-05T10:20:30.2"));
  EXPECT_GT(Decoded("2024-01-05T10:00"), Decoded("2024-01-05T09:59:59.999999"));
  EXPECT_NE(Decoded("2024-01-05"), Decoded("2024-01-06"));
}

}  // namespace
