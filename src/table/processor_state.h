// The table processor's state, shared by the processor, its merged view and
// its output view.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_data_array.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/table/output_table.h>
#include <utilkit/table/table.h>
#include <utilkit/table/table_compress.h>
#include <utilkit/table/table_data.h>
#include <utilkit/table/table_filter.h>
#include <utilkit/table/table_new_column.h>
#include <utilkit/table/table_sort.h>

#include "table/row_map.h"

namespace utilkit::table {

// A cell written to a writable merged column: what was written of it.
struct WrittenCell {
  double value = 0;
  uint16_t status = 0;
  bool hasValue = false;
  bool hasStatus = false;
};

// A merged column: where each input table keeps it.
struct MergedColumn {
  VCString keyword;
  VTTableDataType type = VTTableDataType::None;
  VCArray<int32_t> index;   // per input table; -1 where absent
  VCArray<char> hasStatus;  // per input table
  bool anyStatus = false;   // the merged column has status
  // Writable columns keep only the cells written: a bit per merged row
  // marks them, and reads lay the written cells over the input tables'.
  bool writable = false;
  std::vector<uint64_t> writtenBits;
  std::unordered_map<int64_t, WrittenCell> written;  // by merged row

  // The first input table that has the column, or -1.
  int32_t FirstTable() const {
    for (int32_t t = 0; t < index.GetSize(); ++t) {
      if (index[t] >= 0) return t;
    }
    return -1;
  }
};

// An output column: the merged column it shows or the computed column it
// shows, usable once Validate has resolved it.
struct OutputColumn {
  VCString keyword;
  VCUTableNewColumn* computed = nullptr;  // not owned
  int32_t merged = -1;                    // plain columns
  bool resolved = false;
};

}  // namespace utilkit::table

struct VCUTableProcessorState {
  VCUTableProcessorState() : data(this), output(this) {}

  std::vector<VCUTable*> inputs;                // not owned
  VCUTableFilter* filter = nullptr;             // not owned
  VCUTableSort* sort = nullptr;                 // not owned
  std::vector<VCUTableCompress*> compressions;  // not owned, in order
  utilkit::table::RowMap rowMap;
  bool rowMapGiven = false;
  VCDataArray<int32_t> outputRows;  // merged row numbers, in output order
  bool outputInOrder = false;       // outputRows are 1..N: no filter, compression or sort
  std::vector<utilkit::table::OutputColumn> outputCols;
  std::vector<utilkit::table::MergedColumn> merged;
  int64_t rowLimit = 0;
  char commonColumns = 1;
  VCUTableData data;
  VCUOutputTable output;
  VCStringArray scratch;  // texts of one run, reused across reads
  // While Validate or AddAllInputColsToOutput runs: each input's columns by
  // upper-cased keyword (the first of a keyword), so that finding n columns
  // in n inputs' columns takes n look-ups, not n^2 comparisons. Empty
  // otherwise: the columns may change between runs.
  std::vector<std::unordered_map<std::string, int32_t>> keywordIndex;

  // Forgets the merged columns (and so the output columns' resolution).
  void DropMergedColumns() {
    merged.clear();
    for (auto& col : outputCols) {
      col.merged = -1;
      col.resolved = false;
    }
  }
};

// Fills `state->keywordIndex` from the inputs' columns. False, index empty,
// when a table cannot be read (its error pushed) or memory runs out.
bool VFBuildKeywordIndex(VCUTableProcessorState* state);

// Keeps the keyword index for one scope: built on entry, emptied on exit.
class VCKeywordIndexScope {
 public:
  explicit VCKeywordIndexScope(VCUTableProcessorState* state)
      : m_state(state), m_ok(VFBuildKeywordIndex(state)) {}
  ~VCKeywordIndexScope() { m_state->keywordIndex.clear(); }
  VCKeywordIndexScope(const VCKeywordIndexScope&) = delete;
  VCKeywordIndexScope& operator=(const VCKeywordIndexScope&) = delete;
  bool ok() const { return m_ok; }

 private:
  VCUTableProcessorState* m_state;
  bool m_ok;
};
