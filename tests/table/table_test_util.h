// Helpers shared by the table tests: the error stack as comparable records
// and small tables built in one call.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <utilkit/base/dictionary.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table.h>

#include "table_csv.h"

namespace table_test {

struct Error {
  int32_t code;
  std::string message;
  std::string location;
  int32_t flag = 0;

  friend bool operator==(const Error& a, const Error& b) {
    return a.code == b.code && a.message == b.message && a.location == b.location &&
           a.flag == b.flag;
  }
  friend std::ostream& operator<<(std::ostream& os, const Error& e) {
    return os << "{" << e.code << ", \"" << e.message << "\", \"" << e.location << "\", " << e.flag
              << "}";
  }
};

// The records of the error stack, oldest first.
inline std::vector<Error> Errors() {
  std::vector<Error> out;
  for (const VCErrorRecord* r = VFGetUtLibError(); r; r = VFErrorGetNextErr(r)) {
    out.push_back(
        {VFErrorGetCode(r), VFErrorGetMessage(r), VFErrorGetLocation(r), VFErrorGetFlag(r)});
  }
  return out;
}

// The records of the error stack, which is then cleared.
inline std::vector<Error> TakeErrors() {
  std::vector<Error> out = Errors();
  VFErrorClear();
  return out;
}

// The call fails and leaves exactly the records given (then cleared).
#define EXPECT_FAILS(call, ...)                                                         \
  do {                                                                                  \
    EXPECT_FALSE(call);                                                                 \
    EXPECT_EQ(table_test::TakeErrors(), (std::vector<table_test::Error>{__VA_ARGS__})); \
  } while (0)

// `count` cells from `first` as a vector, for comparing in one go.
template <typename T>
std::vector<T> Cells(const T* first, size_t count) {
  return std::vector<T>(first, first + count);
}

// Every row of a column of `table`.
inline std::vector<double> Doubles(VCUTable* table, int32_t col) {
  int64_t rows = 0;
  EXPECT_TRUE(table->GetNumRows(&rows));
  std::vector<double> values(static_cast<size_t>(rows));
  EXPECT_TRUE(table->GetValues_D(col, 1, rows, values.data()));
  return values;
}
inline std::vector<std::string> Texts(VCUTable* table, int32_t col) {
  int64_t rows = 0;
  EXPECT_TRUE(table->GetNumRows(&rows));
  VCStringArray texts;
  EXPECT_TRUE(table->GetValues_T(col, 1, rows, &texts));
  return {texts.begin(), texts.end()};
}

// The error of the memory table (code 1, literal message).
inline Error MemoryError(const char* message, const char* location = "VCUTableMemory::GetValues") {
  return {1, message, location, 0};
}

// A memory table read from CSV text (header cells `name:type` and
// `name:status`, see tools/text/table_csv.h); its texts live as long as it.
struct TextPool {
  VCUDictionary texts;
};
class CsvTable : private TextPool, public VCUTableMemory {
 public:
  CsvTable(const char* name, const char* csv) : VCUTableMemory(name) {
    std::string error;
    EXPECT_TRUE(utilkit::tool::CsvToMemoryTable(csv, name, this, &texts, &error)) << error;
  }
};

// A host table of one Double column "Value" that reports a chosen type and
// implements only the pure readers (not the VCString* text reader).
class HostTable : public VCUTable {
 public:
  explicit HostTable(VTTableDataType type) : m_type(type) {}
  bool GetTableName(VCString* name) override { return *name = "Host", true; }
  bool GetNumCols(int32_t* count) override { return *count = 1, true; }
  bool GetNumRows(int64_t* count) override { return *count = 2, true; }
  bool GetColKeyword(int32_t, VCString* keyword) override { return *keyword = "Value", true; }
  bool GetColDescription(int32_t, VCString* text) override { return text->Empty(), true; }
  bool GetColUnits(int32_t, VCString* text) override { return text->Empty(), true; }
  bool GetColType(int32_t, VTTableDataType* type) override { return *type = m_type, true; }
  bool GetColHasStatus(int32_t, char* has) override { return *has = 0, true; }
  bool GetStatusColBitText(int32_t, VCStringArray*) override { return true; }
  bool GetEnumColOptions(int32_t, VCArrayWithSort<int32_t>*, VCStringArray*) override {
    return true;
  }
  bool GetValues_S(int32_t, int64_t, int64_t, int16_t*) override { return Refuse(); }
  bool GetValues_L(int32_t, int64_t, int64_t, int32_t*) override { return Refuse(); }
  bool GetValues_H(int32_t, int64_t, int64_t, int64_t*) override { return Refuse(); }
  bool GetValues_F(int32_t, int64_t, int64_t, float*) override { return Refuse(); }
  bool GetValues_D(int32_t, int64_t first, int64_t count, double* out) override {
    for (int64_t i = 0; i < count; ++i) out[i] = static_cast<double>(first + i) / 2;
    return true;
  }
  bool GetValues_T(int32_t, int64_t, int64_t, VCStringArray*) override { return Refuse(); }
  using VCUTable::GetValues_T;
  bool GetValues_E(int32_t, int64_t, int64_t, int32_t*, VCStringArray*) override {
    return Refuse();
  }
  bool GetStatusValues(int32_t, int64_t, int64_t, uint16_t*) override { return Refuse(); }

 private:
  static bool Refuse() {
    VFErrorSet(7, "refused", "HostTable", 0);
    return false;
  }
  VTTableDataType m_type;
};

}  // namespace table_test
