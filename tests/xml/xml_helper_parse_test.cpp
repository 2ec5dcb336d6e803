// ParseXml and ParseXmlFromFile: settings, failures and the safety limits.
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <utilkit/base/base_errors.h>
#include <utilkit/xml/xml_errors.h>
#include "xml/xml_test_support.h"

namespace {

using xml_test::Parse;
using xml_test::Plain;
using xml_test::Utf8;

class ParseXmlTest : public xml_test::XmlTest {
 protected:
  static std::string TempPath(const char* name) {
    return (std::filesystem::path(::testing::TempDir()) / (std::to_string(::getpid()) + "_" + name))
        .string();
  }
  static std::string WriteFile(const char* name, const std::string& contents) {
    const std::string path = TempPath(name);
    std::ofstream(path, std::ios::binary) << contents;
    return path;
  }
  void ExpectParseFailure() {
    ASSERT_EQ(VFErrorGetCount(), 1u) << VFErrorGetFullString().c_str();
    EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kXmlErrorParse);
    EXPECT_STREQ(VFErrorGetLocation(VFGetUtLibError()), "VCUXmlHelper::ParseXml");
  }
  static std::string Message() { return VFErrorGetMessage(VFGetUtLibError()); }
};

TEST_F(ParseXmlTest, ParsesOnlyTheGivenLength) {
  const char* text = "<a>x</a><b/>";
  DOM_Document doc = VCUXmlHelper::ParseXml(text, 8);
  ASSERT_FALSE(doc.isNull());
  EXPECT_EQ(Plain(doc), "<a>x</a>\n");

  doc = VCUXmlHelper::ParseXml("<r k=\"v\"/>", -1);
  ASSERT_FALSE(doc.isNull());
  EXPECT_EQ(Utf8(doc.getDocumentElement().getAttribute("k")), "v");
  EXPECT_EQ(VFErrorGetCount(), 0u);

  // With the full length the second root element is malformed.
  EXPECT_TRUE(VCUXmlHelper::ParseXml(text, -1).isNull());
  ExpectParseFailure();
}

TEST_F(ParseXmlTest, MalformedTextCarriesTheParsersMessage) {
  EXPECT_TRUE(Parse("<a><b></a>").isNull());
  ExpectParseFailure();
  EXPECT_FALSE(Message().empty());
  EXPECT_NE(Message(), VFTextGet(VFGetUtilKitText(), kXmlErrorParse));
  EXPECT_NE(Message().find("b"), std::string::npos) << Message();

  VFErrorClear();
  EXPECT_TRUE(Parse("").isNull());
  ExpectParseFailure();
  VFErrorClear();
  EXPECT_TRUE(VCUXmlHelper::ParseXml(nullptr, -1).isNull());
  ExpectParseFailure();
}

TEST_F(ParseXmlTest, InternalSubsetsCdataCommentsAndInstructionsParse) {
  DOM_Document doc = Parse(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE r [<!ENTITY s \"simple\"><!ATTLIST r d CDATA \"dflt\">]>\n"
      "<r>&s;<![CDATA[<raw>&]]><!--note--><?app go?></r>");
  ASSERT_FALSE(doc.isNull()) << VFErrorGetFullString().c_str();
  DOM_Element root = doc.getDocumentElement();
  EXPECT_EQ(Utf8(root.getAttribute("d")), "dflt");  // default from the internal subset
  DOM_Node ref = root.getFirstChild();
  EXPECT_EQ(ref.getNodeType(), DOM_Node::ENTITY_REFERENCE_NODE);
  EXPECT_EQ(Utf8(ref.getFirstChild().getNodeValue()), "simple");
  EXPECT_EQ(ref.getNextSibling().getNodeType(), DOM_Node::CDATA_SECTION_NODE);
  EXPECT_EQ(Plain(root), "<r d=\"dflt\">&s;<![CDATA[<raw>&]]><!--note--><?app go?></r>");
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(ParseXmlTest, ValidityErrorsAreIgnored) {
  // The DOCTYPE switches validation on; <b> is not allowed, "n" is no declared attribute.
  DOM_Document doc = Parse("<!DOCTYPE r [<!ELEMENT r (a)>]><r n=\"1\"><b/></r>");
  ASSERT_FALSE(doc.isNull()) << VFErrorGetFullString().c_str();
  EXPECT_EQ(Utf8(doc.getDocumentElement().getFirstChild().getNodeName()), "b");
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(ParseXmlTest, ExternalEntitiesAndDtdsAreNeverRead) {
  const std::string secret = "TOP-SECRET-4711";
  const std::string secretFile = WriteFile("secret.txt", secret);
  const std::string dtdFile = WriteFile(
      "evil.dtd", "<!ENTITY leak \"" + secret + "\"><!ATTLIST r a CDATA \"" + secret + "\">");
  const std::string url = "file://" + secretFile;
  const std::string dtdUrl = "file://" + dtdFile;

  const std::string documents[] = {
      // A general external entity.
      "<!DOCTYPE r [<!ENTITY x SYSTEM \"" + url + "\">]><r>&x;</r>",
      // The same in an attribute-free, validation-free form with a public id.
      "<!DOCTYPE r [<!ENTITY x PUBLIC \"-//x//y\" \"" + url + "\">]><r>[&x;]</r>",
      // An external parameter entity pulled into the internal subset.
      "<!DOCTYPE r [<!ENTITY % p SYSTEM \"" + dtdUrl + "\"> %p;]><r>&leak;</r>",
      // An external DTD subset.
      "<!DOCTYPE r SYSTEM \"" + dtdUrl + "\"><r/>",
      // A network location: resolved to nothing as well, without a connection.
      "<!DOCTYPE r [<!ENTITY n SYSTEM \"http://127.0.0.1:9/x\">]><r>&n;</r>",
  };
  for (const std::string& text : documents) {
    SCOPED_TRACE(text);
    VFErrorClear();
    DOM_Document doc = Parse(text);
    ASSERT_FALSE(doc.isNull()) << VFErrorGetFullString().c_str();
    const std::string written = Plain(doc.getDocumentElement());
    EXPECT_EQ(written.find(secret), std::string::npos) << written;
    EXPECT_EQ(Utf8(doc.getDocumentElement().getAttribute("a")), "");
  }
  std::remove(secretFile.c_str());
  std::remove(dtdFile.c_str());
}

int64_t PeakResidentKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TEST_F(ParseXmlTest, EntityBombFailsAtTheExpansionLimit) {
  std::string bomb = "<!DOCTYPE lolz [<!ENTITY lol0 \"lol\">";
  for (int i = 1; i < 10; ++i) {
    bomb += "<!ENTITY lol" + std::to_string(i) + " \"";
    for (int j = 0; j < 10; ++j) bomb += "&lol" + std::to_string(i - 1) + ";";
    bomb += "\">";
  }
  bomb += "]>";
  const int64_t before = PeakResidentKb();
  for (const char* body : {"<lolz>&lol9;</lolz>", "<lolz a=\"&lol9;\"/>"}) {
    VFErrorClear();
    EXPECT_TRUE(Parse(bomb + body).isNull());
    ExpectParseFailure();
    EXPECT_NE(Message().find("10000"), std::string::npos) << Message();
  }
  EXPECT_LT(PeakResidentKb() - before, 256 * 1024);  // the full expansion would be gigabytes
}

TEST_F(ParseXmlTest, AmplificationBelowTheExpansionLimitHitsTheMemoryBound) {
  // 900 expansions of 100 kB: about 180 MB of text from a 100 kB document.
  const std::string big(100000, 'x');
  std::string subset = "<!DOCTYPE q [<!ENTITY a \"" + big + "\"><!ENTITY b \"";
  for (int i = 0; i < 30; ++i) subset += "&a;";
  subset += "\"><!ENTITY c \"";
  for (int i = 0; i < 30; ++i) subset += "&b;";
  subset += "\">]>";
  for (const char* body : {"<q>&c;</q>", "<q z=\"&c;\"/>"}) {
    VFErrorClear();
    EXPECT_TRUE(Parse(subset + body).isNull());
    ExpectParseFailure();
    EXPECT_EQ(Message(), "Out of memory");
  }
}

TEST_F(ParseXmlTest, TextsAboveTheSizeCapAreRefusedUnread) {
  const char small[] = "<a/>";  // the length alone decides: the bytes are never touched
  EXPECT_TRUE(VCUXmlHelper::ParseXml(small, VCUXmlHelper::kMaxParseBytes + 1).isNull());
  ExpectParseFailure();
  EXPECT_EQ(Message(), VFTextGet(VFGetUtilKitText(), kXmlErrorParse));
}

TEST_F(ParseXmlTest, NestingIsBoundedAndTheBoundCanBeRaised) {
  const auto nested = [](int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += "<a>";
    for (int i = 0; i < depth; ++i) text += "</a>";
    return text;
  };
  const int limit = VCUXmlHelper::GetMaxNestingDepth();
  EXPECT_FALSE(Parse(nested(limit)).isNull());
  EXPECT_TRUE(Parse(nested(limit + 1)).isNull());
  ExpectParseFailure();
  EXPECT_EQ(Message(), "Error parsing XML text: elements nested more than 1000 deep");
  VFErrorClear();

  constexpr int kDepth = 100000;  // raised: the parse and the writer need no deep recursion
  VCUXmlHelper::SetMaxNestingDepth(kDepth);
  DOM_Document doc = Parse(nested(kDepth));
  VCUXmlHelper::SetMaxNestingDepth(0);
  EXPECT_EQ(VCUXmlHelper::GetMaxNestingDepth(), VCUXmlHelper::kDefaultMaxNestingDepth);
  ASSERT_FALSE(doc.isNull());
  EXPECT_EQ(Plain(doc.getDocumentElement()).size(), kDepth * 7u - 3u);  // innermost is <a/>
}

TEST_F(ParseXmlTest, FromFileAddsNoErrorOfItsOwnWhenTheFileCannotBeRead) {
  EXPECT_TRUE(VCUXmlHelper::ParseXmlFromFile(TempPath("missing.xml").c_str()).isNull());
  ASSERT_GE(VFErrorGetCount(), 1u);
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    EXPECT_STRNE(VFErrorGetLocation(e), "VCUXmlHelper::ParseXmlFromFile");
    EXPECT_NE(VFErrorGetCode(e), kXmlErrorParse);
  }
}

// Sparse files: their size costs no disk space.
TEST_F(ParseXmlTest, FromFileRefusesFilesAboveTheSizeCapUnread) {
  const std::string path = TempPath("huge.xml");
  std::filesystem::resize_file(WriteFile("huge.xml", "<a/>"), VCUXmlHelper::kMaxParseBytes + 1);
  EXPECT_TRUE(VCUXmlHelper::ParseXmlFromFile(path.c_str()).isNull());
  ExpectOnlyError(kXmlErrorParse, "", "VCUXmlHelper::ParseXmlFromFile");
  std::remove(path.c_str());
}

#if defined(__SANITIZE_ADDRESS__)
// Allocations above 192 MiB fail in this test program (sanitizer_options.cpp).
TEST_F(ParseXmlTest, FromFileReportsAnArrayThatCannotBeAllocated) {
  const std::string path = TempPath("large.xml");
  std::filesystem::resize_file(WriteFile("large.xml", "<a/>"), 200 * 1024 * 1024);
  EXPECT_TRUE(VCUXmlHelper::ParseXmlFromFile(path.c_str()).isNull());
  ExpectOnlyError(kErrorOutOfMemory, "", "VCUXmlHelper::ParseXmlFromFile");
  std::remove(path.c_str());
}
#endif

TEST_F(ParseXmlTest, FromFileReportsParseErrors) {
  const std::string path = WriteFile("empty.xml", "");
  EXPECT_TRUE(VCUXmlHelper::ParseXmlFromFile(path.c_str()).isNull());
  ExpectParseFailure();
  std::remove(path.c_str());
}

}  // namespace
