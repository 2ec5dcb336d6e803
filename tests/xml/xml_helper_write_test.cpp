// Serialisation in both layouts, files, and the error stack as XML.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <utilkit/table/table_errors.h>
#include <utilkit/xml/xml_errors.h>
#include "xml/xml_test_support.h"

namespace {

using xml_test::Bytes;
using xml_test::Human;
using xml_test::Parse;
using xml_test::Plain;

class XmlWriteTest : public xml_test::XmlTest {};

// One node of each kind that can appear in a tree.
constexpr const char* kMixed =
    "<!DOCTYPE r [<!ENTITY e \"v\">]>"
    "<r a=\"1\" b=\"q&quot;a&amp;l&lt;g&gt;\">t &amp; &lt; &gt; \"'<c/><![CDATA[x<&]]>&e;"
    "<?pi data?><?nodata?><!--com--><d><f>z</f></d></r>";

TEST_F(XmlWriteTest, PlainLayoutOfEachNodeType) {
  DOM_Document doc = Parse(kMixed);
  ASSERT_FALSE(doc.isNull());
  EXPECT_EQ(Plain(doc),
            "<!DOCTYPE r[<!ENTITY e \"v\">]>\n"
            "<r a=\"1\" b=\"q&quot;a&amp;l&lt;g>\">t &amp; &lt; &gt; \"'<c/><![CDATA[x<&]]>&e;"
            "<?pi data?><?nodata?><!--com--><d><f>z</f></d></r>\n");
}

TEST_F(XmlWriteTest, HumanReadableLayoutOfEachNodeType) {
  DOM_Document doc = Parse(kMixed);
  ASSERT_FALSE(doc.isNull());
  EXPECT_EQ(Human(doc),
            "<!DOCTYPE r[<!ENTITY e \"v\">]>\n"
            "\n<r a=\"1\" b=\"q&quot;a&amp;l&lt;g>\">t &amp; &lt; &gt; \"'"
            "\n\t<c/><![CDATA[x<&]]>&e;<?pi data?><?nodata?><!--com-->"
            "\n\t<d>"
            "\n\t\t<f>z"
            "\n\t\t</f>"
            "\n\t</d>"
            "\n</r>\n");
}

TEST_F(XmlWriteTest, ElementWithTextAtDepthZero) {
  DOM_Document doc = Parse("<a>x</a>");
  EXPECT_EQ(Human(doc.getDocumentElement()), "\n<a>x\n</a>");
  EXPECT_EQ(Plain(doc.getDocumentElement()), "<a>x</a>");
  EXPECT_EQ(Plain(Parse("<a></a>").getDocumentElement()), "<a/>");
}

TEST_F(XmlWriteTest, DocumentTypeIdentifiers) {
  EXPECT_EQ(Plain(Parse("<!DOCTYPE r PUBLIC \"-//p//x\" \"s.dtd\"><r/>").getDoctype()),
            "<!DOCTYPE r PUBLIC \"-//p//x\" \"s.dtd\">");
  EXPECT_EQ(Plain(Parse("<!DOCTYPE r SYSTEM \"s.dtd\"><r/>").getDoctype()),
            "<!DOCTYPE r SYSTEM \"s.dtd\">");
  EXPECT_EQ(Plain(Parse("<!DOCTYPE r><r/>").getDoctype()), "<!DOCTYPE r>");
}

TEST_F(XmlWriteTest, EntitiesAreWrittenWithoutSeparatingBlanks) {
  DOM_Document doc = Parse(
      "<!DOCTYPE r [<!NOTATION n SYSTEM \"viewer\">"
      "<!ENTITY u SYSTEM \"u.bin\" NDATA n><!ENTITY p PUBLIC \"-//p\" \"p.txt\">"
      "<!ENTITY i \"inner\">]><r/>");
  ASSERT_FALSE(doc.isNull());
  DOM_NamedNodeMap entities = doc.getDoctype().getEntities();
  ASSERT_EQ(entities.getLength(), 3u);
  EXPECT_EQ(Plain(entities.getNamedItem("u")), "<!ENTITY uSYSTEM \"u.bin\"NDATA \"n\">\n");
  EXPECT_EQ(Plain(entities.getNamedItem("p")), "<!ENTITY pPUBLIC \"-//p\"SYSTEM \"p.txt\">\n");
  EXPECT_EQ(Plain(entities.getNamedItem("i")), "<!ENTITY i>\n");
  EXPECT_EQ(Human(entities.getNamedItem("i")), "<!ENTITY i>\n");

  // A notation cannot be written: empty output, still success.
  EXPECT_EQ(Plain(doc.getDoctype().getNotations().item(0)), "");
}

TEST_F(XmlWriteTest, XmlDeclarationNode) {
  DOM_Document doc = DOM_Document::createDocument();
  DOM_Node decl = doc.createXMLDecl("1.0", "ISO-8859-1", "yes");
  ASSERT_EQ(decl.getNodeType(), DOM_Node::XML_DECL_NODE);
  doc.appendChild(decl);
  doc.appendChild(doc.createElement("r"));
  // The encoding written is the one produced, UTF-8.
  EXPECT_EQ(Plain(doc), "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n\n<r/>\n");
  EXPECT_EQ(Human(doc),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n\n\n<r/>\n");
  EXPECT_EQ(Plain(doc.createXMLDecl("1.0", DOMString(), DOMString())),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
}

TEST_F(XmlWriteTest, NodesThatCannotBeWrittenGiveEmptyOutputAndSuccess) {
  DOM_Document doc = Parse("<r a=\"1\"/>");
  VCUDataBuffer out;
  out.Append("previous");
  EXPECT_TRUE(
      VCUXmlHelper::ConvertNodeTreeToText(doc.getDocumentElement().getAttributes().item(0), &out));
  EXPECT_EQ(out.GetSize(), 0);
  EXPECT_TRUE(VCUXmlHelper::ConvertNodeTreeToHumanReadableText(DOM_Node(), &out));
  EXPECT_EQ(out.GetSize(), 0);
}

TEST_F(XmlWriteTest, OutputIsUtf8AndReplacesTheBuffer) {
  DOM_Document doc = Parse("<r v=\"\xc3\xa9\">\xe2\x82\xac&#x1F600;</r>");
  VCUDataBuffer out;
  out.Append("previous contents");
  ASSERT_TRUE(VCUXmlHelper::ConvertNodeTreeToText(doc.getDocumentElement(), &out));
  EXPECT_EQ(Bytes(out), "<r v=\"\xc3\xa9\">\xe2\x82\xac\xf0\x9f\x98\x80</r>");
}

TEST_F(XmlWriteTest, UnpairedSurrogatesAreWrittenAsReplacementCharacters) {
  DOM_Document doc = DOM_Document::createDocument();
  DOM_Element r = doc.createElement("r");
  r.appendChild(doc.createTextNode(DOMString(u"a\xD800")));  // at the end of a piece
  r.appendChild(doc.createComment(DOMString(u"\xD800z\U0001F600")));
  r.setAttribute("v", DOMString(u"\xDC00z"));
  EXPECT_EQ(Plain(r),
            "<r v=\"\xEF\xBF\xBDz\">a\xEF\xBF\xBD<!--\xEF\xBF\xBDz\xF0\x9F\x98\x80--></r>");
}

TEST_F(XmlWriteTest, SaveNodeTreeToFileCreatesOrAppends) {
  const std::string path =
      (std::filesystem::path(::testing::TempDir()) / (std::to_string(::getpid()) + "_save.xml"))
          .string();
  DOM_Document doc = Parse("<r><c/></r>");
  std::ofstream(path) << "old";
  EXPECT_TRUE(VCUXmlHelper::SaveNodeTreeToFile(doc.getDocumentElement(), path.c_str(), 1));
  EXPECT_TRUE(VCUXmlHelper::SaveNodeTreeToFile(doc.getDocumentElement(), path.c_str(), 0));
  std::ifstream in(path);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "<r><c/></r><r><c/></r>");
  std::remove(path.c_str());

  ::testing::internal::CaptureStdout();
  const std::string bad = path + "/no/such/dir/x.xml";
  EXPECT_FALSE(VCUXmlHelper::SaveNodeTreeToFile(doc, bad.c_str(), 1));
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Failed to write out\n");
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    EXPECT_EQ(std::string(VFErrorGetLocation(e)).find("VCUXmlHelper"), std::string::npos);
  }
}

TEST_F(XmlWriteTest, StreamedLayoutsMatchTheBufferedOnesAndWriteFailuresAreReported) {
  std::string big = "<r>";  // several 64 KiB pieces
  for (int i = 0; i < 20000; ++i) big += "<c n=\"" + std::to_string(i) + "\">t&amp;</c>";
  DOM_Document doc = Parse(big + "</r>");
  ASSERT_FALSE(doc.isNull());
  for (const bool human : {false, true}) {
    std::FILE* stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(VCUXmlHelper::WriteNodeTreeToStream(doc, stream, human));
    std::string written(static_cast<size_t>(std::ftell(stream)), '\0');
    std::rewind(stream);
    EXPECT_EQ(std::fread(written.data(), 1, written.size(), stream), written.size());
    std::fclose(stream);
    EXPECT_EQ(written, human ? Human(doc) : Plain(doc));
  }
  if (std::FILE* full = std::fopen("/dev/full", "w")) {
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(VCUXmlHelper::WriteNodeTreeToStream(doc, full, true));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Failed to write out\n");
    std::fclose(full);
  }
}

TEST_F(XmlWriteTest, EmptyErrorStackInAWrapper) {
  VCUDataBuffer buffer;
  buffer.Append("head");
  VCUXmlHelper::AppendUtlibErrorXmlToBuffer("Errors", buffer);
  EXPECT_EQ(Bytes(buffer), "head<Errors><Error/></Errors>");
  VCUXmlHelper::AppendUtlibErrorXmlToBuffer("", buffer);
  VCUXmlHelper::AppendUtlibErrorXmlToBuffer(nullptr, buffer);
  EXPECT_EQ(Bytes(buffer), "head<Errors><Error/></Errors><Error/><Error/>");
}

TEST_F(XmlWriteTest, ErrorRecordsNestEachLaterOneInsideTheEarlier) {
  VFErrorSet(kXmlErrorParse,
             "bad <tag> & \x1b"
             "escape",
             "VCUXmlHelper::ParseXml", 0);
  errno = 0;
  VFErrorSetOpSysCode(2);
  VFErrorSet(kTableErrorSort, "Summary", "", 1);
  VFErrorSet(-3, "Third", "There", 0);
  const std::string osMessage = VFErrorGetOpSysMessage(VFGetUtLibError());
  ASSERT_FALSE(osMessage.empty());

  VCUDataBuffer buffer;
  VCUXmlHelper::AppendUtlibErrorXmlToBuffer(nullptr, buffer);
  EXPECT_EQ(Bytes(buffer),
            "<Error><Message>bad &lt;tag&gt; &amp; escape</Message>"
            "<Location>VCUXmlHelper::ParseXml</Location><Code>-655761</Code>"
            "<OpSysCode>2</OpSysCode><OpSysMessage>" +
                osMessage +
                "</OpSysMessage>"
                "<Error><Message>Summary</Message><Code>-655988</Code>"
                "<Error><Message>Third</Message><Location>There</Location><Code>-3</Code>"
                "</Error></Error></Error>");
  EXPECT_EQ(VFErrorGetCount(), 3u);  // only read

  DOM_Document doc = DOM_Document::createDocument();
  DOM_Element error = VCUXmlHelper::CreateUtlibErrorXmlNode(doc);
  ASSERT_FALSE(error.isNull());
  EXPECT_TRUE(error.getParentNode().isNull());
  DOM_Node inner;
  ASSERT_TRUE(VCUXmlHelper::GetSingleElementChild(error, "Error", &inner));
  EXPECT_EQ(VCUXmlHelper::GetTextFromElement(inner.getFirstChild()), "Summary");
  EXPECT_EQ(Human(inner.getLastChild()),
            "\n<Error>\n\t<Message>Third\n\t</Message>\n\t<Location>There\n\t</Location>"
            "\n\t<Code>-3\n\t</Code>\n</Error>");

  DOM_Document none;
  EXPECT_TRUE(VCUXmlHelper::CreateUtlibErrorXmlNode(none).isNull());
}

}  // namespace
