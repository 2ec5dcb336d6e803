#include <utilkit/base/vc_string_array.h>

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

void ExpectElements(const VCStringArray& a, std::initializer_list<const char*> expected) {
  ASSERT_EQ(a.GetSize(), static_cast<int32_t>(expected.size()));
  int32_t i = 0;
  for (const char* e : expected) {
    EXPECT_EQ(a[i], e) << "element " << i;
    ++i;
  }
}

TEST(VCStringArrayTest, SplitFlagsTrimAndSkipEmptyElements) {
  VCStringArray a;
  EXPECT_EQ(a.SplitString(". a . b ..", ".", 3), 2);
  ExpectElements(a, {"a", "b"});
  EXPECT_EQ(a.SplitString(". a . b ..", ".", 0), 5);
  ExpectElements(a, {"", " a ", " b ", "", ""});
  a.SplitString(". a . b ..", ".", VCStringArray::kSplitTrim);
  ExpectElements(a, {"", "a", "b", "", ""});
  a.SplitString(". a . b ..", ".", VCStringArray::kSplitSkipEmpty);
  ExpectElements(a, {" a ", " b "});
  a.SplitString(" . \t. ", ".", 3);
  ExpectElements(a, {});
}

TEST(VCStringArrayTest, SplitOfEmptyAndNullTexts) {
  VCStringArray a;
  EXPECT_EQ(a.SplitString("", ".", 0), 1);
  ExpectElements(a, {""});
  EXPECT_EQ(a.SplitString("", ".", 3), 0);
  EXPECT_EQ(a.SplitString(nullptr, ",", 3), 0);
  a.SplitString("a.b", "", 0);
  ExpectElements(a, {"a.b"});
  a.SplitString(" a.b ", nullptr, 1);
  ExpectElements(a, {"a.b"});
}

TEST(VCStringArrayTest, SplitTreatsEachSeparatorCharacterAlikeAndReplacesContent) {
  VCStringArray a;
  a.Add("old");
  a.SplitString("x,y;z", ",;", 0);
  ExpectElements(a, {"x", "y", "z"});
}

TEST(VCStringArrayTest, FindAndFindNoCaseStartWhereAsked) {
  VCStringArray a;
  for (const char* s : {"Force", "force", "Time", "force"}) a.Add(s);
  EXPECT_EQ(a.Find("force"), 1);
  EXPECT_EQ(a.Find("force", 2), 3);
  EXPECT_EQ(a.Find("FORCE"), -1);
  EXPECT_EQ(a.FindNoCase("FORCE"), 0);
  EXPECT_EQ(a.FindNoCase("FORCE", 1), 1);
  EXPECT_EQ(a.FindNoCase("time", -4), 2);
  EXPECT_EQ(a.FindNoCase("force", 4), -1);
  EXPECT_EQ(a.Find(nullptr), -1);
  a.Add("");
  EXPECT_EQ(a.Find(nullptr), 4);
}

}  // namespace
