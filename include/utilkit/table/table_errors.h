// Error codes of the table classes.
//
// Every failure of the tables, the table processor and its operations is
// pushed on the error stack with one of these codes, the library's message
// for it (VFTextGet(VFGetUtilKitText(), code), followed by the column's name
// where the message ends in ": ") and the qualified name of the reporting
// member as location, e.g.
//
//   if (!processor.Validate()) {
//     const VCErrorRecord* e = VFErrorGetLast();
//     // VFErrorGetCode(e) == kTableErrorColumnNotFound,
//     // VFErrorGetMessage(e) == "Column not found: Peak"
//   }
//
// A failed allocation is kTableErrorOutOfMemory, the library's one
// out-of-memory code (see error_report.h).
#pragma once

#include <cstdint>

#include <utilkit/base/error_report.h>

// clang-format off
inline constexpr int32_t kTableErrorTableAddedTwice = -655961;     // Table has already been added...
inline constexpr int32_t kTableErrorTableNotDefined = -655962;     // Attempt to remove a table ... not defined
inline constexpr int32_t kTableErrorProcessFailed = -655963;       // Failed to process filtering and sorting...
inline constexpr int32_t kTableErrorTooManyRows = -655964;         // Too many table rows to perform sort...
inline constexpr int32_t kTableErrorComparison = -655966;          // Invalid comparison set for filter
inline constexpr int32_t kTableErrorColumnNotFound = -655968;      // Column not found: <name>
inline constexpr int32_t kTableErrorColumnTypesDiffer = -655969;   // Columns must be same type...: <name>
inline constexpr int32_t kTableErrorFilterColumnType = -655970;    // Unknown column data type used for filter
inline constexpr int32_t kTableErrorNoInputTables = -655971;       // No input tables defined
inline constexpr int32_t kTableErrorNoOutputColumns = -655972;     // No output columns defined for table
inline constexpr int32_t kTableErrorColumnIndex = -655974;         // Column index out of range
inline constexpr int32_t kTableErrorRowNumber = -655975;           // Row number out of range
inline constexpr int32_t kTableErrorNoKeyword = -655977;           // Keyword has not been defined for new column
inline constexpr int32_t kTableErrorNoExpression = -655978;        // No expression has been set...: <keyword>
inline constexpr int32_t kTableErrorNoStatusSource = -655979;      // No source column ... status column: <keyword>
inline constexpr int32_t kTableErrorSelectionType = -655980;       // Invalid selection type set for Compression...
inline constexpr int32_t kTableErrorNoSearchColumns = -655981;     // No search columns configured
inline constexpr int32_t kTableErrorNoSelectColumn = -655982;      // No select column configured
inline constexpr int32_t kTableErrorCompression = -655983;         // Invalid compression operation configured
inline constexpr int32_t kTableErrorStringSearch = -655984;        // Compression using string columns... (unused)
inline constexpr int32_t kTableErrorCompressionFailed = -655985;   // Compression operation failed
inline constexpr int32_t kTableErrorNoStatus = -655986;            // Status column ... has no status: <name>
inline constexpr int32_t kTableErrorNoSortColumns = -655987;       // No columns defined for sort operation
inline constexpr int32_t kTableErrorSort = -655988;                // Invalid sort operation configured
inline constexpr int32_t kTableErrorSortFailed = -655989;          // Sort operation failed
inline constexpr int32_t kTableErrorColumnType = -655990;          // Invalid column type specified
inline constexpr int32_t kTableErrorAndOperands = -655991;         // AND filter must have two sub-filters...
inline constexpr int32_t kTableErrorOrOperands = -655992;          // OR filter must have two sub-filters...
inline constexpr int32_t kTableErrorExpressionType = -655994;      // Virtual column with an expression ... Double
inline constexpr int32_t kTableErrorRowIndexType = -655995;        // Virtual column returning row indices ... Huge
inline constexpr int32_t kTableErrorCategoryColumn = -655996;      // The category column must be one of the sort...
inline constexpr int32_t kTableErrorStringFilter = -655997;        // Filter is only valid for string columns
inline constexpr int32_t kTableErrorBufferSize = -655998;          // Problem setting the buffer size...
inline constexpr int32_t kTableErrorInputRow = -655999;            // Out of range row number passed to AddInputTable
inline constexpr int32_t kTableErrorWritableType = -656000;        // Invalid type for writable column...
inline constexpr int32_t kTableErrorNotWritable = -656001;         // Attempt to write to a column that is not writable
inline constexpr int32_t kTableErrorDivideByZero = -656002;        // Divide by zero
inline constexpr int32_t kTableErrorOutOfMemory = kErrorOutOfMemory;  // Out of memory

// The memory table's refusals, and the output table's for the same reads:
// code kTableErrorRead with one of these messages (not from the text table).
inline constexpr int32_t kTableErrorRead = 1;
inline constexpr char kTableTextColumnIndex[] = "Invalid column index";
inline constexpr char kTableTextRowNumber[] = "Invalid row number";
inline constexpr char kTableTextRowCount[] = "Invalid number of rows to read";
inline constexpr char kTableTextTypeMismatch[] = "Column type mismatch";
inline constexpr char kTableTextNoStatus[] = "Column has no status data";
// clang-format on
