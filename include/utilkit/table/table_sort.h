// VCUTableSort: puts the rows chosen by a table processor into the order of
// a list of sort columns, and can then keep at most a given number of rows
// per category.
//
// Each sort column has a direction and, for text, a case setting. Rows
// with equal values in every sort column keep their input order (the sort
// is stable). Texts compare byte by byte after embedded numbers are made to
// order by value ("x9" before "x10"), upper-cased first unless the column
// is case sensitive. Enum columns order by option name, not by code; two
// codes whose names are the same text compare equal and the next sort
// column decides, and a code without an option counts as the empty name.
// Floating-point columns order -0 with 0, and a NaN after every number
// (first when descending).
//
// The category trim: with SetCategory("B", 2) and sort columns A, B, C,
// at most the first two sorted rows of each distinct (A, B) pair remain; a
// limit of 0 or 1 keeps one. Category keys compare texts upper-cased
// whatever the case settings, and Enum cells by code.
//
//   VCUTableSort sort;
//   sort.AddColumn("Name", 1, 0);   // ascending, case blind
//   sort.AddColumn("Time", 0, 1);   // descending
//   sort.SetCategory("Name", 1);    // the latest row of each name
//   processor.SetSort(&sort);       // or: sort.Validate(&table) && sort.DoSort(&table, rows)
//
// Ownership: the sort keeps only its configuration; it never owns the
// table it sorts or the row array it is given. Work memory lives only
// during DoSort.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_data_array.h>
#include <utilkit/table/table.h>
#include <utilkit/table/table_operation.h>

class UTILKIT_API VCUTableSort : public VCUTableOperation {
 public:
  VCUTableSort();
  ~VCUTableSort() override;

  // Appends a sort column (1 ascending / 0 descending; case sensitive 1 / 0).
  // The same keyword may be added twice. Never fails.
  bool AddColumn(const char* keyword, char ascending, char caseSensitive);
  // Removes every sort column. Never fails.
  bool ClearColumns();
  // Sets the category column (empty or null: no trim) and the rows kept per
  // category. Never fails.
  bool SetCategory(const char* keyword, int32_t rowsPerCategory);

  // Binds the columns to `table`. Fails with -655987 without sort columns,
  // -655996 when the category is not a sort column, or the table's
  // -655968 for an unknown keyword; each failure then adds -655988 (flag 1)
  // at "VCUTableSort::Validate".
  bool Validate(VCUTable* table);
  // Reorders `rows` (row numbers of the table last validated against) and
  // applies the category trim. Fails with -655998 when the work memory
  // cannot be had, or a read error of the table; each failure then adds
  // -655989 (flag 1) at "VCUTableSort::DoSort" and leaves `rows` unspecified.
  bool DoSort(VCUTable* table, VCDataArray<int32_t>& rows);

 private:
  struct Impl;
  bool LoadColumnData(int32_t sortColumn);
  bool DoCategoryTrim(VCUTable* table, VCDataArray<int32_t>& rows);

  std::unique_ptr<Impl> m_impl;
};
