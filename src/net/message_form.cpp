#include <utilkit/net/message_form.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <new>
#include <string_view>

#include <utilkit/base/error_report.h>
#include <utilkit/net/net_errors.h>

namespace {

constexpr const char* kHexDigits = "0123456789abcdef";
constexpr int32_t kMaxBoundaryTries = 64;

// True when `text` (length taken) holds no CR, LF or NUL byte before its end.
bool IsSingleLine(const char* text) {
  return text == nullptr || std::strpbrk(text, "\r\n") == nullptr;
}

// RFC 2046's boundary characters (bcharsnospace plus an inner space).
bool IsBoundaryChar(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         std::strchr("'()+_,-./:=? ", c) != nullptr;
}

// Appends `text` as a quoted string, escaping '"' and '\'.
void AppendQuoted(std::string* out, const VCString& text) {
  out->push_back('"');
  for (char c : text.view()) {
    if (c == '"' || c == '\\') out->push_back('\\');
    out->push_back(c);
  }
  out->push_back('"');
}

// A fresh random boundary candidate: a fixed prefix and 32 hex digits.
VCString RandomBoundary() {
  static std::atomic<uint64_t> counter{0};
  uint64_t seed =
      static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
      (counter.fetch_add(1) * 0x9E3779B97F4A7C15ull);
  std::string text = "utilkit-form-";
  for (int i = 0; i < 2; ++i) {  // splitmix64: two 64-bit words
    seed += 0x9E3779B97F4A7C15ull;
    uint64_t z = seed;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    z ^= z >> 31;
    for (int d = 0; d < 16; ++d) text.push_back(kHexDigits[(z >> (4 * d)) & 15]);
  }
  return VCString(std::move(text));
}

}  // namespace

VCUMessageForm::VCUMessageForm() = default;
VCUMessageForm::~VCUMessageForm() = default;

bool VCUMessageForm::AddText(const char* name, const char* value, int32_t length) {
  static const char* const kLocation = "VCUMessageForm::AddText";
  if (name == nullptr || !IsSingleLine(name))
    return VFReportError(kSocketErrorMessageForm, kLocation, "0 (part name)");
  if (value == nullptr) value = "";
  if (length < 0) length = static_cast<int32_t>(std::strlen(value));
  try {
    auto part = std::make_unique<VCUMessageFormPart>();
    part->m_name = name;
    if (!part->m_data.Append(value, length)) return false;
    return AddPart(std::move(part), kLocation);
  } catch (const std::bad_alloc&) {
    return VFReportError(kSocketErrorOutOfMemory, kLocation);
  }
}

bool VCUMessageForm::AddFile(const char* name, const char* fileName, const char* contentType,
                             const char* data, int32_t length) {
  static const char* const kLocation = "VCUMessageForm::AddFile";
  if (name == nullptr || !IsSingleLine(name) || !IsSingleLine(fileName) ||
      !IsSingleLine(contentType) || length < 0 || (data == nullptr && length > 0))
    return VFReportError(kSocketErrorMessageForm, kLocation, "0 (part header)");
  try {
    auto part = std::make_unique<VCUMessageFormPart>();
    part->m_name = name;
    part->m_fileName = fileName ? fileName : "";
    part->m_contentType = contentType && *contentType ? contentType : "application/octet-stream";
    part->m_isFile = true;
    if (!part->m_data.Append(data, length)) return false;
    return AddPart(std::move(part), kLocation);
  } catch (const std::bad_alloc&) {
    return VFReportError(kSocketErrorOutOfMemory, kLocation);
  }
}

bool VCUMessageForm::AddPart(std::unique_ptr<VCUMessageFormPart> part, const char* location) {
  if (GetCount() >= m_maxParts || m_bytes + part->GetSize() > m_maxBytes)
    return VFReportError(kSocketErrorMessageTooLong, location);
  m_parts.push_back(std::move(part));
  m_bytes += m_parts.back()->GetSize();
  DropIndex();
  return true;
}

const VCUMessageFormPart* VCUMessageForm::GetPart(int32_t index) const {
  return index >= 0 && index < GetCount() ? m_parts[static_cast<size_t>(index)].get() : nullptr;
}

int32_t VCUMessageForm::FindPart(const char* name, int32_t start) const {
  if (name == nullptr) return -1;
  try {
    if (m_index.empty())
      for (int32_t i = 0; i < GetCount(); ++i)
        m_index[m_parts[static_cast<size_t>(i)]->m_name].push_back(i);
    auto found = m_index.find(VCString(name));
    if (found == m_index.end()) return -1;
    auto at = std::lower_bound(found->second.begin(), found->second.end(), start);
    return at == found->second.end() ? -1 : *at;
  } catch (const std::bad_alloc&) {  // no memory for the index: walk the parts
    m_index.clear();
    for (int32_t i = std::max(start, 0); i < GetCount(); ++i)
      if (m_parts[static_cast<size_t>(i)]->m_name == name) return i;
    return -1;
  }
}

const char* VCUMessageForm::GetText(const char* name) const {
  const VCUMessageFormPart* part = GetPart(FindPart(name));
  return part ? part->GetData() : nullptr;
}

bool VCUMessageForm::RemovePart(int32_t index) {
  if (GetPart(index) == nullptr) return false;
  m_bytes -= m_parts[static_cast<size_t>(index)]->GetSize();
  m_parts.erase(m_parts.begin() + index);
  DropIndex();
  return true;
}

void VCUMessageForm::Clear() {
  m_parts.clear();
  m_bytes = 0;
  DropIndex();
}

void VCUMessageForm::SetLimits(int32_t maxParts, int64_t maxBytes) {
  if (maxParts > 0) m_maxParts = maxParts;
  if (maxBytes > 0) m_maxBytes = maxBytes;
}

bool VCUMessageForm::SetBoundary(const char* boundary) {
  size_t length = boundary ? std::strlen(boundary) : 0;
  if (length < 1 || length > 70 || boundary[length - 1] == ' ' ||
      !std::all_of(boundary, boundary + length, IsBoundaryChar))
    return VFReportError(kSocketErrorMessageForm, "VCUMessageForm::SetBoundary", "0 (boundary)");
  m_preferredBoundary = boundary;
  return true;
}

VCString VCUMessageForm::ChooseBoundary() const {
  VCString candidate = m_preferredBoundary.IsEmpty() ? RandomBoundary() : m_preferredBoundary;
  for (int32_t attempt = 0; attempt < kMaxBoundaryTries; ++attempt) {
    std::boyer_moore_horspool_searcher searcher(candidate.view().begin(), candidate.view().end());
    bool clash = std::any_of(m_parts.begin(), m_parts.end(), [&](const auto& part) {
      const char* begin = part->GetData();
      const char* end = begin + part->GetSize();
      return std::search(begin, end, searcher) != end;
    });
    if (!clash) return candidate;
    candidate = RandomBoundary();
  }
  return candidate;  // 64 random 128-bit candidates all occurring: not reachable in practice
}

bool VCUMessageForm::AppendBody(VCUDataBuffer* out) const {
  int64_t total = out->GetSize() + m_bytes + 8 + m_boundary.GetLength();
  for (const auto& part : m_parts)
    total += 100 + m_boundary.GetLength() + part->m_name.GetLength() +
             part->m_fileName.GetLength() + part->m_contentType.GetLength();
  if (total < INT32_MAX && !out->SetAllocSize(static_cast<int32_t>(total))) return false;
  std::string header;
  for (const auto& part : m_parts) {
    header = "--";
    header += m_boundary.view();
    header += "\r\nContent-Disposition: form-data; name=";
    AppendQuoted(&header, part->m_name);
    if (part->m_isFile) {
      header += "; filename=";
      AppendQuoted(&header, part->m_fileName);
    }
    if (!part->m_contentType.IsEmpty()) {
      header += "\r\nContent-Type: ";
      header += part->m_contentType.view();
    }
    header += "\r\n\r\n";
    if (!out->Append(header.data(), static_cast<int32_t>(header.size())) ||
        !out->Append(part->GetData(), part->GetSize()) || !out->Append("\r\n", 2))
      return false;
  }
  header = "--" + m_boundary.str() + "--\r\n";
  return out->Append(header.data(), static_cast<int32_t>(header.size()));
}

bool VCUMessageForm::WriteBody(VCUDataBuffer* out, VCString* contentType) const {
  try {
    m_boundary = ChooseBoundary();
    if (contentType) *contentType = "multipart/form-data; boundary=\"" + m_boundary.str() + "\"";
    return AppendBody(out);
  } catch (const std::bad_alloc&) {
    return VFReportError(kSocketErrorOutOfMemory, "VCUMessageForm::WriteBody");
  }
}

bool VCUMessageForm::Write(VCUDataBuffer* out) const {
  try {
    m_boundary = ChooseBoundary();
    std::string header = "Content-Type: multipart/form-data; boundary=\"" + m_boundary.str() +
                         "\"\r\nMIME-Version: 1.0\r\n\r\n";
    return out->Append(header.data(), static_cast<int32_t>(header.size())) && AppendBody(out);
  } catch (const std::bad_alloc&) {
    return VFReportError(kSocketErrorOutOfMemory, "VCUMessageForm::Write");
  }
}
