// VCUXmlHelper's queries (children, attributes, text) and string conversions.
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include <utilkit/base/encoding.h>
#include <utilkit/xml/xml_errors.h>

#include <utility>

#include "xml/xml_test_support.h"

namespace {

using xml_test::Parse;
using xml_test::Utf8;

class XmlQueryTest : public xml_test::XmlTest {
 protected:
  void SetUp() override {
    XmlTest::SetUp();
    doc = Parse(
        "<r><c n=\"1\" empty=\"\">one</c><c n=\"2\"/><g><deep/></g><e/><m><!--c--></m>"
        "<k><x/>tail</k></r>");
    ASSERT_FALSE(doc.isNull());
    root = doc.getDocumentElement();
  }
  void TearDown() override {
    VFSetEncodingType(nullptr);
    XmlTest::TearDown();
  }
  DOM_Node Child(const char* tag) {
    DOM_Node out;
    EXPECT_TRUE(VCUXmlHelper::GetSingleElementChild(root, tag, &out));
    return out;
  }

  DOM_Document doc;
  DOM_Element root;
};

TEST_F(XmlQueryTest, SingleElementChildTakesTheFirstMatchSilently) {
  DOM_Node out;
  EXPECT_TRUE(VCUXmlHelper::GetSingleElementChild(root, "c", &out));
  EXPECT_EQ(Utf8(DOM_Element(out).getAttribute("n")), "1");
  EXPECT_EQ(VFErrorGetCount(), 0u);  // the second <c> raises nothing
}

TEST_F(XmlQueryTest, SingleElementChildLooksOnlyAtDirectChildrenByExactName) {
  for (const auto& [parent, tag] :
       {std::pair<DOM_Node, const char*>{root, "deep"}, {root, "C"}, {DOM_Node(), "c"}}) {
    VFErrorClear();
    DOM_Node out = root;
    EXPECT_FALSE(VCUXmlHelper::GetSingleElementChild(parent, tag, &out));
    EXPECT_TRUE(out.isNull());
    ExpectOnlyError(kXmlErrorNoElement, tag, "VCUXmlHelper::GetSingleElementChild");
  }
}

TEST_F(XmlQueryTest, AttributeValuesAndTheirFailures) {
  VCString value = "unchanged";
  EXPECT_TRUE(VCUXmlHelper::GetAttribute(Child("c"), "n", &value));
  EXPECT_EQ(value, "1");
  EXPECT_TRUE(VCUXmlHelper::GetAttribute(Child("c"), "empty", &value));
  EXPECT_EQ(value, "");
  EXPECT_EQ(VFErrorGetCount(), 0u);

  EXPECT_FALSE(VCUXmlHelper::GetAttribute(Child("c"), "missing", &value));
  ExpectOnlyError(kXmlErrorNoAttribute, "missing", "VCUXmlHelper::GetAttribute");

  VFErrorClear();
  const DOM_Node text = Child("c").getFirstChild();
  ASSERT_EQ(text.getNodeType(), DOM_Node::TEXT_NODE);
  EXPECT_FALSE(VCUXmlHelper::GetAttribute(text, "n", &value));
  ExpectOnlyError(kXmlErrorNoAttributes, "n", "VCUXmlHelper::GetAttribute");
}

TEST_F(XmlQueryTest, TextFromElementTakesTheFirstChildWhateverItIs) {
  EXPECT_EQ(VCUXmlHelper::GetTextFromElement(Child("c")), "one");
  EXPECT_EQ(VCUXmlHelper::GetTextFromElement(Child("m")), "c");  // a comment
  EXPECT_EQ(VFErrorGetCount(), 0u);

  EXPECT_EQ(VCUXmlHelper::GetTextFromElement(Child("e")), "");
  ExpectOnlyError(kXmlErrorNoTextChild, "e", "VCUXmlHelper::GetTextFromElement");

  VFErrorClear();
  EXPECT_EQ(VCUXmlHelper::GetTextFromElement(Child("k")), "");  // an element first: no value
  ExpectOnlyError(kXmlErrorEmptyText, "k", "VCUXmlHelper::GetTextFromElement");
}

TEST_F(XmlQueryTest, VCToDOMStringDropsControlBytesExceptTabAndLineEnds) {
  const DOMString converted = VCUXmlHelper::VCToDOMString(
      "a\fb\x1b"
      "c\td\ne\rf\x01g\x1f");
  EXPECT_EQ(converted.str(), u"abc\td\ne\rfg");
  EXPECT_EQ(VCUXmlHelper::VCToDOMString("\xc3\xa9\xe2\x82\xac").str(), u"\u00e9\u20ac");
  EXPECT_TRUE(VCUXmlHelper::VCToDOMString(nullptr).isNull());
  EXPECT_FALSE(VCUXmlHelper::VCToDOMString("").isNull());
}

TEST_F(XmlQueryTest, Utf8ConversionsKeepEverything) {
  const DOMString text = VCUXmlHelper::UTF8ToDOMString("a\fb\xf0\x9f\x98\x80");
  EXPECT_EQ(text.str(), u"a\fb\U0001F600");
  EXPECT_EQ(VCUXmlHelper::DOMToUTF8String(text), "a\fb\xf0\x9f\x98\x80");
  EXPECT_EQ(VCUXmlHelper::DOMToVCString(text), "a\fb\xf0\x9f\x98\x80");
  EXPECT_TRUE(VCUXmlHelper::UTF8ToDOMString(nullptr).isNull());
  EXPECT_EQ(VCUXmlHelper::DOMToVCString(DOMString()), "");
}

TEST_F(XmlQueryTest, OtherProcessEncodingsGoThroughTheLocalCodePage) {
  VFSetEncodingType("C");
  EXPECT_EQ(VCUXmlHelper::VCToDOMString("Force\x02 kN").str(), u"Force kN");
  EXPECT_EQ(VCUXmlHelper::DOMToVCString(DOMString(u"Force kN")), "Force kN");
  // The UTF-8 forms ignore the setting.
  EXPECT_EQ(VCUXmlHelper::DOMToUTF8String(DOMString(u"\u00e9")), "\xc3\xa9");
}

TEST_F(XmlQueryTest, PtrToStringCopiesAndReleases) {
  char* text = XERCES_CPP_NAMESPACE::XMLString::transcode(u"abc");
  EXPECT_EQ(VCUXmlHelper::PtrToString(text), "abc");  // released: LeakSanitizer would tell
  EXPECT_EQ(VCUXmlHelper::PtrToString(nullptr), "");
}

}  // namespace
