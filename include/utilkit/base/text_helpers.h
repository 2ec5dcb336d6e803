// Text helpers: sort keys for mixed text, wildcard matching, key=value
// splitting and white-space trimming.
//
//   // Sort keys: embedded numbers order by value.
//   VFMakeNumericallySortableString("File2") < VFMakeNumericallySortableString("File10")
//   VFPatternMatch(kPatternMatchNoCase, "ch?_*", "CH1_force");          // true
//   VCString key, value;
//   VFSplitIntoKeyValue(" NUM = 3 ", &key, &value, 0);                 // "NUM", "3"
//   VCString name(" Size ");
//   VFSqueeze(name, kSqueezeLeading | kSqueezeTrailing);               // "Size"
//
// None of these functions fails on bad input or reports anything on the
// error stack: a text that does not match, split or parse is an answer, not
// an error. Null texts count as "". White space means the bytes that
// VCString::Trim removes (space, tab, CR, LF, VT, FF).
#pragma once

#include <cstdint>
#include <string_view>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

// The sort key of `text`: comparing two keys byte-wise (VCString::Compare,
// strcmp, unsigned bytes) orders the texts as a person would: each run of
// ASCII digits compares by its numeric value, of any length, so "x9" < "x10"
// and "File2" < "File10"; all other bytes compare as themselves, so
// "A" < "a" < "b" (upper-case both texts first for a case-blind order).
// Equal numbers with more leading zeros follow those with fewer ("x9" <
// "x09" < "x10"), the zeros deciding before any text after the number.
// Different texts always give different keys. The key is a comparison aid
// for sorting and pooling, not a text for display: digit runs are rewritten
// as a length prefix and the significant digits. Signs and decimal points are
// ordinary characters.
UTILKIT_API VCString VFMakeNumericallySortableString(const VCString& text);

// VFPatternMatch flag: ASCII letters match regardless of case.
inline constexpr int32_t kPatternMatchNoCase = 1;

// True when all of `text` matches the wildcard `pattern`: "*" matches any
// run of characters (also none), "?" exactly one character (a UTF-8 lead
// byte with its continuation bytes, else one byte), any other character
// itself; there is no escape. Runs in O(|pattern| * |text|)
// time at worst, without recursion.
UTILKIT_API bool VFPatternMatch(int32_t flags, const char* pattern, const char* text);

// VFSplitIntoKeyValue flag: keep the white space around key and value.
inline constexpr int32_t kSplitKeyValueKeepBlanks = 1;

// Splits "key=value" at its first "=" and trims white space from both ends
// of both parts (unless kSplitKeyValueKeepBlanks). The value may be empty
// and may contain further "=". False, with `key` and `value` untouched,
// when the text has no "=" or the key is empty. `key` and `value` may be null.
UTILKIT_API bool VFSplitIntoKeyValue(const char* text, VCString* key, VCString* value,
                                     int32_t flags);

// VFSqueeze flags.
inline constexpr int32_t kSqueezeLeading = 1;   // remove leading white space
inline constexpr int32_t kSqueezeTrailing = 2;  // remove trailing white space

// The part of `text` without its leading and trailing white space (a view
// into the same bytes).
UTILKIT_API std::string_view VFTrimView(std::string_view text);

// Removes white space from `text` in place as `flags` say; returns `text`.
UTILKIT_API VCString& VFSqueeze(VCString& text, int32_t flags);
// Same, for a text given by pointer (null is ignored).
inline void VFSqueeze(VCString* text, int32_t flags) {
  if (text) VFSqueeze(*text, flags);
}
