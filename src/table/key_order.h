// KeyOrder: the stable order of rows by several columns of 64-bit keys.
//
// The sort reduces each sort column to keys that compare as unsigned
// integers (see column_keys.h) and asks for the order of the positions
// 0..n-1 by the first column, then the second, and so on, equal rows
// keeping their positions' order. That order is found by a least
// significant digit radix sort, column by column from the last, byte by
// byte, skipping the bytes that every row shares.
#pragma once

#include <cstdint>
#include <vector>

namespace utilkit::table {

struct KeyColumn {
  const uint64_t* keys;  // one key per position
  bool descending;
};

// Writes to order[0, n) the positions 0..n-1 in order. False when memory
// runs out.
bool KeyOrder(const std::vector<KeyColumn>& columns, int64_t n, int32_t* order);

}  // namespace utilkit::table
