// libFuzzer target for the table command's CSV reader and writer.
//
// The input is a CSV text. When it reads and can be written with typed
// headers, the written text must read again and write the very same text:
// what the writer gives, the reader takes back unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

#include <utilkit/base/dictionary.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>

#include "table_csv.h"

namespace {

// The typed CSV of `text` read as a table; false when it does not read.
bool Rewrite(std::string_view text, std::string* written) {
  VCUDictionary texts;
  VCUTableMemory table("fuzz");
  std::string error;
  if (!utilkit::tool::CsvToMemoryTable(text, "fuzz", &table, &texts, &error)) {
    if (error.empty()) std::abort();  // a refusal always says why
    return false;
  }
  std::ostringstream out;
  if (!utilkit::tool::WriteTableCsv(table, true, out, &error)) {
    if (error.empty()) std::abort();  // a name that cannot be written typed: said so
    return false;
  }
  *written = out.str();
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 16) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string first, second;
  VFErrorClear();
  if (Rewrite(text, &first)) {
    if (!Rewrite(first, &second) || second != first) std::abort();
  }
  VFErrorClear();
  return 0;
}
