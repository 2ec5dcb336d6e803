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

// The names of the properties of `set`, each followed by ';'.
std::string Names(const R5PropertySet& set) {
  std::string names;
  for (int32_t i = 0; i < set.GetCount(); ++i) names += set.GetProperty(i)->GetName().str() + ";";
  return names;
}

// The option names of an enumeration, each followed by ';'.
std::string Options(const R5EnumProperty& e) {
  std::string names;
  for (int32_t i = 0; i < e.GetValidCount(); ++i) names += e.GetValidEntry(i).GetName().str() + ";";
  return names;
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

// The bounds of one integer property decoded from `attributes`.
std::pair<int64_t, int64_t> IntegerBounds(const std::string& attributes) {
  R5PropertySet set;
  EXPECT_TRUE(VCUUserDefinedProperties::DecodeUserPropDef(
      VCString("<Properties><Property name='x' " + attributes + "/></Properties>"), set))
      << attributes;
  const R5Property* p = set.GetProperty("x");
  if (p == nullptr) return {};
  if (p->GetType() == R5PropertyType::kLong) {
    const auto& l = static_cast<const R5LongProperty&>(*p);
    EXPECT_TRUE(l.GetMinAllowEqual() && l.GetMaxAllowEqual()) << attributes;
    return {l.GetMin(), l.GetMax()};
  }
  const auto& h = static_cast<const R5HugeProperty&>(*p);
  EXPECT_TRUE(h.GetMinAllowEqual() && h.GetMaxAllowEqual()) << attributes;
  return {h.GetMin(), h.GetMax()};
}

TEST_F(DecodeTest, IntegerBoundsAreRoundedHalfAwayFromZeroExactAndClampedToTheType) {
  constexpr int64_t kLongMin = std::numeric_limits<int32_t>::min();
  constexpr int64_t kLongMax = std::numeric_limits<int32_t>::max();
  constexpr int64_t kHugeMin = std::numeric_limits<int64_t>::min();
  constexpr int64_t kHugeMax = std::numeric_limits<int64_t>::max();
  const std::pair<const char*, std::pair<int64_t, int64_t>> cases[] = {
      {"type='long'", {kLongMin, kLongMax}},
      {"type='huge'", {kHugeMin, kHugeMax}},
      {"type='long' min='1.5' max='2.5'", {2, 3}},
      {"type='long' min='-1.5' max='-0.5'", {-2, -1}},
      {"type='huge' min='-2.4' max='7.49'", {-2, 7}},
      {"type='long' min='1.4999'", {1, kLongMax}},
      {"type='huge' min='-9007199254740993' max='9007199254740993'",
       {-9007199254740993LL, 9007199254740993LL}},
      {"type='long' min='-1e20' max='3000000000'", {kLongMin, kLongMax}},
      {"type='huge' min='-inf' max='1e19'", {kHugeMin, kHugeMax}},
  };
  for (const auto& [attributes, bounds] : cases) EXPECT_EQ(IntegerBounds(attributes), bounds);
}

TEST_F(DecodeTest, AbsentRealBoundsAreInfinite) {
  R5PropertySet set;
  ASSERT_TRUE(Decode(
      "<Property name='d' type='double' min='1'/><Property name='f' type='float' max='2'/>", set));
  const auto& d = As<R5DoubleProperty>(set, "d");
  EXPECT_EQ(d.GetMin(), 1.0);
  EXPECT_EQ(d.GetMax(), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(d.GetMinAllowEqual());
  const auto& f = As<R5FloatProperty>(set, "f");
  EXPECT_EQ(f.GetMin(), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(f.GetMax(), 2.0f);
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
  EXPECT_EQ(Options(As<R5EnumProperty>(set, "e")), "a;b;c;");
  EXPECT_EQ(As<R5EnumProperty>(set, "e").GetValue(), -1);
  EXPECT_EQ(Options(As<R5EnumProperty>(set, "g")), "z;y ; x;");
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
  EXPECT_EQ(Names(set), "a;b;");
}

TEST_F(DecodeTest, ALaterPropertyOfTheSameNameReplacesTheEarlierOne) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='a'/><Property name='b'/><Property name='a' type='long'/>", set));
  EXPECT_EQ(Names(set), "a;b;");
  EXPECT_EQ(set.GetProperty(0)->GetType(), R5PropertyType::kLong);
}

TEST_F(DecodeTest, TheTargetSetIsEmptiedFirst) {
  R5PropertySet set;
  set.AddString("old", "");
  ASSERT_TRUE(Decode("<Property name='a'/>", set));
  EXPECT_EQ(Names(set), "a;");
  EXPECT_FALSE(VCUUserDefinedProperties::DecodeUserPropDef(VCString("<Other/>"), set));
  EXPECT_EQ(set.GetCount(), 0);
}

TEST_F(DecodeTest, ARootOfAnotherNameOrANullRootIsOnlyTheSyntaxError) {
  R5PropertySet set;
  set.AddString("old", "");
  EXPECT_FALSE(VCUUserDefinedProperties::DecodeUserPropDef(
      VCString("<Property><Property name='a'/></Property>"), set));
  ExpectErrors({{kPropertiesErrorSyntax, kSyntaxError, kDecodeAt, 0}});
  EXPECT_EQ(set.GetCount(), 0);
  VFErrorClear();
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

TEST_F(DecodeTest, ABadPropertyFailsWithItsRecordAndKeepsTheEarlierOnes) {
  struct Case {
    const char* xml;
    int32_t code;
    const char* message;
    const char* location = kDecodeAt;
  };
  const char* const kAttributeAt = "VCUXmlHelper::GetAttribute";
  const Case cases[] = {
      {"<Property type='long'/>", kXmlErrorNoAttribute, "No attribute found with name : name",
       kAttributeAt},
      {"<Property name='x' type='enum'/>", kXmlErrorNoAttribute,
       "No attribute found with name : enumopts", kAttributeAt},
      {"<Property name='x' type='long' min='low'/>", kPropertiesErrorMin, "Invalid min attribute"},
      {"<Property name='x' type='double' min='nan'/>", kPropertiesErrorMin,
       "Invalid min attribute"},
      {"<Property name='x' type='long' max='1,5'/>", kPropertiesErrorMax, "Invalid max attribute"},
      {"<Property name='x' type='float' minallowequal='maybe'/>", kPropertiesErrorMinAllowEqual,
       "Invalid minallowequal attribute"},
      {"<Property name='x' type='huge' maxallowequal=''/>", kPropertiesErrorMaxAllowEqual,
       "Invalid maxallowequal attribute"},
      {"<Property name='x' type='enum' enumopts=''/>", kPropertiesErrorEnumOpts,
       "Invalid enumopts attribute"},
      {"<Property name='x' type='enum' enumopts=',,'/>", kPropertiesErrorEnumOpts,
       "Invalid enumopts attribute"},
      {"<Property name='x' type='enum' enumopts='a,b,a'/>", kPropertiesErrorEnumOpts,
       "Invalid enumopts attribute"},
      {"<Property name='x' type='Date'/>", kPropertiesErrorUnsupportedType,
       "Unsupported property type: date"},
      // Bounds are read before the type is looked at, min before max.
      {"<Property name='x' type='date' max='?' min='?'/>", kPropertiesErrorMin,
       "Invalid min attribute"},
      // Bounds are checked for every type, also where they are not used.
      {"<Property name='x' type='string' maxallowequal='?'/>", kPropertiesErrorMaxAllowEqual,
       "Invalid maxallowequal attribute"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.xml);
    VFErrorClear();
    R5PropertySet set;
    EXPECT_FALSE(Decode(
        std::string("<Property name='a'/><Property name='b'/>") + c.xml + "<Property name='c'/>",
        set));
    ExpectDecodeFailure({c.code, c.message, c.location, 0});
    EXPECT_EQ(Names(set), "a;b;");
  }
}

TEST_F(DecodeTest, AnEmptyNameIsOnlyTheSyntaxError) {
  R5PropertySet set;
  EXPECT_FALSE(Decode("<Property name='a'/><Property name=''/>", set));
  ExpectErrors({{kPropertiesErrorSyntax, kSyntaxError, kDecodeAt, 1}});
  EXPECT_EQ(Names(set), "a;");
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
