#include "input_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>

namespace tool_input {

bool ReadInputFile(const std::string& path, size_t limit, std::string* text, std::string* error) {
  const auto fail = [&](const std::string& why) {
    *error = "\"" + path + "\" " + why;
    text->clear();
    return false;
  };
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) return fail("is a directory");
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                       &std::fclose);
  if (!file) return fail(std::string("cannot be read: ") + std::strerror(errno));
  try {
    text->clear();
    char piece[1 << 16];
    while (true) {
      const size_t got = std::fread(piece, 1, sizeof piece, file.get());
      if (got > limit - text->size()) {
        return fail("is larger than " + std::to_string(limit >> 20) + " MiB");
      }
      text->append(piece, got);
      if (got < sizeof piece) break;
    }
    if (std::ferror(file.get()))
      return fail(std::string("cannot be read: ") + std::strerror(errno));
  } catch (const std::bad_alloc&) {
    return fail("does not fit in memory");
  } catch (const std::length_error&) {
    return fail("does not fit in memory");
  }
  return true;
}

}  // namespace tool_input
