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
    const char* text[] = {"abc", "ABC", "aBc", "abd", "x"};
    const double d[] = {1, std::nan(""), 3, -1, 0};
    const float f[] = {1, std::numeric_limits<float>::quiet_NaN(), 3, -1, 0};
    const uint16_t status[] = {0x8000, 0, 0xFFFF, 0x7FFF, 0x8001};
    const int16_t s[] = {-2, -1, 0, 1, 2};
    table.AddCol("Text", 5, text);
    table.AddCol("D", 5, d);
    table.AddCol("F", 5, f);
    table.SetColStatus("F", 5, status);
    table.AddCol("S", 5, s);
    table.SetNumRows(5);
  }
  void TearDown() override { VFErrorClear(); }

  // Rows 1 to 5 that `filter` passes, row by row and in one block.
  std::vector<int64_t> Passing(VCUTableFilter& filter) {
    EXPECT_TRUE(filter.Validate(&table));
    std::vector<int64_t> rows;
    for (int64_t row = 1; row <= 5; ++row) {
      char pass = 9;
      EXPECT_TRUE(filter.CheckRow(&table, row, &pass));
      if (pass) rows.push_back(row);
    }
    // In one block, and as a list with gaps (rows 5, 2, 4 and 1, 3).
    const int32_t all[] = {1, 2, 3, 4, 5};
    const int32_t mixed[] = {5, 2, 4, 1, 3};
    for (const int32_t* list : {all, mixed}) {
      int32_t passed[5];
      int32_t count = -1;
      EXPECT_TRUE(filter.CheckRows(&table, list, 5, passed, &count));
      std::vector<int64_t> blockRows;
      for (int32_t k = 0; k < count; ++k) blockRows.push_back(list[passed[k]]);
      std::sort(blockRows.begin(), blockRows.end());
      EXPECT_EQ(rows, blockRows);
    }
    const int32_t gaps[] = {1, 3, 5};
    int32_t passed[3];
    int32_t count = -1;
    EXPECT_TRUE(filter.CheckRows(&table, gaps, 3, passed, &count));
    std::vector<int64_t> odd;
    for (int64_t row : rows) {
      if (row % 2) odd.push_back(row);
    }
    EXPECT_EQ(std::vector<int64_t>(passed, passed + count).size(), odd.size());
    for (int32_t k = 0; k < count && k < static_cast<int32_t>(odd.size()); ++k) {
      EXPECT_EQ(gaps[passed[k]], odd[static_cast<size_t>(k)]);
    }
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

  VCUTableMemory table{"T"};
};

using Rows = std::vector<int64_t>;

TEST_F(TableFilterTest, TextComparisonsFoldCaseUnlessTold) {
  EXPECT_EQ(Passing("text", VTTableFilterCompare::Equal, VCVariant("abc")), (Rows{1, 2, 3}));
  EXPECT_EQ(Passing("text", VTTableFilterCompare::Equal, VCVariant("abc"), 1), (Rows{1}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::NotEqual, VCVariant("ABC")), (Rows{4, 5}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::LessThan, VCVariant("abd"), 1), (Rows{1, 2, 3}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::GreaterOrEqual, VCVariant("abd")), (Rows{4, 5}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::LessOrEqual, VCVariant("ABC"), 1), (Rows{2}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::GreaterThan, VCVariant("w")), (Rows{5}));
}

TEST_F(TableFilterTest, TextSearches) {
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::Contains, VCVariant("B")), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::Contains, VCVariant("B"), 1), (Rows{2, 3}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::StartsWith, VCVariant("ab")), (Rows{1, 2, 3, 4}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::StartsWith, VCVariant("abcd")), (Rows{}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::EndsWith, VCVariant("Bc"), 1), (Rows{3}));
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::EndsWith, VCVariant("xx")), (Rows{}));
  for (auto c : {VTTableFilterCompare::Contains, VTTableFilterCompare::StartsWith,
                 VTTableFilterCompare::EndsWith}) {
    EXPECT_EQ(Passing("Text", c, VCVariant("")), (Rows{1, 2, 3, 4, 5}));
  }
  EXPECT_EQ(Passing("Text", VTTableFilterCompare::Contains, VCVariant("b"), 0, 0), (Rows{5}));
}

TEST_F(TableFilterTest, NumbersAndNaN) {
  EXPECT_EQ(Passing("D", VTTableFilterCompare::NotEqual, VCVariant(1.0)), (Rows{2, 3, 4, 5}));
  EXPECT_EQ(Passing("D", VTTableFilterCompare::GreaterOrEqual, VCVariant(0.0)), (Rows{1, 3, 5}));
  EXPECT_EQ(Passing("D", VTTableFilterCompare::LessThan, VCVariant(int32_t{3})), (Rows{1, 4, 5}));
  EXPECT_EQ(Passing("F", VTTableFilterCompare::NotEqual, VCVariant(std::nan(""))),
            (Rows{1, 2, 3, 4, 5}));
  EXPECT_EQ(Passing("F", VTTableFilterCompare::Equal, VCVariant(std::nan(""))), (Rows{}));
  EXPECT_EQ(Passing("F", VTTableFilterCompare::LessOrEqual, VCVariant("1")), (Rows{1, 4, 5}));
  // The value is converted to the column's type first: -0.5 is 0 as a short.
  EXPECT_EQ(Passing("S", VTTableFilterCompare::GreaterThan, VCVariant(-0.5)), (Rows{4, 5}));
}

TEST_F(TableFilterTest, ValidityAndInclusive) {
  EXPECT_EQ(Passing("F", VTTableFilterCompare::IsValid, VCVariant()), (Rows{1, 3, 5}));
  EXPECT_EQ(Passing("F", VTTableFilterCompare::IsInvalid, VCVariant()), (Rows{2, 4}));
  EXPECT_EQ(Passing("F", VTTableFilterCompare::IsValid, VCVariant(), 0, 0), (Rows{2, 4}));
  EXPECT_EQ(Passing("D", VTTableFilterCompare::IsValid, VCVariant()), (Rows{1, 2, 3, 4, 5}));
  EXPECT_EQ(Passing("D", VTTableFilterCompare::IsInvalid, VCVariant(), 0, 0),
            (Rows{1, 2, 3, 4, 5}));
}

TEST_F(TableFilterTest, BasicFilterErrors) {
  VCUTableFilterBasic filter;
  filter.SetColumnKeyword("D");
  ASSERT_TRUE(filter.SetCompare(VTTableFilterCompare::Contains));
  EXPECT_FALSE(filter.SetCompare(static_cast<VTTableFilterCompare>(11)));
  EXPECT_FALSE(filter.SetCompare(static_cast<VTTableFilterCompare>(-1)));
  EXPECT_FALSE(filter.Validate(&table));  // still Contains
  EXPECT_EQ(Errors(),
            (std::vector<Error>{{kTableErrorComparison, "Invalid comparison set for filter",
                                 "VCUTableFilterBasic::SetCompare"},
                                {kTableErrorComparison, "Invalid comparison set for filter",
                                 "VCUTableFilterBasic::SetCompare"},
                                {kTableErrorStringFilter, "Filter is only valid for string columns",
                                 "VCUTableFilterBasic::Validate"}}));
  VFErrorClear();
  filter.SetColumnKeyword("Nope");
  EXPECT_FALSE(filter.Validate(&table));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnNotFound, "Column not found: Nope",
                                           "VCUTable::GetColIndexFromKeyword"}}));
  VFErrorClear();
  table_test::HostTable host(static_cast<VTTableDataType>(9));
  filter.SetColumnKeyword("value");
  filter.SetCompare(VTTableFilterCompare::Equal);
  EXPECT_FALSE(filter.Validate(&host));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorFilterColumnType,
                                           "Unknown column data type used for filter",
                                           "VCUTableFilterBasic::Validate"}}));
  VFErrorClear();
  filter.SetColumnKeyword("D");
  ASSERT_TRUE(filter.Validate(&table));
  char pass = 1;
  EXPECT_FALSE(filter.CheckRow(&table, 6, &pass));
  EXPECT_EQ(pass, 0);
  EXPECT_EQ(Errors(), (std::vector<Error>{table_test::MemoryError("Invalid row number")}));
}

TEST_F(TableFilterTest, CompoundFiltersNeedTwoSubFilters) {
  VCUTableFilterAND both;
  VCUTableFilterOR either;
  EXPECT_FALSE(both.Validate(&table));
  either.SetFilters(new RecordingFilter({}), nullptr);
  EXPECT_FALSE(either.Validate(&table));
  EXPECT_EQ(Errors(), (std::vector<Error>{
                          {kTableErrorAndOperands, "AND filter must have two sub-filters assigned",
                           "VCUTableFilterAND::Validate"},
                          {kTableErrorOrOperands, "OR filter must have two sub-filters assigned",
                           "VCUTableFilterOR::Validate"}}));
}

TEST_F(TableFilterTest, CompoundFiltersShortCircuit) {
  for (bool block : {false, true}) {
    auto* first = new RecordingFilter({1, 2});
    auto* second = new RecordingFilter({2, 3});
    VCUTableFilterAND both;
    both.SetFilters(first, second);
    auto* orFirst = new RecordingFilter({1, 2});
    auto* orSecond = new RecordingFilter({2, 3});
    VCUTableFilterOR either;
    either.SetFilters(orFirst, orSecond);
    if (block) {
      EXPECT_EQ(Passing(both), (Rows{2}));
      EXPECT_EQ(Passing(either), (Rows{1, 2, 3}));
    } else {
      std::vector<int64_t> passBoth, passEither;
      for (int64_t row = 1; row <= 5; ++row) {
        char pass = 0;
        ASSERT_TRUE(both.CheckRow(&table, row, &pass));
        if (pass) passBoth.push_back(row);
        ASSERT_TRUE(either.CheckRow(&table, row, &pass));
        if (pass) passEither.push_back(row);
      }
      EXPECT_EQ(passBoth, (Rows{2}));
      EXPECT_EQ(passEither, (Rows{1, 2, 3}));
    }
    // The second sub-filter is asked only about rows the first left open:
    // by AND about rows 1 and 2, by OR about rows 3 to 5 (in each pass).
    for (int64_t row : second->asked) EXPECT_TRUE(row == 1 || row == 2) << row;
    for (int64_t row : orSecond->asked) EXPECT_TRUE(row >= 3) << row;
    EXPECT_EQ(second->asked.size(), block ? 7u : 2u);
    EXPECT_EQ(orSecond->asked.size(), block ? 11u : 3u);
  }
}

TEST_F(TableFilterTest, BlockChecksReportTheFirstFailingRow) {
  VCUTableFilterAND both;
  both.SetFilters(new RecordingFilter({1, 2, 3}, 4, 41), new RecordingFilter({}, 2, 22));
  const int32_t rows[] = {1, 2, 3, 4, 5};
  int32_t passed[5];
  int32_t count = 0;
  EXPECT_FALSE(both.CheckRows(&table, rows, 5, passed, &count));
  // Row by row, the second sub-filter fails at row 2 before the first
  // reaches row 4.
  EXPECT_EQ(Errors(), (std::vector<Error>{{22, "recorded failure", "RecordingFilter"}}));
}

TEST_F(TableFilterTest, ProcessFiltersTheMergedRows) {
  VCUTableMemory second("T2");
  const char* text[] = {"abx", "zzz"};
  second.AddCol("TEXT", 2, text);
  second.SetNumRows(2);
  VCUTableProcessor processor;
  processor.AddInputTable(&table);
  processor.AddInputTable(&second);
  processor.AddOutputColumn("Text");
  VCUTableFilterBasic filter;
  filter.SetColumnKeyword("text");
  filter.SetCompare(VTTableFilterCompare::StartsWith);
  filter.SetCompareValue(VCVariant("AB"));
  processor.SetFilter(&filter);
  ASSERT_TRUE(processor.Process());
  VCUTable* out = processor.GetOutputTable();
  int64_t rows = 0;
  ASSERT_TRUE(out->GetNumRows(&rows));
  VCStringArray texts;
  ASSERT_TRUE(out->GetValues_T(0, 1, rows, &texts));
  ASSERT_EQ(texts.GetSize(), 5);
  EXPECT_EQ(texts[0], "abc");
  EXPECT_EQ(texts[3], "abd");
  EXPECT_EQ(texts[4], "abx");
  processor.ClearOperations();
  ASSERT_TRUE(processor.Process());
  ASSERT_TRUE(out->GetNumRows(&rows));
  EXPECT_EQ(rows, 7);
}

TEST_F(TableFilterTest, ProcessReportsTheFailingRowOfAFilter) {
  table.SetNumRows(7);  // two more rows than the columns hold
  VCUTableProcessor processor;
  processor.AddInputTable(&table);
  processor.AddOutputColumn("D");
  VCUTableFilterBasic filter;
  filter.SetColumnKeyword("D");
  filter.SetCompare(VTTableFilterCompare::GreaterThan);
  processor.SetFilter(&filter);
  EXPECT_FALSE(processor.Process());
  EXPECT_EQ(Errors(), (std::vector<Error>{table_test::MemoryError("Invalid row number"),
                                          {kTableErrorProcessFailed,
                                           "Failed to process filtering and sorting on table",
                                           "VCUTableProcessor::Process", 1}}));
}

}  // namespace
