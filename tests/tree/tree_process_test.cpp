// VCUTree::Process beyond the case files: what it reads from the host, its
// results as sources, and many categories.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

#include "tree_text.h"

namespace {

using tree_tool::PropertyNode;

// Counts the property reads of every node of its tree.
class CountingNode : public PropertyNode {
 public:
  CountingNode(CountingNode* parent, std::map<std::string, int>* reads)
      : PropertyNode(parent), m_reads(reads) {}
  VCVariant GetPropertyValue(const char* propName) override {
    ++(*m_reads)[propName];
    return PropertyNode::GetPropertyValue(propName);
  }

 private:
  std::map<std::string, int>* m_reads;
};

// A sort key of a host's own class: asked at every comparison.
class ReverseName : public VCUTreeSortDefBase {
 public:
  int Compare(VCUTreeSourceNode* a, VCUTreeSourceNode* b) override {
    return b->GetPropertyValue("Name").Compare(a->GetPropertyValue("Name"));
  }
};

class TreeProcess : public testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }
};

TEST_F(TreeProcess, SortReadsEachNodesKeysOncePerSortedList) {
  std::map<std::string, int> reads;
  CountingNode root(nullptr, &reads);
  const int count = 200;
  for (int i = 0; i < count; ++i) {
    auto* node = new CountingNode(&root, &reads);
    node->SetProperty("Size", VCVariant(int64_t{(i * 37) % 11}));
    node->SetProperty("Name", VCVariant(std::to_string(i).c_str()));
  }
  VCUTree tree;
  ASSERT_TRUE(tree.SetSortOpsFromText("Size.Name{DIR=DEC,METHOD=MIXEDSTRING}"));
  std::unique_ptr<VCUTreeResultNode> result(tree.Process(&root));
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(reads["Size"], count);
  EXPECT_EQ(reads["Name"], count);
  VCArray<VCUTreeNodeBase*> sorted;
  ASSERT_EQ(result->GetChildren(&sorted), count);
  const auto key = [&](int i) {
    VCUTreeSourceNode* data = static_cast<VCUTreeResultNode*>(sorted[i])->GetDataObject();
    return std::make_pair(data->GetPropertyValue("Size").GetHuge(),
                          -data->GetPropertyValue("Name").GetHuge());
  };
  for (int i = 1; i < count; ++i) EXPECT_LE(key(i - 1), key(i)) << i;
}

TEST_F(TreeProcess, HostSortKeysAreAskedDirectly) {
  PropertyNode root(nullptr);
  for (const char* name : {"b", "c", "a"}) {
    (new PropertyNode(&root))->SetProperty("Name", VCVariant(name));
  }
  VCUTree tree;
  tree.AppendSortingOp(new ReverseName);
  std::unique_ptr<VCUTreeResultNode> result(tree.Process(&root));
  EXPECT_EQ(tree_tool::FormatResultTree(result.get(), false), "- c\n- b\n- a\n");
}

TEST_F(TreeProcess, EachRunBuildsAnIndependentTreeOfReferences) {
  PropertyNode root(nullptr);
  auto* only = new PropertyNode(&root);
  only->SetProperty("Name", VCVariant("x"));
  VCUTree tree;
  ASSERT_TRUE(tree.SetGroupOpsFromText("Name"));
  std::unique_ptr<VCUTreeResultNode> first(tree.Process(&root));
  std::unique_ptr<VCUTreeResultNode> second(tree.Process(&root));
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first.get(), second.get());
  VCUTreeResultNode* category = first->FindChildCategory("x");
  ASSERT_NE(category, nullptr);
  VCArray<VCUTreeNodeBase*> data;
  ASSERT_EQ(category->GetChildren(&data), 1);
  EXPECT_EQ(static_cast<VCUTreeResultNode*>(data[0])->GetDataObject(), only);
  EXPECT_EQ(first->GetParent(), nullptr);
}

TEST_F(TreeProcess, AResultTreeCanBeProcessedAgain) {
  PropertyNode root(nullptr);
  for (const char* name : {"b", "a", "c"}) {
    (new PropertyNode(&root))->SetProperty("Name", VCVariant(name));
  }
  VCUTree grouping;
  ASSERT_TRUE(grouping.SetGroupOpsFromText("Name{TYPE=ALPHA,NUM=2}"));
  std::unique_ptr<VCUTreeResultNode> grouped(grouping.Process(&root));
  VCUTree sorting;
  ASSERT_TRUE(sorting.SetSortOpsFromText("Name{DIR=DEC}"));
  sorting.SetRecurseChildren(1);
  std::unique_ptr<VCUTreeResultNode> sorted(sorting.Process(grouped.get()));
  EXPECT_EQ(tree_tool::FormatResultTree(sorted.get(), true),
            "+ A-B [A-B]\n  - b\n  - a\n+ C-D [C-D]\n  - c\n");
}

TEST_F(TreeProcess, ManyCategoriesEachMadeOnce) {
  PropertyNode root(nullptr);
  const int count = 20000;
  for (int i = 0; i < count; ++i) {
    auto* node = new PropertyNode(&root);
    node->SetProperty("Group", VCVariant(int64_t{i % 5000}));
    node->SetProperty("Sub", VCVariant(int64_t{i % 3}));
  }
  VCUTree tree;
  ASSERT_TRUE(tree.SetGroupOpsFromText("Group.Sub"));
  std::unique_ptr<VCUTreeResultNode> result(tree.Process(&root));
  ASSERT_EQ(result->GetChildren(nullptr), 5000);
  VCUTreeResultNode* group = result->FindChildCategory("4999");
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->GetChildren(nullptr), 3);
  EXPECT_EQ(group->FindChildCategory("1")->GetChildren(nullptr), 2);
  VCArray<VCUTreeNodeBase*> groups;
  result->GetChildren(&groups);
  EXPECT_EQ(static_cast<VCUTreeResultNode*>(groups[0])->GetId(), "0");
  EXPECT_EQ(static_cast<VCUTreeResultNode*>(groups[1])->GetId(), "1");
  EXPECT_EQ(static_cast<VCUTreeResultNode*>(groups[2])->GetId(), "10");
}

}  // namespace
