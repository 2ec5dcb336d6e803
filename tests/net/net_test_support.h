// Shared set-up of the socket tests: a connected pair over loopback made by
// the library's own server and client sockets.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/client_socket.h>
#include <utilkit/net/server_socket.h>
#include <utilkit/net/socket_io.h>

// Expects the newest error record to carry `code` at `location` and, when
// given, a message that starts with `message`.
inline void ExpectLastError(int32_t code, const char* location, const char* message = nullptr) {
  const VCErrorRecord* e = VFErrorGetLast();
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(VFErrorGetCode(e), code);
  EXPECT_STREQ(VFErrorGetLocation(e), location);
  if (message != nullptr) {
    EXPECT_EQ(std::string(VFErrorGetMessage(e)).rfind(message, 0), 0u);
  }
}

// Connects `client` to `server` through a listener on 127.0.0.1.
inline void ConnectPair(VCUSocketIO* client, VCUSocketIO* server) {
  VCUServerSocket listener;
  ASSERT_TRUE(listener.Listen(0, "127.0.0.1"));
  VCUClientSocket connector;
  ASSERT_TRUE(connector.Connect("127.0.0.1", listener.GetPort(), 5, client));
  ASSERT_TRUE(listener.Accept(5, server));
}
