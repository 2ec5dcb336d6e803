// Process text encoding and UTF-8 / UTF-16 conversion.
//
// Texts handed to the library as `char` strings are in the process
// encoding: UTF-8 unless the host has said otherwise with
// VFSetEncodingType (a host working in its local code page sets another
// name, and the XML parts then let the parser transcode from that page).
// The XML parts convert between UTF-8 and the parser's UTF-16 with the
// functions below.
//
//   if (VFGetEncodingType() == "utf8") {
//     std::u16string wide;
//     if (!VFUtf8ToUnicode(text, std::strlen(text), &wide)) { ... bad bytes replaced ... }
//     VCString back;
//     VFUnicodeToUtf8(wide.data(), wide.size(), &back);
//   }
//
// Invalid input never stops a conversion: each invalid part (a UTF-8 byte
// sequence that is not well-formed in the sense of the Unicode standard, or
// an unpaired UTF-16 surrogate) becomes one U+FFFD, the rest is converted,
// and the function returns false so that the caller knows the text was
// damaged. Nothing is reported on the error stack. When memory runs out the
// output is left empty and false is returned.
//
// Ownership: outputs are caller-owned and replaced, not appended to.
// Threads: the encoding setting is process-wide; reading and setting it are
// safe from any thread.
#pragma once

#include <cstddef>
#include <string>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

// The process encoding's name: "utf8" (the default) or the name last set.
UTILKIT_API VCString VFGetEncodingType();

// Sets the process encoding's name. "utf8", "utf-8" and "utf_8" in any case
// are stored as "utf8"; other names are stored as given. A null or
// empty name restores "utf8".
UTILKIT_API void VFSetEncodingType(const char* name);

// Replaces `*out` with the UTF-16 form of the `length` bytes at `utf8`
// (which may contain zero bytes; null only with length 0). True when the
// input was valid UTF-8; false when some of it was replaced by U+FFFD.
UTILKIT_API bool VFUtf8ToUnicode(const char* utf8, size_t length, std::u16string* out);

// Replaces `*out` with the UTF-8 form of the `length` UTF-16 units at
// `text` (surrogate pairs give 4-byte sequences; null only with length 0).
// True when the input was valid; false when unpaired surrogates were
// replaced by U+FFFD. A zero unit is encoded as a zero byte, which ends the
// text as far as its `const char*` view is concerned.
UTILKIT_API bool VFUnicodeToUtf8(const char16_t* text, size_t length, VCString* out);
