#include <utilkit/tree/tree_filter_and.h>

namespace {
constexpr int32_t kFilterANDType = 2;
}

VCUTreeFilterAND::VCUTreeFilterAND() : VCUTreeFilterAND(nullptr, nullptr) {}

VCUTreeFilterAND::VCUTreeFilterAND(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2)
    : VCUTreeFilterPair(kFilterANDType, op1, op2) {}

char VCUTreeFilterAND::DoesObjectPassFilter(VCUTreeSourceNode* node) {
  VCUTreeFilterDefBase* first = GetOperand1();
  VCUTreeFilterDefBase* second = GetOperand2();
  if (!first || !second) return 0;
  return first->DoesObjectPassFilter(node) && second->DoesObjectPassFilter(node);
}
