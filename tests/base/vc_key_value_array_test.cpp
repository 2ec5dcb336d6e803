#include <utilkit/base/vc_key_value_array.h>

#include <gtest/gtest.h>

namespace {

TEST(VCKeyValueArrayTest, SetValueReplacesInPlaceOrAppends) {
  VCKeyValueArray kv;
  ASSERT_TRUE(kv.SetValue("TYPE", "PROP"));
  ASSERT_TRUE(kv.SetValue("NUM", "3"));
  ASSERT_TRUE(kv.SetValue("TYPE", "ALPHA"));
  ASSERT_EQ(kv.GetSize(), 2);
  EXPECT_EQ(kv.GetKeyAt(0), "TYPE");
  EXPECT_EQ(kv.GetValueAt(0), "ALPHA");
  EXPECT_EQ(kv.GetKeyAt(1), "NUM");
  EXPECT_EQ(kv.Find("NUM"), 1);
}

TEST(VCKeyValueArrayTest, KeysAreCaseSensitive) {
  VCKeyValueArray kv;
  kv.SetValue("TYPE", "PROP");
  kv.SetValue("type", "ALPHA");
  ASSERT_EQ(kv.GetSize(), 2);
  VCString value;
  ASSERT_TRUE(kv.GetValue("TYPE", &value));
  EXPECT_EQ(value, "PROP");
  EXPECT_EQ(kv.Find("Type"), -1);
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
