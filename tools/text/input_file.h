// Whole-file reads of the tool's inputs, bounded.
//
// A path that names a directory, a file that cannot be read, or one larger
// than the limit (an endless stream such as /dev/zero included) is refused
// with a message naming the path; nothing beyond the limit is read or kept.
//
//   std::string text, error;
//   if (!ReadInputFile("tree.json", kDefaultInputLimit, &text, &error)) fail(error);
#pragma once

#include <cstddef>
#include <string>

namespace tool_input {

// The largest input the tool reads whole unless told otherwise (256 MiB).
inline constexpr size_t kDefaultInputLimit = size_t{256} << 20;

// Replaces `*text` with the file's bytes. False, with `*error` set, for a
// directory, an unreadable file, a read error, more than `limit` bytes, or
// no memory.
bool ReadInputFile(const std::string& path, size_t limit, std::string* text, std::string* error);

}  // namespace tool_input
