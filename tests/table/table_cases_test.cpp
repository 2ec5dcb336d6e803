// Runs every case of the files under tests/data/table/*.case.
//
// A case file holds cases, each opened by "=== title", with sections:
//   [table NAME] or [table NAME@ROWS]   an input table as CSV (header cells
//              `name`, `name:type`, `name:status`; see tools/text/table_csv.h),
//              whole or with the selected rows; tables are added in order;
//              a case without tables runs on those of the case before it
//   [job]      one setting a line, as the options of `utilkit table`:
//                all-columns
//                columns: A,B
//                filter: <filter text>      (see tools/text/table_filter_text.h)
//                sort: Name,Time:desc       (the rest: tools/text/table_ops_text.h)
//                category: Name:2
//                compress: Channel:Peak:sum     (may repeat; run in order)
//                new: Energy=#Peak# * 2         (may repeat)
//                row-index: Index=0
//                new-status: Energy=Peak        (may repeat)
//                div-zero: -1
//                log-zero: -2
//              any other line fails the case
//   [output]   Process must succeed and the output table, written as CSV,
//              must be this text ([typed]: with `name:type` headers;
//              [dump]: what DumpTableToScreen prints, which for a cell that
//              cannot be read ends with the error text and leaves the
//              records on the stack for [errors])
//   [failure]  the message of a table that does not load or an option text
//              that does not read
//   [errors]   the records on the error stack afterwards, one a line:
//              code | location | message | flag (none: empty)
//   [job failures] [csv failures]   alone in their case: jobs whose options
//              or tables (A) that do not read, one a line: each setting or
//              CSV line in backquotes followed by a blank, then the failure
//              and, after "  # ", a note
//   [job errors]   jobs that fail to run on the case's tables, one a line:
//              the settings as above, then the records left on the error
//              stack separated by " ; " (and a note)
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "case_file.h"
#include "table_csv.h"
#include "table_job.h"

namespace {

using case_file::Block;
using case_file::BlockOf;

std::string ErrorRecords() {
  return case_file::ErrorRecords(true);
}

// The [job] settings; a line that is no setting fails the test.
utilkit::tool::TableJob ReadJob(const std::string* text) {
  using Job = utilkit::tool::TableJob;
  const std::pair<const char*, std::string Job::*> kSingle[] = {
      {"columns", &Job::columns},   {"filter", &Job::filter},      {"sort", &Job::sort},
      {"category", &Job::category}, {"row-index", &Job::rowIndex}, {"div-zero", &Job::divZero},
      {"log-zero", &Job::logZero}};
  const std::pair<const char*, std::vector<std::string> Job::*> kRepeated[] = {
      {"compress", &Job::compress}, {"new", &Job::newColumns}, {"new-status", &Job::newStatus}};
  Job job;
  std::istringstream lines(text ? *text : "");
  std::string line;
  while (std::getline(lines, line)) {
    const size_t colon = line.find(": ");
    const std::string key = line.substr(0, colon);
    const std::string value = colon == std::string::npos ? "" : line.substr(colon + 2);
    bool known = line.empty() || line == "all-columns";
    if (line == "all-columns") job.allColumns = true;
    for (const auto& [name, member] : kSingle) {
      if (colon == std::string::npos || key != name) continue;
      job.*member = value;
      known = true;
    }
    for (const auto& [name, member] : kRepeated) {
      if (colon == std::string::npos || key != name) continue;
      (job.*member).push_back(value);
      known = true;
    }
    if (!known) ADD_FAILURE() << "not a [job] setting: " << line;
  }
  return job;
}

bool IsTable(const std::pair<std::string, std::string>& section) {
  return section.first.rfind("table ", 0) == 0;
}

// The cases, each without tables given those of the case before it.
std::vector<case_file::Case> LoadCases() {
  std::vector<case_file::Case> cases = case_file::Load("table");
  for (size_t i = 1; i < cases.size(); ++i) {
    auto& sections = cases[i].sections;
    if (std::any_of(sections.begin(), sections.end(), IsTable)) continue;
    const auto& before = cases[i - 1].sections;
    std::vector<std::pair<std::string, std::string>> tables;
    std::copy_if(before.begin(), before.end(), std::back_inserter(tables), IsTable);
    sections.insert(sections.begin(), tables.begin(), tables.end());
  }
  return cases;
}

// A row of [job failures], [csv failures] or [job errors]: its backquoted
// items, one a line, and the rest of the line before "  # ".
std::pair<std::string, std::string> SplitRow(const std::string& line) {
  std::string items;
  size_t at = 0;
  while (at < line.size() && line[at] == '`') {
    const size_t close = line.find('`', at + 1);
    if (close == std::string::npos) break;
    items += line.substr(at + 1, close - at - 1) + "\n";
    at = close + 2;
  }
  at = std::min(at, line.size());
  return {items, line.substr(at, line.find("  # ", at) - at)};
}

// Each row's items must fail to read, with the rest of the row as the failure.
void CheckFailures(const std::string& rows, bool csv) {
  std::istringstream lines(rows);
  for (std::string line; std::getline(lines, line);) {
    SCOPED_TRACE(line);
    const auto [items, expected] = SplitRow(line);
    std::string failure;
    if (csv) {
      VCUDictionary texts;
      VCUTableMemory table("A");
      EXPECT_FALSE(utilkit::tool::CsvToMemoryTable(items, "A", &table, &texts, &failure));
    } else {
      utilkit::tool::TableOperations operations;
      EXPECT_FALSE(utilkit::tool::BuildTableOperations(ReadJob(&items), &operations, &failure));
    }
    EXPECT_EQ(failure, expected);
  }
}

// Runs `job` on `inputs` (`operations` must live as long as the output
// table is read); the failure of options that do not read, if any.
bool RunJob(const std::vector<utilkit::tool::TableInput>& inputs,
            const utilkit::tool::TableJob& job, utilkit::tool::TableOperations* operations,
            VCUTableProcessor* processor, std::string* failure) {
  return utilkit::tool::BuildTableOperations(job, operations, failure) &&
         utilkit::tool::RunTableJob(inputs, job, *operations, processor);
}

class TableCaseTest : public testing::TestWithParam<case_file::Case> {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

TEST_P(TableCaseTest, GivesTheExpectedOutputAndErrors) {
  const case_file::Case& c = GetParam();
  if (c.Find("job failures")) return CheckFailures(*c.Find("job failures"), false);
  if (c.Find("csv failures")) return CheckFailures(*c.Find("csv failures"), true);
  std::vector<std::unique_ptr<VCUDictionary>> texts;
  std::vector<std::unique_ptr<VCUTableMemory>> tables;
  std::vector<utilkit::tool::TableInput> inputs;
  std::string failure;
  for (const auto& [title, text] : c.sections) {
    if (!IsTable({title, text}) || !failure.empty()) continue;
    std::string name;
    utilkit::tool::TableInput& input = inputs.emplace_back();
    utilkit::tool::SplitInputArgument(title.substr(6), &name, &input.rows, &input.selected);
    texts.push_back(std::make_unique<VCUDictionary>());
    tables.push_back(std::make_unique<VCUTableMemory>(name.c_str()));
    input.table = tables.back().get();
    utilkit::tool::CsvToMemoryTable(text, name, tables.back().get(), texts.back().get(), &failure);
  }
  // [job errors]: each row's settings must fail to run, leaving the
  // records that follow them (separated by " ; ").
  std::istringstream rows(BlockOf(c, "job errors"));
  for (std::string line; failure.empty() && std::getline(rows, line);) {
    SCOPED_TRACE(line);
    auto [settings, records] = SplitRow(line);
    for (size_t at; (at = records.find(" ; ")) != std::string::npos;) records.replace(at, 3, "\n");
    utilkit::tool::TableOperations operations;
    VCUTableProcessor processor;
    EXPECT_FALSE(RunJob(inputs, ReadJob(&settings), &operations, &processor, &failure));
    EXPECT_EQ(ErrorRecords(), records + "\n");
    VFErrorClear();
  }
  utilkit::tool::TableOperations operations;
  VCUTableProcessor processor;
  const bool processed =
      failure.empty() && RunJob(inputs, ReadJob(c.Find("job")), &operations, &processor, &failure);
  EXPECT_EQ(Block(failure), BlockOf(c, "failure"));
  for (const char* format : {"output", "typed", "dump"}) {
    const std::string* expected = c.Find(format);
    if (expected == nullptr) continue;
    ASSERT_TRUE(processed) << ErrorRecords();
    std::string actual;
    if (std::string(format) == "dump") {
      testing::internal::CaptureStdout();
      processor.GetOutputTable()->DumpTableToScreen();
      std::fflush(stdout);
      // A failed dump ends its error text with a blank line.
      actual = Block(testing::internal::GetCapturedStdout());
    } else {
      std::ostringstream out;
      std::string error;
      EXPECT_TRUE(utilkit::tool::WriteTableCsv(*processor.GetOutputTable(),
                                               std::string(format) == "typed", out, &error))
          << error;
      actual = out.str();
    }
    EXPECT_EQ(actual, Block(*expected)) << format;
  }
  EXPECT_EQ(ErrorRecords(), BlockOf(c, "errors"));
}

INSTANTIATE_TEST_SUITE_P(Files, TableCaseTest, testing::ValuesIn(LoadCases()), case_file::TestName);

}  // namespace
