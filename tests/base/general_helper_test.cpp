#include <utilkit/base/general_helper.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Args = std::vector<std::string>;

TEST(GeneralHelperTest, SplitCommandLine) {
  const std::pair<const char*, Args> cases[] = {
      // Blanks separate arguments; none at all gives no arguments.
      {"-i -name Svc", {"-i", "-name", "Svc"}},
      {"  a \t\tb\r\nc  ", {"a", "b", "c"}},
      {"single", {"single"}},
      {nullptr, {}},
      {"", {}},
      {" \t  \n ", {}},
      // Quotes keep blanks and are removed; touching pieces form one argument.
      {"-name \"My  Service\" -i", {"-name", "My  Service", "-i"}},
      {"\"a\tb\"", {"a\tb"}},
      {"a\"b c\"d", {"ab cd"}},
      {"\"x\"\"y\" z", {"xy", "z"}},
      {"a \"\" b", {"a", "", "b"}},
      {"\"\"", {""}},
      // Backslash-quote is a literal quote; other backslashes are kept.
      {"\"say \\\"hi\\\" now\" x", {"say \"hi\" now", "x"}},
      {"a\\\"b", {"a\"b"}},
      {"\\\"", {"\""}},
      {"C:\\dir\\file.exe \"C:\\Program Files\\x\"", {"C:\\dir\\file.exe", "C:\\Program Files\\x"}},
      {"end\\", {"end\\"}},
      // An unterminated quote runs to the end.
      {"a \"b c  ", {"a", "b c  "}},
      {"a \"", {"a", ""}},
  };
  for (const auto& [line, expected] : cases) {
    Args split;
    for (const VCString& arg : VCUGeneralHelper::SplitCommandLine(line)) split.push_back(arg.str());
    EXPECT_EQ(split, expected) << (line ? line : "(null)");
  }
}

TEST(GeneralHelperTest, EndsWithMatchesOnlyTheLastBytesOfTheGivenLength) {
  const char reply[] = "<Reply>ok</Reply>trailing";
  const char zero[] = {'x', '\0', 'e', 'n', 'd'};
  struct Case {
    const char* buffer;
    size_t size;
    const char* text;
    bool expected;
  };
  // Also: white space is not skipped, zero bytes in the buffer are data, empty
  // texts and null arguments.
  const Case cases[] = {{"", 0, "", true},         {nullptr, 3, "abc", false},
                        {"", 0, "a", false},       {"abc", 3, nullptr, false},
                        {"abc", 3, "", true},      {"</a>\n", 5, "</a>", false},
                        {reply, 17, ">", true},    {reply, 17, "</Reply>", true},
                        {"abc", 3, "abc", true},   {"</a>\n", 5, "</a>\n", true},
                        {nullptr, 0, "", false},   {reply, 16, "</Reply>", false},
                        {"abc", 2, "abc", false},  {zero, sizeof(zero), "end", true},
                        {"abc", 3, "ABC", false},  {zero, sizeof(zero), "xend", false},
                        {"abc", 3, "xabc", false}, {reply, sizeof(reply) - 1, "</Reply>", false}};
  for (const Case& c : cases) {
    EXPECT_EQ(VCUGeneralHelper::EndsWith(c.buffer, c.size, c.text), c.expected)
        << c.size << " " << (c.text ? c.text : "(null)");
  }
}

}  // namespace
