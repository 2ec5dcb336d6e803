#include <utilkit/base/general_helper.h>

#include <cstring>
#include <string>

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

std::vector<VCString> VCUGeneralHelper::SplitCommandLine(const char* commandLine) {
  std::vector<VCString> args;
  if (!commandLine) return args;

  std::string current;
  bool inArgument = false;  // an argument has begun, even if still empty ("")
  bool inQuotes = false;
  for (const char* p = commandLine; *p; ++p) {
    const char c = *p;
    if (c == '\\' && p[1] == '"') {
      current += '"';
      inArgument = true;
      ++p;
    } else if (c == '"') {
      inQuotes = !inQuotes;
      inArgument = true;
    } else if (!inQuotes && IsBlank(c)) {
      if (inArgument) {
        args.emplace_back(std::move(current));
        current.clear();
        inArgument = false;
      }
    } else {
      current += c;
      inArgument = true;
    }
  }
  if (inArgument) args.emplace_back(std::move(current));
  return args;
}

bool VCUGeneralHelper::EndsWith(const char* buffer, size_t length, const char* text) {
  if (!buffer || !text) return false;
  const size_t textLength = std::strlen(text);
  if (textLength > length) return false;
  return std::memcmp(buffer + (length - textLength), text, textLength) == 0;
}
