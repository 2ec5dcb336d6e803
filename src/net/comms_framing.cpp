#include "net/comms_framing.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include <utilkit/net/message_form.h>

namespace utilkit::net {

namespace {

// The prolog and the first element's start tag of an XML request are looked
// for in its first 64 KiB only, so that each read costs little however long
// the request grows.
constexpr size_t kMaxXmlHead = 65536;

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// True when `text` starts with `keyword` ignoring case, or is a shorter
// prefix of it (`*whole` then false).
bool StartsWithKeyword(std::string_view text, std::string_view keyword, bool* whole) {
  size_t n = std::min(text.size(), keyword.size());
  for (size_t i = 0; i < n; ++i)
    if ((text[i] | 0x20) != keyword[i]) return false;
  *whole = n == keyword.size();
  return true;
}

// True when the XML text is a whole document: its first element closes
// itself, or the text ends (white space ignored) with that element's
// closing tag.
bool IsCompleteXml(std::string_view text) {
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  if (!text.ends_with('>')) return false;  // the cheap test first: most reads end elsewhere
  const std::string_view all = text;
  text = text.substr(0, kMaxXmlHead);
  size_t at = 0;
  for (;;) {  // skip white space, the declaration, comments and the document type
    while (at < text.size() && IsSpace(text[at])) ++at;
    if (at >= text.size() || text[at] != '<') return false;
    std::string_view rest = text.substr(at);
    std::string_view close = rest.starts_with("<?")     ? "?>"
                             : rest.starts_with("<!--") ? "-->"
                             : rest.starts_with("<!")   ? ">"
                                                        : "";
    if (close.empty()) break;
    size_t end = rest.find(close, 2);
    if (end == std::string_view::npos) return false;
    at += end + close.size();
  }
  size_t nameEnd = at + 1;
  while (nameEnd < text.size() && !IsSpace(text[nameEnd]) && text[nameEnd] != '/' &&
         text[nameEnd] != '>')
    ++nameEnd;
  std::string_view name = text.substr(at + 1, nameEnd - at - 1);
  char quote = 0;
  size_t tagEnd = nameEnd;
  for (; tagEnd < text.size(); ++tagEnd) {  // the end of the start tag, quoted '>' skipped
    char c = text[tagEnd];
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      break;
    }
  }
  if (name.empty() || tagEnd >= text.size()) return false;
  if (text[tagEnd - 1] == '/') return tagEnd + 1 == all.size();
  if (all.size() < name.size() + 3) return false;
  std::string_view close = all.substr(all.size() - name.size() - 3);
  return close.starts_with("</") && close.substr(2, name.size()) == name;
}

}  // namespace

bool FindCompleteRequest(const char* data, int32_t length, int32_t searched, FramedRequest* out) {
  std::string_view text(data, static_cast<size_t>(length));
  bool whole = false;
  if (StartsWithKeyword(text, "content-type:", &whole) ||
      StartsWithKeyword(text, "mime-version:", &whole)) {
    if (!whole || !VCUMessageForm::IsCompleteMessage(data, length)) return false;
    *out = {length, length, VTCommsFraming::kMessageForm};
    return true;
  }
  const void* zero = std::memchr(data + searched, 0, static_cast<size_t>(length - searched));
  if (zero != nullptr) {
    int32_t at = static_cast<int32_t>(static_cast<const char*>(zero) - data);
    *out = {at + 1, at, VTCommsFraming::kZeroTerminated};
    return true;
  }
  if (length > 0 && data[0] == '<' && IsCompleteXml(text)) {
    *out = {length, length, VTCommsFraming::kXml};
    return true;
  }
  return false;
}

}  // namespace utilkit::net
