// The error stack: how every operation of the library reports failure.
//
// A failing operation pushes a record (code, message, location, summary
// flag) and returns a failure value; an outer operation may push a summary
// record on top (flag 1). Each thread has its own stack, so records never
// cross threads. Records are listed oldest first: `VFGetUtLibError()` is the
// first (most specific) record and `VFErrorGetNextErr` walks towards the
// most recent one.
//
//   if (!table.GetColIndexFromKeyword("Force", &index)) {
//     for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e))
//       printf("%d %s\n", VFErrorGetCode(e), VFErrorGetMessage(e));
//     VFErrorClear();
//   }
//
// Ownership: records belong to the calling thread's stack. A record pointer
// stays valid until `VFErrorClear` or until the record is dropped because
// the stack is full (it keeps the newest `kErrorStackCapacity` records, so
// a host that never clears it does not grow without bound).
#pragma once

#include <cstddef>
#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

// One record of the error stack (opaque to hosts).
struct VCErrorRecord;

// Most records a thread's stack holds; older ones are dropped first.
inline constexpr size_t kErrorStackCapacity = 1024;

// Pushes a record. `message` and `location` may be null (stored as "").
// `flag` is 1 for a summary record pushed on top of a more specific one, else 0.
UTILKIT_API void VFErrorSet(int32_t code, const char* message, const char* location, int32_t flag);
// Records the operating system's error number `osCode` (and its system
// message) on the most recent record; does nothing on an empty stack.
UTILKIT_API void VFErrorSetOpSysCode(int32_t osCode);
// True when any record on this thread's stack has `code`.
UTILKIT_API bool VFErrorCheck(int32_t code);
// Removes every record of this thread's stack.
UTILKIT_API void VFErrorClear();
// Number of records on this thread's stack.
UTILKIT_API size_t VFErrorGetCount();
// All records, oldest first, one line each:
// "Error <code> in <location>: <message>" and, when an operating-system code
// is recorded, " [system error <n>: <text>]". "" for an empty stack.
UTILKIT_API VCString VFErrorGetFullString();

// The oldest record, or null when the stack is empty.
UTILKIT_API const VCErrorRecord* VFGetUtLibError();
// The record pushed after `record`, or null at the end (or for a null argument).
UTILKIT_API const VCErrorRecord* VFErrorGetNextErr(const VCErrorRecord* record);
// The most recent record, or null when the stack is empty.
UTILKIT_API const VCErrorRecord* VFErrorGetLast();

// Field readers; each returns 0 or "" for a null record.
UTILKIT_API int32_t VFErrorGetCode(const VCErrorRecord* record);
UTILKIT_API const char* VFErrorGetMessage(const VCErrorRecord* record);
UTILKIT_API const char* VFErrorGetLocation(const VCErrorRecord* record);
UTILKIT_API int32_t VFErrorGetFlag(const VCErrorRecord* record);
UTILKIT_API int32_t VFErrorGetOpSysCode(const VCErrorRecord* record);
UTILKIT_API const char* VFErrorGetOpSysMessage(const VCErrorRecord* record);
