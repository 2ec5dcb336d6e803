// The processor's pipeline as its output table shows it: computed columns,
// their reads, and the steps Process validates in order (the order the
// steps run in: tests/data/table).
#include <utilkit/table/output_table.h>
#include <utilkit/table/table_errors.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "table/table_test_util.h"

using table_test::Cells;
using table_test::Error;
using table_test::Errors;

namespace {

const Error kSummary{kTableErrorProcessFailed, "Failed to process filtering and sorting on table",
                     "VCUTableProcessor::Process", 1};

class OutputTableTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    const char* names[] = {"a1", "a2", "a3", "b1", "b2"};  // kept as strings
    a.AddCol("Name", 3, names);
    b.AddCol("Name", 2, names + 3);
    processor.AddInputTable(&a);
    processor.AddInputTable(&b);
  }
  void TearDown() override { VFErrorClear(); }

  std::vector<std::string> Texts(int32_t col) {
    return table_test::Texts(processor.GetOutputTable(), col);
  }
  std::vector<double> Doubles(int32_t col) {
    return table_test::Doubles(processor.GetOutputTable(), col);
  }

  table_test::CsvTable a{"A", "Force:double,Force:status\n1,0x8000\n2,0\n3,0x8000\n"};
  table_test::CsvTable b{"B", "Force:double\n4\n5\n"};
  VCUTableProcessor processor;
};

TEST_F(OutputTableTest, ComputedColumnsFollowTheOutputRows) {
  VCUTableNewColumn twice, index, inverse;
  twice.SetKeyword("Twice");
  twice.SetDescription("Force doubled");
  twice.SetUnits("kN");
  twice.SetExpression("#force# * 2 + #FORCE# * 0");
  twice.SetHasStatus(1);
  twice.SetStatusColumn("Force");
  index.SetKeyword("Index");
  index.SetGenerateRowIndex(1);
  inverse.SetKeyword("Inverse");
  inverse.SetDivideByCol(10, "Force");
  VCUTableSort sort;
  sort.AddColumn("Force", 0, 1);
  processor.AddOutputColumn("Name");
  processor.AddOutputColumn(&twice);
  processor.AddOutputColumn(&index);
  processor.AddOutputColumn(&inverse);
  processor.SetSort(&sort);
  ASSERT_TRUE(processor.Process());
  VCUTable* out = processor.GetOutputTable();

  VCString texts[3];
  VTTableDataType type[2] = {};
  char hasStatus[2] = {};
  ASSERT_TRUE(out->GetColKeyword(1, &texts[0]) && out->GetColDescription(1, &texts[1]) &&
              out->GetColUnits(1, &texts[2]) && out->GetColType(1, &type[0]) &&
              out->GetColHasStatus(1, &hasStatus[0]) && out->GetColType(2, &type[1]) &&
              out->GetColHasStatus(2, &hasStatus[1]));
  EXPECT_EQ(Cells(texts, 3), (std::vector<VCString>{"Twice", "Force doubled", "kN"}));
  EXPECT_EQ(Cells(type, 2), (std::vector{VTTableDataType::Double, VTTableDataType::Huge}));
  EXPECT_EQ(Cells(hasStatus, 2), (std::vector<char>{1, 0}));

  EXPECT_EQ(Texts(0), (std::vector<std::string>{"b2", "b1", "a3", "a2", "a1"}));
  EXPECT_EQ(Doubles(1), (std::vector<double>{10, 8, 6, 4, 2}));
  EXPECT_EQ(Doubles(3), (std::vector<double>{2, 2.5, 10.0 / 3, 5, 10}));
  // Rows of the second table, whose Force has no status, read valid.
  uint16_t status[5] = {};
  ASSERT_TRUE(out->GetStatusValues(1, 1, 5, status));
  EXPECT_EQ(Cells(status, 5), (std::vector<uint16_t>{0x8000, 0x8000, 0x8000, 0, 0x8000}));
  // The row index numbers the output rows from row 0: start 1 shows 0 first.
  int64_t numbers[3] = {};
  ASSERT_TRUE(out->GetValues_H(2, 3, 3, numbers));
  EXPECT_EQ(Cells(numbers, 3), (std::vector<int64_t>{2, 3, 4}));
  EXPECT_EQ(Errors(), std::vector<Error>{});
}

TEST_F(OutputTableTest, ComputedColumnsRefuseOtherReaders) {
  VCUTableNewColumn twice, index;
  twice.SetKeyword("Twice");
  twice.SetExpression("#Force# * 2");
  index.SetKeyword("Index");
  index.SetGenerateRowIndex(1);
  processor.AddOutputColumn(&twice);
  processor.AddOutputColumn(&index);
  VCUTable* out = processor.GetOutputTable();
  double value = 0;
  EXPECT_FALSE(out->GetValues_D(0, 1, 1, &value));  // not validated yet
  ASSERT_TRUE(processor.Process());
  int64_t number = 0;
  uint16_t status = 0;
  VCStringArray texts;
  EXPECT_FALSE(out->GetValues_H(0, 1, 1, &number));
  EXPECT_FALSE(out->GetValues_D(1, 1, 1, &value));
  EXPECT_FALSE(out->GetStatusValues(0, 1, 1, &status));
  EXPECT_FALSE(out->GetValues_T(1, 1, 1, &texts));
  EXPECT_FAILS(out->GetValues_D(0, 5, 2, &value),
               {kTableErrorColumnIndex, "Column index out of range", "VCUOutputTable::GetValues_D"},
               {1, "Column type mismatch", "VCUOutputTable::GetValues_H"},
               {1, "Column type mismatch", "VCUOutputTable::GetValues_D"},
               {1, "Column has no status data", "VCUOutputTable::GetStatusValues"},
               {1, "Column type mismatch", "VCUOutputTable::GetValues_T"},
               {kTableErrorRowNumber, "Row number out of range", "VCUOutputTable::GetValues_D"});
}

TEST_F(OutputTableTest, ValidateStopsAtTheFirstBadStep) {
  VCUTableNewColumn unnamed;
  unnamed.SetExpression("#Force#");
  VCUTableSort empty;
  processor.AddOutputColumn(&unnamed);
  processor.SetSort(&empty);
  EXPECT_FAILS(processor.Process(),
               {kTableErrorNoKeyword, "Keyword has not been defined for new column",
                "VCUTableNewColumn::Validate"},
               kSummary);
  unnamed.SetKeyword("Copy");
  EXPECT_FAILS(
      processor.Process(),
      {kTableErrorNoSortColumns, "No columns defined for sort operation", "VCUTableSort::Validate"},
      {kTableErrorSort, "Invalid sort operation configured", "VCUTableSort::Validate", 1},
      kSummary);
  // A computed column is removed by its own keyword.
  EXPECT_TRUE(processor.RemoveOutputColumn("COPY"));
  EXPECT_FAILS(processor.Validate(),
               {kTableErrorNoOutputColumns, "No output columns defined for table",
                "VCUTableProcessor::Validate"});
}

}  // namespace
