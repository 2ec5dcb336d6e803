#include <utilkit/properties/r5_enum_property.h>

#include <gtest/gtest.h>

namespace {

R5EnumProperty Units() {
  R5EnumProperty units("Unit");
  units.Add(R5EnumValue("mm"));
  units.Add(R5EnumValue("cm"));
  units.Add(R5EnumValue("inch"));
  return units;
}

TEST(R5EnumPropertyTest, EntriesKeepTheirOrderAndNoneIsChosenAtFirst) {
  R5EnumProperty p = Units();
  ASSERT_EQ(p.GetValidCount(), 3);
  EXPECT_EQ(p.GetValidEntry(0).GetName(), "mm");
  EXPECT_EQ(p.GetValidEntry(1).GetName(), "cm");
  EXPECT_EQ(p.GetValidEntry(2).GetName(), "inch");
  EXPECT_TRUE(p.GetValidEntry(3).IsEmpty());
  EXPECT_TRUE(p.GetValidEntry(-1).IsEmpty());
  EXPECT_FALSE(p.IsDefined());
  EXPECT_EQ(p.GetValue(), -1);
  EXPECT_TRUE(p.Get().IsEmpty());
  EXPECT_EQ(p.GetValueText(), "");
  EXPECT_FALSE(p.SetDefined(true));
}

TEST(R5EnumPropertyTest, AddRefusesEmptyAndDuplicateNames) {
  R5EnumProperty p = Units();
  EXPECT_FALSE(p.Add(R5EnumValue("")));
  EXPECT_FALSE(p.Add(R5EnumValue("cm")));
  EXPECT_TRUE(p.Add(R5EnumValue("CM")));  // names are compared exactly
  EXPECT_EQ(p.GetValidCount(), 4);
}

TEST(R5EnumPropertyTest, SetChoosesAnEntryByName) {
  R5EnumProperty p = Units();
  EXPECT_TRUE(p.Set(R5EnumValue("cm")));
  EXPECT_TRUE(p.IsDefined());
  EXPECT_EQ(p.GetValue(), 1);
  EXPECT_EQ(p.Get(), R5EnumValue("cm"));
  EXPECT_FALSE(p.Set(R5EnumValue("yard")));
  EXPECT_FALSE(p.SetValueText("Inch"));
  EXPECT_FALSE(p.SetValueText(nullptr));
  EXPECT_EQ(p.GetValueText(), "cm");
  EXPECT_TRUE(p.SetValueText("inch"));
  EXPECT_EQ(p.GetValue(), 2);
}

TEST(R5EnumPropertyTest, CloneAndSameDefinitionCoverTheEntries) {
  R5EnumProperty p = Units();
  p.Set(R5EnumValue("inch"));
  std::unique_ptr<R5Property> copy = p.Clone();
  ASSERT_EQ(copy->GetType(), R5PropertyType::kEnum);
  EXPECT_EQ(copy->GetValueText(), "inch");
  EXPECT_TRUE(copy->HasSameDefinition(p));

  R5EnumProperty other("Unit");
  other.Add(R5EnumValue("mm"));
  other.Add(R5EnumValue("inch"));
  other.Add(R5EnumValue("cm"));
  EXPECT_FALSE(other.HasSameDefinition(p));
  R5EnumProperty shorter("Unit");
  shorter.Add(R5EnumValue("mm"));
  EXPECT_FALSE(shorter.HasSameDefinition(p));
}

}  // namespace
