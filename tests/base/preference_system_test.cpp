#include <utilkit/base/error_stack.h>
#include <utilkit/base/preference_system.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

constexpr const char* kRows = "/Libraries/utilkit/MaximumTableProcessorRows";

class PreferenceSystemTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VCPreferenceSystem::Clear();
    VFErrorClear();
  }
  void TearDown() override {
    VCPreferenceSystem::Clear();
    VFErrorClear();
  }
};

TEST_F(PreferenceSystemTest, DefaultUntilSetAndAfterRemoval) {
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue(kRows, 50000000), 50000000);
  ASSERT_TRUE(VCPreferenceSystem::SetHugeValue(kRows, 1000));
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue(kRows, 50000000), 1000);
  ASSERT_TRUE(VCPreferenceSystem::SetHugeValue(kRows, -7));
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue(kRows, 50000000), -7);
  EXPECT_TRUE(VCPreferenceSystem::Remove(kRows));
  EXPECT_FALSE(VCPreferenceSystem::Remove(kRows));
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue(kRows, 50000000), 50000000);
  ASSERT_TRUE(VCPreferenceSystem::SetStringValue("/a", "x"));
  VCPreferenceSystem::Clear();
  EXPECT_EQ(VCPreferenceSystem::GetStringValue("/a", "none"), "none");
}

TEST_F(PreferenceSystemTest, ValuesAreTextThatReadsAsNumbersWhenItIsOne) {
  ASSERT_TRUE(VCPreferenceSystem::SetHugeValue("/n", 9223372036854775807));
  EXPECT_EQ(VCPreferenceSystem::GetStringValue("/n", ""), "9223372036854775807");
  ASSERT_TRUE(VCPreferenceSystem::SetStringValue("/n", " 42 "));
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue("/n", 1), 42);
  ASSERT_TRUE(VCPreferenceSystem::SetStringValue("/n", "+42"));
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue("/n", 1), 42);
  for (const char* text : {"", "12abc", "1.5", "99999999999999999999", "+-1"}) {
    ASSERT_TRUE(VCPreferenceSystem::SetStringValue("/n", text));
    EXPECT_EQ(VCPreferenceSystem::GetHugeValue("/n", 1), 1) << text;
  }
  ASSERT_TRUE(VCPreferenceSystem::SetStringValue("/n", nullptr));
  EXPECT_EQ(VCPreferenceSystem::GetStringValue("/n", "default"), "");
  EXPECT_EQ(VCPreferenceSystem::GetStringValue("/unset", nullptr), "");
}

TEST_F(PreferenceSystemTest, PathsMatchExactly) {
  ASSERT_TRUE(VCPreferenceSystem::SetHugeValue("/Libraries/X", 5));
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue("/libraries/x", 1), 1);
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue("/Libraries/X/", 1), 1);
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue(nullptr, 1), 1);
  EXPECT_FALSE(VCPreferenceSystem::Remove(nullptr));
}

TEST_F(PreferenceSystemTest, EmptyPathsAreRefused) {
  EXPECT_FALSE(VCPreferenceSystem::SetHugeValue("", 1));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kVCPreferenceErrorPath);
  EXPECT_STREQ(VFErrorGetLocation(VFErrorGetLast()), "VCPreferenceSystem::SetHugeValue");
  EXPECT_FALSE(VCPreferenceSystem::SetStringValue(nullptr, "x"));
  EXPECT_EQ(VFErrorGetCount(), 2u);
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue("", 3), 3);
}

TEST_F(PreferenceSystemTest, OneStoreForAllThreads) {
  std::thread host([] { VCPreferenceSystem::SetHugeValue(kRows, 123); });
  host.join();
  EXPECT_EQ(VCPreferenceSystem::GetHugeValue(kRows, 0), 123);
}

}  // namespace
