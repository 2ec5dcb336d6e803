// VCULibraryXML reading: each refusal of a file that is not a report
// library of this version, with its code, text and location.
#include <string>

#include <gtest/gtest.h>

#include <utilkit/library_xml/library_xml.h>
#include <utilkit/library_xml/library_xml_errors.h>

#include "library_xml/library_xml_test_support.h"

namespace {

using lxml_test::ExpectError;

// The 29 bytes of a 5 x 7 PNG's signature and IHDR chunk (without its CRC).
constexpr const char* kPng = "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAAAA=";

std::string Image(const std::string& attributes, const char* data = kPng) {
  return std::string("<LibraryXML version=\"1\"><Page><Image ") + attributes + ">" + data +
         "</Image></Page></LibraryXML>";
}

TEST(LibraryXmlReaderTest, RefusesEachMalformedFileWithItsCode) {
  const std::string table = "<LibraryXML version=\"1\"><Page><Table columns=\"2\" rows=\"1\">";
  const std::string columns =
      "<Column name=\"a\" type=\"Long\"/><Column name=\"b\" type=\"Text\"/>";
  const std::string end = "</Table></Page></LibraryXML>";
  const std::string png57 = "format=\"PNG\" width=\"5\" height=\"7\"";
  const struct {
    std::string text;
    int32_t code;
    const char* name;
  } refusals[] = {
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
      {Image("format=\"GIF\" width=\"5\" height=\"7\" size=\"29\""), kLibraryXMLErrorItem,
       "format"},
      {Image(png57), kLibraryXMLErrorItem, "size"},
      {Image("format=\"PNG\" width=\"5\" height=\"-7\" size=\"29\""), kLibraryXMLErrorItem,
       "height"},
      {Image(png57 + " size=\"30\""), kLibraryXMLErrorItem, "size"},
      {Image(png57 + " size=\"28\""), kLibraryXMLErrorItem, "size"},
      {Image(png57 + " size=\"29\"", "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAAAA=AAAA"),
       kLibraryXMLErrorBase64, "Image"},
      {Image(png57 + " size=\"29\"", "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAAAA"),
       kLibraryXMLErrorBase64, "Image"},
      {Image(png57 + " size=\"29\"", "iVBORw0KGgoAAAANSUhEUgAAAAUAAAAHCAIAA\xc3\xa9="),
       kLibraryXMLErrorBase64, "Image"},
      {Image("format=\"JPEG\" width=\"5\" height=\"7\" size=\"29\""), kLibraryXMLErrorImage,
       "JPEG"},
      {Image("format=\"PNG\" width=\"6\" height=\"7\" size=\"29\""), kLibraryXMLErrorImage, "PNG"},
      {table + columns + "<Row><Cell value=\"1\"/></Row>" + end, kLibraryXMLErrorItem, "Row"},
      {table + columns + end, kLibraryXMLErrorItem, "rows"},
      {table + "<Column name=\"a\" type=\"Long\"/><Row/>" + end, kLibraryXMLErrorItem, "columns"},
      {table + "<Column name=\"a\" type=\"Blob\"/>" + end, kLibraryXMLErrorItem, "type"},
      {table + "<Column type=\"Long\"/>" + end, kLibraryXMLErrorItem, "name"},
      {"<LibraryXML version=\"1\"><Page><Table columns=\"1001\" "
       "rows=\"1000\"/></Page></LibraryXML>",
       kLibraryXMLErrorTableSize, "1001000"},
  };
  VCULibraryXML library;
  VFErrorClear();
  ASSERT_TRUE(library.LoadFromBuffer(Image(png57 + " size=\"29\"").c_str(), -1))
      << VFErrorGetFullString().c_str();
  for (const auto& r : refusals) {
    SCOPED_TRACE(r.text);
    VFErrorClear();
    EXPECT_FALSE(library.LoadFromBuffer(r.text.c_str(), -1));
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
  }
  VFErrorClear();
}

}  // namespace
