#include "table_ops_text.h"

#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include <utilkit/base/number_text.h>
#include <utilkit/base/vc_string.h>

namespace utilkit::tool {

namespace {

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string Trimmed(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return std::string(text);
}

// Reads one option text from left to right, keeping the first failure.
class Scanner {
 public:
  Scanner(std::string_view setting, std::string_view text) : m_setting(setting), m_text(text) {}

  bool AtEnd() {
    SkipSpaces();
    return m_at >= m_text.size();
  }

  // Consumes `c` when it comes next (after blanks).
  bool Eat(char c) {
    if (AtEnd() || m_text[m_at] != c) return false;
    ++m_at;
    return true;
  }

  // Whether `c` comes next (after blanks), leaving it there.
  bool Next(char c) { return !AtEnd() && m_text[m_at] == c; }

  bool Expect(char c) { return Eat(c) || Fail(std::string("expected '") + c + "'"); }

  // A column name: "[any text]", or the text up to one of `stops`, trimmed.
  bool Name(const char* stops, std::string* name) {
    if (Eat('[')) {
      const size_t close = m_text.find(']', m_at);
      if (close == std::string_view::npos) return Fail("expected ']'");
      *name = std::string(m_text.substr(m_at, close - m_at));
      m_at = close + 1;
    } else {
      *name = Word(stops);
    }
    return !name->empty() || Fail("expected a column name");
  }

  // The text up to one of `stops` (or the end), trimmed; may be empty.
  std::string Word(const char* stops) {
    SkipSpaces();
    const size_t start = m_at;
    while (m_at < m_text.size() && std::strchr(stops, m_text[m_at]) == nullptr) ++m_at;
    return Trimmed(m_text.substr(start, m_at - start));
  }

  // Reads ":word" modifiers, each one of `words`. A word sets
  // values[groups[i]] to i; a group set twice fails.
  bool Modifiers(std::span<const char* const> words, const int32_t* groups, int32_t* values) {
    while (Eat(':')) {
      SkipSpaces();
      const size_t at = m_at;
      const std::string word = Word(",:");
      int32_t index = 0;
      for (const char* w : words) {
        if (VCString(word.c_str()).CompareNoCase(w) == 0) break;
        ++index;
      }
      if (index == static_cast<int32_t>(words.size())) {
        m_at = at;
        std::string all;
        for (size_t i = 0; i < words.size(); ++i) {
          all += std::string(i == 0 ? "" : i + 1 < words.size() ? ", " : " or ") + words[i];
        }
        return Fail(word.empty() ? "expected a modifier" : "unknown modifier '" + word + "'",
                    " (" + all + ")");
      }
      if (values[groups[index]] >= 0) {
        m_at = at;
        return Fail("'" + word + "' conflicts with an earlier modifier");
      }
      values[groups[index]] = index;
    }
    return true;
  }

  // The rest of the text, trimmed.
  std::string Rest() {
    const std::string rest = Trimmed(m_text.substr(m_at));
    m_at = m_text.size();
    return rest;
  }

  // Succeeds at the end of the text.
  bool End() { return AtEnd() || Fail(std::string("unexpected '") + m_text[m_at] + "'"); }

  // Fails with `what` at the current place ("at character N", 1-based),
  // then `hint`.
  bool Fail(const std::string& what, const std::string& hint = "") {
    if (m_error.empty()) {
      m_error = std::string(m_setting) + ": " + what +
                (AtEnd() ? " at the end" : " at character " + std::to_string(m_at + 1)) + hint;
    }
    return false;
  }

  // Fails with `what` as it is.
  bool FailPlain(const std::string& what) {
    if (m_error.empty()) m_error = std::string(m_setting) + ": " + what;
    return false;
  }

  bool Done(std::string* error) const {
    *error = m_error;
    return m_error.empty();
  }

 private:
  void SkipSpaces() {
    while (m_at < m_text.size() && IsSpace(m_text[m_at])) ++m_at;
  }

  std::string_view m_setting;
  std::string_view m_text;
  size_t m_at = 0;
  std::string m_error;
};

// A sort key's modifiers and a compression's, each with its group (at most
// one word of a group per key).
constexpr const char* kKeyWords[] = {"asc", "desc", "nocase", "case"};
constexpr int32_t kKeyGroups[] = {0, 0, 1, 1};
constexpr const char* kCompressWords[] = {"max", "min", "sum", "later"};
constexpr int32_t kCompressGroups[] = {0, 0, 0, 1};

bool ParseKeys(Scanner& s, VCUTableSort* sort) {
  do {
    std::string name;
    int32_t values[2] = {-1, -1};
    if (!s.Name(",:", &name) || !s.Modifiers(kKeyWords, kKeyGroups, values)) return false;
    sort->AddColumn(name.c_str(), values[0] != 1, values[1] == 3);
  } while (s.Eat(','));
  return s.End();
}

bool ParseCategory(Scanner& s, VCUTableSort* sort) {
  std::string name;
  if (!s.Name(",:", &name)) return false;
  int32_t count = 1;
  if (s.Eat(':')) {
    const std::string text = s.Rest();
    if (!VFAscToNum(text.c_str(), &count) || count < 0) {
      return s.FailPlain("'" + text + "' is not a row count (0 or more)");
    }
  }
  sort->SetCategory(name.c_str(), count);
  return s.End();
}

// A compression as read; the object is made afterwards, since "later" is
// given at construction.
struct CompressText {
  std::vector<std::string> search;
  std::string select;
  int32_t values[2] = {-1, -1};  // type, later (see kCompressWords)
};

bool ParseCompress(Scanner& s, CompressText* c) {
  if (!s.AtEnd() && !s.Next(':')) {
    do {
      if (!s.Name(",:", &c->search.emplace_back())) return false;
    } while (s.Eat(','));
  }
  if (s.Eat(':')) {
    if (!s.AtEnd() && !s.Next(':') && !s.Name(",:", &c->select)) return false;
    if (!s.Modifiers(kCompressWords, kCompressGroups, c->values)) return false;
  }
  return s.End();
}

// "number / [column]": the number and the column.
bool IsDivision(const std::string& expression, double* numerator, std::string* column) {
  const size_t open = expression.rfind('[');
  if (expression.empty() || expression.back() != ']' || open == std::string::npos) return false;
  const std::string left = Trimmed(std::string_view(expression).substr(0, open));
  if (left.empty() || left.back() != '/') return false;
  *column = expression.substr(open + 1, expression.size() - open - 2);
  return !column->empty() && column->find(']') == std::string::npos &&
         VFAscToNum(left.substr(0, left.size() - 1).c_str(), numerator);
}

}  // namespace

std::unique_ptr<VCUTableSort> ParseSortText(std::string_view keys, std::string_view category,
                                            std::string* error) {
  auto sort = std::make_unique<VCUTableSort>();
  Scanner keyText("sort", keys), categoryText("category", category);
  // A failure is kept by its scanner.
  if (!keys.empty()) ParseKeys(keyText, sort.get());
  if (!keyText.Done(error)) return nullptr;
  if (!category.empty()) ParseCategory(categoryText, sort.get());
  return categoryText.Done(error) ? std::move(sort) : nullptr;
}

std::unique_ptr<VCUTableCompress> ParseCompressText(std::string_view text, std::string* error) {
  Scanner s("compress", text);
  CompressText c;
  ParseCompress(s, &c);  // a failure is kept by the scanner
  if (!s.Done(error)) return nullptr;
  auto compress = std::make_unique<VCUTableCompress>(c.values[1] == 3 ? 1 : 0);
  for (const std::string& name : c.search) compress->AddSearchColumn(name.c_str());
  if (!c.select.empty()) compress->SetSelectColumn(c.select.c_str());
  compress->SetSelectType(static_cast<VTCompressType>(c.values[0] < 0 ? 0 : c.values[0]));
  return compress;
}

std::unique_ptr<VCUTableNewColumn> ParseNewColumnText(std::string_view text, std::string* error) {
  Scanner s("new", text);
  std::string name;
  if (s.Name("=", &name)) s.Expect('=');
  if (!s.Done(error)) return nullptr;
  auto column = std::make_unique<VCUTableNewColumn>();
  column->SetKeyword(name.c_str());
  const std::string expression = s.Rest();
  double numerator = 0;
  std::string divisor;
  if (IsDivision(expression, &numerator, &divisor)) {
    column->SetDivideByCol(numerator, divisor.c_str());
  } else {
    column->SetExpression(VCString(expression.c_str()));
  }
  return column;
}

std::unique_ptr<VCUTableNewColumn> ParseRowIndexText(std::string_view text, std::string* error) {
  Scanner s("row-index", text);
  std::string name;
  int64_t first = 1;
  if (s.Name("=", &name) && s.Eat('=')) {
    const std::string number = s.Rest();
    if (!VFAscToNum(number.c_str(), &first)) {
      s.FailPlain("'" + number + "' is not a whole number");
    } else if (first < -kMaxRowIndexStart || first > kMaxRowIndexStart) {
      s.FailPlain("'" + number + "' is beyond the largest start, " +
                  std::to_string(kMaxRowIndexStart));
    }
  }
  s.End();
  if (!s.Done(error)) return nullptr;
  auto column = std::make_unique<VCUTableNewColumn>();
  column->SetKeyword(name.c_str());
  column->SetGenerateRowIndex(first + 1);  // the first output row shows start - 1
  return column;
}

bool ParseNewStatusText(std::string_view text, std::string* name, std::string* column,
                        std::string* error) {
  Scanner s("new-status", text);
  if (s.Name("=", name) && s.Expect('=') && s.Name("", column)) s.End();
  return s.Done(error);
}

bool ParseTrapText(std::string_view setting, std::string_view text, double* value,
                   std::string* error) {
  const std::string number = Trimmed(text);
  if (VFAscToNum(number.c_str(), value)) return true;
  *error = std::string(setting) + ": '" + number + "' is not a number";
  return false;
}

}  // namespace utilkit::tool
