// VCUNewColCalculator: the expression calculator of a computed table column.
//
// Variables are columns of a table, written between '#': "#Force#" is the
// value of column Force (read as a Double, so the column must be one) in the
// current row, "#Force_status#" its status word as a number. Names ignore
// case, so "#A#" and "#a#" are one variable. Value variables get the
// identifiers 0, 1, 2 ... in the order first met, status variables 1000,
// 1001 ...; at most 1000 value variables are allowed. Any other name (no
// '#' at both ends, or "##") is refused, which fails SetExpression with the
// calculator's -68443.
//
//   VCUNewColCalculator calc;
//   calc.SetTable(&table);
//   calc.SetExpression("#Force# / #Area#");   // resolves Force and Area now
//   calc.SetRow(5);
//   double value;
//   calc.EvaluateExpressionToDouble(&value);  // reads both columns at row 5
//
// Ownership: the table is not owned and must outlive the calculator's use.
// The variable lists grow with each new name and are kept for the
// calculator's life.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include <utilkit/base/calculator.h>
#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/table/table.h>

class UTILKIT_API VCUNewColCalculator : public VCCalculator {
 public:
  // Identifiers from this one on name status variables.
  static constexpr int32_t kStatusIdBase = 1000;

  VCUNewColCalculator();
  ~VCUNewColCalculator() override;

  // The table read by variables (not owned). Never fails.
  void SetTable(VCUTable* table) { m_table = table; }
  VCUTable* GetTable() const { return m_table; }
  // The row read by the next evaluation (1-based).
  void SetRow(int64_t row) { m_row = row; }

  // The column that identifier `id` reads and whether it reads its status;
  // false for an identifier outside the lists.
  bool GetColumnOfId(int32_t id, int32_t* col, bool* status) const;

  // The value of variable `id` at the current row. Fails with the table's
  // read error, or -655974 at "VCUNewColCalculator::GetVariableValue" for
  // an identifier outside the lists.
  bool GetVariableValue(int32_t id, double* value) override;
  // Resolves "#keyword#" or "#keyword_status#" (see the header). Fails with
  // the table's -655968 for an unknown column; refuses other names.
  bool GetVariableId(const char* name, int32_t* id) override;

 private:
  VCUTable* m_table = nullptr;
  int64_t m_row = 1;
  // Names are found by their upper-case form; each list numbers its own.
  std::unordered_map<std::string, int32_t> m_valueIds;
  VCArray<int32_t> m_valueCols;
  std::unordered_map<std::string, int32_t> m_statusIds;
  VCArray<int32_t> m_statusCols;
};
