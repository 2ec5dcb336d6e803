#include <utilkit/table/table_filter_basic.h>

#include <algorithm>
#include <functional>
#include <string_view>
#include <vector>

#include <utilkit/base/vc_array_with_sort.h>
#include <utilkit/base/vc_string_array.h>
#include <utilkit/table/table_errors.h>

#include "table/error_mark.h"

using utilkit::table::ErrorMark;

#if defined(_MSC_VER)
#define UTILKIT_TABLE_NOINLINE __declspec(noinline)
#else
#define UTILKIT_TABLE_NOINLINE __attribute__((noinline))
#endif

namespace {

// Rows read from the table at a time.
constexpr int64_t kBlock = 4096;
// Rows given sparser than one in this many are not read as a span.
constexpr int64_t kSparse = 8;

bool IsOrdering(VTTableFilterCompare c) {
  return c >= VTTableFilterCompare::Equal && c <= VTTableFilterCompare::GreaterOrEqual;
}

// Where the answers for a run of rows go. Each(count, passes) asks
// passes(i) for i = 0..count-1 in one loop over local variables.
// The positions `base + i` of the rows that pass, appended to `out`.
struct SelectSink {
  int32_t* out;
  int32_t base;
  int32_t count = 0;
  // Kept out of line: inlined into the large callers, the loop loses its
  // variables to the stack.
  template <class Passes>
  UTILKIT_TABLE_NOINLINE void Each(int64_t n, Passes passes) {
    int32_t* o = out;
    int32_t k = count;
    const int32_t b = base;
    for (int64_t i = 0; i < n; ++i) {
      o[k] = b + static_cast<int32_t>(i);  // kept only when it passes: no branch
      k += passes(i) ? 1 : 0;
    }
    count = k;
  }
};

// One flag (1 passes, 0 not) per row.
struct FlagSink {
  char* flags;
  template <class Passes>
  UTILKIT_TABLE_NOINLINE void Each(int64_t n, Passes passes) {
    for (int64_t i = 0; i < n; ++i) flags[i] = passes(i) ? 1 : 0;
  }
};

// The number of rows from `rows` on (at most `limit`) that rise and lie
// within one block's span of the first; at least 1.
int32_t RisingSpan(const int32_t* rows, int64_t limit) {
  // The common case, consecutive rows, is told by one pass without branches.
  int64_t gaps = int64_t{rows[limit - 1]} - rows[0] - (limit - 1);
  for (int64_t k = 0; gaps == 0 && k < limit; ++k) gaps |= rows[k] ^ (int64_t{rows[0]} + k);
  if (gaps == 0) return static_cast<int32_t>(limit);
  // Rising rows end before the first row one span away; check they rise.
  const int32_t* end = std::upper_bound(rows, rows + limit, int64_t{rows[0]} + kBlock - 1,
                                        [](int64_t value, int32_t row) { return value < row; });
  int64_t falls = 0;
  for (const int32_t* p = rows + 1; p < end; ++p) falls |= *p <= p[-1];
  if (falls == 0) return static_cast<int32_t>(end - rows);
  int32_t n = 1;
  while (n < limit && rows[n] > rows[n - 1] && rows[n] - rows[0] < kBlock) ++n;
  return n;
}

// Appends to `passed` from index `n` the positions `base + k` of the rows
// rows[k] whose flag (at rows[k] - rows[0]) is set; returns the new count.
UTILKIT_TABLE_NOINLINE int32_t GatherPassed(const char* flags, const int32_t* rows, int32_t count,
                                            int32_t base, int32_t* passed, int32_t n) {
  for (int32_t k = 0; k < count; ++k) {
    passed[n] = base + k;
    n += flags[rows[k] - rows[0]];
  }
  return n;
}

// Tells `sink` which values pass: `op` against `right`, inverted unless
// `inclusive`. The type's own operators are used, so a NaN passes only
// NotEqual.
template <class T, class Op, class Sink>
void MatchAll(const T* values, int64_t count, T right, bool inclusive, Sink& sink, Op op) {
  // Captured by value, so that the loop keeps them in registers.
  if (inclusive) {
    sink.Each(count, [values, right, op](int64_t i) { return op(values[i], right); });
  } else {
    sink.Each(count, [values, right, op](int64_t i) { return !op(values[i], right); });
  }
}

template <class T, class Sink>
void MatchValues(const T* values, int64_t count, T right, VTTableFilterCompare compare,
                 bool inclusive, Sink& sink) {
  switch (compare) {
    case VTTableFilterCompare::Equal:
      return MatchAll(values, count, right, inclusive, sink, std::equal_to<T>());
    case VTTableFilterCompare::NotEqual:
      return MatchAll(values, count, right, inclusive, sink, std::not_equal_to<T>());
    case VTTableFilterCompare::LessThan:
      return MatchAll(values, count, right, inclusive, sink, std::less<T>());
    case VTTableFilterCompare::LessOrEqual:
      return MatchAll(values, count, right, inclusive, sink, std::less_equal<T>());
    case VTTableFilterCompare::GreaterThan:
      return MatchAll(values, count, right, inclusive, sink, std::greater<T>());
    case VTTableFilterCompare::GreaterOrEqual:
      return MatchAll(values, count, right, inclusive, sink, std::greater_equal<T>());
    default:
      sink.Each(count, [&](int64_t) { return !inclusive; });
  }
}

// Reads `count` values of type T into the block buffer (`make` sizes it,
// `read` fills it) and tells `sink` which pass.
template <class T, class Make, class Read, class Sink>
bool MatchRead(int64_t count, T right, VTTableFilterCompare compare, bool inclusive, Sink& sink,
               Make&& make, Read&& read) {
  T* values = make(count);
  if (values == nullptr || !read(values)) return false;
  MatchValues(values, count, right, compare, inclusive, sink);
  return true;
}

bool MatchText(const VCString& row, const VCString& right, VTTableFilterCompare compare) {
  const std::string_view r = row.view();
  const std::string_view v = right.view();
  switch (compare) {
    case VTTableFilterCompare::Contains:
      return row.Find(right) != -1;
    case VTTableFilterCompare::StartsWith:
      return r.size() >= v.size() && r.compare(0, v.size(), v) == 0;
    case VTTableFilterCompare::EndsWith:
      return r.size() >= v.size() && r.compare(r.size() - v.size(), v.size(), v) == 0;
    default: {
      const int order = row.Compare(right);
      const char ordered[] = {order == 0, order != 0, order<0, order <= 0, order> 0, order >= 0};
      return IsOrdering(compare) && ordered[static_cast<int32_t>(compare)];
    }
  }
}

}  // namespace

struct VCUTableFilterBasic::Record {
  VCString keyword;
  char inclusive = 1;
  VTTableFilterCompare compare = VTTableFilterCompare::Equal;
  VCVariant value;
  char caseSensitive = 0;
  int32_t col = -1;
  VTTableDataType type = VTTableDataType::None;
  int16_t valueS = 0;
  int32_t valueL = 0;  // Long and Enum
  int64_t valueH = 0;
  float valueF = 0;
  double valueD = 0;
  VCString valueT;
  VCVariant block;             // values of one block, as a typed buffer
  VCStringArray texts;         // texts of one block
  std::vector<char> spanPass;  // answers for a span of rows
};

VCUTableFilterBasic::VCUTableFilterBasic() : m_record(std::make_unique<Record>()) {}
VCUTableFilterBasic::~VCUTableFilterBasic() = default;

bool VCUTableFilterBasic::SetColumnKeyword(const char* keyword) {
  m_record->keyword = keyword;
  return true;
}

bool VCUTableFilterBasic::SetCompare(VTTableFilterCompare compare) {
  if (compare < VTTableFilterCompare::Equal || compare > VTTableFilterCompare::EndsWith) {
    return VFReportError(kTableErrorComparison, "VCUTableFilterBasic::SetCompare");
  }
  m_record->compare = compare;
  return true;
}

bool VCUTableFilterBasic::SetCompareValue(const VCVariant& value) {
  m_record->value = value;
  return true;
}

bool VCUTableFilterBasic::SetInclusive(char inclusive) {
  m_record->inclusive = inclusive;
  return true;
}

bool VCUTableFilterBasic::SetCaseSensitive(char caseSensitive) {
  m_record->caseSensitive = caseSensitive;
  return true;
}

bool VCUTableFilterBasic::Validate(VCUTable* table) {
  static constexpr const char* kLocation = "VCUTableFilterBasic::Validate";
  Record& r = *m_record;
  if (!table->GetColIndexFromKeyword(r.keyword, &r.col)) return false;
  if (!table->GetColType(r.col, &r.type)) return false;
  if (r.compare >= VTTableFilterCompare::Contains && r.type != VTTableDataType::Text) {
    return VFReportError(kTableErrorStringFilter, kLocation);
  }
  try {
    switch (r.type) {
      case VTTableDataType::Short:
        r.valueS = r.value.GetShort();
        return true;
      case VTTableDataType::Long:
        r.valueL = r.value.GetLong();
        return true;
      case VTTableDataType::Huge:
        r.valueH = r.value.GetHuge();
        return true;
      case VTTableDataType::Float:
        r.valueF = r.value.GetFloat();
        return true;
      case VTTableDataType::Double:
        r.valueD = r.value.GetDouble();
        return true;
      case VTTableDataType::Text:
        r.valueT = r.value.GetString();
        if (!r.caseSensitive) r.valueT.MakeUpper();
        return true;
      case VTTableDataType::Enum: {
        if (!r.value.IsString()) {
          r.valueL = r.value.GetLong();
          return true;
        }
        VCArrayWithSort<int32_t> codes;
        VCStringArray names;
        if (!table->GetEnumColOptions(r.col, &codes, &names)) return false;
        const VCString name = r.value.GetString();
        const int32_t at = names.FindNoCase(name);
        r.valueL = at >= 0 && at < codes.GetSize() ? codes[at] : -1;
        return true;
      }
      default:
        return VFReportError(kTableErrorFilterColumnType, kLocation);
    }
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, kLocation);
  }
}

template <class Sink>
bool VCUTableFilterBasic::CheckRun(VCUTable* table, int64_t first, int64_t count, Sink& sink) {
  Record& r = *m_record;
  VCVariant& b = r.block;
  const bool inclusive = r.inclusive != 0;
  const int32_t col = r.col;
  if (r.compare == VTTableFilterCompare::IsValid || r.compare == VTTableFilterCompare::IsInvalid) {
    char hasStatus = 0;
    if (!table->GetColHasStatus(col, &hasStatus)) return false;
    uint16_t* status = b.SetBuffer_U(count);
    if (status == nullptr) return false;
    if (hasStatus && !table->GetStatusValues(col, first, count, status)) return false;
    const bool wantValid = r.compare == VTTableFilterCompare::IsValid;
    sink.Each(count, [&](int64_t i) {
      const bool valid = !hasStatus || (status[i] & kTableStatusValid) != 0;
      return (valid == wantValid) == inclusive;
    });
    return true;
  }
  const VTTableFilterCompare c = r.compare;
  switch (r.type) {
    case VTTableDataType::Short:
      return MatchRead(
          count, r.valueS, c, inclusive, sink, [&](int64_t n) { return b.SetBuffer_S(n); },
          [&](int16_t* v) { return table->GetValues_S(col, first, count, v); });
    case VTTableDataType::Long:
      return MatchRead(
          count, r.valueL, c, inclusive, sink, [&](int64_t n) { return b.SetBuffer_L(n); },
          [&](int32_t* v) { return table->GetValues_L(col, first, count, v); });
    case VTTableDataType::Huge:
      return MatchRead(
          count, r.valueH, c, inclusive, sink, [&](int64_t n) { return b.SetBuffer_H(n); },
          [&](int64_t* v) { return table->GetValues_H(col, first, count, v); });
    case VTTableDataType::Float:
      return MatchRead(
          count, r.valueF, c, inclusive, sink, [&](int64_t n) { return b.SetBuffer_F(n); },
          [&](float* v) { return table->GetValues_F(col, first, count, v); });
    case VTTableDataType::Double:
      return MatchRead(
          count, r.valueD, c, inclusive, sink, [&](int64_t n) { return b.SetBuffer_D(n); },
          [&](double* v) { return table->GetValues_D(col, first, count, v); });
    case VTTableDataType::Enum:
      return MatchRead(
          count, r.valueL, c, inclusive, sink, [&](int64_t n) { return b.SetBuffer_L(n); },
          [&](int32_t* v) { return table->GetValues_E(col, first, count, v, nullptr); });
    case VTTableDataType::Text: {
      if (!table->GetValues_T(col, first, count, &r.texts)) return false;
      sink.Each(count, [&](int64_t i) {
        bool match = false;
        if (i < r.texts.GetSize()) {
          VCString& text = r.texts[static_cast<int32_t>(i)];
          if (!r.caseSensitive) text.MakeUpper();
          match = MatchText(text, r.valueT, c);
        }
        return match == inclusive;
      });
      return true;
    }
    default:  // nothing matches a column of unknown type
      sink.Each(count, [&](int64_t) { return !inclusive; });
      return true;
  }
}

bool VCUTableFilterBasic::CheckRow(VCUTable* table, int64_t row, char* pass) {
  *pass = 0;
  try {
    char result = 0;
    FlagSink answer{&result};
    if (!CheckRun(table, row, 1, answer)) return false;
    *pass = result;
    return true;
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableFilterBasic::CheckRow");
  }
}

bool VCUTableFilterBasic::CheckRange(VCUTable* table, int64_t first, int32_t count, int32_t* passed,
                                     int32_t* passedCount) {
  int32_t n = 0;
  *passedCount = 0;
  try {
    for (int32_t i = 0; i < count; i += static_cast<int32_t>(kBlock)) {
      const int32_t length = std::min(static_cast<int32_t>(kBlock), count - i);
      const ErrorMark mark;
      SelectSink select{passed, i, n};
      if (CheckRun(table, first + i, length, select)) {
        n = select.count;
      } else {
        if (length == 1) return false;
        // Report the error of the first failing row, as a row-by-row check would.
        mark.Rollback();
        for (int32_t k = i; k < i + length; ++k) {
          char pass = 0;
          if (!CheckRow(table, first + k, &pass)) return false;
          passed[n] = k;
          n += pass;
        }
      }
      *passedCount = n;
    }
    return true;
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableFilterBasic::CheckRange");
  }
}

bool VCUTableFilterBasic::CheckRows(VCUTable* table, const int32_t* rows, int32_t count,
                                    int32_t* passed, int32_t* passedCount) {
  Record& r = *m_record;
  int32_t n = 0;
  *passedCount = 0;
  try {
    for (int32_t i = 0; i < count;) {
      // Rows that rise within one block's span are read as that span in one
      // read (the rows between them are checked and dropped) unless they
      // are too sparse; otherwise only a run of consecutive rows is.
      int32_t j = RisingSpan(rows + i, std::min<int64_t>(count - i, kBlock)) + i;
      int64_t span = int64_t{rows[j - 1]} - rows[i] + 1;
      if (span > kSparse * (j - i)) {
        j = i + 1;
        while (j < count && j - i < kBlock && rows[j] == rows[j - 1] + 1) ++j;
        span = j - i;
      }
      if (span == j - i) {
        int32_t found = 0;
        if (!VCUTableFilterBasic::CheckRange(table, rows[i], j - i, passed + n, &found)) {
          return false;
        }
        for (int32_t k = 0; k < found; ++k) passed[n + k] += i;
        n += found;
      } else {
        const ErrorMark mark;
        r.spanPass.resize(static_cast<size_t>(kBlock));
        FlagSink flags{r.spanPass.data()};
        if (CheckRun(table, rows[i], span, flags)) {
          n = GatherPassed(flags.flags, rows + i, j - i, i, passed, n);
        } else {
          // Report the error of the first failing row, as a row-by-row check would.
          mark.Rollback();
          for (int32_t k = i; k < j; ++k) {
            char pass = 0;
            if (!CheckRow(table, rows[k], &pass)) return false;
            passed[n] = k;
            n += pass;
          }
        }
      }
      *passedCount = n;
      i = j;
    }
    return true;
  } catch (...) {
    return VFReportError(kTableErrorOutOfMemory, "VCUTableFilterBasic::CheckRows");
  }
}
