// Reporting the library's own errors: one helper that every subsystem calls.
//
// The message of a code always comes from the library's text table; a name,
// keyword or tag the text refers to is appended directly after it (such
// texts end in ": " or ":"). Returning false lets a failing member end with
// one line:
//
//   if (!found) return VFReportError(kSectionsErrorChannel, "VCUSections::GetChannel", "7");
//   if (rc < 0) return VFReportOsError(kSocketErrorSelect, "VCUSocketIO::GetRawData", errno);
//
// Out of memory is always kErrorOutOfMemory (see base_errors.h). Records belong to the calling
// thread's error stack (see error_stack.h).
#pragma once

#include <cstdint>

#include <utilkit/base/base_errors.h>
#include <utilkit/base/export.h>

// Pushes `code` with its text (followed by `name` when not null) at
// `location` with summary `flag`; returns false. Never fails: a text the
// table lacks is pushed as "".
UTILKIT_API bool VFReportError(int32_t code, const char* location, const char* name = nullptr,
                               int32_t flag = 0);

// As VFReportError, and records the operating system's error number `osCode`
// on the pushed record (VFErrorGetOpSysCode).
UTILKIT_API bool VFReportOsError(int32_t code, const char* location, int32_t osCode,
                                 const char* name = nullptr);
