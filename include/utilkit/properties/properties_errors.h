// Error codes of the typed property sets and the user-defined properties.
//
// Every failure is pushed on the error stack with one of these codes, the
// library's message for it (VFTextGet(VFGetUtilKitText(), code), followed by
// the property's name or type where the message ends in ": ") and the
// qualified name of the reporting member as location, e.g.
//
//   if (!props.ValidateMandatoryInSet(set)) {
//     const VCErrorRecord* e = VFErrorGetLast();
//     // VFErrorGetCode(e) == kPropertiesErrorMandatory,
//     // VFErrorGetMessage(e) == "Mandatory property is not defined: Gain"
//   }
//
// A decoded definition that does not read pushes kPropertiesErrorSyntax
// with flag 1 after the record of the attribute that failed.
#pragma once

#include <cstdint>

#include <utilkit/base/base_errors.h>

// clang-format off
inline constexpr int32_t kPropertiesErrorSyntax = -656161;         // Syntax error in user defined property value.
inline constexpr int32_t kPropertiesErrorMin = -656162;            // Invalid min attribute
inline constexpr int32_t kPropertiesErrorMax = -656163;            // Invalid max attribute
inline constexpr int32_t kPropertiesErrorMinAllowEqual = -656164;  // Invalid minallowequal attribute
inline constexpr int32_t kPropertiesErrorMaxAllowEqual = -656165;  // Invalid maxallowequal attribute
inline constexpr int32_t kPropertiesErrorEnumOpts = -656166;       // Invalid enumopts attribute
inline constexpr int32_t kPropertiesErrorEnumDefault = -656167;    // Invalid default value for enum property
inline constexpr int32_t kPropertiesErrorUnsupportedType = -656168;  // Unsupported property type: <type>
inline constexpr int32_t kPropertiesErrorMandatory = -656169;      // Mandatory property is not defined: <name>
inline constexpr int32_t kPropertiesErrorCopyTypes = -656170;      // The data types ... CopyPropertyValue...
inline constexpr int32_t kPropertiesErrorType = -656171;           // Invalid property type: <type>
inline constexpr int32_t kPropertiesErrorOutOfMemory = kErrorOutOfMemory;  // Out of memory
// clang-format on
