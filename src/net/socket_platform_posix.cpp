// BSD sockets behind socket_platform.h (Linux and other POSIX systems).
#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <new>

#include "net/socket_platform.h"

namespace utilkit::net {
namespace {

int Fd(uint64_t socket) {
  return static_cast<int>(socket);
}

// Moves a socket off descriptor 0 (which means "no connection" to the library).
uint64_t OffZero(int fd) {
  if (fd != 0) return static_cast<uint64_t>(fd);
  const int moved = fcntl(0, F_DUPFD_CLOEXEC, 1);
  const int saved = errno;
  close(0);
  errno = saved;
  return moved < 0 ? kInvalidSocket : static_cast<uint64_t>(moved);
}

}  // namespace

bool SocketStartup() {
  return true;
}
void SocketCleanup() {}
int32_t SocketLastError() {
  return errno;
}
bool SocketClose(uint64_t socket) {
  return close(Fd(socket)) == 0;
}

int SocketWaitMany(SocketWaitEntry* entries, int count, int32_t timeoutMs) {
  std::vector<pollfd> fds;
  try {
    fds.resize(static_cast<size_t>(count > 0 ? count : 0));
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return -1;
  }
  for (int i = 0; i < count; ++i) {
    fds[i] = {Fd(entries[i].socket), static_cast<short>(entries[i].forWrite ? POLLOUT : POLLIN), 0};
    entries[i].ready = false;
  }
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs > 0 ? timeoutMs : 0);
  int left = timeoutMs > 0 ? timeoutMs : 0;
  for (;;) {
    const int rc = poll(fds.data(), static_cast<nfds_t>(fds.size()), left);
    if (rc >= 0) {
      // Errors and hang-ups count as ready: the next call reports them.
      for (int i = 0; i < count; ++i) entries[i].ready = fds[i].revents != 0;
      return rc;
    }
    if (errno != EINTR) return -1;
    const auto now = std::chrono::steady_clock::now();
    left = now >= deadline
               ? 0
               : static_cast<int>(
                     std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count());
  }
}

int SocketWait(uint64_t socket, bool forWrite, int32_t timeoutSeconds) {
  constexpr int32_t kDay = 86400;
  const int32_t seconds = timeoutSeconds < 0 ? 0 : (timeoutSeconds > kDay ? kDay : timeoutSeconds);
  SocketWaitEntry entry{socket, forWrite, false};
  return SocketWaitMany(&entry, 1, seconds * 1000);
}

bool SocketPrepareSends(uint64_t socket) {
  return true;
}

int32_t SocketSend(uint64_t socket, const char* data, int32_t length) {
  ssize_t n;
  do {
    n = send(Fd(socket), data, static_cast<size_t>(length), MSG_NOSIGNAL | MSG_DONTWAIT);
  } while (n < 0 && errno == EINTR);
  return static_cast<int32_t>(n);
}

int32_t SocketRecv(uint64_t socket, char* buffer, int32_t size) {
  ssize_t n;
  do {
    n = recv(Fd(socket), buffer, static_cast<size_t>(size), 0);
  } while (n < 0 && errno == EINTR);
  return static_cast<int32_t>(n);
}

bool SocketGetSendBufferSize(uint64_t socket, int32_t* size) {
  int value = 0;
  socklen_t length = sizeof value;
  if (getsockopt(Fd(socket), SOL_SOCKET, SO_SNDBUF, &value, &length) != 0) return false;
  *size = value;
  return true;
}

bool SocketSetBufferSize(uint64_t socket, bool forSend, int32_t size) {
  const int value = size;
  return setsockopt(Fd(socket), SOL_SOCKET, forSend ? SO_SNDBUF : SO_RCVBUF, &value,
                    sizeof value) == 0;
}

bool SocketSetNonBlocking(uint64_t socket, bool on) {
  const int flags = fcntl(Fd(socket), F_GETFL);
  if (flags < 0) return false;
  return fcntl(Fd(socket), F_SETFL, on ? (flags | O_NONBLOCK) : (flags & ~O_NONBLOCK)) == 0;
}

int32_t SocketResolve(const char* host, int32_t port, bool passive,
                      std::vector<SocketAddress>* out) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV | (passive ? AI_PASSIVE : 0);
  char service[16];
  std::snprintf(service, sizeof service, "%d", static_cast<int>(port));
  addrinfo* list = nullptr;
  const int rc = getaddrinfo(host, service, &hints, &list);
  if (rc != 0) return rc;
  try {
    for (const addrinfo* a = list; a != nullptr; a = a->ai_next) {
      if (a->ai_addrlen > sizeof(SocketAddress::bytes)) continue;
      SocketAddress address;
      std::memcpy(address.bytes, a->ai_addr, a->ai_addrlen);
      address.length = static_cast<int32_t>(a->ai_addrlen);
      address.family = a->ai_family;
      out->push_back(address);
    }
  } catch (const std::bad_alloc&) {
    freeaddrinfo(list);
    return EAI_MEMORY;
  }
  freeaddrinfo(list);
  return 0;
}

std::string SocketResolveErrorText(int32_t error) {
  return gai_strerror(error);
}

std::string SocketAddressText(const SocketAddress& address) {
  char host[NI_MAXHOST] = "";
  char port[NI_MAXSERV] = "";
  getnameinfo(reinterpret_cast<const sockaddr*>(address.bytes),
              static_cast<socklen_t>(address.length), host, sizeof host, port, sizeof port,
              NI_NUMERICHOST | NI_NUMERICSERV);
  std::string text;
  if (address.family == AF_INET6) text += '[';
  text += host;
  if (address.family == AF_INET6) text += ']';
  text += ':';
  text += port;
  return text;
}

uint64_t SocketOpen(int32_t family) {
  const int fd = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  return fd < 0 ? kInvalidSocket : OffZero(fd);
}

ConnectStart SocketConnectStart(uint64_t socket, const SocketAddress& address) {
  if (connect(Fd(socket), reinterpret_cast<const sockaddr*>(address.bytes),
              static_cast<socklen_t>(address.length)) == 0) {
    return ConnectStart::kConnected;
  }
  return errno == EINPROGRESS || errno == EINTR ? ConnectStart::kPending : ConnectStart::kFailed;
}

int32_t SocketPendingError(uint64_t socket) {
  int value = 0;
  socklen_t length = sizeof value;
  if (getsockopt(Fd(socket), SOL_SOCKET, SO_ERROR, &value, &length) != 0) return -1;
  return value;
}

bool SocketErrorIsRefused(int32_t error) {
  return error == ECONNREFUSED;
}
bool SocketErrorWouldBlock(int32_t error) {
  return error == EAGAIN || error == EWOULDBLOCK;
}

bool SocketBindListen(uint64_t socket, const SocketAddress& address, int32_t backlog) {
  const int on = 1;
  const int off = 0;
  setsockopt(Fd(socket), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (address.family == AF_INET6) {
    setsockopt(Fd(socket), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
  }
  return bind(Fd(socket), reinterpret_cast<const sockaddr*>(address.bytes),
              static_cast<socklen_t>(address.length)) == 0 &&
         listen(Fd(socket), backlog) == 0;
}

int32_t SocketLocalPort(uint64_t socket) {
  sockaddr_storage local{};
  socklen_t length = sizeof local;
  if (getsockname(Fd(socket), reinterpret_cast<sockaddr*>(&local), &length) != 0) return -1;
  return local.ss_family == AF_INET6 ? ntohs(reinterpret_cast<sockaddr_in6*>(&local)->sin6_port)
                                     : ntohs(reinterpret_cast<sockaddr_in*>(&local)->sin_port);
}

uint64_t SocketAccept(uint64_t listener) {
  int fd;
  do {
    fd = accept4(Fd(listener), nullptr, nullptr, SOCK_CLOEXEC);
  } while (fd < 0 && errno == EINTR);
  return fd < 0 ? kInvalidSocket : OffZero(fd);
}

}  // namespace utilkit::net
