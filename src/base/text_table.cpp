#include <utilkit/base/text_table.h>

#include <algorithm>
#include <iterator>

namespace {

struct TextEntry {
  int32_t code;
  const char* text;
};

// Sorted by code (checked by the tests). Codes and texts are the library's
// public contract: hosts match on codes and show the texts.
constexpr TextEntry kUtilKitTexts[] = {
#include "base/utilkit_texts.inc"
};

}  // namespace

struct VCTextTable {
  const TextEntry* begin;
  const TextEntry* end;
};

namespace {
constexpr VCTextTable kUtilKitTable{std::begin(kUtilKitTexts), std::end(kUtilKitTexts)};

const TextEntry* Lookup(const VCTextTable* table, int32_t code) {
  if (!table) return nullptr;
  const TextEntry* at = std::lower_bound(table->begin, table->end, code,
                                         [](const TextEntry& e, int32_t c) { return e.code < c; });
  return (at != table->end && at->code == code) ? at : nullptr;
}
}  // namespace

const VCTextTable* VFGetUtilKitText() {
  return &kUtilKitTable;
}

const char* VFTextGet(const VCTextTable* table, int32_t code) {
  const TextEntry* e = Lookup(table, code);
  return e ? e->text : "";
}

bool VFTextHas(const VCTextTable* table, int32_t code) {
  return Lookup(table, code) != nullptr;
}

size_t VFTextCount(const VCTextTable* table) {
  return table ? static_cast<size_t>(table->end - table->begin) : 0;
}
