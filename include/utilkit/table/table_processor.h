// VCUTableProcessor: merges input tables, filters, compresses and sorts the
// merged rows and shows the result as an output table.
//
// The host adds input tables (whole, or with a selection of their rows),
// chooses output columns (plain ones by keyword, computed ones as
// VCUTableNewColumn objects), optionally sets a filter, compressions and a
// sort, and calls Process. The merged rows are those of every input table
// in the order added; Process keeps the merged rows that pass the filter,
// then runs every compression in the order added, then the sort (with its
// category trim), leaving one array of merged row numbers that the output
// table shows.
//
//   VCUTableProcessor processor;
//   processor.AddInputTable(&testsA);
//   processor.AddInputTable(&testsB);
//   processor.AddOutputColumn("Name");
//   processor.AddOutputColumn("Force");
//   VCUTableFilterBasic filter;
//   filter.SetColumnKeyword("Force");
//   filter.SetCompare(VTTableFilterCompare::GreaterThan);
//   filter.SetCompareValue(VCVariant(2.0));
//   processor.SetFilter(&filter);
//   VCUTableSort sort;
//   sort.AddColumn("Force", 0, 1);   // largest first
//   processor.SetSort(&sort);
//   VCUTableNewColumn stress;
//   stress.SetKeyword("Stress");
//   stress.SetExpression("#Force# / #Area#");
//   processor.AddOutputColumn(&stress);
//   if (processor.Process()) processor.GetOutputTable()->DumpTableToScreen();
//
// Ownership: input tables and operations (filter, sort, compressions, new
// columns) stay the host's and must outlive their use by the processor;
// the merged view and the output table belong to the processor. Not
// copyable.
//
// Columns: in the common-columns mode (the default) the merged columns are
// the first input table's columns that every other input table has with
// the same keyword (ignoring case) and type; a column another table lacks
// is simply left out, leaving nothing on the error stack. In the
// all-columns mode they are every keyword of any input table, at its first
// place; a keyword held with two types fails Validate with -655969.
//
// Row limit: the merged rows may not exceed the preference
// "/Libraries/utilkit/MaximumTableProcessorRows" (read at construction;
// default 50000000, at most 2000000000, a negative value counts as 0).
//
// Changing the input tables drops the merged columns until the next
// Validate or Process. ClearInputTables also empties the merged rows and the
// output rows. Once any table has been added with a row selection, only
// selected rows take part (tables added whole then contribute none).
//
// Errors are pushed at "VCUTableProcessor::<member>"; every failure of
// Process ends with the summary -655963 (flag 1) on top of its cause.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/table/table.h>
#include <utilkit/table/table_compress.h>
#include <utilkit/table/table_data.h>
#include <utilkit/table/table_filter.h>
#include <utilkit/table/table_new_column.h>
#include <utilkit/table/table_sort.h>

class UTILKIT_API VCUTableProcessor {
 public:
  // Reads the row limit preference.
  VCUTableProcessor();
  ~VCUTableProcessor();
  VCUTableProcessor(const VCUTableProcessor&) = delete;
  VCUTableProcessor& operator=(const VCUTableProcessor&) = delete;

  // Appends an input table whose rows all take part. -655961 when it is
  // already an input table.
  bool AddInputTable(VCUTable* table);
  // Appends an input table and, at once, merged rows for the given rows of
  // it (1-based), in the given order. -655961 when already added; -655964
  // when the merged rows would exceed the row limit; -655999 for a row out
  // of range or a negative count (the table is then an input table but
  // none of the rows is added); the table's own error when its row count
  // cannot be read.
  bool AddInputTable(VCUTable* table, const int64_t* rows, int64_t count);
  // Removes an input table (found by identity); later tables move down one
  // place and the merged rows are left as they are. -655962 when absent.
  bool RemoveInputTable(VCUTable* table);
  // Removes every input table. Never fails.
  bool ClearInputTables();

  // Sets the filter (null for none; not owned). Never fails.
  bool SetFilter(VCUTableFilter* filter);
  // Sets the sort (null for none; not owned). Never fails.
  bool SetSort(VCUTableSort* sort);
  // Appends a compression (not owned), run after those added before it.
  // Fails only when memory runs out.
  bool AddCompress(VCUTableCompress* compress);
  // Removes the filter, the sort and the compressions. Never fails.
  bool ClearOperations();

  // Appends a plain output column showing the merged column `keyword`
  // (checked by Validate). Fails only when memory runs out.
  bool AddOutputColumn(const char* keyword);
  // Appends a computed output column (not owned; validated against the
  // merged view by Validate). Fails only when memory runs out.
  bool AddOutputColumn(VCUTableNewColumn* column);
  // Removes the first output column whose keyword (a computed column's own
  // keyword) matches ignoring case; -655968 "Column not found: <keyword>"
  // when there is none.
  bool RemoveOutputColumn(const char* keyword);
  // Removes every output column. Never fails.
  bool ClearOutputColumns();
  // Sets the column-set mode (1 common columns, 0 all columns) for every
  // later Validate and Process, then appends each merged column of that
  // mode (type not None) as an output column (none without input tables).
  // Fails with an input table's error.
  bool AddAllInputColsToOutput(char commonColumns);

  // For `keyword`: per input table its column index (-1 where absent) and
  // whether it has status (0 where absent), and the type. In the
  // common-columns mode a table lacking the keyword fails with -655968 (at
  // "VCUTable::GetColIndexFromKeyword"); in the all-columns mode only a
  // keyword no table has does (at "VCUTableProcessor::GetColIndeces"). Two
  // types give -655969; no input tables -655971.
  bool GetColIndeces(const char* keyword, VCArray<int32_t>* indices, VCArray<char>* hasStatus,
                     VTTableDataType* type);

  // Checks the configuration and rebuilds the merged columns: -655971 no
  // input tables, -655972 no output columns, -655968 an output column that
  // is not a merged column, -655969 see GetColIndeces, then the errors of
  // each computed column's, the filter's, each compression's and the
  // sort's Validate, in that order.
  bool Validate();
  // Validate, build the merged rows (-655964 over the row limit), filter
  // them, run the compressions in order, then the sort. Any failure adds
  // -655963 (flag 1) at "VCUTableProcessor::Process"; the output rows are
  // then unspecified.
  bool Process();

  // The output table (owned by the processor).
  VCUTable* GetOutputTable();
  // The merged view of the input tables (owned by the processor).
  VCUTableData* GetInputData();

 private:
  bool BuildRowMap();
  bool RunFilter();
  bool RunCompressionsAndSort();
  bool CollectColumns(VCArray<VCString>* keywords, VCArray<VTTableDataType>* types);

  std::unique_ptr<VCUTableProcessorState> m_state;
};
