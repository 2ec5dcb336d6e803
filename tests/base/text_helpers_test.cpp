#include <utilkit/base/text_helpers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// `texts` ordered by their sort keys.
std::vector<std::string> SortedByKey(std::vector<std::string> texts) {
  std::sort(texts.begin(), texts.end(), [](const std::string& a, const std::string& b) {
    return VFMakeNumericallySortableString(a.c_str()).Compare(
               VFMakeNumericallySortableString(b.c_str())) < 0;
  });
  return texts;
}

TEST(TextHelpersTest, SortKeysOrderEmbeddedNumbersByValue) {
  EXPECT_EQ(SortedByKey({"x9", "x10", "x09", "a", "A"}),
            (std::vector<std::string>{"A", "a", "x9", "x09", "x10"}));
  EXPECT_EQ(SortedByKey({"File10", "File2", "File1b", "File1a", "File"}),
            (std::vector<std::string>{"File", "File1a", "File1b", "File2", "File10"}));
  EXPECT_EQ(SortedByKey({"a10", "a9", "a100", "a99"}),
            (std::vector<std::string>{"a9", "a10", "a99", "a100"}));
  EXPECT_EQ(SortedByKey({"v1.10", "v1.9", "v1.9.1", "v0"}),
            (std::vector<std::string>{"v0", "v1.9", "v1.9.1", "v1.10"}));
  EXPECT_EQ(SortedByKey({"00", "1", "0", "01"}), (std::vector<std::string>{"0", "00", "1", "01"}));
}

TEST(TextHelpersTest, SortKeysKeepTheOrderOfDigitsAgainstOtherBytes) {
  // '-' < digits < ':' and 'a' as bytes; numbers must stay between them.
  EXPECT_EQ(SortedByKey({"x:", "x5", "x-", "xa", "x123456789012"}),
            (std::vector<std::string>{"x-", "x5", "x123456789012", "x:", "xa"}));
}

TEST(TextHelpersTest, SortKeysHandleDigitRunsOfAnyLength) {
  const std::string nines(99, '9');
  const std::string tenToThe99 = "1" + std::string(99, '0');
  const std::string shorter(11999, '9');
  const std::string huge(12000, '7');
  const std::string hugePlus = huge.substr(1) + "8";
  EXPECT_EQ(
      SortedByKey({"n" + hugePlus, "n" + tenToThe99, "n" + huge, "n" + nines, "n" + shorter, "n8"}),
      (std::vector<std::string>{"n8", "n" + nines, "n" + tenToThe99, "n" + shorter, "n" + huge,
                                "n" + hugePlus}));
}

TEST(TextHelpersTest, DifferentTextsGiveDifferentKeys) {
  const std::vector<std::string> texts = {"x9", "x09", "x009", "x9 ", "x90", "9x", "09x", "", "0"};
  for (const std::string& a : texts) {
    for (const std::string& b : texts) {
      if (a != b) {
        EXPECT_NE(VFMakeNumericallySortableString(a.c_str()),
                  VFMakeNumericallySortableString(b.c_str()))
            << a << " / " << b;
      }
    }
  }
}

TEST(TextHelpersTest, PatternMatchWildcards) {
  EXPECT_TRUE(VFPatternMatch(0, "A*", "Alpha"));
  EXPECT_TRUE(VFPatternMatch(0, "*", ""));
  EXPECT_TRUE(VFPatternMatch(0, "", ""));
  EXPECT_FALSE(VFPatternMatch(0, "", "a"));
  EXPECT_FALSE(VFPatternMatch(0, "?", ""));
  EXPECT_TRUE(VFPatternMatch(0, "a?c", "abc"));
  EXPECT_FALSE(VFPatternMatch(0, "a?c", "ac"));
  EXPECT_TRUE(VFPatternMatch(0, "*ab", "aab")) << "the star has to give back characters";
  EXPECT_TRUE(VFPatternMatch(0, "a*b*c", "axbxbxc"));
  EXPECT_FALSE(VFPatternMatch(0, "a*b*c", "axbxbx"));
  EXPECT_TRUE(VFPatternMatch(0, "*.csv", "data.old.csv"));
  EXPECT_FALSE(VFPatternMatch(0, "*.csv", "data.csv.old"));
  EXPECT_TRUE(VFPatternMatch(0, "**x**", "x"));
  EXPECT_TRUE(VFPatternMatch(0, nullptr, nullptr));
}

TEST(TextHelpersTest, PatternMatchCaseFlagAndCharacters) {
  EXPECT_TRUE(VFPatternMatch(kPatternMatchNoCase, "ch?_*", "CH1_force"));
  EXPECT_FALSE(VFPatternMatch(0, "ch?_*", "CH1_force"));
  EXPECT_TRUE(VFPatternMatch(0, "M?ller", "M\xC3\xBCller")) << "? takes a whole UTF-8 character";
  EXPECT_FALSE(VFPatternMatch(0, "M??ller", "M\xC3\xBCller"));
  EXPECT_TRUE(VFPatternMatch(0, "*\xF0\x9F\x98\x80?", "a\xF0\x9F\x98\x80\xF0\x9F\x98\x81"));
  EXPECT_TRUE(VFPatternMatch(0, "a?b",
                             "a\xFF"
                             "b"))
      << "a stray byte counts as one character";
}

TEST(TextHelpersTest, PatternMatchHasNoExponentialBacktracking) {
  const std::string text(20000, 'a');
  EXPECT_FALSE(VFPatternMatch(0, "a*a*a*a*a*a*a*a*b", text.c_str()));
  EXPECT_TRUE(VFPatternMatch(0, "a*a*a*a*a*a*a*a*a", text.c_str()));
}

TEST(TextHelpersTest, SplitIntoKeyValueAtTheFirstEqualsSign) {
  VCString key, value;
  ASSERT_TRUE(VFSplitIntoKeyValue(" NUM = 3 ", &key, &value, 0));
  EXPECT_EQ(key, "NUM");
  EXPECT_EQ(value, "3");
  ASSERT_TRUE(VFSplitIntoKeyValue("expr=a=b", &key, &value, 0));
  EXPECT_EQ(key, "expr");
  EXPECT_EQ(value, "a=b");
  ASSERT_TRUE(VFSplitIntoKeyValue("DIR=", &key, &value, 0));
  EXPECT_EQ(value, "");
  ASSERT_TRUE(VFSplitIntoKeyValue(" k = v ", &key, &value, kSplitKeyValueKeepBlanks));
  EXPECT_EQ(key, " k ");
  EXPECT_EQ(value, " v ");
}

TEST(TextHelpersTest, SplitIntoKeyValueRefusesTextsWithoutKey) {
  VCString key("k"), value("v");
  EXPECT_FALSE(VFSplitIntoKeyValue("TYPE", &key, &value, 0));
  EXPECT_FALSE(VFSplitIntoKeyValue(" = X", &key, &value, 0));
  EXPECT_FALSE(VFSplitIntoKeyValue("", &key, &value, 0));
  EXPECT_FALSE(VFSplitIntoKeyValue(nullptr, &key, &value, 0));
  EXPECT_EQ(key, "k");
  EXPECT_EQ(value, "v");
}

VCString Squeezed(VCString text, int32_t flags) {
  return VFSqueeze(text, flags);
}

TEST(TextHelpersTest, SqueezeRemovesWhiteSpaceAtTheEndsAsFlagged) {
  VCString t(" \t a b \r\n");
  EXPECT_EQ(Squeezed(t, kSqueezeLeading), "a b \r\n");
  EXPECT_EQ(Squeezed(t, kSqueezeTrailing), " \t a b");
  EXPECT_EQ(Squeezed(t, 0), t);
  VFSqueeze(&t, 3);
  EXPECT_EQ(t, "a b");
  VFSqueeze(static_cast<VCString*>(nullptr), 3);
  EXPECT_EQ(VFTrimView("  \v"), "");
}

}  // namespace
