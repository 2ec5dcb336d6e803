// Symbol export for the utilkit shared library.
//
// Every public class and free function of the library is marked UTILKIT_API.
// The library is built with hidden visibility, so only marked symbols are
// exported: `__declspec(dllexport)` while building utilkit.dll and
// `__declspec(dllimport)` for its consumers on Windows, default visibility
// elsewhere. Hosts never define UTILKIT_BUILDING themselves.
#pragma once

#if defined(_WIN32) || defined(__CYGWIN__)
#if defined(UTILKIT_BUILDING)
#define UTILKIT_API __declspec(dllexport)
#else
#define UTILKIT_API __declspec(dllimport)
#endif
#else
#define UTILKIT_API __attribute__((visibility("default")))
#endif
