#include <utilkit/tree/tree_filter_pair.h>

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

// The two operands; the same filter may stand as both and is deleted once.
struct VCUTreeFilterPair::Data {
  VCUTreeFilterDefBase* op1;
  VCUTreeFilterDefBase* op2;

  Data(VCUTreeFilterDefBase* first, VCUTreeFilterDefBase* second) : op1(first), op2(second) {}
  Data(const Data& other) : op1(CopyFilter(other.op1)), op2(nullptr) {
    try {
      op2 = CopyFilter(other.op2);
    } catch (...) {
      delete op1;
      throw;
    }
  }
  Data& operator=(const Data&) = delete;
  ~Data() { Set(nullptr, nullptr); }

  void Set(VCUTreeFilterDefBase* first, VCUTreeFilterDefBase* second) {
    if (op1 != first && op1 != second) delete op1;
    if (op2 != first && op2 != second && op2 != op1) delete op2;
    op1 = first;
    op2 = second;
  }
};

VCUTreeFilterPair::VCUTreeFilterPair(int32_t filterType, VCUTreeFilterDefBase* op1,
                                     VCUTreeFilterDefBase* op2)
    : VCUTreeFilterDefBase(filterType), m_pData(op1, op2) {}

VCUTreeFilterPair::VCUTreeFilterPair(const VCUTreeFilterPair&) = default;

VCUTreeFilterPair& VCUTreeFilterPair::operator=(const VCUTreeFilterPair& other) {
  if (this != &other) {
    Data copy(*other.m_pData);
    VCUTreeFilterDefBase::operator=(other);
    m_pData->Set(copy.op1, copy.op2);
    copy.op1 = copy.op2 = nullptr;
  }
  return *this;
}

VCUTreeFilterPair::~VCUTreeFilterPair() = default;

VCUTreeFilterDefBase* VCUTreeFilterPair::GetOperand1() const {
  return m_pData->op1;
}

VCUTreeFilterDefBase* VCUTreeFilterPair::GetOperand2() const {
  return m_pData->op2;
}

void VCUTreeFilterPair::SetOperands(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2) {
  m_pData->Set(op1, op2);
}
