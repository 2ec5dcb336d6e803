#include <utilkit/base/calculator.h>

#include <algorithm>
#include <cassert>
#include <functional>
#include <new>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <utilkit/base/error_report.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>

#include "base/calc_parser.h"
#include "base/calc_program.h"

using utilkit::calc::BlockRunner;
using utilkit::calc::Fault;

namespace {

// Reports a failed run; a failing user function has pushed its own error.
void PushFault(Fault fault, const char* location) {
  if (fault == Fault::kDivideByZero) VFReportError(kCalcErrorDivideByZero, location);
  if (fault == Fault::kLogOfZero) VFReportError(kCalcErrorLogOfZero, location);
}

}  // namespace

struct VCCalculator::Impl {
  // One distinct identifier: its first variable register, whose spelling is its name.
  struct Slot {
    int32_t id;
    int32_t reg;
  };

  std::string expression;
  utilkit::calc::Program program;
  bool ready = false;
  std::vector<Slot> slots;
  std::vector<int32_t> slotOfRegister;              // per variable register
  std::vector<std::pair<int32_t, int32_t>> shared;  // (register, register it copies): same slot
  std::vector<double> registers;                    // one row: variables, constants, temporaries
  int32_t resultRegister = 0;
  int32_t maxNesting = utilkit::calc::kMaxNesting;
  std::vector<std::string> lateNames;                // default GetVariableId: identifier -> name
  std::unordered_map<std::string, int32_t> lateIds;  // and name -> identifier
  BlockRunner block;
  bool blockPrepared = false;
  std::vector<const double*> registerColumns;  // EvaluateBlock: per variable register
};

VCCalculator::VCCalculator() : m_impl(std::make_unique<Impl>()) {}

VCCalculator::~VCCalculator() = default;

bool VCCalculator::GetVariable(const char* name, double* value) {
  VFReportError(kCalcErrorUnknownVariable, "VCCalculator::GetVariable", name ? name : "");
  return false;
}

bool VCCalculator::GetVariableValue(int32_t id, double* value) {
  const auto& names = m_impl->lateNames;
  if (id < 0 || static_cast<size_t>(id) >= names.size()) {
    VFReportError(kCalcErrorUnknownVariable, "VCCalculator::GetVariableValue",
                  ("identifier " + std::to_string(id)).c_str());
    return false;
  }
  return GetVariable(names[id].c_str(), value);
}

bool VCCalculator::GetVariableId(const char* name, int32_t* id) {
  auto& names = m_impl->lateNames;
  try {
    const auto [it, added] = m_impl->lateIds.try_emplace(name, static_cast<int32_t>(names.size()));
    if (added) names.emplace_back(name);
    *id = it->second;
  } catch (const std::bad_alloc&) {
    VFReportError(kCalcErrorOutOfMemory, "VCCalculator::GetVariableId");
    return false;
  }
  return true;
}

bool VCCalculator::ExecuteUserFunction(const char* name, const double* args, int32_t argCount,
                                       double* result) {
  VFReportError(kCalcErrorUnknownFunction, "VCCalculator::ExecuteUserFunction", name);
  return false;
}

void VCCalculator::SetMaxNesting(int32_t levels) {
  m_impl->maxNesting = std::max(levels, 1);
}

int32_t VCCalculator::GetMaxNesting() const {
  return m_impl->maxNesting;
}

bool VCCalculator::SetExpression(const char* text) {
  constexpr const char* kWhere = "VCCalculator::SetExpression";
  Impl& m = *m_impl;
  m.ready = false;
  m.blockPrepared = false;
  try {
    m.expression = text ? text : "";
    utilkit::calc::CompileError error;
    if (!utilkit::calc::Compile(m.expression, &m.program, &error, m.maxNesting)) {
      VFReportError(error.code, kWhere, error.detail.c_str());
      return false;
    }
    m.lateNames.clear();
    m.lateIds.clear();
    m.slots.clear();
    m.slotOfRegister.clear();
    m.shared.clear();
    const auto& names = m.program.variables;
    std::unordered_map<int32_t, int32_t> slotOfId;  // host identifier -> slot
    for (int32_t reg = 0; reg < static_cast<int32_t>(names.size()); ++reg) {
      const size_t errorsBefore = VFErrorGetCount();
      int32_t id = 0;
      if (!GetVariableId(names[reg].c_str(), &id)) {
        // A summary when the host said why.
        VFReportError(kCalcErrorUnknownVariable, kWhere, names[reg].c_str(),
                      VFErrorGetCount() > errorsBefore ? 1 : 0);
        return false;
      }
      const auto [slot, added] = slotOfId.try_emplace(id, static_cast<int32_t>(m.slots.size()));
      m.slotOfRegister.push_back(slot->second);
      if (added) {
        m.slots.push_back({id, reg});
      } else {
        m.shared.emplace_back(reg, m.slots[slot->second].reg);
      }
    }
    m.registers.assign(static_cast<size_t>(m.program.RegisterCount()), 0.0);
    m.resultRegister = m.program.FirstTemp();
    std::copy(m.program.constants.begin(), m.program.constants.end(),
              m.registers.begin() + m.program.FirstConstant());
  } catch (const std::bad_alloc&) {
    VFReportError(kCalcErrorOutOfMemory, kWhere);
    return false;
  }
  m.ready = true;
  return true;
}

const char* VCCalculator::GetExpression() const {
  return m_impl->expression.c_str();
}

bool VCCalculator::EvaluateExpressionToDouble(double* result) {
  constexpr const char* kWhere = "VCCalculator::EvaluateExpressionToDouble";
  Impl& m = *m_impl;
  if (!m.ready) {
    VFReportError(kCalcErrorNoExpression, kWhere);
    return false;
  }
  double* registers = m.registers.data();
  for (const Impl::Slot& slot : m.slots) {
    if (!GetVariableValue(slot.id, registers + slot.reg)) {
      VFReportError(kCalcErrorVariableValue, kWhere, m.program.variables[slot.reg].c_str(), 1);
      return false;
    }
  }
  for (const auto& [reg, source] : m.shared) registers[reg] = registers[source];
  const Fault fault = utilkit::calc::RunRow(m.program, registers, *this);
  if (fault != Fault::kNone) {
    PushFault(fault, kWhere);
    return false;
  }
  *result = registers[m.resultRegister];
  return true;
}

bool VCCalculator::EvaluateBlock(const double* const* columns, size_t begin, size_t end,
                                 double* out, size_t* failedRow) {
  constexpr const char* kWhere = "VCCalculator::EvaluateBlock";
  Impl& m = *m_impl;
  if (failedRow) *failedRow = begin;
  if (!m.ready) {
    VFReportError(kCalcErrorNoExpression, kWhere);
    return false;
  }
  if (begin >= end) {
    if (failedRow) *failedRow = end;
    return true;
  }
  try {
    m.registerColumns.resize(m.slotOfRegister.size());
    for (size_t reg = 0; reg < m.slotOfRegister.size(); ++reg) {
      const Impl::Slot& slot = m.slots[m.slotOfRegister[reg]];
      const double* column = columns[m.slotOfRegister[reg]];
      if (!column) {
        VFReportError(kCalcErrorNoColumn, kWhere, m.program.variables[slot.reg].c_str());
        return false;
      }
      assert(
          !(std::less<>()(column + begin, out + end) && std::less<>()(out + begin, column + end)));
      m.registerColumns[reg] = column;
    }
    if (!m.blockPrepared) {
      m.block.Prepare(m.program);
      m.blockPrepared = true;
    }
  } catch (const std::bad_alloc&) {
    VFReportError(kCalcErrorOutOfMemory, kWhere);
    return false;
  }
  size_t faultRow = end;
  const Fault fault =
      m.block.Run(m.program, m.registerColumns.data(), begin, end, out, &faultRow, *this);
  if (failedRow) *failedRow = faultRow;
  if (fault != Fault::kNone) {
    PushFault(fault, kWhere);
    return false;
  }
  return true;
}

int32_t VCCalculator::GetVariableCount() const {
  return m_impl->ready ? static_cast<int32_t>(m_impl->slots.size()) : 0;
}

const char* VCCalculator::GetVariableName(int32_t slot) const {
  if (slot < 0 || slot >= GetVariableCount()) return "";
  return m_impl->program.variables[m_impl->slots[slot].reg].c_str();
}

int32_t VCCalculator::GetVariableIdOfSlot(int32_t slot) const {
  if (slot < 0 || slot >= GetVariableCount()) return -1;
  return m_impl->slots[slot].id;
}
