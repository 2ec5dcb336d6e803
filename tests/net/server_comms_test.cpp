#include <utilkit/net/server_comms.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/client_socket.h>
#include <utilkit/net/message_form.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io_null.h>

namespace {

// The server runs on the test's thread; clients run on threads of their own.
class ServerCommsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    server.SetHandler([](const VCTCBServerRequest& r, VCUDataBuffer* answer) {
      return answer->Append("echo:") && answer->Append(r.data, r.length);
    });
    ASSERT_TRUE(server.Start(0, "127.0.0.1"));
  }
  void TearDown() override {
    for (auto& t : clients) t.join();
    VFErrorClear();
  }
  // Serves until `done` clients have finished (at most 20 s).
  void ServeUntil(int done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (finished < done && std::chrono::steady_clock::now() < end) server.ServeOne(50);
    EXPECT_EQ(finished.load(), done);
  }
  void Client(std::function<void(VCUSocketIONull&)> body) {
    clients.emplace_back([this, body] {
      VCUClientSocket connector;
      VCUSocketIONull io;
      if (connector.Connect("127.0.0.1", server.GetPort(), 5, &io)) body(io);
      ++finished;
    });
  }
  // Sends `request` zero-terminated and returns the answer ("" on failure).
  static std::string Ask(VCUSocketIONull& io, const std::string& request) {
    int sent = 0;
    VCUDataBuffer answer;
    if (!io.PutData(request.c_str(), 10, &sent) || !io.GetData(&answer, 10)) return "";
    return answer.GetBasePtr();
  }
  std::set<int32_t> Codes() {
    std::set<int32_t> codes;
    for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e))
      codes.insert(VFErrorGetCode(e));
    return codes;
  }

  VCTCBServerComms server;
  std::vector<std::thread> clients;
  std::atomic<int> finished{0};
};

TEST_F(ServerCommsTest, AnswersManyClientsWhileOthersStallCloseOrFlood) {
  server.SetLimits(0, 1024, 3);
  std::atomic<int> good{0};
  for (int i = 0; i < 20; ++i)
    Client([&, i](VCUSocketIONull& io) {
      for (int j = 0; j < 3; ++j) {
        std::string request = "ping " + std::to_string(i) + "." + std::to_string(j);
        if (Ask(io, request) == "echo:" + request) ++good;
      }
    });
  Client([&](VCUSocketIONull& io) {  // half a request, finished after the others
    int sent = 0;
    io.PutRawData("sl", 2, 5, &sent);
    while (good < 60 && finished < 24) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    io.PutRawData("ow", 3, 5, &sent);
    VCUDataBuffer answer;
    if (io.GetData(&answer, 10) && std::string(answer.GetBasePtr()) == "echo:slow") ++good;
  });
  Client([](VCUSocketIONull& io) {  // silent until the server drops it
    char buffer[16];
    int received = 0;
    char timedOut = 0;
    io.GetRawData(buffer, sizeof buffer, &received, 10, &timedOut);
  });
  Client([](VCUSocketIONull& io) {  // closes in the middle of a request
    int sent = 0;
    io.PutRawData("abc", 3, 5, &sent);
    io.CloseConnection();
  });
  Client([](VCUSocketIONull& io) {  // too much
    int sent = 0;
    const std::string flood(3000, 'x');
    io.PutRawData(flood.data(), static_cast<int>(flood.size()), 5, &sent);
  });
  ServeUntil(24);
  EXPECT_EQ(good.load(), 61);
  const std::set<int32_t> codes = Codes();
  EXPECT_TRUE(codes.count(kSocketErrorIdle)) << VFErrorGetFullString();
  EXPECT_TRUE(codes.count(kSocketErrorConnectionLost)) << VFErrorGetFullString();
  EXPECT_TRUE(codes.count(kSocketErrorMessageTooLong)) << VFErrorGetFullString();
  EXPECT_STREQ(VFErrorGetLocation(VFErrorGetLast()), "VCTCBServerComms::ServeOne");
  EXPECT_EQ(server.GetConnectionCount(), 0);
}

TEST_F(ServerCommsTest, AnswersEachFramingInKind) {
  std::string xml, form;
  std::string pipelined[2];
  server.SetHandler([](const VCTCBServerRequest& r, VCUDataBuffer* answer) {
    if (r.framing != VTCommsFraming::kMessageForm)
      return answer->Append(r.framing == VTCommsFraming::kXml ? "xml:" : "zero:") &&
             answer->Append(r.data, r.length);
    VCUMessageForm in, out;
    return in.Parse(r.data, r.length) &&
           out.AddFile("back", "f", "", in.GetPart(0)->GetData(), in.GetPart(0)->GetSize()) &&
           out.Write(answer);
  });
  Client([&](VCUSocketIONull& io) {
    int sent = 0;
    const std::string doc = "<?xml version=\"1.0\"?><Req a='/>'><Req/></Req>\r\n";
    io.PutRawData(doc.data(), static_cast<int>(doc.size()), 5, &sent);
    char buffer[256];
    int n = 0;
    char timedOut = 0;
    while (xml.size() < doc.size() + 4 && io.GetRawData(buffer, 256, &n, 5, &timedOut) && n > 0)
      xml.append(buffer, n);
    io.PutRawData("one\0two", 8, 5, &sent);  // two requests in one send
    VCUDataBuffer answer;
    for (std::string& p : pipelined)
      if (io.GetData(&answer, 5)) p = answer.GetBasePtr();
  });
  Client([&](VCUSocketIONull& io) {
    VCUMessageForm request;
    const std::string bytes("\0\r\n--\xff", 6);
    request.AddFile("data", "d.bin", "", bytes.data(), 6);
    VCUDataBuffer message, answer;
    request.Write(&message);
    int sent = 0, n = 0;
    char timedOut = 0, buffer[256];
    io.PutRawData(message.GetBasePtr(), message.GetSize(), 5, &sent);
    while (!VCUMessageForm::IsCompleteMessage(answer.GetBasePtr(), answer.GetSize()) &&
           io.GetRawData(buffer, 256, &n, 5, &timedOut) && n > 0)
      answer.Append(buffer, n);
    VCUMessageForm back;
    if (back.Parse(answer.GetBasePtr(), answer.GetSize()) && back.GetCount() == 1)
      form = std::string(back.GetPart(0)->GetData(), back.GetPart(0)->GetSize());
  });
  ServeUntil(2);
  EXPECT_EQ(xml, "xml:<?xml version=\"1.0\"?><Req a='/>'><Req/></Req>\r\n");
  EXPECT_EQ(pipelined[0], "zero:one");
  EXPECT_EQ(pipelined[1], "zero:two");
  EXPECT_EQ(form, std::string("\0\r\n--\xff", 6));
}

TEST_F(ServerCommsTest, RefusesClientsBeyondTheLimitAndStopsWhenAsked) {
  server.SetLimits(1, 0, 0);
  std::atomic<bool> first{false};
  Client([&](VCUSocketIONull& io) {
    first = Ask(io, "a") == "echo:a";
    while (finished < 1) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  });
  while (!first) server.ServeOne(50);
  Client([&](VCUSocketIONull& io) {
    char buffer[16];
    int n = 0;
    char timedOut = 0;
    io.GetRawData(buffer, sizeof buffer, &n, 10, &timedOut);  // fails: closed at once
  });
  ServeUntil(2);
  EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kSocketErrorTooManyConnections);
  EXPECT_STREQ(VFErrorGetMessage(VFGetUtLibError()), "Too many connections, limit: 1");

  server.SetLimits(10, 0, 0);
  server.SetHandler([this](const VCTCBServerRequest&, VCUDataBuffer* answer) {
    server.Stop();
    return answer->Append("bye");
  });
  Client([](VCUSocketIONull& io) { Ask(io, "stop"); });
  EXPECT_EQ(server.ServeFor(20000), 1);  // returns at once after the request
  server.Close();
  EXPECT_EQ(server.ServeOne(0), -1);
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kSocketErrorNoConnection);
}

}  // namespace
