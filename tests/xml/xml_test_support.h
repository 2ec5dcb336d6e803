// Shared helpers of the XML tests: parsing and serialising to std::string,
// and a fixture that starts and ends each test with an empty error stack.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/xml/xml_helper.h>

namespace xml_test {

class XmlTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  // Checks that the error stack holds exactly one record with `code`, the
  // text of `code` followed by `suffix`, and `location`.
  static void ExpectOnlyError(int32_t code, const std::string& suffix, const char* location) {
    ASSERT_EQ(VFErrorGetCount(), 1u) << VFErrorGetFullString().c_str();
    const VCErrorRecord* e = VFGetUtLibError();
    EXPECT_EQ(VFErrorGetCode(e), code);
    EXPECT_EQ(std::string(VFErrorGetMessage(e)), VFTextGet(VFGetUtilKitText(), code) + suffix);
    EXPECT_STREQ(VFErrorGetLocation(e), location);
    EXPECT_EQ(VFErrorGetFlag(e), 0);
  }
};

inline DOM_Document Parse(std::string_view text) {
  return VCUXmlHelper::ParseXml(text.data(), static_cast<int32_t>(text.size()));
}

inline std::string Bytes(const VCUDataBuffer& buffer) {
  return std::string(buffer.GetBasePtr(), static_cast<size_t>(buffer.GetSize()));
}

inline std::string Plain(const DOM_Node& node) {
  VCUDataBuffer out;
  EXPECT_TRUE(VCUXmlHelper::ConvertNodeTreeToText(node, &out));
  return Bytes(out);
}

inline std::string Human(const DOM_Node& node) {
  VCUDataBuffer out;
  EXPECT_TRUE(VCUXmlHelper::ConvertNodeTreeToHumanReadableText(node, &out));
  return Bytes(out);
}

inline std::string Utf8(const DOMString& text) {
  return VCUXmlHelper::DOMToUTF8String(text).str();
}

}  // namespace xml_test
