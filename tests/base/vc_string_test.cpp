#include <utilkit/base/vc_string.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(VCStringTest, FormatGrowsPastTheSmallBuffer) {
  VCString s;
  s.Format("%s=%d", "Channel", 3);
  EXPECT_EQ(s, "Channel=3");
  std::string longText(1000, 'x');
  s.Format("<%s>", longText.c_str());
  EXPECT_EQ(s.GetLength(), 1002);
  EXPECT_EQ(VCString::Formatted("%02d-%s-%4d", 5, "January", 2024), "05-January-2024");
}

TEST(VCStringTest, CompareIsBytewiseAndCompareNoCaseFoldsAscii) {
  EXPECT_LT(VCString("B").Compare("a"), 0);
  EXPECT_GT(VCString("b").Compare("B"), 0);
  EXPECT_EQ(VCString("abc").Compare("abc"), 0);
  EXPECT_LT(VCString("ab").Compare("abc"), 0);
  EXPECT_EQ(VCString("Force").CompareNoCase("fORCE"), 0);
  EXPECT_GT(VCString("b").CompareNoCase("A"), 0);
  EXPECT_LT(VCString("a").CompareNoCase("B"), 0);
  EXPECT_GT(VCString("_").CompareNoCase("a"), 0) << "folding goes to upper case";
  EXPECT_EQ(VCString("x").Compare(nullptr), 1);
}

TEST(VCStringTest, PartsClampToTheText) {
  VCString s("Channel");
  EXPECT_EQ(s.Left(4), "Chan");
  EXPECT_EQ(s.Left(99), "Channel");
  EXPECT_EQ(s.Left(-1), "");
  EXPECT_EQ(s.Right(3), "nel");
  EXPECT_EQ(s.Right(99), "Channel");
  EXPECT_EQ(s.Mid(2), "annel");
  EXPECT_EQ(s.Mid(2, 3), "ann");
  EXPECT_EQ(s.Mid(6, 5), "l");
  EXPECT_EQ(s.Mid(99), "");
  EXPECT_EQ(s.GetAt(0), 'C');
  EXPECT_EQ(s.GetAt(7), 0);
  EXPECT_EQ(s.GetAt(-1), 0);
}

TEST(VCStringTest, FindAndReplace) {
  VCString s("a.b.c");
  EXPECT_EQ(s.Find('.'), 1);
  EXPECT_EQ(s.Find('.', 2), 3);
  EXPECT_EQ(s.Find(".c"), 3);
  EXPECT_EQ(s.Find("x"), -1);
  EXPECT_EQ(s.Find('.', 99), -1);
  EXPECT_EQ(s.ReverseFind('.'), 3);
  EXPECT_EQ(s.Replace(".", ".."), 2);
  EXPECT_EQ(s, "a..b..c");
  EXPECT_EQ(s.Replace("", "x"), 0);
}

TEST(VCStringTest, CaseAndTrim) {
  VCString s("  Mixed Case\t\n");
  s.Trim();
  EXPECT_EQ(s, "Mixed Case");
  EXPECT_EQ(VCString(s).MakeUpper(), "MIXED CASE");
  EXPECT_EQ(VCString(s).MakeLower(), "mixed case");
  VCString blank(" \t ");
  EXPECT_TRUE(blank.Trim().IsEmpty());
}

}  // namespace
