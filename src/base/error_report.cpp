#include <utilkit/base/error_report.h>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/base/vc_string.h>

bool VFReportError(int32_t code, const char* location, const char* name, int32_t flag) {
  const char* text = VFTextGet(VFGetUtilKitText(), code);
  if (name == nullptr || *name == '\0') {
    VFErrorSet(code, text, location, flag);
    return false;
  }
  try {
    VCString message(text);
    message += name;
    VFErrorSet(code, message, location, flag);
  } catch (...) {
    VFErrorSet(code, text, location, flag);  // no memory for the name: keep the code
  }
  return false;
}

bool VFReportOsError(int32_t code, const char* location, int32_t osCode, const char* name) {
  VFReportError(code, location, name, 0);
  VFErrorSetOpSysCode(osCode);
  return false;
}
