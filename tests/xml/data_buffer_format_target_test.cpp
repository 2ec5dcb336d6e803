// VCUDataBufferFormatTarget under a host's own XMLFormatter.
#include <utilkit/xml/data_buffer_format_target.h>

#include <gtest/gtest.h>

#include <string>

#include <xercesc/util/PlatformUtils.hpp>

namespace {

namespace xc = XERCES_CPP_NAMESPACE;

class FormatTargetTest : public ::testing::Test {
 protected:
  // Hosts initialise Xerces themselves before using it directly (counted).
  static void SetUpTestSuite() { xc::XMLPlatformUtils::Initialize(); }
  static void TearDownTestSuite() { xc::XMLPlatformUtils::Terminate(); }
};

TEST_F(FormatTargetTest, FormatterOutputLandsInTheBuffer) {
  VCUDataBufferFormatTarget target;
  {
    xc::XMLFormatter formatter("UTF-8", &target, xc::XMLFormatter::NoEscapes,
                               xc::XMLFormatter::UnRep_CharRef);
    formatter << reinterpret_cast<const XMLCh*>(u"<a>");
    formatter << xc::XMLFormatter::CharEscapes << reinterpret_cast<const XMLCh*>(u"x&y\u00e9");
  }
  const VCUDataBuffer& buffer = target.GetBuffer();
  EXPECT_EQ(std::string(buffer.GetBasePtr(), buffer.GetSize()), "<a>x&amp;y\xc3\xa9");
}

TEST_F(FormatTargetTest, WriteCharsAppendsCountedBytes) {
  VCUDataBufferFormatTarget target;
  target.writeChars(reinterpret_cast<const XMLByte*>("ab\0c"), 4, nullptr);
  target.writeChars(reinterpret_cast<const XMLByte*>("d"), 0, nullptr);
  EXPECT_EQ(target.GetBuffer().GetSize(), 4);
  EXPECT_EQ(std::string(target.GetBuffer().GetBasePtr(), 4), std::string("ab\0c", 4));
  target.GetBuffer().Clear();
  EXPECT_EQ(target.GetBuffer().GetSize(), 0);
}

}  // namespace
