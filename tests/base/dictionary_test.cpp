#include <utilkit/base/dictionary.h>
#include <utilkit/base/vc_string.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::vector<std::string> Walk(const VCUDictionary& pool) {
  std::vector<std::string> texts;
  for (VCUDictionaryRef* r = pool.GetFirstString(); r; r = pool.GetNextString(r)) {
    texts.push_back(pool.GetString(r));
  }
  return texts;
}

TEST(DictionaryTest, EqualTextsShareOneReference) {
  VCUDictionary pool;
  VCUDictionaryRef* a = pool.InsertString("Force");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(pool.InsertString(VCString("Force")), a);
  EXPECT_EQ(pool.InsertString(std::string_view("Forces", 5)), a);
  VCUDictionaryRef* b = pool.InsertString("force");
  EXPECT_NE(b, a) << "texts are case-sensitive";
  EXPECT_EQ(pool.GetSize(), 2);
  EXPECT_STREQ(pool.GetString(a), "Force");
  EXPECT_EQ(pool.InsertString(nullptr), pool.InsertString(""));
  EXPECT_STREQ(pool.GetString(nullptr), "");
}

TEST(DictionaryTest, FindDoesNotInsert) {
  VCUDictionary pool;
  EXPECT_EQ(pool.FindString("Time"), nullptr);
  EXPECT_EQ(pool.GetSize(), 0);
  VCUDictionaryRef* t = pool.InsertString("Time");
  EXPECT_EQ(pool.FindString("Time"), t);
  EXPECT_EQ(pool.FindString("Tim"), nullptr);
}

TEST(DictionaryTest, ReferencesStayValidWhileThePoolGrowsAndShrinks) {
  VCUDictionary pool;
  std::vector<VCUDictionaryRef*> refs;
  for (int i = 0; i < 20000; ++i) refs.push_back(pool.InsertString(std::to_string(i).c_str()));
  ASSERT_EQ(pool.GetSize(), 20000);
  for (int i = 0; i < 20000; i += 3) ASSERT_TRUE(pool.RemoveString(refs[static_cast<size_t>(i)]));
  EXPECT_EQ(pool.GetSize(), 20000 - 6667);
  // Every text left is still found, whatever removals did to its neighbours.
  for (int i = 0; i < 20000; ++i) {
    VCUDictionaryRef* found = pool.FindString(std::to_string(i).c_str());
    ASSERT_EQ(found, i % 3 == 0 ? nullptr : refs[static_cast<size_t>(i)]) << i;
    if (found) {
      ASSERT_STREQ(pool.GetString(found), std::to_string(i).c_str());
    }
  }
}

// A pool of a few texts indexes them in 16 slots by std::hash. Texts that
// probe from the last slot wrap around to the first ones; removing one must
// move back only those that probing would no longer reach.
TEST(DictionaryTest, RemovalKeepsTextsFoundAcrossTheEndOfTheIndex) {
  std::vector<std::string> last, first;  // texts whose first slot is 15, and 0
  for (int i = 0; last.size() < 2 || first.empty(); ++i) {
    const std::string text = "t" + std::to_string(i);
    const size_t slot = std::hash<std::string_view>()(text) & 15;
    if (slot == 15 && last.size() < 2) last.push_back(text);
    if (slot == 0 && first.empty()) first.push_back(text);
  }
  VCUDictionary pool;
  const VCUDictionaryRef* a = pool.InsertString(last[0]);   // slot 15
  const VCUDictionaryRef* b = pool.InsertString(first[0]);  // slot 0, where it belongs
  const VCUDictionaryRef* c = pool.InsertString(last[1]);   // slot 1, wrapped from 15
  ASSERT_TRUE(pool.RemoveString(a));
  EXPECT_EQ(pool.FindString(first[0]), b);
  EXPECT_EQ(pool.FindString(last[1]), c);
  EXPECT_EQ(pool.FindString(last[0]), nullptr);
}

TEST(DictionaryTest, WalkFollowsInsertionOrderThroughRemovals) {
  VCUDictionary pool;
  VCUDictionaryRef* refs[5];
  const char* texts[] = {"e", "b", "d", "a", "c"};
  for (int i = 0; i < 5; ++i) refs[i] = pool.InsertString(texts[i]);
  pool.InsertString("b");
  EXPECT_EQ(Walk(pool), (std::vector<std::string>{"e", "b", "d", "a", "c"}));
  EXPECT_TRUE(pool.RemoveString(refs[0]));  // first
  EXPECT_TRUE(pool.RemoveString(refs[2]));  // middle
  EXPECT_TRUE(pool.RemoveString(refs[4]));  // last
  EXPECT_EQ(Walk(pool), (std::vector<std::string>{"b", "a"}));
  EXPECT_EQ(pool.GetSize(), 2);
  EXPECT_EQ(pool.FindString("d"), nullptr);
  pool.InsertString("d");
  EXPECT_EQ(Walk(pool), (std::vector<std::string>{"b", "a", "d"}));
  EXPECT_FALSE(pool.RemoveString(nullptr));
  EXPECT_EQ(pool.GetNextString(nullptr), nullptr);
}

TEST(DictionaryTest, RemoveRefusesAnotherPoolsReference) {
  VCUDictionary pool, other;
  pool.InsertString("x");
  VCUDictionaryRef* foreign = other.InsertString("x");
  EXPECT_FALSE(pool.RemoveString(foreign));
  EXPECT_EQ(pool.GetSize(), 1);
  EXPECT_EQ(other.GetSize(), 1);
}

TEST(DictionaryTest, ClearEmptiesThePoolForReuse) {
  VCUDictionary pool;
  pool.InsertString("a");
  pool.InsertString("b");
  pool.Clear();
  EXPECT_EQ(pool.GetSize(), 0);
  EXPECT_EQ(pool.GetFirstString(), nullptr);
  EXPECT_EQ(pool.FindString("a"), nullptr);
  pool.InsertString("c");
  EXPECT_EQ(Walk(pool), (std::vector<std::string>{"c"}));
}

}  // namespace
