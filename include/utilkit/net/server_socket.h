// VCUServerSocket: a listening socket that accepts connections and hands
// each to a VCUSocketIO (or one of its framings), which owns it from then on.
//
//   VCUServerSocket server;
//   if (!server.Listen(0)) return;             // port 0: a free one
//   printf("port %d\n", server.GetPort());
//   VCUSocketIONull io;
//   while (server.Accept(60, &io)) serve(io);
//
// The object owns the listening socket and closes it in Close, in a new
// Listen and in its destructor; it cannot be copied. Used by one thread at
// a time.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

class VCUSocketIO;

class UTILKIT_API VCUServerSocket {
 public:
  // Not listening; starts the sockets library (WSAStartup on Windows).
  VCUServerSocket();
  VCUServerSocket(const VCUServerSocket&) = delete;
  VCUServerSocket& operator=(const VCUServerSocket&) = delete;
  ~VCUServerSocket();

  // Closes any listening socket, then listens on `port` (0: a free port,
  // see GetPort) of `address` (a name or numeric IPv4 or IPv6 address; null
  // or "": all interfaces), queueing up to `backlog` connections. False at
  // "VCUServerSocket::Listen" with -655564 "Unknown host: <address> (<resolver's text>)" or
  // -655562 for a port outside 0..65535 or a failing socket call such as an
  // address in use (system error number).
  char Listen(int port, const char* address = nullptr, int backlog = 16);
  // True while listening.
  char IsListening() const { return m_socket != 0; }
  // The port listened on; 0 when not listening.
  int GetPort() const { return m_port; }
  // Waits at most `timeoutSeconds` (0: looks without waiting) for a client
  // and gives its connection to `io`, whose previous connection is closed.
  // False at "VCUServerSocket::Accept" with -655574 when not listening,
  // -655569 when the wait fails, -655566 "Timeout waiting for connection:
  // <address>" when the time limit passes, -655562 when accept fails.
  char Accept(int timeoutSeconds, VCUSocketIO* io);
  // Stops listening (nothing when not listening).
  void Close();

 private:
  uint64_t m_socket = 0;
  int32_t m_port = 0;
  int32_t m_started = 0;
  VCString m_address;  // what Listen bound, for messages
};
