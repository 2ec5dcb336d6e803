// VCUTreeFilterOR: passes a node when either operand passes (the second is asked only when the
// first fails).
//
// The filter text "(Size >= 10) | (Name ~ *.log)" gives one of these.
// Operands nest freely, mixing AND, OR and basic filters. A filter missing
// either operand lets no node pass.
//
//   auto* big = new VCUTreeFilterBasic("Size", VCUTreeFilterBasic::kGreaterOrEqual,
//                                      VCVariant(int64_t{10}));
//   auto* logs = new VCUTreeFilterBasic("Name", VCUTreeFilterBasic::kPatternMatch,
//                                       VCVariant("*.log"));
//   tree.SetFilteringOp(new VCUTreeFilterOR(big, logs));   // owns big and logs
//
// Ownership: the filter owns its operands and deletes them through their
// virtual destructor. A copy copies operands of the library's own filter
// classes deeply; an operand of a host's own class is missing in the copy.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_filter_def_base.h>

class UTILKIT_API VCUTreeFilterOR : public VCUTreeFilterDefBase {
 public:
  // A filter without operands (lets no node pass until SetOperands).
  VCUTreeFilterOR();
  // Takes ownership of `op1` and `op2` (either may be null).
  VCUTreeFilterOR(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);
  VCUTreeFilterOR(const VCUTreeFilterOR& other);
  VCUTreeFilterOR& operator=(const VCUTreeFilterOR& other);
  ~VCUTreeFilterOR() override;

  // False when an operand is missing; otherwise true when either operand passes (the second is
  // asked only when the first fails).
  char DoesObjectPassFilter(VCUTreeSourceNode* node) override;

  // The operands, still owned by this filter.
  VCUTreeFilterDefBase* GetOperand1() const;
  VCUTreeFilterDefBase* GetOperand2() const;
  // Deletes the current operands (except one handed back in), then takes
  // ownership of `op1` and `op2`.
  void SetOperands(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);

 private:
  struct Data;
  Data* m_pData;
};
