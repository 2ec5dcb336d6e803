// libFuzzer target for the operation texts of VCUTree.
//
// One input holds three texts separated by newlines: grouping, filter and
// sorting (missing ones are empty). Each is parsed; a parse that fails must
// leave its list or filter empty. Whatever was parsed is then run over a
// small fixed tree, so that the definitions built from odd texts (letters
// per group, values, operators) are exercised too.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

namespace {

// A node with a name, a number, a date and, for some, a text "Type".
class FuzzNode : public VCUTreeSourceNode {
 public:
  FuzzNode(FuzzNode* parent, const char* name, int64_t size, int32_t month)
      : VCUTreeSourceNode(parent), m_name(name), m_size(size) {
    m_modified.SetDateTime(2024, month, 1 + month);
  }
  VCVariant GetPropertyValue(const char* propName) override {
    const std::string_view prop(propName);
    if (prop == "Name") return VCVariant(m_name.c_str());
    if (prop == "Size") return VCVariant(m_size);
    if (prop == "Modified") return VCVariant(m_modified);
    if (prop == "Type" && m_size % 2 == 0) return VCVariant(m_size > 5 ? "big" : "small");
    return VCVariant();
  }

 private:
  std::string m_name;
  int64_t m_size;
  VCTime m_modified;
};

const FuzzNode& SourceTree() {
  static const std::unique_ptr<FuzzNode> root = [] {
    auto top = std::make_unique<FuzzNode>(nullptr, "root", 0, 0);
    const char* names[] = {"apple", "Zulu", "a10", "a9", "3D", "", "yak", "B"};
    for (int i = 0; i < 8; ++i) {
      auto* node = new FuzzNode(top.get(), names[i], i * 3 % 7, i % 12);
      new FuzzNode(node, names[(i + 3) % 8], i, (i * 5) % 12);
    }
    return top;
  }();
  return *root;
}

// The next newline-separated part of `text`.
std::string NextPart(std::string_view& text) {
  const size_t end = text.find('\n');
  std::string part(text.substr(0, end));
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return part;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string group = NextPart(input);
  const std::string filter = NextPart(input);
  const std::string sort = NextPart(input);

  VCUTree tree;
  if (!tree.SetGroupOpsFromText(group.c_str()) && tree.GetGroupingOps().GetSize() != 0) {
    __builtin_trap();
  }
  if (!tree.SetFilterOpsFromText(filter.c_str()) && tree.GetFilteringOp() != nullptr) {
    __builtin_trap();
  }
  if (!tree.SetSortOpsFromText(sort.c_str()) && tree.GetSortingOps().GetSize() != 0) {
    __builtin_trap();
  }
  tree.SetRecurseChildren(static_cast<char>(size % 2));
  delete tree.Process(const_cast<FuzzNode*>(&SourceTree()));
  VFErrorClear();
  return 0;
}
