// VCUClientSocket: opens connections to a server and hands them to a
// VCUSocketIO (or one of its framings), which owns them from then on.
//
//   VCUClientSocket client;
//   VCUSocketIONull io;
//   if (!client.Connect("localhost", 5000, 5, &io)) report(VFErrorGetFullString());
//
// The host is a name or a numeric IPv4 or IPv6 address; each of its
// addresses is tried in the resolver's order until one accepts. The object
// holds no connection itself and may be used for any number of Connect
// calls; it cannot be copied. Used by one thread at a time.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>

class VCUSocketIO;

class UTILKIT_API VCUClientSocket {
 public:
  // Starts the sockets library (WSAStartup on Windows).
  VCUClientSocket();
  VCUClientSocket(const VCUClientSocket&) = delete;
  VCUClientSocket& operator=(const VCUClientSocket&) = delete;
  ~VCUClientSocket();

  // Connects to `host` at `port` within `timeoutSeconds` for all addresses
  // together (0: only a connection that completes at once; negative counts
  // as 0) and gives the connection to `io`, whose previous connection is
  // closed. False, `io` unchanged, at "VCUClientSocket::Connect" with
  // -655564 "Unknown host: <host> (<resolver's text>)", -655563
  // "Connection refused: <host>:<port>", -655566 "Timeout waiting for
  // connection: <host>:<port>", or -655562 for a port outside 1..65535 or
  // another failing socket call (system error number).
  char Connect(const char* host, int port, int timeoutSeconds, VCUSocketIO* io);

 private:
  int32_t m_started = 0;
};
