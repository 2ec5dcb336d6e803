#include <utilkit/table/memory_table.h>
#include <utilkit/table/table.h>
#include <utilkit/table/table_errors.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "table/table_test_util.h"

using table_test::Error;
using table_test::Errors;
using table_test::HostTable;

namespace {

class TableTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    const int16_t s[] = {-3, 4};
    const int32_t l[] = {70000, -1};
    const int64_t h[] = {int64_t{1} << 40, 0};
    const float f[] = {1.5f, 0.25f};
    const double d[] = {2.5, -0.125};
    const char* t[] = {"abc", "x y"};
    const int32_t codes[] = {1, 3};
    const char* names[] = {"low", "high"};
    const int32_t e[] = {3, 9};
    const uint16_t status[] = {0x8000, 0x7FFF};
    table.AddCol("Short", 2, s);
    table.AddCol("Long", 2, l);
    table.AddCol("Huge", 2, h);
    table.AddCol("Float", 2, f);
    table.AddCol("ElementId", 2, d);
    table.AddCol("Text", 2, t);
    table.AddCol("Grade", 2, codes, names, 2, e);
    table.SetColStatus("elementid", 2, status);
    table.SetNumRows(2);
  }
  void TearDown() override { VFErrorClear(); }

  VCUTableMemory table{"Tests"};
};

TEST_F(TableTest, GetValueReadsEachTypeWithItsOwnWidth) {
  VCVariant v;
  ASSERT_TRUE(table.GetValue(0, 1, &v, VTTableDataType::None));
  EXPECT_EQ(v.GetType(), VTVariantType::Short);
  EXPECT_EQ(v.GetShort(), -3);
  ASSERT_TRUE(table.GetValue(1, 1, &v, VTTableDataType::None));
  EXPECT_EQ(v.GetType(), VTVariantType::Long);
  EXPECT_EQ(v.GetLong(), 70000);
  ASSERT_TRUE(table.GetValue(2, 1, &v, VTTableDataType::None));
  EXPECT_EQ(v.GetType(), VTVariantType::Huge);
  EXPECT_EQ(v.GetHuge(), int64_t{1} << 40);
  ASSERT_TRUE(table.GetValue(3, 2, &v, VTTableDataType::None));
  EXPECT_EQ(v.GetType(), VTVariantType::Float);
  EXPECT_EQ(v.GetFloat(), 0.25f);
  ASSERT_TRUE(table.GetValue(4, 2, &v, VTTableDataType::Double));
  EXPECT_EQ(v.GetType(), VTVariantType::Double);
  EXPECT_EQ(v.GetDouble(), -0.125);
  ASSERT_TRUE(table.GetValue(5, 2, &v, VTTableDataType::None));
  EXPECT_EQ(v.GetString(), "x y");
  // An Enum cell reads as its code, never its name.
  ASSERT_TRUE(table.GetValue(6, 1, &v, VTTableDataType::None));
  EXPECT_EQ(v.GetType(), VTVariantType::Long);
  EXPECT_EQ(v.GetLong(), 3);
  EXPECT_TRUE(Errors().empty());
}

TEST_F(TableTest, GetValueFailures) {
  VCVariant v(1.0);
  EXPECT_FALSE(table.GetValue(0, 1, &v, static_cast<VTTableDataType>(8)));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnType, "Invalid column type specified",
                                           "VCUTable::GetValue"}}));
  VFErrorClear();
  HostTable host(static_cast<VTTableDataType>(9));
  EXPECT_FALSE(host.GetValue(0, 1, &v, VTTableDataType::None));
  EXPECT_EQ(Errors()[0].code, kTableErrorColumnType);
  VFErrorClear();
  // A failed read leaves the variant untouched and adds nothing.
  EXPECT_FALSE(table.GetValue(0, 3, &v, VTTableDataType::None));
  EXPECT_EQ(v.GetDouble(), 1.0);
  EXPECT_EQ(Errors(), (std::vector<Error>{table_test::MemoryError("Invalid row number")}));
}

TEST_F(TableTest, GetValidFollowsStatusBit15) {
  char valid = 9;
  ASSERT_TRUE(table.GetValid(4, 1, &valid));
  EXPECT_EQ(valid, 1);
  ASSERT_TRUE(table.GetValid(4, 2, &valid));  // 0x7FFF
  EXPECT_EQ(valid, 0);
  ASSERT_TRUE(table.GetValid(0, 2, &valid));  // no status: always valid
  EXPECT_EQ(valid, 1);
  EXPECT_FALSE(table.GetValid(4, 3, &valid));
  EXPECT_FALSE(table.GetValid(99, 1, &valid));
}

TEST_F(TableTest, KeywordLookupIgnoresCaseAndReportsTheKeyword) {
  int32_t index = 0;
  ASSERT_TRUE(table.GetColIndexFromKeyword("elementID", &index));
  EXPECT_EQ(index, 4);
  EXPECT_FALSE(table.GetColIndexFromKeyword("Force", &index));
  EXPECT_EQ(index, -1);
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnNotFound, "Column not found: Force",
                                           "VCUTable::GetColIndexFromKeyword"}}));
  VFErrorClear();
  VCUTableMemory empty("Empty");
  EXPECT_FALSE(empty.GetColIndexFromKeyword("ElementId", &index));
  EXPECT_EQ(Errors()[0].code, kTableErrorColumnNotFound);
}

TEST_F(TableTest, BaseDefaultsOfAHostTable) {
  HostTable host(VTTableDataType::Double);
  VCString texts[2];
  EXPECT_FALSE(host.GetValues_T(0, 1, 2, texts));
  EXPECT_TRUE(Errors().empty());
  int32_t index = 5;
  EXPECT_TRUE(host.GetInputTableIndexForRow(-4, &index));
  EXPECT_EQ(index, 0);
  double d[2];
  ASSERT_TRUE(host.GetValues(0, 1, 2, d));
  EXPECT_EQ(d[1], 1.0);
}

TEST_F(TableTest, DumpTableToScreenOfATableWithoutColumns) {
  VCUTableMemory empty("Empty");
  empty.SetNumRows(2);
  testing::internal::CaptureStdout();
  empty.DumpTableToScreen();
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "No of rows: 2, No of cols: 0\nRow,\n1,\n2,\n");
}

TEST_F(TableTest, DumpTableToScreenStopsAtTheFirstFailure) {
  table.SetNumRows(3);  // the columns hold two rows
  testing::internal::CaptureStdout();
  table.DumpTableToScreen();
  std::fflush(stdout);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(
      out.find("2,4,-1,0,0.25,-0.125(32767),x y,9,\n3,Failed VCUTable::DumpTableToScreen. "
               "Error message:\nError 1 in VCUTableMemory::GetValues: Invalid row number\n\n"),
      std::string::npos)
      << out;
}

TEST_F(TableTest, DumpTableToFile) {
  const auto path = std::filesystem::path(testing::TempDir()) / "table_dump.txt";
  ASSERT_TRUE(table.DumpTableToFile(path.string().c_str()));
  std::stringstream content;
  {
    std::ifstream in(path, std::ios::binary);
    content << in.rdbuf();
  }
  EXPECT_EQ(content.str(),
            "No of rows: 2, No of cols: 7\n"
            "Row,Short,Long,Huge,Float,ElementId,Text,Grade\n"
            "1,-3,70000,1099511627776,1.5,2.5(32768),abc,3\n"
            "2,4,-1,0,0.25,-0.125(32767),x y,9\n");
  table.SetNumRows(3);
  EXPECT_FALSE(table.DumpTableToFile(path.string().c_str()));
  VFErrorClear();
  EXPECT_FALSE(table.DumpTableToFile((path / "no" / "such" / "dir").string().c_str()));
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

}  // namespace
