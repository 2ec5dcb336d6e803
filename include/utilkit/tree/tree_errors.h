// Error codes of the tree processor.
//
// Every failure of the tree classes is pushed on the error stack with one of
// these codes, the library's message for it (VFTextGet(VFGetUtilKitText(),
// code)) and the qualified name of the reporting member as location, e.g.
//
//   if (!tree.SetGroupOpsFromText("Name{}")) {
//     const VCErrorRecord* e = VFErrorGetLast();
//     // VFErrorGetCode(e) == kTreeErrorBadBraces,
//     // VFErrorGetLocation(e) == "VCUTree::SeparatePropAndModifiers"
//   }
#pragma once

#include <cstdint>

#include <utilkit/base/base_errors.h>

// clang-format off
inline constexpr int32_t kTreeErrorNoGroupingProperties = -655461; // No grouping properties defined
inline constexpr int32_t kTreeErrorGroupTextFormat = -655462;      // (no operation reports it)
inline constexpr int32_t kTreeErrorGroupType = -655463;            // Invalid group type
inline constexpr int32_t kTreeErrorLettersPerGroup = -655464;      // Invalid number of letters...
inline constexpr int32_t kTreeErrorSubType = -655465;              // Invalid sub type
inline constexpr int32_t kTreeErrorModifier = -655466;             // Invalid modifier
inline constexpr int32_t kTreeErrorMismatchedBraces = -655467;     // Mis-matched braces
inline constexpr int32_t kTreeErrorFilterSyntax = -655468;         // Filter syntax error
inline constexpr int32_t kTreeErrorNoSortingProperties = -655469;  // No sorting properties defined
inline constexpr int32_t kTreeErrorSortDirection = -655470;        // Invalid sort direction
inline constexpr int32_t kTreeErrorNoOperations = -655471;         // No operations defined
inline constexpr int32_t kTreeErrorNoSourceTree = -655472;         // No source data tree set
inline constexpr int32_t kTreeErrorSortMethod = -655473;           // Invalid value for Method
inline constexpr int32_t kTreeErrorBlankPropertyName = -655474;    // Blank property name
inline constexpr int32_t kTreeErrorBadBraces = -655475;            // Badly positioned {}
inline constexpr int32_t kTreeErrorNoModifiers = -655476;          // No modifiers
inline constexpr int32_t kTreeErrorModifierFormat = -655477;       // Bad format of modifiers
// clang-format on
// The library's "Out of memory" message: an allocation failed inside a tree
// operation, which then left its objects as they were.
inline constexpr int32_t kTreeErrorOutOfMemory = kErrorOutOfMemory;
