#include <utilkit/net/client_socket.h>

#include <chrono>
#include <string>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io.h>

#include "net/socket_platform.h"

using namespace utilkit::net;

namespace {

constexpr const char* kWhere = "VCUClientSocket::Connect";

enum class Outcome { kConnected, kRefused, kTimeout, kFailed };

// One connection attempt to one address until `deadline`; `*error` is the
// system's error number of a failure.
Outcome TryAddress(const SocketAddress& address, std::chrono::steady_clock::time_point deadline,
                   uint64_t* socket, int32_t* error) {
  *socket = SocketOpen(address.family);
  if (*socket == kInvalidSocket) {
    *error = SocketLastError();
    return Outcome::kFailed;
  }
  Outcome outcome = Outcome::kConnected;
  if (!SocketSetNonBlocking(*socket, true)) {
    *error = SocketLastError();
    outcome = Outcome::kFailed;
  } else if (const ConnectStart start = SocketConnectStart(*socket, address);
             start == ConnectStart::kFailed) {
    *error = SocketLastError();
    outcome = SocketErrorIsRefused(*error) ? Outcome::kRefused : Outcome::kFailed;
  } else if (start == ConnectStart::kPending) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    SocketWaitEntry entry{*socket, true, false};
    const int ready =
        SocketWaitMany(&entry, 1, left.count() > 0 ? static_cast<int32_t>(left.count()) : 0);
    if (ready < 0) {
      *error = SocketLastError();
      outcome = Outcome::kFailed;
    } else if (ready == 0) {
      outcome = Outcome::kTimeout;
    } else if ((*error = SocketPendingError(*socket)) != 0) {
      outcome = SocketErrorIsRefused(*error) ? Outcome::kRefused : Outcome::kFailed;
    }
  }
  if (outcome == Outcome::kConnected) SocketSetNonBlocking(*socket, false);  // as accepted ones
  if (outcome != Outcome::kConnected) SocketClose(*socket);
  return outcome;
}

}  // namespace

VCUClientSocket::VCUClientSocket() : m_started(SocketStartup() ? 1 : 0) {}

VCUClientSocket::~VCUClientSocket() {
  if (m_started) SocketCleanup();
}

char VCUClientSocket::Connect(const char* host, int port, int timeoutSeconds, VCUSocketIO* io) {
  if (port < 1 || port > 65535) return VFReportError(kSocketErrorCall, kWhere);
  const std::string name = std::string(host ? host : "") + ":" + std::to_string(port);
  std::vector<SocketAddress> addresses;
  if (const int32_t error = SocketResolve(host, port, false, &addresses); error != 0) {
    // The resolver's numbers are not the system's: its text goes with the name.
    const std::string what =
        std::string(host ? host : "") + " (" + SocketResolveErrorText(error) + ")";
    return VFReportError(kSocketErrorUnknownHost, kWhere, what.c_str());
  }
  constexpr int kDay = 86400;
  const int seconds = timeoutSeconds < 0 ? 0 : (timeoutSeconds > kDay ? kDay : timeoutSeconds);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  Outcome worst = Outcome::kFailed;
  int32_t failure = 0;
  for (const SocketAddress& address : addresses) {
    uint64_t socket = 0;
    int32_t error = 0;
    const Outcome outcome = TryAddress(address, deadline, &socket, &error);
    if (outcome == Outcome::kConnected) {
      VCUSocketIO holder;
      holder.SetConnectionId(socket);
      io->SetNewConnection(holder);
      return 1;
    }
    // A refusal or time limit says more than another failure of another address.
    if (outcome != Outcome::kFailed || worst == Outcome::kFailed) {
      worst = outcome;
      failure = error;
    }
    if (outcome == Outcome::kTimeout) break;
  }
  if (worst == Outcome::kRefused) {
    return VFReportOsError(kSocketErrorRefused, kWhere, failure, name.c_str());
  }
  if (worst == Outcome::kTimeout)
    return VFReportError(kSocketErrorConnectTimeout, kWhere, name.c_str());
  return VFReportOsError(kSocketErrorCall, kWhere, failure);
}
