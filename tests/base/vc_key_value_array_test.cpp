#include <utilkit/base/vc_key_value_array.h>

#include <gtest/gtest.h>

namespace {

TEST(VCKeyValueArrayTest, SetValueReplacesTheSameKeyInPlaceOrAppends) {
  VCKeyValueArray kv;
  ASSERT_TRUE(kv.SetValue("TYPE", "PROP"));
  ASSERT_TRUE(kv.SetValue("NUM", "3"));
  ASSERT_TRUE(kv.SetValue("TYPE", "ALPHA"));
  ASSERT_TRUE(kv.SetValue("type", "x"));  // keys are case-sensitive
  ASSERT_EQ(kv.GetSize(), 3);
  EXPECT_EQ(kv.GetKeyAt(0), "TYPE");
  EXPECT_EQ(kv.GetValueAt(0), "ALPHA");
  EXPECT_EQ(kv.GetKeyAt(1), "NUM");
  EXPECT_EQ(kv.Find("NUM"), 1);
  EXPECT_EQ(kv.Find("type"), 2);
  EXPECT_EQ(kv.Find("Type"), -1);
  VCString value;
  ASSERT_TRUE(kv.GetValue("TYPE", &value));
  EXPECT_EQ(value, "ALPHA");
}

TEST(VCKeyValueArrayTest, MissingKeysAndBadIndicesGiveNothing) {
  VCKeyValueArray kv;
  kv.SetValue("DIR", "");
  VCString value("unchanged");
  EXPECT_FALSE(kv.GetValue("METHOD", &value));
  EXPECT_EQ(value, "unchanged");
  EXPECT_TRUE(kv.GetValue("DIR", nullptr));
  EXPECT_TRUE(kv.GetValue("DIR", &value));
  EXPECT_EQ(value, "");
  EXPECT_EQ(kv.GetKeyAt(1), "");
  EXPECT_EQ(kv.GetValueAt(-1), "");
  kv.SetValue(nullptr, nullptr);
  EXPECT_EQ(kv.Find(""), 1);
  kv.RemoveAll();
  EXPECT_EQ(kv.GetSize(), 0);
  EXPECT_FALSE(kv.GetValue("DIR", &value));
}

}  // namespace
