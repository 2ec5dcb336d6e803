#include <utilkit/properties/property_to_dom_element.h>
#include <utilkit/properties/r5_property_set.h>
#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/dom.h>
#include <utilkit/xml/xml_helper.h>

#include <gtest/gtest.h>

#include <string>

#include "properties/user_props_test_support.h"

namespace {

class PropertyToDomTest : public props_test::UserPropsTest {
 protected:
  void SetUp() override {
    props_test::UserPropsTest::SetUp();
    document = DOM_Document::createDocument();
    list = document.createElement("properties");
    document.appendChild(list);
  }

  std::string Text() const {
    VCUDataBuffer out;
    EXPECT_TRUE(VCUXmlHelper::ConvertNodeTreeToText(list, &out));
    return std::string(out.GetBasePtr(), static_cast<size_t>(out.GetSize()));
  }

  DOM_Document document;
  DOM_Element list;
};

TEST_F(PropertyToDomTest, NumbersAreRealOrIntegerWithoutUnits) {
  R5LongProperty runs("Runs", 4);
  runs.SetDescription("Number of runs");
  ASSERT_TRUE(VFPropertyToDomElement(&runs, 2, list, ""));
  R5DoubleProperty gain("Gain", 0.5);
  gain.SetDefined(false);
  ASSERT_TRUE(VFPropertyToDomElement(&gain, 3, list, "gain_db"));
  EXPECT_EQ(Text(),
            "<properties>"
            "<property generated=\"true\" index=\"2\" label_en=\"Number of runs\" "
            "lookup_en=\"Runs\"><integer><dimension>DIMENSIONLESS</dimension>"
            "<default_units>(no units)</default_units><default_format>%d</default_format>"
            "<default_value>4</default_value></integer></property>"
            "<property generated=\"true\" index=\"3\" label_en=\"gain_db\" "
            "lookup_en=\"gain_db\"><real><dimension>DIMENSIONLESS</dimension>"
            "<default_units>(no units)</default_units><default_format>%g</default_format>"
            "</real></property>"
            "</properties>");
}

TEST_F(PropertyToDomTest, EnumerationsAndBooleansListTheirOptions) {
  R5EnumProperty unit("Unit");
  unit.Add(R5EnumValue("mm"));
  unit.Add(R5EnumValue("inch"));
  unit.Set(R5EnumValue("inch"));
  ASSERT_TRUE(VFPropertyToDomElement(&unit, 0, list, ""));
  R5BooleanProperty done("Done", true);
  ASSERT_TRUE(VFPropertyToDomElement(&done, 1, list, ""));
  EXPECT_EQ(Text(),
            "<properties>"
            "<property generated=\"true\" index=\"0\" label_en=\"Unit\" lookup_en=\"Unit\">"
            "<options><item index=\"0\">mm</item><item index=\"1\">inch</item>"
            "<default_value>inch</default_value></options></property>"
            "<property generated=\"true\" index=\"1\" label_en=\"Done\" lookup_en=\"Done\">"
            "<options><item index=\"0\">false</item><item index=\"1\">true</item>"
            "<default_value>true</default_value></options></property>"
            "</properties>");
}

TEST_F(PropertyToDomTest, StringsAreEdited) {
  R5StringProperty note("Note", "a & b");
  ASSERT_TRUE(VFPropertyToDomElement(&note, -1, list, ""));
  EXPECT_EQ(Text(),
            "<properties><property generated=\"true\" index=\"-1\" label_en=\"Note\" "
            "lookup_en=\"Note\"><edit><default_value>a &amp; b</default_value></edit>"
            "</property></properties>");
}

TEST_F(PropertyToDomTest, ANullParentIsRefused) {
  R5StringProperty note("Note", "");
  DOM_Element none;
  EXPECT_FALSE(VFPropertyToDomElement(&note, 0, none, ""));
  EXPECT_FALSE(VCUXmlHelper::PropertyToDomElement(nullptr, 0, list, ""));
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(PropertyToDomTest, TheXmlHelperWritesTheSameElement) {
  R5StringProperty note("Note", "text");
  ASSERT_TRUE(VCUXmlHelper::PropertyToDomElement(&note, 1, list, ""));
  std::string viaHelper = Text();
  list.removeChild(list.getFirstChild());
  ASSERT_TRUE(VFPropertyToDomElement(&note, 1, list, ""));
  EXPECT_EQ(Text(), viaHelper);
  EXPECT_NE(viaHelper.find("lookup_en=\"Note\""), std::string::npos);
}

}  // namespace
