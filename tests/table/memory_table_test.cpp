#include <utilkit/base/dictionary.h>
#include <utilkit/table/memory_table.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "table/table_test_util.h"

using table_test::Cells;
using table_test::Errors;
using table_test::MemoryError;

namespace {

class MemoryTableTest : public ::testing::Test {
 protected:
  void SetUp() override {
    VFErrorClear();
    const int16_t s[] = {1, 2, 3, 4, 5};
    const int32_t l[] = {10, 20, 30, 40, 50};
    table.AddCol("Short", 5, s);
    table.AddCol("Long", 5, l);
  }
  void TearDown() override { VFErrorClear(); }

  VCUTableMemory table{"Tests"};
};

TEST_F(MemoryTableTest, BulkReadChecksInOrder) {
  int16_t s[6] = {};
  uint16_t status[6] = {};
  int32_t l[6] = {};
  EXPECT_FAILS(table.GetValues_S(2, 1, 1, s), MemoryError("Invalid column index"));
  EXPECT_FAILS(table.GetValues_S(-1, 0, -5, s), MemoryError("Invalid column index"));
  EXPECT_FAILS(table.GetValues_S(0, 0, 1, s), MemoryError("Invalid row number"));
  EXPECT_TRUE(table.GetValues_S(0, 1, 0, s));  // nothing to copy
  EXPECT_FAILS(table.GetValues_S(0, 6, 0, s), MemoryError("Invalid row number"));
  EXPECT_FAILS(table.GetValues_S(0, 4, 3, s), MemoryError("Invalid number of rows to read"));
  EXPECT_FAILS(table.GetValues_S(0, 4, -1, s), MemoryError("Invalid number of rows to read"));
  // The range is checked before the type.
  EXPECT_FAILS(table.GetValues_L(0, 4, 3, l), MemoryError("Invalid number of rows to read"));
  EXPECT_FAILS(table.GetValues_L(0, 1, 1, l), MemoryError("Column type mismatch"));
  EXPECT_FAILS(table.GetValues_E(1, 1, 1, l, nullptr), MemoryError("Column type mismatch"));
  EXPECT_FAILS(table.GetStatusValues(0, 1, 1, status), MemoryError("Column has no status data"));
  ASSERT_TRUE(table.GetValues_S(0, 4, 2, s));
  EXPECT_EQ(Cells(s, 3), (std::vector<int16_t>{4, 5, 0}));  // the third untouched
}

// Peeking hands out the column's own cells, or null without a record.
TEST_F(MemoryTableTest, PeekValuesOnlyForDoubleColumnsInRange) {
  const double d[] = {1.5, 2.5, 3.5};
  table.AddCol("Double", 3, d);
  const double* cells = table.PeekValues_D(2, 2, 2);
  ASSERT_NE(cells, nullptr);
  EXPECT_EQ(Cells(cells, 2), (std::vector<double>{2.5, 3.5}));
  const int kOutside[][3] = {{0, 1, 1}, {3, 1, 1}, {-1, 1, 1}, {2, 0, 1}, {2, 1, 0}, {2, 2, 3}};
  for (const auto& [col, first, count] : kOutside) {
    EXPECT_EQ(table.PeekValues_D(col, first, count), nullptr)
        << col << " " << first << " " << count;
  }
  EXPECT_TRUE(Errors().empty());
}

TEST_F(MemoryTableTest, ArrayReadersResizeOnlyAfterTheChecks) {
  const char* t[] = {"a", "b"};
  table.AddCol("Text", 2, t);
  std::string_view views[2];
  ASSERT_TRUE(table.PeekTexts(2, 2, 1, views));  // texts kept as strings are lent too
  EXPECT_EQ(views[0], "b");
  EXPECT_FALSE(table.PeekTexts(2, 2, 2, views));
  VCStringArray out;
  out.Add("keep");
  EXPECT_FAILS(table.GetValues_T(2, 2, 2, &out), MemoryError("Invalid number of rows to read"));
  ASSERT_EQ(out.GetSize(), 1);
  ASSERT_TRUE(table.GetValues_T(2, 2, 1, &out));
  ASSERT_EQ(out.GetSize(), 1);
  EXPECT_EQ(out[0], "b");
}

TEST_F(MemoryTableTest, MetadataErrorsNameTheirMember) {
  VCString text;
  VTTableDataType type;
  char has;
  VCStringArray names;
  VCArrayWithSort<int32_t> codes;
  const std::pair<const char*, bool> kCalls[] = {
      {"GetColKeyword", table.GetColKeyword(5, &text)},
      {"GetColDescription", table.GetColDescription(5, &text)},
      {"GetColUnits", table.GetColUnits(5, &text)},
      {"GetColType", table.GetColType(5, &type)},
      {"GetColHasStatus", table.GetColHasStatus(5, &has)},
      {"GetStatusColBitText", table.GetStatusColBitText(5, &names)},
      {"GetEnumColOptions", table.GetEnumColOptions(5, &codes, &names)},
      {"SetColDescription", table.SetColDescription(5, "d")},
      {"SetColUnits", table.SetColUnits(-1, "u")}};
  std::vector<table_test::Error> expected;
  for (const auto& [member, ok] : kCalls) {
    EXPECT_FALSE(ok) << member;
    expected.push_back(
        MemoryError("Invalid column index", (std::string("VCUTableMemory::") + member).c_str()));
  }
  EXPECT_EQ(Errors(), expected);
  ASSERT_TRUE(table.SetColDescription(1, "Load") && table.SetColUnits(1, "N"));
  ASSERT_TRUE(table.GetColDescription(1, &text));
  EXPECT_EQ(text, "Load");
  ASSERT_TRUE(table.GetColUnits(1, &text));
  EXPECT_EQ(text, "N");
}

TEST_F(MemoryTableTest, StatusWordsAppendAndUnknownKeywordsAreIgnored) {
  const uint16_t first[] = {0x8000, 1};
  const uint16_t second[] = {0x8002};
  table.SetColStatus("Nothing", 2, first);
  EXPECT_TRUE(Errors().empty());
  char has = 1;
  ASSERT_TRUE(table.GetColHasStatus(0, &has));
  EXPECT_EQ(has, 0);
  table.SetColStatus("SHORT", 2, first);
  table.SetColStatus("short", 1, second);
  ASSERT_TRUE(table.GetColHasStatus(0, &has));
  EXPECT_EQ(has, 1);
  uint16_t status[5] = {9, 9, 9, 9, 9};
  ASSERT_TRUE(table.GetStatusValues(0, 2, 4, status));  // bounded by the data, not the status
  // 0 beyond the status list, the last untouched.
  EXPECT_EQ(Cells(status, 5), (std::vector<uint16_t>{1, 0x8002, 0, 0, 9}));
  VCStringArray texts;
  texts.Add("valid");
  table.SetColStatusBitText("short", texts);
  table.SetColStatusBitText("nothing", texts);
  VCStringArray back;
  ASSERT_TRUE(table.GetStatusColBitText(0, &back));
  EXPECT_EQ(std::vector<std::string>(back.begin(), back.end()), std::vector<std::string>{"valid"});
}

TEST_F(MemoryTableTest, DuplicateKeywordsActOnTheFirst) {
  const int16_t s[] = {7};
  const uint16_t status[] = {0x8000};
  table.AddCol("long", 1, s);
  table.SetColStatus("LONG", 1, status);
  int32_t index = -1;
  ASSERT_TRUE(table.GetColIndexFromKeyword("Long", &index));
  EXPECT_EQ(index, 1);
  char has[2] = {0, 1};
  ASSERT_TRUE(table.GetColHasStatus(1, &has[0]) && table.GetColHasStatus(2, &has[1]));
  EXPECT_EQ(Cells(has, 2), (std::vector<char>{1, 0}));
}

TEST_F(MemoryTableTest, EnumColumns) {
  const int32_t codes[] = {3, 1, 2};
  const char* names[] = {"LOW", "off", "high"};
  const int32_t values[] = {1, 3, 7, 2};
  table.AddCol("Grade", 3, codes, names, 4, values);
  VCStringArray nameArray;
  nameArray.Add("a");
  nameArray.Add("b");
  table.AddCol("Other", 2, codes, nameArray, 1, values);
  int32_t out[4];
  VCStringArray outNames;
  ASSERT_TRUE(table.GetValues_E(2, 1, 4, out, &outNames));
  EXPECT_EQ(Cells(out, 4), (std::vector<int32_t>{1, 3, 7, 2}));
  // A code without an option has the empty name.
  EXPECT_EQ(std::vector<std::string>(outNames.begin(), outNames.end()),
            (std::vector<std::string>{"off", "LOW", "", "high"}));
  VCArrayWithSort<int32_t> optionCodes;
  VCStringArray optionNames;
  ASSERT_TRUE(table.GetEnumColOptions(2, &optionCodes, &optionNames));
  EXPECT_EQ(std::vector<int32_t>(optionCodes.begin(), optionCodes.end()),
            (std::vector<int32_t>{1, 2, 3}));
  EXPECT_EQ(std::vector<std::string>(optionNames.begin(), optionNames.end()),
            (std::vector<std::string>{"off", "high", "LOW"}));
  ASSERT_TRUE(table.GetEnumColOptions(3, &optionCodes, &optionNames));
  EXPECT_EQ(optionNames[0], "b");  // sorted by code: 1 "b", 3 "a"
  ASSERT_TRUE(table.GetEnumColOptions(0, &optionCodes, &optionNames));
  EXPECT_EQ(optionCodes.GetSize(), 0);
}

TEST_F(MemoryTableTest, TextColumnsFromEverySource) {
  const VCString strings[] = {"s1", "s2"};
  const char* cstrings[] = {"c1", nullptr};
  VCStringArray array;
  array.Add("a1");
  VCUDictionary pool;
  VCUDictionaryRef* refs[] = {pool.InsertString("d1"), nullptr, pool.InsertString("d1")};
  table.AddCol("S", 2, strings);
  table.AddCol("C", 2, cstrings);
  table.AddCol("A", array);
  table.AddCol("D", 3, refs, pool);
  VCString out[3];
  ASSERT_TRUE(table.GetValues_T(2, 1, 2, out));
  EXPECT_EQ(out[1], "s2");
  ASSERT_TRUE(table.GetValues_T(3, 1, 2, out));
  EXPECT_EQ(Cells(out, 2), (std::vector<VCString>{"c1", ""}));
  ASSERT_TRUE(table.GetValues_T(4, 1, 1, out));
  EXPECT_EQ(out[0], "a1");
  VCStringArray fromPool;
  ASSERT_TRUE(table.GetValues_T(5, 1, 3, &fromPool));
  EXPECT_EQ(std::vector<std::string>(fromPool.begin(), fromPool.end()),
            (std::vector<std::string>{"d1", "", "d1"}));
  // The length is the references'.
  EXPECT_FAILS(table.GetValues_T(5, 2, 3, &fromPool),
               MemoryError("Invalid number of rows to read"));
}

TEST_F(MemoryTableTest, CopiesShareTheColumns) {
  auto* copy = new VCUTableMemory(table);
  const double d[] = {1.5};
  copy->AddCol("Later", 1, d);
  int32_t cols = 0;
  ASSERT_TRUE(table.GetNumCols(&cols));
  EXPECT_EQ(cols, 3);
  delete copy;  // the source keeps its columns
  double out = 0;
  ASSERT_TRUE(table.GetValues_D(2, 1, 1, &out));
  EXPECT_EQ(out, 1.5);
  VCUTableMemory other("Other");
  other = table;
  VCString name;
  ASSERT_TRUE(other.GetTableName(&name));
  EXPECT_EQ(name, "Tests");
}

TEST_F(MemoryTableTest, AddColWithoutValues) {
  table.AddCol("Zeros", 2, static_cast<const double*>(nullptr));
  table.AddCol("None", -4, static_cast<const float*>(nullptr));
  double d[2] = {1, 1};
  ASSERT_TRUE(table.GetValues_D(2, 1, 2, d));
  EXPECT_EQ(d[1], 0.0);
  float f = 0;
  EXPECT_FAILS(table.GetValues_F(3, 1, 0, &f), MemoryError("Invalid row number"));
}

TEST_F(MemoryTableTest, AdoptedColumnsKeepTheirValuesAndTypes) {
  std::vector<int64_t> huges = {int64_t{1} << 40, -7};
  std::vector<double> doubles = {2.5, -0.25};
  VCUDictionary pool;
  std::vector<VCUDictionaryRef*> refs = {pool.InsertString("d1"), nullptr};
  table.AddCol("H", std::move(huges));
  table.AddCol("D", std::move(doubles));
  table.AddCol("T", std::move(refs), pool);
  EXPECT_TRUE(huges.empty() && doubles.empty() && refs.empty());
  VTTableDataType type = VTTableDataType::None;
  ASSERT_TRUE(table.GetColType(2, &type));
  EXPECT_EQ(type, VTTableDataType::Huge);
  int64_t h[2] = {};
  ASSERT_TRUE(table.GetValues_H(2, 1, 2, h));
  EXPECT_EQ(h[0], int64_t{1} << 40);
  EXPECT_EQ(table.PeekValues_D(3, 2, 1)[0], -0.25);
  VCString texts[2];
  ASSERT_TRUE(table.GetValues_T(4, 1, 2, texts));
  EXPECT_EQ(Cells(texts, 2), (std::vector<VCString>{"d1", ""}));
  EXPECT_FAILS(table.GetValues_T(4, 2, 2, texts), MemoryError("Invalid number of rows to read"));
}

}  // namespace
