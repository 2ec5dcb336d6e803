// The filter text of `utilkit table`: a readable form of a tree of table
// filters (basic comparisons combined with AND, OR and NOT).
//
//   Force > 2.5 AND (Name STARTSWITH 'ch' CASE OR Grade = low)
//   NOT Force IS VALID || [Test Name] CONTAINS "run"
//
// Grammar (keywords in any case):
//   filter     := and-list { ("OR" | "||") and-list }
//   and-list   := unary { ("AND" | "&&") unary }
//   unary      := ("NOT" | "!") unary | "(" filter ")" | comparison
//   comparison := column "IS" ("VALID" | "INVALID")
//               | column operator value ["CASE"]
//   operator   := "=" | "==" | "!=" | "<>" | "<" | "<=" | ">" | ">="
//               | "CONTAINS" | "STARTSWITH" | "ENDSWITH"
//   column     := a word (letters, digits, "_", ".", ...) or a name in [brackets]
//   value      := 'text' | "text" (a doubled quote stands for one) | a word,
//                 which is a number when it reads as one, else text
// AND binds tighter than OR. Text comparisons ignore case unless CASE
// follows the value. NOT inverts a comparison (its "inclusive" flag off);
// NOT of a group is carried down to the comparisons (NOT (A AND B) is
// NOT A OR NOT B). An Enum column compares with an option name given as
// text, or with a code given as a number. Parentheses nest at most
// kMaxFilterDepth deep unless told otherwise; any number of NOTs and of parts in a list is taken
// (a list becomes a balanced tree of AND or OR pairs).
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <utilkit/table/table_filter.h>

namespace utilkit::tool {

// The deepest nesting of parentheses a filter text may have unless told
// otherwise (`utilkit table --max-depth`).
inline constexpr size_t kMaxFilterDepth = 200;

// A comparison whose value is a text: against a column of numbers it would
// compare as 0, so the tool refuses it once the column types are known.
struct FilterTextValue {
  std::string column;  // as written
  std::string value;   // the text
  size_t at = 0;       // 1-based character position of the value
};

// The filter tree that `text` describes, or null with `*error` saying what
// is wrong and where ("filter: expected a value at character 9"). When
// `textValues` is given, the comparisons with a text value are added to it.
// Parentheses nested more than `maxDepth` deep are refused.
std::unique_ptr<VCUTableFilter> ParseTableFilter(std::string_view text, std::string* error,
                                                 std::vector<FilterTextValue>* textValues = nullptr,
                                                 size_t maxDepth = kMaxFilterDepth);

}  // namespace utilkit::tool
