// The table command's CSV reading and writing: a table written with typed
// headers reads back as the same table (a property over random tables), and
// text that no table can hold is refused.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>

#include "table_csv.h"

namespace {

using utilkit::tool::CsvToMemoryTable;

// Random tables of every column type, with the texts that CSV and the
// typed header have to escape.
class RandomTable {
 public:
  explicit RandomTable(uint32_t seed) : m_random(seed) {}

  void Fill(VCUTableMemory* table) {
    const int32_t rows = Pick(0, 4) == 0 ? Pick(0, 1) : Pick(0, 30);
    const int32_t cols = Pick(1, 6);
    for (int32_t c = 0; c < cols; ++c) {
      const std::string name = Text() + "#" + std::to_string(c) + (Pick(0, 3) == 0 ? ":x" : "");
      const std::string keyword = c == 0 && Pick(0, 3) == 0 ? "\xEF\xBB\xBF" + name : name;
      AddColumn(table, keyword.c_str(), rows);
      if (Pick(0, 3) == 0) {
        std::vector<uint16_t> status(static_cast<size_t>(rows));
        for (auto& s : status) s = static_cast<uint16_t>(Pick(0, 0xFFFF));
        table->SetColStatus(keyword.c_str(), rows, status.data());
      }
    }
    table->SetNumRows(rows);
  }

 private:
  int32_t Pick(int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(m_random);
  }
  std::string Text() {
    static const char* const kPieces[] = {"a",  "A", "x y", ",", "\"", "\n", "\r\n", "|",
                                          "||", "=", ")",   "(", "1",  "-2", " ",    "\xEF\xBB\xBF",
                                          "é"};
    std::string text;
    for (int32_t n = Pick(0, 3); n > 0; --n) text += kPieces[Pick(0, std::size(kPieces) - 1)];
    return text;
  }
  template <class T>
  T Bits() {
    uint64_t bits = (uint64_t{m_random()} << 32) | m_random();
    T value{};
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }
  double Real() {
    static const double kSpecial[] = {0.0, -0.0, 0.1, 1e300, 5e-324, -2.5, HUGE_VAL, NAN};
    return Pick(0, 2) == 0 ? kSpecial[Pick(0, std::size(kSpecial) - 1)] : Bits<double>();
  }
  template <class T, class Make>
  void Add(VCUTableMemory* table, const char* keyword, int32_t rows, Make make) {
    std::vector<T> v(static_cast<size_t>(rows));
    for (auto& x : v) x = make();
    table->AddCol(keyword, rows, v.data());
  }

  void AddColumn(VCUTableMemory* table, const char* keyword, int32_t rows) {
    const auto n = static_cast<size_t>(rows);
    switch (Pick(0, 6)) {
      case 0:
        return Add<int16_t>(table, keyword, rows, [this] { return Bits<int16_t>(); });
      case 1:
        return Add<int32_t>(table, keyword, rows, [this] { return Bits<int32_t>(); });
      case 2:
        return Add<int64_t>(table, keyword, rows, [this] { return Bits<int64_t>(); });
      case 3:
        return Add<float>(table, keyword, rows, [this] {
          return static_cast<float>(Real()) * (Pick(0, 1) ? 1 : 1e-30f);
        });
      case 4:
        return Add<double>(table, keyword, rows, [this] { return Real(); });
      case 5: {
        std::vector<std::string> texts(n);
        std::vector<const char*> v(n);
        for (size_t r = 0; r < n; ++r) v[r] = (texts[r] = Text()).c_str();
        return table->AddCol(keyword, rows, v.data());
      }
      default: {  // codes that are not 1..n, names that look like codes
        std::vector<int32_t> codes;
        std::vector<std::string> names;
        for (int32_t i = Pick(0, 4); i > 0; --i) {
          codes.push_back(Pick(-3, 12) * 7 + i);
          names.push_back(Pick(0, 2) == 0 ? std::to_string(Pick(-3, 90)) : Text());
        }
        std::vector<const char*> namePointers;
        for (const auto& name : names) namePointers.push_back(name.c_str());
        std::vector<int32_t> v(n);
        for (auto& x : v)
          x = !codes.empty() && Pick(0, 3) > 0 ? codes[Pick(0, codes.size() - 1)] : Pick(-90, 90);
        return table->AddCol(keyword, static_cast<int32_t>(codes.size()), codes.data(),
                             namePointers.data(), rows, v.data());
      }
    }
  }

  std::mt19937 m_random;
};

// Every cell of `table` as text (doubles and floats by their bits, NaN as
// one text, Enum cells by code), with its type, keyword, options and status.
std::string Describe(VCUTable& table) {
  std::ostringstream out;
  int32_t cols = 0;
  int64_t rows = 0;
  table.GetNumCols(&cols);
  table.GetNumRows(&rows);
  out << cols << " x " << rows << "\n";
  for (int32_t c = 0; c < cols; ++c) {
    VCString keyword;
    VTTableDataType type{};
    char hasStatus = 0;
    table.GetColKeyword(c, &keyword);
    table.GetColType(c, &type);
    table.GetColHasStatus(c, &hasStatus);
    out << "[" << keyword.str() << "] " << static_cast<int>(type) << " status " << int{hasStatus};
    if (type == VTTableDataType::Enum) {
      VCArrayWithSort<int32_t> codes;
      VCStringArray names;
      table.GetEnumColOptions(c, &codes, &names);
      for (int32_t i = 0; i < codes.GetSize(); ++i) out << " " << codes[i] << "=" << names[i].str();
    }
    out << ":";
    for (int64_t r = 1; r <= rows; ++r) {
      VCVariant v;
      if (!table.GetValue(c, r, &v, VTTableDataType::None)) {
        out << " unread";
      } else if (type == VTTableDataType::Float) {
        out << " " << (std::isnan(v.GetFloat()) ? 0 : std::bit_cast<uint32_t>(v.GetFloat()));
      } else if (type == VTTableDataType::Double) {
        out << " " << (std::isnan(v.GetDouble()) ? 0 : std::bit_cast<uint64_t>(v.GetDouble()));
      } else {
        out << (type == VTTableDataType::Text ? " <" + v.GetString().str() + ">"
                                              : " " + std::to_string(v.GetHuge()));
      }
      uint16_t status = 0;
      if (hasStatus && table.GetStatusValues(c, r, 1, &status)) out << "/" << status;
    }
    out << "\n";
  }
  return out.str();
}

TEST(TableCsvTest, TypedOutputReadsBackAsTheSameTable) {
  for (uint32_t seed = 1; seed <= 200; ++seed) {
    VFErrorClear();
    VCUTableMemory table("random");
    RandomTable(seed).Fill(&table);
    std::ostringstream out;
    std::string error;
    ASSERT_TRUE(utilkit::tool::WriteTableCsv(table, true, out, &error)) << error;
    VCUDictionary texts;
    VCUTableMemory back("back");
    ASSERT_TRUE(CsvToMemoryTable(out.str(), "random", &back, &texts, &error))
        << "seed " << seed << ": " << error << "\n"
        << out.str();
    ASSERT_EQ(Describe(back), Describe(table)) << "seed " << seed << "\n" << out.str();
  }
}

// Plain decimals take a quicker path than std::from_chars; they must read
// as the same doubles, to the bit, on both sides of its limits (19 digits,
// 2^53, 22 decimals).
TEST(TableCsvTest, DecimalsReadAsTheNearestDouble) {
  std::mt19937_64 random(7);
  std::vector<std::string> cells = {
      "9007199254740993",         "9007199254740992",     "-0.0", ".5", "5.",
      "0.1234567890123456789012", "1234567890123456789.5"};
  for (int i = 0; i < 20000; ++i) {
    std::string digits = std::to_string(random());
    digits.resize(1 + random() % digits.size());
    digits.insert(random() % (digits.size() + 1), ".");
    cells.push_back((random() % 2 ? "-" : "") + digits);
  }
  std::string csv = "x:double\n";
  for (const std::string& cell : cells) csv += cell + "\n";
  VCUDictionary texts;
  VCUTableMemory table("in");
  std::string error;
  ASSERT_TRUE(CsvToMemoryTable(csv, "in", &table, &texts, &error)) << error;
  for (size_t i = 0; i < cells.size(); ++i) {
    double read = 0, expected = 0;
    ASSERT_TRUE(table.GetValues_D(0, static_cast<int64_t>(i) + 1, 1, &read));
    std::from_chars(cells[i].data(), cells[i].data() + cells[i].size(), expected);
    ASSERT_EQ(std::bit_cast<uint64_t>(read), std::bit_cast<uint64_t>(expected)) << cells[i];
  }
}

// Doubles with few decimals are written by a quicker path than
// std::to_chars; the text must be the same, to the character (fixed or
// scientific, shortest digits).
TEST(TableCsvTest, DoublesAreWrittenAsStdToCharsWritesThem) {
  static constexpr double kPowers[] = {1, 10, 100, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
  std::mt19937_64 random(11);
  std::vector<double> values = {0.1 + 0.2, 1e-7,   1e-6,   1e-4,         0.5e-6,
                                1e5,       123456, 1200,   1e15,         -0.5,
                                0.0,       -0.0,   5e-324, 0x1p50 / 1e6, 1125899906.842624};
  for (int i = 0; i < 100000; ++i) {
    const double v = static_cast<double>(random() >> (random() % 64)) / kPowers[random() % 9];
    values.push_back(random() % 2 ? v : -v);
    if (const double any = std::bit_cast<double>(random()); std::isfinite(any)) {
      values.push_back(any);
    }
  }
  VCUTableMemory table("t");
  table.AddCol("x", static_cast<int32_t>(values.size()), values.data());
  table.SetNumRows(static_cast<int32_t>(values.size()));
  std::ostringstream out;
  std::string error;
  ASSERT_TRUE(utilkit::tool::WriteTableCsv(table, false, out, &error)) << error;
  std::istringstream lines(out.str());
  std::string line;
  std::getline(lines, line);
  for (const double value : values) {
    char expected[64];
    *std::to_chars(expected, expected + sizeof expected - 1, value).ptr = '\0';
    ASSERT_TRUE(std::getline(lines, line));
    ASSERT_EQ(line, expected);
  }
}

// A name holding ":enum(" would, with the options written after it, read
// back as a shorter name; the writer says so rather than write it.
TEST(TableCsvTest, RefusesTypedHeadersThatWouldReadBackOtherwise) {
  VCUDictionary texts;
  VCUTableMemory table("in");
  std::string error;
  ASSERT_TRUE(CsvToMemoryTable("n:enum(1=b:enum\nx\n", "in", &table, &texts, &error)) << error;
  std::ostringstream out;
  EXPECT_FALSE(utilkit::tool::WriteTableCsv(table, true, out, &error));
  EXPECT_EQ(error,
            "column n:enum(1=b: its name or an option name holds ':' and a type, so a typed header "
            "would read back otherwise");
}

// The other texts no table holds: tests/data/table/csv_input.case.
TEST(TableCsvTest, RefusesANulByte) {
  static const char kNul[] = "T,D\nab,1\n\"x\ny\",2\nc\0d,3\n";
  VCUDictionary texts;
  VCUTableMemory table("in");
  std::string error;
  EXPECT_FALSE(CsvToMemoryTable(std::string(kNul, sizeof kNul - 1), "in", &table, &texts, &error));
  EXPECT_EQ(error, "in:5: a NUL byte, which no cell can hold");
}

}  // namespace
