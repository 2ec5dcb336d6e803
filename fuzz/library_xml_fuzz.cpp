// libFuzzer target for report library files.
//
// The input is a library's XML text. When it loads, it is saved, loaded
// again and saved again, and the two saved texts must be the same bytes:
// what the writer gives, the reader takes back unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <utilkit/base/error_stack.h>
#include <utilkit/library_xml/library_xml.h>
#include <utilkit/xml/data_buffer.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 16) return 0;
  VFErrorClear();
  VCULibraryXML library;
  if (!library.LoadFromBuffer(reinterpret_cast<const char*>(data), static_cast<int32_t>(size))) {
    if (VFErrorGetLast() == nullptr) std::abort();  // a refusal always says why
    VFErrorClear();
    return 0;
  }
  VCUDataBuffer first, second;
  VCULibraryXML back;
  if (!library.SaveToBuffer(&first) || !back.LoadFromBuffer(first.GetBasePtr(), first.GetSize()) ||
      !back.SaveToBuffer(&second) || first.GetSize() != second.GetSize() ||
      std::memcmp(first.GetBasePtr(), second.GetBasePtr(), static_cast<size_t>(first.GetSize())) !=
          0) {
    std::abort();
  }
  VFErrorClear();
  return 0;
}
