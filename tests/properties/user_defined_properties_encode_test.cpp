#include <utilkit/properties/user_defined_properties.h>
#include <utilkit/xml/xml_helper.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "properties/user_props_test_support.h"

namespace {

using EncodeTest = props_test::UserPropsTest;

// A host-derived type that a definition cannot name.
class Colour : public R5StringProperty {
 public:
  using R5StringProperty::R5StringProperty;
  R5PropertyType GetType() const override { return R5PropertyType::kFirstHostType; }
  std::unique_ptr<R5Property> Clone() const override { return std::make_unique<Colour>(*this); }
};

// Decodes `text` into a new set, which must succeed.
void DecodeInto(const VCString& text, R5PropertySet& set) {
  ASSERT_TRUE(VCUUserDefinedProperties::DecodeUserPropDef(text, set))
      << VFErrorGetFullString().c_str() << "\n"
      << text.c_str();
}

TEST_F(EncodeTest, WritesOnePropertyElementPerLineWithExplicitTypeAndMandatory) {
  R5PropertySet set;
  ASSERT_TRUE(
      Decode("<Property name='Operator' mandatory='TRUE' description='Who &amp; when' help='a|b'/>"
             "<Property name='Runs' type='long' min='1' maxallowequal='false'/>"
             "<Property name='Unit' type='enum' enumopts='mm,cm'/>",
             set));
  EXPECT_EQ(std::string(VCUUserDefinedProperties::EncodeUserPropDef(set)),
            "<Properties>\n"
            "\t<Property description=\"Who &amp; when\" help=\"a|b\" mandatory=\"true\" "
            "name=\"Operator\" type=\"string\"/>\n"
            "\t<Property mandatory=\"false\" max=\"2147483647\" maxallowequal=\"False\" "
            "min=\"1\" minallowequal=\"True\" name=\"Runs\" type=\"long\"/>\n"
            "\t<Property enumopts=\"mm,cm\" mandatory=\"false\" name=\"Unit\" type=\"enum\"/>\n"
            "</Properties>");
}

TEST_F(EncodeTest, AnEmptySetIsAnEmptyRoot) {
  R5PropertySet set;
  EXPECT_EQ(std::string(VCUUserDefinedProperties::EncodeUserPropDef(set)), "<Properties/>");
}

TEST_F(EncodeTest, ADecodedDefinitionDecodesBackToTheSameDefinitions) {
  R5PropertySet first;
  ASSERT_TRUE(Decode(
      "<Property name='s' mandatory='true' description='&lt;d&gt; &quot;q&quot;' help='x||y'/>"
      "<Property name='l' type='long' min='-1.5' max='7' minallowequal='no'/>"
      "<Property name='h' type='huge' min='-9223372036854775808' minallowequal='false' "
      "max='9007199254740993'/>"
      "<Property name='f' type='float' min='0.1' max='1e39'/>"
      "<Property name='d' type='double' min='-inf' minallowequal='false' max='0.3'/>"
      "<Property name='e' type='enum' enumopts='b,a,c' mandatory='true'/>"
      "<Property name='b' type='boolean' description='\xC3\xA9t\xC3\xA9'/>",
      first));
  const VCString text = VCUUserDefinedProperties::EncodeUserPropDef(first);
  R5PropertySet second;
  DecodeInto(text, second);
  EXPECT_TRUE(second.HasSameDefinitions(first)) << text.c_str();
  EXPECT_EQ(std::string(VCUUserDefinedProperties::EncodeUserPropDef(second)), text.str());
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(EncodeTest, TheDefinitionFileRoundTrips) {
  const std::string path = std::string(UTILKIT_TEST_DATA_DIR) + "/properties/all_types.xml";
  DOM_Document document = VCUXmlHelper::ParseXmlFromFile(path.c_str());
  R5PropertySet first;
  ASSERT_TRUE(VCUUserDefinedProperties::DecodeUserPropDef(document, first));
  R5PropertySet second;
  DecodeInto(VCUUserDefinedProperties::EncodeUserPropDef(first), second);
  EXPECT_TRUE(second.HasSameDefinitions(first));
}

TEST_F(EncodeTest, HandBuiltSetsKeepTheirDefinitionsButNotValues) {
  R5PropertySet set;
  set.AddString("Note", "text")->SetHelp("one\ntwo");
  R5FloatProperty* ratio = set.AddFloat("Ratio", 0.5f);
  ratio->SetRange(0.1f, false, std::numeric_limits<float>::max(), true);
  set.AddDouble("Gain", 3.0)->SetRange(-1e300, true, 1e-300, true);
  set.AddHuge("Size", 5)->SetRange(std::numeric_limits<int64_t>::min(), true, 10, false);
  set.AddBoolean("Done", true)->SetMandatory(true);
  set.Add(Colour("Tint"));
  const VCString text = VCUUserDefinedProperties::EncodeUserPropDef(set);
  EXPECT_EQ(text.Find("Tint"), -1);
  EXPECT_NE(text.Find("help=\"one|two\""), -1);
  EXPECT_NE(text.Find("min=\"0.1\""), -1);

  R5PropertySet back;
  DecodeInto(text, back);
  set.RemoveProperty("Tint");
  EXPECT_TRUE(back.HasSameDefinitions(set)) << text.c_str();
  EXPECT_EQ(back.GetProperty("Note")->GetValueText(), "");
  EXPECT_FALSE(back.GetProperty("Ratio")->IsDefined());
  EXPECT_EQ(back.GetProperty("Done")->GetValueText(), "false");
}

}  // namespace
