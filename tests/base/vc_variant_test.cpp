#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_variant.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace {

class VCVariantTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  static VCVariant Date(const char* text) {
    VCTime t;
    EXPECT_TRUE(t.DecodeString(text, VCTime::kDecodeDate | VCTime::kDecodeDateTime));
    return VCVariant(t);
  }
};

int32_t Sign(int32_t value) {
  return (value > 0) - (value < 0);
}

TEST_F(VCVariantTest, NumbersCompareByValueAcrossTypes) {
  EXPECT_EQ(VCVariant(int32_t{2}).Compare(VCVariant(2.0), 0), 0);
  EXPECT_LT(VCVariant(int32_t{2}).Compare(VCVariant(2.5), 0), 0);
  EXPECT_GT(VCVariant(2.5).Compare(VCVariant(int64_t{2}), 0), 0);
  EXPECT_LT(VCVariant(int16_t{-1}).Compare(VCVariant(0.5f), 0), 0);
  EXPECT_EQ(VCVariant(true).Compare(VCVariant(int16_t{1}), 0), 0);
  // Integers too large for a double's mantissa still compare exactly.
  EXPECT_GT(VCVariant(int64_t{9007199254740993}).Compare(VCVariant(9007199254740992.0), 0), 0);
  EXPECT_LT(VCVariant(std::numeric_limits<int64_t>::max()).Compare(VCVariant(1e19), 0), 0);
  EXPECT_GT(VCVariant(std::numeric_limits<int64_t>::min()).Compare(VCVariant(-1e19), 0), 0);
  EXPECT_LT(VCVariant(int64_t{-3}).Compare(VCVariant(-2.5), 0), 0);
  // NaN sorts after every number and equals NaN.
  const VCVariant nan(std::nan(""));
  EXPECT_GT(nan.Compare(VCVariant(1e308), 0), 0);
  EXPECT_LT(VCVariant(int32_t{5}).Compare(nan, 0), 0);
  EXPECT_EQ(nan.Compare(VCVariant(std::nanf("")), 0), 0);
}

TEST_F(VCVariantTest, KindsOrderNullNumberDateTextBuffer) {
  const VCVariant null;
  const VCVariant number(-1e300);
  const VCVariant date = Date("0001-01-01");
  const VCVariant text("");
  VCVariant buffer;
  buffer.SetBuffer_S(0);
  const VCVariant ordered[] = {null, number, date, text, buffer};
  for (size_t i = 0; i < 5; ++i) {
    for (size_t j = 0; j < 5; ++j) {
      EXPECT_EQ(Sign(ordered[i].Compare(ordered[j], 0)), (i > j) - (i < j)) << i << "," << j;
    }
  }
  EXPECT_EQ(VCVariant(), VCVariant());
}

TEST_F(VCVariantTest, DatesCompareChronologically) {
  EXPECT_LT(Date("2023-12-31T23:59:59").Compare(Date("2024-01-01"), 0), 0);
  EXPECT_EQ(Date("2024-01-05").Compare(Date("2024-01-05T00:00:00"), 0), 0);
}

TEST_F(VCVariantTest, TextsCompareByteWiseOrIgnoringCase) {
  const VCVariant lower("abc");
  const VCVariant upper("ABC");
  EXPECT_GT(lower.Compare(upper, 0), 0);
  EXPECT_EQ(lower.Compare(upper, VCVariant::kCompareNoCase), 0);
  EXPECT_LT(VCVariant("abc").Compare(VCVariant("abd"), VCVariant::kCompareNoCase), 0);
  EXPECT_LT(VCVariant("10").Compare(VCVariant("9"), 0), 0);
  EXPECT_GT(lower.Compare(upper, VCVariant::kCompareConvert), 0);
}

TEST_F(VCVariantTest, ConvertFlagComparesTextWithNumbersAndDatesByValue) {
  const int32_t convert = VCVariant::kCompareConvert;
  const VCVariant three(int64_t{3});
  EXPECT_GT(VCVariant("3").Compare(three, 0), 0);  // without the flag, texts follow numbers
  EXPECT_EQ(VCVariant("3").Compare(three, convert), 0);
  EXPECT_EQ(VCVariant(" 3.0 ").Compare(three, convert), 0);
  EXPECT_LT(three.Compare(VCVariant("10"), convert), 0);
  EXPECT_GT(VCVariant("10").Compare(three, convert), 0);
  EXPECT_GT(VCVariant("abc").Compare(three, convert), 0);  // not a number: by kind
  EXPECT_LT(three.Compare(VCVariant("abc"), convert), 0);
  EXPECT_EQ(VCVariant("2024-01-05").Compare(Date("2024-01-05"), convert), 0);
  EXPECT_LT(Date("2024-01-04").Compare(VCVariant("2024-01-05T08:00"), convert), 0);
  EXPECT_GT(VCVariant("2024-01-05").Compare(Date("2024-01-05"), 0), 0);
  EXPECT_GT(VCVariant("3").Compare(VCVariant(), convert), 0);
}

TEST_F(VCVariantTest, OperatorsUseTheDefaultOrder) {
  EXPECT_TRUE(VCVariant(int32_t{2}) == VCVariant(2.0));
  EXPECT_FALSE(VCVariant(int32_t{2}) == VCVariant("2"));
  EXPECT_TRUE(VCVariant(int32_t{3}) > VCVariant(2.5));
  EXPECT_FALSE(VCVariant(2.5) > VCVariant(int32_t{3}));
  EXPECT_TRUE(VCVariant() < VCVariant(int16_t{-5}));
}

TEST_F(VCVariantTest, IntegerConversionsCutTowardsZeroAndClamp) {
  bool ok = false;
  EXPECT_EQ(VCVariant(-2.9).GetLong(&ok), -2);
  EXPECT_TRUE(ok);
  EXPECT_EQ(VCVariant(int32_t{70000}).GetShort(&ok), 32767);
  EXPECT_FALSE(ok);
  EXPECT_EQ(VCVariant(-1e30).GetLong(&ok), std::numeric_limits<int32_t>::min());
  EXPECT_FALSE(ok);
  EXPECT_EQ(VCVariant(9.3e18).GetHuge(&ok), std::numeric_limits<int64_t>::max());
  EXPECT_FALSE(ok);
  EXPECT_EQ(VCVariant(std::nan("")).GetHuge(&ok), 0);
  EXPECT_FALSE(ok);
  EXPECT_EQ(VCVariant(true).GetShort(&ok), 1);
  EXPECT_TRUE(ok);
  EXPECT_EQ(VCVariant().GetLong(&ok), 0);
  EXPECT_FALSE(ok);
  EXPECT_EQ(VCVariant(1e300).GetFloat(&ok), std::numeric_limits<float>::infinity());
  EXPECT_FALSE(ok);
  EXPECT_EQ(Date("1970-01-02").GetDouble(&ok), 86400.0);
  EXPECT_TRUE(ok);
}

TEST_F(VCVariantTest, TextConvertsToANumberOnlyWhenAllOfItIsOne) {
  bool ok = false;
  EXPECT_EQ(VCVariant(" 42 ").GetLong(&ok), 42);
  EXPECT_TRUE(ok);
  EXPECT_EQ(VCVariant("+7").GetShort(&ok), 7);
  EXPECT_TRUE(ok);
  EXPECT_EQ(VCVariant("-1.5e3").GetDouble(&ok), -1500.0);
  EXPECT_TRUE(ok);
  EXPECT_EQ(VCVariant("2.9").GetLong(&ok), 2);
  EXPECT_TRUE(ok);
  EXPECT_EQ(VCVariant("9223372036854775807").GetHuge(&ok), std::numeric_limits<int64_t>::max());
  EXPECT_TRUE(ok);
  for (const char* text : {"abc", "", "  ", "12abc", "1 2", "+-1", "0x10", "1e999"}) {
    EXPECT_EQ(VCVariant(text).GetDouble(&ok), 0.0) << text;
    EXPECT_FALSE(ok) << text;
  }
}

TEST_F(VCVariantTest, GetStringGivesShortestRoundTripText) {
  EXPECT_EQ(VCVariant(0.1).GetString(), "0.1");
  EXPECT_EQ(VCVariant(0.1f).GetString(), "0.1");
  EXPECT_EQ(VCVariant(1e21).GetString(), "1e+21");
  EXPECT_EQ(VCVariant(2.0).GetString(), "2");
  EXPECT_EQ(VCVariant(-0.30000000000000004).GetString(), "-0.30000000000000004");
  EXPECT_EQ(VCVariant(int16_t{-5}).GetString(), "-5");
  EXPECT_EQ(VCVariant(std::numeric_limits<int64_t>::min()).GetString(), "-9223372036854775808");
  EXPECT_EQ(VCVariant(false).GetString(), "0");
  EXPECT_EQ(VCVariant(static_cast<const char*>(nullptr)).GetString(), "");
  EXPECT_EQ(Date("2024-01-05").GetString(), "2024-01-05T00:00:00");
  bool ok = true;
  EXPECT_EQ(VCVariant().GetString(&ok), "");
  EXPECT_FALSE(ok);
  VCVariant buffer;
  buffer.SetBuffer_D(1);
  EXPECT_EQ(buffer.GetString(&ok), "");
  EXPECT_FALSE(ok);
}

TEST_F(VCVariantTest, BoolAndTimeConversions) {
  bool ok = false;
  EXPECT_TRUE(VCVariant(" TRUE ").GetBool(&ok));
  EXPECT_TRUE(ok);
  EXPECT_FALSE(VCVariant("false").GetBool(&ok));
  EXPECT_TRUE(ok);
  EXPECT_TRUE(VCVariant(0.5).GetBool(&ok));
  EXPECT_FALSE(VCVariant("0").GetBool(&ok));
  EXPECT_TRUE(ok);
  EXPECT_FALSE(VCVariant("maybe").GetBool(&ok));
  EXPECT_FALSE(ok);
  EXPECT_FALSE(Date("2024-01-05").GetBool(&ok));
  EXPECT_FALSE(ok);

  EXPECT_EQ(VCVariant("2024-01-05T10:20").GetTime(&ok).GetMinute(), 20);
  EXPECT_TRUE(ok);
  EXPECT_EQ(Date("2024-03-05").GetTime(&ok).GetMonth(), 2);
  EXPECT_TRUE(ok);
  EXPECT_EQ(VCVariant(86400.0).GetTime(&ok), VCTime());
  EXPECT_FALSE(ok);
  VCVariant("2024").GetTime(&ok);
  EXPECT_FALSE(ok);
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
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(VCVariantTest, EveryBufferTypeHasItsOwnAccessor) {
  VCVariant v;
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
}

TEST_F(VCVariantTest, BadBufferSizesFailAndLeaveTheVariantAlone) {
  VCVariant v;
  double* d = v.SetBuffer_D(2);
  ASSERT_NE(d, nullptr);
  d[0] = 7;
  EXPECT_EQ(v.SetBuffer_D(-1), nullptr);
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCVariantErrorBufferSize);
  EXPECT_STREQ(VFErrorGetLocation(VFErrorGetLast()), "VCVariant::SetBuffer_D");
  EXPECT_EQ(v.SetBuffer_T(std::numeric_limits<int64_t>::max()), nullptr);
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
