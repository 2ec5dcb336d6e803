#include "tree/tree_report.h"

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>

void VFTreeReportError(int32_t code, const char* location) {
  VFErrorSet(code, VFTextGet(VFGetUtilKitText(), code), location, 0);
}
