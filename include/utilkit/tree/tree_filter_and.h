// VCUTreeFilterAND: passes a node when both operands pass (the second is
// asked only when the first passes).
//
// The filter text "(Size >= 10) & (Name ~ *.log)" gives one of these.
// Operands nest freely, mixing AND, OR and basic filters.
//
//   auto* big = new VCUTreeFilterBasic("Size", VCUTreeFilterBasic::kGreaterOrEqual,
//                                      VCVariant(int64_t{10}));
//   auto* logs = new VCUTreeFilterBasic("Name", VCUTreeFilterBasic::kPatternMatch,
//                                       VCVariant("*.log"));
//   tree.SetFilteringOp(new VCUTreeFilterAND(big, logs));   // owns big and logs
//
// Ownership and copies: see VCUTreeFilterPair.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_filter_pair.h>

class UTILKIT_API VCUTreeFilterAND : public VCUTreeFilterPair {
 public:
  // A filter without operands (lets no node pass until SetOperands).
  VCUTreeFilterAND();
  // Takes ownership of `op1` and `op2` (either may be null).
  VCUTreeFilterAND(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);

  // False when an operand is missing; otherwise true when both operands pass.
  char DoesObjectPassFilter(VCUTreeSourceNode* node) override;
};
