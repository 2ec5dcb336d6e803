// VCUTree::Process beyond the case files: what it reads from the host, its
// results as sources, and many categories.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

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

// A node that cannot list its children, as when the host runs out of memory.
class UnlistableNode : public PropertyNode {
 public:
  using PropertyNode::PropertyNode;
  int GetChildren(VCArray<VCUTreeNodeBase*>* out) override {
    if (out) out->RemoveAll();
    return -1;
  }
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

// Grouping files its nodes once the walk is done, many at a time; the
// result must still be categories ordered by id at each level, each holding
// its nodes in the order they were visited, with children that share their
// parent's ids kept under it and the others moved to their own category.
TEST_F(TreeProcess, ManyGroupedNodesKeepVisitOrderWithinEachCategory) {
  PropertyNode root(nullptr);
  struct Entry {
    std::string name;
    std::vector<std::string> kept;  // children that stay under this node
  };
  // ids "Group/Sub" -> the entries filed there, in visit order.
  std::map<std::string, std::map<std::string, std::vector<Entry>>> expected;
  const auto ids = [](int i) {
    return std::make_pair(std::to_string((i * 7919) % 53), std::to_string((i * 31) % 3));
  };
  const auto make = [](PropertyNode* parent, int i, const std::pair<std::string, std::string>& id) {
    auto* node = new PropertyNode(parent);
    node->SetProperty("Name", VCVariant(("n" + std::to_string(i)).c_str()));
    node->SetProperty("Group", VCVariant(id.first.c_str()));
    node->SetProperty("Sub", VCVariant(id.second.c_str()));
    return node;
  };
  int next = 0;
  for (int folder = 0; folder < 300; ++folder) {
    const int folderIndex = next++;
    const auto folderIds = ids(folderIndex);
    PropertyNode* parent = make(&root, folderIndex, folderIds);
    auto& list = expected[folderIds.first][folderIds.second];
    list.push_back({"n" + std::to_string(folderIndex), {}});
    const size_t folderAt = list.size() - 1;
    for (int child = 0; child < 3; ++child) {
      const int childIndex = next++;
      const auto childIds = ids(childIndex);
      make(parent, childIndex, childIds);
      if (childIds == folderIds) {
        expected[folderIds.first][folderIds.second][folderAt].kept.push_back(
            "n" + std::to_string(childIndex));
      } else {
        expected[childIds.first][childIds.second].push_back({"n" + std::to_string(childIndex), {}});
      }
    }
  }
  std::string want;
  for (const auto& [group, subs] : expected) {
    want += "+ Group=" + group + " [" + group + "]\n";
    for (const auto& [sub, entries] : subs) {
      want += "  + Sub=" + sub + " [" + sub + "]\n";
      for (const Entry& entry : entries) {
        want += "    - " + entry.name + "\n";
        for (const std::string& kept : entry.kept) want += "      - " + kept + "\n";
      }
    }
  }
  VCUTree tree;
  ASSERT_TRUE(tree.SetGroupOpsFromText("Group.Sub"));
  tree.SetRecurseChildren(1);
  std::unique_ptr<VCUTreeResultNode> result(tree.Process(&root));
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(tree_tool::FormatResultTree(result.get(), true), want);
}

// A failure late in the walk frees what was already grouped and waiting to
// be filed (the leak checker of the test build sees any node left over).
TEST_F(TreeProcess, AFailedWalkFreesTheNodesAlreadyGrouped) {
  PropertyNode root(nullptr);
  for (int i = 0; i < 500; ++i) {
    (new PropertyNode(&root))->SetProperty("Group", VCVariant(int64_t{i % 40}));
  }
  (new UnlistableNode(&root))->SetProperty("Group", VCVariant(int64_t{1}));
  VCUTree tree;
  ASSERT_TRUE(tree.SetGroupOpsFromText("Group"));
  tree.SetRecurseChildren(1);
  EXPECT_EQ(tree.Process(&root), nullptr);
  ASSERT_EQ(VFErrorGetCount(), 1u);
  EXPECT_EQ(VFErrorGetCode(VFErrorGetLast()), kTreeErrorOutOfMemory);
  EXPECT_STREQ(VFErrorGetMessage(VFErrorGetLast()), "Out of memory");
  EXPECT_STREQ(VFErrorGetLocation(VFErrorGetLast()), "VCUTree::Process");
}

}  // namespace
