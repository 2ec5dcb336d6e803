// Error helpers of the table code.
#pragma once

#include <cstddef>
#include <cstdint>

namespace utilkit::table {

// Pushes `code` with its message from the library's text table, followed by
// `name` when it is not null, at `location`; returns false so that callers
// can write `return Fail(...)`.
bool Fail(int32_t code, const char* location, const char* name = nullptr, int32_t flag = 0);

// Pushes the base library's out-of-memory code (kVCVariantErrorMemory) with
// "Out of memory" at `location`; returns false. Used where an allocation
// that depends on the data (row maps, buffers of many rows) fails.
bool FailMemory(const char* location);

// Remembers how many records the error stack holds, so that records pushed
// by an attempt that is then retried another way can be taken back.
class ErrorMark {
 public:
  ErrorMark();
  // Removes the records pushed since the mark was taken, keeping the older
  // ones in their order.
  void Rollback() const;

 private:
  size_t m_count;
};

}  // namespace utilkit::table
