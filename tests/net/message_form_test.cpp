#include <utilkit/net/message_form.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#ifndef _WIN32
#include <unistd.h>
#endif

#include <utilkit/base/error_stack.h>
#include <utilkit/net/net_errors.h>

namespace {

class MessageFormTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

std::string Value(const VCUMessageFormPart* p) {
  return std::string(p->GetData(), p->GetSize());
}

std::string EveryByte() {
  std::string bytes;
  for (int i = 0; i < 512; ++i) bytes.push_back(static_cast<char>(i & 255));
  return bytes + "\r\n--\r\n";
}

TEST_F(MessageFormTest, RoundTripsTextAndEveryByteValue) {
  VCUMessageForm form;
  const std::string binary = EveryByte();
  ASSERT_TRUE(form.AddText("say \"hi\"", "h\xc3\xa9llo\r\n"));
  ASSERT_TRUE(form.AddFile("blob", "\xe2\x82\xac x.bin", "", binary.data(), binary.size()));
  ASSERT_TRUE(form.AddText("empty", ""));
  VCUDataBuffer message;
  ASSERT_TRUE(form.Write(&message));
  EXPECT_TRUE(VCUMessageForm::IsCompleteMessage(message.GetBasePtr(), message.GetSize()));
  EXPECT_FALSE(VCUMessageForm::IsCompleteMessage(message.GetBasePtr(), message.GetSize() - 8));

  VCUMessageForm back;
  ASSERT_TRUE(back.Parse(message.GetBasePtr(), message.GetSize())) << VFErrorGetFullString();
  ASSERT_EQ(back.GetCount(), 3);
  EXPECT_EQ(back.GetPart(0)->GetName(), "say \"hi\"");
  EXPECT_FALSE(back.GetPart(0)->IsFile());
  EXPECT_STREQ(back.GetText("say \"hi\""), "h\xc3\xa9llo\r\n");
  EXPECT_TRUE(back.GetPart(1)->IsFile());
  EXPECT_EQ(back.GetPart(1)->GetFileName(), "\xe2\x82\xac x.bin");
  EXPECT_EQ(back.GetPart(1)->GetContentType(), "application/octet-stream");
  EXPECT_EQ(Value(back.GetPart(1)), binary);
  EXPECT_EQ(back.GetPart(2)->GetSize(), 0);

  VCUDataBuffer body;
  VCString type;
  ASSERT_TRUE(form.WriteBody(&body, &type));
  ASSERT_TRUE(back.ParseBody(body.GetBasePtr(), body.GetSize(), type));
  EXPECT_EQ(Value(back.GetPart(1)), binary);
}

TEST_F(MessageFormTest, ChoosesABoundaryThatNoPartHolds) {
  VCUMessageForm form;
  ASSERT_TRUE(form.SetBoundary("XyZ"));
  ASSERT_TRUE(form.AddText("a", "plain"));
  VCUDataBuffer out;
  ASSERT_TRUE(form.WriteBody(&out, nullptr));
  EXPECT_EQ(form.GetBoundary(), "XyZ");
  ASSERT_TRUE(form.AddText("b", "holds XyZ inside"));
  ASSERT_TRUE(form.WriteBody(&out, nullptr));
  EXPECT_NE(form.GetBoundary(), "XyZ");
  EXPECT_FALSE(form.SetBoundary("bad\"quote"));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kSocketErrorMessageForm);
}

TEST_F(MessageFormTest, FindsRepeatedNamesInOrderAndRemoves) {
  VCUMessageForm form;
  for (const char* name : {"x", "y", "x", "x"}) ASSERT_TRUE(form.AddText(name, name));
  EXPECT_EQ(form.FindPart("x"), 0);
  EXPECT_EQ(form.FindPart("x", 1), 2);
  EXPECT_EQ(form.FindPart("x", 3), 3);
  EXPECT_EQ(form.FindPart("z"), -1);
  EXPECT_TRUE(form.RemovePart(0));
  EXPECT_EQ(form.FindPart("x"), 1);
  EXPECT_FALSE(form.RemovePart(3));
  EXPECT_EQ(form.GetPart(3), nullptr);
  EXPECT_EQ(form.GetText("z"), nullptr);
}

TEST_F(MessageFormTest, ParsesOddButLegalLayouts) {
  const std::string body =
      "preamble text\r\n--b \t\r\n"
      "CONTENT-disposition:form-data ;NAME=plain ;\r\n  filename*=UTF-8''%E2%82%AC.txt\r\n"
      "X-Other: ignored\r\n\r\n"
      "v1\r\n--b\r\n"
      "Content-Transfer-Encoding: base64\r\n"
      "Content-Disposition: form-data; name=\"q\\\"x\"\r\n\r\n"
      "AP8t\r\nLQ==\r\n--b--\r\nepilogue --b\r\n";
  VCUMessageForm form;
  ASSERT_TRUE(form.ParseBody(body.data(), body.size(), "Multipart/Form-Data; boundary=\"b\""))
      << VFErrorGetFullString();
  ASSERT_EQ(form.GetCount(), 2);
  EXPECT_EQ(form.GetPart(0)->GetName(), "plain");
  EXPECT_EQ(form.GetPart(0)->GetFileName(), "\xe2\x82\xac.txt");
  EXPECT_STREQ(form.GetPart(0)->GetData(), "v1");
  EXPECT_EQ(form.GetPart(1)->GetName(), "q\"x");
  EXPECT_EQ(Value(form.GetPart(1)), std::string("\x00\xff--", 4));

  ASSERT_TRUE(form.ParseBody("--b--", 5, "multipart/form-data; boundary=b"));
  EXPECT_EQ(form.GetCount(), 0);
}

TEST_F(MessageFormTest, ReportsMalformedBodiesWithTheirPosition) {
  const std::string head = "--b\r\nContent-Disposition: form-data; name=a\r\n";
  const struct {
    std::string body;
    int32_t position;
    const char* what;
  } cases[] = {
      {"no boundary at all", 0, "no opening boundary"},
      {"--bX\r\n", 3, "bad boundary line"},
      {head + "\r\nvalue with no end", 47, "part not ended by a boundary"},
      {head + "\r\nv\r\n--b\r\nbroken header\r\n\r\nx\r\n--b--", 55, "header line without ':'"},
      {"--b\r\nContent-Disposition: form-data\r\n\r\nx\r\n--b--", 5,
       "part without a form-data name"},
      {head + "Content-Transfer-Encoding: base64\r\n\r\nAB*C\r\n--b--", 84, "bad base64"},
      {head + "Content-Transfer-Encoding: x-zip\r\n\r\n\r\n--b--", 5,
       "unsupported transfer encoding"},
      {"--b\r\nContent-Disposition: form-data; name=\"a\r\n\r\n\r\n--b--", 5,
       "bad Content-Disposition"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.body);
    VCUMessageForm form;
    VFErrorClear();
    EXPECT_FALSE(form.ParseBody(c.body.data(), c.body.size(), "multipart/form-data; boundary=b"));
    EXPECT_EQ(form.GetErrorPosition(), c.position);
    EXPECT_EQ(form.GetCount(), 0);
    const VCErrorRecord* e = VFErrorGetLast();
    EXPECT_EQ(VFErrorGetCode(e), kSocketErrorMessageForm);
    EXPECT_STREQ(VFErrorGetLocation(e), "VCUMessageForm::ParseBody");
    EXPECT_EQ(
        std::string(VFErrorGetMessage(e)),
        "Malformed message form at byte: " + std::to_string(c.position) + " (" + c.what + ")");
  }
  VCUMessageForm form;
  EXPECT_FALSE(form.Parse("Content-Type: text/plain\r\n\r\n--b--", 32));
  EXPECT_STREQ(VFErrorGetMessage(VFErrorGetLast()),
               "Malformed message form at byte: 0 (not multipart/form-data with a boundary)");
}

TEST_F(MessageFormTest, EnforcesPartAndSizeLimits) {
  VCUMessageForm form;
  form.SetLimits(2, 10);
  EXPECT_TRUE(form.AddText("a", "12345"));
  EXPECT_FALSE(form.AddText("b", "123456"));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kSocketErrorMessageTooLong);
  EXPECT_TRUE(form.AddText("b", "12345"));
  EXPECT_FALSE(form.AddText("c", ""));
  EXPECT_STREQ(VFErrorGetLocation(VFErrorGetLast()), "VCUMessageForm::AddText");
  EXPECT_FALSE(form.AddText("bad\nname", ""));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kSocketErrorMessageForm);

  VCUMessageForm big;
  for (const char* v : {"1", "2", "3"}) ASSERT_TRUE(big.AddText("p", v));
  VCUDataBuffer message;
  ASSERT_TRUE(big.Write(&message));
  VCUMessageForm small;
  small.SetLimits(2, 0);
  EXPECT_FALSE(small.Parse(message.GetBasePtr(), message.GetSize()));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kSocketErrorMessageTooLong);
  EXPECT_EQ(small.GetCount(), 0);
}

#ifndef _WIN32
// Python's standard email package as the other implementation.
std::string RunPeer(const std::string& arguments) {
  std::string command = "python3 " UTILKIT_TEST_DATA_DIR "/net/message_form_peer.py " + arguments;
  std::string out;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char chunk[4096];
    for (size_t n; (n = fread(chunk, 1, sizeof chunk, pipe)) > 0;) out.append(chunk, n);
    pclose(pipe);
  }
  return out;
}

std::string Hex(const std::string& bytes) {
  std::string out;
  for (unsigned char c : bytes)
    out += "0123456789abcdef"[c >> 4], out += "0123456789abcdef"[c & 15];
  return out;
}

TEST_F(MessageFormTest, ReadsWhatPythonWritesAndPythonReadsWhatItWrites) {
  std::string message = RunPeer("write");
  VCUMessageForm form;
  ASSERT_TRUE(form.Parse(message.data(), message.size())) << VFErrorGetFullString();
  ASSERT_EQ(form.GetCount(), 3);
  EXPECT_STREQ(form.GetText("greeting"), "h\xc3\xa9llo world\r\n");
  std::string expected;
  for (int i = 0; i < 512; ++i)
    if ((i & 255) != 10 && (i & 255) != 13) expected.push_back(static_cast<char>(i & 255));
  EXPECT_EQ(form.GetPart(1)->GetFileName(), "\xe2\x82\xac data.bin");
  EXPECT_EQ(Value(form.GetPart(1)), expected);
  EXPECT_EQ(Value(form.GetPart(2)), std::string("\x00\xff--\r\n", 6));  // base64 in the message

  // The email package turns CR and LF inside 8-bit parts into line ends of
  // its own, so the bytes it is to read back exactly hold neither.
  VCUMessageForm ours;
  const std::string binary = expected + "--";
  ASSERT_TRUE(ours.AddText("note", "\"one\" -- two"));
  ASSERT_TRUE(ours.AddFile("data", "x y.bin", "application/x-test", binary.data(), binary.size()));
  VCUDataBuffer written;
  ASSERT_TRUE(ours.Write(&written));
  const auto path = std::filesystem::path(::testing::TempDir()) /
                    ("message_form_" + std::to_string(::getpid()) + ".txt");
  std::ofstream(path, std::ios::binary).write(written.GetBasePtr(), written.GetSize());
  EXPECT_EQ(RunPeer("read '" + path.string() + "'"), "note|||" + Hex("\"one\" -- two") +
                                                         "\ndata|x y.bin|application/x-test|" +
                                                         Hex(binary) + "\n");
  std::filesystem::remove(path);
}
#endif

}  // namespace
