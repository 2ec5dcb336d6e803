// VCUTableData: the table processor's merged view of its input tables.
//
// Its rows are the merged rows: the rows of every input table, one table
// after another in the order the tables were added (or the rows selected
// with VCUTableProcessor::AddInputTable), numbered from 1. Its columns are
// the merged columns found by the processor's last Validate (or Process):
// in the common-columns mode the columns every input table has with one
// type, in the all-columns mode every keyword of any input table. Each cell
// is read from the input table its row comes from. Filters, sorts and
// compressions read this view; the output view reads through it.
//
//   VCUTableData* merged = processor.GetInputData();
//   int32_t col = -1;
//   if (processor.Process() && merged->GetColIndexFromKeyword("Force", &col) &&
//       merged->SetColWritable(col)) {
//     merged->WriteInputColValue(col, 1, 0.0);   // the output shows 0.0 for merged row 1
//   }
//
// Ownership: the view belongs to its processor and lives as long as it; it
// never owns the input tables.
//
// Reading rules:
// - A cell of a row whose input table lacks the column reads as 0, an empty
//   text, Enum code 0 with an empty name, and status 0 (not valid).
// - Metadata (description, units, status bit texts, Enum options) comes
//   from the first input table that has the column. The column has status
//   when any input table's column has status; then rows from a table whose
//   column has none read status 0x8000 (valid), as cells without status are.
// - A bulk read takes each run of consecutive rows of one input table in
//   one read of that table. Results and errors are those of reading the
//   cells one by one: when a block read fails, its errors are taken back
//   and the run is read cell by cell, so the error reported is the one of
//   the first failing cell.
// - The keywords "ElementId" and "NodeId" have no special role here; they
//   are ordinary column keywords.
// - Writable columns: SetColWritable lets values (and, for a column with
//   status, status words) be written to a Double column, one merged row at
//   a time; from then on its GetValues_D and GetStatusValues read the
//   written cells where there are some and the input tables elsewhere. The
//   input tables are never changed: the view keeps only the cells written
//   (so making a column writable costs a bit per row, not a copy of it).
//   Written cells are forgotten whenever the merged rows are rebuilt
//   (Process), and the column stops being writable when the merged columns
//   are dropped (Validate, changes of the input tables).
//
// Errors: -655974 "Column index out of range" and -655975 "Row number out
// of range" at "VCUTableData::<member>"; a run naming an input table that
// has since been removed also gives -655975. Input tables' own read errors
// pass through.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/table/table.h>

struct VCUTableProcessorState;

class UTILKIT_API VCUTableData : public VCUTable {
 public:
  ~VCUTableData() override;
  VCUTableData(const VCUTableData&) = delete;
  VCUTableData& operator=(const VCUTableData&) = delete;

  // Makes a Double column writable (a second call keeps the values written
  // so far). Fails with -655974 for a bad index, -656000 for another type,
  // or when memory runs out.
  bool SetColWritable(int32_t col);
  // True when `col` is a writable column.
  bool GetColWritable(int32_t col) const;
  // Writes one value / one status word of merged row `row`. Fail with
  // -655974 for a bad index, -656001 when the column is not writable (or,
  // for status, is writable without status), -655975 for a bad row.
  bool WriteInputColValue(int32_t col, int64_t row, double value);
  bool WriteInputColStatusValue(int32_t col, int64_t row, uint16_t status);

  // VCUTable. The name is "Input"; the row count is the number of merged
  // rows. Errors as in the header.
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
  bool GetValues_E(int32_t col, int64_t first, int64_t count, int32_t* codes,
                   VCStringArray* names) override;
  bool GetStatusValues(int32_t col, int64_t first, int64_t count, uint16_t* out) override;
  const double* PeekValues_D(int32_t col, int64_t first, int64_t count) override;
  const void* PeekCells(int32_t col, VTTableDataType type, int64_t first, int64_t count,
                        const VCUDictionary** dictionary = nullptr) override;
  bool PeekTexts(int32_t col, int64_t first, int64_t count, std::string_view* out) override;
  // The index (from 0, in the order added) of the input table of merged row
  // `row`; -655975 for a row out of range.
  bool GetInputTableIndexForRow(int64_t row, int32_t* index) override;

 private:
  friend struct VCUTableProcessorState;
  explicit VCUTableData(VCUTableProcessorState* state) : m_state(state) {}

  VCUTableProcessorState* m_state;  // the processor's, not owned
};
