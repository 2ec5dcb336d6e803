#include <utilkit/tree/tree_filter_or.h>

#include "tree/tree_filter_operands.h"

namespace {
constexpr int32_t kFilterORType = 3;
}

struct VCUTreeFilterOR::Data {
  VCTreeFilterOperands operands;
};

VCUTreeFilterOR::VCUTreeFilterOR() : VCUTreeFilterOR(nullptr, nullptr) {}

VCUTreeFilterOR::VCUTreeFilterOR(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2)
    : VCUTreeFilterDefBase(kFilterORType), m_pData(new Data{{op1, op2}}) {}

VCUTreeFilterOR::VCUTreeFilterOR(const VCUTreeFilterOR& other)
    : VCUTreeFilterDefBase(other), m_pData(new Data(*other.m_pData)) {}

VCUTreeFilterOR& VCUTreeFilterOR::operator=(const VCUTreeFilterOR& other) {
  VCUTreeFilterDefBase::operator=(other);
  *m_pData = *other.m_pData;
  return *this;
}

VCUTreeFilterOR::~VCUTreeFilterOR() {
  delete m_pData;
}

char VCUTreeFilterOR::DoesObjectPassFilter(VCUTreeSourceNode* node) {
  VCUTreeFilterDefBase* first = m_pData->operands.First();
  VCUTreeFilterDefBase* second = m_pData->operands.Second();
  if (!first || !second) return 0;
  return first->DoesObjectPassFilter(node) || second->DoesObjectPassFilter(node);
}

VCUTreeFilterDefBase* VCUTreeFilterOR::GetOperand1() const {
  return m_pData->operands.First();
}

VCUTreeFilterDefBase* VCUTreeFilterOR::GetOperand2() const {
  return m_pData->operands.Second();
}

void VCUTreeFilterOR::SetOperands(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2) {
  m_pData->operands.Set(op1, op2);
}
