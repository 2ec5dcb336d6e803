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
    const char* names[] = {"a1", "a2", "a3"};
    const double force[] = {1, 2, 3};
    const uint16_t status[] = {0x8000, 0, 0x8000};
    const int32_t only[] = {7, 8, 9};
    const int32_t codes[] = {1, 2};
    const char* options[] = {"low", "high"};
    const int32_t grade[] = {2, 1, 2};
    a.AddCol("Name", 3, names);
    a.AddCol("Force", 3, force);
    a.SetColStatus("Force", 3, status);
    a.SetColUnits(1, "kN");
    a.AddCol("OnlyA", 3, only);
    a.AddCol("Grade", 2, codes, options, 3, grade);
    a.SetNumRows(3);
    const char* bnames[] = {"b1", "b2"};
    const double bforce[] = {4, 5};
    const float extra[] = {0.5f, 1.5f};
    b.AddCol("name", 2, bnames);
    b.AddCol("FORCE", 2, bforce);
    b.AddCol("Extra", 2, extra);
    b.SetNumRows(2);
  }
  void TearDown() override {
    VFErrorClear();
    VCPreferenceSystem::Remove(kRowLimit);
  }

  std::vector<std::string> OutputKeywords() {
    VCUTable* out = processor->GetOutputTable();
    int32_t cols = 0;
    EXPECT_TRUE(out->GetNumCols(&cols));
    std::vector<std::string> keywords;
    for (int32_t c = 0; c < cols; ++c) {
      VCString keyword;
      EXPECT_TRUE(out->GetColKeyword(c, &keyword));
      keywords.push_back(keyword.str());
    }
    return keywords;
  }

  std::vector<double> OutputDoubles(int32_t col) {
    VCUTable* out = processor->GetOutputTable();
    int64_t rows = 0;
    EXPECT_TRUE(out->GetNumRows(&rows));
    std::vector<double> values(static_cast<size_t>(rows));
    EXPECT_TRUE(out->GetValues_D(col, 1, rows, values.data()));
    return values;
  }

  VCUTableMemory a{"A"};
  VCUTableMemory b{"B"};
  std::unique_ptr<VCUTableProcessor> processor = std::make_unique<VCUTableProcessor>();
};

TEST_F(TableProcessorTest, MergedRowsFollowTheInputTablesInOrder) {
  ASSERT_TRUE(processor->AddInputTable(&a));
  ASSERT_TRUE(processor->AddInputTable(&b));
  ASSERT_TRUE(processor->AddOutputColumn("force"));
  ASSERT_TRUE(processor->Process());
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{1, 2, 3, 4, 5}));
  VCUTableData* merged = processor->GetInputData();
  int64_t rows = 0;
  ASSERT_TRUE(merged->GetNumRows(&rows));
  EXPECT_EQ(rows, 5);
  int32_t index = -1;
  ASSERT_TRUE(merged->GetInputTableIndexForRow(4, &index));
  EXPECT_EQ(index, 1);
  ASSERT_TRUE(merged->GetInputTableIndexForRow(3, &index));
  EXPECT_EQ(index, 0);
  ASSERT_TRUE(processor->GetOutputTable()->GetInputTableIndexForRow(5, &index));
  EXPECT_EQ(index, 1);
  VCString text;
  ASSERT_TRUE(merged->GetTableName(&text));
  EXPECT_EQ(text, "Input");
  ASSERT_TRUE(processor->GetOutputTable()->GetTableName(&text));
  EXPECT_EQ(text, "Output");
  // The output column shows the merged column as the inputs spell it.
  EXPECT_EQ(OutputKeywords(), (std::vector<std::string>{"Force"}));
  ASSERT_TRUE(processor->GetOutputTable()->GetColUnits(0, &text));
  EXPECT_EQ(text, "kN");
  EXPECT_TRUE(Errors().empty());
}

TEST_F(TableProcessorTest, AllColumnsReadMissingCellsAsEmpty) {
  processor->AddInputTable(&a);
  processor->AddInputTable(&b);
  ASSERT_TRUE(processor->AddAllInputColsToOutput(0));
  ASSERT_TRUE(processor->Process());
  EXPECT_EQ(OutputKeywords(),
            (std::vector<std::string>{"Name", "Force", "OnlyA", "Grade", "Extra"}));
  VCUTable* out = processor->GetOutputTable();
  int32_t only[5];
  ASSERT_TRUE(out->GetValues_L(2, 1, 5, only));
  EXPECT_EQ(std::vector<int32_t>(only, only + 5), (std::vector<int32_t>{7, 8, 9, 0, 0}));
  float extra[5];
  ASSERT_TRUE(out->GetValues_F(4, 1, 5, extra));
  EXPECT_EQ(std::vector<float>(extra, extra + 5), (std::vector<float>{0, 0, 0, 0.5f, 1.5f}));
  int32_t grade[5];
  VCStringArray names;
  ASSERT_TRUE(out->GetValues_E(3, 2, 4, grade, &names));
  EXPECT_EQ(std::vector<int32_t>(grade, grade + 4), (std::vector<int32_t>{1, 2, 0, 0}));
  ASSERT_EQ(names.GetSize(), 4);
  EXPECT_EQ(names[0], "low");
  EXPECT_EQ(names[1], "high");
  EXPECT_EQ(names[3], "");
  VCString texts[5];
  ASSERT_TRUE(out->GetValues_T(0, 1, 5, texts));
  EXPECT_EQ(texts[3], "b1");
  // Status: rows of a table without status are valid, rows of a table
  // without the column are not.
  char has = 0;
  ASSERT_TRUE(out->GetColHasStatus(1, &has));
  EXPECT_EQ(has, 1);
  uint16_t status[5];
  ASSERT_TRUE(out->GetStatusValues(1, 1, 5, status));
  EXPECT_EQ(std::vector<uint16_t>(status, status + 5),
            (std::vector<uint16_t>{0x8000, 0, 0x8000, 0x8000, 0x8000}));
  ASSERT_TRUE(out->GetColHasStatus(4, &has));
  EXPECT_EQ(has, 0);
  EXPECT_FALSE(out->GetStatusValues(4, 4, 1, status));  // the input table's own error
  EXPECT_EQ(Errors(), (std::vector<Error>{table_test::MemoryError("Column has no status data")}));
}

TEST_F(TableProcessorTest, AllColumnsRefuseAKeywordOfTwoTypes) {
  const int32_t force[] = {1};
  const char* name[] = {"c1"};
  VCUTableMemory c("C");
  c.AddCol("Name", 1, name);
  c.AddCol("Force", 1, force);
  c.SetNumRows(1);
  processor->AddInputTable(&a);
  processor->AddInputTable(&c);
  processor->AddOutputColumn("Name");
  ASSERT_TRUE(processor->Process());  // common columns: Force is simply left out
  processor->AddAllInputColsToOutput(0);
  EXPECT_FALSE(processor->Process());
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnTypesDiffer,
                                           "Columns must be same type in all input tables. "
                                           "Bad column: Force",
                                           "VCUTableProcessor::GetColIndeces"},
                                          kSummary}));
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
  EXPECT_FALSE(processor->GetColIndeces("Extra", &indices, &has, &type));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnNotFound, "Column not found: Extra",
                                           "VCUTable::GetColIndexFromKeyword"}}));
  VFErrorClear();
  processor->AddAllInputColsToOutput(0);
  ASSERT_TRUE(processor->GetColIndeces("Extra", &indices, &has, &type));
  EXPECT_EQ(std::vector<int32_t>(indices.begin(), indices.end()), (std::vector<int32_t>{-1, 2}));
  EXPECT_EQ(type, VTTableDataType::Float);
  EXPECT_FALSE(processor->GetColIndeces("Nope", &indices, &has, &type));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnNotFound, "Column not found: Nope",
                                           "VCUTableProcessor::GetColIndeces"}}));
}

TEST_F(TableProcessorTest, SelectedRowsKeepTheirOrder) {
  const int64_t fromA[] = {3, 1};
  const int64_t fromB[] = {2};
  ASSERT_TRUE(processor->AddInputTable(&a, fromA, 2));
  ASSERT_TRUE(processor->AddInputTable(&b, fromB, 1));
  processor->AddOutputColumn("Force");
  ASSERT_TRUE(processor->Process());
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{3, 1, 5}));
  int32_t index = -1;
  ASSERT_TRUE(processor->GetInputData()->GetInputTableIndexForRow(3, &index));
  EXPECT_EQ(index, 1);
}

TEST_F(TableProcessorTest, WithSelectedRowsATableAddedWholeAddsNoRows) {
  const int64_t fromB[] = {2};
  ASSERT_TRUE(processor->AddInputTable(&a));
  ASSERT_TRUE(processor->AddInputTable(&b, fromB, 1));
  processor->AddOutputColumn("Force");
  ASSERT_TRUE(processor->Process());
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{5}));
  ASSERT_TRUE(processor->ClearInputTables());
  ASSERT_TRUE(processor->AddInputTable(&a));
  ASSERT_TRUE(processor->Process());
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{1, 2, 3}));
}

TEST_F(TableProcessorTest, ConfigurationErrors) {
  EXPECT_FALSE(processor->Process());
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorNoInputTables, "No input tables defined",
                                           "VCUTableProcessor::Validate"},
                                          kSummary}));
  VFErrorClear();
  ASSERT_TRUE(processor->AddInputTable(&a));
  EXPECT_FALSE(processor->AddInputTable(&a));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorTableAddedTwice,
                                           "Table has already been added to the operation list",
                                           "VCUTableProcessor::AddInputTable"}}));
  VFErrorClear();
  EXPECT_FALSE(processor->RemoveInputTable(&b));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorTableNotDefined,
                                           "Attempt to remove a table from the table processor "
                                           "which is not defined",
                                           "VCUTableProcessor::RemoveInputTable"}}));
  VFErrorClear();
  EXPECT_FALSE(processor->Validate());
  EXPECT_EQ(Errors(),
            (std::vector<Error>{{kTableErrorNoOutputColumns, "No output columns defined for table",
                                 "VCUTableProcessor::Validate"}}));
  VFErrorClear();
  processor->AddOutputColumn("Name");
  processor->AddOutputColumn("Nope");
  EXPECT_FALSE(processor->Process());
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnNotFound, "Column not found: Nope",
                                           "VCUTable::GetColIndexFromKeyword"},
                                          kSummary}));
  VFErrorClear();
  EXPECT_FALSE(processor->RemoveOutputColumn("Other"));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorColumnNotFound, "Column not found: Other",
                                           "VCUTableProcessor::RemoveOutputColumn"}}));
  VFErrorClear();
  ASSERT_TRUE(processor->RemoveOutputColumn("NOPE"));
  EXPECT_TRUE(processor->Process());
}

TEST_F(TableProcessorTest, SelectedRowsOutOfRange) {
  const int64_t rows[] = {1, 4};
  EXPECT_FALSE(processor->AddInputTable(&a, rows, 2));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorInputRow,
                                           "Out of range row number passed to AddInputTable",
                                           "VCUTableProcessor::AddInputTable"}}));
  VFErrorClear();
  const int64_t zero[] = {0};
  EXPECT_FALSE(processor->AddInputTable(&b, zero, 1));
  EXPECT_EQ(Errors()[0].code, kTableErrorInputRow);
}

TEST_F(TableProcessorTest, RowLimitAtTheLimitAndOneOver) {
  VCPreferenceSystem::SetHugeValue(kRowLimit, 5);
  processor = std::make_unique<VCUTableProcessor>();
  processor->AddInputTable(&a);
  processor->AddInputTable(&b);
  processor->AddOutputColumn("Name");
  ASSERT_TRUE(processor->Process());
  const char* name[] = {"c1"};
  VCUTableMemory c("C");
  c.AddCol("Name", 1, name);
  c.SetNumRows(1);
  processor->AddInputTable(&c);
  EXPECT_FALSE(processor->Process());
  const Error tooMany{kTableErrorTooManyRows,
                      "Too many table rows to perform sort and filter. You can increase \nthe "
                      "limit via the preference /Libraries/utilkit/MaximumTableProcessorRows",
                      "VCUTableProcessor::Process"};
  EXPECT_EQ(Errors(), (std::vector<Error>{tooMany, kSummary}));
  VFErrorClear();
  // Selected rows count against the limit when they are added.
  processor = std::make_unique<VCUTableProcessor>();
  const int64_t rows[] = {1, 2, 3, 1, 2};
  ASSERT_TRUE(processor->AddInputTable(&a, rows, 5));
  EXPECT_FALSE(processor->AddInputTable(&b, rows, 1));
  EXPECT_EQ(
      Errors(),
      (std::vector<Error>{{tooMany.code, tooMany.message, "VCUTableProcessor::AddInputTable"}}));
}

// The limit is checked before the rows are: a count just within it gets to
// the second row (0, out of range), a count one over does not.
TEST_F(TableProcessorTest, RowLimitDefaultAndCap) {
  const int64_t rows[] = {1, 0};
  for (const auto& [preference, limit] :
       {std::pair<int64_t, int64_t>{-1, 50000000}, {3000000000, 2000000000}}) {
    if (preference >= 0) VCPreferenceSystem::SetHugeValue(kRowLimit, preference);
    processor = std::make_unique<VCUTableProcessor>();
    EXPECT_FALSE(processor->AddInputTable(&a, rows, limit + 1));
    EXPECT_EQ(Errors().at(0).code, kTableErrorTooManyRows);
    VFErrorClear();
    processor = std::make_unique<VCUTableProcessor>();
    EXPECT_FALSE(processor->AddInputTable(&a, rows, limit));
    EXPECT_EQ(Errors().at(0).code, kTableErrorInputRow);
    VFErrorClear();
  }
}

TEST_F(TableProcessorTest, ViewsCheckColumnsAndRows) {
  processor->AddInputTable(&a);
  processor->AddOutputColumn("Force");
  ASSERT_TRUE(processor->Process());
  double d[4];
  VCUTableData* merged = processor->GetInputData();
  VCUTable* out = processor->GetOutputTable();
  EXPECT_FALSE(merged->GetValues_D(9, 1, 1, d));
  EXPECT_FALSE(merged->GetValues_D(1, 3, 2, d));
  EXPECT_TRUE(merged->GetValues_D(1, 4, 0, d));
  EXPECT_FALSE(out->GetValues_D(1, 1, 1, d));
  EXPECT_FALSE(out->GetValues_D(0, 0, 1, d));
  int32_t index;
  EXPECT_FALSE(merged->GetInputTableIndexForRow(4, &index));
  EXPECT_EQ(
      Errors(),
      (std::vector<Error>{
          {kTableErrorColumnIndex, "Column index out of range", "VCUTableData::GetValues_D"},
          {kTableErrorRowNumber, "Row number out of range", "VCUTableData::GetValues_D"},
          {kTableErrorColumnIndex, "Column index out of range", "VCUOutputTable::GetValues_D"},
          {kTableErrorRowNumber, "Row number out of range", "VCUOutputTable::GetValues_D"},
          {kTableErrorRowNumber, "Row number out of range",
           "VCUTableData::GetInputTableIndexForRow"}}));
  VFErrorClear();
  // Changing the inputs drops the merged columns until the next Process.
  processor->RemoveInputTable(&a);
  EXPECT_FALSE(out->GetValues_D(0, 1, 1, d));
  EXPECT_EQ(Errors()[0].location, "VCUOutputTable::GetValues_D");
}

TEST_F(TableProcessorTest, BulkReadsReportTheFirstFailingCell) {
  a.SetNumRows(4);  // one more row than the columns hold
  processor->AddInputTable(&a);
  processor->AddInputTable(&b);
  processor->AddOutputColumn("Force");
  ASSERT_TRUE(processor->Process());
  double d[6] = {};
  EXPECT_FALSE(processor->GetOutputTable()->GetValues_D(0, 1, 6, d));
  EXPECT_EQ(Errors(), (std::vector<Error>{table_test::MemoryError("Invalid row number")}));
  EXPECT_EQ(d[2], 3.0);  // the cells before the failing one were read
}

TEST_F(TableProcessorTest, WritableColumns) {
  processor->AddInputTable(&a);
  processor->AddInputTable(&b);
  processor->AddOutputColumn("Force");
  ASSERT_TRUE(processor->Process());
  VCUTableData* merged = processor->GetInputData();
  EXPECT_FALSE(merged->SetColWritable(0));
  EXPECT_FALSE(merged->WriteInputColValue(1, 1, 9.0));
  ASSERT_TRUE(merged->SetColWritable(1));
  EXPECT_TRUE(merged->GetColWritable(1));
  ASSERT_TRUE(merged->WriteInputColValue(1, 4, 40.0));
  ASSERT_TRUE(merged->WriteInputColStatusValue(1, 4, 0x0001));
  EXPECT_FALSE(merged->WriteInputColValue(1, 6, 1.0));
  EXPECT_FALSE(merged->WriteInputColValue(7, 1, 1.0));
  EXPECT_EQ(
      Errors(),
      (std::vector<Error>{
          {kTableErrorWritableType, "Invalid type for writable column in VCUTableData",
           "VCUTableData::SetColWritable"},
          {kTableErrorNotWritable, "Attempt to write to a column that is not writable",
           "VCUTableData::WriteInputColValue"},
          {kTableErrorRowNumber, "Row number out of range", "VCUTableData::WriteInputColValue"},
          {kTableErrorColumnIndex, "Column index out of range",
           "VCUTableData::WriteInputColValue"}}));
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{1, 2, 3, 40, 5}));
  uint16_t status[5];
  ASSERT_TRUE(processor->GetOutputTable()->GetStatusValues(0, 3, 2, status));
  EXPECT_EQ(status[0], 0x8000);
  EXPECT_EQ(status[1], 0x0001);
  // Processing again refills the column from the inputs.
  ASSERT_TRUE(processor->Process());
  EXPECT_EQ(OutputDoubles(0), (std::vector<double>{1, 2, 3, 4, 5}));
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
  processor->AddInputTable(&big);
  processor->AddOutputColumn("V");
  ASSERT_TRUE(processor->Process());
  VCUTableData* merged = processor->GetInputData();
  ASSERT_TRUE(merged->SetColWritable(0));
  for (const int64_t row : {1, 64, 65, 200}) {
    ASSERT_TRUE(merged->WriteInputColValue(0, row, -static_cast<double>(row)));
  }
  ASSERT_TRUE(merged->WriteInputColStatusValue(0, 65, 0x0004));
  ASSERT_TRUE(merged->SetColWritable(0));  // keeps what was written
  double read[8] = {};
  ASSERT_TRUE(merged->GetValues_D(0, 62, 5, read));
  EXPECT_EQ(std::vector<double>(read, read + 5), (std::vector<double>{62, 63, -64, -65, 66}));
  ASSERT_TRUE(merged->GetValues_D(0, 200, 1, read));
  EXPECT_EQ(read[0], -200);
  uint16_t words[3] = {};
  ASSERT_TRUE(merged->GetStatusValues(0, 64, 3, words));
  EXPECT_EQ(std::vector<uint16_t>(words, words + 3),
            (std::vector<uint16_t>{0x8000, 0x0004, 0x8000}));
  std::vector<double> all = OutputDoubles(0);
  EXPECT_EQ(all[0], -1);
  EXPECT_EQ(all[1], 2);
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
  EXPECT_EQ(cells[0], 4);
  EXPECT_EQ(cells[1], 5);
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
  processor->AddOutputColumn("Force");
  VCUTableSort sort;
  sort.AddColumn("Name", 0, 1);
  processor->SetSort(&sort);
  ASSERT_TRUE(processor->Process());
  std::string_view views[4];
  ASSERT_TRUE(processor->GetOutputTable()->PeekTexts(0, 1, 4, views));
  EXPECT_EQ(std::vector<std::string_view>(views, views + 4),
            (std::vector<std::string_view>{"c2", "c2", "c1", "c1"}));
  EXPECT_EQ(OutputDoubles(1), (std::vector<double>{7, 8, 6, 9}));
  ASSERT_TRUE(processor->GetInputData()->PeekTexts(0, 2, 2, views));
  EXPECT_EQ(views[0], "c2");
  EXPECT_EQ(views[1], "c2");
  EXPECT_FALSE(processor->GetOutputTable()->PeekTexts(1, 1, 1, views));  // Double
  EXPECT_FALSE(processor->GetOutputTable()->PeekTexts(0, 4, 2, views));
  EXPECT_FALSE(processor->GetOutputTable()->PeekTexts(2, 1, 1, views));
  EXPECT_FALSE(processor->GetInputData()->PeekTexts(0, 0, 1, views));
  EXPECT_TRUE(Errors().empty());
}

TEST_F(TableProcessorTest, WritableColumnWithoutStatusRefusesStatusWrites) {
  processor->AddInputTable(&b);
  processor->AddOutputColumn("Force");
  ASSERT_TRUE(processor->Process());
  VCUTableData* merged = processor->GetInputData();
  ASSERT_TRUE(merged->SetColWritable(1));
  EXPECT_FALSE(merged->WriteInputColStatusValue(1, 1, 0x8000));
  EXPECT_EQ(Errors(), (std::vector<Error>{{kTableErrorNotWritable,
                                           "Attempt to write to a column that is not writable",
                                           "VCUTableData::WriteInputColStatusValue"}}));
}

}  // namespace
