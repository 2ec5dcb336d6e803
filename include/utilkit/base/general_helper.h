// VCUGeneralHelper: small static helpers of the library frame.
//
// SplitCommandLine turns a command-line text into its arguments, the way a
// program's argument vector is built from one line; EndsWith tests whether a
// byte buffer that is still being filled ends with a given text (for example
// a closing tag that marks the end of a message).
//
//   std::vector<VCString> args = VCUGeneralHelper::SplitCommandLine(
//       "-i -name \"My Service\" -description \"Says \\\"hello\\\"\"");
//   // args: -i, -name, My Service, -description, Says "hello"
//   bool done = VCUGeneralHelper::EndsWith(received, receivedLength, "</Reply>");
//
// Ownership: the helpers keep no state and never take ownership of their
// arguments; the returned vector belongs to the caller. They cannot fail and
// push nothing onto the error stack. Safe from any thread.
//
// Command-line rules:
// - Blanks (space, tab, CR, LF) outside double quotes separate arguments; runs
//   of blanks count as one separator, and leading or trailing blanks give no
//   argument.
// - A double quote opens or closes a quoted piece; the quotes are removed and
//   the blanks inside are kept. Quoted and unquoted pieces that touch form one
//   argument: a"b c"d gives `ab cd`. "" gives an empty argument.
// - A backslash directly followed by a double quote gives a literal double
//   quote, inside or outside a quoted piece. Every other backslash is an
//   ordinary character, so paths such as C:\dir\file pass unchanged.
// - A quote left open at the end of the text is closed there: the rest of the
//   text, blanks included, belongs to the last argument.
#pragma once

#include <cstddef>
#include <vector>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API VCUGeneralHelper {
 public:
  VCUGeneralHelper() = delete;

  // The arguments of `commandLine` by the rules above, in order; empty for a
  // null, empty or all-blank text.
  static std::vector<VCString> SplitCommandLine(const char* commandLine);

  // True when the first `length` bytes of `buffer` end with the bytes of the
  // zero-terminated `text` (compared exactly, no white space skipped). An
  // empty `text` is at the end of any buffer. False when `buffer` or `text`
  // is null, or when `text` is longer than `length`. Bytes of `buffer` before
  // its last strlen(text) ones are not read, and zero bytes in it are data.
  static bool EndsWith(const char* buffer, size_t length, const char* text);
};
