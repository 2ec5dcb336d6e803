// VCUTableFilterBasic: keeps the rows whose value in one column compares
// with a given value in a given way.
//
// The filter names its column by keyword and is validated against the
// table it filters, which binds the keyword to a column and converts the
// compare value to the column's type (the variant's own conversions:
// VCVariant::GetShort ... GetString). Text comparisons ignore the case of
// ASCII letters unless SetCaseSensitive(1): both texts are then compared in
// upper case. An Enum column is compared by code; a text compare value is
// first looked up among the column's option names (ignoring case), a name
// that is no option giving -1. A float or double NaN on either side passes
// only NotEqual. IsValid / IsInvalid test the cell's validity (status bit
// 0x8000; a column without status is always valid). With inclusive 0 the
// outcome of every comparison is inverted.
//
//   VCUTableFilterBasic filter;
//   filter.SetColumnKeyword("Name");
//   filter.SetCompare(VTTableFilterCompare::StartsWith);
//   filter.SetCompareValue(VCVariant("ch"));
//   if (filter.Validate(&table)) { char pass = 0; filter.CheckRow(&table, 1, &pass); }
//
// Ownership: the filter owns its configuration only. Changing it after
// Validate takes effect at the next Validate. Checking rows costs no heap
// allocation per row: values are read in blocks into buffers the filter
// keeps.
#pragma once

#include <cstdint>
#include <memory>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_variant.h>
#include <utilkit/table/table_filter.h>

// How a basic filter compares the row value (left) with its value (right).
enum class VTTableFilterCompare : int32_t {
  Equal = 0,
  NotEqual = 1,
  LessThan = 2,
  LessOrEqual = 3,
  GreaterThan = 4,
  GreaterOrEqual = 5,
  IsValid = 6,     // the cell is valid
  IsInvalid = 7,   // the cell is not valid
  Contains = 8,    // Text columns only: the value occurs in the row text
  StartsWith = 9,  // Text columns only
  EndsWith = 10,   // Text columns only
};

class UTILKIT_API VCUTableFilterBasic : public VCUTableFilter {
 public:
  // Keyword "", inclusive 1, Equal, a null compare value, case-insensitive.
  VCUTableFilterBasic();
  ~VCUTableFilterBasic() override;

  // The column to test. Never fails.
  bool SetColumnKeyword(const char* keyword);
  // Fails with -655966 for a value outside Equal..EndsWith (the comparison
  // set before stays).
  bool SetCompare(VTTableFilterCompare compare);
  // Stores a copy of the value to compare with. Never fails.
  bool SetCompareValue(const VCVariant& value);
  // 1: matching rows pass; 0: the outcome is inverted. Never fails.
  bool SetInclusive(char inclusive);
  // 1: texts compare case-sensitively; 0 (default): ignoring case.
  bool SetCaseSensitive(char caseSensitive);

  // Binds the filter to `table`: the table's -655968 for an unknown
  // keyword; -655997 for Contains, StartsWith or EndsWith on a column that
  // is not Text; -655970 for a column of unknown type; the table's errors.
  bool Validate(VCUTable* table) override;
  // Fails (pass 0) with the table's read error.
  bool CheckRow(VCUTable* table, int64_t row, char* pass) override;
  // Read each run of consecutive rows (or each dense span of rising rows)
  // in one read of the table.
  bool CheckRange(VCUTable* table, int64_t first, int32_t count, int32_t* passed,
                  int32_t* passedCount) override;
  bool CheckRows(VCUTable* table, const int32_t* rows, int32_t count, int32_t* passed,
                 int32_t* passedCount) override;

 private:
  struct Record;
  // Reads rows first..first+count-1 (count at most one block) and tells
  // `sink` which pass; false when the read fails.
  template <class Sink>
  bool CheckRun(VCUTable* table, int64_t first, int64_t count, Sink& sink);

  std::unique_ptr<Record> m_record;
};
