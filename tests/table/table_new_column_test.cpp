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
  void SetUp() override {
    VFErrorClear();
    const double force[] = {10, 20, 30, 40, 50};
    const double area[] = {2, 4, 0, 8, 10};
    const uint16_t status[] = {0x8000, 0x8001, 0x0002, 0x8000, 0x0000};
    const int32_t count[] = {1, 2, 3, 4, 5};
    m_table.AddCol("Force", 5, force);
    m_table.SetColStatus("Force", 5, status);
    m_table.AddCol("Area", 5, area);
    m_table.AddCol("Count", 5, count);
    m_table.SetNumRows(5);
  }
  void TearDown() override { VFErrorClear(); }

  static constexpr const char* kValidate = "VCUTableNewColumn::Validate";
  VCUTableMemory m_table{"T"};
};

TEST_F(NewColumnTest, VariablesResolveIgnoringCaseAndStatusIdsStartAt1000) {
  VCUNewColCalculator calc;
  calc.SetTable(&m_table);
  int32_t id = -1;
  EXPECT_TRUE(calc.GetVariableId("#Force#", &id));
  EXPECT_EQ(id, 0);
  EXPECT_TRUE(calc.GetVariableId("#area#", &id));
  EXPECT_EQ(id, 1);
  EXPECT_TRUE(calc.GetVariableId("#FORCE#", &id));
  EXPECT_EQ(id, 0);
  EXPECT_TRUE(calc.GetVariableId("#Force_STATUS#", &id));
  EXPECT_EQ(id, 1000);
  EXPECT_TRUE(calc.GetVariableId("#Area_status#", &id));
  EXPECT_EQ(id, 1001);
  EXPECT_TRUE(calc.GetVariableId("#force_Status#", &id));
  EXPECT_EQ(id, 1000);
  EXPECT_FALSE(calc.GetVariableId("##", &id));
  EXPECT_FALSE(calc.GetVariableId("Force", &id));
  EXPECT_TRUE(Errors().empty());
  EXPECT_FALSE(calc.GetVariableId("#Missing#", &id));
  EXPECT_EQ(Errors().at(0).code, kTableErrorColumnNotFound);
  VFErrorClear();
  calc.SetRow(2);
  double value = 0;
  EXPECT_TRUE(calc.GetVariableValue(1000, &value));
  EXPECT_EQ(value, 0x8001);
  EXPECT_TRUE(calc.GetVariableValue(1, &value));
  EXPECT_EQ(value, 4);
  EXPECT_FALSE(calc.GetVariableValue(2, &value));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnIndex, "Column index out of range",
                                           "VCUNewColCalculator::GetVariableValue"}}));
}

TEST_F(NewColumnTest, ExpressionsReadTheirColumnsAtTheRow) {
  VCUTableNewColumn column;
  column.SetKeyword("Stress");
  column.SetExpression("#Force# / #area# + #Force_status# - #FORCE#");
  ASSERT_TRUE(column.Validate(&m_table));
  EXPECT_EQ(column.GetType(), VTTableDataType::Double);
  double value = 0;
  ASSERT_TRUE(column.CalculateRowValue_D(&m_table, 5, &value));
  EXPECT_EQ(value, 5.0 + 0 - 50);
  ASSERT_TRUE(column.CalculateRowValue_D(&m_table, 2, &value));
  EXPECT_EQ(value, 5.0 + 0x8001 - 20);
}

TEST_F(NewColumnTest, TrapsReplaceFailingRows) {
  VCUTableNewColumn column;
  column.SetKeyword("Ratio");
  column.SetExpression("#Force# / #Area# + log(#Area# - 2)");
  ASSERT_TRUE(column.Validate(&m_table));
  double value = 0;
  EXPECT_FALSE(column.CalculateRowValue_D(&m_table, 3, &value));
  EXPECT_TRUE(VFErrorCheck(kCalcErrorDivideByZero));
  VFErrorClear();
  column.SetDivZeroTrap(1, -1);
  ASSERT_TRUE(column.CalculateRowValue_D(&m_table, 3, &value));
  EXPECT_EQ(value, -1);
  EXPECT_TRUE(VFErrorCheck(kCalcErrorDivideByZero));  // left on the stack
  VFErrorClear();
  EXPECT_FALSE(column.CalculateRowValue_D(&m_table, 1, &value));  // log(0)
  EXPECT_TRUE(VFErrorCheck(kCalcErrorLogOfZero));
  VFErrorClear();
  column.SetLogZeroTrap(1, -2);
  ASSERT_TRUE(column.CalculateRowValue_D(&m_table, 1, &value));
  EXPECT_EQ(value, -2);
  double trap = 0;
  EXPECT_EQ(column.GetLogZeroTrap(&trap), 1);
  EXPECT_EQ(trap, -2);
  VFErrorClear();

  // The bulk calculation gives the same values, traps included.
  const int32_t rows[] = {1, 2, 3, 4, 5, 3};
  double out[6];
  ASSERT_TRUE(column.CalculateValues_D(&m_table, rows, 6, out));
  for (int i = 0; i < 6; ++i) {
    double one = 0;
    VFErrorClear();
    ASSERT_TRUE(column.CalculateRowValue_D(&m_table, rows[i], &one));
    EXPECT_DOUBLE_EQ(out[i], one) << i;
  }
}

TEST_F(NewColumnTest, DivideByColumn) {
  VCUTableNewColumn column;
  column.SetKeyword("Inverse");
  column.SetDivideByCol(10, "Area");
  column.SetExpression("#Force#");  // the division still wins
  ASSERT_TRUE(column.Validate(&m_table));
  double value = 0;
  ASSERT_TRUE(column.CalculateRowValue_D(&m_table, 2, &value));
  EXPECT_EQ(value, 2.5);
  EXPECT_FALSE(column.CalculateRowValue_D(&m_table, 3, &value));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorDivideByZero, "Divide by zero",
                                           "VCUTableNewColumn::CalculateRowValue_D"}}));
  VFErrorClear();
  column.SetDivZeroTrap(1, -1);
  ASSERT_TRUE(column.CalculateRowValue_D(&m_table, 3, &value));
  EXPECT_EQ(value, -1);
  const int32_t rows[] = {3, 4, 5};
  double out[3];
  ASSERT_TRUE(column.CalculateValues_D(&m_table, rows, 3, out));
  EXPECT_EQ(out[0], -1);
  EXPECT_EQ(out[1], 1.25);
  EXPECT_EQ(out[2], 1);
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
  EXPECT_FALSE(column.CalculateRowValue_D(&m_table, 1, &d));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorExpressionType,
                                           "Virtual column with an expression can only return a "
                                           "Double value",
                                           "VCUTableNewColumn::CalculateRowValue_D"}}));
  VFErrorClear();
  column.SetExpression("#Force#");  // back to an expression
  EXPECT_EQ(column.GetType(), VTTableDataType::Double);
  EXPECT_FALSE(column.CalculateRowValue_H(&m_table, 1, &value));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorRowIndexType,
                                           "Virtual column with an expression can only return a "
                                           "Double value",
                                           "VCUTableNewColumn::CalculateRowValue_H"}}));
}

TEST_F(NewColumnTest, StatusIsCopiedFromTheSourceColumn) {
  VCUTableNewColumn column;
  column.SetKeyword("Stress");
  column.SetExpression("#Force# * 2");
  column.SetHasStatus(1);
  column.SetStatusColumn("force");
  ASSERT_TRUE(column.Validate(&m_table));
  uint16_t status = 0;
  ASSERT_TRUE(column.CalculateRowStatus(&m_table, 3, &status));
  EXPECT_EQ(status, 0x0002);
}

TEST_F(NewColumnTest, ValidateErrors) {
  VCUTableNewColumn column;
  EXPECT_FALSE(column.Validate(&m_table));
  EXPECT_EQ(Errors(),
            (std::vector<Error>{
                {kTableErrorNoKeyword, "Keyword has not been defined for new column", kValidate}}));
  VFErrorClear();
  column.SetKeyword("Stress");
  EXPECT_FALSE(column.Validate(&m_table));
  EXPECT_EQ(Errors(),
            (std::vector<Error>{{kTableErrorNoExpression,
                                 "No expression has been set for new column: Stress", kValidate}}));
  VFErrorClear();
  column.SetExpression("#Force#");
  column.SetHasStatus(1);
  EXPECT_FALSE(column.Validate(&m_table));
  EXPECT_EQ(Errors(),
            (std::vector<Error>{{kTableErrorNoStatusSource,
                                 "No source column has been set for new status column: Stress",
                                 kValidate}}));
  VFErrorClear();
  column.SetStatusColumn("Area");
  EXPECT_FALSE(column.Validate(&m_table));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorNoStatus,
                                           "Status column is set to be copied from an input column "
                                           "which has no status: Stress",
                                           kValidate}}));
  VFErrorClear();
  column.SetHasStatus(0);
  column.SetExpression("#Force# + ##");
  EXPECT_FALSE(column.Validate(&m_table));
  EXPECT_TRUE(VFErrorCheck(kCalcErrorUnknownVariable));
}

}  // namespace
