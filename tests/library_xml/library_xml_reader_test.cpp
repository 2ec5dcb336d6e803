// VCULibraryXML reading: each refusal of a file that is not a report
// library of this version, with its code, text and location.
#include <string>

#include <gtest/gtest.h>

#include <utilkit/library_xml/library_xml.h>
#include <utilkit/library_xml/library_xml_errors.h>

#include "library_xml/library_xml_test_support.h"

namespace {

using lxml_test::ExpectError;

struct Refusal {
  const char* text;
  int32_t code;
  const char* name;
};

// The 29 bytes of a 5 x 7 PNG's signature and IHDR chunk (without its CRC).
constexpr const char* kPng = "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAAAA=";

std::string Image(const char* attributes, const char* data = kPng) {
  return std::string("<LibraryXML version=\"1\"><Page><Image ") + attributes + ">" + data +
         "</Image></Page></LibraryXML>";
}

TEST(LibraryXmlReaderTest, RefusesEachMalformedFileWithItsCode) {
  const std::string tableHead = "<LibraryXML version=\"1\"><Page><Table columns=\"2\" rows=\"1\">";
  const std::string columns =
      "<Column name=\"a\" type=\"Long\"/><Column name=\"b\" type=\"Text\"/>";
  const Refusal refusals[] = {
      {"<Library version=\"1\"/>", kLibraryXMLErrorRoot, "Library"},
      {"<LibraryXML/>", kLibraryXMLErrorVersion, ""},
      {"<LibraryXML version=\"2\"/>", kLibraryXMLErrorVersion, "2"},
      {"<LibraryXML version=\"1\"><Text/></LibraryXML>", kLibraryXMLErrorItem, "Text"},
      {"<LibraryXML version=\"1\">words</LibraryXML>", kLibraryXMLErrorItem, "LibraryXML"},
      {"<LibraryXML version=\"1\"><Page><Text encoding=\"hex\"/></Page></LibraryXML>",
       kLibraryXMLErrorItem, "encoding"},
      {"<LibraryXML version=\"1\"><Page><Text><b/></Text></Page></LibraryXML>",
       kLibraryXMLErrorItem, "b"},
      {"<LibraryXML version=\"1\"><Page><Text encoding=\"base64\">QUJD*</Text></Page></LibraryXML>",
       kLibraryXMLErrorBase64, "Text"},
      {"<!DOCTYPE LibraryXML [<!ENTITY e \"x\">]><LibraryXML version=\"1\"/>", kLibraryXMLErrorItem,
       "DOCTYPE"},
      {"<LibraryXML version=\"1\"><Page></LibraryXML>", kLibraryXMLErrorXml, ""},
      {"", kLibraryXMLErrorXml, ""},
  };
  std::string texts[] = {
      Image("format=\"PNG\" width=\"5\" height=\"7\" size=\"29\""),
      Image("format=\"GIF\" width=\"5\" height=\"7\" size=\"29\""),
      Image("format=\"PNG\" width=\"5\" height=\"7\""),
      Image("format=\"PNG\" width=\"5\" height=\"-7\" size=\"29\""),
      Image("format=\"PNG\" width=\"5\" height=\"7\" size=\"30\""),
      Image("format=\"PNG\" width=\"5\" height=\"7\" size=\"28\""),
      Image("format=\"PNG\" width=\"5\" height=\"7\" size=\"29\"",
            "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAAAA=AAAA"),
      Image("format=\"PNG\" width=\"5\" height=\"7\" size=\"29\"",
            "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAAAA"),
      Image("format=\"PNG\" width=\"5\" height=\"7\" size=\"29\"",
            "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAA\xc3\xa9="),
      Image("format=\"JPEG\" width=\"5\" height=\"7\" size=\"29\""),
      Image("format=\"PNG\" width=\"6\" height=\"7\" size=\"29\""),
      tableHead + columns + "<Row><Cell value=\"1\"/></Row></Table></Page></LibraryXML>",
      tableHead + columns + "</Table></Page></LibraryXML>",
      tableHead + "<Column name=\"a\" type=\"Long\"/><Row/></Table></Page></LibraryXML>",
      tableHead + "<Column name=\"a\" type=\"Blob\"/></Table></Page></LibraryXML>",
      tableHead + "<Column type=\"Long\"/></Table></Page></LibraryXML>",
      "<LibraryXML version=\"1\"><Page><Table columns=\"1001\" rows=\"1000\"/></Page></LibraryXML>",
  };
  const Refusal more[] = {
      {texts[1].c_str(), kLibraryXMLErrorItem, "format"},
      {texts[2].c_str(), kLibraryXMLErrorItem, "size"},
      {texts[3].c_str(), kLibraryXMLErrorItem, "height"},
      {texts[4].c_str(), kLibraryXMLErrorItem, "size"},
      {texts[5].c_str(), kLibraryXMLErrorItem, "size"},
      {texts[6].c_str(), kLibraryXMLErrorBase64, "Image"},
      {texts[7].c_str(), kLibraryXMLErrorBase64, "Image"},
      {texts[8].c_str(), kLibraryXMLErrorBase64, "Image"},
      {texts[9].c_str(), kLibraryXMLErrorImage, "JPEG"},
      {texts[10].c_str(), kLibraryXMLErrorImage, "PNG"},
      {texts[11].c_str(), kLibraryXMLErrorItem, "Row"},
      {texts[12].c_str(), kLibraryXMLErrorItem, "rows"},
      {texts[13].c_str(), kLibraryXMLErrorItem, "columns"},
      {texts[14].c_str(), kLibraryXMLErrorItem, "type"},
      {texts[15].c_str(), kLibraryXMLErrorItem, "name"},
      {texts[16].c_str(), kLibraryXMLErrorTableSize, "1001000"},
  };
  VCULibraryXML library;
  VFErrorClear();
  ASSERT_TRUE(library.LoadFromBuffer(texts[0].c_str(), -1)) << VFErrorGetFullString().c_str();
  auto check = [&](const Refusal& r) {
    SCOPED_TRACE(r.text);
    VFErrorClear();
    EXPECT_FALSE(library.LoadFromBuffer(r.text, -1));
    if (r.code == kLibraryXMLErrorXml) {  // the parser's own message follows the text
      ASSERT_EQ(VFErrorGetCount(), 1u);
      EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), r.code);
      EXPECT_EQ(std::string(VFErrorGetMessage(VFErrorGetLast()))
                    .rfind(VFTextGet(VFGetUtilKitText(), r.code), 0),
                0u);
    } else {
      ExpectError(r.code, r.name, "VCULibraryXML::LoadFromBuffer");
    }
    EXPECT_EQ(library.GetNumPages(), 1);  // the library is kept
  };
  for (const Refusal& r : refusals) check(r);
  for (const Refusal& r : more) check(r);
  VFErrorClear();
}

}  // namespace
