// Grouping, filtering and sorting definitions on their own, and who owns them.
#include <gtest/gtest.h>

#include <memory>

#include <utilkit/tree/tree.h>

#include "tree_text.h"

namespace {

using tree_tool::PropertyNode;

// A filter of a host's own class that counts its calls and destructions.
class CountingFilter : public VCUTreeFilterDefBase {
 public:
  CountingFilter(bool passes, int* calls, int* deleted)
      : m_passes(passes), m_calls(calls), m_deleted(deleted) {}
  ~CountingFilter() override { ++*m_deleted; }
  char DoesObjectPassFilter(VCUTreeSourceNode*) override {
    ++*m_calls;
    return m_passes;
  }

 private:
  bool m_passes;
  int* m_calls;
  int* m_deleted;
};

// What the case files (tests/data/tree/grouping.case) cannot reach: the
// setters and texts that are no id.
TEST(VCUTreeGroupDefinitions, SettersAndTextsThatAreNoId) {
  PropertyNode node(nullptr);
  node.SetProperty("Name", VCVariant("echo"));
  VCUTreeGroupAlphabetic alpha("Name");
  alpha.SetNumLettersPerGroup(-4);  // fewer than 1 letter groups as 1
  EXPECT_EQ(alpha.GetCategoryIdForData(&node), "E");
  VCUTreeGroupByDate date("When", VCUTreeGroupByDate::kByDay);
  EXPECT_EQ(date.GetCategoryDescription("not a date"), "not a date");
  date.SetGroupByDateType(VCUTreeGroupByDate::kByMonth);
  EXPECT_EQ(date.GetCategoryDescription("12"), "");
}

TEST(VCUTreeFilterDefinitions, BasicTests) {
  PropertyNode node(nullptr);
  node.SetProperty("Size", VCVariant(int64_t{10}));
  const auto passes = [&](VCUTreeFilterBasic::VTFilterBasicType type, const VCVariant& value,
                          const char* prop = "Size") {
    return VCUTreeFilterBasic(prop, type, value).DoesObjectPassFilter(&node) != 0;
  };
  const VCVariant ten(int64_t{10}), nine(9.0);
  EXPECT_TRUE(passes(VCUTreeFilterBasic::kNone, VCVariant(), "Missing"));
  EXPECT_TRUE(passes(VCUTreeFilterBasic::kEqual, ten));
  EXPECT_FALSE(passes(VCUTreeFilterBasic::kNotEqual, ten));
  EXPECT_TRUE(passes(VCUTreeFilterBasic::kGreater, nine));
  EXPECT_FALSE(passes(VCUTreeFilterBasic::kGreater, ten));
  EXPECT_TRUE(passes(VCUTreeFilterBasic::kGreaterOrEqual, ten));
  EXPECT_FALSE(passes(VCUTreeFilterBasic::kLess, ten));
  EXPECT_TRUE(passes(VCUTreeFilterBasic::kLessOrEqual, ten));
  EXPECT_FALSE(passes(VCUTreeFilterBasic::kLessOrEqual, ten, "Missing"));
  EXPECT_FALSE(passes(VCUTreeFilterBasic::kNotEqual, ten, "Missing"));
  EXPECT_TRUE(passes(VCUTreeFilterBasic::kPatternMatch, VCVariant("1?")));
  EXPECT_FALSE(passes(static_cast<VCUTreeFilterBasic::VTFilterBasicType>(42), ten));
}

TEST(VCUTreeFilterDefinitions, AndOrAskTheSecondOperandOnlyWhenNeeded) {
  PropertyNode node(nullptr);
  int calls = 0, deleted = 0;
  {
    VCUTreeFilterAND both(new CountingFilter(false, &calls, &deleted),
                          new CountingFilter(true, &calls, &deleted));
    EXPECT_FALSE(both.DoesObjectPassFilter(&node));
    EXPECT_EQ(calls, 1);
    VCUTreeFilterOR either(new CountingFilter(true, &calls, &deleted),
                           new CountingFilter(false, &calls, &deleted));
    EXPECT_TRUE(either.DoesObjectPassFilter(&node));
    EXPECT_EQ(calls, 2);
    VCUTreeFilterOR missing(new CountingFilter(true, &calls, &deleted), nullptr);
    EXPECT_FALSE(missing.DoesObjectPassFilter(&node));
  }
  EXPECT_EQ(deleted, 5);
}

TEST(VCUTreeFilterDefinitions, SetOperandsDeletesThePreviousOnes) {
  int calls = 0, deleted = 0;
  VCUTreeFilterAND both(new CountingFilter(true, &calls, &deleted),
                        new CountingFilter(true, &calls, &deleted));
  VCUTreeFilterDefBase* kept = both.GetOperand2();
  both.SetOperands(new CountingFilter(true, &calls, &deleted), kept);
  EXPECT_EQ(deleted, 1);
  EXPECT_EQ(both.GetOperand2(), kept);
}

TEST(VCUTreeFilterDefinitions, CopiesAreDeepForTheLibrarysFilters) {
  int calls = 0, deleted = 0;
  PropertyNode node(nullptr);
  node.SetProperty("A", VCVariant(int64_t{1}));
  auto original = std::make_unique<VCUTreeFilterOR>(
      new VCUTreeFilterBasic("A", VCUTreeFilterBasic::kEqual, VCVariant(int64_t{1})),
      new CountingFilter(true, &calls, &deleted));
  VCUTreeFilterOR copy(*original);
  EXPECT_NE(copy.GetOperand1(), original->GetOperand1());
  EXPECT_EQ(copy.GetOperand2(), nullptr);  // a host's class cannot be copied
  original.reset();
  EXPECT_EQ(deleted, 1);
  EXPECT_FALSE(copy.DoesObjectPassFilter(&node));
  copy.SetOperands(new VCUTreeFilterBasic("A", VCUTreeFilterBasic::kExists, VCVariant()),
                   new VCUTreeFilterBasic("B", VCUTreeFilterBasic::kExists, VCVariant()));
  EXPECT_TRUE(copy.DoesObjectPassFilter(&node));
  // Assignment deletes the old operands and copies the new ones deeply,
  // nested AND included.
  VCUTreeFilterOR nested(
      new VCUTreeFilterAND(new VCUTreeFilterBasic("A", VCUTreeFilterBasic::kExists, VCVariant()),
                           new CountingFilter(false, &calls, &deleted)),
      new VCUTreeFilterBasic("B", VCUTreeFilterBasic::kExists, VCVariant()));
  copy = nested;
  ASSERT_NE(copy.GetOperand1(), nullptr);
  EXPECT_NE(copy.GetOperand1(), nested.GetOperand1());
  EXPECT_EQ(copy.GetOperand1()->GetFilterType(), 2);
  EXPECT_EQ(static_cast<VCUTreeFilterAND*>(copy.GetOperand1())->GetOperand2(), nullptr);
  EXPECT_FALSE(copy.DoesObjectPassFilter(&node));
  const VCUTreeFilterOR& same = copy;
  copy = same;  // assigning a filter to itself keeps its operands
  EXPECT_EQ(copy.GetOperand1()->GetFilterType(), 2);
}

TEST(VCUTreeSortDefinitions, KeysCompareLikeTheNodes) {
  PropertyNode a(nullptr), b(nullptr), none(nullptr);
  a.SetProperty("Name", VCVariant("File10"));
  b.SetProperty("Name", VCVariant("File2"));
  VCUTreeSortBasic byName("Name", kTreeSortIncreasing);
  EXPECT_LT(byName.Compare(&a, &b), 0);
  byName.SetMethod(VCUTreeSortBasic::kMixedString);
  EXPECT_GT(byName.Compare(&a, &b), 0);
  EXPECT_EQ(byName.Compare(&a, &b),
            byName.CompareSortKeys(byName.GetSortKey(&a), byName.GetSortKey(&b)));
  EXPECT_EQ(byName.Compare(&none, &a), 1);
  EXPECT_EQ(byName.Compare(&none, &none), 0);
  byName.SetDirection(kTreeSortDecreasing);
  EXPECT_EQ(byName.Compare(&none, &a), -1);
  EXPECT_LT(byName.Compare(&a, &b), 0);
}

TEST(VCUTreeOwnership, TheTreeDeletesWhatItWasGiven) {
  int calls = 0, deleted = 0;
  {
    VCUTree tree;
    tree.SetFilteringOp(new CountingFilter(true, &calls, &deleted));
    tree.SetFilteringOp(new CountingFilter(true, &calls, &deleted));
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(tree.AppendGroupingOp(nullptr), 0);
    EXPECT_EQ(tree.AppendGroupingOp(new VCUTreeGroupByProperty("A")), 1);
    EXPECT_EQ(tree.AppendSortingOp(new VCUTreeSortBasic("A", kTreeSortIncreasing)), 1);
    EXPECT_EQ(tree.GetGroupingOps().GetSize(), 1);
    tree.ClearGrouping();
    EXPECT_EQ(tree.GetGroupingOps().GetSize(), 0);
    EXPECT_EQ(tree.GetSortingOps().GetSize(), 1);
  }
  EXPECT_EQ(deleted, 2);
}

}  // namespace
