// VCUSocketIO and VCUSocketIONull between two of the library's own sockets.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io_null.h>
#include <utilkit/xml/data_buffer.h>

#include "net/net_test_support.h"

namespace {

// Opens the protected helpers.
class OpenSocketIO : public VCUSocketIO {
 public:
  using VCUSocketIO::CheckBufferEndForText;
  using VCUSocketIO::SetSocketError;
};

class SocketIONullTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    ConnectPair(&a_, &b_);
  }
  VCUSocketIONull a_;
  VCUSocketIONull b_;
  VCUDataBuffer out_;
  int sent_ = 0;
};

TEST_F(SocketIONullTest, MessageKeepsItsTerminatorAndLateAnswersAreDropped) {
  ASSERT_TRUE(b_.PutData("stale", 1, &sent_));
  ASSERT_TRUE(b_.PutData("older", 1, &sent_));
  ASSERT_TRUE(a_.PutData("request", 1, &sent_));  // drains both stale answers
  EXPECT_EQ(sent_, 8);
  ASSERT_TRUE(b_.GetData(&out_, 1));
  EXPECT_EQ(out_.GetSize(), 8);
  EXPECT_STREQ(out_.GetBasePtr(), "request");
  ASSERT_TRUE(b_.PutData("answer", 1, &sent_));
  ASSERT_TRUE(a_.GetData(&out_, 1));
  EXPECT_STREQ(out_.GetBasePtr(), "answer");
}

TEST_F(SocketIONullTest, RawTransferOfLargeBlockAndEmptyBlock) {
  const std::string block(3 * 1024 * 1024 + 7, 'q');
  EXPECT_TRUE(a_.PutRawData(block.data(), 0, 0, &sent_));
  EXPECT_EQ(sent_, 0);
  // Larger than both socket buffers: send and receive take turns.
  std::string got;
  int put = 0;
  char buffer[65536];
  while (got.size() < block.size()) {
    if (put < static_cast<int>(block.size())) {
      int n = 0;
      const int piece = std::min<int>(262144, static_cast<int>(block.size()) - put);
      ASSERT_TRUE(a_.PutRawData(block.data() + put, piece, 1, &n));
      put += n;
    }
    int received = 0;
    char timedOut = 0;
    ASSERT_TRUE(b_.GetRawData(buffer, sizeof buffer, &received, 1, &timedOut));
    got.append(buffer, static_cast<size_t>(received));
  }
  EXPECT_EQ(got, block);
}

TEST_F(SocketIONullTest, TimeLimits) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(b_.GetData(&out_, 0));
  ExpectLastError(kSocketErrorReadTimeout, "VCUSocketIONull::GetData",
                  "Timeout waiting for response from socket");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
  EXPECT_FALSE(b_.GetData(&out_, 1));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(950));
  int received = 0;
  char buffer[16];
  char timedOut = 0;
  EXPECT_TRUE(b_.GetRawData(buffer, sizeof buffer, &received, 0, &timedOut));
  EXPECT_TRUE(timedOut);
  EXPECT_TRUE(b_.IsConnectionOpen());
}

TEST_F(SocketIONullTest, WriteTimeLimitWhenThePeerDoesNotRead) {
  const std::string block(1 << 20, 'w');
  for (int i = 0; i < 64; ++i) {
    if (!a_.PutRawData(block.data(), static_cast<int>(block.size()), 0, &sent_)) break;
  }
  ExpectLastError(kSocketErrorWriteTimeout, "VCUSocketIO::PutRawData",
                  "Timeout writing data to socket");
}

TEST_F(SocketIONullTest, PeerClosingMidMessageLosesTheConnection) {
  ASSERT_TRUE(a_.PutRawData("unfinished", 10, 1, &sent_));
  EXPECT_TRUE(a_.CloseConnection());
  EXPECT_FALSE(a_.IsConnectionOpen());
  EXPECT_FALSE(b_.GetData(&out_, 1));
  ExpectLastError(kSocketErrorConnectionLost, "VCUSocketIO::GetRawData", "Connection lost");
  EXPECT_FALSE(b_.IsConnectionOpen());
  EXPECT_FALSE(b_.PutData("x", 1, &sent_));
  ExpectLastError(kSocketErrorNoConnection, "VCUSocketIO::GetRawData", "No active connection");
  EXPECT_FALSE(b_.PutRawData("x", 1, 1, &sent_));
  ExpectLastError(kSocketErrorNoConnection, "VCUSocketIO::PutRawData");
}

TEST_F(SocketIONullTest, OversizedMessageIsRefusedAtTheLimit) {
  b_.SetMaxMessageSize(20000);
  const std::string big(30000, 'x');
  ASSERT_TRUE(a_.PutRawData(big.c_str(), static_cast<int>(big.size()) + 1, 1, &sent_));
  EXPECT_FALSE(b_.GetData(&out_, 1));
  ExpectLastError(kSocketErrorMessageTooLong, "VCUSocketIONull::GetData",
                  "Message exceeds the size limit");
  EXPECT_EQ(out_.GetSize(), 0);
  EXPECT_FALSE(b_.IsConnectionOpen());
  // Exactly at the limit is accepted.
  ConnectPair(&a_, &b_);
  b_.SetMaxMessageSize(30001);
  ASSERT_TRUE(a_.PutData(big.c_str(), 1, &sent_));
  EXPECT_TRUE(b_.GetData(&out_, 1));
  EXPECT_EQ(out_.GetSize(), 30001);
}

TEST_F(SocketIONullTest, OneOwnerPerSocket) {
  b_.SetMaxMessageSize(100);
  VCUSocketIONull copy(b_);
  EXPECT_FALSE(copy.IsConnectionOpen());
  EXPECT_EQ(copy.GetMaxMessageSize(), 100);
  copy = a_;
  EXPECT_FALSE(copy.IsConnectionOpen());
  EXPECT_TRUE(a_.IsConnectionOpen());
  const uint64_t id = a_.GetConnectionId();
  copy.SetNewConnection(a_);
  EXPECT_FALSE(a_.IsConnectionOpen());
  EXPECT_EQ(copy.GetConnectionId(), id);
  ASSERT_TRUE(copy.PutData("moved", 1, &sent_));
  ASSERT_TRUE(b_.GetData(&out_, 1));
  EXPECT_STREQ(out_.GetBasePtr(), "moved");
}

TEST(SocketIOTest, ConnectionIdAndErrorLayout) {
  VFErrorClear();
  OpenSocketIO io;
  EXPECT_FALSE(io.IsConnectionOpen());
  EXPECT_FALSE(io.SetConnectionId(~uint64_t{0}));
  ExpectLastError(kSocketErrorCall, "VCUSocketIO::CheckConnectionId", "Error during socket call");
  EXPECT_TRUE(io.CloseConnection());
  io.SetSocketError(kSocketErrorRecv, "Here");
  const VCErrorRecord* e = VFErrorGetLast();
  const std::string expected =
      "Error in socket recv\nSocket error code : " + std::to_string(VFErrorGetOpSysCode(e));
  EXPECT_EQ(VFErrorGetMessage(e), expected);
}

TEST(SocketIOTest, BufferEndTest) {
  OpenSocketIO io;
  const char* text = "<a>x</Reply> \r\n\t";
  EXPECT_TRUE(io.CheckBufferEndForText(text, 16, "</Reply>"));
  EXPECT_TRUE(io.CheckBufferEndForText(text, 12, "</Reply>"));
  EXPECT_FALSE(io.CheckBufferEndForText(text, 11, "</Reply>"));
  EXPECT_FALSE(io.CheckBufferEndForText("</Reply>x", 9, "</Reply>"));
  EXPECT_FALSE(io.CheckBufferEndForText("ply>", 4, "</Reply>"));  // shorter than the text
  EXPECT_FALSE(io.CheckBufferEndForText("   ply>  ", 9, "</Reply>"));
  EXPECT_TRUE(io.CheckBufferEndForText("ab\0", 2, ""));
  EXPECT_FALSE(io.CheckBufferEndForText("abc", 2, ""));
}

}  // namespace
