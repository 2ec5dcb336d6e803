// Tree nodes: linking, unlinking, lazy mirroring, the category index and
// the category sort.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

#include "tree_text.h"

namespace {

using tree_tool::PropertyNode;

std::vector<VCUTreeNodeBase*> Children(VCUTreeNodeBase* node) {
  VCArray<VCUTreeNodeBase*> children;
  node->GetChildren(&children);
  return std::vector<VCUTreeNodeBase*>(children.begin(), children.end());
}

std::string Ids(VCUTreeNodeBase* node) {
  std::string ids;
  for (VCUTreeNodeBase* child : Children(node)) {
    ids += static_cast<VCUTreeResultNode*>(child)->GetId().str() + ",";
  }
  return ids;
}

PropertyNode* Named(PropertyNode* parent, const char* name) {
  auto* node = new PropertyNode(parent);
  node->SetProperty("Name", VCVariant(name));
  return node;
}

TEST(VCUTreeNodeBase, LinksUnderItsParentAndUnlinksWhenDeleted) {
  VCUTreeNodeBase root(1, nullptr);
  EXPECT_EQ(root.GetParent(), nullptr);
  auto* first = new VCUTreeNodeBase(1, &root);
  auto* second = new VCUTreeNodeBase(1, &root);
  EXPECT_EQ(first->GetParent(), &root);
  EXPECT_EQ(Children(&root), (std::vector<VCUTreeNodeBase*>{first, second}));
  delete first;
  EXPECT_EQ(Children(&root), (std::vector<VCUTreeNodeBase*>{second}));
  EXPECT_EQ(root.GetChildren(nullptr), 1);
}  // deleting root afterwards leaves the deleted child alone (ASan would tell)

TEST(VCUTreeNodeBase, NewChildOrderReplacesTheListWithoutDeleting) {
  VCUTreeNodeBase root(1);
  auto* a = new VCUTreeNodeBase(1, &root);
  auto* b = new VCUTreeNodeBase(1, &root);
  VCArray<VCUTreeNodeBase*> order;
  order.Add(b);
  order.Add(a);
  root.SetNewChildOrder(order);
  EXPECT_EQ(Children(&root), (std::vector<VCUTreeNodeBase*>{b, a}));
  EXPECT_EQ(a->GetParent(), &root);
}

TEST(VCUTreeNodeBase, CopiesAreRootsWithoutChildren) {
  VCUTreeResultNode root;
  auto* category = new VCUTreeResultNode(&root, "id", "description");
  new VCUTreeResultNode(category, "inner", "inner");
  const VCUTreeResultNode copy(*category);
  EXPECT_EQ(const_cast<VCUTreeResultNode&>(copy).GetParent(), nullptr);
  EXPECT_EQ(const_cast<VCUTreeResultNode&>(copy).GetChildren(nullptr), 0);
  EXPECT_EQ(copy.GetId(), "id");
  EXPECT_EQ(copy.GetDescription(), "description");
  EXPECT_EQ(copy.GetNodeType(), 2);
}

TEST(VCUTreeSourceNode, DefaultComparisonOfPropertyValues) {
  PropertyNode node(nullptr);
  EXPECT_EQ(node.GetNodeType(), 1);
  VCVariant two(int64_t{2}), three(3.0), text("x");
  EXPECT_EQ(node.ComparePropertyValues("any", two, two), 0);
  EXPECT_EQ(node.ComparePropertyValues("any", three, two), 1);
  EXPECT_EQ(node.ComparePropertyValues("any", two, three), -1);
  EXPECT_EQ(node.ComparePropertyValues("any", two, text), -1);
}

class LazyExpansion : public testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    auto* a = Named(&source, "a");
    Named(a, "a1");
    Named(&source, "b");
  }
  PropertyNode source{nullptr};
};

TEST_F(LazyExpansion, MirrorsOneLevelPerRequestAndOnlyOnce) {
  VCUTreeResultNode root;
  auto* mirror = new VCUTreeResultNode(&root, &source);
  mirror->SetChildrenFromDataObject();
  EXPECT_EQ(mirror->GetChildren(nullptr), 2);  // expands even without an array
  const std::vector<VCUTreeNodeBase*> level = Children(mirror);
  ASSERT_EQ(level.size(), 2u);
  EXPECT_EQ(mirror->GetChildren(nullptr), 2);  // not mirrored twice
  auto* a = static_cast<VCUTreeResultNode*>(level[0]);
  EXPECT_EQ(a->GetDataObject()->GetPropertyValue("Name").GetString(), "a");
  EXPECT_EQ(a->GetChildren(nullptr), 1);  // the next level on its own request
  EXPECT_EQ(static_cast<VCUTreeResultNode*>(level[1])->GetChildren(nullptr), 0);
}

TEST_F(LazyExpansion, NodeWithoutDataObjectDropsTheMark) {
  VCUTreeResultNode root;
  root.SetChildrenFromDataObject();
  EXPECT_EQ(root.GetChildren(nullptr), 0);
}

// The index is scanned for a few children and hashed for many: both ways.
class FindChildCategory : public testing::TestWithParam<int> {};

TEST_P(FindChildCategory, FollowsTheList) {
  VCUTreeResultNode root;
  for (int i = 0; i < GetParam(); ++i) {
    new VCUTreeResultNode(&root, ("pad" + std::to_string(i)).c_str(), "padding");
  }
  const std::string longId(40, 'x');  // longer than an index keeps inline
  auto* first = new VCUTreeResultNode(&root, "x", "first");
  auto* second = new VCUTreeResultNode(&root, "x", "second");
  auto* other = new VCUTreeResultNode(&root, longId.c_str(), "other");
  new VCUTreeResultNode(&root, static_cast<VCUTreeSourceNode*>(nullptr));
  EXPECT_EQ(root.FindChildCategory("x"), first);
  EXPECT_EQ(root.FindChildCategory(longId.c_str()), other);
  EXPECT_EQ(root.FindChildCategory(""), nullptr);
  EXPECT_EQ(root.FindChildCategory("z"), nullptr);

  VCArray<VCUTreeNodeBase*> order;
  for (VCUTreeNodeBase* child : Children(&root)) order.InsertAt(0, child);
  root.SetNewChildOrder(order);  // second now comes before first
  EXPECT_EQ(root.FindChildCategory("x"), second);
  delete second;
  EXPECT_EQ(root.FindChildCategory("x"), first);
  *first = VCUTreeResultNode(nullptr, "w", "renamed");
  EXPECT_EQ(root.FindChildCategory("x"), nullptr);
  EXPECT_EQ(root.FindChildCategory("w"), first);
  auto* added = new VCUTreeResultNode(&root, "v", "added");
  EXPECT_EQ(root.FindChildCategory("v"), added);
  if (GetParam() > 0) {
    EXPECT_EQ(root.FindChildCategory("pad0")->GetDescription(), "padding");
  }
}

INSTANTIATE_TEST_SUITE_P(FewAndMany, FindChildCategory, testing::Values(0, 40));

TEST(VCUTreeResultNode, SortCategoriesIsCaseSensitiveAndRecursive) {
  VCUTreeResultNode root;
  auto* lower = new VCUTreeResultNode(&root, "a", "a");
  new VCUTreeResultNode(&root, "B", "B");
  new VCUTreeResultNode(lower, "z", "z");
  new VCUTreeResultNode(lower, "m", "m");
  root.SortCategories(1, 0);  // the recursion happens all the same
  EXPECT_EQ(Ids(&root), "B,a,");
  EXPECT_EQ(Ids(lower), "m,z,");
  root.SortCategories(0, 1);
  EXPECT_EQ(Ids(&root), "a,B,");
  EXPECT_EQ(Ids(lower), "z,m,");
}

TEST(VCUTreeResultNode, SortCategoriesStopsWhenTheFirstChildIsNoCategory) {
  PropertyNode source(nullptr);
  VCUTreeResultNode root;
  new VCUTreeResultNode(&root, &source);
  auto* late = new VCUTreeResultNode(&root, "b", "b");
  new VCUTreeResultNode(&root, "a", "a");
  new VCUTreeResultNode(late, "2", "2");
  new VCUTreeResultNode(late, "1", "1");
  root.SortCategories(1, 1);
  EXPECT_EQ(Ids(&root), ",b,a,");
  EXPECT_EQ(Ids(late), "2,1,");
}

TEST(VCUTreeResultNode, SortCategoriesExpandsAMarkedNodeFirst) {
  PropertyNode source(nullptr);
  Named(&source, "b");
  VCUTreeResultNode root;
  auto* mirror = new VCUTreeResultNode(&root, &source);
  mirror->SetChildrenFromDataObject();
  mirror->SortCategories(1, 1);
  EXPECT_EQ(mirror->GetChildren(nullptr), 1);
}

}  // namespace
