#include <utilkit/properties/properties_errors.h>
#include <utilkit/properties/user_defined_properties.h>
#include <utilkit/xml/xml_helper.h>

#include <gtest/gtest.h>

#include <string>

#include "properties/user_props_test_support.h"

namespace {

using UserPropertiesTest = props_test::UserPropsTest;

constexpr const char* kValidateAt = "VCUUserDefinedProperties::ValidateMandatoryInSet";
constexpr const char* kCopyAt = "VCUUserDefinedProperties::CopyPropertyValue";

const char kDefinition[] =
    "<Properties>"
    "<Property name='Operator' mandatory='true' description='Who' help='a|b'/>"
    "<Property name='Runs' type='long' min='1' max='9' mandatory='true'/>"
    "<Property name='Unit' type='enum' enumopts='mm,cm'/>"
    "</Properties>";

std::string Names(const VCStringArray& names) {
  std::string joined;
  for (const VCString& name : names) joined += name.str() + ";";
  return joined;
}

TEST_F(UserPropertiesTest, SetPropDefKeepsTheReEncodedDefinition) {
  VCUUserDefinedProperties user;
  EXPECT_EQ(user.GetPropDef(), "");
  ASSERT_TRUE(user.SetPropDef(VCString(kDefinition)));
  EXPECT_EQ(user.GetPropDef(), VCUUserDefinedProperties::EncodeUserPropDef(user.GetPropertySet()));
  EXPECT_NE(user.GetPropDef(), kDefinition);
  EXPECT_EQ(Names(user.GetPropertyNames()), "Operator;Runs;Unit;");

  DOM_Document document = VCUXmlHelper::ParseXml(
      "<Properties><Property name='Other' type='boolean'/></Properties>", -1);
  ASSERT_TRUE(user.SetPropDef(document.getDocumentElement()));
  EXPECT_EQ(Names(user.GetPropertyNames()), "Other;");
  EXPECT_NE(user.GetPropDef().Find("name=\"Other\""), -1);
}

TEST_F(UserPropertiesTest, AFailedSetPropDefEmptiesTheObject) {
  VCUUserDefinedProperties user;
  ASSERT_TRUE(user.SetPropDef(VCString(kDefinition)));
  EXPECT_FALSE(
      user.SetPropDef(VCString("<Properties><Property name='x' type='date'/>"
                               "</Properties>")));
  ExpectErrors({{kPropertiesErrorUnsupportedType, "Unsupported property type: date",
                 "VCUUserDefinedProperties::DecodeUserPropDef", 0},
                {kPropertiesErrorSyntax, props_test::kSyntaxError, props_test::kDecodeAt, 1}});
  EXPECT_EQ(user.GetPropDef(), "");
  EXPECT_EQ(user.GetPropertyNames().GetSize(), 0);
  EXPECT_EQ(user.GetPropertySet().GetCount(), 0);

  ASSERT_TRUE(user.SetPropDef(VCString(kDefinition)));
  EXPECT_FALSE(user.SetPropDef(DOM_Node()));
  EXPECT_EQ(user.GetPropDef(), "");
}

TEST_F(UserPropertiesTest, AnEmptyDefinitionHasNoProperties) {
  VCUUserDefinedProperties user;
  ASSERT_TRUE(user.SetPropDef(VCString("")));
  EXPECT_EQ(user.GetPropDef(), "<Properties/>");
  EXPECT_EQ(user.GetPropertyNames().GetSize(), 0);
}

class MandatoryTest : public props_test::UserPropsTest {
 protected:
  void SetUp() override {
    props_test::UserPropsTest::SetUp();
    ASSERT_TRUE(user.SetPropDef(VCString(kDefinition)));
    ASSERT_TRUE(set.Copy(user.GetPropertySet()));
  }

  // Checks that validation failed at the mandatory property `name`.
  static void ExpectMissing(const char* name) {
    ExpectErrors({{kPropertiesErrorMandatory,
                   std::string("Mandatory property is not defined: ") + name, kValidateAt, 0}});
  }

  VCUUserDefinedProperties user;
  R5PropertySet set;
};

TEST_F(MandatoryTest, AnEmptyMandatoryStringFails) {
  EXPECT_FALSE(user.ValidateMandatoryInSet(&set));
  ExpectMissing("Operator");
}

TEST_F(MandatoryTest, AnUndefinedMandatoryNumberFailsAndLaterOnesAreNotExamined) {
  set.GetProperty("Operator")->SetValueText("Ann");
  set.GetProperty("Unit")->SetMandatory(true);  // not defined either
  EXPECT_FALSE(user.ValidateMandatoryInSet(&set));
  ExpectMissing("Runs");
}

TEST_F(MandatoryTest, AMandatoryStringWithTextMustAlsoBeDefined) {
  R5Property* op = set.GetProperty("Operator");
  op->SetValueText("Ann");
  set.GetProperty("Runs")->SetValueText("3");
  EXPECT_TRUE(user.ValidateMandatoryInSet(&set));
  op->SetDefined(false);
  EXPECT_FALSE(user.ValidateMandatoryInSet(&set));
  EXPECT_EQ(VFErrorGetCount(), 1u);
}

TEST_F(MandatoryTest, TheFlagsOfTheGivenSetDecide) {
  set.GetProperty("Operator")->SetMandatory(false);
  set.GetProperty("Runs")->SetMandatory(false);
  EXPECT_TRUE(user.ValidateMandatoryInSet(&set));
  set.GetProperty("Unit")->SetMandatory(true);
  EXPECT_FALSE(user.ValidateMandatoryInSet(&set));
  ExpectMissing("Unit");
}

TEST_F(MandatoryTest, APropertyMissingFromTheSetFails) {
  set.GetProperty("Operator")->SetValueText("Ann");
  set.GetProperty("Runs")->SetValueText("3");
  set.RemoveProperty("Unit");
  EXPECT_FALSE(user.ValidateMandatoryInSet(&set));
  ExpectMissing("Unit");
}

TEST_F(UserPropertiesTest, UpdateAddsReplacesAndRemovesUserDefinedProperties) {
  VCUUserDefinedProperties user;
  ASSERT_TRUE(user.SetPropDef(VCString(kDefinition)));
  R5PropertySet host;
  host.AddString("Title", "Host's own");
  VCStringArray names;
  ASSERT_TRUE(user.UpdateUserDefinedPropsInSet(&host, names));
  EXPECT_EQ(Names(names), "Operator;Runs;Unit;");
  ASSERT_EQ(host.GetCount(), 4);
  EXPECT_EQ(host.GetProperty(0)->GetName(), "Title");
  EXPECT_TRUE(host.GetProperty("Runs")->IsMandatory());
  host.GetProperty("Operator")->SetValueText("Ann");
  host.GetProperty("Runs")->SetValueText("8");
  host.GetProperty("Unit")->SetValueText("cm");

  // Runs narrows to 1..5 (8 no longer fits), Unit becomes a number, Operator
  // is dropped, Title (the host's own) stays.
  ASSERT_TRUE(user.SetPropDef(
      VCString("<Properties><Property name='Runs' type='long' min='1' max='5'/>"
               "<Property name='Unit' type='double'/><Property name='Note'/></Properties>")));
  ASSERT_TRUE(user.UpdateUserDefinedPropsInSet(&host, names));
  EXPECT_EQ(Names(names), "Runs;Unit;Note;");
  ASSERT_EQ(host.GetCount(), 4);
  EXPECT_EQ(host.GetProperty(0)->GetName(), "Title");
  EXPECT_EQ(host.GetProperty(1)->GetName(), "Runs");
  EXPECT_EQ(host.GetProperty(2)->GetName(), "Unit");
  EXPECT_EQ(host.GetProperty(3)->GetName(), "Note");
  EXPECT_EQ(host.GetProperty("Operator"), nullptr);
  EXPECT_FALSE(host.GetProperty("Runs")->IsDefined());
  EXPECT_FALSE(host.GetProperty("Runs")->IsMandatory());
  EXPECT_EQ(host.GetProperty("Unit")->GetType(), R5PropertyType::kDouble);
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(UserPropertiesTest, UpdateKeepsValuesThatStillFit) {
  VCUUserDefinedProperties user;
  ASSERT_TRUE(user.SetPropDef(VCString(kDefinition)));
  R5PropertySet host;
  VCStringArray names;
  ASSERT_TRUE(user.UpdateUserDefinedPropsInSet(&host, names));
  host.GetProperty("Operator")->SetValueText("Ann");
  host.GetProperty("Runs")->SetValueText("4");
  host.GetProperty("Unit")->SetValueText("cm");
  ASSERT_TRUE(user.SetPropDef(
      VCString("<Properties><Property name='Operator' description='Changed'/>"
               "<Property name='Runs' type='long' min='2' max='5'/>"
               "<Property name='Unit' type='enum' enumopts='cm,m'/></Properties>")));
  ASSERT_TRUE(user.UpdateUserDefinedPropsInSet(&host, names));
  EXPECT_EQ(host.GetProperty("Operator")->GetValueText(), "Ann");
  EXPECT_EQ(host.GetProperty("Operator")->GetDescription(), "Changed");
  EXPECT_EQ(host.GetProperty("Runs")->GetValueText(), "4");
  EXPECT_TRUE(host.GetProperty("Runs")->IsDefined());
  EXPECT_EQ(static_cast<R5LongProperty*>(host.GetProperty("Runs"))->GetMin(), 2);
  EXPECT_EQ(host.GetProperty("Unit")->GetValueText(), "cm");
}

TEST_F(UserPropertiesTest, UpdateDescriptionsChangesOnlyTheTexts) {
  VCUUserDefinedProperties user;
  ASSERT_TRUE(user.SetPropDef(VCString(kDefinition)));
  R5PropertySet host;
  host.AddString("Operator", "Ann")->SetDescription("old");
  host.AddLong("Runs", 12);
  host.AddString("Title", "t")->SetDescription("host");
  user.UpdateDescriptions(&host);
  EXPECT_EQ(host.GetProperty("Operator")->GetDescription(), "Who");
  EXPECT_EQ(host.GetProperty("Operator")->GetHelp(), "a\nb");
  EXPECT_EQ(host.GetProperty("Operator")->GetValueText(), "Ann");
  EXPECT_EQ(host.GetProperty("Runs")->GetDescription(), "");
  EXPECT_EQ(host.GetProperty("Runs")->GetValueText(), "12");
  EXPECT_EQ(host.GetProperty("Title")->GetDescription(), "host");
  EXPECT_EQ(host.GetCount(), 3);
}

TEST_F(UserPropertiesTest, CopyPropertyValueCopiesEachType) {
  R5PropertySet a;
  R5PropertySet b;
  a.AddString("s", "text");
  a.AddLong("l", -5);
  a.AddHuge("h", 1LL << 50);
  a.AddFloat("f", 0.25f);
  a.AddDouble("d", 1e-9);
  a.AddBoolean("b", true);
  R5EnumProperty unit("e");
  unit.Add(R5EnumValue("mm"));
  unit.Add(R5EnumValue("cm"));
  unit.Set(R5EnumValue("cm"));
  a.AddEnum(unit);
  ASSERT_TRUE(b.Copy(a));
  b.GetProperty("s")->SetValueText("");
  b.GetProperty("l")->SetValueText("0");
  b.GetProperty("h")->SetValueText("0");
  b.GetProperty("f")->SetValueText("0");
  b.GetProperty("d")->SetValueText("0");
  b.GetProperty("b")->SetValueText("false");
  b.GetProperty("e")->SetValueText("mm");
  for (int32_t i = 0; i < a.GetCount(); ++i) {
    EXPECT_TRUE(VCUUserDefinedProperties::CopyPropertyValue(a.GetProperty(i), b.GetProperty(i)));
    EXPECT_EQ(b.GetProperty(i)->GetValueText(), a.GetProperty(i)->GetValueText());
  }
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(UserPropertiesTest, CopyPropertyValueOfAnUndefinedSourceLeavesTheTargetUndefined) {
  R5LongProperty source("a", 3);
  source.SetDefined(false);
  R5LongProperty target("b", 7);
  EXPECT_TRUE(VCUUserDefinedProperties::CopyPropertyValue(&source, &target));
  EXPECT_FALSE(target.IsDefined());
  EXPECT_EQ(target.Get(), 7);
}

TEST_F(UserPropertiesTest, CopyPropertyValueRefusedByTheTargetRangeLeavesItAlone) {
  R5DoubleProperty source("a", 50.0);
  R5DoubleProperty target("b", 1.0);
  target.SetRange(0.0, true, 10.0, true);
  EXPECT_FALSE(VCUUserDefinedProperties::CopyPropertyValue(&source, &target));
  EXPECT_EQ(target.Get(), 1.0);
  EXPECT_TRUE(target.IsDefined());
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(UserPropertiesTest, CopyPropertyValueBetweenTypesFails) {
  R5LongProperty source("a", 3);
  R5HugeProperty target("b", 7);
  EXPECT_FALSE(VCUUserDefinedProperties::CopyPropertyValue(&source, &target));
  ExpectErrors({{kPropertiesErrorCopyTypes,
                 "The data types of the properties passed to CopyPropertyValue are not the same.",
                 kCopyAt, 0}});
  EXPECT_EQ(target.Get(), 7);
}

// A host-derived type that the copy does not know.
class Colour : public R5StringProperty {
 public:
  using R5StringProperty::R5StringProperty;
  R5PropertyType GetType() const override {
    return static_cast<R5PropertyType>(static_cast<int32_t>(R5PropertyType::kFirstHostType) + 7);
  }
  std::unique_ptr<R5Property> Clone() const override { return std::make_unique<Colour>(*this); }
};

TEST_F(UserPropertiesTest, CopyPropertyValueOfAnUnknownTypeFails) {
  Colour source("a", "red");
  Colour target("b", "blue");
  EXPECT_FALSE(VCUUserDefinedProperties::CopyPropertyValue(&source, &target));
  ExpectErrors({{kPropertiesErrorType, "Invalid property type: 1007", kCopyAt, 0}});
  EXPECT_EQ(target.Get(), "blue");
}

}  // namespace
