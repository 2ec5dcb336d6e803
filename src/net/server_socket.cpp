#include <utilkit/net/server_socket.h>

#include <new>
#include <string>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io.h>

#include "net/socket_platform.h"

using namespace utilkit::net;

VCUServerSocket::VCUServerSocket() : m_started(SocketStartup() ? 1 : 0) {}

VCUServerSocket::~VCUServerSocket() {
  Close();
  if (m_started) SocketCleanup();
}

char VCUServerSocket::Listen(int port, const char* address, int backlog) {
  static constexpr const char* kWhere = "VCUServerSocket::Listen";
  Close();
  if (port < 0 || port > 65535) return VFReportError(kSocketErrorCall, kWhere);
  const char* host = address != nullptr && *address != '\0' ? address : nullptr;
  std::vector<SocketAddress> addresses;
  if (const int32_t error = SocketResolve(host, port, true, &addresses); error != 0) {
    // The resolver's numbers are not the system's: its text goes with the name.
    const std::string what =
        std::string(host ? host : "") + " (" + SocketResolveErrorText(error) + ")";
    return VFReportError(kSocketErrorUnknownHost, kWhere, what.c_str());
  }
  int32_t error = 0;
  for (const SocketAddress& candidate : addresses) {
    const uint64_t socket = SocketOpen(candidate.family);
    if (socket == kInvalidSocket) {
      error = SocketLastError();
      continue;
    }
    if (SocketBindListen(socket, candidate, backlog > 0 ? backlog : 1)) {
      const int32_t bound = SocketLocalPort(socket);
      if (bound >= 0) {
        try {
          const std::string text = SocketAddressText(candidate);
          m_address = (text.substr(0, text.rfind(':') + 1) + std::to_string(bound)).c_str();
        } catch (const std::bad_alloc&) {
          m_address = "";  // the messages then lack the address
        }
        m_socket = socket;
        m_port = bound;
        return 1;
      }
    }
    error = SocketLastError();
    SocketClose(socket);
  }
  return VFReportOsError(kSocketErrorCall, kWhere, error);
}

char VCUServerSocket::Accept(int timeoutSeconds, VCUSocketIO* io) {
  static constexpr const char* kWhere = "VCUServerSocket::Accept";
  if (m_socket == 0) return VFReportError(kSocketErrorNoConnection, kWhere);
  const int ready = SocketWait(m_socket, false, timeoutSeconds);
  if (ready < 0) return VFReportOsError(kSocketErrorSelect, kWhere, SocketLastError());
  if (ready == 0) return VFReportError(kSocketErrorConnectTimeout, kWhere, m_address.c_str());
  const uint64_t socket = SocketAccept(m_socket);
  if (socket == kInvalidSocket) return VFReportOsError(kSocketErrorCall, kWhere, SocketLastError());
  VCUSocketIO holder;
  holder.SetConnectionId(socket);
  io->SetNewConnection(holder);
  return 1;
}

void VCUServerSocket::Close() {
  if (m_socket != 0) SocketClose(m_socket);
  m_socket = 0;
  m_port = 0;
}
