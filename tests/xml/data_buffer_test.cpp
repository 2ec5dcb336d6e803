#include <utilkit/base/base_errors.h>
#include <utilkit/xml/data_buffer.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>

namespace {

class DataBufferTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

std::string Contents(const VCUDataBuffer& b) {
  return std::string(b.GetBasePtr(), static_cast<size_t>(b.GetSize()));
}

TEST_F(DataBufferTest, NewBufferIsEmptyWithOneIncrementOfSpace) {
  VCUDataBuffer b;
  EXPECT_EQ(b.GetSize(), 0);
  EXPECT_EQ(b.GetAllocSize(), 4096);
  EXPECT_STREQ(b.GetBasePtr(), "");

  VCUDataBuffer sized(10001);
  EXPECT_EQ(sized.GetSize(), 0);
  EXPECT_EQ(sized.GetAllocSize(), 15000);
  EXPECT_STREQ(sized.GetBasePtr(), "");
}

TEST_F(DataBufferTest, GrowthFollowsTheIncrementRule) {
  // Requested size, then the block: whole multiples of an increment that a
  // request above twice it raises to half the request (at most 500000).
  const std::pair<int32_t, int32_t> steps[] = {
      {1, 4096},      {10001, 15000}, {20001, 30000},     {100, 30000},      {30000, 30000},
      {30001, 45000}, {45001, 67500}, {3000000, 3500000}, {3500001, 4000000}};
  VCUDataBuffer b;
  for (const auto& [request, allocated] : steps) {
    EXPECT_TRUE(b.SetAllocSize(request)) << request;
    EXPECT_EQ(b.GetAllocSize(), allocated) << request;
  }
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(DataBufferTest, AppendGrowsOnlyWhenTheTerminatorNoLongerFits) {
  VCUDataBuffer b;
  const std::string piece(4095, 'x');
  EXPECT_TRUE(b.Append(piece.data(), 4095));
  EXPECT_EQ(b.GetAllocSize(), 4096);
  EXPECT_EQ(b.GetSize(), 4095);
  EXPECT_TRUE(b.Append("y", 1));
  EXPECT_EQ(b.GetAllocSize(), 8192);
  EXPECT_EQ(b.GetSize(), 4096);
  EXPECT_EQ(b.GetBasePtr()[4096], 0);
  EXPECT_EQ(Contents(b), piece + "y");
}

TEST_F(DataBufferTest, AppendTakesCountedOrTerminatedBytes) {
  VCUDataBuffer b;
  EXPECT_TRUE(b.Append("abc"));
  EXPECT_TRUE(b.Append("de\0f", 4));  // counted: the 0 byte is kept
  EXPECT_EQ(b.GetSize(), 7);
  EXPECT_EQ(Contents(b), std::string("abcde\0f", 7));
  EXPECT_TRUE(b.Append("", 0));
  EXPECT_TRUE(b.Append("", -1));
  EXPECT_TRUE(b.Append("xyz", 0));
  EXPECT_TRUE(b.Append(nullptr, -1));
  EXPECT_TRUE(b.Append(nullptr, 5));
  EXPECT_EQ(b.GetSize(), 7);
}

TEST_F(DataBufferTest, AppendOfItsOwnBytesSurvivesGrowth) {
  VCUDataBuffer b;
  const std::string piece(3000, 'q');
  b.Append(piece.data(), 3000);
  EXPECT_TRUE(b.Append(b.GetBasePtr(), b.GetSize()));  // needs a larger block
  EXPECT_EQ(Contents(b), piece + piece);
}

TEST_F(DataBufferTest, CopiesHoldTheUsedBytes) {
  VCUDataBuffer a;
  a.Append("hello");
  a.SetAllocSize(50000);
  VCUDataBuffer copy(a);
  EXPECT_EQ(Contents(copy), "hello");
  EXPECT_EQ(copy.GetAllocSize(), 4096);  // a fresh buffer, not a copy of the block
  EXPECT_NE(copy.GetBasePtr(), a.GetBasePtr());

  VCUDataBuffer target;
  target.Append("old text");
  target = a;
  EXPECT_EQ(Contents(target), "hello");
  const VCUDataBuffer& self = target;
  target = self;
  EXPECT_EQ(Contents(target), "hello");
}

TEST_F(DataBufferTest, ClearEmptiesButKeepsTheBlock) {
  VCUDataBuffer b;
  b.SetAllocSize(20000);
  b.Append("abc");
  const int32_t allocated = b.GetAllocSize();
  b.Clear();
  EXPECT_EQ(b.GetSize(), 0);
  EXPECT_STREQ(b.GetBasePtr(), "");
  EXPECT_EQ(b.GetAllocSize(), allocated);
}

TEST_F(DataBufferTest, TruncateShortensOnlyWithinTheUsedBytes) {
  VCUDataBuffer b;
  b.Append("abcdef");
  b.Truncate(6);
  b.Truncate(7);
  b.Truncate(0);
  b.Truncate(-1);
  EXPECT_EQ(Contents(b), "abcdef");
  b.Truncate(2);
  EXPECT_EQ(b.GetSize(), 2);
  EXPECT_STREQ(b.GetBasePtr(), "ab");
}

TEST_F(DataBufferTest, RemoveWhitespaceStopsAtTheFirstZeroByte) {
  VCUDataBuffer b;
  b.Append("a b\tc\n");
  b.RemoveWhitespace();
  EXPECT_EQ(b.GetSize(), 3);
  EXPECT_STREQ(b.GetBasePtr(), "abc");

  VCUDataBuffer embedded;
  embedded.Append(" x \0 y z", 8);
  embedded.RemoveWhitespace();
  EXPECT_EQ(embedded.GetSize(), 1);
  EXPECT_STREQ(embedded.GetBasePtr(), "x");

  VCUDataBuffer empty;
  empty.RemoveWhitespace();
  EXPECT_EQ(empty.GetSize(), 0);
}

TEST_F(DataBufferTest, AppendBeyondThe32BitLimitIsRefusedAndKeepsTheBuffer) {
  VCUDataBuffer b;
  b.Append("abc");
  // Only the length is looked at before refusing, so no large block is needed.
  EXPECT_FALSE(b.Append("x", 0x7FFFFFFF - 3));
  EXPECT_EQ(Contents(b), "abc");
  const VCErrorRecord* e = VFGetUtLibError();
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(VFErrorGetCode(e), kErrorOutOfMemory);
  EXPECT_STREQ(VFErrorGetMessage(e), VFTextGet(VFGetUtilKitText(), kErrorOutOfMemory));
  EXPECT_STREQ(VFErrorGetLocation(e), "VCUDataBuffer::Append");
}

#if defined(__SANITIZE_ADDRESS__)
// The tests run with allocator_may_return_null=1 and an allocation ceiling of
// 192 MiB (sanitizer_options.cpp), so a 1.5 GB realloc fails here.
TEST_F(DataBufferTest, FailedGrowthRecordsTheSizeAndLosesTheBlock) {
  VCUDataBuffer b;
  b.Append("abc");
  char* old = b.GetBasePtr();
  EXPECT_FALSE(b.SetAllocSize(1500000000));
  // The increment became 500000; the new size was recorded before the test.
  EXPECT_EQ(b.GetAllocSize(), 1500500000);
  EXPECT_EQ(b.GetBasePtr(), nullptr);
  const VCErrorRecord* e = VFGetUtLibError();
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(VFErrorGetCode(e), kErrorOutOfMemory);
  EXPECT_STREQ(VFErrorGetMessage(e), VFTextGet(VFGetUtilKitText(), kErrorOutOfMemory));
  EXPECT_STREQ(VFErrorGetLocation(e), "VCUDataBuffer::SetAllocSize");
  EXPECT_EQ(VFErrorGetFlag(e), 0);
  // The old block is not freed by the buffer.
  EXPECT_STREQ(old, "abc");
  std::free(old);
}
#endif

}  // namespace
