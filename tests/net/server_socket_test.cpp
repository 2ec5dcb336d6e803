// VCUServerSocket: listening, accepting and its failures.
#include <gtest/gtest.h>

#include <string>

#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io_null.h>

#include "net/net_test_support.h"

namespace {

TEST(ServerSocketTest, AcceptTimeLimitAndStates) {
  VFErrorClear();
  VCUServerSocket server;
  VCUSocketIONull io;
  EXPECT_FALSE(server.IsListening());
  EXPECT_FALSE(server.Accept(0, &io));
  ExpectLastError(kSocketErrorNoConnection, "VCUServerSocket::Accept", "No active connection");
  ASSERT_TRUE(server.Listen(0, "127.0.0.1"));
  EXPECT_GT(server.GetPort(), 0);
  EXPECT_FALSE(server.Accept(0, &io));
  const std::string name =
      "Timeout waiting for connection: 127.0.0.1:" + std::to_string(server.GetPort());
  ExpectLastError(kSocketErrorConnectTimeout, "VCUServerSocket::Accept", name.c_str());
  EXPECT_FALSE(io.IsConnectionOpen());
  server.Close();
  EXPECT_EQ(server.GetPort(), 0);
}

TEST(ServerSocketTest, ListenFailures) {
  VFErrorClear();
  VCUServerSocket first;
  ASSERT_TRUE(first.Listen(0, "127.0.0.1"));
  VCUServerSocket second;
  EXPECT_FALSE(second.Listen(first.GetPort(), "127.0.0.1"));  // address in use
  ExpectLastError(kSocketErrorCall, "VCUServerSocket::Listen", "Error during socket call");
  EXPECT_NE(VFErrorGetOpSysCode(VFErrorGetLast()), 0);
  EXPECT_FALSE(second.Listen(0, "no-such-host.invalid"));
  ExpectLastError(kSocketErrorUnknownHost, "VCUServerSocket::Listen",
                  "Unknown host: no-such-host.invalid");
  EXPECT_FALSE(second.IsListening());
}

}  // namespace
