// VCUTableFilter: the base of the filters that decide, row by row, which
// rows of a table a VCUTableProcessor keeps.
//
// A filter is validated against the table it will filter (binding keywords
// to columns), then asked for each row whether it passes. The library's
// filters are VCUTableFilterBasic (one column against one value) and
// VCUTableFilterAND / VCUTableFilterOR (two sub-filters); a host may derive
// its own by implementing CheckRow and Validate.
//
//   class EvenRows : public VCUTableFilter {
//    public:
//     bool Validate(VCUTable*) override { return true; }
//     bool CheckRow(VCUTable*, int64_t row, char* pass) override {
//       *pass = row % 2 == 0;
//       return true;
//     }
//   };
//
// Ownership: a filter never owns the table it reads. The processor does not
// own the filter set on it; a compound filter owns its two sub-filters.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/table/table.h>
#include <utilkit/table/table_operation.h>

class UTILKIT_API VCUTableFilter : public VCUTableOperation {
 public:
  ~VCUTableFilter() override;

  // Sets `pass` to 1 when row `row` of `table` passes, else 0. Fails (with
  // `pass` 0) when a read of the table fails. Must follow a successful
  // Validate against the same table.
  virtual bool CheckRow(VCUTable* table, int64_t row, char* pass) = 0;
  // Binds the filter to `table`'s columns; fails with the filter's or the
  // table's error.
  virtual bool Validate(VCUTable* table) = 0;

  // Checks `count` rows at once: writes the positions in `rows` (from 0,
  // ascending) of the rows that pass to `passed`, which has room for
  // `count`, and their number to `passedCount`. The result is what CheckRow
  // would give for each row in turn; a failure is the one the first failing
  // row would give. This base version calls CheckRow row by row; the
  // library's filters read their columns in blocks instead. Compound filters
  // call their second sub-filter only for the rows that the first leaves
  // open, so the calls reach a sub-filter in another order than row by row.
  virtual bool CheckRows(VCUTable* table, const int32_t* rows, int32_t count, int32_t* passed,
                         int32_t* passedCount);
  // CheckRows for the rows first..first+count-1 (positions from 0). This
  // base version lists the rows and calls CheckRows.
  virtual bool CheckRange(VCUTable* table, int64_t first, int32_t count, int32_t* passed,
                          int32_t* passedCount);

 protected:
  VCUTableFilter() : VCUTableOperation(VTTableOperationKind::Filter) {}
};
