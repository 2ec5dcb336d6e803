#include <utilkit/base/number_text.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

TEST(NumberTextTest, IntegersMustBeTheWholeText) {
  int32_t n = -1;
  EXPECT_TRUE(VFAscToNum(" 42 ", &n));
  EXPECT_EQ(n, 42);
  EXPECT_TRUE(VFAscToNum("\t-7\n", &n));
  EXPECT_EQ(n, -7);
  EXPECT_TRUE(VFAscToNum("+5", &n));
  EXPECT_EQ(n, 5);
  n = 99;
  for (const char* bad :
       {"12abc", "", "   ", "4 2", "1.0", "1e3", "0x10", "+-5", "--5", "+", "-"}) {
    EXPECT_FALSE(VFAscToNum(bad, &n)) << '"' << bad << '"';
  }
  EXPECT_FALSE(VFAscToNum(nullptr, &n));
  EXPECT_EQ(n, 99) << "a refused text leaves the value alone";
  EXPECT_TRUE(VFAscToNum("8", static_cast<int32_t*>(nullptr)));
}

TEST(NumberTextTest, IntegerRangesAreChecked) {
  int32_t n = 0;
  EXPECT_TRUE(VFAscToNum("2147483647", &n));
  EXPECT_EQ(n, std::numeric_limits<int32_t>::max());
  EXPECT_TRUE(VFAscToNum("-2147483648", &n));
  EXPECT_EQ(n, std::numeric_limits<int32_t>::min());
  EXPECT_FALSE(VFAscToNum("2147483648", &n));
  EXPECT_FALSE(VFAscToNum("-2147483649", &n));
  int64_t h = 0;
  EXPECT_TRUE(VFAscToNum("2147483648", &h));
  EXPECT_EQ(h, 2147483648LL);
  EXPECT_TRUE(VFAscToNum("-9223372036854775808", &h));
  EXPECT_EQ(h, std::numeric_limits<int64_t>::min());
  EXPECT_FALSE(VFAscToNum("9223372036854775808", &h));
  EXPECT_FALSE(VFAscToNum("99999999999999999999999", &h));
}

TEST(NumberTextTest, DoublesReadLocaleFreeAndStrictly) {
  double d = 0;
  EXPECT_TRUE(VFAscToNum(" 1.5e3 ", &d));
  EXPECT_EQ(d, 1500.0);
  EXPECT_TRUE(VFAscToNum(".5", &d));
  EXPECT_EQ(d, 0.5);
  EXPECT_TRUE(VFAscToNum("+2", &d));
  EXPECT_EQ(d, 2.0);
  EXPECT_TRUE(VFAscToNum("5e-324", &d));
  EXPECT_GT(d, 0.0);
  EXPECT_TRUE(VFAscToNum("-INF", &d));
  EXPECT_EQ(d, -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(VFAscToNum("nan", &d));
  EXPECT_TRUE(std::isnan(d));
  d = 3;
  for (const char* bad : {"1,5", "1.5x", "1e", "0x1p3", "", "e5", "1e400", "-1e400", "1e-400"}) {
    EXPECT_FALSE(VFAscToNum(bad, &d)) << '"' << bad << '"';
  }
  EXPECT_EQ(d, 3.0);
}

TEST(NumberTextTest, BooleansInTheirUsualSpellings) {
  bool b = false;
  for (const char* yes : {"true", "TRUE", "Yes", " on ", "1"}) {
    b = false;
    EXPECT_TRUE(VFAscToBoolean(yes, &b)) << yes;
    EXPECT_TRUE(b) << yes;
  }
  for (const char* no : {"false", "No", "OFF", "0"}) {
    b = true;
    EXPECT_TRUE(VFAscToBoolean(no, &b)) << no;
    EXPECT_FALSE(b) << no;
  }
  b = true;
  for (const char* bad : {"", "2", "tru", "yess", "y", "-1", "o"}) {
    EXPECT_FALSE(VFAscToBoolean(bad, &b)) << bad;
  }
  EXPECT_FALSE(VFAscToBoolean(nullptr, &b));
  EXPECT_TRUE(b);
}

TEST(NumberTextTest, FormatDoubleIsShortestAndReadsBack) {
  EXPECT_EQ(VFFormatDouble(0.1), "0.1");
  EXPECT_EQ(VFFormatDouble(100.0), "100");
  EXPECT_EQ(VFFormatDouble(1e20), "1e+20");
  EXPECT_EQ(VFFormatDouble(-0.0), "-0");
  EXPECT_EQ(VFFormatDouble(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(VFFormatDouble(-std::numeric_limits<double>::infinity()), "-inf");
  EXPECT_EQ(VFFormatDouble(-std::numeric_limits<double>::quiet_NaN()), "nan");
  std::mt19937_64 random(2024);
  for (int i = 0; i < 10000; ++i) {
    uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (std::isnan(value)) continue;
    double back = 0;
    ASSERT_TRUE(VFAscToNum(VFFormatDouble(value), &back)) << VFFormatDouble(value).c_str();
    ASSERT_EQ(back, value) << VFFormatDouble(value).c_str();
  }
}

TEST(NumberTextTest, FormatDoubleWithSignificantDigits) {
  EXPECT_EQ(VFFormatDouble(3.14159, 3), "3.14");
  EXPECT_EQ(VFFormatDouble(1234567.0, 3), "1.23e+06");
  EXPECT_EQ(VFFormatDouble(2.5, 10), "2.5");
  EXPECT_EQ(VFFormatDouble(0.1, 40), "0.10000000000000001") << "capped at 17 digits";
  EXPECT_EQ(VFFormatDouble(0.1, -2), "0.1");
}

}  // namespace
