// VCUTableFilterAND: passes the rows that both of its sub-filters pass.
//
// The second sub-filter is not asked about a row that the first rejects.
//
//   auto* range = new VCUTableFilterAND;
//   range->SetFilters(atLeast, below);   // two VCUTableFilterBasic*, now owned by `range`
//   processor.SetFilter(range);          // the processor does not own it
//
// Ownership: as VCUTableFilterCompound (owns and deletes its sub-filters).
// Validate fails with -655991 "AND filter must have two sub-filters
// assigned" at "VCUTableFilterAND::Validate" when one is missing.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/table/table_filter_compound.h>

class UTILKIT_API VCUTableFilterAND : public VCUTableFilterCompound {
 public:
  VCUTableFilterAND();
  ~VCUTableFilterAND() override;
};
