// The text table: every message text of the library, found by code.
//
// Error messages are never spelled out at the place that reports them; they
// are looked up here by their code, so the same code always carries the same
// text. The table also holds the month names (codes 101 to 112, January to
// December) that date categories use.
//
//   VCString message = VFTextGet(VFGetUtilKitText(), -655961);
//   message += keyword;   // texts that take a name end in ": " or ":"
//   VFErrorSet(-655961, message, "VCUTable::GetColIndexFromKeyword", 0);
//
// Ownership: the table and its texts are static and immutable; the returned
// pointers stay valid for the life of the process. Safe from any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include <utilkit/base/export.h>

// A table of texts keyed by code (opaque to hosts).
struct VCTextTable;

// The library's own text table.
UTILKIT_API const VCTextTable* VFGetUtilKitText();
// The text with `code` in `table`, or "" when the table has no such code
// (or `table` is null).
UTILKIT_API const char* VFTextGet(const VCTextTable* table, int32_t code);
// True when `table` has a text for `code`.
UTILKIT_API bool VFTextHas(const VCTextTable* table, int32_t code);
// Number of texts in `table` (0 for null).
UTILKIT_API size_t VFTextCount(const VCTextTable* table);
