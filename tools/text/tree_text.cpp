#include "tree_text.h"

#include <utilkit/base/number_text.h>
#include <utilkit/base/text_helpers.h>
#include <utilkit/base/vc_time.h>

namespace tree_tool {

VCVariant PropertyNode::GetPropertyValue(const char* propName) {
  const auto it = m_index.find(std::string_view(propName ? propName : ""));
  return it == m_index.end() ? VCVariant() : m_properties[it->second].second;
}

void PropertyNode::SetProperty(std::string_view name, const VCVariant& value) {
  if (const auto it = m_index.find(name); it != m_index.end()) {
    m_properties[it->second].second = value;
    return;
  }
  m_properties.emplace_back(std::string(name), value);
  m_index.emplace(std::string(name), m_properties.size() - 1);
}

VCVariant ValueFromText(std::string_view text) {
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    return VCVariant(std::string(text.substr(1, text.size() - 2)).c_str());
  }
  const std::string value(text);
  VCTime time;
  if (time.DecodeString(value.c_str(), VCTime::kDecodeDate | VCTime::kDecodeDateTime)) {
    return VCVariant(time);
  }
  int64_t integer = 0;
  if (VFAscToNum(value.c_str(), &integer)) return VCVariant(integer);
  double real = 0;
  if (VFAscToNum(value.c_str(), &real)) return VCVariant(real);
  return VCVariant(value.c_str());
}

namespace {

// Sets the properties of one line's fields on `node`; false on a bad field.
bool ParseFields(std::string_view line, PropertyNode* node, std::string* problem) {
  bool first = true;
  while (true) {
    const size_t bar = line.find('|');
    const std::string_view field = VFTrimView(line.substr(0, bar));
    const size_t eq = field.find('=');
    if (eq == std::string_view::npos) {
      if (!first) {
        *problem = "field \"" + std::string(field) + "\" is not key=value";
        return false;
      }
      if (!field.empty()) node->SetProperty("Name", VCVariant(std::string(field).c_str()));
    } else {
      const std::string_view key = VFTrimView(field.substr(0, eq));
      if (key.empty()) {
        *problem = "field \"" + std::string(field) + "\" has no key";
        return false;
      }
      node->SetProperty(key, ValueFromText(VFTrimView(field.substr(eq + 1))));
    }
    if (bar == std::string_view::npos) return true;
    line.remove_prefix(bar + 1);
    first = false;
  }
}

void FormatNode(VCUTreeResultNode* node, int depth, bool showIds, std::string& out) {
  VCArray<VCUTreeNodeBase*> children;
  node->GetChildren(&children);
  for (VCUTreeNodeBase* child : children) {
    auto* result = dynamic_cast<VCUTreeResultNode*>(child);
    if (!result) continue;
    out.append(static_cast<size_t>(depth) * 2, ' ');
    if (result->IsCategory()) {
      out += "+ ";
      out += result->GetDescription().str();
      if (showIds) out += " [" + result->GetId().str() + "]";
    } else {
      VCUTreeSourceNode* data = result->GetDataObject();
      out += "- ";
      out += data ? data->GetPropertyValue("Name").GetString().str() : std::string("(no data)");
    }
    out += '\n';
    FormatNode(result, depth + 1, showIds, out);
  }
}

}  // namespace

bool ParseIndentedTree(std::string_view text, PropertyNode* root, std::string* error,
                       size_t maxDepth) {
  // The nodes that can still take children, with their indentation.
  std::vector<std::pair<size_t, PropertyNode*>> open{{0, root}};
  size_t lineNumber = 0;
  while (!text.empty()) {
    ++lineNumber;
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const size_t indent = line.find_first_not_of(' ');
    if (indent == std::string_view::npos || line[indent] == '#') continue;
    while (open.size() > 1 && open.back().first >= indent + 1) open.pop_back();
    if (open.size() > maxDepth) {
      *error = "line " + std::to_string(lineNumber) + ": nodes nested more than " +
               std::to_string(maxDepth) + " deep (raise with --max-depth)";
      return false;
    }
    auto* node = new PropertyNode(open.back().second);  // owned by its parent
    std::string problem;
    if (!ParseFields(line.substr(indent), node, &problem)) {
      *error = "line " + std::to_string(lineNumber) + ": " + problem;
      return false;
    }
    open.emplace_back(indent + 1, node);
  }
  return true;
}

std::string FormatResultTree(VCUTreeResultNode* root, bool showIds) {
  std::string out;
  FormatNode(root, 0, showIds, out);
  return out;
}

}  // namespace tree_tool
