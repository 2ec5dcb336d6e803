// The compression's own checks; what it keeps: tests/data/table/compress.case.
#include <utilkit/table/table_compress.h>
#include <utilkit/table/table_errors.h>

#include <gtest/gtest.h>

#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "table_test_util.h"

namespace {

TEST(TableCompressTest, EmptyRowsAreLeftAlone) {
  VFErrorClear();
  VCUTableMemory table("T");
  const int32_t a[] = {1, 1, 2};
  const double b[] = {5, 9, 3};
  table.AddCol("A", 3, a);
  table.AddCol("B", 3, b);
  table.SetNumRows(3);
  VCUTableProcessor processor;
  processor.AddInputTable(&table);
  processor.AddOutputColumn("A");
  ASSERT_TRUE(processor.Process());
  VCUTableCompress compress(0);
  compress.AddSearchColumn("A");
  compress.SetSelectColumn("B");
  compress.SetSelectType(VTCompressType::Sum);
  ASSERT_TRUE(compress.Validate(processor.GetInputData()));
  VCDataArray<int32_t> rows;
  EXPECT_TRUE(compress.DoCompress(processor.GetInputData(), rows));
  EXPECT_EQ(rows.GetSize(), 0);
  EXPECT_TRUE(table_test::Errors().empty());
}

TEST(TableCompressTest, InvalidSelectTypeIsRefused) {
  VFErrorClear();
  VCUTableCompress compress(0);
  ASSERT_TRUE(compress.SetSelectType(VTCompressType::Minimum));
  EXPECT_FAILS(compress.SetSelectType(static_cast<VTCompressType>(3)),
               {kTableErrorSelectionType, "Invalid selection type set for Compression operation.",
                "VCUTableCompress::SetSelectType"});
  EXPECT_EQ(compress.GetSelectType(), VTCompressType::Minimum);
}

}  // namespace
