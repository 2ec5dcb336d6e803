// VCULibraryXML: the file's exact text, round trips of every item kind,
// images recognised from their bytes, and tables filled from VCUTable.
#include <utilkit/library_xml/library_xml.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <utilkit/base/preference_system.h>
#include <utilkit/library_xml/library_xml_errors.h>
#include <utilkit/table/memory_table.h>

#include "library_xml/library_xml_test_support.h"

namespace {

using lxml_test::ExpectError;
using lxml_test::MakeJpeg;
using lxml_test::MakePng;

std::string Saved(const VCULibraryXML& library) {
  VCUDataBuffer out;
  EXPECT_TRUE(library.SaveToBuffer(&out)) << VFErrorGetFullString().c_str();
  return std::string(out.GetBasePtr(), static_cast<size_t>(out.GetSize()));
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

template <typename Item>
Item* Add(VCULibraryXML_Page* page, const char* title = nullptr) {
  auto* item = new Item();
  item->SetTitle(title);
  page->AppendItem(item);
  return item;
}

// The small library of the golden file: one item of each kind.
void FillSmall(VCULibraryXML* library) {
  library->SetTitle("Run \"12\" & co");
  auto* page = new VCULibraryXML_Page("Overview");
  const std::string png = MakePng(2, 1);
  ASSERT_TRUE(Add<VCULibraryXML_ItemImage>(page, "Force")
                  ->SetData(png.data(), static_cast<int32_t>(png.size())));
  Add<VCULibraryXML_ItemText>(page)->SetText("Peak <12.5> kN & caf\xc3\xa9\r\nend");
  auto* table = Add<VCULibraryXML_ItemTable>(page, "Peaks");
  table->AddColumn("Force", VTTableDataType::Double, "kN");
  table->AddColumn("Name", VTTableDataType::Text, "");
  VCStringArray row;
  row.Add("12.5");
  row.Add("a\tb \"c\"");
  table->AddRow(row);
  library->AppendPage(page);
  library->AppendPage(new VCULibraryXML_Page("Empty"));
}

class LibraryXmlTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override {
    VFErrorClear();
    VCPreferenceSystem::Remove(VCULibraryXML_ItemTable::kMaxTableSizePreference);
  }
};

TEST_F(LibraryXmlTest, SmallLibraryIsWrittenExactlyAsTheGoldenFile) {
  VCULibraryXML library;
  FillSmall(&library);
  const std::string text = Saved(library);
  if (text != ReadFile(UTILKIT_TEST_DATA_DIR "/library_xml/small.lxm")) {
    // Left for inspection (and, after a deliberate format change, as the new golden file).
    std::ofstream(::testing::TempDir() + "small.lxm", std::ios::binary) << text;
    ADD_FAILURE() << "differs from the golden file; written to " << ::testing::TempDir();
  }
}

TEST_F(LibraryXmlTest, EveryItemKindSurvivesWriteReadWrite) {
  VCULibraryXML library;
  FillSmall(&library);
  auto* page = new VCULibraryXML_Page("Bytes \xe2\x82\xac\x01");
  std::string allBytes = MakeJpeg(16, 8);
  for (int i = 0; i < 256; ++i) allBytes.push_back(static_cast<char>(i));
  auto* image = Add<VCULibraryXML_ItemImage>(page);
  ASSERT_TRUE(image->SetData(allBytes.data(), static_cast<int32_t>(allBytes.size())));
  static const char kBinary[] = "nul\0 bell\x07 bad\xff utf8 \r\n\t";
  const std::string binaryText(kBinary, sizeof kBinary - 1);
  Add<VCULibraryXML_ItemText>(page)->SetText(binaryText.data(),
                                             static_cast<int32_t>(binaryText.size()));
  const std::string markup = "<a href=\"x\">&amp;</a> ]]> \xe6\x97\xa5\xf0\x9f\x98\x80 \r \n\t\t";
  Add<VCULibraryXML_ItemText>(page)->SetText(markup.c_str());
  Add<VCULibraryXML_ItemText>(page)->SetText("");
  Add<VCULibraryXML_ItemTable>(page);
  library.AppendPage(page);

  const std::string first = Saved(library);
  EXPECT_NE(first.find("<Text encoding=\"base64\">"), std::string::npos);
  VCULibraryXML back;
  ASSERT_TRUE(back.LoadFromBuffer(first.data(), static_cast<int32_t>(first.size())))
      << VFErrorGetFullString().c_str();
  EXPECT_EQ(Saved(back), first);

  ASSERT_EQ(back.GetNumPages(), 3);
  EXPECT_EQ(back.GetTitle(), "Run \"12\" & co");
  const VCULibraryXML_Page* read = back.GetPage(2);
  EXPECT_EQ(read->GetTitle(), "Bytes \xe2\x82\xac");  // the control byte is dropped
  ASSERT_EQ(read->GetNumItems(), 5);
  const auto* jpeg = static_cast<const VCULibraryXML_ItemImage*>(read->GetItem(0));
  EXPECT_EQ(std::string(jpeg->GetData().GetBasePtr(), jpeg->GetData().GetSize()), allBytes);
  EXPECT_EQ(jpeg->GetFormat(), VTLibraryXMLImageFormat::JPEG);
  EXPECT_EQ(jpeg->GetWidth(), 16);
  EXPECT_EQ(jpeg->GetHeight(), 8);
  EXPECT_EQ(static_cast<const VCULibraryXML_ItemText*>(read->GetItem(1))->GetText().str(),
            binaryText);
  EXPECT_EQ(static_cast<const VCULibraryXML_ItemText*>(read->GetItem(2))->GetText().str(), markup);
  const auto* table = static_cast<const VCULibraryXML_ItemTable*>(back.GetPage(0)->GetItem(2));
  EXPECT_EQ(table->GetTitle(), "Peaks");
  EXPECT_EQ(table->GetColType(1), VTTableDataType::Text);
  EXPECT_EQ(table->GetColUnits(0), "kN");
  EXPECT_EQ(table->GetCell(1, 1), "a\tb \"c\"");
}

TEST_F(LibraryXmlTest, FileRoundTripAndFileErrors) {
  VCULibraryXML library;
  FillSmall(&library);
  const std::string path = ::testing::TempDir() + "lxml_round_trip.lxm";
  ASSERT_TRUE(library.SaveToFile(path.c_str())) << VFErrorGetFullString().c_str();
  VCULibraryXML back;
  ASSERT_TRUE(back.LoadFromFile(path.c_str())) << VFErrorGetFullString().c_str();
  EXPECT_EQ(Saved(back), ReadFile(path));
  std::remove(path.c_str());

  const std::string missing = ::testing::TempDir() + "lxml_missing/none.lxm";
  EXPECT_FALSE(back.LoadFromFile(missing.c_str()));
  ExpectError(kLibraryXMLErrorFile, missing, "VCULibraryXML::LoadFromFile", true);
  EXPECT_EQ(back.GetNumPages(), 2);  // a failed load changes nothing
  VFErrorClear();
  EXPECT_FALSE(library.SaveToFile(missing.c_str()));
  ExpectError(kLibraryXMLErrorFile, missing, "VCULibraryXML::SaveToFile", true);
  VFErrorClear();
  EXPECT_FALSE(back.LoadFromFile(::testing::TempDir().c_str()));  // a directory
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kLibraryXMLErrorFile);
}

TEST_F(LibraryXmlTest, ImagesAreRecognisedFromTheirBytes) {
  VCULibraryXML_ItemImage image;
  const std::string png = MakePng(640, 3);
  ASSERT_TRUE(image.SetData(png.data(), static_cast<int32_t>(png.size())));
  EXPECT_STREQ(image.GetFormatName(), "PNG");
  EXPECT_STREQ(image.GetMimeType(), "image/png");
  EXPECT_EQ(image.GetWidth(), 640);
  EXPECT_EQ(image.GetHeight(), 3);
  // A JPEG whose frame comes after other segments and fill bytes.
  std::string jpeg = MakeJpeg(24, 40);
  jpeg.insert(2, std::string("\xFF\xFF\xFF\xE0\x00\x04\x00\x00", 8));
  ASSERT_TRUE(image.SetData(jpeg.data(), static_cast<int32_t>(jpeg.size())));
  EXPECT_EQ(image.GetWidth(), 24);
  EXPECT_EQ(image.GetHeight(), 40);
  for (const std::string& bad : {std::string("GIF89a"), png.substr(0, 20), jpeg.substr(0, 12)}) {
    VFErrorClear();
    EXPECT_FALSE(image.SetData(bad.data(), static_cast<int32_t>(bad.size())));
    ExpectError(kLibraryXMLErrorImage, "PNG or JPEG", "VCULibraryXML_ItemImage::SetData");
  }
  EXPECT_EQ(image.GetWidth(), 24);  // refused data leaves the item as it was
}

TEST_F(LibraryXmlTest, TablesComeFromAnyTableWithinTheCellLimit) {
  VCUTableMemory source("Results");
  const double force[] = {0.1, -2.5e300, 3};
  const int32_t codes[] = {1, 2}, cells[] = {2, 7, 1};
  const char* const names[] = {"low", "high"};
  const char* const texts[] = {"x", "", "z"};
  const uint16_t status[] = {0x8000, 0, 0x8000};
  source.AddCol("Force", 3, force);
  source.SetColStatus("Force", 3, status);
  source.AddCol("Level", 2, codes, names, 3, cells);
  source.AddCol("Note", 3, texts);
  source.SetColUnits(0, "N");
  source.SetNumRows(3);
  VCULibraryXML_ItemTable table;
  ASSERT_TRUE(table.SetFromTable(source)) << VFErrorGetFullString().c_str();
  EXPECT_EQ(table.GetTitle(), "Results");
  EXPECT_EQ(table.GetColType(1), VTTableDataType::Enum);
  EXPECT_EQ(table.GetCell(1, 0), "0.1");
  EXPECT_EQ(table.GetCell(2, 0), "");  // invalid
  EXPECT_EQ(table.GetCell(3, 0), "3");
  EXPECT_EQ(table.GetCell(2, 1), "7");  // no option for the code
  EXPECT_EQ(table.GetCell(3, 1), "low");

  // 9 cells: allowed at a limit of 9, refused at 8 (when filled and when read).
  VCPreferenceSystem::SetHugeValue(VCULibraryXML_ItemTable::kMaxTableSizePreference, 9);
  VCULibraryXML library;
  auto* page = new VCULibraryXML_Page();
  page->AppendItem(new VCULibraryXML_ItemTable());
  ASSERT_TRUE(static_cast<VCULibraryXML_ItemTable*>(page->GetItem(0))->SetFromTable(source));
  library.AppendPage(page);
  const std::string text = Saved(library);
  ASSERT_TRUE(library.LoadFromBuffer(text.c_str(), -1));
  VCPreferenceSystem::SetHugeValue(VCULibraryXML_ItemTable::kMaxTableSizePreference, 8);
  EXPECT_FALSE(table.SetFromTable(source));
  ExpectError(kLibraryXMLErrorTableSize, "9", "VCULibraryXML_ItemTable::SetFromTable");
  VFErrorClear();
  EXPECT_FALSE(library.LoadFromBuffer(text.c_str(), -1));
  ExpectError(kLibraryXMLErrorTableSize, "9", "VCULibraryXML::LoadFromBuffer");
  EXPECT_EQ(table.GetNumRows(), 3);
}

}  // namespace
