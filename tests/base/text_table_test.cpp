#include <utilkit/base/text_table.h>

#include <gtest/gtest.h>

namespace {

TEST(TextTableTest, MonthNamesAreCodes101To112) {
  const VCTextTable* t = VFGetUtilKitText();
  EXPECT_STREQ(VFTextGet(t, 101), "January");
  EXPECT_STREQ(VFTextGet(t, 106), "June");
  EXPECT_STREQ(VFTextGet(t, 112), "December");
  EXPECT_FALSE(VFTextHas(t, 100));
  EXPECT_FALSE(VFTextHas(t, 113));
}

TEST(TextTableTest, UnknownCodesAndNullTableGiveEmptyText) {
  EXPECT_STREQ(VFTextGet(VFGetUtilKitText(), 123456), "");
  EXPECT_STREQ(VFTextGet(nullptr, 101), "");
  EXPECT_EQ(VFTextCount(nullptr), 0u);
}

}  // namespace
