// The text form: exact round trips and every kind of malformed text.
#include <string>

#include <utilkit/sections/sections_errors.h>

#include "sections_test_util.h"

namespace {

using SectionsText = SectionsTest;

TEST_F(SectionsText, WriteReadWriteGivesTheSameText) {
  VCUSections sections;
  ASSERT_TRUE(sections.AddTime(-5, 0.123456789012, 1e15 + 0.5));
  ASSERT_TRUE(sections.AddTime(-5, -2.0, 1.0 / 3.0));
  ASSERT_TRUE(sections.AddTime(2147483647, 6e-13, 1e22));
  ASSERT_TRUE(sections.AddTime(-2147483647 - 1, 0, 1e300));
  ASSERT_TRUE(sections.AddTime(-5, 1, 2));  // a later run of the same channel
  const std::string text = TextOf(sections);
  EXPECT_EQ(text.rfind("ch-5:0.123456789012,1000000000000000.500000000000;"
                       "-2.000000000000,0.333333333333\n"
                       "ch2147483647:0.000000000001,10000000000000000000000.000000000000\n"
                       "ch-2147483648:0.000000000000,1",
                       0),
            0u);
  EXPECT_EQ(text.substr(text.size() - 36), "\nch-5:1.000000000000,2.000000000000\n");
  VCUSections back;
  ASSERT_TRUE(back.SetFromText(text.c_str()));
  EXPECT_EQ(back.GetCount(), 5);
  EXPECT_EQ(TextOf(back), text);
}

TEST_F(SectionsText, PointsAreExactWholeNumbers) {
  VCUSections sections(VTSectionUnits::Points);
  ASSERT_TRUE(sections.AddPoints(1, 9007199254740993, INT64_MAX));
  ASSERT_TRUE(sections.AddPoints(1, INT64_MIN, 0));
  const std::string text = TextOf(sections);
  EXPECT_EQ(text,
            "ch1:9007199254740993.000000000000,9223372036854775807.000000000000;"
            "-9223372036854775808.000000000000,0.000000000000\n");
  VCUSections back(VTSectionUnits::Points);
  ASSERT_TRUE(back.SetFromText(text.c_str()));
  EXPECT_EQ(TextOf(back), text);
}

TEST_F(SectionsText, ReadingToleratesWhiteSpaceAndShortNumbers) {
  VCUSections sections;
  ASSERT_TRUE(sections.SetFromText("\n\n  ch3:\t1 , 2.5 ;\r\n 3.,4\n\nch4:\nch0: -0.25,0.125  \n"));
  EXPECT_EQ(TextOf(sections),
            "ch3:1.000000000000,2.500000000000;3.000000000000,4.000000000000\n"
            "ch0:-0.250000000000,0.125000000000\n");
  ASSERT_TRUE(sections.SetFromText(" \n "));
  EXPECT_EQ(sections.GetCount(), 0);
  EXPECT_EQ(TextOf(sections), "");
}

TEST_F(SectionsText, MalformedTextsNameTheirPlace) {
  const char* const kWhere = "VCUSections::SetFromText";
  const std::string kText = "Malformed sections text: ";
  const std::string huge = "ch1:0," + std::string(400, '9');
  struct Case {
    VTSectionUnits units;
    std::string text;
    std::string place;
  } cases[] = {
      {VTSectionUnits::Time, "1,2", "line 1, column 1: '1,2'"},                   // no "ch"
      {VTSectionUnits::Time, "ch1:0,1\n  c1:2,3", "line 2, column 3: 'c1:2,3'"},  // bad prefix
      {VTSectionUnits::Time, "ch 1:0,1", "line 1, column 1: 'ch'"},               // space in prefix
      {VTSectionUnits::Time, "chx:0,1", "line 1, column 1: 'chx:0,1'"},           // no channel
      {VTSectionUnits::Time, "ch2147483648:0,1", "line 1, column 1: 'ch2147483648:0,1'"},
      {VTSectionUnits::Time, "ch1 0,1", "line 1, column 1: 'ch1'"},     // no ":"
      {VTSectionUnits::Time, "ch1:0;1,2", "line 1, column 6: ';1,2'"},  // no ","
      {VTSectionUnits::Time, "ch1:0,", "line 1, column 7: end of text"},
      {VTSectionUnits::Time, "ch1:0,1;", "line 1, column 9: end of text"},  // ";" then nothing
      {VTSectionUnits::Time, "ch1:0,1;;2,3", "line 1, column 9: ';2,3'"},
      {VTSectionUnits::Time, "ch1:1.5x,2", "line 1, column 8: 'x,2'"},
      {VTSectionUnits::Time, "ch1:+1,2", "line 1, column 5: '+1,2'"},
      {VTSectionUnits::Time, "ch1:1e3,2", "line 1, column 6: 'e3,2'"},
      {VTSectionUnits::Time, "ch1:0,1 2,3", "line 1, column 9: '2,3'"},  // missing ";"
      {VTSectionUnits::Time, huge, "line 1, column 7: '" + std::string(24, '9') + "'"},
      {VTSectionUnits::Points, "ch1:0.5,1", "line 1, column 5: '0.5,1'"},
      {VTSectionUnits::Points, "ch1:0,9223372036854775808",
       "line 1, column 7: '9223372036854775808'"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    VCUSections sections(c.units);
    ASSERT_TRUE(c.units == VTSectionUnits::Time ? sections.AddTime(7, 1, 2)
                                                : sections.AddPoints(7, 1, 2));
    EXPECT_FALSE(sections.SetFromText(c.text.c_str()));
    EXPECT_EQ(sections.GetCount(), 1);  // unchanged
    ExpectOneError(kSectionsErrorSyntax, kText + c.place, kWhere);
  }
  VCUSections sections;
  EXPECT_FAILS_WITH(sections.SetFromText(nullptr), kSectionsErrorSyntax, kText + "null text",
                    kWhere);
}

}  // namespace
