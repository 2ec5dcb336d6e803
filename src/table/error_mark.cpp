#include "table/error_mark.h"

#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>

namespace utilkit::table {

ErrorMark::ErrorMark() : m_count(VFErrorGetCount()) {}

void ErrorMark::Rollback() const {
  // A full stack drops its oldest records, so the count alone cannot tell
  // which ones are new; leave such a stack as it is.
  const size_t count = VFErrorGetCount();
  if (count <= m_count || count >= kErrorStackCapacity) return;
  struct Kept {
    int32_t code, flag, osCode;
    std::string message, location;
  };
  std::vector<Kept> kept;
  try {
    kept.reserve(m_count);
    const VCErrorRecord* r = VFGetUtLibError();
    for (size_t i = 0; i < m_count && r; ++i, r = VFErrorGetNextErr(r)) {
      kept.push_back({VFErrorGetCode(r), VFErrorGetFlag(r), VFErrorGetOpSysCode(r),
                      VFErrorGetMessage(r), VFErrorGetLocation(r)});
    }
  } catch (...) {
    return;  // out of memory: keep every record rather than lose any
  }
  VFErrorClear();
  for (const Kept& k : kept) {
    VFErrorSet(k.code, k.message.c_str(), k.location.c_str(), k.flag);
    if (k.osCode != 0) VFErrorSetOpSysCode(k.osCode);
  }
}

}  // namespace utilkit::table
