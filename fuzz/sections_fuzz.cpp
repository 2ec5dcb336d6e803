// libFuzzer target for the text form of VCUSections.
//
// Each input is read as a time list and as a points list. A text that
// reads must write a text that reads back to the same text; the list is
// then validated, normalised and converted, which must fail only with an
// error record and never leave a list that does not write.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/sections/sections.h>

namespace {

void Check(const std::string& text, VTSectionUnits units) {
  VCUSections sections(units);
  if (!sections.SetFromText(text.c_str())) {
    if (VFErrorGetCount() == 0) std::abort();
    VFErrorClear();
    return;
  }
  VCString written, again;
  VCUSections back(units);
  if (!sections.GetText(&written) || !back.SetFromText(written.c_str()) || !back.GetText(&again) ||
      written.str() != again.str()) {
    std::abort();
  }
  sections.Validate(1000.0, 100000, 8, true);
  sections.Normalise();
  if (units == VTSectionUnits::Time) {
    sections.ConvertToPoints(48000.0);
  } else {
    sections.ConvertToTime(48000.0);
  }
  if (!sections.GetText(&written)) std::abort();
  VFErrorClear();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  Check(text, VTSectionUnits::Time);
  Check(text, VTSectionUnits::Points);
  return 0;
}
