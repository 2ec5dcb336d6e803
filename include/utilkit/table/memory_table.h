// VCUTableMemory: a table that holds its columns in memory.
//
// A host names the table, adds its columns one by one with all their values,
// optionally attaches status words, status bit texts, descriptions and
// units, sets the row count, and then reads it through VCUTable or hands it
// to a VCUTableProcessor as an input table. Values are not changed cell by
// cell; a column gets all its data when it is added.
//
//   VCUTableMemory table("Tests");
//   const double force[] = {1.5, 2.5, 3.5};
//   const uint16_t status[] = {0x8000, 0x0000, 0x8000};
//   table.AddCol("Force", 3, force);
//   table.SetColStatus("Force", 3, status);
//   table.SetNumRows(3);
//
// Ownership: the table owns copies of everything it is given, except the
// dictionary of a dictionary-backed Text column, which is remembered by
// address and must outlive the table. Copies of a table share its columns
// (copy construction and assignment make another handle on the same data,
// reference-counted, freed with the last handle); use a new table and AddCol
// for an independent copy.
//
// Column lengths are independent of the row count: reads are bounded by the
// column's own length (its number of values), while GetNumRows reports what
// SetNumRows set (0 at first). Keeping them in agreement is the caller's
// duty. AddCol checks nothing: a keyword already in use is added again
// (keyword lookups then find the first), a negative count counts as 0 and
// null values with a positive count give that many zeros (or empty texts).
//
// Errors: every failure pushes code 1 with a literal message at
// "VCUTableMemory::<member>" (all bulk readers report at
// "VCUTableMemory::GetValues"): "Invalid column index", "Invalid row
// number", "Invalid number of rows to read", "Column type mismatch",
// "Column has no status data"; a failed call changes nothing. A bulk read
// checks, in order: the column index, the first row (1 to the column
// length), the range (a negative count is refused here too), and the type
// (or, for status reads, that the column has status). Status words are
// appended as given; rows beyond the end of a shorter status list read
// status 0.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <utilkit/base/dictionary.h>
#include <utilkit/base/export.h>
#include <utilkit/table/table.h>

class UTILKIT_API VCUTableMemory : public VCUTable {
 public:
  // An empty table named `name` (null is "") with row count 0.
  explicit VCUTableMemory(const char* name);
  // Another handle on the same columns (see the header).
  VCUTableMemory(const VCUTableMemory& other);
  VCUTableMemory& operator=(const VCUTableMemory& other);
  ~VCUTableMemory() override;

  // Sets the row count that GetNumRows reports.
  void SetNumRows(int32_t rows);

  // Numeric columns of `n` values.
  void AddCol(const char* keyword, int32_t n, const int16_t* values);
  void AddCol(const char* keyword, int32_t n, const int32_t* values);
  void AddCol(const char* keyword, int32_t n, const int64_t* values);
  void AddCol(const char* keyword, int32_t n, const float* values);
  void AddCol(const char* keyword, int32_t n, const double* values);
  // Text columns; the texts are copied (a null C string is "").
  void AddCol(const char* keyword, int32_t n, const VCString* values);
  void AddCol(const char* keyword, int32_t n, const char* const* values);
  void AddCol(const char* keyword, const VCStringArray& values);
  // Text column whose cells are references into `dictionary` (copied; a
  // null reference reads as ""). The dictionary is not owned.
  void AddCol(const char* keyword, int32_t n, VCUDictionaryRef* const* refs,
              VCUDictionary& dictionary);
  // The same columns taking over their values without a copy (`values` is
  // left empty); more than INT32_MAX values is kTableErrorOutOfMemory.
  void AddCol(const char* keyword, std::vector<int16_t>&& values);
  void AddCol(const char* keyword, std::vector<int32_t>&& values);
  void AddCol(const char* keyword, std::vector<int64_t>&& values);
  void AddCol(const char* keyword, std::vector<float>&& values);
  void AddCol(const char* keyword, std::vector<double>&& values);
  void AddCol(const char* keyword, std::vector<VCUDictionaryRef*>&& refs,
              VCUDictionary& dictionary);
  // Enum columns: `nOptions` (code, name) options, then `n` cell codes.
  void AddCol(const char* keyword, int32_t nOptions, const int32_t* codes, const char* const* names,
              int32_t n, const int32_t* values);
  void AddCol(const char* keyword, int32_t nOptions, const int32_t* codes,
              const VCStringArray& names, int32_t n, const int32_t* values);

  // Appends `n` status words to the first column whose keyword matches
  // ignoring case; an unknown keyword is ignored (nothing is reported).
  void SetColStatus(const char* keyword, int32_t n, const uint16_t* status);
  // Replaces the status bit texts of that column; unknown keyword ignored.
  void SetColStatusBitText(const char* keyword, const VCStringArray& texts);
  // Fail with "Invalid column index" for a column out of range.
  bool SetColDescription(int32_t col, const VCString& text);
  bool SetColUnits(int32_t col, const VCString& text);

  // VCUTable. Metadata getters fail with "Invalid column index"; the
  // readers as described in the header. The name and counts never fail.
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
                        const VCUDictionary** dictionary) override;
  bool PeekTexts(int32_t col, int64_t first, int64_t count, std::string_view* out) override;

 private:
  struct Impl;
  std::shared_ptr<Impl> m_impl;
};
