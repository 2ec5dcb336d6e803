// Trees of `utilkit tree` as text: a source node with named properties, the
// indented text form of a source tree, and the indented print of a result.
//
// Indented text: one node per line, a child indented by more spaces than its
// parent (two per level by convention); blank lines and lines starting with
// "#" are skipped. Fields are separated by "|": the first may be the bare
// name (the property Name), every other one is `key=value`. A value is a
// date and time when it reads as one ("2024-01-05", "2024-01-05T10:20"),
// else a 64-bit integer, else a double, else text; "..." quotes text.
//
//   Documents
//     report.txt | Size=120 | Modified=2024-01-05T10:00 | Type=file
//     notes | Type=folder
//       todo.md | Size=3
//
// The print shows categories as "+ description" (with " [id]" on request)
// and data nodes as "- " and their Name, two spaces per level; it asks every
// node for its children, so lazily mirrored subtrees are printed in full.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <utilkit/tree/tree.h>

namespace tree_tool {

// A source node carrying its properties by name.
class PropertyNode : public VCUTreeSourceNode {
 public:
  explicit PropertyNode(PropertyNode* parent) : VCUTreeSourceNode(parent) {}
  // The property's value, or null when the node has none of that name.
  VCVariant GetPropertyValue(const char* propName) override;
  // Sets (or replaces) a property.
  void SetProperty(std::string_view name, const VCVariant& value);
  // The properties in the order they were first set.
  const std::vector<std::pair<std::string, VCVariant>>& Properties() const { return m_properties; }

 private:
  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
  };

  std::vector<std::pair<std::string, VCVariant>> m_properties;
  std::unordered_map<std::string, size_t, NameHash, std::equal_to<>> m_index;  // name -> position
};

// How deep a source tree may nest unless told otherwise (--max-depth).
inline constexpr size_t kDefaultMaxTreeDepth = 1000;

// A value as the indented text types it (see the header comment).
VCVariant ValueFromText(std::string_view text);

// Reads indented text into children of `root`. False, with `*error` naming
// the line, on a malformed line (a field without "=", a key given empty) or
// a line nested `maxDepth` or more levels deep.
bool ParseIndentedTree(std::string_view text, PropertyNode* root, std::string* error,
                       size_t maxDepth = kDefaultMaxTreeDepth);

// The indented print of `root`'s subtree (the root itself is not printed).
std::string FormatResultTree(VCUTreeResultNode* root, bool showIds);

}  // namespace tree_tool
