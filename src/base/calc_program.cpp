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

// Apply for a fixed operation; the arithmetic is written out so that it is
// inlined however many operations a kernel fuses.
template <Op kOp>
double ApplyOp(double a, double b) {
  if constexpr (kOp == Op::kAdd) {
    return a + b;
  } else if constexpr (kOp == Op::kSub) {
    return a - b;
  } else if constexpr (kOp == Op::kMul) {
    return a * b;
  } else if constexpr (kOp == Op::kDiv) {
    return a / b;
  } else {
    return Apply(kOp, a, b);
  }
}

// One pure operation over a chunk, d[i] = op(a[i], b[i]) with k[0] standing
// in for a[i] or b[i] in the constant forms, then the operations kTail with
// the constants k[1], k[2]: x = tail(x, k[1]) and so on, each rounded as
// when run alone. `d` may be `a` or `b` itself (elementwise, so that is
// safe); the loop is left simple so the compiler vectorises it.
template <Op kOp, Form kForm, Op... kTail>
void Kernel(double* d, const double* a, const double* b, const double* k, size_t n) {
  const double c = k[0];
  [[maybe_unused]] const double t1 = k[1], t2 = k[2];
  for (size_t i = 0; i < n; ++i) {
    double x;
    if constexpr (kForm == Form::kConstantA) {
      x = ApplyOp<kOp>(c, b[i]);
    } else if constexpr (kForm == Form::kConstantB) {
      x = ApplyOp<kOp>(a[i], c);
    } else {
      x = ApplyOp<kOp>(a[i], b[i]);
    }
    if constexpr (sizeof...(kTail) > 0) {
      const double tails[] = {t1, t2};
      size_t t = 0;
      ((x = ApplyOp<kTail>(x, tails[t++])), ...);
    }
    d[i] = x;
  }
}

// The kernels in form kForm of the operations from kFirst on.
template <Form kForm, size_t kFirst, size_t... kIndex>
constexpr std::array<BlockRunner::KernelFn, sizeof...(kIndex)> MakeKernels(
    std::index_sequence<kIndex...>) {
  return {&Kernel<static_cast<Op>(kFirst + kIndex), kForm>...};
}

// Arithmetic that fuses: + - * / (consecutive in Op), and the kernels of
// one of them followed by one or two of them with constant second operands.
constexpr size_t kArithmetic = 4;
constexpr Op Arithmetic(size_t i) {
  return static_cast<Op>(static_cast<size_t>(Op::kAdd) + i);
}
template <Form kForm, size_t... kIndex>
constexpr std::array<BlockRunner::KernelFn, sizeof...(kIndex)> MakeFused1(
    std::index_sequence<kIndex...>) {
  return {&Kernel<Arithmetic(kIndex / 4), kForm, Arithmetic(kIndex % 4)>...};
}
template <Form kForm, size_t... kIndex>
constexpr std::array<BlockRunner::KernelFn, sizeof...(kIndex)> MakeFused2(
    std::index_sequence<kIndex...>) {
  return {&Kernel<Arithmetic(kIndex / 16), kForm, Arithmetic(kIndex / 4 % 4),
                  Arithmetic(kIndex % 4)>...};
}
template <Form kForm>
struct FusedKernels {
  static constexpr auto kOne = MakeFused1<kForm>(std::make_index_sequence<16>{});
  static constexpr auto kTwo = MakeFused2<kForm>(std::make_index_sequence<64>{});
};

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
  for (size_t at = 0; at < program.code.size(); at = m_steps.back().last + 1) {
    AddStep(program, at);
  }
}

// A two-operand instruction with one constant operand reads it as a scalar;
// the constant chunks serve the rest (such as an unfolded 1 / 0). After
// + - * or /, the instructions that go on with + - * or / of that result
// (in the same temporary) and a constant that cannot fail a check run in
// the same kernel, so that the chunk is not passed over again.
void BlockRunner::AddStep(const Program& program, size_t at) {
  auto isConstant = [&](int32_t reg) {
    return reg >= program.FirstConstant() && reg < program.FirstTemp();
  };
  auto value = [&](int32_t reg) { return m_registers[static_cast<size_t>(reg)]; };
  auto arithmetic = [](Op op) { return op >= Op::kAdd && op <= Op::kDiv; };
  const Instr& in = program.code[at];
  // A zero check of a constant other than 0 can never fail.
  const int32_t checked = in.check == Check::kDivisorZero ? in.b : in.a;
  const bool safe = in.check != Check::kHostCall && isConstant(checked) && value(checked) != 0.0;
  Step step{nullptr, {0.0, 0.0, 0.0}, at, at, safe ? Check::kNone : in.check};
  Form form = Form::kChunks;
  if (isConstant(in.a) != isConstant(in.b)) {
    form = isConstant(in.b) ? Form::kConstantB : Form::kConstantA;
    step.constants[0] = value(form == Form::kConstantB ? in.b : in.a);
  }
  size_t tails[2] = {0, 0};
  size_t fused = 0;
  while (arithmetic(in.op) && fused < 2 && step.last + 1 < program.code.size()) {
    const Instr& last = program.code[step.last];
    const Instr& next = program.code[step.last + 1];
    if (!arithmetic(next.op) || next.a != last.dst || next.dst != last.dst || !isConstant(next.b) ||
        (next.check != Check::kNone && value(next.b) == 0.0)) {
      break;
    }
    tails[fused] = static_cast<size_t>(next.op) - static_cast<size_t>(Op::kAdd);
    step.constants[++fused] = value(next.b);
    ++step.last;
  }
  const auto op = static_cast<size_t>(in.op);
  const size_t head = op - static_cast<size_t>(Op::kAdd);
  const size_t one = head * kArithmetic + tails[0];
  const size_t two = one * kArithmetic + tails[1];
  switch (form) {
    case Form::kChunks:
      step.kernel = fused == 0   ? kChunkKernels[op]
                    : fused == 1 ? FusedKernels<Form::kChunks>::kOne[one]
                                 : FusedKernels<Form::kChunks>::kTwo[two];
      break;
    case Form::kConstantA:
      step.kernel = fused == 0   ? kConstantAKernels[op - kFirstBinary]
                    : fused == 1 ? FusedKernels<Form::kConstantA>::kOne[one]
                                 : FusedKernels<Form::kConstantA>::kTwo[two];
      break;
    case Form::kConstantB:
      step.kernel = fused == 0   ? kConstantBKernels[op - kFirstBinary]
                    : fused == 1 ? FusedKernels<Form::kConstantB>::kOne[one]
                                 : FusedKernels<Form::kConstantB>::kTwo[two];
      break;
  }
  m_steps.push_back(step);
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
    for (const Step& step : m_steps) {
      const Instr& in = program.code[step.head];
      const double* a = m_src[in.a];
      const double* b = m_src[in.b];
      // Checked before the kernel runs: the kernel may overwrite its operand.
      if (step.check == Check::kDivisorZero) {
        firstBad = std::min(firstBad, FirstZero(b, n));
      } else if (step.check == Check::kArgumentZero) {
        firstBad = std::min(firstBad, FirstZero(a, n));
      }
      step.kernel(m_dst[program.code[step.last].dst - firstTemp], a, b, step.constants, n);
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
