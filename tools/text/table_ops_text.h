// The option texts of `utilkit table` for what runs after the filter: the
// sort and its category trim, compressions and computed columns.
//
//   sort       Name,Time:desc,Code:case        keys in order
//   category   Name:2                          rows kept per category
//   compress   Channel,Flag:Peak:sum:later     search columns, select column
//   new        Energy=#Peak# * #Time# / 1000   an expression
//   new        Rate=10 / [Time]                a number divided by a column
//   row-index  Index=0                         numbers the output rows
//   new-status Energy=Peak                     Energy copies Peak's status
//
// Grammar (modifiers in any case; blanks around names are dropped):
//   sort       := key { "," key }
//   key        := column { ":" ("asc" | "desc" | "case" | "nocase") }
//   category   := column [ ":" count ]                 (count >= 0, default 1)
//   compress   := [ column { "," column } ] [ ":" [ column ] { ":" modifier } ]
//   modifier   := "max" | "min" | "sum" | "later"
//   new        := name "=" expression | name "=" number "/" "[" column "]"
//   row-index  := name [ "=" first ]                   (default 1)
//   new-status := name "=" column
//   column     := text without "," ":" "=" | "[" any text but "]" "]"
// Sort keys are ascending and ignore case unless told otherwise. A
// compression keeps each group's largest select value unless told min or
// sum; "later" lets rows of later input tables win. The expression uses
// "#Column#" and "#Column_status#" variables (see new_col_calculator.h).
// The row index gives the first output row the number `first`, the next
// one first + 1, and so on.
//
// Each parser returns false (or null) with `*error` a one-line message that
// names the setting: "sort: unknown modifier 'up' at character 6".
#pragma once

#include <cstdint>

#include <memory>
#include <string>
#include <string_view>

#include <utilkit/table/table_compress.h>
#include <utilkit/table/table_new_column.h>
#include <utilkit/table/table_sort.h>

namespace utilkit::tool {

// A sort with the keys of `keys` and, when `category` is not empty, its
// category trim. Either text may be empty.
std::unique_ptr<VCUTableSort> ParseSortText(std::string_view keys, std::string_view category,
                                            std::string* error);

// One compression.
std::unique_ptr<VCUTableCompress> ParseCompressText(std::string_view text, std::string* error);

// A computed column: an expression or a number divided by a column.
std::unique_ptr<VCUTableNewColumn> ParseNewColumnText(std::string_view text, std::string* error);

// The largest start (either sign) of a row index: 2^62, so that no table's
// rows number past the 64-bit limit.
inline constexpr int64_t kMaxRowIndexStart = int64_t{1} << 62;

// A row index column: "NAME" or "NAME=FIRST" (|FIRST| <= kMaxRowIndexStart).
std::unique_ptr<VCUTableNewColumn> ParseRowIndexText(std::string_view text, std::string* error);

// "name=column" of the new-status setting.
bool ParseNewStatusText(std::string_view text, std::string* name, std::string* column,
                        std::string* error);

// A trap value: any number VFAscToNum reads, "nan" and "inf" included.
// `setting` names the setting in the message.
bool ParseTrapText(std::string_view setting, std::string_view text, double* value,
                   std::string* error);

}  // namespace utilkit::tool
