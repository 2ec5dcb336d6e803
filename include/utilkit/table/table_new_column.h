// VCUTableNewColumn: a computed column of a table processor's output.
//
// Its value in each row is worked out, not stored, in one of three ways:
// - an expression over other columns (a Double): "#Force# / #Area# * 1000",
//   with "#Force_status#" for a column's status word (see
//   new_col_calculator.h for the variables);
// - a constant divided by another column (a Double);
// - a row index (a Huge): start + row - 1.
// Optionally the column has a status, copied row by row from an input
// column's status. Two traps turn a failing row into a chosen value instead
// of a failure: a division by zero, and the logarithm of zero. A trapped
// row still leaves the calculator's record (-68445 or -68448) on the error
// stack, so that a host can tell that a trap fired.
//
//   VCUTableNewColumn* stress = new VCUTableNewColumn;
//   stress->SetKeyword("Stress");
//   stress->SetExpression("#Force# / #Area#");
//   stress->SetDivZeroTrap(1, 0.0);
//   processor.AddOutputColumn(stress);   // the processor does not own it
//
// In a table processor's output, expression and divide-by-column values
// (and the status) are computed from the merged row that each output row
// shows, and a row index numbers the output rows from 0:
// CalculateRowValue_H is asked for row 0 for the first output row, so it
// shows start - 1, then start, start + 1 ... (SetGenerateRowIndex(1) gives
// 0, 1, 2 ...).
// SetDivideByCol takes precedence over an expression once called;
// otherwise the last of SetExpression and SetGenerateRowIndex decides.
// Variables and divisors read their columns as Double: another type fails
// with the table's read error.
//
// Ownership: the column owns its calculator; tables are never owned.
// Validate binds the column to one table; run it again for another.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/table/new_col_calculator.h>
#include <utilkit/table/table.h>
#include <utilkit/table/table_operation.h>

class UTILKIT_API VCUTableNewColumn : public VCUTableOperation {
 public:
  VCUTableNewColumn();
  ~VCUTableNewColumn() override;

  // Identity of the column. The setters never fail.
  bool SetKeyword(const char* keyword);
  bool SetDescription(const char* description);
  bool SetUnits(const char* units);
  VCString GetKeyword() const;
  VCString GetDescription() const;
  VCString GetUnits() const;
  bool SetHasStatus(char hasStatus);
  char GetHasStatus() const;
  // The input column whose status the column copies. Never fails.
  bool SetStatusColumn(const char* keyword);

  // Computes the expression (clears the row index). Never fails; the text
  // is checked by Validate.
  bool SetExpression(VCString expression);
  // Numbers the rows from `start`. Never fails; numbers past the largest
  // Huge wrap around to the smallest (two's complement) rather than overflow.
  bool SetGenerateRowIndex(int64_t start);
  // Computes numerator / value of column `keyword`. Never fails.
  bool SetDivideByCol(double numerator, const char* keyword);
  // Traps: on (1) a failing row gets `value`. The getters return the flag.
  bool SetDivZeroTrap(char on, double value);
  char GetDivZeroTrap(double* value) const;
  bool SetLogZeroTrap(char on, double value);
  char GetLogZeroTrap(double* value) const;

  // Huge for a row index, else Double.
  VTTableDataType GetType() const;

  // Binds to `table`. Fails with -655977 without a keyword, -655978 without
  // an expression, -655979 without a status source, -655986 for a status
  // source without status (all at "VCUTableNewColumn::Validate"), the
  // table's -655968, or the calculator's errors for a bad expression.
  bool Validate(VCUTable* table);
  // The value at `row` of the table last validated against. Fails with
  // -655994 for a row index column, -656002 for a zero divisor without the
  // trap, the calculator's -68445 / -68448 without the trap, or read errors.
  bool CalculateRowValue_D(VCUTable* table, int64_t row, double* value);
  // The row index start + row - 1; -655995 for a column that is not one.
  bool CalculateRowValue_H(VCUTable* table, int64_t row, int64_t* value);
  // The status word of the status source column at `row`; its read errors.
  bool CalculateRowStatus(VCUTable* table, int64_t row, uint16_t* status);
  // The status bit texts of the status source column; its errors.
  bool GetStatusColBitText(VCUTable* table, VCStringArray* texts);

  // CalculateRowValue_D for rows[0, count) of `table` into out[0, count),
  // reading each column the expression uses once per block of rows.
  // Results and error codes are those of row-by-row calculation (the
  // calculator's own records name "VCCalculator::EvaluateBlock").
  bool CalculateValues_D(VCUTable* table, const int32_t* rows, int64_t count, double* out);
  // The same for the consecutive rows first..first+count-1 of `table`.
  bool CalculateRangeValues_D(VCUTable* table, int64_t first, int64_t count, double* out);
  // CalculateRowStatus for rows[0, count) into out[0, count), reading each
  // run of consecutive rows in one block; errors are the table's.
  bool CalculateStatuses(VCUTable* table, const int32_t* rows, int64_t count, uint16_t* out);

 private:
  struct Impl;
  bool Trap(double* value) const;
  // Values of rows[0, count), or of first..first+count-1 when rows is null.
  bool CalculateBlocks(VCUTable* table, const int32_t* rows, int64_t first, int64_t count,
                       double* out);
  bool DivideBlock(VCUTable* table, const int32_t* rows, int64_t first, int64_t count, double* out);
  bool ExpressionBlock(VCUTable* table, const int32_t* rows, int64_t first, int64_t count,
                       double* out);

  std::unique_ptr<Impl> m_impl;
};
