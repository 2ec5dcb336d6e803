#include <utilkit/base/encoding.h>

#include <gtest/gtest.h>

#include <string>

namespace {

std::u16string FromUtf8(const std::string& bytes, bool* valid) {
  std::u16string out = u"stale";
  *valid = VFUtf8ToUnicode(bytes.data(), bytes.size(), &out);
  return out;
}

std::string ToUtf8(const std::u16string& units, bool* valid) {
  VCString out("stale");
  *valid = VFUnicodeToUtf8(units.data(), units.size(), &out);
  return out.str();
}

TEST(EncodingTest, EncodingTypeDefaultsToUtf8AndNormalisesItsSpellings) {
  EXPECT_EQ(VFGetEncodingType(), "utf8");
  VFSetEncodingType("cp1252");
  EXPECT_EQ(VFGetEncodingType(), "cp1252");
  VFSetEncodingType("UTF-8");
  EXPECT_EQ(VFGetEncodingType(), "utf8");
  VFSetEncodingType("latin1");
  VFSetEncodingType(nullptr);
  EXPECT_EQ(VFGetEncodingType(), "utf8");
}

TEST(EncodingTest, RoundTripsEveryLengthOfSequence) {
  // 1, 2, 3 and 4 bytes: "a", e-acute, euro sign, grinning face (U+1F600),
  // and the largest code point.
  const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF";
  bool valid = false;
  const std::u16string wide = FromUtf8(utf8, &valid);
  EXPECT_TRUE(valid);
  EXPECT_EQ(wide, (std::u16string{u'a', 0x00E9, 0x20AC, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF}));
  EXPECT_EQ(ToUtf8(wide, &valid), utf8);
  EXPECT_TRUE(valid);
}

TEST(EncodingTest, EmptyTextsAndZeroBytesConvert) {
  bool valid = false;
  EXPECT_EQ(FromUtf8("", &valid), u"");
  EXPECT_TRUE(valid);
  EXPECT_EQ(ToUtf8(u"", &valid), "");
  EXPECT_TRUE(valid);
  const std::string withZero("a\0b", 3);
  EXPECT_EQ(FromUtf8(withZero, &valid), std::u16string(u"a\0b", 3));
  EXPECT_EQ(ToUtf8(std::u16string(u"a\0b", 3), &valid), withZero);
}

TEST(EncodingTest, InvalidUtf8BecomesReplacementCharacters) {
  const char16_t r = 0xFFFD;
  bool valid = true;
  EXPECT_EQ(FromUtf8("\xC0\x80", &valid), (std::u16string{r, r})) << "overlong zero";
  EXPECT_FALSE(valid);
  EXPECT_EQ(FromUtf8("a\xE2\x82"
                     "b",
                     &valid),
            (std::u16string{u'a', r, u'b'}))
      << "a cut sequence is one replacement";
  EXPECT_EQ(FromUtf8("x\xE2\x82", &valid), (std::u16string{u'x', r})) << "cut at the end";
  EXPECT_EQ(FromUtf8("\xED\xA0\x80", &valid), (std::u16string{r, r, r})) << "encoded surrogate";
  EXPECT_EQ(FromUtf8("\xF4\x90\x80\x80", &valid), (std::u16string{r, r, r, r})) << "above U+10FFFF";
  EXPECT_EQ(FromUtf8("\xE9t\xE9", &valid), (std::u16string{r, u't', r})) << "Latin-1 bytes";
  EXPECT_FALSE(valid);
  EXPECT_EQ(FromUtf8("\xF0\x9F\x98", &valid), (std::u16string{r}));
}

TEST(EncodingTest, UnpairedSurrogatesBecomeReplacementCharacters) {
  bool valid = true;
  const std::string rep = "\xEF\xBF\xBD";
  EXPECT_EQ(ToUtf8(std::u16string{0xDE00}, &valid), rep);
  EXPECT_FALSE(valid);
  EXPECT_EQ(ToUtf8(std::u16string{u'a', 0xD83D}, &valid), "a" + rep);
  EXPECT_EQ(ToUtf8(std::u16string{0xD83D, u'b', 0xD83D, 0xDE00}, &valid),
            rep + "b\xF0\x9F\x98\x80");
  EXPECT_FALSE(valid);
  EXPECT_EQ(ToUtf8(std::u16string{0xDE00, 0xD83D}, &valid), rep + rep) << "pair in wrong order";
}

}  // namespace
