// VCUTableFilterOR: passes the rows that either of its sub-filters passes.
//
// The second sub-filter is not asked about a row that the first accepts.
//
//   auto* either = new VCUTableFilterOR;
//   either->SetFilters(isLow, isHigh);   // two VCUTableFilterBasic*, now owned by `either`
//   processor.SetFilter(either);         // the processor does not own it
//
// Ownership: as VCUTableFilterCompound (owns and deletes its sub-filters).
// Validate fails with -655992 "OR filter must have two sub-filters
// assigned" at "VCUTableFilterOR::Validate" when one is missing.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/table/table_filter_compound.h>

class UTILKIT_API VCUTableFilterOR : public VCUTableFilterCompound {
 public:
  VCUTableFilterOR();
  ~VCUTableFilterOR() override;
};
