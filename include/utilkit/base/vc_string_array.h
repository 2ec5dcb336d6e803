// VCStringArray: a growable array of texts.
//
// A VCArray<VCString> (all of its members apply) with text searches and a
// splitter that turns a delimited text into elements.
//
//   VCStringArray parts;
//   parts.SplitString(" Name{TYPE=ALPHA} . Date ", ".",
//                     VCStringArray::kSplitTrim | VCStringArray::kSplitSkipEmpty);
//   // parts: "Name{TYPE=ALPHA}", "Date"
//   int32_t at = parts.FindNoCase("date");   // 1
//
// Ownership: the array owns copies of its texts. Growth, memory failures
// and bad indices behave as in VCArray (see vc_array.h).
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_array.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API VCStringArray : public VCArray<VCString> {
 public:
  // SplitString flags.
  // Removes white space (as VCString::Trim) from both ends of each element.
  static constexpr int32_t kSplitTrim = 1;
  // Leaves out elements that are empty (after trimming, when kSplitTrim is set).
  static constexpr int32_t kSplitSkipEmpty = 2;

  using VCArray<VCString>::VCArray;

  // Replaces the content with the pieces of `text` between separators; every
  // character of `separators` is a separator. Without flags, k separators
  // give k + 1 elements (so "" gives one empty element, "a,,b" three).
  // A null or empty `separators` gives the whole text as one element; a null
  // `text` counts as "". Returns the new size; on memory failure the array
  // is left empty and -1 is returned.
  int32_t SplitString(const char* text, const char* separators, int32_t flags);

  // Index of the first element at or after `start` equal to `text`
  // (byte-wise, or with ASCII case folded for FindNoCase), or -1. A null
  // `text` counts as ""; a negative `start` as 0.
  int32_t Find(const char* text, int32_t start = 0) const;
  int32_t FindNoCase(const char* text, int32_t start = 0) const;
};
