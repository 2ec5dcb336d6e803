// Runs every case of the files under tests/data/tree/*.case.
//
// A case file holds cases, each opened by "=== title", with sections:
//   [tree]     the source tree as indented text (tools/text/tree_text.h)
//   [same tree]  the tree of the case before
//   [group] [filter] [sort]   an operation text, set when the section is
//              present (an empty section sets the empty text)
//   [recurse]  turns on recursion into children (no content)
//   [result]   Process is run and its print (categories with [id]) must
//              be this text; "null" when Process is expected to fail
//   [errors]   the records on the error stack afterwards, one a line:
//              code, location and message separated by " | " (none: empty)
//   [group errors] [filter errors] [sort errors]   texts that do not parse,
//              one a line: the text in backquotes, a blank, the one record
//              the parse leaves and, after "  # ", a note
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

#include "case_file.h"
#include "tree_text.h"

namespace {

using Setter = char (VCUTree::*)(const char*);
const std::pair<const char*, Setter> kOperations[] = {{"group", &VCUTree::SetGroupOpsFromText},
                                                      {"filter", &VCUTree::SetFilterOpsFromText},
                                                      {"sort", &VCUTree::SetSortOpsFromText}};

// The cases, each [same tree] given the tree of the case before.
std::vector<case_file::Case> LoadCases() {
  std::vector<case_file::Case> cases = case_file::Load("tree");
  for (size_t i = 1; i < cases.size(); ++i) {
    const std::string* before = cases[i - 1].Find("tree");
    for (auto& [title, text] : cases[i].sections) {
      if (title != "same tree" || before == nullptr) continue;
      title = "tree";
      text = *before;
    }
  }
  return cases;
}

class TreeCaseTest : public testing::TestWithParam<case_file::Case> {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

TEST_P(TreeCaseTest, GivesTheExpectedTreeAndErrors) {
  const case_file::Case& c = GetParam();
  // An operation text: the section's lines without the last line end.
  const auto text = [&](const char* name) {
    std::string block = case_file::BlockOf(c, name);
    if (!block.empty()) block.pop_back();
    return block;
  };
  tree_tool::PropertyNode source(nullptr);
  std::string problem;
  if (c.Find("tree")) {
    ASSERT_TRUE(tree_tool::ParseIndentedTree(*c.Find("tree"), &source, &problem)) << problem;
  }
  VCUTree tree;
  for (const auto& [name, set] : kOperations) {
    std::istringstream lines(case_file::BlockOf(c, std::string(name) + " errors"));
    for (std::string line; std::getline(lines, line);) {
      SCOPED_TRACE(line);
      const size_t close = line.rfind('`');
      ASSERT_TRUE(line.front() == '`' && close > 0 && close + 2 < line.size());
      VCUTree bad;
      EXPECT_EQ((bad.*set)(line.substr(1, close - 1).c_str()), 0);
      const std::string record = line.substr(close + 2, line.find("  # ", close) - close - 2);
      EXPECT_EQ(case_file::ErrorRecords(false), record + "\n");
      VFErrorClear();
    }
  }
  for (const auto& [name, set] : kOperations) {
    if (c.Find(name)) (tree.*set)(text(name).c_str());
  }
  if (c.Find("recurse")) tree.SetRecurseChildren(1);
  if (c.Find("result")) {
    std::unique_ptr<VCUTreeResultNode> result(tree.Process(c.Find("tree") ? &source : nullptr));
    EXPECT_EQ(result ? tree_tool::FormatResultTree(result.get(), true) : "null\n",
              case_file::BlockOf(c, "result"));
  }
  EXPECT_EQ(case_file::ErrorRecords(false), case_file::BlockOf(c, "errors"));
}

INSTANTIATE_TEST_SUITE_P(Files, TreeCaseTest, testing::ValuesIn(LoadCases()), case_file::TestName);

}  // namespace
