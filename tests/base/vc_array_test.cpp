#include <utilkit/base/vc_array.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(VCArrayTest, AddReturnsIndicesAndKeepsValuesAcrossGrowth) {
  VCArray<int32_t> a;
  for (int32_t i = 0; i < 1000; ++i) ASSERT_EQ(a.Add(i * 3), i);
  ASSERT_EQ(a.GetSize(), 1000);
  for (int32_t i = 0; i < 1000; ++i) ASSERT_EQ(a[i], i * 3);
  int64_t sum = 0;
  for (int32_t v : a) sum += v;
  EXPECT_EQ(sum, 3 * 999 * 1000 / 2);
}

TEST(VCArrayTest, AddingOwnElementWhileFullIsSafe) {
  VCArray<std::string> a(10);
  for (int i = 0; i < 10; ++i) a.Add(std::string(40, static_cast<char>('a' + i)));
  // The array is full: growing moves the elements that the argument refers to.
  ASSERT_EQ(a.Add(a[0]), 10);
  EXPECT_EQ(a[10], std::string(40, 'a'));
  ASSERT_TRUE(a.InsertAt(0, a[9], 30));
  EXPECT_EQ(a[0], std::string(40, 'j'));
  EXPECT_EQ(a[29], std::string(40, 'j'));
  EXPECT_EQ(a[30], std::string(40, 'a'));
  ASSERT_TRUE(a.Append(a.GetData(), a.GetSize()));
  ASSERT_EQ(a.GetSize(), 82);
  EXPECT_EQ(a[41], std::string(40, 'j'));
  EXPECT_EQ(a[81], std::string(40, 'a'));
}

TEST(VCArrayTest, InsertRemoveAndSetEditTheRightPlaces) {
  VCArray<int32_t> a;
  const int32_t values[] = {1, 2, 3, 4, 5};
  ASSERT_TRUE(a.Append(values, 5));
  ASSERT_TRUE(a.InsertAt(2, 9, 2));  // 1 2 9 9 3 4 5
  ASSERT_TRUE(a.InsertAt(7, 8));     // at the end
  a.RemoveAt(0, 2);                  // 9 9 3 4 5 8
  a.SetAt(1, 7);                     // 9 7 3 4 5 8
  a.RemoveAt(3);                     // 9 7 3 5 8
  const int32_t expected[] = {9, 7, 3, 5, 8};
  ASSERT_EQ(a.GetSize(), 5);
  for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(a.GetAt(i), expected[i]) << i;
}

TEST(VCArrayTest, SetSizeValueInitialisesAndShrinkKeepsThePrefix) {
  VCArray<int*> pointers;
  pointers.Add(reinterpret_cast<int*>(&pointers));
  ASSERT_TRUE(pointers.SetSize(5));
  EXPECT_NE(pointers[0], nullptr);
  for (int32_t i = 1; i < 5; ++i) EXPECT_EQ(pointers[i], nullptr);
  ASSERT_TRUE(pointers.SetSize(1, 25));
  EXPECT_EQ(pointers.GetGrowBy(), 25);
  EXPECT_NE(pointers[0], nullptr);
  ASSERT_TRUE(pointers.SetSize(3));
  EXPECT_EQ(pointers[2], nullptr) << "regrown slots are value-initialised again";
  pointers.RemoveAll();
  EXPECT_TRUE(pointers.IsEmpty());
  EXPECT_EQ(pointers.begin(), pointers.end());
}

TEST(VCArrayTest, BadIndicesAssertInDebugAndStayInsideTheArrayInRelease) {
  VCArray<int32_t> a;
  a.Add(1);
  a.Add(2);
  EXPECT_DEBUG_DEATH(
      {
        a[5] = 7;
        EXPECT_EQ(a.GetAt(-1), 0);
      },
      "");
  EXPECT_DEBUG_DEATH(a.SetAt(2, 9), "");
  EXPECT_DEBUG_DEATH(a.RemoveAt(1, 5), "");               // removes what exists: index 1
  EXPECT_DEBUG_DEATH(EXPECT_TRUE(a.InsertAt(9, 3)), "");  // clamped to the end
#ifdef NDEBUG
  ASSERT_EQ(a.GetSize(), 2);
  EXPECT_EQ(a[0], 1);
  EXPECT_EQ(a[1], 3);
#endif
  EXPECT_DEBUG_DEATH(EXPECT_FALSE(a.SetSize(-1)), "");
}

}  // namespace
