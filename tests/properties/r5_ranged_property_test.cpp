#include <utilkit/properties/r5_ranged_property.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(R5RangedPropertyTest, NewPropertyIsDefinedOverTheWholeType) {
  R5LongProperty count("Count", 7);
  EXPECT_TRUE(count.IsDefined());
  EXPECT_EQ(count.Get(), 7);
  EXPECT_EQ(count.GetMin(), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(count.GetMax(), std::numeric_limits<int32_t>::max());
  EXPECT_TRUE(count.GetMinAllowEqual());
  EXPECT_TRUE(count.GetMaxAllowEqual());
  EXPECT_TRUE(count.Set(std::numeric_limits<int32_t>::min()));

  R5DoubleProperty gain("Gain");
  EXPECT_EQ(gain.GetMin(), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(gain.GetMax(), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(gain.Set(std::numeric_limits<double>::infinity()));
}

TEST(R5RangedPropertyTest, NaNIsNeverAValue) {
  R5DoubleProperty gain("Gain", std::nan(""));
  EXPECT_FALSE(gain.IsDefined());
  EXPECT_EQ(gain.Get(), 0.0);
  EXPECT_FALSE(gain.Set(std::nan("")));
  EXPECT_FALSE(gain.SetValueText("nan"));
  EXPECT_FALSE(gain.SetRange(std::nan(""), true, 1.0, true));
  EXPECT_EQ(gain.GetMin(), -std::numeric_limits<double>::infinity());
}

TEST(R5RangedPropertyTest, AllowEqualFlagsDecideWhetherTheBoundIsValid) {
  R5DoubleProperty gain("Gain", 1.0);
  ASSERT_TRUE(gain.SetRange(0.0, false, 100.0, true));
  EXPECT_FALSE(gain.Set(0.0));
  EXPECT_EQ(gain.Get(), 1.0);
  EXPECT_TRUE(gain.Set(100.0));
  EXPECT_FALSE(gain.Set(100.5));
  EXPECT_EQ(gain.Get(), 100.0);

  ASSERT_TRUE(gain.SetRange(0.0, true, 100.0, false));
  EXPECT_TRUE(gain.Set(0.0));
  EXPECT_FALSE(gain.Set(100.0));
  EXPECT_FALSE(gain.IsInRange(-0.1));
}

TEST(R5RangedPropertyTest, ARangeThatExcludesTheValueLeavesItUndefined) {
  R5LongProperty count("Count", 0);
  ASSERT_TRUE(count.SetRange(5, true, 10, true));
  EXPECT_FALSE(count.IsDefined());
  EXPECT_EQ(count.Get(), 0);
  EXPECT_FALSE(count.SetDefined(true));
  EXPECT_FALSE(count.IsDefined());
  EXPECT_TRUE(count.Set(5));
  EXPECT_TRUE(count.IsDefined());
  count.SetDefined(false);
  EXPECT_TRUE(count.SetDefined(true));
}

TEST(R5RangedPropertyTest, AnEmptyRangeAdmitsNoValue) {
  R5HugeProperty size("Size", 0);
  ASSERT_TRUE(size.SetRange(10, true, 1, true));
  EXPECT_FALSE(size.Set(5));
  EXPECT_FALSE(size.Set(10));
  EXPECT_FALSE(size.Set(1));
}

TEST(R5RangedPropertyTest, ValueTextRoundTripsPerType) {
  R5LongProperty l("l", -42);
  EXPECT_EQ(l.GetValueText(), "-42");
  R5HugeProperty h("h", std::numeric_limits<int64_t>::min());
  EXPECT_EQ(h.GetValueText(), "-9223372036854775808");
  R5FloatProperty f("f", 0.1f);
  EXPECT_EQ(f.GetValueText(), "0.1");
  R5DoubleProperty d("d", 0.1);
  EXPECT_EQ(d.GetValueText(), "0.1");
  EXPECT_EQ(R5FloatProperty::ValueToText(std::numeric_limits<float>::max()), "3.4028235e+38");
  EXPECT_EQ(R5FloatProperty::ValueToText(-std::numeric_limits<float>::infinity()), "-inf");
  EXPECT_EQ(R5DoubleProperty::ValueToText(1e20), "1e+20");

  EXPECT_TRUE(f.SetValueText("3.4028235e+38"));
  EXPECT_EQ(f.Get(), std::numeric_limits<float>::max());
  EXPECT_TRUE(h.SetValueText("9223372036854775807"));
  EXPECT_EQ(h.Get(), std::numeric_limits<int64_t>::max());
}

TEST(R5RangedPropertyTest, SetValueTextRefusesOtherTextAndLeavesTheValue) {
  R5LongProperty l("l", 3);
  EXPECT_FALSE(l.SetValueText("1.5"));
  EXPECT_FALSE(l.SetValueText("2147483648"));
  EXPECT_FALSE(l.SetValueText("abc"));
  EXPECT_FALSE(l.SetValueText(nullptr));
  EXPECT_EQ(l.Get(), 3);

  R5FloatProperty f("f", 1.0f);
  EXPECT_FALSE(f.SetValueText("1e39"));  // finite, too large for a float
  EXPECT_TRUE(f.SetValueText("inf"));
  EXPECT_TRUE(std::isinf(f.Get()));

  R5DoubleProperty d("d", 1.0);
  ASSERT_TRUE(d.SetRange(0.0, true, 10.0, true));
  EXPECT_FALSE(d.SetValueText("11"));
  EXPECT_EQ(d.Get(), 1.0);
  EXPECT_TRUE(d.SetValueText(" 2.5 "));
  EXPECT_EQ(d.Get(), 2.5);
}

TEST(R5RangedPropertyTest, CloneCopiesRangeValueAndFlags) {
  R5LongProperty l("l", 4);
  l.SetRange(1, false, 9, true);
  l.SetMandatory(true);
  l.SetDescription("Runs");
  std::unique_ptr<R5Property> copy = l.Clone();
  ASSERT_EQ(copy->GetType(), R5PropertyType::kLong);
  const auto& c = static_cast<const R5LongProperty&>(*copy);
  EXPECT_EQ(c.Get(), 4);
  EXPECT_EQ(c.GetMin(), 1);
  EXPECT_FALSE(c.GetMinAllowEqual());
  EXPECT_EQ(c.GetMax(), 9);
  EXPECT_TRUE(c.IsMandatory());
  EXPECT_EQ(c.GetDescription(), "Runs");
  EXPECT_TRUE(c.HasSameDefinition(l));
}

TEST(R5RangedPropertyTest, SameDefinitionComparesBoundsAndFlagsNotValues) {
  R5DoubleProperty a("x", 1.0);
  R5DoubleProperty b("x", 2.0);
  EXPECT_TRUE(a.HasSameDefinition(b));
  b.SetRange(0.0, true, 5.0, true);
  EXPECT_FALSE(a.HasSameDefinition(b));
  a.SetRange(0.0, true, 5.0, false);
  EXPECT_FALSE(a.HasSameDefinition(b));
  a.SetRange(0.0, true, 5.0, true);
  EXPECT_TRUE(a.HasSameDefinition(b));
  EXPECT_FALSE(a.HasSameDefinition(R5FloatProperty("x")));
  EXPECT_FALSE(a.HasSameDefinition(R5DoubleProperty("y")));
}

}  // namespace
