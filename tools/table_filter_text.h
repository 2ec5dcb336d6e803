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
// text, or with a code given as a number.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <utilkit/table/table_filter.h>

namespace utilkit::tool {

// The filter tree that `text` describes, or null with `*error` saying what
// is wrong and where ("filter: expected a value at character 9").
std::unique_ptr<VCUTableFilter> ParseTableFilter(std::string_view text, std::string* error);

}  // namespace utilkit::tool
