#include <utilkit/base/preference_system.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_errors.h>
#include <utilkit/table/table_processor.h>
#include <utilkit/table/table_sort.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "table/table_test_util.h"

using table_test::Cells;
using table_test::Error;
using table_test::Errors;

namespace {

constexpr const char* kRowLimit = "/Libraries/utilkit/MaximumTableProcessorRows";
const Error kSummary{kTableErrorProcessFailed, "Failed to process filtering and sorting on table",
                     "VCUTableProcessor::Process", 1};

class TableProcessorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    a.SetColUnits(1, "kN");
  }
  void TearDown() override {
    VFErrorClear();
    VCPreferenceSystem::Remove(kRowLimit);
  }

  std::vector<std::string> OutputKeywords() {
    VCUTable* out = processor->GetOutputTable();
    int32_t cols = 0;
    EXPECT_TRUE(out->GetNumCols(&cols));
    std::vector<std::string> keywords(static_cast<size_t>(cols));
    for (int32_t c = 0; c < cols; ++c) {
      VCString keyword;
      EXPECT_TRUE(out->GetColKeyword(c, &keyword));
      keywords[static_cast<size_t>(c)] = keyword.str();
    }
    return keywords;
  }
  std::vector<double> OutputDoubles(int32_t col) {
    return table_test::Doubles(processor->GetOutputTable(), col);
  }
  // Runs `tables` (whole) into the output column `column`.
  void Run(std::vector<VCUTableMemory*> tables, const char* column) {
    for (VCUTableMemory* t : tables) ASSERT_TRUE(processor->AddInputTable(t));
    processor->AddOutputColumn(column);
    ASSERT_TRUE(processor->Process());
  }

  table_test::CsvTable a{"A",
                         "Name,Force:double,Force:status,OnlyA:long,Grade:enum(1=low|2=high)\n"
                         "a1,1,0x8000,7,high\na2,2,0,8,low\na3,3,0x8000,9,high\n"};
  table_test::CsvTable b{"B", "name,FORCE:double,Extra:float\nb1,4,0.5\nb2,5,1.5\n"};
  std::unique_ptr<VCUTableProcessor> processor = std::make_unique<VCUTableProcessor>();
};

// Merged rows follow the input tables (see also tests/data/table/merging.case);
// each row knows its input table.
TEST_F(TableProcessorTest, MergedRowsKnowTheirInputTable) {
  Run({&a, &b}, "force");
  VCUTableData* merged = processor->GetInputData();
  int32_t index[3] = {-1, -1, -1};
  ASSERT_TRUE(merged->GetInputTableIndexForRow(4, &index[0]) &&
              merged->GetInputTableIndexForRow(3, &index[1]) &&
              processor->GetOutputTable()->GetInputTableIndexForRow(5, &index[2]));
  EXPECT_EQ(Cells(index, 3), (std::vector<int32_t>{1, 0, 1}));
  VCString text[3];
  ASSERT_TRUE(merged->GetTableName(&text[0]) &&
              processor->GetOutputTable()->GetTableName(&text[1]) &&
              processor->GetOutputTable()->GetColUnits(0, &text[2]));
  EXPECT_EQ(Cells(text, 3), (std::vector<VCString>{"Input", "Output", "kN"}));
  // The output column shows the merged column as the inputs spell it.
  EXPECT_EQ(OutputKeywords(), (std::vector<std::string>{"Force"}));
  EXPECT_TRUE(Errors().empty());
}

// Columns and values of missing cells: tests/data/table/merging.case.
TEST_F(TableProcessorTest, AllColumnsStatusOfAColumnWithoutStatusIsTheInputsError) {
  processor->AddInputTable(&a);
  processor->AddInputTable(&b);
  ASSERT_TRUE(processor->AddAllInputColsToOutput(0));
  ASSERT_TRUE(processor->Process());
  VCUTable* out = processor->GetOutputTable();
  char has = 1;
  ASSERT_TRUE(out->GetColHasStatus(4, &has));
  EXPECT_EQ(has, 0);
  uint16_t status[1];
  EXPECT_FAILS(out->GetStatusValues(4, 4, 1, status),
               table_test::MemoryError("Column has no status data"));
}

TEST_F(TableProcessorTest, GetColIndeces) {
  processor->AddInputTable(&a);
  processor->AddInputTable(&b);
  VCArray<int32_t> indices;
  VCArray<char> has;
  VTTableDataType type;
  ASSERT_TRUE(processor->GetColIndeces("FORCE", &indices, &has, &type));
  EXPECT_EQ(std::vector<int32_t>(indices.begin(), indices.end()), (std::vector<int32_t>{1, 1}));
  EXPECT_EQ(std::vector<char>(has.begin(), has.end()), (std::vector<char>{1, 0}));
  EXPECT_EQ(type, VTTableDataType::Double);
  EXPECT_FAILS(
      processor->GetColIndeces("Extra", &indices, &has, &type),
      {kTableErrorColumnNotFound, "Column not found: Extra", "VCUTable::GetColIndexFromKeyword"});
  processor->AddAllInputColsToOutput(0);
  ASSERT_TRUE(processor->GetColIndeces("Extra", &indices, &has, &type));
  EXPECT_EQ(std::vector<int32_t>(indices.begin(), indices.end()), (std::vector<int32_t>{-1, 2}));
  EXPECT_EQ(type, VTTableDataType::Float);
  EXPECT_FAILS(
      processor->GetColIndeces("Nope", &indices, &has, &type),
      {kTableErrorColumnNotFound, "Column not found: Nope", "VCUTableProcessor::GetColIndeces"});
}

TEST_F(TableProcessorTest, SelectedRowsKeepTheirOrderAndTheirTable) {
  const int64_t fromA[] = {3, 1};
  const int64_t fromB[] = {2};
  ASSERT_TRUE(processor->AddInputTable(&a, fromA, 2));
  ASSERT_TRUE(processor->AddInputTable(&b, fromB, 1));
  Run({}, "Force");
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{3, 1, 5}));
  int32_t index = -1;
  ASSERT_TRUE(processor->GetInputData()->GetInputTableIndexForRow(3, &index));
  EXPECT_EQ(index, 1);
}

TEST_F(TableProcessorTest, WithSelectedRowsATableAddedWholeAddsNoRows) {
  const int64_t fromB[] = {2};
  ASSERT_TRUE(processor->AddInputTable(&a));
  ASSERT_TRUE(processor->AddInputTable(&b, fromB, 1));
  Run({}, "Force");
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{5}));
  ASSERT_TRUE(processor->ClearInputTables());
  Run({&a}, "Force");
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{1, 2, 3}));
}

TEST_F(TableProcessorTest, ConfigurationErrors) {
  EXPECT_FAILS(processor->Process(),
               {kTableErrorNoInputTables, "No input tables defined", "VCUTableProcessor::Validate"},
               kSummary);
  ASSERT_TRUE(processor->AddInputTable(&a));
  EXPECT_FAILS(processor->AddInputTable(&a),
               {kTableErrorTableAddedTwice, "Table has already been added to the operation list",
                "VCUTableProcessor::AddInputTable"});
  EXPECT_FAILS(processor->RemoveInputTable(&b),
               {kTableErrorTableNotDefined,
                "Attempt to remove a table from the table processor which is not defined",
                "VCUTableProcessor::RemoveInputTable"});
  EXPECT_FAILS(processor->Validate(),
               {kTableErrorNoOutputColumns, "No output columns defined for table",
                "VCUTableProcessor::Validate"});
  processor->AddOutputColumn("Name");
  processor->AddOutputColumn("Nope");
  EXPECT_FAILS(
      processor->Process(),
      {kTableErrorColumnNotFound, "Column not found: Nope", "VCUTable::GetColIndexFromKeyword"},
      kSummary);
  EXPECT_FAILS(processor->RemoveOutputColumn("Other"),
               {kTableErrorColumnNotFound, "Column not found: Other",
                "VCUTableProcessor::RemoveOutputColumn"});
  ASSERT_TRUE(processor->RemoveOutputColumn("NOPE"));
  EXPECT_TRUE(processor->Process());
}

// A row past the end: tests/data/table/merging.case.
TEST_F(TableProcessorTest, SelectedRowZeroIsOutOfRange) {
  const int64_t zero[] = {0};
  EXPECT_FAILS(processor->AddInputTable(&b, zero, 1),
               {kTableErrorInputRow, "Out of range row number passed to AddInputTable",
                "VCUTableProcessor::AddInputTable"});
}

TEST_F(TableProcessorTest, RowLimitAtTheLimitAndOneOver) {
  VCPreferenceSystem::SetHugeValue(kRowLimit, 5);
  processor = std::make_unique<VCUTableProcessor>();
  Run({&a, &b}, "Name");
  const char* name[] = {"c1"};
  VCUTableMemory c("C");
  c.AddCol("Name", 1, name);
  c.SetNumRows(1);
  processor->AddInputTable(&c);
  const Error tooMany{kTableErrorTooManyRows,
                      "Too many table rows to perform sort and filter. You can increase \nthe "
                      "limit via the preference /Libraries/utilkit/MaximumTableProcessorRows",
                      "VCUTableProcessor::Process"};
  EXPECT_FAILS(processor->Process(), tooMany, kSummary);
  // Selected rows count against the limit when they are added.
  processor = std::make_unique<VCUTableProcessor>();
  const int64_t rows[] = {1, 2, 3, 1, 2};
  ASSERT_TRUE(processor->AddInputTable(&a, rows, 5));
  EXPECT_FAILS(processor->AddInputTable(&b, rows, 1),
               {tooMany.code, tooMany.message, "VCUTableProcessor::AddInputTable"});
}

// The limit is checked before the rows are: a count just within it gets to
// the second row (0, out of range), a count one over does not.
TEST_F(TableProcessorTest, RowLimitDefaultAndCap) {
  const int64_t rows[] = {1, 0};
  for (const auto& [preference, limit] :
       {std::pair<int64_t, int64_t>{-1, 50000000}, {3000000000, 2000000000}}) {
    if (preference >= 0) VCPreferenceSystem::SetHugeValue(kRowLimit, preference);
    for (const auto& [count, code] :
         {std::pair{limit + 1, kTableErrorTooManyRows}, std::pair{limit, kTableErrorInputRow}}) {
      processor = std::make_unique<VCUTableProcessor>();
      EXPECT_FALSE(processor->AddInputTable(&a, rows, count));
      EXPECT_EQ(table_test::TakeErrors().at(0).code, code) << count;
    }
  }
}

TEST_F(TableProcessorTest, ViewsCheckColumnsAndRows) {
  Run({&a}, "Force");
  double d[4];
  VCUTableData* merged = processor->GetInputData();
  VCUTable* out = processor->GetOutputTable();
  EXPECT_FALSE(merged->GetValues_D(9, 1, 1, d));
  EXPECT_FALSE(merged->GetValues_D(1, 3, 2, d));
  EXPECT_TRUE(merged->GetValues_D(1, 4, 0, d));
  EXPECT_FALSE(out->GetValues_D(1, 1, 1, d));
  EXPECT_FALSE(out->GetValues_D(0, 0, 1, d));
  int32_t index;
  EXPECT_FAILS(
      merged->GetInputTableIndexForRow(4, &index),
      {kTableErrorColumnIndex, "Column index out of range", "VCUTableData::GetValues_D"},
      {kTableErrorRowNumber, "Row number out of range", "VCUTableData::GetValues_D"},
      {kTableErrorColumnIndex, "Column index out of range", "VCUOutputTable::GetValues_D"},
      {kTableErrorRowNumber, "Row number out of range", "VCUOutputTable::GetValues_D"},
      {kTableErrorRowNumber, "Row number out of range", "VCUTableData::GetInputTableIndexForRow"});
  // Changing the inputs drops the merged columns until the next Process.
  processor->RemoveInputTable(&a);
  EXPECT_FALSE(out->GetValues_D(0, 1, 1, d));
  EXPECT_EQ(Errors()[0].location, "VCUOutputTable::GetValues_D");
}

TEST_F(TableProcessorTest, BulkReadsReportTheFirstFailingCell) {
  a.SetNumRows(4);  // one more row than the columns hold
  Run({&a, &b}, "Force");
  double d[6] = {};
  EXPECT_FAILS(processor->GetOutputTable()->GetValues_D(0, 1, 6, d),
               table_test::MemoryError("Invalid row number"));
  EXPECT_EQ(d[2], 3.0);  // the cells before the failing one were read
}

TEST_F(TableProcessorTest, WritableColumns) {
  Run({&a, &b}, "Force");
  VCUTableData* merged = processor->GetInputData();
  EXPECT_FALSE(merged->SetColWritable(0));
  EXPECT_FALSE(merged->WriteInputColValue(1, 1, 9.0));
  ASSERT_TRUE(merged->SetColWritable(1));
  EXPECT_TRUE(merged->GetColWritable(1));
  ASSERT_TRUE(merged->WriteInputColValue(1, 4, 40.0));
  ASSERT_TRUE(merged->WriteInputColStatusValue(1, 4, 0x0001));
  EXPECT_FALSE(merged->WriteInputColValue(1, 6, 1.0));
  EXPECT_FAILS(
      merged->WriteInputColValue(7, 1, 1.0),
      {kTableErrorWritableType, "Invalid type for writable column in VCUTableData",
       "VCUTableData::SetColWritable"},
      {kTableErrorNotWritable, "Attempt to write to a column that is not writable",
       "VCUTableData::WriteInputColValue"},
      {kTableErrorRowNumber, "Row number out of range", "VCUTableData::WriteInputColValue"},
      {kTableErrorColumnIndex, "Column index out of range", "VCUTableData::WriteInputColValue"});
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{1, 2, 3, 40, 5}));
  uint16_t status[2];
  ASSERT_TRUE(processor->GetOutputTable()->GetStatusValues(0, 3, 2, status));
  EXPECT_EQ(Cells(status, 2), (std::vector<uint16_t>{0x8000, 0x0001}));
  // Processing again refills the column from the inputs.
  ASSERT_TRUE(processor->Process());
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{1, 2, 3, 4, 5}));
  // A column without status refuses status writes.
  ASSERT_TRUE(processor->ClearInputTables() && processor->AddInputTable(&b) &&
              processor->Process());
  merged = processor->GetInputData();
  ASSERT_TRUE(merged->SetColWritable(1));
  EXPECT_FAILS(merged->WriteInputColStatusValue(1, 1, 0x8000),
               {kTableErrorNotWritable, "Attempt to write to a column that is not writable",
                "VCUTableData::WriteInputColStatusValue"});
}

// Written cells lie over the input's wherever a read starts or ends; the
// input table itself is never changed.
TEST_F(TableProcessorTest, WrittenCellsShowInEveryReadThatCoversThem) {
  std::vector<double> values(200);
  std::vector<uint16_t> status(200, 0x8000);
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<double>(i + 1);
  VCUTableMemory big("Big");
  big.AddCol("V", 200, values.data());
  big.SetColStatus("V", 200, status.data());
  big.SetNumRows(200);
  Run({&big}, "V");
  VCUTableData* merged = processor->GetInputData();
  ASSERT_TRUE(merged->SetColWritable(0));
  for (const int64_t row : {1, 64, 65, 200}) {
    ASSERT_TRUE(merged->WriteInputColValue(0, row, -static_cast<double>(row)));
  }
  ASSERT_TRUE(merged->WriteInputColStatusValue(0, 65, 0x0004));
  ASSERT_TRUE(merged->SetColWritable(0));  // keeps what was written
  double read[5] = {};
  ASSERT_TRUE(merged->GetValues_D(0, 62, 5, read));
  EXPECT_EQ(Cells(read, 5), (std::vector<double>{62, 63, -64, -65, 66}));
  ASSERT_TRUE(merged->GetValues_D(0, 200, 1, read));
  EXPECT_EQ(read[0], -200);
  uint16_t words[3] = {};
  ASSERT_TRUE(merged->GetStatusValues(0, 64, 3, words));
  EXPECT_EQ(Cells(words, 3), (std::vector<uint16_t>{0x8000, 0x0004, 0x8000}));
  std::vector<double> all = OutputDoubles(0);
  EXPECT_EQ(Cells(all.data(), 2), (std::vector<double>{-1, 2}));
  double original = 0;
  ASSERT_TRUE(big.GetValues_D(0, 64, 1, &original));
  EXPECT_EQ(original, 64);
}

// The merged view peeks into one input table's run of a column as long as
// no cell of the column was written.
TEST_F(TableProcessorTest, PeekValuesWithinOneInputTable) {
  processor->AddInputTable(&a);
  processor->AddInputTable(&b);
  ASSERT_TRUE(processor->AddAllInputColsToOutput(0));
  ASSERT_TRUE(processor->Process());
  VCUTableData* merged = processor->GetInputData();
  int32_t force = -1, extra = -1;
  ASSERT_TRUE(merged->GetColIndexFromKeyword("Force", &force));
  ASSERT_TRUE(merged->GetColIndexFromKeyword("Extra", &extra));
  const double* cells = merged->PeekValues_D(force, 4, 2);
  ASSERT_NE(cells, nullptr);
  EXPECT_EQ(Cells(cells, 2), (std::vector<double>{4, 5}));
  EXPECT_EQ(merged->PeekValues_D(force, 3, 2), nullptr);  // two tables
  EXPECT_EQ(merged->PeekValues_D(force, 5, 2), nullptr);  // past the end
  EXPECT_EQ(merged->PeekValues_D(extra, 4, 1), nullptr);  // Float
  ASSERT_TRUE(merged->SetColWritable(force));
  EXPECT_NE(merged->PeekValues_D(force, 1, 3), nullptr);
  ASSERT_TRUE(merged->WriteInputColValue(force, 5, 50.0));
  EXPECT_EQ(merged->PeekValues_D(force, 1, 3), nullptr);
  EXPECT_TRUE(Errors().empty());
}

// Texts kept in dictionaries are lent as views in any output order, across
// input tables; equal texts of two dictionaries sort as equal (stably). A
// bad request gets nothing and leaves no record.
TEST_F(TableProcessorTest, PeekTextsLendsTheInputsTextsInOutputOrder) {
  VCUDictionary pools[2];
  VCUTableMemory c("C"), d("D");
  const double force[] = {6, 7, 8, 9};
  for (int t = 0; t < 2; ++t) {
    VCUTableMemory& table = t == 0 ? c : d;
    VCUDictionaryRef* refs[] = {pools[t].InsertString(t == 0 ? "c1" : "c2"),
                                pools[t].InsertString(t == 0 ? "c2" : "c1")};
    table.AddCol("Name", 2, refs, pools[t]);
    table.AddCol("Force", 2, force + 2 * t);
    table.SetNumRows(2);
    processor->AddInputTable(&table);
  }
  processor->AddOutputColumn("Name");
  VCUTableSort sort;
  sort.AddColumn("Name", 0, 1);
  processor->SetSort(&sort);
  Run({}, "Force");
  std::string_view views[4];
  ASSERT_TRUE(processor->GetOutputTable()->PeekTexts(0, 1, 4, views));
  EXPECT_EQ(Cells(views, 4), (std::vector<std::string_view>{"c2", "c2", "c1", "c1"}));
  EXPECT_EQ(OutputDoubles(1), (std::vector<double>{7, 8, 6, 9}));
  ASSERT_TRUE(processor->GetInputData()->PeekTexts(0, 2, 2, views));
  EXPECT_EQ(Cells(views, 2), (std::vector<std::string_view>{"c2", "c2"}));
  EXPECT_FALSE(processor->GetOutputTable()->PeekTexts(1, 1, 1, views));  // Double
  EXPECT_FALSE(processor->GetOutputTable()->PeekTexts(0, 4, 2, views));
  EXPECT_FALSE(processor->GetOutputTable()->PeekTexts(2, 1, 1, views));
  EXPECT_FALSE(processor->GetInputData()->PeekTexts(0, 0, 1, views));
  EXPECT_TRUE(Errors().empty());
}

}  // namespace
