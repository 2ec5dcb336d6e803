#include <utilkit/tree/tree_filter_or.h>

namespace {
constexpr int32_t kFilterORType = 3;
}

VCUTreeFilterOR::VCUTreeFilterOR() : VCUTreeFilterOR(nullptr, nullptr) {}

VCUTreeFilterOR::VCUTreeFilterOR(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2)
    : VCUTreeFilterPair(kFilterORType, op1, op2) {}

char VCUTreeFilterOR::DoesObjectPassFilter(VCUTreeSourceNode* node) {
  VCUTreeFilterDefBase* first = GetOperand1();
  VCUTreeFilterDefBase* second = GetOperand2();
  if (!first || !second) return 0;
  return first->DoesObjectPassFilter(node) || second->DoesObjectPassFilter(node);
}
