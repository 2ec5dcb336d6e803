// Shared helpers of the user-defined property tests: a fixture with an
// empty error stack around each test, and checks of error records.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/properties/properties_errors.h>
#include <utilkit/properties/user_defined_properties.h>

namespace props_test {

inline constexpr const char* kDecodeAt = "VCUUserDefinedProperties::DecodeUserPropDef";
inline constexpr const char* kSyntaxError = "Syntax error in user defined property value. ";

// One expected error record.
struct Record {
  int32_t code;
  std::string message;
  std::string location;
  int32_t flag;
};

class UserPropsTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  // Checks that the error stack holds exactly `expected`, oldest first.
  static void ExpectErrors(const std::vector<Record>& expected) {
    ASSERT_EQ(VFErrorGetCount(), expected.size()) << VFErrorGetFullString().c_str();
    const VCErrorRecord* e = VFGetUtLibError();
    for (const Record& want : expected) {
      EXPECT_EQ(VFErrorGetCode(e), want.code);
      EXPECT_EQ(VFErrorGetMessage(e), want.message);
      EXPECT_EQ(VFErrorGetLocation(e), want.location);
      EXPECT_EQ(VFErrorGetFlag(e), want.flag);
      e = VFErrorGetNextErr(e);
    }
  }

  // A decode of `properties` (the children of a "Properties" root) into `set`.
  static bool Decode(const std::string& properties, R5PropertySet& set) {
    return VCUUserDefinedProperties::DecodeUserPropDef(
        VCString("<Properties>" + properties + "</Properties>"), set);
  }

  // The failing record `specific` followed by the summary record of a decode.
  static void ExpectDecodeFailure(const Record& specific) {
    ExpectErrors({specific, {kPropertiesErrorSyntax, kSyntaxError, kDecodeAt, 1}});
  }
};

}  // namespace props_test
