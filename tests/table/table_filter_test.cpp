#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_errors.h>
#include <utilkit/table/table_filter_and.h>
#include <utilkit/table/table_filter_basic.h>
#include <utilkit/table/table_filter_or.h>
#include <utilkit/table/table_processor.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "table/table_test_util.h"

using table_test::Error;
using table_test::Errors;

namespace {

// A filter that records the rows it is asked about, passes the rows in
// `passing` and fails at row `failAt` with code `code`.
class RecordingFilter : public VCUTableFilter {
 public:
  explicit RecordingFilter(std::vector<int64_t> passing, int64_t failAt = -1, int32_t code = 0)
      : m_passing(std::move(passing)), m_failAt(failAt), m_code(code) {}
  bool Validate(VCUTable*) override { return true; }
  bool CheckRow(VCUTable*, int64_t row, char* pass) override {
    asked.push_back(row);
    *pass = 0;
    if (row == m_failAt) {
      VFErrorSet(m_code, "recorded failure", "RecordingFilter", 0);
      return false;
    }
    for (int64_t p : m_passing) *pass |= p == row ? 1 : 0;
    return true;
  }
  std::vector<int64_t> asked;

 private:
  std::vector<int64_t> m_passing;
  int64_t m_failAt;
  int32_t m_code;
};

class TableFilterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    const char* text[] = {"abc", "ABC", "aBc", "abd", "x"};  // kept as strings
    table.AddCol("Text", 5, text);
  }
  void TearDown() override { VFErrorClear(); }

  // The rows of `list` that `filter` passes in one block check, sorted.
  std::vector<int64_t> Block(VCUTableFilter& filter, std::vector<int32_t> list) {
    std::vector<int32_t> passed(list.size());
    int32_t count = -1;
    EXPECT_TRUE(filter.CheckRows(&table, list.data(), static_cast<int32_t>(list.size()),
                                 passed.data(), &count));
    std::vector<int64_t> rows;
    for (int32_t k = 0; k < count; ++k) rows.push_back(list[static_cast<size_t>(passed[k])]);
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  // Rows 1 to 5 that `filter` passes row by row; checked to be the same in
  // one block, as a list out of order and as a list with gaps.
  std::vector<int64_t> Passing(VCUTableFilter& filter) {
    EXPECT_TRUE(filter.Validate(&table));
    std::vector<int64_t> rows, odd;
    for (int64_t row = 1; row <= 5; ++row) {
      char pass = 9;
      EXPECT_TRUE(filter.CheckRow(&table, row, &pass));
      if (pass) rows.push_back(row);
      if (pass && row % 2) odd.push_back(row);
    }
    EXPECT_EQ(Block(filter, {1, 2, 3, 4, 5}), rows);
    EXPECT_EQ(Block(filter, {5, 2, 4, 1, 3}), rows);
    EXPECT_EQ(Block(filter, {1, 3, 5}), odd);
    return rows;
  }

  std::vector<int64_t> Passing(const char* column, VTTableFilterCompare compare,
                               const VCVariant& value, char caseSensitive = 0, char inclusive = 1) {
    VCUTableFilterBasic filter;
    filter.SetColumnKeyword(column);
    EXPECT_TRUE(filter.SetCompare(compare));
    filter.SetCompareValue(value);
    filter.SetCaseSensitive(caseSensitive);
    filter.SetInclusive(inclusive);
    return Passing(filter);
  }

  table_test::CsvTable table{"T",
                             "D:double,F:float,F:status,S:short\n1,1,0x8000,-2\n,,0,-1\n"
                             "3,3,0xFFFF,0\n-1,-1,0x7FFF,1\n0,0,0x8001,2\n"};
};

using Rows = std::vector<int64_t>;
using enum VTTableFilterCompare;

TEST_F(TableFilterTest, TextComparisonsFoldCaseUnlessTold) {
  EXPECT_EQ(Passing("text", Equal, VCVariant("abc")), (Rows{1, 2, 3}));
  EXPECT_EQ(Passing("text", Equal, VCVariant("abc"), 1), (Rows{1}));
  EXPECT_EQ(Passing("Text", NotEqual, VCVariant("ABC")), (Rows{4, 5}));
  EXPECT_EQ(Passing("Text", LessThan, VCVariant("abd"), 1), (Rows{1, 2, 3}));
  EXPECT_EQ(Passing("Text", GreaterOrEqual, VCVariant("abd")), (Rows{4, 5}));
  EXPECT_EQ(Passing("Text", LessOrEqual, VCVariant("ABC"), 1), (Rows{2}));
  EXPECT_EQ(Passing("Text", GreaterThan, VCVariant("w")), (Rows{5}));
}

TEST_F(TableFilterTest, TextSearches) {
  EXPECT_EQ(Passing("Text", Contains, VCVariant("B")), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(Passing("Text", Contains, VCVariant("B"), 1), (Rows{2, 3}));
  EXPECT_EQ(Passing("Text", StartsWith, VCVariant("ab")), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(Passing("Text", StartsWith, VCVariant("abcd")), (Rows{}));
  EXPECT_EQ(Passing("Text", EndsWith, VCVariant("Bc"), 1), (Rows{3}));
  EXPECT_EQ(Passing("Text", EndsWith, VCVariant("xx")), (Rows{}));
  for (auto c : {Contains, StartsWith, EndsWith}) {
    EXPECT_EQ(Passing("Text", c, VCVariant("")), (Rows{1, 2, 3, 4, 5}));
  }
  EXPECT_EQ(Passing("Text", Contains, VCVariant("b"), 0, 0), (Rows{5}));
}

TEST_F(TableFilterTest, NumbersAndNaN) {
  EXPECT_EQ(Passing("D", NotEqual, VCVariant(1.0)), (Rows{2, 3, 4, 5}));
  EXPECT_EQ(Passing("D", GreaterOrEqual, VCVariant(0.0)), (Rows{1, 3, 5}));
  EXPECT_EQ(Passing("D", LessThan, VCVariant(int32_t{3})), (Rows{1, 4, 5}));
  EXPECT_EQ(Passing("F", NotEqual, VCVariant(std::nan(""))), (Rows{1, 2, 3, 4, 5}));
  EXPECT_EQ(Passing("F", Equal, VCVariant(std::nan(""))), (Rows{}));
  EXPECT_EQ(Passing("F", LessOrEqual, VCVariant("1")), (Rows{1, 4, 5}));
  // The value is converted to the column's type first: -0.5 is 0 as a short.
  EXPECT_EQ(Passing("S", GreaterThan, VCVariant(-0.5)), (Rows{4, 5}));
}

TEST_F(TableFilterTest, ValidityAndInclusive) {
  EXPECT_EQ(Passing("F", IsValid, VCVariant()), (Rows{1, 3, 5}));
  EXPECT_EQ(Passing("F", IsInvalid, VCVariant()), (Rows{2, 4}));
  EXPECT_EQ(Passing("F", IsValid, VCVariant(), 0, 0), (Rows{2, 4}));
  EXPECT_EQ(Passing("D", IsValid, VCVariant()), (Rows{1, 2, 3, 4, 5}));
  EXPECT_EQ(Passing("D", IsInvalid, VCVariant(), 0, 0), (Rows{1, 2, 3, 4, 5}));
}

TEST_F(TableFilterTest, BasicFilterErrors) {
  VCUTableFilterBasic filter;
  filter.SetColumnKeyword("D");
  ASSERT_TRUE(filter.SetCompare(Contains));
  const Error badCompare{kTableErrorComparison, "Invalid comparison set for filter",
                         "VCUTableFilterBasic::SetCompare"};
  EXPECT_FAILS(filter.SetCompare(static_cast<VTTableFilterCompare>(11)), badCompare);
  EXPECT_FAILS(filter.SetCompare(static_cast<VTTableFilterCompare>(-1)), badCompare);
  EXPECT_FAILS(filter.Validate(&table),  // still Contains
               {kTableErrorStringFilter, "Filter is only valid for string columns",
                "VCUTableFilterBasic::Validate"});
  filter.SetColumnKeyword("Nope");
  EXPECT_FAILS(filter.Validate(&table), {kTableErrorColumnNotFound, "Column not found: Nope",
                                         "VCUTable::GetColIndexFromKeyword"});
  table_test::HostTable host(static_cast<VTTableDataType>(9));
  filter.SetColumnKeyword("value");
  filter.SetCompare(Equal);
  EXPECT_FAILS(filter.Validate(&host),
               {kTableErrorFilterColumnType, "Unknown column data type used for filter",
                "VCUTableFilterBasic::Validate"});
  filter.SetColumnKeyword("D");
  ASSERT_TRUE(filter.Validate(&table));
  char pass = 1;
  EXPECT_FAILS(filter.CheckRow(&table, 6, &pass), table_test::MemoryError("Invalid row number"));
  EXPECT_EQ(pass, 0);
}

TEST_F(TableFilterTest, CompoundFiltersNeedTwoSubFilters) {
  VCUTableFilterAND both;
  VCUTableFilterOR either;
  EXPECT_FALSE(both.Validate(&table));
  either.SetFilters(new RecordingFilter({}), nullptr);
  EXPECT_FAILS(either.Validate(&table),
               {kTableErrorAndOperands, "AND filter must have two sub-filters assigned",
                "VCUTableFilterAND::Validate"},
               {kTableErrorOrOperands, "OR filter must have two sub-filters assigned",
                "VCUTableFilterOR::Validate"});
}

// The second sub-filter is asked only about rows the first left open: by
// AND about rows 1 and 2, by OR about rows 3 to 5 (in each pass).
TEST_F(TableFilterTest, CompoundFiltersShortCircuit) {
  auto* second = new RecordingFilter({2, 3});
  auto* orSecond = new RecordingFilter({2, 3});
  VCUTableFilterAND both;
  VCUTableFilterOR either;
  both.SetFilters(new RecordingFilter({1, 2}), second);
  either.SetFilters(new RecordingFilter({1, 2}), orSecond);
  Rows passBoth, passEither;
  for (int64_t row = 1; row <= 5; ++row) {
    char pass[2] = {};
    ASSERT_TRUE(both.CheckRow(&table, row, &pass[0]) && either.CheckRow(&table, row, &pass[1]));
    if (pass[0]) passBoth.push_back(row);
    if (pass[1]) passEither.push_back(row);
  }
  EXPECT_EQ(passBoth, (Rows{2}));
  EXPECT_EQ(passEither, (Rows{1, 2, 3}));
  EXPECT_EQ(second->asked, (Rows{1, 2}));
  EXPECT_EQ(orSecond->asked, (Rows{3, 4, 5}));
  // Passing asks once more row by row, then in blocks of 5, 5 and 3 rows.
  EXPECT_EQ(Passing(both), (Rows{2}));
  EXPECT_EQ(Passing(either), (Rows{1, 2, 3}));
  for (int64_t row : second->asked) EXPECT_TRUE(row == 1 || row == 2) << row;
  for (int64_t row : orSecond->asked) EXPECT_TRUE(row >= 3) << row;
  EXPECT_EQ(second->asked.size(), 2u + 7u);
  EXPECT_EQ(orSecond->asked.size(), 3u + 11u);
}

TEST_F(TableFilterTest, BlockChecksReportTheFirstFailingRow) {
  VCUTableFilterAND both;
  both.SetFilters(new RecordingFilter({1, 2, 3}, 4, 41), new RecordingFilter({}, 2, 22));
  const int32_t rows[] = {1, 2, 3, 4, 5};
  int32_t passed[5];
  int32_t count = 0;
  // Row by row, the second sub-filter fails at row 2 before the first
  // reaches row 4.
  EXPECT_FAILS(both.CheckRows(&table, rows, 5, passed, &count),
               {22, "recorded failure", "RecordingFilter"});
}

// Merged rows through filter texts: tests/data/table/filters.case.
TEST_F(TableFilterTest, ProcessWithAndWithoutTheFilter) {
  VCUTableProcessor processor;
  processor.AddInputTable(&table);
  processor.AddOutputColumn("D");
  VCUTableFilterBasic filter;
  filter.SetColumnKeyword("D");
  filter.SetCompare(GreaterThan);
  filter.SetCompareValue(VCVariant(0.0));
  processor.SetFilter(&filter);
  int64_t rows[2] = {};
  ASSERT_TRUE(processor.Process() && processor.GetOutputTable()->GetNumRows(&rows[0]));
  processor.ClearOperations();
  ASSERT_TRUE(processor.Process() && processor.GetOutputTable()->GetNumRows(&rows[1]));
  EXPECT_EQ(table_test::Cells(rows, 2), (std::vector<int64_t>{2, 5}));
  // The filter's failing row fails Process.
  table.SetNumRows(7);  // two more rows than the columns hold
  processor.SetFilter(&filter);
  EXPECT_FAILS(processor.Process(), table_test::MemoryError("Invalid row number"),
               {kTableErrorProcessFailed, "Failed to process filtering and sorting on table",
                "VCUTableProcessor::Process", 1});
}

}  // namespace
