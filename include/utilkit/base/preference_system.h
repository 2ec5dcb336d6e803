// VCPreferenceSystem: the host's preferences, as the library reads them.
//
// One process-wide store of named values that the host fills before (or
// while) it uses the library; the library only reads it, taking a default
// where the host has set nothing. Names are paths such as
// "/Libraries/utilkit/MaximumTableProcessorRows", matched exactly (case
// counts). Values are kept as text: a number set with SetHugeValue reads
// back as its decimal text, and a text reads as a number when it is a
// decimal integer (blanks around it allowed).
//
//   VCPreferenceSystem::SetHugeValue("/Libraries/utilkit/MaximumTableProcessorRows", 1000000);
//   int64_t limit =
//       VCPreferenceSystem::GetHugeValue("/Libraries/utilkit/MaximumTableProcessorRows", 50000000);
//
// Ownership: the store copies names and values; it lives until the process
// ends. All members are static and safe to call from any thread.
#pragma once

#include <cstdint>

#include <utilkit/base/base_errors.h>
#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API VCPreferenceSystem {
 public:
  VCPreferenceSystem() = delete;

  // Sets `path` to `value`, replacing an earlier value. False with
  // kVCPreferenceErrorPath for a null or empty path, kVCPreferenceErrorMemory
  // when out of memory.
  static bool SetHugeValue(const char* path, int64_t value);
  // Null `value` is "". Errors as SetHugeValue.
  static bool SetStringValue(const char* path, const char* value);

  // The value of `path` as a 64-bit integer; `defaultValue` when it is not
  // set or its text is not a decimal integer in range. Never pushes errors.
  static int64_t GetHugeValue(const char* path, int64_t defaultValue);
  // The value of `path`; `defaultValue` (null is "") when it is not set.
  // Never pushes errors.
  static VCString GetStringValue(const char* path, const char* defaultValue);

  // Removes `path`; true when it was set.
  static bool Remove(const char* path);
  // Removes every preference.
  static void Clear();
};
