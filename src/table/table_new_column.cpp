#include <utilkit/table/table_new_column.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/table/table_errors.h>

#include "table/row_chunks.h"

using namespace utilkit::table;

namespace {

constexpr const char* kValidate = "VCUTableNewColumn::Validate";
constexpr const char* kRowValueD = "VCUTableNewColumn::CalculateRowValue_D";
// Rows evaluated at a time by CalculateValues_D.
constexpr int64_t kBlock = 65536;

// Calls visit(firstRow, n, at) for each run of consecutive rows in
// rows[0, count), or once for first..first+count-1 when rows is null.
template <class Visit>
bool ForEachRun(const int32_t* rows, int64_t first, int64_t count, Visit&& visit) {
  if (rows == nullptr) return visit(first, count, int64_t{0});
  return ForEachRowRun(rows, 0, count, count, visit);
}

}  // namespace

struct VCUTableNewColumn::Impl {
  VCString keyword, description, units;
  char hasStatus = 0;
  VCString expression;
  VCString statusKeyword;
  char divZeroTrap = 0;
  double divZeroValue = 0;
  char logZeroTrap = 0;
  double logZeroValue = 0;
  char generateRowIndex = 0;
  int64_t rowIndexStart = 0;
  char divideByCol = 0;
  double numerator = 0;
  VCString divisorKeyword;
  VCUNewColCalculator calculator;
  int32_t statusCol = -1;
  int32_t divisorCol = -1;
  // Per variable slot, one block of values (CalculateValues_D).
  std::vector<std::vector<double>> slotValues;
  std::vector<uint16_t> statusScratch;
};

VCUTableNewColumn::VCUTableNewColumn()
    : VCUTableOperation(VTTableOperationKind::NewColumn), m_impl(std::make_unique<Impl>()) {}

VCUTableNewColumn::~VCUTableNewColumn() = default;

bool VCUTableNewColumn::SetKeyword(const char* keyword) {
  m_impl->keyword = keyword;
  return true;
}
bool VCUTableNewColumn::SetDescription(const char* description) {
  m_impl->description = description;
  return true;
}
bool VCUTableNewColumn::SetUnits(const char* units) {
  m_impl->units = units;
  return true;
}
VCString VCUTableNewColumn::GetKeyword() const {
  return m_impl->keyword;
}
VCString VCUTableNewColumn::GetDescription() const {
  return m_impl->description;
}
VCString VCUTableNewColumn::GetUnits() const {
  return m_impl->units;
}
bool VCUTableNewColumn::SetHasStatus(char hasStatus) {
  m_impl->hasStatus = hasStatus;
  return true;
}
char VCUTableNewColumn::GetHasStatus() const {
  return m_impl->hasStatus;
}
bool VCUTableNewColumn::SetStatusColumn(const char* keyword) {
  m_impl->statusKeyword = keyword;
  return true;
}

bool VCUTableNewColumn::SetExpression(VCString expression) {
  m_impl->expression = std::move(expression);
  m_impl->generateRowIndex = 0;
  return true;
}

bool VCUTableNewColumn::SetGenerateRowIndex(int64_t start) {
  m_impl->generateRowIndex = 1;
  m_impl->rowIndexStart = start;
  return true;
}

bool VCUTableNewColumn::SetDivideByCol(double numerator, const char* keyword) {
  m_impl->divideByCol = 1;
  m_impl->numerator = numerator;
  m_impl->divisorKeyword = keyword;
  return true;
}

bool VCUTableNewColumn::SetDivZeroTrap(char on, double value) {
  m_impl->divZeroTrap = on;
  m_impl->divZeroValue = value;
  return true;
}

char VCUTableNewColumn::GetDivZeroTrap(double* value) const {
  if (value) *value = m_impl->divZeroValue;
  return m_impl->divZeroTrap;
}

bool VCUTableNewColumn::SetLogZeroTrap(char on, double value) {
  m_impl->logZeroTrap = on;
  m_impl->logZeroValue = value;
  return true;
}

char VCUTableNewColumn::GetLogZeroTrap(double* value) const {
  if (value) *value = m_impl->logZeroValue;
  return m_impl->logZeroTrap;
}

VTTableDataType VCUTableNewColumn::GetType() const {
  return m_impl->generateRowIndex ? VTTableDataType::Huge : VTTableDataType::Double;
}

bool VCUTableNewColumn::Validate(VCUTable* table) {
  Impl& s = *m_impl;
  if (s.keyword.IsEmpty()) return VFReportError(kTableErrorNoKeyword, kValidate);
  if (!s.generateRowIndex && !s.divideByCol && s.expression.IsEmpty()) {
    return VFReportError(kTableErrorNoExpression, kValidate, s.keyword);
  }
  if (s.hasStatus) {
    if (s.statusKeyword.IsEmpty())
      return VFReportError(kTableErrorNoStatusSource, kValidate, s.keyword);
    char has = 0;
    if (!table->GetColIndexFromKeyword(s.statusKeyword, &s.statusCol) ||
        !table->GetColHasStatus(s.statusCol, &has)) {
      return false;
    }
    if (!has) return VFReportError(kTableErrorNoStatus, kValidate, s.keyword);
  }
  if (s.divideByCol) return table->GetColIndexFromKeyword(s.divisorKeyword, &s.divisorCol);
  // A row index column has no expression to bind.
  if (s.generateRowIndex) return true;
  s.calculator.SetTable(table);
  return s.calculator.SetExpression(s.expression);
}

// After a failed evaluation: the value of the trap that applies, if any.
bool VCUTableNewColumn::Trap(double* value) const {
  const Impl& s = *m_impl;
  if (s.divZeroTrap && VFErrorCheck(kCalcErrorDivideByZero)) {
    *value = s.divZeroValue;
    return true;
  }
  if (s.logZeroTrap && VFErrorCheck(kCalcErrorLogOfZero)) {
    *value = s.logZeroValue;
    return true;
  }
  return false;
}

bool VCUTableNewColumn::CalculateRowValue_D(VCUTable* table, int64_t row, double* value) {
  Impl& s = *m_impl;
  if (s.generateRowIndex) return VFReportError(kTableErrorExpressionType, kRowValueD);
  if (s.divideByCol) {
    double divisor = 0;
    if (!table->GetValues_D(s.divisorCol, row, 1, &divisor)) return false;
    if (divisor != 0.0) {
      *value = s.numerator / divisor;
    } else if (s.divZeroTrap) {
      *value = s.divZeroValue;
    } else {
      return VFReportError(kTableErrorDivideByZero, kRowValueD);
    }
    return true;
  }
  s.calculator.SetRow(row);
  return s.calculator.EvaluateExpressionToDouble(value) || Trap(value);
}

bool VCUTableNewColumn::CalculateRowValue_H(VCUTable*, int64_t row, int64_t* value) {
  if (!m_impl->generateRowIndex) {
    // Reported under its own code with the Double message, as hosts expect.
    VFErrorSet(kTableErrorRowIndexType, VFTextGet(VFGetUtilKitText(), kTableErrorExpressionType),
               "VCUTableNewColumn::CalculateRowValue_H", 0);
    return false;
  }
  // Wraps past the largest Huge rather than overflowing (see SetGenerateRowIndex).
  *value = static_cast<int64_t>(static_cast<uint64_t>(m_impl->rowIndexStart) +
                                static_cast<uint64_t>(row) - 1u);
  return true;
}

bool VCUTableNewColumn::CalculateRowStatus(VCUTable* table, int64_t row, uint16_t* status) {
  return table->GetStatusValues(m_impl->statusCol, row, 1, status);
}

bool VCUTableNewColumn::GetStatusColBitText(VCUTable* table, VCStringArray* texts) {
  return table->GetStatusColBitText(m_impl->statusCol, texts);
}

bool VCUTableNewColumn::CalculateStatuses(VCUTable* table, const int32_t* rows, int64_t count,
                                          uint16_t* out) {
  return ForEachRowRun(rows, 0, count, INT64_MAX, [&](int64_t first, int64_t n, int64_t at) {
    return table->GetStatusValues(m_impl->statusCol, first, n, out + at);
  });
}

bool VCUTableNewColumn::CalculateValues_D(VCUTable* table, const int32_t* rows, int64_t count,
                                          double* out) {
  return CalculateBlocks(table, rows, 0, count, out);
}

bool VCUTableNewColumn::CalculateRangeValues_D(VCUTable* table, int64_t first, int64_t count,
                                               double* out) {
  return CalculateBlocks(table, nullptr, first, count, out);
}

bool VCUTableNewColumn::CalculateBlocks(VCUTable* table, const int32_t* rows, int64_t first,
                                        int64_t count, double* out) {
  if (m_impl->generateRowIndex) return VFReportError(kTableErrorExpressionType, kRowValueD);
  for (int64_t begin = 0; begin < count; begin += kBlock) {
    const int64_t n = std::min(kBlock, count - begin);
    const int32_t* blockRows = rows ? rows + begin : nullptr;
    const bool ok = m_impl->divideByCol
                        ? DivideBlock(table, blockRows, first + begin, n, out + begin)
                        : ExpressionBlock(table, blockRows, first + begin, n, out + begin);
    if (!ok) return false;
  }
  return true;
}

bool VCUTableNewColumn::DivideBlock(VCUTable* table, const int32_t* rows, int64_t firstRow,
                                    int64_t count, double* out) {
  Impl& s = *m_impl;
  if (!ForEachRun(rows, firstRow, count, [&](int64_t first, int64_t n, int64_t at) {
        return table->GetValues_D(s.divisorCol, first, n, out + at);
      })) {
    return false;
  }
  for (int64_t i = 0; i < count; ++i) {
    if (out[i] != 0.0) {
      out[i] = s.numerator / out[i];
    } else if (s.divZeroTrap) {
      out[i] = s.divZeroValue;
    } else {
      return VFReportError(kTableErrorDivideByZero, kRowValueD);
    }
  }
  return true;
}

// Loads the columns of every variable slot for the block, evaluates the
// block at once and, where a row fails, applies the traps row by row.
bool VCUTableNewColumn::ExpressionBlock(VCUTable* table, const int32_t* rows, int64_t firstRow,
                                        int64_t count, double* out) {
  Impl& s = *m_impl;
  VCUNewColCalculator& calc = s.calculator;
  const int32_t slots = calc.GetVariableCount();
  const auto size = static_cast<size_t>(count);
  s.slotValues.resize(static_cast<size_t>(slots));
  std::vector<const double*> columns(static_cast<size_t>(slots));
  std::vector<int32_t> slotCols(static_cast<size_t>(slots), -1);
  std::vector<char> slotStatus(static_cast<size_t>(slots), 0);
  for (int32_t slot = 0; slot < slots; ++slot) {
    const auto k = static_cast<size_t>(slot);
    s.slotValues[k].resize(size);
    columns[k] = s.slotValues[k].data();
    bool status = false;
    if (!calc.GetColumnOfId(calc.GetVariableIdOfSlot(slot), &slotCols[k], &status)) {
      return VFReportError(kTableErrorColumnIndex, "VCUNewColCalculator::GetVariableValue");
    }
    slotStatus[k] = status;
    if (status) s.statusScratch.resize(size);
  }
  // Each run of consecutive rows is read once per variable column; a block
  // that is one run of a table's own array is used where it lies.
  const bool read = ForEachRun(rows, firstRow, count, [&](int64_t first, int64_t n, int64_t at) {
    for (size_t k = 0; k < slotCols.size(); ++k) {
      double* values = s.slotValues[k].data() + at;
      if (!slotStatus[k]) {
        const double* own = n == count ? table->PeekValues_D(slotCols[k], first, n) : nullptr;
        if (own != nullptr) {
          columns[k] = own;
        } else if (!table->GetValues_D(slotCols[k], first, n, values)) {
          return false;
        }
        continue;
      }
      if (!table->GetStatusValues(slotCols[k], first, n, s.statusScratch.data() + at)) return false;
      std::copy_n(s.statusScratch.data() + at, n, values);
    }
    return true;
  });
  if (!read) return false;
  size_t begin = 0;
  while (begin < size) {
    size_t failed = size;
    if (calc.EvaluateBlock(columns.data(), begin, size, out, &failed)) break;
    if (failed >= size || !Trap(&out[failed])) return false;
    begin = failed + 1;
  }
  return true;
}
