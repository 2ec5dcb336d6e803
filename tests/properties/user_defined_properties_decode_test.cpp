#include <utilkit/properties/properties_errors.h>
#include <utilkit/properties/user_defined_properties.h>
#include <utilkit/xml/xml_errors.h>
#include <utilkit/xml/xml_helper.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>

#include "properties/user_props_test_support.h"

namespace {

using props_test::kDecodeAt;
using props_test::kSyntaxError;
using DecodeTest = props_test::UserPropsTest;

template <class P>
const P& As(const R5PropertySet& set, const char* name) {
  const R5Property* property = set.GetProperty(name);
  EXPECT_NE(property, nullptr) << name;
  return static_cast<const P&>(*property);
}

TEST_F(DecodeTest, EachTypeGetsItsPropertyInitialValueAndFlags) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='s'/>"
             "<Property name='l' type='long'/><Property name='h' type='huge'/>"
             "<Property name='f' type='float'/><Property name='d' type='double'/>"
             "<Property name='e' type='enum' enumopts='x'/><Property name='b' type='boolean'/>",
             set));
  EXPECT_EQ(VFErrorGetCount(), 0u) << VFErrorGetFullString().c_str();
  ASSERT_EQ(set.GetCount(), 7);
  const R5PropertyType types[] = {R5PropertyType::kString, R5PropertyType::kLong,
                                  R5PropertyType::kHuge,   R5PropertyType::kFloat,
                                  R5PropertyType::kDouble, R5PropertyType::kEnum,
                                  R5PropertyType::kBoolean};
  for (int32_t i = 0; i < 7; ++i) EXPECT_EQ(set.GetProperty(i)->GetType(), types[i]) << i;

  const auto& s = As<R5StringProperty>(set, "s");
  EXPECT_EQ(s.Get(), "");
  EXPECT_TRUE(s.IsDefined());
  EXPECT_TRUE(s.IsMultiLineString());
  for (const char* name : {"l", "h", "f", "d"}) {
    EXPECT_FALSE(set.GetProperty(name)->IsDefined()) << name;
    EXPECT_EQ(set.GetProperty(name)->GetValueText(), "0") << name;
    EXPECT_FALSE(set.GetProperty(name)->IsMultiLineString()) << name;
  }
  EXPECT_FALSE(As<R5EnumProperty>(set, "e").IsDefined());
  EXPECT_TRUE(As<R5BooleanProperty>(set, "b").IsDefined());
  EXPECT_FALSE(As<R5BooleanProperty>(set, "b").Get());
  for (int32_t i = 0; i < 7; ++i) EXPECT_FALSE(set.GetProperty(i)->IsMandatory()) << i;
}

TEST_F(DecodeTest, AbsentBoundsAreTheWholeTypeAndAllowed) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='l' type='long'/><Property name='h' type='huge'/>"
             "<Property name='d' type='double' min='1'/><Property name='f' type='float' max='2'/>",
             set));
  const auto& l = As<R5LongProperty>(set, "l");
  EXPECT_EQ(l.GetMin(), -2147483647 - 1);
  EXPECT_EQ(l.GetMax(), 2147483647);
  EXPECT_TRUE(l.GetMinAllowEqual());
  EXPECT_TRUE(l.GetMaxAllowEqual());
  const auto& h = As<R5HugeProperty>(set, "h");
  EXPECT_EQ(h.GetMin(), std::numeric_limits<int64_t>::min());
  EXPECT_EQ(h.GetMax(), std::numeric_limits<int64_t>::max());
  const auto& d = As<R5DoubleProperty>(set, "d");
  EXPECT_EQ(d.GetMin(), 1.0);
  EXPECT_EQ(d.GetMax(), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(d.GetMinAllowEqual());
  const auto& f = As<R5FloatProperty>(set, "f");
  EXPECT_EQ(f.GetMin(), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(f.GetMax(), 2.0f);
}

TEST_F(DecodeTest, IntegerBoundsAreRoundedHalfAwayFromZero) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='a' type='long' min='1.5' max='2.5'/>"
             "<Property name='b' type='long' min='-1.5' max='-0.5'/>"
             "<Property name='c' type='huge' min='-2.4' max='7.49'/>"
             "<Property name='d' type='long' min='1.4999'/>",
             set));
  EXPECT_EQ(As<R5LongProperty>(set, "a").GetMin(), 2);
  EXPECT_EQ(As<R5LongProperty>(set, "a").GetMax(), 3);
  EXPECT_EQ(As<R5LongProperty>(set, "b").GetMin(), -2);
  EXPECT_EQ(As<R5LongProperty>(set, "b").GetMax(), -1);
  EXPECT_EQ(As<R5HugeProperty>(set, "c").GetMin(), -2);
  EXPECT_EQ(As<R5HugeProperty>(set, "c").GetMax(), 7);
  EXPECT_EQ(As<R5LongProperty>(set, "d").GetMin(), 1);
}

TEST_F(DecodeTest, IntegerBoundsAreExactAndClampedToTheType) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='h' type='huge' min='-9007199254740993' max='9007199254740993'/>"
             "<Property name='l' type='long' min='-1e20' max='3000000000'/>"
             "<Property name='x' type='huge' min='-inf' max='1e19'/>",
             set));
  EXPECT_EQ(As<R5HugeProperty>(set, "h").GetMin(), -9007199254740993LL);
  EXPECT_EQ(As<R5HugeProperty>(set, "h").GetMax(), 9007199254740993LL);
  EXPECT_EQ(As<R5LongProperty>(set, "l").GetMin(), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(As<R5LongProperty>(set, "l").GetMax(), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(As<R5HugeProperty>(set, "x").GetMin(), std::numeric_limits<int64_t>::min());
  EXPECT_EQ(As<R5HugeProperty>(set, "x").GetMax(), std::numeric_limits<int64_t>::max());
}

TEST_F(DecodeTest, AllowEqualFlagsGoIntoTheRange) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='d' type='double' min='0' max='10' minallowequal='false' "
             "maxallowequal='No'/>"
             "<Property name='l' type='long' minallowequal='0'/>",
             set));
  auto& d = const_cast<R5DoubleProperty&>(As<R5DoubleProperty>(set, "d"));
  EXPECT_FALSE(d.GetMinAllowEqual());
  EXPECT_FALSE(d.GetMaxAllowEqual());
  EXPECT_FALSE(d.Set(0.0));
  EXPECT_FALSE(d.Set(10.0));
  EXPECT_TRUE(d.Set(9.5));
  auto& l = const_cast<R5LongProperty&>(As<R5LongProperty>(set, "l"));
  EXPECT_FALSE(l.GetMinAllowEqual());
  EXPECT_FALSE(l.Set(std::numeric_limits<int32_t>::min()));
}

TEST_F(DecodeTest, TypeAndMandatoryIgnoreCase) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='a' type='Long' mandatory='TRUE'/>"
             "<Property name='b' type='DOUBLE' mandatory='yes'/>"
             "<Property name='c' type='Enum' enumopts='x' mandatory='True'/>",
             set));
  EXPECT_EQ(set.GetProperty("a")->GetType(), R5PropertyType::kLong);
  EXPECT_TRUE(set.GetProperty("a")->IsMandatory());
  EXPECT_EQ(set.GetProperty("b")->GetType(), R5PropertyType::kDouble);
  EXPECT_FALSE(set.GetProperty("b")->IsMandatory());
  EXPECT_TRUE(set.GetProperty("c")->IsMandatory());
}

TEST_F(DecodeTest, EnumOptionsAreAddedInOrder) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='e' type='enum' enumopts='a,b,c'/>"
             "<Property name='g' type='enum' enumopts=',z,,y , x,'/>",
             set));
  const auto& e = As<R5EnumProperty>(set, "e");
  ASSERT_EQ(e.GetValidCount(), 3);
  EXPECT_EQ(e.GetValidEntry(0).GetName(), "a");
  EXPECT_EQ(e.GetValidEntry(1).GetName(), "b");
  EXPECT_EQ(e.GetValidEntry(2).GetName(), "c");
  EXPECT_EQ(e.GetValue(), -1);
  const auto& g = As<R5EnumProperty>(set, "g");
  ASSERT_EQ(g.GetValidCount(), 3);
  EXPECT_EQ(g.GetValidEntry(0).GetName(), "z");
  EXPECT_EQ(g.GetValidEntry(1).GetName(), "y ");
  EXPECT_EQ(g.GetValidEntry(2).GetName(), " x");
}

TEST_F(DecodeTest, DescriptionAndHelpWithLineBreaks) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='a' description='Who ran it' help='first|second'/>"
             "<Property name='b' help='|x||'/>",
             set));
  EXPECT_EQ(set.GetProperty("a")->GetDescription(), "Who ran it");
  EXPECT_EQ(set.GetProperty("a")->GetHelp(), "first\nsecond");
  EXPECT_EQ(set.GetProperty("b")->GetHelp(), "\nx\n\n");
  EXPECT_EQ(set.GetProperty("b")->GetDescription(), "");
}

TEST_F(DecodeTest, OtherChildrenAreIgnored) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("text<Property name='a'/><!-- c --><Other name='x'/><property name='y'/>"
             "<?pi data?><Property name='b'><Property name='inner'/></Property>",
             set));
  ASSERT_EQ(set.GetCount(), 2);
  EXPECT_EQ(set.GetProperty(0)->GetName(), "a");
  EXPECT_EQ(set.GetProperty(1)->GetName(), "b");
}

TEST_F(DecodeTest, ALaterPropertyOfTheSameNameReplacesTheEarlierOne) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='a'/><Property name='b'/><Property name='a' type='long'/>", set));
  ASSERT_EQ(set.GetCount(), 2);
  EXPECT_EQ(set.GetProperty(0)->GetType(), R5PropertyType::kLong);
  EXPECT_EQ(set.GetProperty(1)->GetName(), "b");
}

TEST_F(DecodeTest, TheTargetSetIsEmptiedFirst) {
  R5PropertySet set;
  set.AddString("old", "");
  ASSERT_TRUE(Decode("<Property name='a'/>", set));
  ASSERT_EQ(set.GetCount(), 1);
  EXPECT_EQ(set.GetProperty(0)->GetName(), "a");
  EXPECT_FALSE(VCUUserDefinedProperties::DecodeUserPropDef(VCString("<Other/>"), set));
  EXPECT_EQ(set.GetCount(), 0);
}

TEST_F(DecodeTest, ARootOfAnotherNameIsOnlyTheSyntaxError) {
  R5PropertySet set;
  EXPECT_FALSE(VCUUserDefinedProperties::DecodeUserPropDef(
      VCString("<Property><Property name='a'/></Property>"), set));
  ExpectErrors({{kPropertiesErrorSyntax, kSyntaxError, kDecodeAt, 0}});
  EXPECT_EQ(set.GetCount(), 0);
}

TEST_F(DecodeTest, ANullRootIsOnlyTheSyntaxError) {
  R5PropertySet set;
  set.AddString("old", "");
  EXPECT_FALSE(VCUUserDefinedProperties::DecodeUserPropDef(DOM_Node(), set));
  ExpectErrors({{kPropertiesErrorSyntax, kSyntaxError, kDecodeAt, 0}});
  EXPECT_EQ(set.GetCount(), 0);
}

TEST_F(DecodeTest, ADocumentNodeDecodesItsRootElement) {
  R5PropertySet set;
  const char text[] = "<Properties><Property name='a'/></Properties>";
  DOM_Document document = VCUXmlHelper::ParseXml(text, -1);
  ASSERT_TRUE(VCUUserDefinedProperties::DecodeUserPropDef(document, set));
  EXPECT_EQ(set.GetCount(), 1);
}

TEST_F(DecodeTest, TextThatIsNotXmlFailsAfterTheParserError) {
  R5PropertySet set;
  set.AddString("old", "");
  EXPECT_FALSE(VCUUserDefinedProperties::DecodeUserPropDef(VCString("<Properties>"), set));
  ASSERT_EQ(VFErrorGetCount(), 2u);
  EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kXmlErrorParse);
  const VCErrorRecord* last = VFErrorGetLast();
  EXPECT_EQ(VFErrorGetCode(last), kPropertiesErrorSyntax);
  EXPECT_STREQ(VFErrorGetMessage(last), kSyntaxError);
  EXPECT_STREQ(VFErrorGetLocation(last), kDecodeAt);
  EXPECT_EQ(VFErrorGetFlag(last), 1);
  EXPECT_EQ(set.GetCount(), 0);
}

TEST_F(DecodeTest, AnEmptyTextIsADefinitionWithoutProperties) {
  R5PropertySet set;
  set.AddString("old", "");
  EXPECT_TRUE(VCUUserDefinedProperties::DecodeUserPropDef(VCString(""), set));
  EXPECT_EQ(set.GetCount(), 0);
  set.AddString("old", "");
  EXPECT_TRUE(VCUUserDefinedProperties::DecodeUserPropDef(VCString(" \n\t"), set));
  EXPECT_EQ(set.GetCount(), 0);
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(DecodeTest, AMissingNameFailsAndKeepsTheEarlierProperties) {
  R5PropertySet set;
  EXPECT_FALSE(
      Decode("<Property name='a'/><Property name='b'/><Property type='long'/>"
             "<Property name='c'/>",
             set));
  ExpectDecodeFailure({kXmlErrorNoAttribute, "No attribute found with name : name",
                       "VCUXmlHelper::GetAttribute", 0});
  ASSERT_EQ(set.GetCount(), 2);
  EXPECT_EQ(set.GetProperty(0)->GetName(), "a");
  EXPECT_EQ(set.GetProperty(1)->GetName(), "b");
}

TEST_F(DecodeTest, AnEmptyNameIsOnlyTheSyntaxError) {
  R5PropertySet set;
  EXPECT_FALSE(Decode("<Property name='a'/><Property name=''/>", set));
  ExpectErrors({{kPropertiesErrorSyntax, kSyntaxError, kDecodeAt, 1}});
  EXPECT_EQ(set.GetCount(), 1);
}

// A decode of one property after a valid one, with its failure record.
struct BadProperty {
  const char* xml;
  int32_t code;
  const char* message;
};

class BadPropertyTest : public props_test::UserPropsTest,
                        public ::testing::WithParamInterface<BadProperty> {};

TEST_P(BadPropertyTest, FailsWithItsRecordAndKeepsTheEarlierProperty) {
  R5PropertySet set;
  EXPECT_FALSE(Decode(std::string("<Property name='first'/>") + GetParam().xml, set));
  ExpectDecodeFailure({GetParam().code, GetParam().message, kDecodeAt, 0});
  ASSERT_EQ(set.GetCount(), 1);
  EXPECT_EQ(set.GetProperty(0)->GetName(), "first");
}

INSTANTIATE_TEST_SUITE_P(
    DecodeErrors, BadPropertyTest,
    ::testing::Values(BadProperty{"<Property name='x' type='long' min='low'/>", kPropertiesErrorMin,
                                  "Invalid min attribute"},
                      BadProperty{"<Property name='x' type='double' min='nan'/>",
                                  kPropertiesErrorMin, "Invalid min attribute"},
                      BadProperty{"<Property name='x' type='long' max='1,5'/>", kPropertiesErrorMax,
                                  "Invalid max attribute"},
                      BadProperty{"<Property name='x' type='float' minallowequal='maybe'/>",
                                  kPropertiesErrorMinAllowEqual, "Invalid minallowequal attribute"},
                      BadProperty{"<Property name='x' type='huge' maxallowequal=''/>",
                                  kPropertiesErrorMaxAllowEqual, "Invalid maxallowequal attribute"},
                      BadProperty{"<Property name='x' type='enum' enumopts=''/>",
                                  kPropertiesErrorEnumOpts, "Invalid enumopts attribute"},
                      BadProperty{"<Property name='x' type='enum' enumopts=',,'/>",
                                  kPropertiesErrorEnumOpts, "Invalid enumopts attribute"},
                      BadProperty{"<Property name='x' type='enum' enumopts='a,b,a'/>",
                                  kPropertiesErrorEnumOpts, "Invalid enumopts attribute"},
                      BadProperty{"<Property name='x' type='Date'/>",
                                  kPropertiesErrorUnsupportedType,
                                  "Unsupported property type: date"},
                      // Bounds are read before the type is looked at, min before max.
                      BadProperty{"<Property name='x' type='date' max='?' min='?'/>",
                                  kPropertiesErrorMin, "Invalid min attribute"},
                      // Bounds are checked for every type, also where they are not used.
                      BadProperty{"<Property name='x' type='string' maxallowequal='?'/>",
                                  kPropertiesErrorMaxAllowEqual,
                                  "Invalid maxallowequal attribute"}));

TEST_F(DecodeTest, AnEnumWithoutOptionsFailsAtTheMissingAttribute) {
  R5PropertySet set;
  EXPECT_FALSE(Decode("<Property name='first'/><Property name='x' type='enum'/>", set));
  ExpectDecodeFailure({kXmlErrorNoAttribute, "No attribute found with name : enumopts",
                       "VCUXmlHelper::GetAttribute", 0});
  EXPECT_EQ(set.GetCount(), 1);
}

TEST_F(DecodeTest, ADefinitionFileDecodes) {
  const std::string path = std::string(UTILKIT_TEST_DATA_DIR) + "/properties/all_types.xml";
  DOM_Document document = VCUXmlHelper::ParseXmlFromFile(path.c_str());
  ASSERT_FALSE(document.isNull()) << VFErrorGetFullString().c_str();
  R5PropertySet set;
  ASSERT_TRUE(VCUUserDefinedProperties::DecodeUserPropDef(document.getDocumentElement(), set));
  EXPECT_EQ(set.GetCount(), 8);
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

}  // namespace
