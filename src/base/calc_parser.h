// Compiles VCCalculator expression text into a Program (see calc_program.h).
//
// A single recursive-descent pass emits instructions directly, so long chains
// such as "1 + 2 + ... + n" need no recursion; nesting (parentheses, unary
// operators, powers, function arguments) is limited to kMaxNesting levels so
// hostile input cannot exhaust the stack. Constant sub-expressions are folded
// unless folding would fail (1 / 0 stays, and fails when evaluated).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/calc_program.h"

namespace utilkit::calc {

// Deepest nesting of parentheses, unary operators, powers and calls, unless
// the caller sets another.
inline constexpr int32_t kMaxNesting = 100;
// Most arguments a user function call may have.
inline constexpr int32_t kMaxUserArguments = 32;

// Why compiling failed: an error code of VCCalculator and the detail that
// follows its text (a description with a 1-based position, or a name).
struct CompileError {
  int32_t code = 0;
  std::string detail;
};

// Compiles `text` into `*program`, nesting at most `maxNesting` levels. On
// failure fills `*error`; `*program` is then unspecified.
bool Compile(std::string_view text, Program* program, CompileError* error,
             int32_t maxNesting = kMaxNesting);

}  // namespace utilkit::calc
