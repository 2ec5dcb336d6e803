#include <utilkit/properties/r5_boolean_property.h>
#include <utilkit/properties/r5_string_property.h>

#include <gtest/gtest.h>

namespace {

TEST(R5PropertyTest, FlagsAreIndependentBits) {
  R5StringProperty p("Note");
  EXPECT_EQ(p.GetFlags(), R5Property::m_nDefinedMask);
  p.SetMandatory(true);
  p.SetMultiLineString(true);
  EXPECT_EQ(p.GetFlags(), R5Property::m_nDefinedMask | R5Property::m_nMandatoryMask |
                              R5Property::m_nMultiLineStringMask);
  EXPECT_TRUE(p.SetDefined(false));
  EXPECT_FALSE(p.IsDefined());
  EXPECT_TRUE(p.IsMandatory());
  EXPECT_TRUE(p.IsMultiLineString());
  p.SetMandatory(false);
  EXPECT_EQ(p.GetFlags(), R5Property::m_nMultiLineStringMask);
}

TEST(R5PropertyTest, DescriptionAndHelpTakeNullAsEmpty) {
  R5BooleanProperty p("Flag");
  p.SetDescription("Calibrated");
  p.SetHelp("line 1\nline 2");
  p.SetDescription(nullptr);
  p.SetHelp(nullptr);
  EXPECT_EQ(p.GetDescription(), "");
  EXPECT_EQ(p.GetHelp(), "");
}

TEST(R5PropertyTest, SameDefinitionComparesNameTypeMandatoryAndTexts) {
  R5StringProperty a("Note", "x");
  R5StringProperty b("Note", "y");
  b.SetMultiLineString(true);
  b.SetDefined(false);
  EXPECT_TRUE(a.HasSameDefinition(b));
  b.SetMandatory(true);
  EXPECT_FALSE(a.HasSameDefinition(b));
  a.SetMandatory(true);
  a.SetDescription("d");
  EXPECT_FALSE(a.HasSameDefinition(b));
  b.SetDescription("d");
  b.SetHelp("h");
  EXPECT_FALSE(a.HasSameDefinition(b));
  EXPECT_FALSE(a.HasSameDefinition(R5BooleanProperty("Note")));
}

TEST(R5StringPropertyTest, SetStoresAnyTextAndMarksDefined) {
  R5StringProperty p("Note", nullptr);
  EXPECT_EQ(p.GetType(), R5PropertyType::kString);
  EXPECT_EQ(p.Get(), "");
  EXPECT_TRUE(p.IsDefined());
  p.SetDefined(false);
  EXPECT_TRUE(p.Set("a\nb"));
  EXPECT_TRUE(p.IsDefined());
  EXPECT_EQ(p.GetValueText(), "a\nb");
  EXPECT_TRUE(p.SetValueText("c"));
  EXPECT_EQ(p.Get(), "c");
  EXPECT_FALSE(p.SetValueText(nullptr));
  EXPECT_EQ(p.Get(), "c");
  std::unique_ptr<R5Property> copy = p.Clone();
  EXPECT_EQ(copy->GetValueText(), "c");
}

TEST(R5BooleanPropertyTest, TextUsesTheBooleanWords) {
  R5BooleanProperty p("Flag");
  EXPECT_EQ(p.GetType(), R5PropertyType::kBoolean);
  EXPECT_FALSE(p.Get());
  EXPECT_EQ(p.GetValueText(), "false");
  EXPECT_TRUE(p.SetValueText("YES"));
  EXPECT_TRUE(p.Get());
  EXPECT_EQ(p.GetValueText(), "true");
  EXPECT_FALSE(p.SetValueText("maybe"));
  EXPECT_FALSE(p.SetValueText(nullptr));
  EXPECT_TRUE(p.Get());
  EXPECT_TRUE(p.Set(false));
  std::unique_ptr<R5Property> copy = p.Clone();
  EXPECT_EQ(copy->GetValueText(), "false");
}

}  // namespace
