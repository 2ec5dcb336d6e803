#include <utilkit/base/error_stack.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

class ErrorStackTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

TEST_F(ErrorStackTest, RecordsAreListedOldestFirst) {
  VFErrorSet(-655961, "Column not found: Force", "VCUTable::GetColIndexFromKeyword", 0);
  VFErrorSet(-655988, "Sort failed", "VCUTableProcessor::Process", 1);
  const VCErrorRecord* first = VFGetUtLibError();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(VFErrorGetCode(first), -655961);
  EXPECT_STREQ(VFErrorGetMessage(first), "Column not found: Force");
  EXPECT_STREQ(VFErrorGetLocation(first), "VCUTable::GetColIndexFromKeyword");
  EXPECT_EQ(VFErrorGetFlag(first), 0);
  const VCErrorRecord* second = VFErrorGetNextErr(first);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(VFErrorGetCode(second), -655988);
  EXPECT_EQ(VFErrorGetFlag(second), 1);
  EXPECT_EQ(second, VFErrorGetLast());
  EXPECT_EQ(VFErrorGetNextErr(second), nullptr);
}

TEST_F(ErrorStackTest, CheckFindsAnyRecordAndClearEmpties) {
  EXPECT_FALSE(VFErrorCheck(-68445));
  VFErrorSet(-68445, "Division by zero", "VCCalculator::Evaluate", 0);
  VFErrorSet(-1, "outer", "x", 1);
  EXPECT_TRUE(VFErrorCheck(-68445));
  EXPECT_TRUE(VFErrorCheck(-1));
  EXPECT_FALSE(VFErrorCheck(-68448));
  EXPECT_EQ(VFErrorGetCount(), 2u);
  VFErrorClear();
  EXPECT_EQ(VFErrorGetCount(), 0u);
  EXPECT_EQ(VFGetUtLibError(), nullptr);
  EXPECT_EQ(VFErrorGetFullString(), "");
}

TEST_F(ErrorStackTest, NullTextsAndRecordsAreHarmless) {
  VFErrorSet(5, nullptr, nullptr, 0);
  EXPECT_STREQ(VFErrorGetMessage(VFGetUtLibError()), "");
  EXPECT_STREQ(VFErrorGetLocation(VFGetUtLibError()), "");
  EXPECT_EQ(VFErrorGetCode(nullptr), 0);
  EXPECT_STREQ(VFErrorGetMessage(nullptr), "");
  EXPECT_EQ(VFErrorGetNextErr(nullptr), nullptr);
}

TEST_F(ErrorStackTest, OpSysCodeGoesOnTheLatestRecord) {
  VFErrorSetOpSysCode(2);  // empty stack: ignored
  EXPECT_EQ(VFErrorGetCount(), 0u);
  VFErrorSet(-655561, "Socket error", "VCUSocketIO::Send", 0);
  VFErrorSet(-655562, "Timeout", "VCUSocketIO::Send", 0);
  VFErrorSetOpSysCode(2);
  EXPECT_EQ(VFErrorGetOpSysCode(VFGetUtLibError()), 0);
  EXPECT_STREQ(VFErrorGetOpSysMessage(VFGetUtLibError()), "");
  EXPECT_EQ(VFErrorGetOpSysCode(VFErrorGetLast()), 2);
  EXPECT_STRNE(VFErrorGetOpSysMessage(VFErrorGetLast()), "");
}

TEST_F(ErrorStackTest, FullStringHasOneLinePerRecord) {
  VFErrorSet(-1, "first", "A::B", 0);
  VFErrorSet(-2, "second", "C::D", 1);
  VFErrorSetOpSysCode(13);
  std::string full = VFErrorGetFullString().str();
  EXPECT_EQ(full.rfind("Error -1 in A::B: first\nError -2 in C::D: second [system error 13: ", 0),
            0u)
      << full;
  EXPECT_EQ(full.back(), '\n');
}

TEST_F(ErrorStackTest, EachThreadHasItsOwnStack) {
  VFErrorSet(-1, "main", "main", 0);
  size_t seenInThread = 99;
  std::thread t([&] {
    seenInThread = VFErrorGetCount();
    VFErrorSet(-2, "thread", "thread", 0);
  });
  t.join();
  EXPECT_EQ(seenInThread, 0u);
  EXPECT_EQ(VFErrorGetCount(), 1u);
  EXPECT_FALSE(VFErrorCheck(-2));
}

TEST_F(ErrorStackTest, AFullStackDropsTheOldestRecords) {
  for (size_t i = 0; i < kErrorStackCapacity + 5; ++i) {
    VFErrorSet(static_cast<int32_t>(i), "m", "l", 0);
  }
  EXPECT_EQ(VFErrorGetCount(), kErrorStackCapacity);
  EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), 5);
  size_t walked = 0;
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) ++walked;
  EXPECT_EQ(walked, kErrorStackCapacity);
}

}  // namespace
