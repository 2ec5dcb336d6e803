// Taking back error records pushed by an attempt that is then retried.
#pragma once

#include <cstddef>

namespace utilkit::table {

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
