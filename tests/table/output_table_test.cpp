// The processor's pipeline as its output table shows it: computed columns,
// and the filter, compressions and sort run in their fixed order.
#include <utilkit/table/output_table.h>
#include <utilkit/table/table_errors.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_filter_basic.h>
#include <utilkit/table/table_processor.h>

#include "table/table_test_util.h"

using table_test::Error;
using table_test::Errors;

namespace {

const Error kSummary{kTableErrorProcessFailed, "Failed to process filtering and sorting on table",
                     "VCUTableProcessor::Process", 1};

class OutputTableTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    const char* names[] = {"a1", "a2", "a3"};
    const double force[] = {1, 2, 3};
    const uint16_t status[] = {0x8000, 0, 0x8000};
    a.AddCol("Name", 3, names);
    a.AddCol("Force", 3, force);
    a.SetColStatus("Force", 3, status);
    a.SetNumRows(3);
    const char* bnames[] = {"b1", "b2"};
    const double bforce[] = {4, 5};
    b.AddCol("Name", 2, bnames);
    b.AddCol("Force", 2, bforce);
    b.SetNumRows(2);
    processor.AddInputTable(&a);
    processor.AddInputTable(&b);
  }
  void TearDown() override { VFErrorClear(); }

  std::vector<std::string> Texts(int32_t col) {
    VCUTable* out = processor.GetOutputTable();
    int64_t rows = 0;
    out->GetNumRows(&rows);
    VCStringArray texts;
    EXPECT_TRUE(out->GetValues_T(col, 1, rows, &texts));
    return {texts.begin(), texts.end()};
  }
  std::vector<double> Doubles(int32_t col) {
    VCUTable* out = processor.GetOutputTable();
    int64_t rows = 0;
    out->GetNumRows(&rows);
    std::vector<double> values(static_cast<size_t>(rows));
    EXPECT_TRUE(out->GetValues_D(col, 1, rows, values.data()));
    return values;
  }

  VCUTableMemory a{"A"};
  VCUTableMemory b{"B"};
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

  VCString keyword, description, units;
  VTTableDataType type = VTTableDataType::None;
  char hasStatus = 0;
  ASSERT_TRUE(out->GetColKeyword(1, &keyword) && out->GetColDescription(1, &description) &&
              out->GetColUnits(1, &units) && out->GetColType(1, &type) &&
              out->GetColHasStatus(1, &hasStatus));
  EXPECT_EQ(keyword, "Twice");
  EXPECT_EQ(description, "Force doubled");
  EXPECT_EQ(units, "kN");
  EXPECT_EQ(type, VTTableDataType::Double);
  EXPECT_EQ(hasStatus, 1);
  ASSERT_TRUE(out->GetColType(2, &type) && out->GetColHasStatus(2, &hasStatus));
  EXPECT_EQ(type, VTTableDataType::Huge);
  EXPECT_EQ(hasStatus, 0);

  EXPECT_EQ(Texts(0), (std::vector<std::string>{"b2", "b1", "a3", "a2", "a1"}));
  EXPECT_EQ(Doubles(1), (std::vector<double>{10, 8, 6, 4, 2}));
  EXPECT_EQ(Doubles(3), (std::vector<double>{2, 2.5, 10.0 / 3, 5, 10}));
  // Rows of the second table, whose Force has no status, read valid.
  uint16_t status[5] = {};
  ASSERT_TRUE(out->GetStatusValues(1, 1, 5, status));
  EXPECT_EQ(std::vector<uint16_t>(status, status + 5),
            (std::vector<uint16_t>{0x8000, 0x8000, 0x8000, 0, 0x8000}));
  // The row index numbers the output rows from row 0: start 1 shows 0 first.
  int64_t numbers[3] = {};
  ASSERT_TRUE(out->GetValues_H(2, 3, 3, numbers));
  EXPECT_EQ(std::vector<int64_t>(numbers, numbers + 3), (std::vector<int64_t>{2, 3, 4}));
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
  EXPECT_FALSE(out->GetValues_D(0, 5, 2, &value));
  EXPECT_EQ(
      Errors(),
      (std::vector<Error>{
          {kTableErrorColumnIndex, "Column index out of range", "VCUOutputTable::GetValues_D"},
          {1, "Column type mismatch", "VCUOutputTable::GetValues_H"},
          {1, "Column type mismatch", "VCUOutputTable::GetValues_D"},
          {1, "Column has no status data", "VCUOutputTable::GetStatusValues"},
          {1, "Column type mismatch", "VCUOutputTable::GetValues_T"},
          {kTableErrorRowNumber, "Row number out of range", "VCUOutputTable::GetValues_D"}}));
}

// Rows (Id, K, G, V). Each step's place in the order shows in the result:
// the filter first drops b; the maximum per K keeps a, c and d; the sum per
// G then keeps a (1 + 2) and d; the sort last puts d first. Any other order
// of the steps gives another output.
TEST_F(OutputTableTest, FilterThenCompressionsInOrderThenSort) {
  VCUTableMemory t("T");
  const char* ids[] = {"a", "b", "c", "d"};
  const int32_t k[] = {1, 1, 2, 3};
  const int32_t g[] = {1, 1, 1, 2};
  const double v[] = {1, 5, 2, 4};
  t.AddCol("Id", 4, ids);
  t.AddCol("K", 4, k);
  t.AddCol("G", 4, g);
  t.AddCol("V", 4, v);
  t.SetNumRows(4);
  VCUTableProcessor p;
  p.AddInputTable(&t);
  p.AddOutputColumn("Id");
  p.AddOutputColumn("V");
  VCUTableFilterBasic filter;
  filter.SetColumnKeyword("V");
  filter.SetCompare(VTTableFilterCompare::LessThan);
  filter.SetCompareValue(VCVariant(5.0));
  VCUTableCompress byK(0), byG(0);
  byK.AddSearchColumn("K");
  byK.SetSelectColumn("V");
  byG.AddSearchColumn("G");
  byG.SetSelectColumn("V");
  byG.SetSelectType(VTCompressType::Sum);
  VCUTableSort sort;
  sort.AddColumn("Id", 0, 1);
  p.SetSort(&sort);
  p.AddCompress(&byK);
  p.AddCompress(&byG);
  p.SetFilter(&filter);
  ASSERT_TRUE(p.Process());
  VCUTable* out = p.GetOutputTable();
  VCStringArray texts;
  double values[2] = {};
  ASSERT_TRUE(out->GetValues_T(0, 1, 2, &texts) && out->GetValues_D(1, 1, 2, values));
  EXPECT_EQ(std::vector<std::string>(texts.begin(), texts.end()),
            (std::vector<std::string>{"d", "a"}));
  EXPECT_EQ(std::vector<double>(values, values + 2), (std::vector<double>{4, 3}));

  // Without the operations every row shows, in input order.
  p.ClearOperations();
  ASSERT_TRUE(p.Process());
  int64_t rows = 0;
  ASSERT_TRUE(out->GetNumRows(&rows));
  EXPECT_EQ(rows, 4);
  ASSERT_TRUE(out->GetValues_D(1, 1, 2, values));
  EXPECT_EQ(std::vector<double>(values, values + 2), (std::vector<double>{1, 5}));
}

TEST_F(OutputTableTest, ValidateStopsAtTheFirstBadStep) {
  VCUTableNewColumn unnamed;
  unnamed.SetExpression("#Force#");
  VCUTableSort empty;
  processor.AddOutputColumn(&unnamed);
  processor.SetSort(&empty);
  EXPECT_FALSE(processor.Process());
  EXPECT_EQ(Errors(), (std::vector<Error>{
                          {kTableErrorNoKeyword, "Keyword has not been defined for new column",
                           "VCUTableNewColumn::Validate"},
                          kSummary}));
  VFErrorClear();
  unnamed.SetKeyword("Copy");
  EXPECT_FALSE(processor.Process());
  EXPECT_EQ(Errors(),
            (std::vector<Error>{
                {kTableErrorNoSortColumns, "No columns defined for sort operation",
                 "VCUTableSort::Validate"},
                {kTableErrorSort, "Invalid sort operation configured", "VCUTableSort::Validate", 1},
                kSummary}));
  VFErrorClear();
  // A computed column is removed by its own keyword.
  EXPECT_TRUE(processor.RemoveOutputColumn("COPY"));
  EXPECT_FALSE(processor.Validate());
  EXPECT_EQ(Errors(),
            (std::vector<Error>{{kTableErrorNoOutputColumns, "No output columns defined for table",
                                 "VCUTableProcessor::Validate"}}));
}

}  // namespace
