// libFuzzer target: decodes arbitrary text as a user-defined property
// definition. A successful decode must encode to a definition that decodes
// back to the same definitions, unless a text of the set holds a control
// character (tabs and line feeds in attributes do not survive XML's
// attribute normalisation).
#include <cstddef>
#include <cstdint>

#include <utilkit/base/error_stack.h>
#include <utilkit/properties/user_defined_properties.h>

namespace {

bool HasControl(const VCString& text) {
  for (const char c : text.view()) {
    if (static_cast<unsigned char>(c) < 0x20) return true;
  }
  return false;
}

bool HasControl(const R5Property& property) {
  if (HasControl(property.GetName()) || HasControl(property.GetDescription())) return true;
  VCString help = property.GetHelp();
  help.Replace("\n", "");  // the definition's own line breaks
  if (HasControl(help)) return true;
  if (property.GetType() != R5PropertyType::kEnum) return false;
  const auto& enumeration = static_cast<const R5EnumProperty&>(property);
  for (int32_t i = 0; i < enumeration.GetValidCount(); ++i) {
    if (HasControl(enumeration.GetValidEntry(i).GetName())) return true;
  }
  return false;
}

bool HasControl(const R5PropertySet& set) {
  for (int32_t i = 0; i < set.GetCount(); ++i) {
    if (HasControl(*set.GetProperty(i))) return true;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const VCString text(reinterpret_cast<const char*>(data), size);
  R5PropertySet set;
  if (VCUUserDefinedProperties::DecodeUserPropDef(text, set) && !HasControl(set)) {
    const VCString encoded = VCUUserDefinedProperties::EncodeUserPropDef(set);
    R5PropertySet again;
    if (!VCUUserDefinedProperties::DecodeUserPropDef(encoded, again) ||
        !again.HasSameDefinitions(set)) {
      __builtin_trap();
    }
  }
  VFErrorClear();
  return 0;
}
