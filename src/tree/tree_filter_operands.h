// The two owned operands of an AND or OR filter.
#pragma once

#include <utilkit/tree/tree_filter_def_base.h>

class VCTreeFilterOperands {
 public:
  VCTreeFilterOperands(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);
  // Copies the library's own filter classes deeply; an operand of any other
  // class cannot be copied and is missing in the copy.
  VCTreeFilterOperands(const VCTreeFilterOperands& other);
  VCTreeFilterOperands& operator=(const VCTreeFilterOperands& other);
  ~VCTreeFilterOperands();

  VCUTreeFilterDefBase* First() const { return m_op1; }
  VCUTreeFilterDefBase* Second() const { return m_op2; }
  // Deletes the current operands (unless handed back in) and takes these.
  void Set(VCUTreeFilterDefBase* op1, VCUTreeFilterDefBase* op2);

 private:
  VCUTreeFilterDefBase* m_op1;
  VCUTreeFilterDefBase* m_op2;
};
