#include <utilkit/table/table_errors.h>
#include <utilkit/table/table_new_column.h>

#include <gtest/gtest.h>

#include <vector>

#include <utilkit/base/calculator.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>

#include "table_test_util.h"

using table_test::Error;
using table_test::Errors;

namespace {

class NewColumnTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  static constexpr const char* kValidate = "VCUTableNewColumn::Validate";
  table_test::CsvTable m_table{"T",
                               "Force:double,Force:status,Area:double,Count:long\n"
                               "10,0x8000,2,1\n20,0x8001,4,2\n30,0x0002,0,3\n40,0x8000,8,4\n"
                               "50,0x0000,10,5\n"};
};

TEST_F(NewColumnTest, VariablesResolveIgnoringCaseAndStatusIdsStartAt1000) {
  VCUNewColCalculator calc;
  calc.SetTable(&m_table);
  const std::pair<const char*, int32_t> kIds[] = {
      {"#Force#", 0},           {"#area#", 1},           {"#FORCE#", 0},
      {"#Force_STATUS#", 1000}, {"#Area_status#", 1001}, {"#force_Status#", 1000}};
  for (const auto& [name, expected] : kIds) {
    int32_t id = -1;
    EXPECT_TRUE(calc.GetVariableId(name, &id)) << name;
    EXPECT_EQ(id, expected) << name;
  }
  int32_t id = -1;
  EXPECT_FALSE(calc.GetVariableId("##", &id));
  EXPECT_FALSE(calc.GetVariableId("Force", &id));
  EXPECT_TRUE(Errors().empty());
  EXPECT_FALSE(calc.GetVariableId("#Missing#", &id));
  EXPECT_EQ(table_test::TakeErrors().at(0).code, kTableErrorColumnNotFound);
  calc.SetRow(2);
  double value[2] = {};
  ASSERT_TRUE(calc.GetVariableValue(1000, &value[0]) && calc.GetVariableValue(1, &value[1]));
  EXPECT_EQ(table_test::Cells(value, 2), (std::vector<double>{0x8001, 4}));
  EXPECT_FAILS(calc.GetVariableValue(2, &value[0]),
               {kTableErrorColumnIndex, "Column index out of range",
                "VCUNewColCalculator::GetVariableValue"});
}

// The traps and the rest of a computed column's values: tests/data/table.
TEST_F(NewColumnTest, DivideByColumnWinsOverTheExpression) {
  VCUTableNewColumn column;
  column.SetKeyword("Inverse");
  column.SetDivideByCol(10, "Area");
  column.SetExpression("#Force#");
  ASSERT_TRUE(column.Validate(&m_table));
  double value = 0;
  ASSERT_TRUE(column.CalculateRowValue_D(&m_table, 2, &value));
  EXPECT_EQ(value, 2.5);
}

TEST_F(NewColumnTest, RowIndex) {
  VCUTableNewColumn column;
  column.SetKeyword("Index");
  column.SetExpression("#Force#");
  column.SetGenerateRowIndex(1);
  ASSERT_TRUE(column.Validate(&m_table));
  EXPECT_EQ(column.GetType(), VTTableDataType::Huge);
  for (int64_t row : {0, 1, 2}) {
    int64_t value = -5;
    ASSERT_TRUE(column.CalculateRowValue_H(&m_table, row, &value));
    EXPECT_EQ(value, row);
  }
  column.SetGenerateRowIndex(2);
  int64_t value = 0;
  ASSERT_TRUE(column.CalculateRowValue_H(&m_table, 0, &value));
  EXPECT_EQ(value, 1);
  double d = 0;
  const char* kMessage = "Virtual column with an expression can only return a Double value";
  EXPECT_FAILS(column.CalculateRowValue_D(&m_table, 1, &d),
               {kTableErrorExpressionType, kMessage, "VCUTableNewColumn::CalculateRowValue_D"});
  column.SetExpression("#Force#");  // back to an expression
  EXPECT_EQ(column.GetType(), VTTableDataType::Double);
  EXPECT_FAILS(column.CalculateRowValue_H(&m_table, 1, &value),
               {kTableErrorRowIndexType, kMessage, "VCUTableNewColumn::CalculateRowValue_H"});
}

TEST_F(NewColumnTest, ValidateErrors) {
  VCUTableNewColumn column;
  EXPECT_FAILS(column.Validate(&m_table),
               {kTableErrorNoKeyword, "Keyword has not been defined for new column", kValidate});
  column.SetKeyword("Stress");
  EXPECT_FAILS(
      column.Validate(&m_table),
      {kTableErrorNoExpression, "No expression has been set for new column: Stress", kValidate});
  column.SetExpression("#Force#");
  column.SetHasStatus(1);
  EXPECT_FAILS(column.Validate(&m_table),
               {kTableErrorNoStatusSource,
                "No source column has been set for new status column: Stress", kValidate});
  column.SetStatusColumn("Area");
  EXPECT_FAILS(column.Validate(&m_table), {kTableErrorNoStatus,
                                           "Status column is set to be copied from an input "
                                           "column which has no status: Stress",
                                           kValidate});
  column.SetHasStatus(0);
  column.SetExpression("#Force# + ##");
  EXPECT_FALSE(column.Validate(&m_table));
  EXPECT_TRUE(VFErrorCheck(kCalcErrorUnknownVariable));
}

}  // namespace
