#include <utilkit/xml/data_buffer.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <utilkit/base/error_report.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/xml/xml_errors.h>

namespace {
constexpr int32_t kFirstIncrement = 4096;
constexpr int32_t kMaxIncrement = 500000;
constexpr int64_t kMaxSize = std::numeric_limits<int32_t>::max();
}  // namespace

VCUDataBuffer::VCUDataBuffer() {
  Init();
}

VCUDataBuffer::VCUDataBuffer(int32_t size) {
  Init();
  SetAllocSize(size);
}

VCUDataBuffer::VCUDataBuffer(const VCUDataBuffer& other) {
  Init();
  Append(other.m_data, other.m_used);
}

VCUDataBuffer& VCUDataBuffer::operator=(const VCUDataBuffer& other) {
  if (this != &other) {
    Clear();
    Append(other.m_data, other.m_used);
  }
  return *this;
}

VCUDataBuffer::~VCUDataBuffer() {
  std::free(m_data);
}

void VCUDataBuffer::Init() {
  m_increment = kFirstIncrement;
  SetAllocSize(1);
  m_used = 0;
  m_data[0] = 0;
}

bool VCUDataBuffer::SetAllocSize(int32_t size) {
  if (size <= m_allocated) return true;
  if (size > 2 * int64_t{m_increment} && m_increment < kMaxIncrement) {
    m_increment = std::min(size / 2, kMaxIncrement);
  }
  const int64_t rounded = (int64_t{size} / m_increment + 1) * m_increment;
  m_allocated = static_cast<int32_t>(std::min(rounded, kMaxSize));
  // The size and the pointer are stored before the test: a failed realloc
  // loses the old block (see the header).
  m_data = static_cast<char*>(std::realloc(m_data, static_cast<size_t>(m_allocated)));
  if (!m_data) {
    VFReportError(kXmlErrorOutOfMemory, "VCUDataBuffer::SetAllocSize");
    return false;
  }
  return true;
}

bool VCUDataBuffer::AppendWithGrowth(const char* data, int32_t length) {
  if (!data) return true;
  if (length < 0) length = static_cast<int32_t>(std::min<size_t>(std::strlen(data), kMaxSize));
  if (length < 1) return true;
  if (int64_t{m_used} + length + 1 > kMaxSize) {
    VFReportError(kXmlErrorOutOfMemory, "VCUDataBuffer::Append");
    return false;
  }
  // Appending a part of this buffer to itself: find the bytes again after growth.
  const uintptr_t offset = reinterpret_cast<uintptr_t>(data) - reinterpret_cast<uintptr_t>(m_data);
  const bool inside = m_data && offset < static_cast<uintptr_t>(m_allocated);
  if (m_used + length + 1 > m_allocated) {
    if (!SetAllocSize(m_used + length + 1)) return false;
    if (inside) data = m_data + offset;
  }
  std::memcpy(m_data + m_used, data, static_cast<size_t>(length));
  m_used += length;
  m_data[m_used] = 0;
  return true;
}

void VCUDataBuffer::Clear() {
  SetAllocSize(1);
  m_used = 0;
  m_data[0] = 0;
}

void VCUDataBuffer::Truncate(int32_t n) {
  if (n >= 1 && n < m_used) {
    m_used = n;
    m_data[n] = 0;
  }
}

void VCUDataBuffer::RemoveWhitespace() {
  if (m_used < 1) return;
  int32_t kept = 0;
  for (int32_t i = 0; i < m_used && m_data[i] != 0; ++i) {
    if (!std::isspace(static_cast<unsigned char>(m_data[i]))) m_data[kept++] = m_data[i];
  }
  m_used = kept;
  m_data[kept] = 0;
}
