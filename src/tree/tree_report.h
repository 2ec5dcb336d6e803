// Pushing the tree processor's errors with the library's message texts.
#pragma once

#include <cstdint>

// Pushes `code` with its message from the library's text table and
// `location`, as a specific (not summary) record.
void VFTreeReportError(int32_t code, const char* location);
