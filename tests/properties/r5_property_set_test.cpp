#include <utilkit/properties/r5_property_set.h>

#include <gtest/gtest.h>

namespace {

// A host-derived property type, unknown to the framework.
class Colour : public R5Property {
 public:
  explicit Colour(const char* name) : R5Property(name, true) {}
  R5PropertyType GetType() const override {
    return static_cast<R5PropertyType>(static_cast<int32_t>(R5PropertyType::kFirstHostType) + 1);
  }
  VCString GetValueText() const override { return "red"; }
  bool SetValueText(const char*) override { return false; }
  std::unique_ptr<R5Property> Clone() const override { return std::make_unique<Colour>(*this); }

 protected:
  bool HoldsValidValue() const override { return true; }
};

TEST(R5PropertySetTest, AddKeepsOrderAndFindsByNameAndIndex) {
  R5PropertySet set;
  ASSERT_NE(set.AddString("Operator", "Ann"), nullptr);
  ASSERT_NE(set.AddLong("Runs", 3), nullptr);
  ASSERT_NE(set.AddHuge("Size", 1LL << 40), nullptr);
  ASSERT_NE(set.AddFloat("Ratio", 0.5f), nullptr);
  ASSERT_NE(set.AddDouble("Gain", 2.0), nullptr);
  ASSERT_NE(set.AddBoolean("Done", true), nullptr);
  R5EnumProperty unit("Unit");
  unit.Add(R5EnumValue("mm"));
  R5EnumProperty* added = set.AddEnum(unit);
  ASSERT_NE(added, nullptr);
  EXPECT_NE(added, &unit);

  ASSERT_EQ(set.GetCount(), 7);
  const char* names[] = {"Operator", "Runs", "Size", "Ratio", "Gain", "Done", "Unit"};
  for (int32_t i = 0; i < 7; ++i) EXPECT_EQ(set.GetProperty(i)->GetName(), names[i]);
  EXPECT_EQ(set.GetProperty(7), nullptr);
  EXPECT_EQ(set.GetProperty(-1), nullptr);
  EXPECT_EQ(set.GetProperty("Size")->GetValueText(), "1099511627776");
  EXPECT_EQ(set.GetProperty("size"), nullptr);
  EXPECT_EQ(set.GetProperty(nullptr), nullptr);
  EXPECT_EQ(set.GetProperty("Gain"), set.GetProperty(4));
}

TEST(R5PropertySetTest, EmptyOrNullNamesAreRefused) {
  R5PropertySet set;
  EXPECT_EQ(set.AddString("", "x"), nullptr);
  EXPECT_EQ(set.AddLong(nullptr, 1), nullptr);
  EXPECT_EQ(set.AddEnum(R5EnumProperty("")), nullptr);
  EXPECT_EQ(set.GetCount(), 0);
}

TEST(R5PropertySetTest, ATakenNameIsReplacedInPlace) {
  R5PropertySet set;
  set.AddString("A", "1");
  set.AddString("B", "2");
  set.AddString("C", "3");
  R5LongProperty* b = set.AddLong("B", 5);
  ASSERT_NE(b, nullptr);
  ASSERT_EQ(set.GetCount(), 3);
  EXPECT_EQ(set.GetProperty(1), b);
  EXPECT_EQ(set.GetProperty("B")->GetType(), R5PropertyType::kLong);
}

TEST(R5PropertySetTest, RemoveAndClearDeleteProperties) {
  R5PropertySet set;
  set.AddString("A", "1");
  set.AddString("B", "2");
  EXPECT_TRUE(set.RemoveProperty("A"));
  EXPECT_FALSE(set.RemoveProperty("A"));
  EXPECT_FALSE(set.RemoveProperty(nullptr));
  ASSERT_EQ(set.GetCount(), 1);
  EXPECT_EQ(set.GetProperty(0)->GetName(), "B");
  set.Clear();
  EXPECT_EQ(set.GetCount(), 0);
}

TEST(R5PropertySetTest, CopyMakesIndependentCopies) {
  R5PropertySet source;
  R5LongProperty* runs = source.AddLong("Runs", 3);
  runs->SetRange(1, true, 9, true);
  runs->SetMandatory(true);
  source.Add(Colour("Tint"));

  R5PropertySet target;
  target.AddString("Old", "");
  ASSERT_TRUE(target.Copy(source));
  ASSERT_EQ(target.GetCount(), 2);
  EXPECT_EQ(target.GetProperty("Old"), nullptr);
  EXPECT_TRUE(target.HasSameDefinitions(source));
  EXPECT_EQ(target.GetProperty("Tint")->GetValueText(), "red");
  runs->Set(4);
  EXPECT_EQ(target.GetProperty("Runs")->GetValueText(), "3");
  EXPECT_TRUE(target.Copy(target));
  EXPECT_EQ(target.GetCount(), 2);
}

TEST(R5PropertySetTest, SameDefinitionsNeedTheSameOrder) {
  R5PropertySet a;
  a.AddString("A", "");
  a.AddBoolean("B", false);
  R5PropertySet b;
  b.AddBoolean("B", true);
  b.AddString("A", "x");
  EXPECT_FALSE(a.HasSameDefinitions(b));
  b.RemoveProperty("B");
  EXPECT_FALSE(a.HasSameDefinitions(b));
  b.AddBoolean("B", true);
  EXPECT_TRUE(a.HasSameDefinitions(b));
}

}  // namespace
