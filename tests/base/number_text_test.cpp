#include <utilkit/base/number_text.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <random>
#include <utility>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

// Checks that each of `good` reads as its value, and that each of `bad` is
// refused and leaves the target alone.
template <class T>
void ExpectReads(std::initializer_list<std::pair<const char*, T>> good,
                 std::initializer_list<const char*> bad) {
  for (const auto& [text, expected] : good) {
    T value = T(99);
    EXPECT_TRUE(VFAscToNum(text, &value)) << '"' << text << '"';
    EXPECT_EQ(value, expected) << '"' << text << '"';
  }
  for (const char* text : bad) {
    T value = T(99);
    EXPECT_FALSE(VFAscToNum(text, &value)) << '"' << (text ? text : "null") << '"';
    EXPECT_EQ(value, T(99)) << '"' << (text ? text : "null") << '"';
  }
}

TEST(NumberTextTest, IntegersMustBeTheWholeTextAndInRange) {
  using Int32 = std::numeric_limits<int32_t>;
  ExpectReads<int32_t>({{" 42 ", 42},
                        {"\t-7\n", -7},
                        {"+5", 5},
                        {"2147483647", Int32::max()},
                        {"-2147483648", Int32::min()}},
                       {"2147483648", "-2147483649", "12abc", "", "   ", "4 2", "1.0", "1e3",
                        "0x10", "+-5", "--5", "+", "-", nullptr});
  ExpectReads<int64_t>(
      {{"2147483648", 2147483648LL}, {"-9223372036854775808", std::numeric_limits<int64_t>::min()}},
      {"9223372036854775808", "99999999999999999999999"});
  EXPECT_TRUE(VFAscToNum("8", static_cast<int32_t*>(nullptr)));
}

TEST(NumberTextTest, DoublesReadLocaleFreeAndStrictly) {
  ExpectReads<double>(
      {{" 1.5e3 ", 1500.0}, {".5", 0.5}, {"+2", 2.0}, {"5e-324", 5e-324}, {"-INF", -kInf}},
      {"1,5", "1.5x", "1e", "0x1p3", "", "e5", "1e400", "-1e400", "1e-400"});
  double d = 0;
  EXPECT_TRUE(VFAscToNum("nan", &d));
  EXPECT_TRUE(std::isnan(d));
}

TEST(NumberTextTest, BooleansInTheirUsualSpellings) {
  for (const char* yes : {"true", "TRUE", "Yes", " on ", "1"}) {
    bool b = false;
    EXPECT_TRUE(VFAscToBoolean(yes, &b) && b) << yes;
  }
  for (const char* no : {"false", "No", "OFF", "0"}) {
    bool b = true;
    EXPECT_TRUE(VFAscToBoolean(no, &b) && !b) << no;
  }
  for (const char* bad :
       {"", "2", "tru", "yess", "y", "-1", "o", static_cast<const char*>(nullptr)}) {
    bool b = true;
    EXPECT_FALSE(VFAscToBoolean(bad, &b)) << (bad ? bad : "null");
    EXPECT_TRUE(b);
  }
}

TEST(NumberTextTest, FormatDoubleIsShortestAndReadsBack) {
  const std::pair<double, const char*> cases[] = {
      {0.1, "0.1"},
      {100.0, "100"},
      {1e20, "1e+20"},
      {-0.0, "-0"},
      {kInf, "inf"},
      {-kInf, "-inf"},
      {-std::numeric_limits<double>::quiet_NaN(), "nan"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(VFFormatDouble(value), text);
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
