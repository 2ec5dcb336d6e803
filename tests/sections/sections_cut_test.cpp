// Cutting a table to the sections of one channel, against a plain loop.
#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <utilkit/sections/sections_errors.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "sections_test_util.h"

namespace {

class SectionsCut : public SectionsTest {
 protected:
  // Random sections on channels 0 to 2, overlapping, nested and touching.
  void RandomSections(double span) {
    std::uniform_real_distribution<double> at(-1.0, span + 1.0), length(0.0, span / 20);
    for (int i = 0; i < 60; ++i) {
      const double start = i % 7 == 0 ? std::round(at(random)) : at(random);
      ASSERT_TRUE(sections.AddTime(i % 3, start, i % 11 == 0 ? start : start + length(random)));
    }
  }

  // The rows a plain loop over every section keeps.
  std::vector<int64_t> Expected(const std::vector<double>& times, int32_t channel) {
    std::vector<int64_t> rows;
    for (size_t r = 0; r < times.size(); ++r) {
      for (int32_t i = 0; i < sections.GetCount(); ++i) {
        int32_t c = 0;
        double start = 0, end = 0;
        sections.GetTime(i, &c, &start, &end);
        if (c == channel && start <= times[r] && times[r] <= end) {
          rows.push_back(static_cast<int64_t>(r) + 1);
          break;
        }
      }
    }
    return rows;
  }

  static std::vector<int64_t> Rows(const VCArray<int64_t>& rows) {
    return std::vector<int64_t>(rows.begin(), rows.end());
  }

  std::mt19937 random{11};
  VCUSections sections;
};

TEST_F(SectionsCut, MatchesAPlainLoopOnSortedAndUnsortedTimes) {
  RandomSections(50.0);
  std::vector<double> sorted(50000), shuffled(3000);
  std::uniform_real_distribution<double> step(0.0, 0.002);
  double t = -0.5;
  for (double& v : sorted) {
    const double d = step(random);
    v = t += d < 0.0001 ? 0.0 : d;  // with repeats
  }
  std::uniform_real_distribution<double> any(-2.0, 52.0);
  for (double& v : shuffled) v = any(random);
  shuffled[5] = NAN;
  std::vector<float> floats(shuffled.begin(), shuffled.end());
  std::vector<int32_t> whole(shuffled.size());
  for (size_t i = 0; i < whole.size(); ++i) whole[i] = static_cast<int32_t>(shuffled[i]);

  VCUTableMemory big("sorted"), small("shuffled");
  big.AddCol("Time", static_cast<int32_t>(sorted.size()), sorted.data());
  big.SetNumRows(static_cast<int32_t>(sorted.size()));
  small.AddCol("Time", static_cast<int32_t>(shuffled.size()), shuffled.data());
  small.AddCol("Float", static_cast<int32_t>(floats.size()), floats.data());
  small.AddCol("Long", static_cast<int32_t>(whole.size()), whole.data());
  small.SetNumRows(static_cast<int32_t>(shuffled.size()));
  VCArray<int64_t> rows;
  for (int32_t channel : {0, 1, 2, 3}) {
    SCOPED_TRACE(channel);
    ASSERT_TRUE(sections.GetTableRows(&big, channel, 0, &rows));
    EXPECT_EQ(Rows(rows), Expected(sorted, channel));
    ASSERT_TRUE(sections.GetTableRows(&small, channel, 0, &rows));
    EXPECT_EQ(Rows(rows), Expected(shuffled, channel));
    ASSERT_TRUE(sections.GetTableRows(&small, channel, 1, &rows));
    EXPECT_EQ(Rows(rows), Expected(std::vector<double>(floats.begin(), floats.end()), channel));
    ASSERT_TRUE(sections.GetTableRows(&small, channel, 2, &rows));
    EXPECT_EQ(Rows(rows), Expected(std::vector<double>(whole.begin(), whole.end()), channel));
  }

  // The selection is what the processor takes.
  ASSERT_TRUE(sections.GetTableRows(&big, 1, 0, &rows));
  EXPECT_GT(rows.GetSize(), 1000);
  VCUTableProcessor processor;
  ASSERT_TRUE(processor.AddInputTable(&big, rows.GetData(), rows.GetSize()));
  ASSERT_TRUE(processor.AddOutputColumn("Time"));
  ASSERT_TRUE(processor.Process());
  int64_t count = 0;
  ASSERT_TRUE(processor.GetOutputTable()->GetNumRows(&count));
  EXPECT_EQ(count, rows.GetSize());
}

TEST_F(SectionsCut, PointsAreRowNumbers) {
  VCUSections points(VTSectionUnits::Points);
  for (auto [start, end] : {std::pair{-3, 1}, {6, 8}, {4, 5}, {3, 3}, {9, 20}, {7, 7}}) {
    ASSERT_TRUE(points.AddPoints(5, start, end));
  }
  ASSERT_TRUE(points.AddPoints(6, 2, 2));
  VCUTableMemory table("t");
  table.AddCol("X", 10, static_cast<const double*>(nullptr));
  table.SetNumRows(10);
  VCArray<int64_t> rows;
  ASSERT_TRUE(points.GetTableRows(&table, 5, -1, &rows));
  EXPECT_EQ(Rows(rows), (std::vector<int64_t>{1, 2, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_F(SectionsCut, Errors) {
  const char* const kWhere = "VCUSections::GetTableRows";
  VCUTableMemory table("t");
  const char* const names[] = {"a", "b"};
  table.AddCol("Name", 2, names);
  table.SetNumRows(2);
  VCArray<int64_t> rows;
  ASSERT_TRUE(sections.AddTime(0, 1, 0));
  EXPECT_FAILS_WITH(sections.GetTableRows(&table, 0, -1, &rows), kSectionsErrorUnits,
                    "Sections are held in other units: time, without a time column", kWhere);
  EXPECT_FAILS_WITH(sections.GetTableRows(&table, 0, 0, &rows), kSectionsErrorTimeColumn,
                    "Invalid time column: Name", kWhere);
  EXPECT_FAILS_WITH(sections.GetTableRows(&table, 0, 1, &rows), kSectionsErrorTimeColumn,
                    "Invalid time column: 1", kWhere);
  const double times[] = {0, 1};
  table.AddCol("Time", 2, times);
  EXPECT_FAILS_WITH(sections.GetTableRows(&table, 0, 1, &rows), kSectionsErrorStartAfterEnd,
                    "Section starts after its end: ch0, index 0: 1.000000000000,0.000000000000",
                    kWhere);
  EXPECT_TRUE(sections.GetTableRows(&table, 1, 1, &rows));  // the bad section is another channel's
  EXPECT_EQ(rows.GetSize(), 0);
}

}  // namespace
