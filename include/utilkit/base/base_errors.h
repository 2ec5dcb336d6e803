// Error codes of the base library.
//
// Every failure in base is pushed on the calling thread's error stack (see
// error_stack.h) with one of these codes and the qualified name of the
// reporting member as location. The calculator's messages come from the
// library's text table; the file, variant, time and preference messages
// name the file, count or value they refuse, e.g. "Cannot open file: a.csv".
//
// Out of memory, in every subsystem: a failed allocation is reported with
// kErrorOutOfMemory (-655577, "Out of memory" or a message naming what could
// not be held) at the member that failed. The out-of-memory names of the
// subsystems (kCalcErrorOutOfMemory, kTableErrorOutOfMemory, ...) are this
// same code.
#pragma once

#include <cstdint>

// clang-format off
inline constexpr int32_t kErrorOutOfMemory = -655577;      // Out of memory

// VCIo and VCTextIo.
inline constexpr int32_t kVCIoErrorOpen = 201;     // "Cannot open file: " + path, bad mode
inline constexpr int32_t kVCIoErrorRead = 202;     // "Cannot read file: " + path, size query
inline constexpr int32_t kVCIoErrorWrite = 203;    // "Cannot write file: " + path, close
inline constexpr int32_t kVCIoErrorNotOpen = 204;  // "No file is open"

// VCVariant's buffer setters and copies.
inline constexpr int32_t kVCVariantErrorBufferSize = 301;               // negative buffer size
inline constexpr int32_t kVCVariantErrorMemory = kErrorOutOfMemory;     // allocation failed

// VCTime's SetDateTime and SetSeconds: a value outside the calendar.
inline constexpr int32_t kVCTimeErrorInvalid = 401;

// VCPreferenceSystem.
inline constexpr int32_t kVCPreferenceErrorPath = 501;                  // null or empty path
inline constexpr int32_t kVCPreferenceErrorMemory = kErrorOutOfMemory;  // the store cannot grow

// VCCalculator: messages from the text table.
inline constexpr int32_t kCalcErrorOutOfMemory = kErrorOutOfMemory;     // Out of memory
inline constexpr int32_t kCalcErrorNoExpression = -68437;
inline constexpr int32_t kCalcErrorNoColumn = -68438;
inline constexpr int32_t kCalcErrorVariableValue = -68439;
inline constexpr int32_t kCalcErrorSyntax = -68440;
inline constexpr int32_t kCalcErrorTooDeep = -68441;
inline constexpr int32_t kCalcErrorArgumentCount = -68442;
inline constexpr int32_t kCalcErrorUnknownVariable = -68443;
inline constexpr int32_t kCalcErrorUnknownFunction = -68444;
inline constexpr int32_t kCalcErrorDivideByZero = -68445;
inline constexpr int32_t kCalcErrorLogOfZero = -68448;
// clang-format on
