// Parsing of multipart/form-data into a VCUMessageForm.
#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/net/message_form.h>
#include <utilkit/net/net_errors.h>

namespace {

constexpr std::string_view kCrlf = "\r\n";
// IsCompleteMessage looks for the header block in this many first bytes.
constexpr size_t kMaxMessageHeader = 65536;

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return (x | 0x20) == (y | 0x20);
         });
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// A header value split into its main value and its parameters
// ("form-data; name=\"a\""), parameter names lower-cased, quoted values unescaped.
struct HeaderValue {
  std::string_view main;
  std::vector<std::pair<std::string, std::string>> params;

  const std::string* Find(std::string_view name) const {
    for (const auto& p : params)
      if (p.first == name) return &p.second;
    return nullptr;
  }
};

// Splits `text`; false when a quoted string is not closed or a parameter has no '='.
bool SplitHeaderValue(std::string_view text, HeaderValue* out) {
  size_t at = std::min(text.find(';'), text.size());
  out->main = Trim(text.substr(0, at));
  while (at < text.size()) {
    ++at;  // past ';'
    size_t eq = text.find('=', at);
    if (eq == std::string_view::npos) return Trim(text.substr(at)).empty();
    std::string name(Trim(text.substr(at, eq - at)));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    at = eq + 1;
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    std::string value;
    if (at < text.size() && text[at] == '"') {
      for (++at;; ++at) {
        if (at >= text.size()) return false;
        if (text[at] == '"') break;
        if (text[at] == '\\' && at + 1 < text.size()) ++at;
        value.push_back(text[at]);
      }
      at = std::min(text.find(';', at), text.size());
    } else {
      size_t end = std::min(text.find(';', at), text.size());
      value = Trim(text.substr(at, end - at));
      at = end;
    }
    out->params.emplace_back(std::move(name), std::move(value));
  }
  return true;
}

// Decodes an RFC 2231 value (charset'language'percent-encoded); the bytes
// are kept as they are, whatever the charset.
std::string DecodeExtendedValue(const std::string& value) {
  size_t first = value.find('\'');
  size_t second = first == std::string::npos ? first : value.find('\'', first + 1);
  std::string_view text(value);
  if (second != std::string::npos) text.remove_prefix(second + 1);
  std::string out;
  auto hex = [](char c) {
    int lower = c | 0x20;
    return c >= '0' && c <= '9' ? c - '0' : lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
  };
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && hex(text[i + 1]) >= 0 && hex(text[i + 2]) >= 0) {
      out.push_back(static_cast<char>(hex(text[i + 1]) * 16 + hex(text[i + 2])));
      i += 2;
    } else {
      out.push_back(text[i]);
    }
  }
  return out;
}

// Decodes base64 (line ends and blanks skipped); -1 on success, else the
// offset in `text` of the first bad character.
int64_t DecodeBase64(std::string_view text, VCUDataBuffer* out) {
  uint32_t bits = 0;
  int count = 0;
  char quad[3];
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    int v = c >= 'A' && c <= 'Z'   ? c - 'A'
            : c >= 'a' && c <= 'z' ? c - 'a' + 26
            : c >= '0' && c <= '9' ? c - '0' + 52
            : c == '+'             ? 62
            : c == '/'             ? 63
                                   : -1;
    if (v < 0) {
      if (c == '=' || c == '\r' || c == '\n' || c == ' ' || c == '\t') continue;
      return static_cast<int64_t>(i);
    }
    bits = (bits << 6) | static_cast<uint32_t>(v);
    if (++count == 4) {
      quad[0] = static_cast<char>(bits >> 16);
      quad[1] = static_cast<char>(bits >> 8);
      quad[2] = static_cast<char>(bits);
      if (!out->Append(quad, 3)) return -2;
      bits = 0;
      count = 0;
    }
  }
  if (count == 1) return static_cast<int64_t>(text.size());
  quad[0] = static_cast<char>(bits >> (count == 3 ? 10 : 4));
  quad[1] = static_cast<char>(bits >> 2);
  return count == 0 || out->Append(quad, count - 1) ? -1 : -2;
}

// The boundary named by the Content-Type line of the header block
// `header` (folded lines joined), or "" when there is none.
std::string BoundaryOfHeader(std::string_view header) {
  std::string line;
  auto boundaryOf = [](const std::string& text) -> std::string {
    HeaderValue type;
    if (text.size() < 13 || !EqualNoCase(std::string_view(text).substr(0, 13), "content-type:") ||
        !SplitHeaderValue(std::string_view(text).substr(13), &type))
      return {};
    const std::string* boundary = type.Find("boundary");
    return boundary && EqualNoCase(type.main, "multipart/form-data") ? *boundary : std::string();
  };
  for (size_t at = 0; at < header.size();) {
    size_t end = std::min(header.find(kCrlf, at), header.size());
    std::string_view next = header.substr(at, end - at);
    if (!next.empty() && (next.front() == ' ' || next.front() == '\t')) {
      line += next;
    } else {
      std::string boundary = boundaryOf(line);
      if (!boundary.empty()) return boundary;
      line = next;
    }
    at = end + 2;
  }
  return boundaryOf(line);
}

}  // namespace

// Reads one form from a body (or a whole message) into the form's parts.
class VCUMessageFormParser {
 public:
  VCUMessageFormParser(VCUMessageForm* form, std::string_view text, const char* location)
      : m_form(form), m_text(text), m_location(location) {}

  // Reads the header lines that start at m_at up to and past the empty line.
  // Folded lines are joined; false (reported) when the block has no end or a
  // line has no ':'.
  bool ReadHeaders(std::vector<std::pair<std::string_view, std::string>>* headers) {
    for (;;) {
      size_t end = m_text.find(kCrlf, m_at);
      if (end == std::string_view::npos) return Fail(m_at, "header block not ended");
      if (end == m_at) break;
      std::string_view line = m_text.substr(m_at, end - m_at);
      size_t colon = line.find(':');
      if (line.front() == ' ' || line.front() == '\t') {
        if (headers->empty()) return Fail(m_at, "continuation line first");
        headers->back().second += line;
      } else if (colon == std::string_view::npos || colon == 0) {
        return Fail(m_at, "header line without ':'");
      } else {
        headers->emplace_back(Trim(line.substr(0, colon)), std::string(line.substr(colon + 1)));
      }
      m_at = end + 2;
    }
    m_at += 2;
    return true;
  }

  // Takes the boundary from a Content-Type value.
  bool SetContentType(std::string_view value, size_t position) {
    HeaderValue type;
    const std::string* boundary = nullptr;
    if (!SplitHeaderValue(value, &type) || !EqualNoCase(type.main, "multipart/form-data") ||
        (boundary = type.Find("boundary")) == nullptr || boundary->empty() || boundary->size() > 70)
      return Fail(position, "not multipart/form-data with a boundary");
    m_delimiter = "\r\n--" + *boundary;
    m_form->m_boundary = *boundary;
    return true;
  }

  // Reads the message's header block for its Content-Type, then the body.
  bool ParseMessage() {
    std::vector<std::pair<std::string_view, std::string>> headers;
    if (!ReadHeaders(&headers)) return false;
    for (const auto& [name, value] : headers)
      if (EqualNoCase(name, "content-type")) return SetContentType(value, 0) && ParseBody();
    return Fail(0, "no Content-Type header");
  }

  // Reads the parts of the body that starts at m_at.
  bool ParseBody() {
    std::boyer_moore_horspool_searcher searcher(m_delimiter.begin(), m_delimiter.end());
    std::string_view dash = std::string_view(m_delimiter).substr(2);
    if (m_text.substr(m_at, dash.size()) == dash) {
      m_at += dash.size();
    } else {
      auto found =
          std::search(m_text.begin() + static_cast<ptrdiff_t>(m_at), m_text.end(), searcher);
      if (found == m_text.end()) return Fail(m_at, "no opening boundary");
      m_at = static_cast<size_t>(found - m_text.begin()) + m_delimiter.size();
    }
    for (;;) {                                          // m_at is just past a delimiter
      if (m_text.substr(m_at, 2) == "--") return true;  // the close delimiter; the rest is epilogue
      while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\t')) ++m_at;
      if (m_text.substr(m_at, 2) != kCrlf) return Fail(m_at, "bad boundary line");
      m_at += 2;
      size_t partStart = m_at;
      std::vector<std::pair<std::string_view, std::string>> headers;
      if (!ReadHeaders(&headers)) return false;
      auto found =
          std::search(m_text.begin() + static_cast<ptrdiff_t>(m_at), m_text.end(), searcher);
      if (found == m_text.end()) return Fail(m_at, "part not ended by a boundary");
      size_t end = static_cast<size_t>(found - m_text.begin());
      if (!AddPart(headers, partStart, m_text.substr(m_at, end - m_at))) return false;
      m_at = end + m_delimiter.size();
    }
  }

  size_t ErrorPosition() const { return m_errorAt; }

 private:
  bool AddPart(const std::vector<std::pair<std::string_view, std::string>>& headers,
               size_t position, std::string_view data) {
    auto part = std::make_unique<VCUMessageFormPart>();
    HeaderValue disposition;
    bool hasDisposition = false, base64 = false;
    for (const auto& [name, value] : headers) {
      if (EqualNoCase(name, "content-disposition")) {
        hasDisposition = true;
        if (!SplitHeaderValue(value, &disposition))
          return Fail(position, "bad Content-Disposition");
      } else if (EqualNoCase(name, "content-type")) {
        part->m_contentType = Trim(value);
      } else if (EqualNoCase(name, "content-transfer-encoding")) {
        std::string_view encoding = Trim(value);
        base64 = EqualNoCase(encoding, "base64");
        if (!base64 && !EqualNoCase(encoding, "binary") && !EqualNoCase(encoding, "8bit") &&
            !EqualNoCase(encoding, "7bit"))
          return Fail(position, "unsupported transfer encoding");
      }
    }
    const std::string* name = disposition.Find("name");
    if (!hasDisposition || !EqualNoCase(disposition.main, "form-data") || name == nullptr)
      return Fail(position, "part without a form-data name");
    part->m_name = *name;
    if (const std::string* extended = disposition.Find("filename*")) {
      part->m_fileName = DecodeExtendedValue(*extended);
      part->m_isFile = true;
    } else if (const std::string* fileName = disposition.Find("filename")) {
      part->m_fileName = *fileName;
      part->m_isFile = true;
    }
    if (m_form->GetCount() >= m_form->m_maxParts ||
        m_form->m_bytes + static_cast<int64_t>(data.size()) * (base64 ? 3 : 4) / 4 >
            m_form->m_maxBytes) {
      m_errorAt = position;
      return VFReportError(kSocketErrorMessageTooLong, m_location);
    }
    if (base64) {
      int64_t bad = DecodeBase64(data, &part->m_data);
      if (bad >= 0)
        return Fail(static_cast<size_t>(data.data() - m_text.data() + bad), "bad base64");
      if (bad == -2) return false;
    } else if (!part->m_data.Append(data.data(), static_cast<int32_t>(data.size()))) {
      return false;
    }
    return m_form->AddPart(std::move(part), m_location);
  }

  bool Fail(size_t position, const char* what) {
    m_errorAt = position;
    std::string detail = std::to_string(position) + " (" + what + ")";
    return VFReportError(kSocketErrorMessageForm, m_location, detail.c_str());
  }

  VCUMessageForm* m_form;
  std::string_view m_text;
  const char* m_location;
  std::string m_delimiter;
  size_t m_at = 0;
  size_t m_errorAt = 0;
};

bool VCUMessageForm::Parse(const char* data, int32_t length) {
  Clear();
  m_errorPosition = -1;
  if (data == nullptr || length < 0) length = 0;
  try {
    VCUMessageFormParser parser(this,
                                std::string_view(data ? data : "", static_cast<size_t>(length)),
                                "VCUMessageForm::Parse");
    if (parser.ParseMessage()) return true;
    m_errorPosition = static_cast<int32_t>(parser.ErrorPosition());
  } catch (const std::bad_alloc&) {
    VFReportError(kSocketErrorOutOfMemory, "VCUMessageForm::Parse");
  }
  Clear();
  return false;
}

bool VCUMessageForm::ParseBody(const char* data, int32_t length, const char* contentType) {
  Clear();
  m_errorPosition = -1;
  if (data == nullptr || length < 0) length = 0;
  try {
    VCUMessageFormParser parser(this,
                                std::string_view(data ? data : "", static_cast<size_t>(length)),
                                "VCUMessageForm::ParseBody");
    if (parser.SetContentType(contentType ? contentType : "", 0) && parser.ParseBody()) return true;
    m_errorPosition = static_cast<int32_t>(parser.ErrorPosition());
  } catch (const std::bad_alloc&) {
    VFReportError(kSocketErrorOutOfMemory, "VCUMessageForm::ParseBody");
  }
  Clear();
  return false;
}

bool VCUMessageForm::IsCompleteMessage(const char* data, int32_t length) {
  if (data == nullptr || length <= 0) return false;
  std::string_view text(data, static_cast<size_t>(length));
  while (!text.empty() && std::strchr(" \t\r\n", text.back()) != nullptr) text.remove_suffix(1);
  if (!text.ends_with("--")) return false;  // the cheap test first: most reads end elsewhere
  size_t headerEnd = text.substr(0, kMaxMessageHeader).find("\r\n\r\n");
  if (headerEnd == std::string_view::npos) return false;
  try {
    std::string close = "--" + BoundaryOfHeader(text.substr(0, headerEnd)) + "--";
    if (close.size() == 4 || text.size() < headerEnd + 4 + close.size() ||
        text.substr(text.size() - close.size()) != close)
      return false;
    size_t closeAt = text.size() - close.size();
    return closeAt == headerEnd + 4 || text.substr(closeAt - 2, 2) == kCrlf;
  } catch (const std::bad_alloc&) {
    return false;
  }
}
