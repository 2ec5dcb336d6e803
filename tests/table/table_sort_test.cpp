// Sort and compression on their own (what they keep, through the processor:
// tests/data/table/sort.case and compress.case).
#include <utilkit/table/table_compress.h>
#include <utilkit/table/table_errors.h>
#include <utilkit/table/table_sort.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "table_test_util.h"

using table_test::Error;
using table_test::Errors;

namespace {

class TableSortTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  // Sorts every row of `table` and returns the row numbers in sorted order.
  static std::vector<int32_t> Sort(VCUTableSort& sort, VCUTable& table) {
    int64_t n = 0;
    table.GetNumRows(&n);
    VCDataArray<int32_t> rows;
    rows.SetSize(static_cast<int32_t>(n));
    for (int32_t i = 0; i < rows.GetSize(); ++i) rows[i] = i + 1;
    EXPECT_TRUE(sort.Validate(&table));
    EXPECT_TRUE(sort.DoSort(&table, rows));
    return {rows.begin(), rows.end()};
  }
};

// Random tables whose columns take each ordering path (runs ordered by
// counting, by radix passes and by insertion; narrow and wide key ranges,
// negative numbers, many and few ties) against a plain stable sort that
// compares the cells themselves.
TEST_F(TableSortTest, AgreesWithAPlainStableSortOnRandomTables) {
  uint64_t seed = 7;
  auto next = [&seed] {
    seed = seed * 6364136223846793005u + 1442695040888963407u;
    return seed >> 20;
  };
  for (const int32_t n : {0, 1, 2, 31, 33, 500, 5000, 70000}) {
    for (const int32_t spread : {1, 3, 40, 70000, 1 << 30}) {
      std::vector<int16_t> a(n);
      std::vector<int64_t> b(n);
      std::vector<double> c(n);
      for (int32_t i = 0; i < n; ++i) {
        a[i] = static_cast<int16_t>(static_cast<int64_t>(next() % 7) - 3);
        b[i] = static_cast<int64_t>(next() % spread) - spread / 2;
        c[i] = static_cast<double>(static_cast<int64_t>(next() % 1000) - 500) / 8;
      }
      VCUTableMemory table("T");
      table.AddCol("A", n, a.data());
      table.AddCol("B", n, b.data());
      table.AddCol("C", n, c.data());
      table.SetNumRows(n);
      VCUTableSort sort;
      sort.AddColumn("B", 0, 1);
      sort.AddColumn("A", 1, 1);
      sort.AddColumn("C", 0, 1);
      std::vector<int32_t> expected(n);
      for (int32_t i = 0; i < n; ++i) expected[i] = i + 1;
      std::stable_sort(expected.begin(), expected.end(), [&](int32_t x, int32_t y) {
        const size_t p = static_cast<size_t>(x - 1), q = static_cast<size_t>(y - 1);
        if (b[p] != b[q]) return b[p] > b[q];
        if (a[p] != a[q]) return a[p] < a[q];
        return c[p] > c[q];
      });
      ASSERT_EQ(Sort(sort, table), expected) << n << " rows, spread " << spread;
    }
  }
}

TEST_F(TableSortTest, EmptyRowsSortAndCompressToNothing) {
  VCUTableMemory table("T");
  const int32_t k[] = {1, 1, 2};
  const double v[] = {5, 9, 3};
  table.AddCol("K", 3, k);
  table.AddCol("V", 3, v);
  table.SetNumRows(3);
  VCUTableSort sort;
  sort.AddColumn("K", 1, 1);
  VCDataArray<int32_t> rows;
  ASSERT_TRUE(sort.Validate(&table));
  EXPECT_TRUE(sort.DoSort(&table, rows));
  VCUTableProcessor processor;
  processor.AddInputTable(&table);
  processor.AddOutputColumn("K");
  ASSERT_TRUE(processor.Process());
  VCUTableCompress compress(0);
  compress.AddSearchColumn("K");
  compress.SetSelectColumn("V");
  compress.SetSelectType(VTCompressType::Sum);
  ASSERT_TRUE(compress.Validate(processor.GetInputData()));
  EXPECT_TRUE(compress.DoCompress(processor.GetInputData(), rows));
  EXPECT_EQ(rows.GetSize(), 0);
  EXPECT_TRUE(Errors().empty());
}

TEST_F(TableSortTest, InvalidCompressSelectTypeIsRefused) {
  VCUTableCompress compress(0);
  ASSERT_TRUE(compress.SetSelectType(VTCompressType::Minimum));
  EXPECT_FAILS(compress.SetSelectType(static_cast<VTCompressType>(3)),
               {kTableErrorSelectionType, "Invalid selection type set for Compression operation.",
                "VCUTableCompress::SetSelectType"});
  EXPECT_EQ(compress.GetSelectType(), VTCompressType::Minimum);
}

TEST_F(TableSortTest, FailedReadFailsTheSort) {
  table_test::HostTable table(VTTableDataType::Text);
  VCUTableSort sort;
  sort.AddColumn("Value", 1, 1);
  ASSERT_TRUE(sort.Validate(&table));
  VCDataArray<int32_t> rows;
  rows.Add(1);
  rows.Add(2);
  EXPECT_FAILS(sort.DoSort(&table, rows), {7, "refused", "HostTable"},
               {kTableErrorSortFailed, "Sort operation failed", "VCUTableSort::DoSort", 1});
}

}  // namespace
