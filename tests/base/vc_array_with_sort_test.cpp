#include <utilkit/base/vc_array_with_sort.h>
#include <utilkit/base/vc_string_array.h>

#include <gtest/gtest.h>

namespace {

TEST(VCArrayWithSortTest, AddKeepsOrderAndItsIndexKeepsAParallelArrayInStep) {
  VCArrayWithSort<int32_t> codes;
  VCStringArray names;
  const int32_t given[] = {30, 10, 20, -5, 25};
  const char* const givenNames[] = {"thirty", "ten", "twenty", "minus five", "twenty-five"};
  for (int i = 0; i < 5; ++i) {
    const int32_t at = codes.Add(given[i]);
    ASSERT_GE(at, 0);
    ASSERT_TRUE(names.InsertAt(at, givenNames[i]));
  }
  const int32_t sorted[] = {-5, 10, 20, 25, 30};
  const char* const sortedNames[] = {"minus five", "ten", "twenty", "twenty-five", "thirty"};
  ASSERT_EQ(codes.GetSize(), 5);
  for (int32_t i = 0; i < 5; ++i) {
    EXPECT_EQ(codes[i], sorted[i]);
    EXPECT_EQ(names[i], sortedNames[i]);
  }
}

TEST(VCArrayWithSortTest, FindUsesValuesNotPositions) {
  VCArrayWithSort<int32_t> codes;
  for (int32_t v : {7, 3, 11, 5}) codes.Add(v);  // 3 5 7 11
  EXPECT_EQ(codes.Find(3), 0);
  EXPECT_EQ(codes.Find(7), 2);
  EXPECT_EQ(codes.Find(11), 3);
  EXPECT_EQ(codes.Find(2), -1);
  EXPECT_EQ(codes.Find(6), -1);
  EXPECT_EQ(codes.Find(12), -1);
  EXPECT_EQ(VCArrayWithSort<int32_t>().Find(0), -1);
}

TEST(VCArrayWithSortTest, EqualValuesKeepTheirAddingOrder) {
  VCArrayWithSort<int32_t> codes;
  VCStringArray names;
  names.InsertAt(codes.Add(2), "first two");
  names.InsertAt(codes.Add(1), "one");
  EXPECT_EQ(codes.GetInsertPosition(2), 2);
  names.InsertAt(codes.Add(2), "second two");
  names.InsertAt(codes.Add(3), "three");
  EXPECT_EQ(names[1], "first two");
  EXPECT_EQ(names[2], "second two");
  EXPECT_EQ(codes.Find(2), 1) << "Find gives the first of equal values";
}

TEST(VCArrayWithSortTest, RemovingAndCopyingKeepTheOrder) {
  VCArrayWithSort<int32_t> codes;
  for (int32_t v : {4, 1, 3, 2}) codes.Add(v);
  codes.RemoveAt(1);  // 1 3 4
  EXPECT_EQ(codes.Find(3), 1);
  VCArrayWithSort<int32_t> copy = codes;
  copy.Add(0);
  EXPECT_EQ(codes.GetSize(), 3);
  EXPECT_EQ(copy[0], 0);
  EXPECT_EQ(copy.Find(4), 3);
  codes.RemoveAll();
  EXPECT_TRUE(codes.IsEmpty());
  EXPECT_EQ(codes.Add(9), 0);
}

}  // namespace
