#include <utilkit/net/server_comms.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io.h>

#include "net/comms_framing.h"
#include "net/socket_platform.h"

using namespace utilkit::net;
using Clock = std::chrono::steady_clock;

namespace {
constexpr const char* kServe = "VCTCBServerComms::ServeOne";
constexpr int32_t kReadChunk = 65536;
constexpr int32_t kAcceptsPerRound = 64;
constexpr int32_t kBacklog = 128;
#if defined(_WIN32)
constexpr int32_t kMaxWaitConnections = 1023;  // select's 1024 sockets, the listener included
#else
constexpr int32_t kMaxWaitConnections = INT32_MAX;
#endif
}  // namespace

struct VCTCBServerComms::Connection {
  VCUSocketIO io;     // owns the socket
  VCUDataBuffer in;   // received bytes; those before `inStart` are answered
  VCUDataBuffer out;  // the answer being sent; bytes before `outSent` are sent
  int32_t inStart = 0;
  int32_t searched = 0;  // bytes after `inStart` known to hold no 0 byte
  int32_t outSent = 0;
  uint64_t number = 0;
  Clock::time_point last;
  bool closed = false;

  uint64_t Socket() const { return io.GetConnectionId(); }
  bool Sending() const { return outSent < out.GetSize(); }
};

VCTCBServerComms::VCTCBServerComms() : m_started(SocketStartup()) {}

VCTCBServerComms::~VCTCBServerComms() {
  Close();
  if (m_started) SocketCleanup();
}

bool VCTCBServerComms::Start(int32_t port, const char* address) {
  static constexpr const char* kWhere = "VCTCBServerComms::Start";
  Close();
  if (port < 0 || port > 65535) return VFReportError(kSocketErrorCall, kWhere);
  const char* host = address != nullptr && *address != '\0' ? address : nullptr;
  std::vector<SocketAddress> addresses;
  if (const int32_t error = SocketResolve(host, port, true, &addresses); error != 0)
    return VFReportOsError(kSocketErrorUnknownHost, kWhere, error, address);
  int32_t error = 0;
  for (const SocketAddress& candidate : addresses) {
    const uint64_t socket = SocketOpen(candidate.family);
    if (socket == kInvalidSocket) {
      error = SocketLastError();
      continue;
    }
    const int32_t bound =
        SocketBindListen(socket, candidate, kBacklog) && SocketSetNonBlocking(socket, true)
            ? SocketLocalPort(socket)
            : -1;
    if (bound >= 0) {
      m_listener = socket;
      m_port = bound;
      return true;
    }
    error = SocketLastError();
    SocketClose(socket);
  }
  return VFReportOsError(kSocketErrorCall, kWhere, error);
}

void VCTCBServerComms::SetLimits(int32_t maxConnections, int32_t maxMessageSize,
                                 int32_t idleSeconds) {
  if (maxConnections > 0) m_maxConnections = std::min(maxConnections, kMaxWaitConnections);
  if (maxMessageSize > 0) m_maxMessageSize = maxMessageSize;
  if (idleSeconds > 0) m_idleSeconds = idleSeconds;
}

void VCTCBServerComms::Close() {
  m_connections.clear();  // each VCUSocketIO closes its socket
  if (m_listener != 0) SocketClose(m_listener);
  m_listener = 0;
  m_port = 0;
}

bool VCTCBServerComms::HandleRequest(const VCTCBServerRequest& request, VCUDataBuffer* answer) {
  return m_handler ? m_handler(request, answer) : false;
}

void VCTCBServerComms::AcceptClient() {
  for (int32_t i = 0; i < kAcceptsPerRound; ++i) {
    const uint64_t socket = SocketAccept(m_listener);
    if (socket == kInvalidSocket) {  // none left, the client gave up, or out of descriptors
      const int32_t error = SocketLastError();
      if (!SocketErrorWouldBlock(error)) VFReportOsError(kSocketErrorCall, kServe, error);
      return;
    }
    if (GetConnectionCount() >= m_maxConnections) {
      SocketClose(socket);
      VFReportError(kSocketErrorTooManyConnections, kServe,
                    std::to_string(m_maxConnections).c_str());
      continue;
    }
    auto c = std::make_unique<Connection>();
    c->io.SetConnectionId(socket);
    SocketSetNonBlocking(socket, true);
    c->number = m_nextConnection++;
    c->last = Clock::now();
    m_connections.push_back(std::move(c));
  }
}

bool VCTCBServerComms::ReadFrom(Connection* c, int32_t* answered) {
  char chunk[kReadChunk];
  const int32_t n = SocketRecv(c->Socket(), chunk, kReadChunk);
  if (n < 0) {
    const int32_t error = SocketLastError();
    return SocketErrorWouldBlock(error) || VFReportOsError(kSocketErrorRecv, kServe, error);
  }
  if (n == 0) {  // the client closed: a loss only in the middle of a request
    if (c->in.GetSize() > c->inStart) VFReportError(kSocketErrorConnectionLost, kServe);
    return false;
  }
  c->last = Clock::now();
  if (n > m_maxMessageSize - (c->in.GetSize() - c->inStart))
    return VFReportError(kSocketErrorMessageTooLong, kServe);
  return c->in.Append(chunk, n) && AnswerRequests(c, answered);
}

bool VCTCBServerComms::AnswerRequests(Connection* c, int32_t* answered) {
  FramedRequest framed;
  while (!c->Sending() && FindCompleteRequest(c->in.GetBasePtr() + c->inStart,
                                              c->in.GetSize() - c->inStart, c->searched, &framed)) {
    VCTCBServerRequest request;
    request.data = c->in.GetBasePtr() + c->inStart;
    request.length = framed.length;
    request.framing = framed.framing;
    request.connection = c->number;
    c->out.Clear();
    c->outSent = 0;
    try {
      if (!HandleRequest(request, &c->out)) return false;
    } catch (const std::exception&) {
      return false;  // a throwing handler closes its client, not the server
    }
    if (framed.framing == VTCommsFraming::kZeroTerminated && !c->out.Append("", 1)) return false;
    ++*answered;
    c->inStart += framed.consumed;
    c->searched = 0;
    if (!SendPending(c)) return false;
  }
  if (c->inStart == c->in.GetSize()) {
    c->in.Clear();
    c->inStart = 0;
  } else if (c->inStart > 0) {  // keep the start of the next request at the front
    std::string rest(c->in.GetBasePtr() + c->inStart,
                     static_cast<size_t>(c->in.GetSize() - c->inStart));
    c->in.Clear();
    c->inStart = 0;
    if (!c->in.Append(rest.data(), static_cast<int32_t>(rest.size()))) return false;
  }
  c->searched = c->in.GetSize();
  return true;
}

bool VCTCBServerComms::SendPending(Connection* c) {
  while (c->Sending()) {
    const int32_t n =
        SocketSend(c->Socket(), c->out.GetBasePtr() + c->outSent, c->out.GetSize() - c->outSent);
    if (n < 0) {
      const int32_t error = SocketLastError();
      return SocketErrorWouldBlock(error) || VFReportOsError(kSocketErrorSend, kServe, error);
    }
    c->outSent += n;
    c->last = Clock::now();
  }
  return true;
}

int32_t VCTCBServerComms::ServeOne(int32_t timeoutMs) {
  if (m_listener == 0) {
    VFReportError(kSocketErrorNoConnection, kServe);
    return -1;
  }
  const Clock::time_point now = Clock::now();
  const auto idle = std::chrono::seconds(m_idleSeconds);
  int64_t waitMs = std::max(timeoutMs, 0);
  std::vector<SocketWaitEntry> entries;
  try {
    entries.reserve(m_connections.size() + 1);
    entries.push_back({m_listener, false, false});
    for (const auto& c : m_connections) {
      entries.push_back({c->Socket(), c->Sending(), false});
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(c->last + idle - now);
      waitMs = std::clamp<int64_t>(left.count() + 1, 0, waitMs);
    }
  } catch (const std::bad_alloc&) {
    VFReportError(kSocketErrorOutOfMemory, kServe);
    return -1;
  }
  const int ready = SocketWaitMany(entries.data(), static_cast<int>(entries.size()),
                                   static_cast<int32_t>(waitMs));
  if (ready < 0) {
    VFReportOsError(kSocketErrorSelect, kServe, SocketLastError());
    return -1;
  }
  int32_t answered = 0;
  for (size_t i = 1; i < entries.size(); ++i) {
    Connection* c = m_connections[i - 1].get();
    if (!entries[i].ready) continue;
    bool keep = entries[i].forWrite
                    ? SendPending(c) && (c->Sending() || AnswerRequests(c, &answered))
                    : ReadFrom(c, &answered);
    c->closed = !keep;
  }
  if (entries[0].ready) AcceptClient();
  const Clock::time_point after = Clock::now();
  for (auto& c : m_connections) {
    if (!c->closed && after - c->last >= idle) {
      VFReportError(kSocketErrorIdle, kServe, std::to_string(m_idleSeconds).c_str());
      c->closed = true;
    }
  }
  std::erase_if(m_connections, [](const auto& c) { return c->closed; });
  return answered;
}

int64_t VCTCBServerComms::ServeFor(int32_t timeMs) {
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(std::max(timeMs, 0));
  m_stopped = false;
  int64_t answered = 0;
  for (bool first = true;; first = false) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    if (!first && left.count() <= 0) break;
    const int32_t n = ServeOne(static_cast<int32_t>(std::max<int64_t>(left.count(), 0)));
    if (n < 0) return first ? -1 : answered;
    answered += n;
    if (m_stopped) break;
  }
  return answered;
}
