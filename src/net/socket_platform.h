// The operating-system layer of the socket classes: every call of the BSD
// sockets (POSIX) or Windows Sockets (Win32) API lives behind these
// functions, in socket_platform_posix.cpp or socket_platform_win32.cpp.
//
//   if (!SocketStartup()) return false;           // once per user object
//   SocketWaitEntry entries[2] = {{a, false}, {b, false}};
//   const int ready = SocketWaitMany(entries, 2, 1000);   // -1: SocketLastError()
//   for (const SocketWaitEntry& e : entries) if (e.ready) SocketRecv(e.socket, ...);
//   SocketCleanup();                              // once per successful start-up
//
// Handles are unsigned 64-bit: the descriptor on POSIX, the SOCKET on
// Windows. kInvalidSocket (all ones) is never a valid handle. 0 means "no
// connection" to the library's classes: Windows never hands out socket 0,
// and on POSIX SocketOpen and SocketAccept move a socket that lands on
// descriptor 0 to a higher number, so a socket of this layer is never 0.
// Sockets are created close-on-exec (POSIX) and are blocking unless
// SocketSetNonBlocking says otherwise.
//
// Errors: functions that fail return the failure value named below and
// leave the system's error number for SocketLastError() (errno or
// WSAGetLastError()), which must be read before any other socket call.
// SocketResolve instead returns the resolver's error number.
// Nothing here pushes on the error stack: callers report.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace utilkit::net {

inline constexpr uint64_t kInvalidSocket = ~uint64_t{0};

// Starts the sockets library: WSAStartup for version 1.1 on Windows (true
// when it returned 0); nothing to do and true on POSIX.
bool SocketStartup();
// Undoes one successful SocketStartup (WSACleanup); nothing on POSIX.
void SocketCleanup();
// The system's error number of the last failed call of this thread.
int32_t SocketLastError();

// Closes the socket (close / closesocket). False on failure.
bool SocketClose(uint64_t socket);

// One socket to wait for: readable (forWrite false; also true at end of
// stream and on a pending connection) or writable (forWrite true; on
// Windows also when a pending connect failed). `ready` is the result.
struct SocketWaitEntry {
  uint64_t socket = kInvalidSocket;
  bool forWrite = false;
  bool ready = false;
};
// Waits until at least one entry is ready or `timeoutMs` milliseconds pass
// (0: looks without waiting; negative counts as 0). Sets every entry's
// `ready`. Returns the number ready, 0 when the time limit passed, -1 on
// failure. POSIX uses poll (any descriptor number, any count); Windows uses
// select (at most 1024 entries, -1 beyond). An interrupted wait resumes
// with the time that is left.
int SocketWaitMany(SocketWaitEntry* entries, int count, int32_t timeoutMs);
// SocketWaitMany for one socket with a limit in whole seconds (clamped to
// 0 .. one day): 1 ready, 0 time limit passed, -1 failure.
int SocketWait(uint64_t socket, bool forWrite, int32_t timeoutSeconds);

// Makes sends on a connected socket return at once when its send buffer
// is full, so a time limit holds for every piece: nothing on POSIX (the
// sends say so themselves), non-blocking mode on Windows. False on failure.
bool SocketPrepareSends(uint64_t socket);
// Sends up to `length` bytes; the count sent, or -1 on failure. Never
// raises SIGPIPE. After SocketPrepareSends it does not block: a full send
// buffer gives -1 with SocketErrorWouldBlock(SocketLastError()).
int32_t SocketSend(uint64_t socket, const char* data, int32_t length);
// Receives up to `size` bytes: the count, 0 when the peer closed the
// connection, -1 on failure.
int32_t SocketRecv(uint64_t socket, char* buffer, int32_t size);

// Reads SO_SNDBUF into `*size`. False on failure.
bool SocketGetSendBufferSize(uint64_t socket, int32_t* size);
// Sets SO_SNDBUF (forSend) or SO_RCVBUF to `size` bytes. False on failure.
bool SocketSetBufferSize(uint64_t socket, bool forSend, int32_t size);
// Switches non-blocking mode on or off. False on failure.
bool SocketSetNonBlocking(uint64_t socket, bool on);

// A resolved address, opaque to callers (a copy of a sockaddr).
struct SocketAddress {
  alignas(8) unsigned char bytes[128] = {};
  int32_t length = 0;
  int32_t family = 0;
};
// Resolves `host` (a name or a numeric IPv4 or IPv6 address; null with
// `passive`: all interfaces) and `port` into stream-socket addresses in the
// resolver's order. 0 on success, else the resolver's error number.
int32_t SocketResolve(const char* host, int32_t port, bool passive,
                      std::vector<SocketAddress>* out);
// The resolver's text for an error number of SocketResolve.
std::string SocketResolveErrorText(int32_t error);
// Numeric text of an address with its port, "127.0.0.1:80" or "[::1]:80".
std::string SocketAddressText(const SocketAddress& address);

// A new stream socket of the address family; kInvalidSocket on failure.
uint64_t SocketOpen(int32_t family);
enum class ConnectStart { kConnected, kPending, kFailed };
// Starts connecting a non-blocking socket. kPending: wait for writability,
// then read the outcome with SocketPendingError.
ConnectStart SocketConnectStart(uint64_t socket, const SocketAddress& address);
// The outcome of a finished connect (SO_ERROR): 0 connected, else the
// error number; -1 when it cannot be read.
int32_t SocketPendingError(uint64_t socket);
// True for the error numbers of a refused connection and of a call that
// would block.
bool SocketErrorIsRefused(int32_t error);
bool SocketErrorWouldBlock(int32_t error);

// Binds to the address (address re-use on POSIX; IPv6 sockets also take
// IPv4 where the system allows) and listens. False on failure.
bool SocketBindListen(uint64_t socket, const SocketAddress& address, int32_t backlog);
// The local port of a bound socket; -1 on failure.
int32_t SocketLocalPort(uint64_t socket);
// Accepts one pending connection (blocking); kInvalidSocket on failure.
uint64_t SocketAccept(uint64_t listener);

}  // namespace utilkit::net
