// Helpers of the sections tests: the only error record, a list's text and
// the fixture.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/sections/sections.h>

// Expects exactly one record on the error stack with `code`, `message` and
// `location`, then clears the stack.
inline void ExpectOneError(int32_t code, const std::string& message, const std::string& location) {
  ASSERT_EQ(VFErrorGetCount(), 1u) << VFErrorGetFullString().c_str();
  const VCErrorRecord* e = VFGetUtLibError();
  EXPECT_EQ(VFErrorGetCode(e), code);
  EXPECT_EQ(std::string(VFErrorGetMessage(e)), message);
  EXPECT_EQ(std::string(VFErrorGetLocation(e)), location);
  VFErrorClear();
}

// The call fails with exactly that one record (then cleared).
#define EXPECT_FAILS_WITH(call, code, message, location) \
  do {                                                   \
    EXPECT_FALSE(call);                                  \
    ExpectOneError(code, message, location);             \
  } while (0)

// Clears the error stack before and after each test.
class SectionsTest : public testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

inline std::string TextOf(const VCUSections& sections) {
  VCString text;
  EXPECT_TRUE(sections.GetText(&text));
  return text.str();
}
