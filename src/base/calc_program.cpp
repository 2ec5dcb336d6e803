#include "base/calc_program.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace utilkit::calc {

namespace {

// How a kernel reads its operands: both as chunks, or one of them as a
// single constant (which saves streaming a chunk of copies through the cache).
enum class Form : uint8_t { kChunks, kConstantA, kConstantB };

// One pure operation over a chunk: d[i] = op(a[i], b[i]), with `c` standing
// in for a[i] or b[i] in the constant forms. `d` may be `a` or `b` itself
// (elementwise, so that is safe); the loop is left simple so the compiler
// vectorises it.
template <Op kOp, Form kForm>
void Kernel(double* d, const double* a, const double* b, double c, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    if constexpr (kForm == Form::kConstantA) {
      d[i] = Apply(kOp, c, b[i]);
    } else if constexpr (kForm == Form::kConstantB) {
      d[i] = Apply(kOp, a[i], c);
    } else {
      d[i] = Apply(kOp, a[i], b[i]);
    }
  }
}

// The kernels in form kForm of the operations from kFirst on.
template <Form kForm, size_t kFirst, size_t... kIndex>
constexpr std::array<BlockRunner::KernelFn, sizeof...(kIndex)> MakeKernels(
    std::index_sequence<kIndex...>) {
  return {&Kernel<static_cast<Op>(kFirst + kIndex), kForm>...};
}

// Every pure operation over chunks; the two-operand ones also with a constant.
constexpr size_t kFirstBinary = static_cast<size_t>(Op::kAdd);
constexpr auto kChunkKernels =
    MakeKernels<Form::kChunks, 0>(std::make_index_sequence<kPureOpCount>{});
constexpr auto kConstantAKernels = MakeKernels<Form::kConstantA, kFirstBinary>(
    std::make_index_sequence<kPureOpCount - kFirstBinary>{});
constexpr auto kConstantBKernels = MakeKernels<Form::kConstantB, kFirstBinary>(
    std::make_index_sequence<kPureOpCount - kFirstBinary>{});

// Index of the first zero among x[0, n), or n.
size_t FirstZero(const double* x, size_t n) {
  bool any = false;
  for (size_t i = 0; i < n; ++i) any |= (x[i] == 0.0);
  if (!any) return n;
  return static_cast<size_t>(std::find(x, x + n, 0.0) - x);
}

}  // namespace

void BlockRunner::Prepare(const Program& program) {
  m_registers.assign(static_cast<size_t>(program.RegisterCount()), 0.0);
  std::copy(program.constants.begin(), program.constants.end(),
            m_registers.begin() + program.FirstConstant());
  m_steps.clear();
  if (!program.functions.empty()) return;  // such programs run row by row

  const size_t constants = program.constants.size();
  const size_t temps = static_cast<size_t>(program.tempCount);
  // The first temporary is the caller's output, so it needs no scratch.
  m_scratch.assign((constants + temps - 1) * kChunk, 0.0);
  m_src.assign(static_cast<size_t>(program.RegisterCount()), nullptr);
  m_dst.assign(temps, nullptr);
  for (size_t c = 0; c < constants; ++c) {
    double* chunk = m_scratch.data() + c * kChunk;
    std::fill(chunk, chunk + kChunk, program.constants[c]);
    m_src[program.FirstConstant() + c] = chunk;
  }
  for (size_t t = 1; t < temps; ++t) {
    m_dst[t] = m_scratch.data() + (constants + t - 1) * kChunk;
    m_src[program.FirstTemp() + t] = m_dst[t];
  }
  // A two-operand instruction with one constant operand reads it as a
  // scalar; the constant chunks serve the rest (such as an unfolded 1 / 0).
  auto isConstant = [&](int32_t reg) {
    return reg >= program.FirstConstant() && reg < program.FirstTemp();
  };
  for (const Instr& in : program.code) {
    const auto op = static_cast<size_t>(in.op);
    // A zero check of a constant other than 0 can never fail.
    const int32_t checked = in.check == Check::kDivisorZero ? in.b : in.a;
    const bool safe = in.check != Check::kHostCall && isConstant(checked) &&
                      m_registers[static_cast<size_t>(checked)] != 0.0;
    const Check check = safe ? Check::kNone : in.check;
    if (isConstant(in.a) == isConstant(in.b)) {
      m_steps.push_back({kChunkKernels[op], 0.0, check});
    } else if (isConstant(in.b)) {
      m_steps.push_back({kConstantBKernels[op - kFirstBinary], m_registers[in.b], check});
    } else {
      m_steps.push_back({kConstantAKernels[op - kFirstBinary], m_registers[in.a], check});
    }
  }
}

Fault BlockRunner::RunOneRow(const Program& program, const double* const* varColumns, size_t row,
                             double* out, VCCalculator& host) {
  for (int32_t v = 0; v < program.FirstConstant(); ++v) m_registers[v] = varColumns[v][row];
  const Fault fault = RunRow(program, m_registers.data(), host);
  if (fault == Fault::kNone) out[row] = m_registers[program.FirstTemp()];
  return fault;
}

Fault BlockRunner::Run(const Program& program, const double* const* varColumns, size_t begin,
                       size_t end, double* out, size_t* faultRow, VCCalculator& host) {
  *faultRow = end;
  // User functions take one row at a time, so such programs run row by row.
  if (!program.functions.empty()) {
    for (size_t row = begin; row < end; ++row) {
      const Fault fault = RunOneRow(program, varColumns, row, out, host);
      if (fault != Fault::kNone) {
        *faultRow = row;
        return fault;
      }
    }
    return Fault::kNone;
  }
  const int32_t variables = program.FirstConstant();
  const int32_t firstTemp = program.FirstTemp();
  for (size_t base = begin; base < end; base += kChunk) {
    const size_t n = std::min(kChunk, end - base);
    for (int32_t v = 0; v < variables; ++v) m_src[v] = varColumns[v] + base;
    m_dst[0] = out + base;
    m_src[firstTemp] = out + base;
    size_t firstBad = n;
    for (size_t k = 0; k < program.code.size(); ++k) {
      const Instr& in = program.code[k];
      const double* a = m_src[in.a];
      const double* b = m_src[in.b];
      // Checked before the kernel runs: the kernel may overwrite its operand.
      if (m_steps[k].check == Check::kDivisorZero) {
        firstBad = std::min(firstBad, FirstZero(b, n));
      } else if (m_steps[k].check == Check::kArgumentZero) {
        firstBad = std::min(firstBad, FirstZero(a, n));
      }
      m_steps[k].kernel(m_dst[in.dst - firstTemp], a, b, m_steps[k].constant, n);
    }
    if (firstBad < n) {
      // The row that failed first: run it alone to learn which check it
      // failed first, exactly as row-by-row evaluation would.
      *faultRow = base + firstBad;
      const Fault fault = RunOneRow(program, varColumns, *faultRow, out, host);
      assert(fault != Fault::kNone);
      return fault;
    }
  }
  return Fault::kNone;
}

}  // namespace utilkit::calc
