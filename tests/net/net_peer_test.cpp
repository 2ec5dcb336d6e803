// The library's server against a foreign peer: net_peer.py, written with
// Python's socket module, plays one scenario per test. Late answers and a
// close in mid-message: socket_io_test.cpp.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io_null.h>
#include <utilkit/xml/data_buffer.h>
#if defined(UTILKIT_WITH_XML)
#include <utilkit/net/socket_io_xml.h>
#include <utilkit/xml/xml_helper.h>
#endif

#include "net/net_test_support.h"

#if !defined(_WIN32)
namespace {

class PeerTest : public ::testing::Test {
 protected:
  // Starts the peer and accepts its connection into `io`.
  void Start(const char* scenario, VCUSocketIO* io) {
    VFErrorClear();
    ASSERT_TRUE(server_.Listen(0, "127.0.0.1"));
    const std::string command = std::string("python3 ") + UTILKIT_NET_PEER + " " + scenario + " " +
                                std::to_string(server_.GetPort());
    peer_ = popen(command.c_str(), "r");
    ASSERT_NE(peer_, nullptr);
    ASSERT_TRUE(server_.Accept(5, io));
  }
  // Waits for the peer: it must end normally.
  void Finish(VCUSocketIO* io) {
    io->CloseConnection();  // a peer still waiting for data ends now
    if (peer_ != nullptr) {
      EXPECT_EQ(pclose(peer_), 0);
    }
    peer_ = nullptr;
  }
  VCUServerSocket server_;
  FILE* peer_ = nullptr;
  VCUDataBuffer out_;
  int sent_ = 0;
};

TEST_F(PeerTest, SplitMessageIsJoined) {
  VCUSocketIONull io;
  Start("split", &io);
  ASSERT_TRUE(io.GetData(&out_, 1));
  EXPECT_STREQ(out_.GetBasePtr(), "hello world");
  ASSERT_TRUE(io.PutData("four", 1, &sent_));
  ASSERT_TRUE(io.GetData(&out_, 1));
  EXPECT_STREQ(out_.GetBasePtr(), "5");  // the peer saw "four" and its 0
  Finish(&io);
}

TEST_F(PeerTest, EndlessMessageIsRefusedAtTheLimitWithBoundedMemory) {
  VCUSocketIONull io;
  io.SetMaxMessageSize(1 << 20);
  Start("oversized", &io);
  EXPECT_FALSE(io.GetData(&out_, 1));
  ExpectLastError(kSocketErrorMessageTooLong, "VCUSocketIONull::GetData");
  EXPECT_EQ(out_.GetSize(), 0);
  EXPECT_LT(out_.GetAllocSize(), 2 << 20);
  EXPECT_FALSE(io.IsConnectionOpen());
  Finish(&io);
}

#if defined(UTILKIT_WITH_XML)
TEST_F(PeerTest, SplitXmlDocument) {
  VCUSocketIOXml io;
  Start("xmlsplit", &io);
  DOM_Document reply;
  ASSERT_TRUE(io.GetData("Reply", &reply, 1));
  DOM_Node value;
  ASSERT_TRUE(VCUXmlHelper::GetSingleElementChild(reply.getDocumentElement(), "Value", &value));
  EXPECT_STREQ(VCUXmlHelper::GetTextFromElement(value), "42");
  ASSERT_TRUE(io.PutData(VCUXmlHelper::ParseXml("<Request>ok</Request>", -1), 1));
  Finish(&io);
}
#endif

}  // namespace
#endif
