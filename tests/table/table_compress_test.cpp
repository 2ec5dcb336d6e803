#include <utilkit/table/table_compress.h>
#include <utilkit/table/table_errors.h>

#include <gtest/gtest.h>

#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "table_test_util.h"

using table_test::Error;
using table_test::Errors;

namespace {

class TableCompressTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  // Merges `tables` in a processor and returns its merged view.
  VCUTableData* Merge(std::vector<VCUTable*> tables, const char* column = "A") {
    for (VCUTable* t : tables) m_processor.AddInputTable(t);
    m_processor.AddOutputColumn(column);
    EXPECT_TRUE(m_processor.Process());
    return m_processor.GetInputData();
  }

  // Compresses every merged row; returns the kept merged rows.
  static std::vector<int32_t> Compress(VCUTableCompress& compress, VCUTableData* data) {
    int64_t n = 0;
    data->GetNumRows(&n);
    VCDataArray<int32_t> rows;
    rows.SetSize(static_cast<int32_t>(n));
    for (int32_t i = 0; i < rows.GetSize(); ++i) rows[i] = i + 1;
    EXPECT_TRUE(compress.Validate(data));
    EXPECT_TRUE(compress.DoCompress(data, rows));
    return {rows.begin(), rows.end()};
  }

  // Searches `search`, selects "B" by `type`.
  static void Configure(VCUTableCompress& compress, VTCompressType type, const char* search = "A") {
    compress.AddSearchColumn(search);
    compress.SetSelectColumn("B");
    compress.SetSelectType(type);
  }

  VCUTableProcessor m_processor;
};

// A = {1, 1, 2}, B = {5, 9, 3}.
VCUTableMemory SmallTable() {
  VCUTableMemory table("T");
  const int32_t a[] = {1, 1, 2};
  const double b[] = {5, 9, 3};
  table.AddCol("A", 3, a);
  table.AddCol("B", 3, b);
  table.SetNumRows(3);
  return table;
}

TEST_F(TableCompressTest, KeptRowsStayInInputOrderAndEqualMaximaKeepTheFirst) {
  VCUTableMemory table("T");
  const int32_t a[] = {2, 1, 2, 1, 1, 2};
  const double b[] = {3, 7, 1, 7, 2, 3};
  table.AddCol("A", 6, a);
  table.AddCol("B", 6, b);
  table.SetNumRows(6);
  VCUTableData* data = Merge({&table});
  VCUTableCompress compress(0);
  compress.AddSearchColumn("A");
  compress.SetSelectColumn("B");
  EXPECT_EQ(Compress(compress, data), (std::vector<int32_t>{1, 2}));
}

TEST_F(TableCompressTest, TextSearchValuesMatchExactly) {
  VCUTableMemory table("T");
  const char* a[] = {"a", "A", "a", "A"};
  const char* b[] = {"x", "y", "z", "b"};
  table.AddCol("A", 4, a);
  table.AddCol("B", 4, b);
  table.SetNumRows(4);
  VCUTableData* data = Merge({&table});
  VCUTableCompress largest(0);
  Configure(largest, VTCompressType::Maximum);
  EXPECT_EQ(Compress(largest, data), (std::vector<int32_t>{2, 3}));
  VCUTableCompress smallest(0);
  Configure(smallest, VTCompressType::Minimum);
  EXPECT_EQ(Compress(smallest, data), (std::vector<int32_t>{1, 4}));
}

TEST_F(TableCompressTest, EmptyRowsAreLeftAlone) {
  VCUTableMemory table = SmallTable();
  VCUTableData* data = Merge({&table});
  VCUTableCompress compress(0);
  Configure(compress, VTCompressType::Sum);
  ASSERT_TRUE(compress.Validate(data));
  VCDataArray<int32_t> rows;
  EXPECT_TRUE(compress.DoCompress(data, rows));
  EXPECT_EQ(rows.GetSize(), 0);
  EXPECT_TRUE(Errors().empty());
}

TEST_F(TableCompressTest, InvalidSelectTypeIsRefused) {
  VCUTableCompress compress(0);
  ASSERT_TRUE(compress.SetSelectType(VTCompressType::Minimum));
  EXPECT_FALSE(compress.SetSelectType(static_cast<VTCompressType>(3)));
  EXPECT_EQ(compress.GetSelectType(), VTCompressType::Minimum);
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorSelectionType,
                                           "Invalid selection type set for Compression operation.",
                                           "VCUTableCompress::SetSelectType"}}));
}

TEST_F(TableCompressTest, ValidateErrors) {
  VCUTableMemory table = SmallTable();
  VCUTableData* data = Merge({&table});
  const Error summary{kTableErrorCompression, "Invalid compression operation configured",
                      "VCUTableCompress::Validate", 1};
  auto check = [&](VCUTableCompress& compress, const Error& cause) {
    EXPECT_FALSE(compress.Validate(data));
    EXPECT_EQ(Errors(), (std::vector<Error>{cause, summary}));
    VFErrorClear();
  };
  VCUTableCompress noSearch(0);
  noSearch.SetSelectColumn("B");
  check(noSearch,
        {kTableErrorNoSearchColumns, "No search columns configured", "VCUTableCompress::Validate"});
  VCUTableCompress noSelect(0);
  noSelect.AddSearchColumn("A");
  check(noSelect,
        {kTableErrorNoSelectColumn, "No select column configured", "VCUTableCompress::Validate"});
  VCUTableCompress unknown(0);
  Configure(unknown, VTCompressType::Maximum, "Missing");
  check(unknown, {kTableErrorColumnNotFound, "Column not found: Missing",
                  "VCUTable::GetColIndexFromKeyword"});
  VCUTableCompress sumOfLong(0);
  sumOfLong.AddSearchColumn("B");
  sumOfLong.SetSelectColumn("A");
  sumOfLong.SetSelectType(VTCompressType::Sum);
  check(sumOfLong, {kTableErrorWritableType, "Invalid type for writable column in VCUTableData",
                    "VCUTableCompress::Validate"});
  EXPECT_EQ(noSearch.GetSelectColumn(), VCString("B"));
  EXPECT_EQ(noSelect.GetSearchColumns().GetSize(), 1);
}

}  // namespace
