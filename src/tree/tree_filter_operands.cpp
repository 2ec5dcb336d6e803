#include "tree/tree_filter_operands.h"

#include <typeinfo>

#include <utilkit/tree/tree_filter_and.h>
#include <utilkit/tree/tree_filter_basic.h>
#include <utilkit/tree/tree_filter_or.h>

namespace {

// A deep copy of a filter of the library's own classes, else null.
VCUTreeFilterDefBase* CopyFilter(const VCUTreeFilterDefBase* filter) {
  if (!filter) return nullptr;
  const std::type_info& type = typeid(*filter);
  if (type == typeid(VCUTreeFilterBasic)) {
    return new VCUTreeFilterBasic(static_cast<const VCUTreeFilterBasic&>(*filter));
  }
  if (type == typeid(VCUTreeFilterAND)) {
    return new VCUTreeFilterAND(static_cast<const VCUTreeFilterAND&>(*filter));
  }
  if (type == typeid(VCUTreeFilterOR)) {
    return new VCUTreeFilterOR(static_cast<const VCUTreeFilterOR&>(*filter));
  }
  return nullptr;
}

}  // namespace

VCTreeFilterOperands::VCTreeFilterOperands(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2)
    : m_op1(op1), m_op2(op2) {}

VCTreeFilterOperands::VCTreeFilterOperands(const VCTreeFilterOperands& other)
    : m_op1(CopyFilter(other.m_op1)), m_op2(nullptr) {
  try {
    m_op2 = CopyFilter(other.m_op2);
  } catch (...) {
    delete m_op1;
    throw;
  }
}

VCTreeFilterOperands& VCTreeFilterOperands::operator=(const VCTreeFilterOperands& other) {
  if (this != &other) {
    VCTreeFilterOperands copy(other);
    Set(copy.m_op1, copy.m_op2);
    copy.m_op1 = copy.m_op2 = nullptr;
  }
  return *this;
}

VCTreeFilterOperands::~VCTreeFilterOperands() {
  delete m_op1;
  if (m_op2 != m_op1) delete m_op2;
}

void VCTreeFilterOperands::Set(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2) {
  if (m_op1 != op1 && m_op1 != op2) delete m_op1;
  if (m_op2 != op1 && m_op2 != op2 && m_op2 != m_op1) delete m_op2;
  m_op1 = op1;
  m_op2 = op2;
}
