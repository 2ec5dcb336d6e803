#include "tree_sources.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <system_error>

#include <nlohmann/json.hpp>

#include <utilkit/base/vc_time.h>

namespace tree_tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

VCVariant LocalTime(fs::file_time_type fileTime) {
  const auto sysTime = std::chrono::time_point_cast<std::chrono::system_clock::duration>(
      std::chrono::file_clock::to_sys(fileTime));
  const std::time_t seconds = std::chrono::system_clock::to_time_t(sysTime);
  const std::tm* local = std::localtime(&seconds);
  VCTime time;
  if (!local || !time.SetDateTime(local->tm_year + 1900, local->tm_mon, local->tm_mday,
                                  local->tm_hour, local->tm_min, local->tm_sec)) {
    return VCVariant();
  }
  return VCVariant(time);
}

// Adds the entries of `dir` under `parent`, descending into folders (never
// through links) while `depth` is below `maxDepth`; false when it is not or
// a folder cannot be listed.
bool AddEntries(const fs::path& dir, const fs::path& base, PropertyNode* parent, size_t depth,
                size_t maxDepth, std::string* error) {
  if (depth >= maxDepth) {
    *error = "\"" + dir.string() + "\" lies more than " + std::to_string(maxDepth) +
             " folders deep (raise with --max-depth)";
    return false;
  }
  std::error_code ec;
  fs::directory_iterator it(dir, ec);
  for (fs::directory_iterator end; !ec && it != end; it.increment(ec)) {
    const fs::directory_entry& entry = *it;
    auto* node = new PropertyNode(parent);
    const fs::path& path = entry.path();
    node->SetProperty("Name", VCVariant(path.filename().string().c_str()));
    node->SetProperty("Path", VCVariant(path.lexically_relative(base).string().c_str()));
    if (path.has_extension()) {
      node->SetProperty("Extension", VCVariant(path.extension().string().substr(1).c_str()));
    }
    std::error_code entryError;
    const fs::file_time_type modified = entry.last_write_time(entryError);
    if (!entryError) node->SetProperty("Modified", LocalTime(modified));
    const char* type = "other";
    if (entry.is_symlink(entryError)) {
      type = "link";
    } else if (entry.is_directory(entryError)) {
      type = "folder";
      if (!AddEntries(path, base, node, depth + 1, maxDepth, error)) return false;
    } else if (entry.is_regular_file(entryError)) {
      type = "file";
      const uintmax_t size = entry.file_size(entryError);
      if (!entryError) node->SetProperty("Size", VCVariant(static_cast<int64_t>(size)));
    }
    node->SetProperty("Type", VCVariant(type));
  }
  if (ec) {  // a folder that cannot be listed (or read to its end) is not left out silently
    *error = "cannot list \"" + dir.string() + "\": " + ec.message();
    return false;
  }
  return true;
}

// Text of `json` for a message: arrays and objects by their type name (so a
// deeply nested value is never walked), invalid UTF-8 replaced, long texts cut.
std::string Quote(const Json& json) {
  if (json.is_structured()) return std::string("an ") + json.type_name();
  std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (text.size() > 60) text = text.substr(0, 57) + "...";
  return text;
}

bool AddJsonNode(const Json& json, PropertyNode* node, size_t depth, size_t maxDepth,
                 std::string* error) {
  if (!json.is_object()) {
    *error = "a node must be a JSON object, not " + Quote(json);
    return false;
  }
  if (depth >= maxDepth) {
    *error =
        "nodes nested more than " + std::to_string(maxDepth) + " deep (raise with --max-depth)";
    return false;
  }
  for (const auto& [key, value] : json.items()) {
    if (key == "children") {
      if (!value.is_array()) {
        *error = "\"children\" must be an array";
        return false;
      }
      for (const Json& child : value) {
        if (!AddJsonNode(child, new PropertyNode(node), depth + 1, maxDepth, error)) return false;
      }
    } else if (value.is_string()) {
      const std::string text = value.get<std::string>();
      VCTime time;
      node->SetProperty(
          key, time.DecodeString(text.c_str(), VCTime::kDecodeDate | VCTime::kDecodeDateTime)
                   ? VCVariant(time)
                   : VCVariant(text.c_str()));
    } else if (value.is_boolean()) {
      node->SetProperty(key, VCVariant(value.get<bool>()));
    } else if (value.is_number_integer()) {
      node->SetProperty(key, VCVariant(value.get<int64_t>()));
    } else if (value.is_number()) {
      node->SetProperty(key, VCVariant(value.get<double>()));
    } else if (!value.is_null()) {
      *error = "property \"" + key + "\" must be a string, number or boolean";
      return false;
    }
  }
  return true;
}

Json JsonValue(const VCVariant& value) {
  switch (value.GetType()) {
    case VTVariantType::Short:
    case VTVariantType::Long:
    case VTVariantType::Huge:
      return value.GetHuge();
    case VTVariantType::Float:
    case VTVariantType::Double:
      return value.GetDouble();
    case VTVariantType::Bool:
      return value.GetBool();
    default:
      return value.GetString().str();
  }
}

Json JsonChildren(VCUTreeResultNode* node) {
  Json out = Json::array();
  VCArray<VCUTreeNodeBase*> children;
  node->GetChildren(&children);
  for (VCUTreeNodeBase* child : children) {
    auto* result = dynamic_cast<VCUTreeResultNode*>(child);
    if (!result) continue;
    Json item = Json::object();
    if (result->IsCategory()) {
      item["category"] = result->GetDescription().str();
      item["id"] = result->GetId().str();
    } else if (auto* data = dynamic_cast<PropertyNode*>(result->GetDataObject())) {
      item["name"] = data->GetPropertyValue("Name").GetString().str();
      Json properties = Json::object();
      for (const auto& [name, value] : data->Properties()) properties[name] = JsonValue(value);
      item["properties"] = std::move(properties);
    }
    Json grandChildren = JsonChildren(result);
    if (!grandChildren.empty()) item["children"] = std::move(grandChildren);
    out.push_back(std::move(item));
  }
  return out;
}

}  // namespace

bool ReadDirectoryTree(const std::string& path, PropertyNode* root, size_t maxDepth,
                       std::string* error) {
  std::error_code ec;
  if (!fs::is_directory(path, ec)) {
    *error = "\"" + path + "\" is not a directory";
    return false;
  }
  return AddEntries(path, path, root, 0, maxDepth, error);
}

bool ReadJsonTree(const std::string& text, PropertyNode* root, size_t maxDepth,
                  std::string* error) {
  const Json json = Json::parse(text, nullptr, false);
  if (json.is_discarded()) {
    *error = "not valid JSON";
    return false;
  }
  if (!json.is_array()) return AddJsonNode(json, root, 0, maxDepth, error);
  for (const Json& node : json) {
    if (!AddJsonNode(node, new PropertyNode(root), 0, maxDepth, error)) return false;
  }
  return true;
}

std::string FormatResultTreeJson(VCUTreeResultNode* root, int indent) {
  // File names need not be UTF-8: such bytes are written as U+FFFD.
  return JsonChildren(root).dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tree_tool
