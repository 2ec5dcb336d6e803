// VCUOutputTable: the result of a VCUTableProcessor, as a table.
//
// Its rows are the merged rows that survived the processor's operations,
// in their final order; its columns are the processor's output columns in
// the order they were added. A plain output column shows the merged column
// of its keyword (its keyword as the input tables spell it, its type,
// description, units, status and options). Every cell is read through the
// merged view from the input table the row comes from, so writable merged
// columns show their written values here too.
//
//   VCUTable* out = processor.GetOutputTable();
//   int64_t rows = 0;
//   out->GetNumRows(&rows);
//   std::vector<double> force(static_cast<size_t>(rows));
//   out->GetValues_D(0, 1, rows, force.data());
//
// Ownership: the output table belongs to its processor (get it with
// GetOutputTable, never delete it). Its content changes with each Process;
// the columns are those resolved by the last Validate or Process.
//
// Bulk reads take each run of output rows that are consecutive merged rows
// in one read of the merged view, which reads each run of one input table
// in one block; results and errors are those of reading cell by cell.
//
// Errors: -655974 "Column index out of range" (also for a column not yet
// resolved by Validate) and -655975 "Row number out of range" at
// "VCUOutputTable::<member>"; errors of the merged view and the input
// tables pass through.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/table/table.h>

struct VCUTableProcessorState;

class UTILKIT_API VCUOutputTable : public VCUTable {
 public:
  ~VCUOutputTable() override;
  VCUOutputTable(const VCUOutputTable&) = delete;
  VCUOutputTable& operator=(const VCUOutputTable&) = delete;

  // VCUTable. The name is "Output"; the row count is the number of output
  // rows (0 before the first Process). Errors as in the header.
  bool GetTableName(VCString* name) override;
  bool GetNumCols(int32_t* count) override;
  bool GetNumRows(int64_t* count) override;
  bool GetColKeyword(int32_t col, VCString* keyword) override;
  bool GetColDescription(int32_t col, VCString* description) override;
  bool GetColUnits(int32_t col, VCString* units) override;
  bool GetColType(int32_t col, VTTableDataType* type) override;
  bool GetColHasStatus(int32_t col, char* hasStatus) override;
  bool GetStatusColBitText(int32_t col, VCStringArray* texts) override;
  bool GetEnumColOptions(int32_t col, VCArrayWithSort<int32_t>* codes,
                         VCStringArray* names) override;
  bool GetValues_S(int32_t col, int64_t first, int64_t count, int16_t* out) override;
  bool GetValues_L(int32_t col, int64_t first, int64_t count, int32_t* out) override;
  bool GetValues_H(int32_t col, int64_t first, int64_t count, int64_t* out) override;
  bool GetValues_F(int32_t col, int64_t first, int64_t count, float* out) override;
  bool GetValues_D(int32_t col, int64_t first, int64_t count, double* out) override;
  bool GetValues_T(int32_t col, int64_t first, int64_t count, VCString* out) override;
  bool GetValues_T(int32_t col, int64_t first, int64_t count, VCStringArray* out) override;
  bool PeekTexts(int32_t col, int64_t first, int64_t count, std::string_view* out) override;
  bool GetValues_E(int32_t col, int64_t first, int64_t count, int32_t* codes,
                   VCStringArray* names) override;
  bool GetStatusValues(int32_t col, int64_t first, int64_t count, uint16_t* out) override;
  // The input table index of output row `row` (as the merged view gives it
  // for the merged row shown there); -655975 for a row out of range.
  bool GetInputTableIndexForRow(int64_t row, int32_t* index) override;

 private:
  friend struct VCUTableProcessorState;
  explicit VCUOutputTable(VCUTableProcessorState* state) : m_state(state) {}

  VCUTableProcessorState* m_state;  // the processor's, not owned
};
