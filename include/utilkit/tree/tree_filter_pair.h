// VCUTreeFilterPair: what the AND and OR filters share, two owned operands.
//
// Hosts make a VCUTreeFilterAND or a VCUTreeFilterOR; this base holds their
// operands and copies them. Each derived filter lets no node pass while
// either operand is missing.
//
//   VCUTreeFilterPair* both = new VCUTreeFilterAND(big, logs);  // owns both
//   both->SetOperands(both->GetOperand2(), both->GetOperand1());  // swapped
//
// Ownership: the filter owns its operands and deletes them through their
// virtual destructor; an operand handed back in by SetOperands is kept. A
// copy copies operands of the library's own filter classes deeply; an
// operand of a host's own class is missing in the copy.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/tree/tree_filter_def_base.h>
#include <utilkit/tree/tree_private_block.h>

class UTILKIT_API VCUTreeFilterPair : public VCUTreeFilterDefBase {
 public:
  ~VCUTreeFilterPair() override;

  // The operands, still owned by this filter (either may be null).
  VCUTreeFilterDefBase* GetOperand1() const;
  VCUTreeFilterDefBase* GetOperand2() const;
  // Deletes the current operands (except one handed back in), then takes
  // ownership of `op1` and `op2`.
  void SetOperands(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);

 protected:
  // Takes ownership of `op1` and `op2` (either may be null).
  VCUTreeFilterPair(int32_t filterType, VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);
  VCUTreeFilterPair(const VCUTreeFilterPair& other);
  VCUTreeFilterPair& operator=(const VCUTreeFilterPair& other);

 private:
  struct Data;
  VCTreePrivateBlock<Data> m_pData;
};
