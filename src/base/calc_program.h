// The compiled form of a VCCalculator expression and the two ways of running
// it: one row through a register file, or a block of rows one instruction at
// a time with every register holding a chunk of rows.
//
// A program is a flat list of three-address instructions over one register
// numbering: [0, V) the variables (one per distinct spelling), [V, V + C) the
// constants, then the temporaries. The result always ends in the first
// temporary. Instructions only ever write temporaries.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <utilkit/base/calculator.h>

namespace utilkit::calc {

// Every operation a program can run. The one-operand operations come first,
// then the two-operand ones; kCallUser is last and is not a pure operation.
enum class Op : uint8_t {
  kCopy,
  kNeg,
  kNot,
  kAbs,
  kSqrt,
  kExp,
  kLog,
  kLog10,
  kSin,
  kCos,
  kTan,
  kAsin,
  kAcos,
  kAtan,
  kSinh,
  kCosh,
  kTanh,
  kFloor,
  kCeil,
  kRound,
  kAdd,
  kSub,
  kMul,
  kDiv,
  kPow,
  kMod,
  kAtan2,
  kMin,
  kMax,
  kLt,
  kLe,
  kGt,
  kGe,
  kEq,
  kNe,
  kAnd,
  kOr,
  kCallUser,
};

// Number of pure operations (everything before kCallUser).
inline constexpr size_t kPureOpCount = static_cast<size_t>(Op::kCallUser);

// What an instruction needs besides Apply. Row evaluation tests this one
// field per instruction and takes the slow path only when it is set.
enum class Check : uint8_t {
  kNone,
  kDivisorZero,   // fails with kDivideByZero when the second operand is 0
  kArgumentZero,  // fails with kLogOfZero when the first operand is 0
  kHostCall,      // kCallUser: the host computes the value
};

// Why a run stopped.
enum class Fault : uint8_t { kNone, kDivideByZero, kLogOfZero, kUserFunction };

struct Instr {
  Op op = Op::kCopy;
  Check check = Check::kNone;
  int32_t dst = 0;       // a temporary
  int32_t a = 0;         // first operand; kCallUser: first argument (arguments are consecutive)
  int32_t b = 0;         // second operand (== a for one-operand ops); kCallUser: argument count
  int32_t function = 0;  // kCallUser: index into Program::functions
};

struct Program {
  std::vector<Instr> code;
  std::vector<std::string> variables;  // one per variable register, as spelled in the text
  std::vector<double> constants;       // one per constant register
  std::vector<std::string> functions;  // names of the user functions called
  int32_t tempCount = 0;

  int32_t FirstConstant() const { return static_cast<int32_t>(variables.size()); }
  int32_t FirstTemp() const { return FirstConstant() + static_cast<int32_t>(constants.size()); }
  int32_t RegisterCount() const { return FirstTemp() + tempCount; }
};

// The value of a pure operation. One-operand operations ignore `b`. The
// checks of Check are not made here: callers test CheckFault first.
inline double Apply(Op op, double a, double b) {
  switch (op) {
    case Op::kCopy:
      return a;
    case Op::kNeg:
      return -a;
    case Op::kNot:
      return a == 0.0 ? 1.0 : 0.0;
    case Op::kAbs:
      return std::fabs(a);
    case Op::kSqrt:
      return std::sqrt(a);
    case Op::kExp:
      return std::exp(a);
    case Op::kLog:
      return std::log(a);
    case Op::kLog10:
      return std::log10(a);
    case Op::kSin:
      return std::sin(a);
    case Op::kCos:
      return std::cos(a);
    case Op::kTan:
      return std::tan(a);
    case Op::kAsin:
      return std::asin(a);
    case Op::kAcos:
      return std::acos(a);
    case Op::kAtan:
      return std::atan(a);
    case Op::kSinh:
      return std::sinh(a);
    case Op::kCosh:
      return std::cosh(a);
    case Op::kTanh:
      return std::tanh(a);
    case Op::kFloor:
      return std::floor(a);
    case Op::kCeil:
      return std::ceil(a);
    case Op::kRound:
      return std::round(a);
    case Op::kAdd:
      return a + b;
    case Op::kSub:
      return a - b;
    case Op::kMul:
      return a * b;
    case Op::kDiv:
      return a / b;
    case Op::kPow:
      return std::pow(a, b);
    case Op::kMod:
      return std::fmod(a, b);
    case Op::kAtan2:
      return std::atan2(a, b);
    // min and max let an invalid (NaN) operand through, whichever side it is on.
    case Op::kMin:
      return std::isnan(a) ? a : (b < a || std::isnan(b)) ? b : a;
    case Op::kMax:
      return std::isnan(a) ? a : (b > a || std::isnan(b)) ? b : a;
    case Op::kLt:
      return a < b ? 1.0 : 0.0;
    case Op::kLe:
      return a <= b ? 1.0 : 0.0;
    case Op::kGt:
      return a > b ? 1.0 : 0.0;
    case Op::kGe:
      return a >= b ? 1.0 : 0.0;
    case Op::kEq:
      return a == b ? 1.0 : 0.0;
    case Op::kNe:
      return a != b ? 1.0 : 0.0;
    case Op::kAnd:
      return (a != 0.0 && b != 0.0) ? 1.0 : 0.0;
    case Op::kOr:
      return (a != 0.0 || b != 0.0) ? 1.0 : 0.0;
    case Op::kCallUser:
      break;
  }
  return std::nan("");
}

// The fault that `check` finds for operands `a` and `b`.
inline Fault CheckFault(Check check, double a, double b) {
  if (check == Check::kDivisorZero && b == 0.0) return Fault::kDivideByZero;
  if (check == Check::kArgumentZero && a == 0.0) return Fault::kLogOfZero;
  return Fault::kNone;
}

// Runs `program` once over `registers` (RegisterCount() of them, variables
// and constants filled in). The result is in registers[FirstTemp()]. Inline:
// it is the whole of row evaluation, which runs once per row.
inline Fault RunRow(const Program& program, double* registers, VCCalculator& host) {
  for (const Instr& in : program.code) {
    if (in.check != Check::kNone) {
      if (in.check == Check::kHostCall) {
        double value = 0.0;
        if (!host.ExecuteUserFunction(program.functions[in.function].c_str(), registers + in.a,
                                      in.b, &value)) {
          return Fault::kUserFunction;
        }
        registers[in.dst] = value;
        continue;
      }
      const Fault fault = CheckFault(in.check, registers[in.a], registers[in.b]);
      if (fault != Fault::kNone) return fault;
    }
    registers[in.dst] = Apply(in.op, registers[in.a], registers[in.b]);
  }
  return Fault::kNone;
}

// Runs a program over blocks of rows. Keeps the scratch chunks between calls.
class BlockRunner {
 public:
  // A kernel reads its constant operand (if any) from k[0] and the
  // constants of the operations fused after it from k[1], k[2].
  using KernelFn = void (*)(double* d, const double* a, const double* b, const double* k, size_t n);

  // Rows per chunk: small enough that the chunks an instruction touches stay
  // in the first-level cache (256 measured faster than 512 here).
  static constexpr size_t kChunk = 256;

  // Sizes the scratch for `program` and fills its constant chunks. Must be
  // called again whenever the program changes.
  void Prepare(const Program& program);

  // Evaluates rows [begin, end): variable register v reads varColumns[v][row]
  // and the result goes to out[row]. On a fault returns it with *faultRow set
  // to the first failing row; out[begin, *faultRow) then hold results.
  Fault Run(const Program& program, const double* const* varColumns, size_t begin, size_t end,
            double* out, size_t* faultRow, VCCalculator& host);

 private:
  Fault RunOneRow(const Program& program, const double* const* varColumns, size_t row, double* out,
                  VCCalculator& host);

  std::vector<double> m_scratch;     // constant chunks, then temporaries 1..n-1
  std::vector<const double*> m_src;  // per register: its chunk in the current block
  std::vector<double*> m_dst;        // per temporary: its chunk in the current block
  std::vector<double> m_registers;   // one row's registers (user functions, fault diagnosis)
  // Per step: the kernel that runs instruction `head` and the arithmetic
  // with constants fused after it (the instructions up to `last`, which
  // writes the result), their constants, and the head's check (none where
  // the checked operand is a constant other than 0).
  struct Step {
    KernelFn kernel;
    double constants[3];
    size_t head;
    size_t last;
    Check check;
  };
  // Fuses instruction code[at] with as many of the following ones as it can.
  void AddStep(const Program& program, size_t at);
  std::vector<Step> m_steps;
};

}  // namespace utilkit::calc
