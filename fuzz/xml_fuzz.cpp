// Fuzzes VCUXmlHelper::ParseXml followed by serialisation in both layouts.
//
// Besides the sanitizers' own checks, it asserts what must hold for any
// input: a failed parse leaves exactly one -655761 record, and a parsed
// document serialises without failure in both layouts.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include <utilkit/base/error_stack.h>
#include <utilkit/xml/xml_helper.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > static_cast<size_t>(std::numeric_limits<int32_t>::max())) return 0;
  VFErrorClear();
  const DOM_Document doc =
      VCUXmlHelper::ParseXml(reinterpret_cast<const char*>(data), static_cast<int32_t>(size));
  if (doc.isNull()) {
    if (VFErrorGetCount() != 1 || VFErrorGetCode(VFGetUtLibError()) != -655761) std::abort();
    return 0;
  }
  VCUDataBuffer plain;
  VCUDataBuffer human;
  if (!VCUXmlHelper::ConvertNodeTreeToText(doc, &plain) ||
      !VCUXmlHelper::ConvertNodeTreeToHumanReadableText(doc, &human)) {
    std::abort();
  }
  return 0;
}
