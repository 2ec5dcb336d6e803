// libFuzzer target for the tree command's sources: JSON and indented text.
//
// The input is read as a JSON tree when it starts with '{' or '[', else as
// indented text, with the default depth limit. A refusal must say why; a
// tree that reads is grouped by the first letter of its names, sorted and
// printed both ways, as `utilkit tree` would.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

#include "tree_sources.h"
#include "tree_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 16) return 0;
  const std::string text(reinterpret_cast<const char*>(data), size);
  tree_tool::PropertyNode source(nullptr);
  std::string error;
  const bool json = !text.empty() && (text[0] == '{' || text[0] == '[');
  const bool read =
      json ? tree_tool::ReadJsonTree(text, &source, tree_tool::kDefaultMaxTreeDepth, &error)
           : tree_tool::ParseIndentedTree(text, &source, &error);
  if (!read) {
    if (error.empty()) std::abort();
    return 0;
  }
  VCUTree tree;
  if (!tree.SetGroupOpsFromText("Name{TYPE=ALPHA}") || !tree.SetSortOpsFromText("Name,Size:D")) {
    std::abort();
  }
  tree.SetRecurseChildren(1);
  std::unique_ptr<VCUTreeResultNode> result(tree.Process(&source));
  if (result) {
    tree_tool::FormatResultTreeJson(result.get(), 2);
    tree_tool::FormatResultTree(result.get(), true);
  }
  VFErrorClear();
  return 0;
}
