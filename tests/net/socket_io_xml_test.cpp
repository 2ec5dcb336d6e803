// VCUSocketIOXml between two of the library's own sockets.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <utilkit/net/net_errors.h>
#include <utilkit/net/socket_io_xml.h>
#include <utilkit/xml/xml_errors.h>
#include <utilkit/xml/xml_helper.h>

#include "net/net_test_support.h"

namespace {

class SocketIOXmlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    ConnectPair(&a_, &b_);
  }
  // Sends `text` as raw bytes from a_ to b_.
  void Raw(const char* text) {
    int sent = 0;
    ASSERT_TRUE(a_.PutRawData(text, static_cast<int>(std::strlen(text)), 1, &sent));
  }
  VCUSocketIOXml a_;
  VCUSocketIOXml b_;
  DOM_Document doc_;
};

TEST_F(SocketIOXmlTest, DocumentRoundTripWithoutTerminator) {
  const DOM_Document sent = VCUXmlHelper::ParseXml("<Reply n='1'><V>caf\xc3\xa9</V></Reply>", -1);
  ASSERT_TRUE(a_.PutData(sent, 1));
  ASSERT_TRUE(b_.GetData("Reply", &doc_, 1));
  VCString value;
  ASSERT_TRUE(VCUXmlHelper::GetAttribute(doc_.getDocumentElement(), "n", &value));
  EXPECT_STREQ(value, "1");
  // Nothing follows the document: a second read finds no data.
  char byte = 0;
  int received = 0;
  char timedOut = 0;
  EXPECT_TRUE(b_.GetRawData(&byte, 1, &received, 0, &timedOut));
  EXPECT_TRUE(timedOut);
}

TEST_F(SocketIOXmlTest, EndMarkers) {
  Raw("<Reply><a/></Reply>\r\n");
  EXPECT_TRUE(b_.GetData("Reply", &doc_, 0));
  Raw("<Reply/>");
  EXPECT_TRUE(b_.GetData("Reply", &doc_, 0));
  Raw("<Reply></Reply>x");
  EXPECT_FALSE(b_.GetData("Reply", &doc_, 0));
  ExpectLastError(kSocketErrorReadTimeout, "VCUSocketIOXml::GetData",
                  "Timeout waiting for response from socket");
  EXPECT_TRUE(doc_.isNull());
}

TEST_F(SocketIOXmlTest, MalformedAndOversizedDocuments) {
  Raw("<Reply><a></Reply>");
  EXPECT_FALSE(b_.GetData("Reply", &doc_, 1));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kXmlErrorParse);
  b_.SetMaxMessageSize(15000);
  const std::string big = "<Reply>" + std::string(20000, 'x') + "</Reply>";
  Raw(big.c_str());
  EXPECT_FALSE(b_.GetData("Reply", &doc_, 1));
  ExpectLastError(kSocketErrorMessageTooLong, "VCUSocketIOXml::GetData");
  EXPECT_FALSE(b_.IsConnectionOpen());
}

}  // namespace
