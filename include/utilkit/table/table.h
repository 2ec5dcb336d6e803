// VCUTable: the read-only view of a table of typed columns.
//
// Every table of the library speaks this interface: the memory table, the
// table processor's merged input view and its output view; table operations
// (filters, sorts, compressions, computed columns) read their data only
// through it, and a host may implement it over its own data. A table has a
// name, columns indexed from 0 and rows numbered from 1. Each column has a
// keyword (matched without regard to case), a description, units, a type
// (VTTableDataType) and optionally one status word per row, whose bit 0x8000
// marks the cell valid. An Enum column stores 32-bit codes and offers
// (code, name) options.
//
//   VCUTable* table = processor.GetOutputTable();
//   int32_t col = -1;
//   int64_t rows = 0;
//   if (table->GetColIndexFromKeyword("Force", &col) && table->GetNumRows(&rows)) {
//     std::vector<double> force(static_cast<size_t>(rows));
//     if (!table->GetValues_D(col, 1, rows, force.data())) { /* see the error stack */ }
//   }
//
// Ownership: a VCUTable never owns the buffers handed to it; bulk readers
// write `count` elements into the caller's buffer, which must hold at least
// that many. Every operation returning bool reports failure by pushing an
// error record (see <utilkit/base/error_stack.h>) and returning false;
// errors of the virtual readers are the implementation's own, and the
// non-virtual members below pass them through without adding any.
//
// Implementations override the pure members (and normally the VCString*
// form of GetValues_T); the GetValues overloads are conveniences that
// forward to the reader of their element type and are not overridden.
// Objects are used by one thread at a time.
#pragma once

#include <cstdint>

#include <utilkit/base/dictionary.h>
#include <utilkit/base/export.h>
#include <utilkit/base/vc_array_with_sort.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/base/vc_variant.h>

// Column data types. None, handed to GetValue, means "the column's own type".
enum class VTTableDataType : int32_t {
  None = 0,
  Short = 1,   // S: int16_t
  Long = 2,    // L: int32_t
  Huge = 3,    // H: int64_t
  Float = 4,   // F: float
  Double = 5,  // D: double
  Text = 6,    // T: VCString
  Enum = 7,    // E: int32_t code with per-column (code, name) options
};

// Status word bit that marks a cell valid.
inline constexpr uint16_t kTableStatusValid = 0x8000;

class UTILKIT_API VCUTable {
 public:
  virtual ~VCUTable();

  // The table's name.
  virtual bool GetTableName(VCString* name) = 0;
  // Number of columns.
  virtual bool GetNumCols(int32_t* count) = 0;
  // Number of rows.
  virtual bool GetNumRows(int64_t* count) = 0;
  // Column metadata; each fails for a column index out of range.
  virtual bool GetColKeyword(int32_t col, VCString* keyword) = 0;
  virtual bool GetColDescription(int32_t col, VCString* description) = 0;
  virtual bool GetColUnits(int32_t col, VCString* units) = 0;
  virtual bool GetColType(int32_t col, VTTableDataType* type) = 0;
  // 1 when the column has status words, else 0.
  virtual bool GetColHasStatus(int32_t col, char* hasStatus) = 0;
  // The display texts of the status bits, one per bit.
  virtual bool GetStatusColBitText(int32_t col, VCStringArray* texts) = 0;
  // The options of an Enum column: sorted codes and the names at the same
  // positions (both empty for other columns).
  virtual bool GetEnumColOptions(int32_t col, VCArrayWithSort<int32_t>* codes,
                                 VCStringArray* names) = 0;

  // Bulk readers: `count` cells of `col` from row `first` (1-based) into
  // `out`. They fail for a bad column, first row or range, and for a column
  // whose type is not the reader's.
  virtual bool GetValues_S(int32_t col, int64_t first, int64_t count, int16_t* out) = 0;
  virtual bool GetValues_L(int32_t col, int64_t first, int64_t count, int32_t* out) = 0;
  virtual bool GetValues_H(int32_t col, int64_t first, int64_t count, int64_t* out) = 0;
  virtual bool GetValues_F(int32_t col, int64_t first, int64_t count, float* out) = 0;
  virtual bool GetValues_D(int32_t col, int64_t first, int64_t count, double* out) = 0;
  // Texts into an array of `count` strings. Here: returns false and pushes
  // nothing (a table that supports it overrides it).
  virtual bool GetValues_T(int32_t col, int64_t first, int64_t count, VCString* out);
  // Texts into `out`, resized to `count`.
  virtual bool GetValues_T(int32_t col, int64_t first, int64_t count, VCStringArray* out) = 0;

  // Typed conveniences: each forwards to the reader of its element type.
  bool GetValues(int32_t col, int64_t first, int64_t count, VCString* out) {
    return GetValues_T(col, first, count, out);
  }
  bool GetValues(int32_t col, int64_t first, int64_t count, double* out) {
    return GetValues_D(col, first, count, out);
  }
  bool GetValues(int32_t col, int64_t first, int64_t count, float* out) {
    return GetValues_F(col, first, count, out);
  }
  bool GetValues(int32_t col, int64_t first, int64_t count, int64_t* out) {
    return GetValues_H(col, first, count, out);
  }
  bool GetValues(int32_t col, int64_t first, int64_t count, int32_t* out) {
    return GetValues_L(col, first, count, out);
  }
  bool GetValues(int32_t col, int64_t first, int64_t count, int16_t* out) {
    return GetValues_S(col, first, count, out);
  }
  bool GetValues(int32_t col, int64_t first, int64_t count, int32_t* codes, VCStringArray* names) {
    return GetValues_E(col, first, count, codes, names);
  }

  // Enum cells: the codes, and when `names` is not null their option names
  // (resized to `count`; "" for a code without an option).
  virtual bool GetValues_E(int32_t col, int64_t first, int64_t count, int32_t* codes,
                           VCStringArray* names) = 0;
  // Status words; fails for a column without status.
  virtual bool GetStatusValues(int32_t col, int64_t first, int64_t count, uint16_t* out) = 0;
  // The index of the input table a row comes from, for tables that merge
  // several. Here: 0 for any row, always succeeds.
  virtual bool GetInputTableIndexForRow(int64_t row, int32_t* index);
  // Rows first..first+count-1 (count >= 1) of Double column `col` where
  // the table keeps them as one array of its own, valid until the table
  // changes, so that a reader may skip the copy; otherwise (for any bad
  // argument too) null, adding no error record, and the reader falls back
  // on GetValues_D. Here: always null.
  virtual const double* PeekValues_D(int32_t col, int64_t first, int64_t count);
  // The same for a column of `type`: its cells as one array of int16_t
  // (Short), int32_t (Long, and Enum codes), int64_t (Huge), float, double,
  // or for a Text column whose cells are references into a dictionary,
  // VCUDictionaryRef* with `*dictionary` set to it (Text needs
  // `dictionary`). Null, adding no error record, for a column of another
  // type or kept otherwise and for any bad argument; readers then fall back
  // on the typed readers. Here: PeekValues_D for Double, else null.
  virtual const void* PeekCells(int32_t col, VTTableDataType type, int64_t first, int64_t count,
                                const VCUDictionary** dictionary = nullptr);
  // Rows first..first+count-1 (count >= 1) of Text column `col` as views of
  // the texts the table keeps, valid until the table changes: no text is
  // copied. False, adding no error record (`out` then undefined), where the
  // table keeps its texts otherwise and for any bad argument; readers then
  // fall back on GetValues_T. Here: always false.
  virtual bool PeekTexts(int32_t col, int64_t first, int64_t count, std::string_view* out);

  // One cell as a variant, read with the reader of `type` (None: the
  // column's own type); an Enum cell reads as its code (a long). Fails with
  // -655990 for a type outside None..Enum, or with the reader's error
  // (`value` is then untouched).
  bool GetValue(int32_t col, int64_t row, VCVariant* value, VTTableDataType type);
  // `valid` is 0 when the column has status and bit 0x8000 of the row's
  // status word is clear, else 1. Fails with the table's read errors.
  bool GetValid(int32_t col, int64_t row, char* valid);
  // The first column whose keyword equals `keyword` ignoring case. Fails
  // with -655968 "Column not found: <keyword>" (`index` is then -1).
  bool GetColIndexFromKeyword(const char* keyword, int32_t* index);

  // Prints the table on standard output: "No of rows: R, No of cols: C",
  // "Row,<kw>,..." and one "<row>,<cell>,..." line per row, every line ending
  // with a comma; a cell of a column with status reads "<text>(<status>)".
  // On a failed read it prints "Failed VCUTable::DumpTableToScreen. Error
  // message:" and the error stack instead of going on.
  void DumpTableToScreen();
  // Writes the same content as comma-separated lines without trailing
  // commas to a text file created anew (lines end in "\n" on every
  // platform). Fails when the file cannot be written or a read fails (the
  // file may then be partly written); only the file's own errors are pushed.
  bool DumpTableToFile(const char* path);

 protected:
  VCUTable() = default;
  VCUTable(const VCUTable&) = default;
  VCUTable& operator=(const VCUTable&) = default;

 private:
  void DumpToScreen();
  bool DumpToFile(const char* path);
};
