// Sources and JSON output of `utilkit tree`.
//
// A directory on disk becomes a tree with one node per file or folder and
// the properties Name, Extension (without the dot; absent when there is
// none), Size (bytes, files only), Modified (local date and time), Type
// ("file", "folder" or "other") and Path (relative to the directory given).
// Symbolic links are listed (Type "link") but not followed; entries that
// cannot be read are skipped.
//
// A JSON tree is an object per node: "children" (an array of nodes) holds
// its children, every other member is a property. Strings that read as ISO
// dates ("2024-01-05", "2024-01-05T10:20:30") are dates, other strings text;
// integers, floating-point numbers and booleans keep their types; null is
// no property. The top level is one node (the root, not part of results) or
// an array of nodes (the root's children).
#pragma once

#include <cstddef>
#include <string>

#include "tree_text.h"

namespace tree_tool {

// Reads the directory tree at `path` into children of `root`; false with
// `*error` when `path` is no readable directory, a folder below it cannot be
// listed (no permission, a path too long for the system), or a folder lies
// `maxDepth` or more levels down.
bool ReadDirectoryTree(const std::string& path, PropertyNode* root, size_t maxDepth,
                       std::string* error);

// Reads JSON text into children of `root`; false with `*error` on malformed
// JSON, a node that is not an object, a property that is an object or
// array, or nodes nested `maxDepth` or more deep.
bool ReadJsonTree(const std::string& text, PropertyNode* root, size_t maxDepth, std::string* error);

// The result tree below `root` as JSON: an array of nodes, each a category
// {"category": description, "id": id, "children": [...]} or a data node
// {"name": Name, "properties": {...}, "children": [...]}.
std::string FormatResultTreeJson(VCUTreeResultNode* root, int indent);

}  // namespace tree_tool
