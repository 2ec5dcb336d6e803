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
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  table_test::CsvTable table{
      "Tests",
      "Short:short,Long:long,Huge:huge,Float:float,ElementId:double,ElementId:status,Text:text,"
      "Grade:enum(1=low|3=high)\n"
      "-3,70000,1099511627776,1.5,2.5,0x8000,abc,high\n4,-1,0,0.25,-0.125,0x7FFF,x y,9\n"};
};

// Each type is read with its own width; an Enum cell reads as its code.
TEST_F(TableTest, GetValueReadsEachTypeWithItsOwnWidth) {
  const struct {
    int32_t col;
    int64_t row;
    VTTableDataType request;
    VCVariant expected;
  } kCells[] = {{0, 1, VTTableDataType::None, VCVariant(int16_t{-3})},
                {1, 1, VTTableDataType::None, VCVariant(int32_t{70000})},
                {2, 1, VTTableDataType::None, VCVariant(int64_t{1} << 40)},
                {3, 2, VTTableDataType::None, VCVariant(0.25f)},
                {4, 2, VTTableDataType::Double, VCVariant(-0.125)},
                {5, 2, VTTableDataType::None, VCVariant("x y")},
                {6, 1, VTTableDataType::None, VCVariant(int32_t{3})}};
  for (const auto& [col, row, request, expected] : kCells) {
    VCVariant v;
    ASSERT_TRUE(table.GetValue(col, row, &v, request)) << col;
    EXPECT_EQ(v.GetType(), expected.GetType()) << col;
    EXPECT_TRUE(v == expected) << col;
  }
  EXPECT_TRUE(Errors().empty());
}

TEST_F(TableTest, GetValueFailures) {
  VCVariant v(1.0);
  EXPECT_FAILS(table.GetValue(0, 1, &v, static_cast<VTTableDataType>(8)),
               {kTableErrorColumnType, "Invalid column type specified", "VCUTable::GetValue"});
  HostTable host(static_cast<VTTableDataType>(9));
  EXPECT_FALSE(host.GetValue(0, 1, &v, VTTableDataType::None));
  EXPECT_EQ(table_test::TakeErrors()[0].code, kTableErrorColumnType);
  // A failed read leaves the variant untouched and adds nothing.
  EXPECT_FAILS(table.GetValue(0, 3, &v, VTTableDataType::None),
               table_test::MemoryError("Invalid row number"));
  EXPECT_EQ(v.GetDouble(), 1.0);
}

TEST_F(TableTest, GetValidFollowsStatusBit15) {
  char valid[3] = {9, 9, 9};
  // Bit 15 set, 0x7FFF, and a column without status (always valid).
  ASSERT_TRUE(table.GetValid(4, 1, &valid[0]) && table.GetValid(4, 2, &valid[1]) &&
              table.GetValid(0, 2, &valid[2]));
  EXPECT_EQ(table_test::Cells(valid, 3), (std::vector<char>{1, 0, 1}));
  EXPECT_FALSE(table.GetValid(4, 3, &valid[0]));
  EXPECT_FALSE(table.GetValid(99, 1, &valid[0]));
}

TEST_F(TableTest, KeywordLookupIgnoresCaseAndReportsTheKeyword) {
  int32_t index = 0;
  ASSERT_TRUE(table.GetColIndexFromKeyword("elementID", &index));
  EXPECT_EQ(index, 4);
  EXPECT_FAILS(
      table.GetColIndexFromKeyword("Force", &index),
      {kTableErrorColumnNotFound, "Column not found: Force", "VCUTable::GetColIndexFromKeyword"});
  EXPECT_EQ(index, -1);
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
