#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_text_io.h>

#include <cstring>
#include <exception>

namespace {

constexpr int64_t kChunkSize = 64 * 1024;

}  // namespace

bool VCTextIo::Open(const char* path, int32_t mode) {
  m_buffer.clear();
  m_bufferUsed = 0;
  m_readOffset = 0;
  return m_file.Open(path, mode);
}

bool VCTextIo::WriteString(const char* text) {
  const char* line = text ? text : "";
  return m_file.Write(line, static_cast<int64_t>(std::strlen(line))) && m_file.Write("\n", 1);
}

bool VCTextIo::Refill(bool* failed) {
  m_buffer.resize(kChunkSize);
  int64_t got = 0;
  *failed = !m_file.Read(m_buffer.data(), kChunkSize, m_readOffset, &got);
  m_buffer.resize(static_cast<size_t>(got));
  m_bufferUsed = 0;
  m_readOffset += got;
  return got > 0;
}

bool VCTextIo::ReadLine(VCString* line) {
  std::string& text = line->str();
  text.clear();
  bool any = false;
  bool failed = false;
  try {
    for (;;) {
      if (m_bufferUsed == m_buffer.size() && !Refill(&failed)) break;
      any = true;
      const size_t start = m_bufferUsed;
      const size_t newline = m_buffer.find('\n', start);
      const size_t end = newline == std::string::npos ? m_buffer.size() : newline;
      text.append(m_buffer, start, end - start);
      m_bufferUsed = newline == std::string::npos ? end : end + 1;
      if (newline != std::string::npos) break;
    }
  } catch (const std::exception&) {
    VFErrorSet(kErrorOutOfMemory, VCString("Out of memory reading file: ") + m_file.GetPath(),
               "VCTextIo::ReadLine", 0);
    return false;
  }
  if (!text.empty() && text.back() == '\r') text.pop_back();
  return any && !failed;
}

bool VCTextIo::Close() {
  m_buffer.clear();
  m_bufferUsed = 0;
  return m_file.Close();
}
