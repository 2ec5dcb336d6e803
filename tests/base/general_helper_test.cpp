#include <utilkit/base/general_helper.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> Split(const char* line) {
  std::vector<std::string> out;
  for (const VCString& arg : VCUGeneralHelper::SplitCommandLine(line)) out.push_back(arg.str());
  return out;
}

using Args = std::vector<std::string>;

TEST(GeneralHelperSplitCommandLineTest, BlanksSeparateArguments) {
  EXPECT_EQ(Split("-i -name Svc"), (Args{"-i", "-name", "Svc"}));
  EXPECT_EQ(Split("  a \t\tb\r\nc  "), (Args{"a", "b", "c"}));
  EXPECT_EQ(Split("single"), (Args{"single"}));
}

TEST(GeneralHelperSplitCommandLineTest, NullEmptyAndBlankTextsGiveNoArguments) {
  EXPECT_TRUE(Split(nullptr).empty());
  EXPECT_TRUE(Split("").empty());
  EXPECT_TRUE(Split(" \t  \n ").empty());
}

TEST(GeneralHelperSplitCommandLineTest, QuotesKeepBlanksAndAreRemoved) {
  EXPECT_EQ(Split("-name \"My  Service\" -i"), (Args{"-name", "My  Service", "-i"}));
  EXPECT_EQ(Split("\"a\tb\""), (Args{"a\tb"}));
}

TEST(GeneralHelperSplitCommandLineTest, TouchingPiecesFormOneArgument) {
  EXPECT_EQ(Split("a\"b c\"d"), (Args{"ab cd"}));
  EXPECT_EQ(Split("\"x\"\"y\" z"), (Args{"xy", "z"}));
}

TEST(GeneralHelperSplitCommandLineTest, EmptyQuotesGiveAnEmptyArgument) {
  EXPECT_EQ(Split("a \"\" b"), (Args{"a", "", "b"}));
  EXPECT_EQ(Split("\"\""), (Args{""}));
}

TEST(GeneralHelperSplitCommandLineTest, BackslashQuoteIsALiteralQuote) {
  EXPECT_EQ(Split("\"say \\\"hi\\\" now\" x"), (Args{"say \"hi\" now", "x"}));
  EXPECT_EQ(Split("a\\\"b"), (Args{"a\"b"}));
  EXPECT_EQ(Split("\\\""), (Args{"\""}));
}

TEST(GeneralHelperSplitCommandLineTest, OtherBackslashesAreKept) {
  EXPECT_EQ(Split("C:\\dir\\file.exe \"C:\\Program Files\\x\""),
            (Args{"C:\\dir\\file.exe", "C:\\Program Files\\x"}));
  EXPECT_EQ(Split("end\\"), (Args{"end\\"}));
}

TEST(GeneralHelperSplitCommandLineTest, UnterminatedQuoteRunsToTheEnd) {
  EXPECT_EQ(Split("a \"b c  "), (Args{"a", "b c  "}));
  EXPECT_EQ(Split("a \""), (Args{"a", ""}));
}

TEST(GeneralHelperEndsWithTest, MatchesOnlyTheLastBytesOfTheGivenLength) {
  const char buffer[] = "<Reply>ok</Reply>trailing";
  EXPECT_TRUE(VCUGeneralHelper::EndsWith(buffer, 17, "</Reply>"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith(buffer, sizeof(buffer) - 1, "</Reply>"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith(buffer, 16, "</Reply>"));
  EXPECT_TRUE(VCUGeneralHelper::EndsWith(buffer, 17, ">"));
}

TEST(GeneralHelperEndsWithTest, WholeBufferAndLongerText) {
  EXPECT_TRUE(VCUGeneralHelper::EndsWith("abc", 3, "abc"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith("abc", 3, "xabc"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith("abc", 2, "abc"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith("abc", 3, "ABC"));
}

TEST(GeneralHelperEndsWithTest, WhiteSpaceIsNotSkipped) {
  EXPECT_FALSE(VCUGeneralHelper::EndsWith("</a>\n", 5, "</a>"));
  EXPECT_TRUE(VCUGeneralHelper::EndsWith("</a>\n", 5, "</a>\n"));
}

TEST(GeneralHelperEndsWithTest, ZeroBytesInTheBufferAreData) {
  const char buffer[] = {'x', '\0', 'e', 'n', 'd'};
  EXPECT_TRUE(VCUGeneralHelper::EndsWith(buffer, sizeof(buffer), "end"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith(buffer, sizeof(buffer), "xend"));
}

TEST(GeneralHelperEndsWithTest, EmptyTextAndNullArguments) {
  EXPECT_TRUE(VCUGeneralHelper::EndsWith("abc", 3, ""));
  EXPECT_TRUE(VCUGeneralHelper::EndsWith("", 0, ""));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith("", 0, "a"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith(nullptr, 0, ""));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith(nullptr, 3, "abc"));
  EXPECT_FALSE(VCUGeneralHelper::EndsWith("abc", 3, nullptr));
}

}  // namespace
