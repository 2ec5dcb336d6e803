#include <utilkit/table/table_filter.h>
#include <utilkit/table/table_operation.h>

#include <algorithm>
#include <vector>

#include <utilkit/table/table_errors.h>

VCUTableOperation::~VCUTableOperation() = default;

VCUTableFilter::~VCUTableFilter() = default;

bool VCUTableFilter::CheckRows(VCUTable* table, const int32_t* rows, int32_t count, int32_t* passed,
                               int32_t* passedCount) {
  *passedCount = 0;
  for (int32_t i = 0; i < count; ++i) {
    char pass = 0;
    if (!CheckRow(table, rows[i], &pass)) return false;
    if (pass) passed[(*passedCount)++] = i;
  }
  return true;
}

bool VCUTableFilter::CheckRange(VCUTable* table, int64_t first, int32_t count, int32_t* passed,
                                int32_t* passedCount) {
  std::vector<int32_t> rows;
  try {
    rows.resize(static_cast<size_t>(std::max(count, 0)));
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableFilter::CheckRange");
  }
  for (int32_t i = 0; i < count; ++i)
    rows[static_cast<size_t>(i)] = static_cast<int32_t>(first + i);
  return CheckRows(table, rows.data(), count, passed, passedCount);
}
