// Error codes of the service base.
//
// Every failure of VCUServiceBase is pushed on the error stack with one of
// these codes, the library's message for it and the qualified name of the
// reporting member as location; each record also carries the operating
// system's error number (VFErrorGetOpSysCode), e.g.
//
//   if (!VCUServiceBase::Uninstall(name)) {
//     const VCErrorRecord* e = VFErrorGetLast();
//     // VFErrorGetCode(e) == kServiceErrorDelete,
//     // VFErrorGetLocation(e) == "VCUServiceBase::Uninstall"
//   }
#pragma once

#include <cstdint>

// clang-format off
inline constexpr int32_t kServiceErrorOpenManager = -655861;     // Error opening service control manager
inline constexpr int32_t kServiceErrorCreate = -655862;          // Error creating service
inline constexpr int32_t kServiceErrorDelete = -655863;          // Error deleting service
inline constexpr int32_t kServiceErrorStart = -655864;           // Error starting service
inline constexpr int32_t kServiceErrorRegisterHandler = -655865; // Failed RegisterServiceCtrlHandler
// clang-format on
