// libFuzzer target for message forms (multipart/form-data).
//
// The input is a whole message, header block included. When it parses, the
// form is written and parsed again, and the parts must come back the same:
// names, file names, content types and bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/message_form.h>
#include <utilkit/xml/data_buffer.h>

namespace {

bool SameParts(const VCUMessageForm& a, const VCUMessageForm& b) {
  if (a.GetCount() != b.GetCount()) return false;
  for (int32_t i = 0; i < a.GetCount(); ++i) {
    const VCUMessageFormPart& p = *a.GetPart(i);
    const VCUMessageFormPart& q = *b.GetPart(i);
    if (p.GetName() != q.GetName() || p.IsFile() != q.IsFile() ||
        (p.IsFile() &&
         (p.GetFileName() != q.GetFileName() || p.GetContentType() != q.GetContentType())) ||
        p.GetSize() != q.GetSize() ||
        std::memcmp(p.GetData(), q.GetData(), static_cast<size_t>(p.GetSize())) != 0) {
      return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 16) return 0;
  VFErrorClear();
  VCUMessageForm form;
  if (!form.Parse(reinterpret_cast<const char*>(data), static_cast<int32_t>(size))) {
    if (VFErrorGetLast() == nullptr) std::abort();  // a refusal always says why
    VFErrorClear();
    return 0;
  }
  VCUDataBuffer written;
  VCUMessageForm back;
  if (!form.Write(&written) || !back.Parse(written.GetBasePtr(), written.GetSize()) ||
      !SameParts(form, back)) {
    std::abort();
  }
  return 0;
}
