// Error codes of the signal sections (VCUSections).
//
// Every failure of the sections class is pushed on the error stack with one
// of these codes, the library's message for it (VFTextGet(VFGetUtilKitText(),
// code)) followed by what it concerns, and the qualified name of the
// reporting member as location, e.g.
//
//   if (!sections.Validate(1000.0, 5000)) {
//     const VCErrorRecord* e = VFGetUtLibError();
//     // VFErrorGetCode(e) == kSectionsErrorOutside,
//     // VFErrorGetMessage(e) == "Section lies outside the signal: ch1, index 0: ..."
//     // VFErrorGetLocation(e) == "VCUSections::Validate"
//   }
#pragma once

#include <cstdint>

#include <utilkit/base/base_errors.h>

// clang-format off
inline constexpr int32_t kSectionsErrorIndex = -655661;         // Section index out of range:
inline constexpr int32_t kSectionsErrorSyntax = -655662;        // Malformed sections text:
inline constexpr int32_t kSectionsErrorRate = -655663;          // Invalid sample rate:
inline constexpr int32_t kSectionsErrorPointCount = -655664;    // Invalid number of points:
inline constexpr int32_t kSectionsErrorStartAfterEnd = -655665; // Section starts after its end:
inline constexpr int32_t kSectionsErrorOutside = -655666;       // Section lies outside the signal:
inline constexpr int32_t kSectionsErrorChannel = -655667;       // Section names an unknown channel:
inline constexpr int32_t kSectionsErrorUnits = -655668;         // Sections are held in other units:
inline constexpr int32_t kSectionsErrorValue = -655669;         // Invalid section value:
inline constexpr int32_t kSectionsErrorTimeColumn = -655670;    // Invalid time column:
// clang-format on
// The library's "Out of memory" message: an allocation failed inside a
// sections operation, which then left the list as it was.
inline constexpr int32_t kSectionsErrorOutOfMemory = kErrorOutOfMemory;
