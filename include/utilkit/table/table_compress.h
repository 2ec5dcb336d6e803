// VCUTableCompress: reduces a table processor's rows to one row per group,
// a group being the rows with equal values in every search column.
//
// From each group of two or more rows it keeps the row with the largest
// select value, the row with the smallest, or the group's first row with
// the select column overwritten by the sum of the group's values (and its
// status word by the OR of theirs). The kept rows stay in their input
// order. Within a group the members count in input order: among equal
// largest (or smallest) values the earliest member stays, and the sum is
// added up in that order. Search values are equal when: integers and Enum
// codes are equal; floating-point values are equal as numbers (a NaN never
// joins a group; -0 joins 0); texts are the same exact text (case matters).
// Select values compare as VCVariant does: numbers by value with a NaN above
// every number, texts byte by byte, Enum cells by code.
//
// "Prefer later tables": a member from a later input table replaces the
// best so far whatever its value; a member from an earlier one never does;
// values decide only between members of one input table.
//
//   VCUTableCompress compress(0);
//   compress.AddSearchColumn("Channel");
//   compress.SetSelectColumn("Peak");
//   compress.SetSelectType(VTCompressType::Maximum);
//   processor.AddCompress(&compress);   // run by VCUTableProcessor::Process
//
// The sum (VTCompressType::Sum) is written through the merged view's
// writable columns, so its select column must be a Double column; Validate
// refuses another type with -656000.
//
// Ownership: the compression keeps only its configuration; it never owns
// the data or the row array. Work memory lives only during DoCompress and
// grows with the number of groups, not of rows.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_data_array.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/table/table_data.h>
#include <utilkit/table/table_operation.h>

enum class VTCompressType : int32_t {
  Maximum = 0,  // keep the row with the largest select value
  Minimum = 1,  // keep the row with the smallest select value
  Sum = 2,      // keep the first row, holding the sum of the group's values
};

class UTILKIT_API VCUTableCompress : public VCUTableOperation {
 public:
  // `preferLaterTables` 1: rows of later input tables win (see above).
  explicit VCUTableCompress(char preferLaterTables = 0);
  ~VCUTableCompress() override;

  // Appends a search column. Never fails.
  bool AddSearchColumn(const char* keyword);
  // Removes every search column. Never fails.
  bool ClearSearchColumns();
  // A copy of the search column keywords, in the order added.
  VCStringArray GetSearchColumns() const;
  // Sets the select column. Never fails.
  bool SetSelectColumn(const char* keyword);
  VCString GetSelectColumn() const;
  // Sets the select type; -655980 (type unchanged) for a value outside 0..2.
  bool SetSelectType(VTCompressType type);
  VTCompressType GetSelectType() const;

  // Binds the columns to `data`. Fails with -655981 without search columns,
  // -655982 without a select column, the view's -655968 for an unknown
  // keyword, -656000 for a sum over a column that is not Double; each
  // failure then adds -655983 (flag 1) at "VCUTableCompress::Validate".
  bool Validate(VCUTableData* data);
  // Shortens `rows` (merged row numbers) to the kept rows. Fails with the
  // view's read or write errors or -655998 without memory; each failure
  // then adds -655985 (flag 1) at "VCUTableCompress::DoCompress", leaving
  // `rows` (and written sums) unspecified.
  bool DoCompress(VCUTableData* data, VCDataArray<int32_t>& rows);

 private:
  struct Impl;
  bool Compress();

  std::unique_ptr<Impl> m_impl;
};
