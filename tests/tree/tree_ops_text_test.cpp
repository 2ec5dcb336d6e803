// What the operation texts build, and what a failed parse leaves behind.
// (Each error code, message and location, the defaults, the sort keys and
// nested filters are checked by the case files through what they do.)
#include <gtest/gtest.h>

#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

namespace {

class TreeOpsText : public testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  VCUTreeFilterBasic* Basic() { return dynamic_cast<VCUTreeFilterBasic*>(tree.GetFilteringOp()); }

  VCUTree tree;
};

TEST_F(TreeOpsText, GroupingTextBuildsOneDefinitionPerLevel) {
  ASSERT_TRUE(tree.SetGroupOpsFromText(
      " Name{TYPE=ALPHA,NUM=3} . Date{TYPE=DATE,SUBTYPE=YEAR}.Month{TYPE=DATE,SUBTYPE=MONTH}.Ch"));
  const VCArray<VCUTreeGroupDefBase*> ops = tree.GetGroupingOps();
  ASSERT_EQ(ops.GetSize(), 4);
  auto* alpha = dynamic_cast<VCUTreeGroupAlphabetic*>(ops[0]);
  ASSERT_NE(alpha, nullptr);
  EXPECT_EQ(alpha->GetPropName(), "Name");
  EXPECT_EQ(alpha->GetNumLettersPerGroup(), 3);
  auto* year = dynamic_cast<VCUTreeGroupByDate*>(ops[1]);
  ASSERT_NE(year, nullptr);
  EXPECT_EQ(year->GetGroupByDateType(), VCUTreeGroupByDate::kByYear);
  EXPECT_EQ(dynamic_cast<VCUTreeGroupByDate*>(ops[2])->GetGroupByDateType(),
            VCUTreeGroupByDate::kByMonth);
  auto* prop = dynamic_cast<VCUTreeGroupByProperty*>(ops[3]);
  ASSERT_NE(prop, nullptr);
  EXPECT_EQ(prop->GetPropName(), "Ch");
}

TEST_F(TreeOpsText, AFailedParseEmptiesOnlyItsOwnList) {
  ASSERT_TRUE(tree.SetGroupOpsFromText("Size"));
  ASSERT_TRUE(tree.SetSortOpsFromText("Name"));
  ASSERT_TRUE(tree.SetFilterOpsFromText("Name"));
  EXPECT_FALSE(tree.SetGroupOpsFromText("Type.Name{TYPE=BAD}"));
  EXPECT_EQ(tree.GetGroupingOps().GetSize(), 0);
  EXPECT_EQ(tree.GetSortingOps().GetSize(), 1);
  EXPECT_NE(tree.GetFilteringOp(), nullptr);
  EXPECT_FALSE(tree.SetSortOpsFromText("Type.Name{DIR=UP}"));
  EXPECT_EQ(tree.GetSortingOps().GetSize(), 0);
  EXPECT_EQ(VFErrorGetCount(), 2u);
}

TEST_F(TreeOpsText, AFailedFilterParseLeavesNoFilter) {
  ASSERT_TRUE(tree.SetFilterOpsFromText("Name"));
  EXPECT_FALSE(tree.SetFilterOpsFromText("(Name"));
  EXPECT_EQ(tree.GetFilteringOp(), nullptr);
}

TEST_F(TreeOpsText, FilterValuesAreTypedInOrder) {
  ASSERT_TRUE(tree.SetFilterOpsFromText("Size >= 10"));
  EXPECT_EQ(Basic()->GetPropName(), "Size");
  EXPECT_EQ(Basic()->GetType(), VCUTreeFilterBasic::kGreaterOrEqual);
  EXPECT_EQ(Basic()->GetValue().GetType(), VTVariantType::Huge);
  ASSERT_TRUE(tree.SetFilterOpsFromText("Size > 1.5"));
  EXPECT_EQ(Basic()->GetValue().GetType(), VTVariantType::Double);
  ASSERT_TRUE(tree.SetFilterOpsFromText("When < 2024-01-05 10:20"));
  EXPECT_EQ(Basic()->GetValue().GetType(), VTVariantType::DateTime);
  ASSERT_TRUE(tree.SetFilterOpsFromText("  Long name ~  A* b "));
  EXPECT_EQ(Basic()->GetPropName(), "Long name");
  EXPECT_EQ(Basic()->GetType(), VCUTreeFilterBasic::kPatternMatch);
  EXPECT_EQ(Basic()->GetValue().GetString(), "A* b");
}

TEST_F(TreeOpsText, FilterOperatorsAndExistence) {
  const char* operators[] = {"=", "!=", ">", ">=", "<", "<=", "~"};
  int32_t type = VCUTreeFilterBasic::kEqual;
  for (const char* op : operators) {
    ASSERT_TRUE(tree.SetFilterOpsFromText((std::string("A") + op + "1").c_str())) << op;
    EXPECT_EQ(Basic()->GetType(), type++) << op;
  }
  ASSERT_TRUE(tree.SetFilterOpsFromText("Name"));
  EXPECT_EQ(Basic()->GetType(), VCUTreeFilterBasic::kExists);
  ASSERT_TRUE(tree.SetFilterOpsFromText(" ! Name "));
  EXPECT_EQ(Basic()->GetType(), VCUTreeFilterBasic::kNotExists);
  ASSERT_TRUE(tree.SetFilterOpsFromText("((Name))"));
  EXPECT_EQ(Basic()->GetType(), VCUTreeFilterBasic::kExists);
}

TEST_F(TreeOpsText, NestingIsLimitedTo256Levels) {
  const auto nested = [](int levels) {
    return std::string(static_cast<size_t>(levels), '(') + "A" +
           std::string(static_cast<size_t>(levels), ')');
  };
  EXPECT_TRUE(tree.SetFilterOpsFromText(nested(256).c_str()));
  EXPECT_FALSE(tree.SetFilterOpsFromText(nested(257).c_str()));
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kTreeErrorFilterSyntax);
  EXPECT_FALSE(tree.SetFilterOpsFromText(std::string(100000, '(').c_str()));
  tree.SetMaxFilterNesting(300);
  EXPECT_TRUE(tree.SetFilterOpsFromText(nested(300).c_str()));
  EXPECT_FALSE(tree.SetFilterOpsFromText(nested(301).c_str()));
  tree.SetMaxFilterNesting(2);
  EXPECT_FALSE(tree.SetFilterOpsFromText(nested(3).c_str()));
}

}  // namespace
