// VCUClientSocket and VCUServerSocket: connections and their failures.
#include <gtest/gtest.h>

#include <string>

#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io_null.h>
#include <utilkit/xml/data_buffer.h>

#include "net/net_test_support.h"

namespace {

TEST(ClientSocketTest, ConnectsByNameAndHandsOverTheConnection) {
  VFErrorClear();
  VCUServerSocket server;
  ASSERT_TRUE(server.Listen(0));  // all interfaces
  VCUClientSocket client;
  VCUSocketIONull a;
  VCUSocketIONull b;
  ASSERT_TRUE(client.Connect("localhost", server.GetPort(), 2, &a));
  ASSERT_TRUE(server.Accept(2, &b));
  int sent = 0;
  VCUDataBuffer out;
  ASSERT_TRUE(a.PutData("by name", 1, &sent));
  ASSERT_TRUE(b.GetData(&out, 1));
  EXPECT_STREQ(out.GetBasePtr(), "by name");
}

TEST(ClientSocketTest, Ipv6Loopback) {
  VCUServerSocket server;
  if (!server.Listen(0, "::1")) GTEST_SKIP() << "no IPv6 loopback here";
  VCUClientSocket client;
  VCUSocketIONull a;
  VCUSocketIONull b;
  ASSERT_TRUE(client.Connect("::1", server.GetPort(), 2, &a));
  ASSERT_TRUE(server.Accept(2, &b));
}

TEST(ClientSocketTest, RefusedUnknownAndOutOfRange) {
  VFErrorClear();
  int port = 0;
  {
    VCUServerSocket server;
    ASSERT_TRUE(server.Listen(0, "127.0.0.1"));
    port = server.GetPort();
  }
  VCUClientSocket client;
  VCUSocketIONull io;
  EXPECT_FALSE(client.Connect("127.0.0.1", port, 1, &io));
  const std::string refused = "Connection refused: 127.0.0.1:" + std::to_string(port);
  ExpectLastError(kSocketErrorRefused, "VCUClientSocket::Connect", refused.c_str());
  EXPECT_FALSE(client.Connect("no-such-host.invalid", port, 1, &io));
  ExpectLastError(kSocketErrorUnknownHost, "VCUClientSocket::Connect",
                  "Unknown host: no-such-host.invalid");
  EXPECT_FALSE(client.Connect("127.0.0.1", 65536, 1, &io));
  ExpectLastError(kSocketErrorCall, "VCUClientSocket::Connect");
  EXPECT_FALSE(io.IsConnectionOpen());
}

TEST(ClientSocketTest, TimeLimitWhenTheServerQueueIsFull) {
  VFErrorClear();
  VCUServerSocket server;
  ASSERT_TRUE(server.Listen(0, "127.0.0.1", 1));
  VCUClientSocket client;
  // Nobody accepts: once the queue is full, connections are not answered.
  VCUSocketIONull queued[4];
  bool timedOut = false;
  for (VCUSocketIONull& io : queued) {
    if (!client.Connect("127.0.0.1", server.GetPort(), 0, &io)) {
      timedOut = true;
      break;
    }
  }
  ASSERT_TRUE(timedOut);
  const std::string name =
      "Timeout waiting for connection: 127.0.0.1:" + std::to_string(server.GetPort());
  ExpectLastError(kSocketErrorConnectTimeout, "VCUClientSocket::Connect", name.c_str());
  VCUSocketIONull late;
  EXPECT_FALSE(client.Connect("127.0.0.1", server.GetPort(), 1, &late));
  ExpectLastError(kSocketErrorConnectTimeout, "VCUClientSocket::Connect");
}

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
