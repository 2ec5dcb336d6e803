// Windows Sockets behind socket_platform.h.
#define FD_SETSIZE 1024
#include <winsock2.h>
#include <ws2tcpip.h>

#include <cstdio>
#include <cstring>
#include <new>

#include "net/socket_platform.h"

namespace utilkit::net {
namespace {

SOCKET Sock(uint64_t socket) {
  return static_cast<SOCKET>(socket);
}

}  // namespace

bool SocketStartup() {
  WSADATA data;
  return WSAStartup(0x0101, &data) == 0;
}
void SocketCleanup() {
  WSACleanup();
}
int32_t SocketLastError() {
  return WSAGetLastError();
}
bool SocketClose(uint64_t socket) {
  return closesocket(Sock(socket)) == 0;
}

int SocketWaitMany(SocketWaitEntry* entries, int count, int32_t timeoutMs) {
  if (count > FD_SETSIZE) {
    WSASetLastError(WSAEINVAL);
    return -1;
  }
  // fd_set is large: keep the three off the stack.
  struct Sets {
    fd_set read, write, except;
  };
  Sets* sets = new (std::nothrow) Sets;
  if (sets == nullptr) {
    WSASetLastError(WSAENOBUFS);
    return -1;
  }
  FD_ZERO(&sets->read);
  FD_ZERO(&sets->write);
  FD_ZERO(&sets->except);
  for (int i = 0; i < count; ++i) {
    entries[i].ready = false;
    // A failed connect shows among the exceptions, not the writable sockets.
    if (entries[i].forWrite) {
      FD_SET(Sock(entries[i].socket), &sets->write);
      FD_SET(Sock(entries[i].socket), &sets->except);
    } else {
      FD_SET(Sock(entries[i].socket), &sets->read);
    }
  }
  const int32_t ms = timeoutMs > 0 ? timeoutMs : 0;
  timeval limit{static_cast<long>(ms / 1000), static_cast<long>((ms % 1000) * 1000)};
  const int rc = select(0, &sets->read, &sets->write, &sets->except, &limit);
  if (rc > 0) {
    int ready = 0;
    for (int i = 0; i < count; ++i) {
      const SOCKET s = Sock(entries[i].socket);
      entries[i].ready = entries[i].forWrite
                             ? (FD_ISSET(s, &sets->write) || FD_ISSET(s, &sets->except))
                             : FD_ISSET(s, &sets->read) != 0;
      ready += entries[i].ready ? 1 : 0;
    }
    delete sets;
    return ready;
  }
  delete sets;
  return rc < 0 ? -1 : 0;
}

int SocketWait(uint64_t socket, bool forWrite, int32_t timeoutSeconds) {
  constexpr int32_t kDay = 86400;
  const int32_t seconds = timeoutSeconds < 0 ? 0 : (timeoutSeconds > kDay ? kDay : timeoutSeconds);
  SocketWaitEntry entry{socket, forWrite, false};
  return SocketWaitMany(&entry, 1, seconds * 1000);
}

bool SocketPrepareSends(uint64_t socket) {
  return SocketSetNonBlocking(socket, true);
}

int32_t SocketSend(uint64_t socket, const char* data, int32_t length) {
  const int n = send(Sock(socket), data, length, 0);
  return n == SOCKET_ERROR ? -1 : n;
}

int32_t SocketRecv(uint64_t socket, char* buffer, int32_t size) {
  const int n = recv(Sock(socket), buffer, size, 0);
  return n == SOCKET_ERROR ? -1 : n;
}

bool SocketGetSendBufferSize(uint64_t socket, int32_t* size) {
  int value = 0;
  int length = sizeof value;
  if (getsockopt(Sock(socket), SOL_SOCKET, SO_SNDBUF, reinterpret_cast<char*>(&value), &length) !=
      0) {
    return false;
  }
  *size = value;
  return true;
}

bool SocketSetBufferSize(uint64_t socket, bool forSend, int32_t size) {
  const int value = size;
  return setsockopt(Sock(socket), SOL_SOCKET, forSend ? SO_SNDBUF : SO_RCVBUF,
                    reinterpret_cast<const char*>(&value), sizeof value) == 0;
}

bool SocketSetNonBlocking(uint64_t socket, bool on) {
  u_long mode = on ? 1 : 0;
  return ioctlsocket(Sock(socket), FIONBIO, &mode) == 0;
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
    return WSA_NOT_ENOUGH_MEMORY;
  }
  freeaddrinfo(list);
  return 0;
}

std::string SocketResolveErrorText(int32_t error) {
  return gai_strerrorA(error);
}

std::string SocketAddressText(const SocketAddress& address) {
  char host[NI_MAXHOST] = "";
  char port[NI_MAXSERV] = "";
  getnameinfo(reinterpret_cast<const sockaddr*>(address.bytes), address.length, host, sizeof host,
              port, sizeof port, NI_NUMERICHOST | NI_NUMERICSERV);
  std::string text;
  if (address.family == AF_INET6) text += '[';
  text += host;
  if (address.family == AF_INET6) text += ']';
  text += ':';
  text += port;
  return text;
}

uint64_t SocketOpen(int32_t family) {
  const SOCKET s = socket(family, SOCK_STREAM, IPPROTO_TCP);
  return s == INVALID_SOCKET ? kInvalidSocket : static_cast<uint64_t>(s);
}

ConnectStart SocketConnectStart(uint64_t socket, const SocketAddress& address) {
  if (connect(Sock(socket), reinterpret_cast<const sockaddr*>(address.bytes), address.length) ==
      0) {
    return ConnectStart::kConnected;
  }
  return WSAGetLastError() == WSAEWOULDBLOCK ? ConnectStart::kPending : ConnectStart::kFailed;
}

int32_t SocketPendingError(uint64_t socket) {
  int value = 0;
  int length = sizeof value;
  if (getsockopt(Sock(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&value), &length) !=
      0) {
    return -1;
  }
  return value;
}

bool SocketErrorIsRefused(int32_t error) {
  return error == WSAECONNREFUSED;
}
bool SocketErrorWouldBlock(int32_t error) {
  return error == WSAEWOULDBLOCK;
}

bool SocketBindListen(uint64_t socket, const SocketAddress& address, int32_t backlog) {
  if (address.family == AF_INET6) {
    const DWORD off = 0;
    setsockopt(Sock(socket), IPPROTO_IPV6, IPV6_V6ONLY, reinterpret_cast<const char*>(&off),
               sizeof off);
  }
  return bind(Sock(socket), reinterpret_cast<const sockaddr*>(address.bytes), address.length) ==
             0 &&
         listen(Sock(socket), backlog) == 0;
}

int32_t SocketLocalPort(uint64_t socket) {
  sockaddr_storage local{};
  int length = sizeof local;
  if (getsockname(Sock(socket), reinterpret_cast<sockaddr*>(&local), &length) != 0) return -1;
  return local.ss_family == AF_INET6 ? ntohs(reinterpret_cast<sockaddr_in6*>(&local)->sin6_port)
                                     : ntohs(reinterpret_cast<sockaddr_in*>(&local)->sin_port);
}

uint64_t SocketAccept(uint64_t listener) {
  const SOCKET s = accept(Sock(listener), nullptr, nullptr);
  return s == INVALID_SOCKET ? kInvalidSocket : static_cast<uint64_t>(s);
}

}  // namespace utilkit::net
