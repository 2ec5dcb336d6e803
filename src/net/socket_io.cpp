#include <utilkit/net/socket_io.h>

#include <cctype>
#include <cstring>

#include <utilkit/base/error_report.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/xml/data_buffer.h>

#include "net/socket_platform.h"

using namespace utilkit::net;

namespace {

constexpr int32_t kSocketBufferSize = 1048576;
constexpr int32_t kFallbackChunkSize = 512;

}  // namespace

VCUSocketIO::VCUSocketIO() : m_started(SocketStartup() ? 1 : 0) {}

VCUSocketIO::VCUSocketIO(const VCUSocketIO& other)
    : m_started(SocketStartup() ? 1 : 0), m_maxMessageSize(other.m_maxMessageSize) {}

VCUSocketIO& VCUSocketIO::operator=(const VCUSocketIO& other) {
  m_maxMessageSize = other.m_maxMessageSize;
  return *this;
}

VCUSocketIO::~VCUSocketIO() {
  if (m_connectionId != 0) SocketClose(m_connectionId);
  if (m_started) SocketCleanup();
}

char VCUSocketIO::IsConnectionOpen() const {
  return m_connectionId != 0;
}

char VCUSocketIO::CheckConnectionId(uint64_t id) {
  if (id != kInvalidSocket) return 1;
  return VFReportError(kSocketErrorCall, "VCUSocketIO::CheckConnectionId");
}

char VCUSocketIO::SetConnectionId(uint64_t id) {
  if (!CheckConnectionId(id)) return 0;
  m_connectionId = id;
  if (id == 0) return 1;
  SocketPrepareSends(id);  // without it a send may outlast its time limit
  if (SocketSetBufferSize(id, true, kSocketBufferSize)) {
    SocketSetBufferSize(id, false, kSocketBufferSize);
  }
  return 1;
}

void VCUSocketIO::SetNewConnection(VCUSocketIO& from) {
  if (&from == this) return;
  if (m_connectionId != 0 && !SocketClose(m_connectionId)) {
    SetSocketError(kSocketErrorClose, "VCUSocketIO::CloseConnection");
  }
  m_connectionId = from.m_connectionId;
  m_chunkSize = from.m_chunkSize;
  m_started = from.m_started;
  from.m_connectionId = 0;
}

int VCUSocketIO::CloseConnection() {
  if (m_connectionId == 0) return 1;
  const bool closed = SocketClose(m_connectionId);
  m_connectionId = 0;
  if (closed) return 1;
  SetSocketError(kSocketErrorClose, "VCUSocketIO::CloseConnection");
  return 0;
}

int VCUSocketIO::PutRawData(const char* data, int length, int timeoutSeconds, int* sent) {
  static constexpr const char* kWhere = "VCUSocketIO::PutRawData";
  *sent = 0;
  if (m_connectionId == 0 || !m_started) return VFReportError(kSocketErrorNoConnection, kWhere);
  if (m_chunkSize == 0 && !SocketGetSendBufferSize(m_connectionId, &m_chunkSize)) {
    m_chunkSize = kFallbackChunkSize;
  }
  if (m_chunkSize <= 0) m_chunkSize = kFallbackChunkSize;
  while (*sent < length) {
    const int ready = SocketWait(m_connectionId, true, timeoutSeconds);
    if (ready < 0) {
      SetSocketError(kSocketErrorSelect, kWhere);
      return 0;
    }
    if (ready == 0) return VFReportError(kSocketErrorWriteTimeout, kWhere);
    const int piece = length - *sent < m_chunkSize ? length - *sent : m_chunkSize;
    const int32_t n = SocketSend(m_connectionId, data + *sent, piece);
    if (n < 0) {
      if (SocketErrorWouldBlock(SocketLastError()))
        continue;  // less room than the piece: wait again
      SetSocketError(kSocketErrorSend, kWhere);
      return 0;
    }
    *sent += n;
  }
  return 1;
}

int VCUSocketIO::GetRawData(char* buffer, int size, int* received, int timeoutSeconds,
                            char* timedOut) {
  static constexpr const char* kWhere = "VCUSocketIO::GetRawData";
  *received = 0;
  *timedOut = 0;
  if (m_connectionId == 0 || !m_started) return VFReportError(kSocketErrorNoConnection, kWhere);
  const int ready = SocketWait(m_connectionId, false, timeoutSeconds);
  if (ready < 0) {
    SetSocketError(kSocketErrorSelect, kWhere);
    return 0;
  }
  if (ready == 0) {
    *timedOut = 1;
    return 1;
  }
  const int32_t n = SocketRecv(m_connectionId, buffer, size);
  if (n < 0) {
    SetSocketError(kSocketErrorRecv, kWhere);
    return 0;
  }
  if (n == 0) {
    CloseConnection();
    return VFReportError(kSocketErrorConnectionLost, kWhere);
  }
  *received = n;
  return 1;
}

void VCUSocketIO::SetMaxMessageSize(int32_t bytes) {
  m_maxMessageSize = bytes > 0 ? bytes : kDefaultMaxMessageSize;
}

char VCUSocketIO::CheckBufferEndForText(const char* buffer, int length, const char* text) {
  const int textLength = static_cast<int>(std::strlen(text));
  if (textLength == 0) return buffer[length] == 0;
  if (length < textLength) return 0;
  int end = length;
  while (end > 0 && std::isspace(static_cast<unsigned char>(buffer[end - 1]))) --end;
  if (end < textLength) return 0;
  return std::memcmp(buffer + end - textLength, text, static_cast<size_t>(textLength)) == 0;
}

void VCUSocketIO::SetSocketError(int code, const char* location) {
  const int32_t error = SocketLastError();
  const VCTextTable* texts = VFGetUtilKitText();
  try {
    const VCString message = VCString::Formatted("%s\n%s : %d", VFTextGet(texts, code),
                                                 VFTextGet(texts, kSocketErrorCodeLabel), error);
    VFErrorSet(code, message, location, 0);
  } catch (...) {
    VFErrorSet(code, VFTextGet(texts, code), location,
               0);  // no memory for the layout: keep the code
  }
  VFErrorSetOpSysCode(error);
}

bool VCUSocketIO::CheckMessageLimit(VCUDataBuffer* out, int length, const char* location) {
  if (length > m_maxMessageSize - out->GetSize()) {
    out->Clear();
    CloseConnection();
    return VFReportError(kSocketErrorMessageTooLong, location);
  }
  return true;
}
