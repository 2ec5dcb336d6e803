// VCUTreeFilterOR: passes a node when either operand passes (the second is
// asked only when the first fails).
//
// The filter text "(Size >= 10) | (Name ~ *.log)" gives one of these.
// Operands nest freely, mixing AND, OR and basic filters.
//
//   auto* small = new VCUTreeFilterBasic("Size", VCUTreeFilterBasic::kLess,
//                                        VCVariant(int64_t{10}));
//   auto* logs = new VCUTreeFilterBasic("Name", VCUTreeFilterBasic::kPatternMatch,
//                                       VCVariant("*.log"));
//   tree.SetFilteringOp(new VCUTreeFilterOR(small, logs));   // owns small and logs
//
// Ownership and copies: see VCUTreeFilterPair.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_filter_pair.h>

class UTILKIT_API VCUTreeFilterOR : public VCUTreeFilterPair {
 public:
  // A filter without operands (lets no node pass until SetOperands).
  VCUTreeFilterOR();
  // Takes ownership of `op1` and `op2` (either may be null).
  VCUTreeFilterOR(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);

  // False when an operand is missing; otherwise true when either operand passes.
  char DoesObjectPassFilter(VCUTreeSourceNode* node) override;
};
