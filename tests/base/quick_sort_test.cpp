#include <utilkit/base/quick_sort.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

// Sorts positions by the values they index, like the table sort's work index,
// and counts the comparisons made.
struct ByValue {
  const std::vector<int32_t>* values;
  int64_t comparisons = 0;
};

int CompareByValue(const void* a, const void* b, void* context) {
  ByValue* c = static_cast<ByValue*>(context);
  ++c->comparisons;
  const int32_t va = (*c->values)[static_cast<size_t>(*static_cast<const int32_t*>(a))];
  const int32_t vb = (*c->values)[static_cast<size_t>(*static_cast<const int32_t*>(b))];
  return va < vb ? -1 : (vb < va ? 1 : 0);
}

// Sorts `values` through a work index; checks the order and that the index is
// a permutation; returns the number of comparisons.
int64_t SortThroughIndex(const std::vector<int32_t>& values) {
  std::vector<int32_t> index(values.size());
  for (size_t k = 0; k < index.size(); ++k) index[k] = static_cast<int32_t>(k);
  ByValue context{&values};
  VFQuickSortWithPtr(index.data(), index.size(), sizeof(int32_t), CompareByValue, &context);
  for (size_t k = 1; k < index.size(); ++k) {
    EXPECT_LE(values[static_cast<size_t>(index[k - 1])], values[static_cast<size_t>(index[k])])
        << "at " << k;
  }
  std::vector<int32_t> seen(index);
  std::sort(seen.begin(), seen.end());
  for (size_t k = 0; k < seen.size(); ++k) EXPECT_EQ(seen[k], static_cast<int32_t>(k));
  return context.comparisons;
}

// Comparisons allowed for n elements: a generous multiple of n log2 n, far
// below the n * n / 4 of a quicksort that degrades.
int64_t Budget(size_t n) {
  return static_cast<int64_t>(8.0 * static_cast<double>(n) * std::log2(static_cast<double>(n)));
}

TEST(QuickSortTest, EmptyAndSingleElementArraysAreLeftAlone) {
  ByValue context{nullptr};
  VFQuickSortWithPtr(nullptr, 0, sizeof(int32_t), CompareByValue, &context);
  int32_t one = 7;
  VFQuickSortWithPtr(&one, 1, sizeof one, CompareByValue, &context);
  EXPECT_EQ(one, 7);
  EXPECT_EQ(context.comparisons, 0);
}

TEST(QuickSortTest, SortedReversedEqualAndOrganPipeInputsStayNLogN) {
  const size_t n = 20000;
  std::vector<int32_t> sorted(n), reversed(n), equal(n, 5), pipe(n), twoValues(n);
  for (size_t k = 0; k < n; ++k) {
    sorted[k] = static_cast<int32_t>(k);
    reversed[k] = static_cast<int32_t>(n - k);
    pipe[k] = static_cast<int32_t>(k < n / 2 ? k : n - k);
    twoValues[k] = static_cast<int32_t>(k % 2);
  }
  EXPECT_LT(SortThroughIndex(sorted), Budget(n));
  EXPECT_LT(SortThroughIndex(reversed), Budget(n));
  EXPECT_LT(SortThroughIndex(equal), Budget(n));
  EXPECT_LT(SortThroughIndex(pipe), Budget(n));
  EXPECT_LT(SortThroughIndex(twoValues), Budget(n));
}

TEST(QuickSortTest, RandomInputsOfManySizesSort) {
  std::mt19937 random(12345);
  for (size_t n : {2u, 3u, 5u, 16u, 17u, 18u, 100u, 1000u, 50000u}) {
    std::vector<int32_t> values(n);
    for (int32_t& v : values) v = static_cast<int32_t>(random() % (n / 2 + 1));
    SortThroughIndex(values);
  }
}

// Elements of a size with no fast path (and of the 8- and 16-byte paths),
// sorted by their first byte with the rest carried along.
template <size_t N>
void SortRecords() {
  struct Record {
    unsigned char bytes[N];
  };
  std::mt19937 random(99);
  std::vector<Record> records(500);
  for (Record& r : records) {
    r.bytes[0] = static_cast<unsigned char>(random() % 200);
    for (size_t i = 1; i < N; ++i) r.bytes[i] = static_cast<unsigned char>(r.bytes[0] + i);
  }
  VFQuickSortWithPtr(
      records.data(), records.size(), sizeof(Record),
      [](const void* a, const void* b, void*) {
        return static_cast<int>(*static_cast<const unsigned char*>(a)) -
               static_cast<int>(*static_cast<const unsigned char*>(b));
      },
      nullptr);
  for (size_t k = 0; k < records.size(); ++k) {
    if (k > 0) {
      ASSERT_LE(records[k - 1].bytes[0], records[k].bytes[0]) << "N=" << N;
    }
    for (size_t i = 1; i < N; ++i) {
      ASSERT_EQ(records[k].bytes[i], static_cast<unsigned char>(records[k].bytes[0] + i));
    }
  }
}

TEST(QuickSortTest, ElementsOfAnySizeMoveWhole) {
  SortRecords<1>();
  SortRecords<3>();
  SortRecords<8>();
  SortRecords<16>();
  SortRecords<100>();
}

TEST(QuickSortTest, InconsistentComparisonStillEndsWithAPermutation) {
  // Every comparison answers at random: no order exists, yet the sort must end
  // without touching memory outside the array (AddressSanitizer watches).
  std::mt19937 random(7);
  std::vector<int32_t> values(5000);
  for (size_t k = 0; k < values.size(); ++k) values[k] = static_cast<int32_t>(k);
  VFQuickSortWithPtr(
      values.data(), values.size(), sizeof(int32_t),
      [](const void*, const void*, void* context) {
        return static_cast<int>((*static_cast<std::mt19937*>(context))() % 3) - 1;
      },
      &random);
  std::sort(values.begin(), values.end());
  for (size_t k = 0; k < values.size(); ++k) ASSERT_EQ(values[k], static_cast<int32_t>(k));
}

}  // namespace
