// The list, validation at the signal's edges, conversion rounding,
// normalising and combining.
#include <array>
#include <cmath>
#include <initializer_list>
#include <random>
#include <string>
#include <utility>

#include <utilkit/sections/sections_errors.h>

#include "sections_test_util.h"

namespace {

class Sections : public SectionsTest {
 protected:
  // A time list from (channel, start, end) triples.
  static void Fill(VCUSections* sections, std::initializer_list<std::array<double, 3>> items) {
    for (const auto& [channel, start, end] : items) {
      ASSERT_TRUE(sections->AddTime(static_cast<int32_t>(channel), start, end));
    }
  }
};

TEST_F(Sections, ListOperationsAndTheirErrors) {
  VCUSections sections;
  Fill(&sections, {{1, 0, 1}, {2, 1, 2}, {1, 3, 4}});
  VCArray<int32_t> indices;
  ASSERT_TRUE(sections.GetIndicesOfChannel(1, &indices));
  ASSERT_EQ(indices.GetSize(), 2);
  EXPECT_EQ(indices[1], 2);
  ASSERT_TRUE(sections.Remove(0));
  int32_t channel = 0;
  double start = 0, end = 0;
  ASSERT_TRUE(sections.GetTime(0, &channel, &start, &end));
  EXPECT_EQ(channel, 2);
  EXPECT_EQ(start, 1.0);
  VCUSections copy(VTSectionUnits::Points);
  ASSERT_TRUE(copy.Copy(sections));
  sections.Clear();
  EXPECT_EQ(copy.GetUnits(), VTSectionUnits::Time);
  EXPECT_EQ(TextOf(copy), "ch2:1.000000000000,2.000000000000\nch1:3.000000000000,4.000000000000\n");

  EXPECT_FAILS_WITH(copy.Remove(2), kSectionsErrorIndex, "Section index out of range: 2",
                    "VCUSections::Remove");
  EXPECT_FAILS_WITH(copy.GetTime(-1, nullptr, nullptr, nullptr), kSectionsErrorIndex,
                    "Section index out of range: -1", "VCUSections::GetTime");
  EXPECT_FAILS_WITH(copy.GetPoints(0, nullptr, nullptr, nullptr), kSectionsErrorUnits,
                    "Sections are held in other units: time", "VCUSections::GetPoints");
  EXPECT_FAILS_WITH(copy.AddPoints(1, 0, 1), kSectionsErrorUnits,
                    "Sections are held in other units: time", "VCUSections::AddPoints");
  EXPECT_FAILS_WITH(copy.AddTime(4, NAN, 1), kSectionsErrorValue,
                    "Invalid section value: ch4, index 2: nan,1.000000000000",
                    "VCUSections::AddTime");
  EXPECT_EQ(copy.GetCount(), 2);
}

TEST_F(Sections, ValidationAtTheSignalEdges) {
  const char* const kWhere = "VCUSections::Validate";
  VCUSections sections;
  // 3 samples at 3 per second: the last one is at 2/3 s exactly as computed.
  Fill(&sections, {{0, 0, 2.0 / 3.0}, {1, 0.5, 0.5}});
  EXPECT_TRUE(sections.Validate(3.0, 3, 2));
  EXPECT_FAILS_WITH(sections.Validate(3.0, 3, 1), kSectionsErrorChannel,
                    "Section names an unknown channel: ch1, index 1: 0.500000000000,0.500000000000",
                    kWhere);
  Fill(&sections, {{0, -1e-300, 0}});
  EXPECT_FAILS_WITH(sections.Validate(3.0, 3), kSectionsErrorOutside,
                    "Section lies outside the signal: ch0, index 2: -0.000000000000,0.000000000000",
                    kWhere);
  ASSERT_TRUE(sections.Remove(2));
  Fill(&sections, {{0, 0, std::nextafter(2.0 / 3.0, 1.0)}});
  EXPECT_FALSE(sections.Validate(3.0, 3));
  EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kSectionsErrorOutside);
  VFErrorClear();

  for (double rate : {0.0, -1.0, HUGE_VAL, std::nan("")}) {
    EXPECT_FALSE(sections.Validate(rate, 3));
    EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kSectionsErrorRate);
    VFErrorClear();
  }
  EXPECT_FAILS_WITH(sections.Validate(0, 3), kSectionsErrorRate,
                    "Invalid sample rate: 0.000000000000", kWhere);
  EXPECT_FAILS_WITH(sections.Validate(1.0, 0), kSectionsErrorPointCount,
                    "Invalid number of points: 0", kWhere);

  VCUSections points(VTSectionUnits::Points);
  ASSERT_TRUE(points.AddPoints(0, 0, 4999));
  ASSERT_TRUE(points.AddPoints(0, 7, 7));
  EXPECT_TRUE(points.Validate(1000.0, 5000));
  ASSERT_TRUE(points.AddPoints(9, 5000, -1));  // every violation at once
  ASSERT_TRUE(points.AddPoints(0, 0, 5000));
  EXPECT_FAILS_WITH(points.Validate(1000.0, 5000, 2), kSectionsErrorStartAfterEnd,
                    "Section starts after its end: ch9, index 2: 5000.000000000000,-1.000000000000",
                    kWhere);
  EXPECT_FALSE(points.Validate(1000.0, 5000, 2, true));
  ASSERT_EQ(VFErrorGetCount(), 4u);
  const int32_t codes[] = {kSectionsErrorStartAfterEnd, kSectionsErrorOutside,
                           kSectionsErrorChannel, kSectionsErrorOutside};
  const VCErrorRecord* e = VFGetUtLibError();
  for (int32_t code : codes) {
    EXPECT_EQ(VFErrorGetCode(e), code);
    e = VFErrorGetNextErr(e);
  }
  EXPECT_EQ(std::string(VFErrorGetMessage(VFErrorGetLast())),
            "Section lies outside the signal: ch0, index 3: 0.000000000000,5000.000000000000");
}

TEST_F(Sections, ConversionRounding) {
  int64_t point = -1;
  ASSERT_TRUE(VCUSections::TimeToPoint(0.25, 2.0, &point));  // half a sample: the later one
  EXPECT_EQ(point, 1);
  ASSERT_TRUE(VCUSections::TimeToPoint(std::nextafter(0.25, 0.0), 2.0, &point));
  EXPECT_EQ(point, 0);
  ASSERT_TRUE(VCUSections::TimeToPoint(-0.25, 2.0, &point));
  EXPECT_EQ(point, 0);
  ASSERT_TRUE(VCUSections::TimeToPoint(-0x1p62, 2.0, &point));  // the first 64-bit point
  EXPECT_EQ(point, INT64_MIN);
  EXPECT_FAILS_WITH(VCUSections::TimeToPoint(1e20, 1e10, &point), kSectionsErrorValue,
                    "Invalid section value: 100000000000000000000.000000000000",
                    "VCUSections::TimeToPoint");

  // Sections shrink to the samples inside them; 0.07 * 100 and 0.29 * 100
  // are not whole as doubles but count as samples 7 and 29.
  VCUSections sections;
  Fill(&sections, {{0, 0.25, 0.75}, {1, 0.1, 0.2}, {2, 0.3, 0.29}});
  VCUSections copy;
  ASSERT_TRUE(copy.Copy(sections));
  ASSERT_TRUE(sections.ConvertToPoints(2.0));
  EXPECT_EQ(TextOf(sections), "ch0:1.000000000000,1.000000000000\n");  // the others hold no sample
  ASSERT_TRUE(copy.Remove(0));
  ASSERT_TRUE(copy.Remove(0));
  ASSERT_TRUE(copy.AddTime(2, 0.07, 0.29));
  ASSERT_TRUE(copy.ConvertToPoints(100.0));
  EXPECT_EQ(TextOf(copy), "ch2:7.000000000000,29.000000000000\n");
  ASSERT_TRUE(copy.ConvertToTime(4.0));
  EXPECT_EQ(TextOf(copy), "ch2:1.750000000000,7.250000000000\n");
  EXPECT_FAILS_WITH(copy.ConvertToTime(4.0), kSectionsErrorUnits,
                    "Sections are held in other units: time", "VCUSections::ConvertToTime");

  // Converted to points and back, random sections stay inside the originals.
  std::mt19937 random(7);
  std::uniform_real_distribution<double> time(0.0, 100.0);
  VCUSections many;
  for (int i = 0; i < 1000; ++i) {
    const double a = time(random), b = a + time(random) / 50;
    ASSERT_TRUE(many.AddTime(i, a, b));
  }
  VCUSections back;
  ASSERT_TRUE(back.Copy(many));
  const double rate = 48000.0 / 7.0;
  ASSERT_TRUE(back.ConvertToPoints(rate));
  ASSERT_TRUE(back.ConvertToTime(rate));
  for (int32_t i = 0; i < back.GetCount(); ++i) {
    int32_t channel = 0;
    double start = 0, end = 0, originalStart = 0, originalEnd = 0;
    ASSERT_TRUE(back.GetTime(i, &channel, &start, &end));
    ASSERT_TRUE(many.GetTime(channel, nullptr, &originalStart, &originalEnd));
    EXPECT_GE(start, originalStart - 1e-9 / rate);
    EXPECT_LE(end, originalEnd + 1e-9 / rate);
    EXPECT_LT(start - originalStart, 1.0 / rate);
  }
}

TEST_F(Sections, NormalisingMergesTouchingAndNestedSections) {
  VCUSections sections;
  Fill(&sections, {{1, 3, 4}, {1, 0, 1}, {1, 1, 2}, {1, 0.5, 0.7}, {0, 5, 6}, {1, 2.5, 2.6}});
  ASSERT_TRUE(sections.Normalise());
  EXPECT_EQ(TextOf(sections),
            "ch0:5.000000000000,6.000000000000\n"
            "ch1:0.000000000000,2.000000000000;2.500000000000,2.600000000000;"
            "3.000000000000,4.000000000000\n");

  VCUSections points(VTSectionUnits::Points);
  for (auto [start, end] : {std::pair{7, 9}, {3, 5}, {0, 2}, {4, 4}}) {
    ASSERT_TRUE(points.AddPoints(0, start, end));
  }
  ASSERT_TRUE(points.Normalise());  // 0-2 and 3-5 are adjacent samples; 6 is missing
  EXPECT_EQ(TextOf(points), "ch0:0.000000000000,5.000000000000;7.000000000000,9.000000000000\n");
  ASSERT_TRUE(points.AddPoints(0, 9, 8));
  EXPECT_FAILS_WITH(points.Normalise(), kSectionsErrorStartAfterEnd,
                    "Section starts after its end: ch0, index 2: 9.000000000000,8.000000000000",
                    "VCUSections::Normalise");
  EXPECT_EQ(points.GetCount(), 3);
}

TEST_F(Sections, UnionAndIntersection) {
  VCUSections a, b, both;
  Fill(&a, {{1, 4, 6}, {1, 0, 2}, {3, 0, 1}});
  Fill(&b, {{1, 1, 5}, {2, 0, 1}, {3, 1, 2}});
  ASSERT_TRUE(both.Copy(a));
  ASSERT_TRUE(both.Intersect(b));
  EXPECT_EQ(TextOf(both),
            "ch1:1.000000000000,2.000000000000;4.000000000000,5.000000000000\n"
            "ch3:1.000000000000,1.000000000000\n");  // touching at one instant
  ASSERT_TRUE(a.Unite(b));
  EXPECT_EQ(TextOf(a),
            "ch1:0.000000000000,6.000000000000\nch2:0.000000000000,1.000000000000\n"
            "ch3:0.000000000000,2.000000000000\n");
  ASSERT_TRUE(a.Intersect(a));
  EXPECT_EQ(a.GetCount(), 3);
  VCUSections points(VTSectionUnits::Points);
  EXPECT_FAILS_WITH(a.Unite(points), kSectionsErrorUnits,
                    "Sections are held in other units: points", "VCUSections::Unite");
}

}  // namespace
