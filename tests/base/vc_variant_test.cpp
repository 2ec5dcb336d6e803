#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_variant.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <source_location>
#include <utility>

namespace {

using Int64Limits = std::numeric_limits<int64_t>;
constexpr int32_t kNoCase = VCVariant::kCompareNoCase;
constexpr int32_t kConvert = VCVariant::kCompareConvert;

class VCVariantTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

VCVariant Date(const char* text) {
  VCTime t;
  EXPECT_TRUE(t.DecodeString(text, VCTime::kDecodeDate | VCTime::kDecodeDateTime));
  return VCVariant(t);
}

// Checks one conversion: its value and its ok flag.
template <class T, class E>
void ExpectGet(const VCVariant& v, T (VCVariant::*get)(bool*) const, E expected, bool expectedOk,
               std::source_location where = std::source_location::current()) {
  SCOPED_TRACE(::testing::Message() << "line " << where.line());
  bool ok = !expectedOk;
  EXPECT_EQ((v.*get)(&ok), static_cast<T>(expected));
  EXPECT_EQ(ok, expectedOk);
}

TEST_F(VCVariantTest, CompareOrdersByValueKindAndFlags) {
  struct Case {
    VCVariant a, b;
    int32_t flags;
    int sign;
  };
  const VCVariant nan(std::nan(""));
  const VCVariant three(int64_t{3});
  const Case cases[] = {
      // Numbers by value across types; integers beyond a double's mantissa exactly.
      {VCVariant(int32_t{2}), VCVariant(2.0), 0, 0},
      {VCVariant(int32_t{2}), VCVariant(2.5), 0, -1},
      {VCVariant(2.5), VCVariant(int64_t{2}), 0, 1},
      {VCVariant(int16_t{-1}), VCVariant(0.5f), 0, -1},
      {VCVariant(true), VCVariant(int16_t{1}), 0, 0},
      {VCVariant(int64_t{9007199254740993}), VCVariant(9007199254740992.0), 0, 1},
      {VCVariant(Int64Limits::max()), VCVariant(1e19), 0, -1},
      {VCVariant(Int64Limits::min()), VCVariant(-1e19), 0, 1},
      {VCVariant(int64_t{-3}), VCVariant(-2.5), 0, -1},
      // NaN sorts after every number and equals NaN.
      {nan, VCVariant(1e308), 0, 1},
      {VCVariant(int32_t{5}), nan, 0, -1},
      {nan, VCVariant(std::nanf("")), 0, 0},
      // Dates chronologically.
      {Date("2023-12-31T23:59:59"), Date("2024-01-01"), 0, -1},
      {Date("2024-01-05"), Date("2024-01-05T00:00:00"), 0, 0},
      // Texts byte-wise or ignoring case; the convert flag alone does not fold case.
      {VCVariant("abc"), VCVariant("ABC"), 0, 1},
      {VCVariant("abc"), VCVariant("ABC"), kNoCase, 0},
      {VCVariant("abc"), VCVariant("abd"), kNoCase, -1},
      {VCVariant("10"), VCVariant("9"), 0, -1},
      {VCVariant("abc"), VCVariant("ABC"), kConvert, 1},
      // Texts against numbers and dates: by kind, or by value with the convert flag.
      {VCVariant("3"), three, 0, 1},
      {VCVariant("3"), three, kConvert, 0},
      {VCVariant(" 3.0 "), three, kConvert, 0},
      {three, VCVariant("10"), kConvert, -1},
      {VCVariant("10"), three, kConvert, 1},
      {VCVariant("abc"), three, kConvert, 1},
      {three, VCVariant("abc"), kConvert, -1},
      {VCVariant("2024-01-05"), Date("2024-01-05"), kConvert, 0},
      {Date("2024-01-04"), VCVariant("2024-01-05T08:00"), kConvert, -1},
      {VCVariant("2024-01-05"), Date("2024-01-05"), 0, 1},
      {VCVariant("3"), VCVariant(), kConvert, 1},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    const int result = cases[i].a.Compare(cases[i].b, cases[i].flags);
    EXPECT_EQ((result > 0) - (result < 0), cases[i].sign) << "row " << i;
  }
}

TEST_F(VCVariantTest, KindsOrderNullNumberDateTextBuffer) {
  VCVariant buffer;
  buffer.SetBuffer_S(0);
  const VCVariant ordered[] = {VCVariant(), VCVariant(-1e300), Date("0001-01-01"), VCVariant(""),
                               buffer};
  for (size_t i = 0; i < 5; ++i) {
    for (size_t j = 0; j < 5; ++j) {
      const int result = ordered[i].Compare(ordered[j], 0);
      EXPECT_EQ((result > 0) - (result < 0), (i > j) - (i < j)) << i << "," << j;
    }
  }
}

TEST_F(VCVariantTest, OperatorsUseTheDefaultOrder) {
  EXPECT_TRUE(VCVariant(int32_t{2}) == VCVariant(2.0));
  EXPECT_FALSE(VCVariant(int32_t{2}) == VCVariant("2"));
  EXPECT_TRUE(VCVariant(int32_t{3}) > VCVariant(2.5));
  EXPECT_FALSE(VCVariant(2.5) > VCVariant(int32_t{3}));
  EXPECT_TRUE(VCVariant() < VCVariant(int16_t{-5}));
  EXPECT_EQ(VCVariant(), VCVariant());
}

TEST_F(VCVariantTest, NumberConversionsCutTowardsZeroClampAndReadWholeTexts) {
  ExpectGet(VCVariant(-2.9), &VCVariant::GetLong, -2, true);
  ExpectGet(VCVariant(int32_t{70000}), &VCVariant::GetShort, 32767, false);
  ExpectGet(VCVariant(-1e30), &VCVariant::GetLong, std::numeric_limits<int32_t>::min(), false);
  ExpectGet(VCVariant(2147483648.0), &VCVariant::GetLong, std::numeric_limits<int32_t>::max(),
            false);
  ExpectGet(VCVariant(-2147483648.9), &VCVariant::GetLong, std::numeric_limits<int32_t>::min(),
            true);
  ExpectGet(VCVariant(9.3e18), &VCVariant::GetHuge, Int64Limits::max(), false);
  ExpectGet(VCVariant(std::nan("")), &VCVariant::GetHuge, 0, false);
  ExpectGet(VCVariant(true), &VCVariant::GetShort, 1, true);
  ExpectGet(VCVariant(), &VCVariant::GetLong, 0, false);
  ExpectGet(VCVariant(1e300), &VCVariant::GetFloat, std::numeric_limits<float>::infinity(), false);
  ExpectGet(Date("1970-01-02"), &VCVariant::GetDouble, 86400.0, true);
  ExpectGet(VCVariant(" 42 "), &VCVariant::GetLong, 42, true);
  ExpectGet(VCVariant("+7"), &VCVariant::GetShort, 7, true);
  ExpectGet(VCVariant("-1.5e3"), &VCVariant::GetDouble, -1500.0, true);
  ExpectGet(VCVariant("2.9"), &VCVariant::GetLong, 2, true);
  ExpectGet(VCVariant("9223372036854775807"), &VCVariant::GetHuge, Int64Limits::max(), true);
  for (const char* text : {"abc", "", "  ", "12abc", "1 2", "+-1", "0x10", "1e999"}) {
    SCOPED_TRACE(text);
    ExpectGet(VCVariant(text), &VCVariant::GetDouble, 0.0, false);
  }
}

TEST_F(VCVariantTest, GetStringGivesShortestRoundTripText) {
  ExpectGet(VCVariant(0.1), &VCVariant::GetString, "0.1", true);
  ExpectGet(VCVariant(0.1f), &VCVariant::GetString, "0.1", true);
  ExpectGet(VCVariant(1e21), &VCVariant::GetString, "1e+21", true);
  ExpectGet(VCVariant(2.0), &VCVariant::GetString, "2", true);
  ExpectGet(VCVariant(-0.30000000000000004), &VCVariant::GetString, "-0.30000000000000004", true);
  ExpectGet(VCVariant(int16_t{-5}), &VCVariant::GetString, "-5", true);
  ExpectGet(VCVariant(Int64Limits::min()), &VCVariant::GetString, "-9223372036854775808", true);
  ExpectGet(VCVariant(false), &VCVariant::GetString, "0", true);
  ExpectGet(VCVariant(static_cast<const char*>(nullptr)), &VCVariant::GetString, "", true);
  ExpectGet(Date("2024-01-05"), &VCVariant::GetString, "2024-01-05T00:00:00", true);
  ExpectGet(VCVariant(), &VCVariant::GetString, "", false);
  VCVariant buffer;
  buffer.SetBuffer_D(1);
  ExpectGet(buffer, &VCVariant::GetString, "", false);
}

TEST_F(VCVariantTest, BoolAndTimeConversions) {
  ExpectGet(VCVariant(" TRUE "), &VCVariant::GetBool, true, true);
  ExpectGet(VCVariant("false"), &VCVariant::GetBool, false, true);
  ExpectGet(VCVariant(0.5), &VCVariant::GetBool, true, true);
  ExpectGet(VCVariant("0"), &VCVariant::GetBool, false, true);
  ExpectGet(VCVariant("maybe"), &VCVariant::GetBool, false, false);
  ExpectGet(Date("2024-01-05"), &VCVariant::GetBool, false, false);
  VCTime t;
  ASSERT_TRUE(t.SetDateTime(2024, 2, 5, 10, 20));
  ExpectGet(VCVariant("2024-03-05T10:20"), &VCVariant::GetTime, t, true);
  ExpectGet(Date("2024-03-05T10:20"), &VCVariant::GetTime, t, true);
  ExpectGet(VCVariant(86400.0), &VCVariant::GetTime, VCTime(), false);
  ExpectGet(VCVariant("2024"), &VCVariant::GetTime, VCTime(), false);
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(VCVariantTest, BuffersAreSizedAndReused) {
  VCVariant v;
  EXPECT_EQ(v.GetBufferSize(), 0);
  double* d = v.SetBuffer_D(3);
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(v.GetType(), VTVariantType::DoubleBuffer);
  EXPECT_EQ(v.GetBufferSize(), 3);
  EXPECT_EQ(v.GetBuffer_D(), d);
  d[0] = 1.5;
  d[1] = 2.5;
  d[2] = 3.5;
  double* grown = v.SetBuffer_D(5);
  ASSERT_NE(grown, nullptr);
  EXPECT_EQ(v.GetBufferSize(), 5);
  EXPECT_EQ(grown[0], 1.5);
  EXPECT_EQ(grown[2], 3.5);
  EXPECT_EQ(grown[4], 0.0);
  EXPECT_EQ(v.SetBuffer_D(2), grown);  // shrinking keeps the storage
  EXPECT_EQ(v.GetBufferSize(), 2);
  EXPECT_EQ(v.GetBuffer_D()[1], 2.5);

  int32_t* l = v.SetBuffer_L(4);
  ASSERT_NE(l, nullptr);
  EXPECT_EQ(v.GetBuffer_D(), nullptr);
  EXPECT_EQ(v.GetBuffer_L(), l);
  EXPECT_EQ(l[0], 0);
  EXPECT_EQ(v.GetBufferSize(), 4);
  EXPECT_NE(v.SetBuffer_H(0), nullptr);
  EXPECT_EQ(v.GetBufferSize(), 0);
  EXPECT_EQ(v.GetType(), VTVariantType::HugeBuffer);
  v.SetDouble(1.0);
  EXPECT_EQ(v.GetBuffer_H(), nullptr);
  EXPECT_EQ(v.GetBufferSize(), 0);

  // Every buffer type has its own accessor.
  ASSERT_NE(v.SetBuffer_S(2), nullptr);
  EXPECT_NE(v.GetBuffer_S(), nullptr);
  EXPECT_EQ(v.GetBuffer_U(), nullptr);
  ASSERT_NE(v.SetBuffer_U(2), nullptr);
  EXPECT_EQ(v.GetBuffer_S(), nullptr);
  ASSERT_NE(v.SetBuffer_F(2), nullptr);
  EXPECT_EQ(v.GetType(), VTVariantType::FloatBuffer);
  int marker = 0;
  void** p = v.SetBuffer_P(2);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(p[1], nullptr);
  p[1] = &marker;
  EXPECT_EQ(static_cast<const VCVariant&>(v).GetBuffer_P()[1], &marker);
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(VCVariantTest, BadBufferSizesFailAndLeaveTheVariantAlone) {
  VCVariant v;
  double* d = v.SetBuffer_D(2);
  ASSERT_NE(d, nullptr);
  d[0] = 7;
  EXPECT_EQ(v.SetBuffer_D(-1), nullptr);
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCVariantErrorBufferSize);
  EXPECT_STREQ(VFErrorGetLocation(VFErrorGetLast()), "VCVariant::SetBuffer_D");
  EXPECT_EQ(v.SetBuffer_T(Int64Limits::max()), nullptr);
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCVariantErrorMemory);
  EXPECT_EQ(v.GetBuffer_D(), d);
  EXPECT_EQ(v.GetBufferSize(), 2);
  EXPECT_EQ(d[0], 7);
}

TEST_F(VCVariantTest, CopiesAreDeepAndBuffersCompareByContent) {
  VCVariant texts;
  VCString* t = texts.SetBuffer_T(2);
  ASSERT_NE(t, nullptr);
  t[0] = "a";
  t[1] = "b";
  VCVariant copy = texts;
  ASSERT_NE(copy.GetBuffer_T(), t);
  EXPECT_EQ(copy, texts);
  copy.GetBuffer_T()[1] = "c";
  EXPECT_EQ(texts.GetBuffer_T()[1], "b");
  EXPECT_LT(texts.Compare(copy, 0), 0);
  VCVariant shorter;
  shorter.SetBuffer_T(1)[0] = "a";
  EXPECT_GT(texts.Compare(shorter, 0), 0);
  VCVariant moved = std::move(copy);
  EXPECT_EQ(moved.GetBufferSize(), 2);
  VCVariant assigned(int32_t{1});
  assigned = moved;
  EXPECT_EQ(assigned.GetBuffer_T()[1], "c");
}

}  // namespace
