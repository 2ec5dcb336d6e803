// VCUTableFilterCompound: the common part of the AND and OR filters, which
// combine two sub-filters of any kind into a tree of filters.
//
// The first sub-filter decides alone when its answer settles the outcome
// (a rejection for AND, an acceptance for OR); only otherwise is the second
// asked, and its answer is the outcome. Hosts use VCUTableFilterAND and
// VCUTableFilterOR (see their headers).
//
//   auto* both = new VCUTableFilterAND;
//   both->SetFilters(new VCUTableFilterBasic, new VCUTableFilterBasic);
//   delete both;   // deletes the two sub-filters too
//
// Ownership: the filter owns the sub-filters given to SetFilters and
// deletes them when it is destroyed (once, if both are the same object).
// SetFilters does not delete sub-filters set before: they go back to the
// caller.
#pragma once

#include <cstdint>
#include <vector>

#include <utilkit/base/export.h>
#include <utilkit/table/table_filter.h>

class UTILKIT_API VCUTableFilterCompound : public VCUTableFilter {
 public:
  ~VCUTableFilterCompound() override;

  // Takes ownership of both. Never fails.
  bool SetFilters(VCUTableFilter* first, VCUTableFilter* second);

  // Fails with this filter's code (-655991 AND, -655992 OR) when a
  // sub-filter is missing; else validates the first, then the second.
  bool Validate(VCUTable* table) override;
  // The first sub-filter's answer when it settles the outcome, else the
  // second's; fails with a sub-filter's failure.
  bool CheckRow(VCUTable* table, int64_t row, char* pass) override;
  // The second sub-filter is given only the rows the first leaves open.
  bool CheckRows(VCUTable* table, const int32_t* rows, int32_t count, int32_t* passed,
                 int32_t* passedCount) override;
  bool CheckRange(VCUTable* table, int64_t first, int32_t count, int32_t* passed,
                  int32_t* passedCount) override;

 protected:
  // `settles`: the first sub-filter's answer that decides alone (0 for AND,
  // 1 for OR); `missingCode` and `location`: the error of a missing
  // sub-filter.
  VCUTableFilterCompound(char settles, int32_t missingCode, const char* location);

 private:
  VCUTableFilter* m_first = nullptr;
  VCUTableFilter* m_second = nullptr;
  char m_settles;
  int32_t m_missingCode;
  const char* m_location;
  // CheckRows (`rows` given) or CheckRange (`rows` null).
  bool CheckBlock(VCUTable* table, const int32_t* rows, int64_t first, int32_t count,
                  int32_t* passed, int32_t* passedCount);
  // CheckBlock without the row-by-row fallback: false when a sub-filter fails.
  bool Combine(VCUTable* table, const int32_t* rows, int64_t first, int32_t count, int32_t* passed,
               int32_t* passedCount);

  // Buffers of CheckRows, kept to save allocations.
  std::vector<int32_t> m_firstPassed;   // positions the first sub-filter passes
  std::vector<int32_t> m_openAt;        // positions it leaves open (OR)
  std::vector<int32_t> m_open;          // the rows at those positions
  std::vector<int32_t> m_secondPassed;  // positions in m_open the second passes
};
