#include <utilkit/base/vc_data_array.h>

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(VCDataArrayTest, SetSizeGivesZerosInOneBlock) {
  VCDataArray<int64_t> a;
  a.Add(42);
  ASSERT_TRUE(a.SetSize(1000));
  EXPECT_EQ(a[0], 42);
  const int64_t* p = a.GetData();
  for (int32_t i = 1; i < 1000; ++i) ASSERT_EQ(p[i], 0) << i;
  for (int32_t i = 0; i < 1000; ++i) EXPECT_EQ(&a[i], p + i);
}

TEST(VCDataArrayTest, BlockCopiesAndShorteningKeepTheData) {
  VCDataArray<int32_t> rows;
  ASSERT_TRUE(rows.SetSize(6));
  const int32_t order[] = {5, 3, 1, 6, 4, 2};
  std::memcpy(rows.GetData(), order, sizeof order);
  ASSERT_TRUE(rows.SetSize(3));
  ASSERT_EQ(rows.GetSize(), 3);
  EXPECT_EQ(rows[0], 5);
  EXPECT_EQ(rows[2], 1);
  VCDataArray<int32_t> copy(rows);
  copy[0] = 0;
  EXPECT_EQ(rows[0], 5);
  rows.RemoveAll();
  EXPECT_EQ(rows.GetSize(), 0);
  EXPECT_EQ(copy.GetSize(), 3);
}

}  // namespace
