// Runs every case of the files under tests/data/tree/*.case.
//
// A case file holds cases, each opened by "=== title", with sections:
//   [tree]     the source tree as indented text (tools/text/tree_text.h)
//   [group] [filter] [sort]   an operation text, set when the section is
//              present (an empty section sets the empty text)
//   [recurse]  turns on recursion into children (no content)
//   [result]   Process is run and its print (categories with [id]) must
//              be this text; "null" when Process is expected to fail
//   [errors]   the records on the error stack afterwards, one a line:
//              code, location and message separated by " | " (none: empty)
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

#include "case_file.h"
#include "tree_text.h"

namespace {

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
  if (c.Find("group")) tree.SetGroupOpsFromText(text("group").c_str());
  if (c.Find("filter")) tree.SetFilterOpsFromText(text("filter").c_str());
  if (c.Find("sort")) tree.SetSortOpsFromText(text("sort").c_str());
  if (c.Find("recurse")) tree.SetRecurseChildren(1);
  if (c.Find("result")) {
    std::unique_ptr<VCUTreeResultNode> result(tree.Process(c.Find("tree") ? &source : nullptr));
    EXPECT_EQ(result ? tree_tool::FormatResultTree(result.get(), true) : "null\n",
              case_file::BlockOf(c, "result"));
  }
  EXPECT_EQ(case_file::ErrorRecords(false), case_file::BlockOf(c, "errors"));
}

INSTANTIATE_TEST_SUITE_P(Files, TreeCaseTest, testing::ValuesIn(case_file::Load("tree")),
                         case_file::TestName);

}  // namespace
