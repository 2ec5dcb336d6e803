#include <utilkit/tree/tree_filter_and.h>

#include "tree/tree_filter_operands.h"

namespace {
constexpr int32_t kFilterANDType = 2;
}

struct VCUTreeFilterAND::Data {
  VCTreeFilterOperands operands;
};

VCUTreeFilterAND::VCUTreeFilterAND() : VCUTreeFilterAND(nullptr, nullptr) {}

VCUTreeFilterAND::VCUTreeFilterAND(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2)
    : VCUTreeFilterDefBase(kFilterANDType), m_pData(new Data{{op1, op2}}) {}

VCUTreeFilterAND::VCUTreeFilterAND(const VCUTreeFilterAND& other)
    : VCUTreeFilterDefBase(other), m_pData(new Data(*other.m_pData)) {}

VCUTreeFilterAND& VCUTreeFilterAND::operator=(const VCUTreeFilterAND& other) {
  VCUTreeFilterDefBase::operator=(other);
  *m_pData = *other.m_pData;
  return *this;
}

VCUTreeFilterAND::~VCUTreeFilterAND() {
  delete m_pData;
}

char VCUTreeFilterAND::DoesObjectPassFilter(VCUTreeSourceNode* node) {
  VCUTreeFilterDefBase* first = m_pData->operands.First();
  VCUTreeFilterDefBase* second = m_pData->operands.Second();
  if (!first || !second) return 0;
  return first->DoesObjectPassFilter(node) && second->DoesObjectPassFilter(node);
}

VCUTreeFilterDefBase* VCUTreeFilterAND::GetOperand1() const {
  return m_pData->operands.First();
}

VCUTreeFilterDefBase* VCUTreeFilterAND::GetOperand2() const {
  return m_pData->operands.Second();
}

void VCUTreeFilterAND::SetOperands(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2) {
  m_pData->operands.Set(op1, op2);
}
