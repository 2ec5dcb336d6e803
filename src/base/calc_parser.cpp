#include "base/calc_parser.h"

#include <algorithm>
#include <charconv>
#include <numbers>
#include <system_error>
#include <unordered_map>
#include <vector>

#include <utilkit/base/calculator.h>

namespace utilkit::calc {

namespace {

enum class Tok : uint8_t { kEnd, kNumber, kVariable, kName, kOperator, kLParen, kRParen, kComma };

struct Token {
  Tok kind = Tok::kEnd;
  size_t pos = 0;  // 0-based offset into the text
  std::string_view text;
  double number = 0.0;
};

// Operators, longest spelling first so that "<=" is not read as "<".
constexpr std::string_view kOperators[] = {"||", "&&", "==", "!=", "<=", ">=", "<",
                                           ">",  "+",  "-",  "*",  "/",  "^",  "!"};

struct BinaryOp {
  std::string_view text;
  int level;  // 0 binds loosest
  Op op;
};

constexpr BinaryOp kBinaryOps[] = {
    {"||", 0, Op::kOr}, {"&&", 1, Op::kAnd}, {"==", 2, Op::kEq}, {"!=", 2, Op::kNe},
    {"<", 3, Op::kLt},  {"<=", 3, Op::kLe},  {">", 3, Op::kGt},  {">=", 3, Op::kGe},
    {"+", 4, Op::kAdd}, {"-", 4, Op::kSub},  {"*", 5, Op::kMul}, {"/", 5, Op::kDiv},
};
constexpr int kUnaryLevel = 6;

struct Builtin {
  std::string_view name;
  Op op;
  int32_t minArgs;
  int32_t maxArgs;  // 0: no upper limit
};

constexpr Builtin kBuiltins[] = {
    {"abs", Op::kAbs, 1, 1},   {"sqrt", Op::kSqrt, 1, 1},   {"exp", Op::kExp, 1, 1},
    {"log", Op::kLog, 1, 1},   {"log10", Op::kLog10, 1, 1}, {"sin", Op::kSin, 1, 1},
    {"cos", Op::kCos, 1, 1},   {"tan", Op::kTan, 1, 1},     {"asin", Op::kAsin, 1, 1},
    {"acos", Op::kAcos, 1, 1}, {"atan", Op::kAtan, 1, 1},   {"sinh", Op::kSinh, 1, 1},
    {"cosh", Op::kCosh, 1, 1}, {"tanh", Op::kTanh, 1, 1},   {"floor", Op::kFloor, 1, 1},
    {"ceil", Op::kCeil, 1, 1}, {"round", Op::kRound, 1, 1}, {"atan2", Op::kAtan2, 2, 2},
    {"pow", Op::kPow, 2, 2},   {"mod", Op::kMod, 2, 2},     {"min", Op::kMin, 2, 0},
    {"max", Op::kMax, 2, 0},
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool IsNameChar(char c) {
  return IsNameStart(c) || IsDigit(c);
}

char Lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return Lower(x) == Lower(y); });
}

// Joins texts; kept to append() because operator+ chains trip a false
// -Wrestrict in GCC 12.
template <typename... Parts>
std::string Concat(const Parts&... parts) {
  std::string text;
  (text.append(std::string_view(parts)), ...);
  return text;
}

// " at position N", counting from 1.
std::string At(size_t pos) {
  return Concat(" at position ", std::to_string(pos + 1));
}

// "'text' at position N".
std::string QuotedAt(std::string_view text, size_t pos) {
  return Concat("'", text, "'", At(pos));
}

class Parser {
 public:
  Parser(std::string_view text, Program* program, CompileError* error, int32_t maxNesting)
      : m_text(text), m_program(program), m_error(error), m_maxNesting(maxNesting) {}

  bool Run() {
    if (!Advance()) return false;
    if (m_token.kind == Tok::kEnd) return Fail(kCalcErrorSyntax, "empty expression");
    Operand result;
    if (!ParseBinary(0, 0, &result)) return false;
    if (m_token.kind != Tok::kEnd) return FailUnexpected();
    Finish(result);
    return true;
  }

 private:
  enum class Kind : uint8_t { kVariable, kConstant, kTemp };
  struct Operand {
    Kind kind = Kind::kConstant;
    int32_t index = 0;  // variable, constant or temporary (depth) number
  };
  struct Draft {
    Op op;
    Check check;
    int32_t dstDepth;
    Operand a;
    Operand b;
    int32_t argCount;
    int32_t function;
  };

  // Where the next operand may keep its temporary while `held` is kept.
  static int32_t NextDepth(Operand held, int32_t depth) {
    return held.kind == Kind::kTemp ? depth + 1 : depth;
  }

  bool Fail(int32_t code, std::string detail) {
    m_error->code = code;
    m_error->detail = std::move(detail);
    return false;
  }
  bool FailUnexpected() {
    if (m_token.kind == Tok::kEnd) {
      return Fail(kCalcErrorSyntax, Concat("unexpected end of expression", At(m_token.pos)));
    }
    return Fail(kCalcErrorSyntax, Concat("unexpected ", QuotedAt(m_token.text, m_token.pos)));
  }
  bool Expect(Tok kind, const char* spelling) {
    if (m_token.kind == kind) return Advance();
    const std::string found = m_token.kind == Tok::kEnd
                                  ? Concat("end of expression", At(m_token.pos))
                                  : QuotedAt(m_token.text, m_token.pos);
    return Fail(kCalcErrorSyntax, Concat("expected '", spelling, "' but found ", found));
  }

  // Reads the next token into m_token; false on a lexical error.
  bool Advance() {
    size_t pos = m_pos;
    while (pos < m_text.size() && (m_text[pos] == ' ' || m_text[pos] == '\t' ||
                                   m_text[pos] == '\r' || m_text[pos] == '\n')) {
      ++pos;
    }
    m_token = Token{Tok::kEnd, pos, {}, 0.0};
    if (pos == m_text.size()) {
      m_pos = pos;
      return true;
    }
    const char c = m_text[pos];
    size_t end = pos + 1;
    if (IsDigit(c) || (c == '.' && end < m_text.size() && IsDigit(m_text[end]))) {
      if (!ScanNumber(pos, &end)) return false;
    } else if (c == '#') {
      end = m_text.find('#', pos + 1);
      if (end == std::string_view::npos) {
        return Fail(kCalcErrorSyntax,
                    Concat("unterminated variable name ", QuotedAt(m_text.substr(pos), pos)));
      }
      m_token.kind = Tok::kVariable;
      ++end;
    } else if (IsNameStart(c)) {
      while (end < m_text.size() && IsNameChar(m_text[end])) ++end;
      m_token.kind = Tok::kName;
    } else if (c == '(' || c == ')' || c == ',') {
      m_token.kind = c == '(' ? Tok::kLParen : c == ')' ? Tok::kRParen : Tok::kComma;
    } else {
      const auto* op =
          std::find_if(std::begin(kOperators), std::end(kOperators),
                       [&](std::string_view o) { return m_text.substr(pos).starts_with(o); });
      if (op == std::end(kOperators)) return FailCharacter(pos);
      m_token.kind = Tok::kOperator;
      end = pos + op->size();
    }
    m_token.text = m_text.substr(pos, end - pos);
    m_pos = end;
    return true;
  }

  bool FailCharacter(size_t pos) {
    const char c = m_text[pos];
    const char* hint = c == '='   ? " (comparison is '==')"
                       : c == '&' ? " (logical and is '&&')"
                       : c == '|' ? " (logical or is '||')"
                                  : "";
    return Fail(kCalcErrorSyntax,
                Concat("unexpected character ", QuotedAt(m_text.substr(pos, 1), pos), hint));
  }

  // Digits, an optional fraction and an optional exponent; *end is set past them.
  bool ScanNumber(size_t pos, size_t* end) {
    size_t i = pos;
    auto digits = [&] {
      while (i < m_text.size() && IsDigit(m_text[i])) ++i;
    };
    digits();
    if (i < m_text.size() && m_text[i] == '.') {
      ++i;
      digits();
    }
    if (i < m_text.size() && (m_text[i] == 'e' || m_text[i] == 'E')) {
      ++i;
      if (i < m_text.size() && (m_text[i] == '+' || m_text[i] == '-')) ++i;
      if (i == m_text.size() || !IsDigit(m_text[i])) {
        return Fail(kCalcErrorSyntax,
                    Concat("malformed number ", QuotedAt(m_text.substr(pos, i - pos), pos)));
      }
      digits();
    }
    const auto [ptr, ec] = std::from_chars(m_text.data() + pos, m_text.data() + i, m_token.number);
    if (ec != std::errc() || ptr != m_text.data() + i) {
      return Fail(kCalcErrorSyntax,
                  Concat("number out of range ", QuotedAt(m_text.substr(pos, i - pos), pos)));
    }
    m_token.kind = Tok::kNumber;
    *end = i;
    return true;
  }

  const BinaryOp* FindBinary(int level) const {
    if (m_token.kind != Tok::kOperator) return nullptr;
    for (const BinaryOp& op : kBinaryOps) {
      if (op.level == level && op.text == m_token.text) return &op;
    }
    return nullptr;
  }

  bool ParseBinary(int level, int32_t depth, Operand* out) {
    if (level == kUnaryLevel) return ParseUnary(depth, out);
    Operand left;
    if (!ParseBinary(level + 1, depth, &left)) return false;
    while (const BinaryOp* op = FindBinary(level)) {
      if (!Advance()) return false;
      Operand right;
      if (!ParseBinary(level + 1, NextDepth(left, depth), &right)) return false;
      left = Emit(op->op, left, right, depth);
    }
    *out = left;
    return true;
  }

  // Every nesting level passes through here, so this is where depth is limited.
  bool ParseUnary(int32_t depth, Operand* out) {
    if (m_nesting >= m_maxNesting) {
      return Fail(kCalcErrorTooDeep,
                  Concat("more than ", std::to_string(m_maxNesting), " levels", At(m_token.pos)));
    }
    ++m_nesting;
    const bool ok = ParsePrefixed(depth, out);
    --m_nesting;
    return ok;
  }

  // Unary - + ! bind looser than ^, so -2^2 is -(2^2); the exponent of ^ is
  // itself a unary expression, which makes ^ right-associative.
  bool ParsePrefixed(int32_t depth, Operand* out) {
    if (m_token.kind == Tok::kOperator &&
        (m_token.text == "-" || m_token.text == "+" || m_token.text == "!")) {
      const char sign = m_token.text[0];
      if (!Advance()) return false;
      Operand x;
      if (!ParseUnary(depth, &x)) return false;
      *out = sign == '+' ? x : Emit(sign == '-' ? Op::kNeg : Op::kNot, x, x, depth);
      return true;
    }
    Operand base;
    if (!ParsePrimary(depth, &base)) return false;
    if (m_token.kind == Tok::kOperator && m_token.text == "^") {
      if (!Advance()) return false;
      Operand exponent;
      if (!ParseUnary(NextDepth(base, depth), &exponent)) return false;
      base = Emit(Op::kPow, base, exponent, depth);
    }
    *out = base;
    return true;
  }

  bool ParsePrimary(int32_t depth, Operand* out) {
    const Token token = m_token;
    switch (token.kind) {
      case Tok::kNumber:
        *out = Constant(token.number);
        return Advance();
      case Tok::kVariable:
        *out = Variable(token.text);
        return Advance();
      case Tok::kName:
        if (!Advance()) return false;
        if (m_token.kind == Tok::kLParen) return ParseCall(token, depth, out);
        if (EqualNoCase(token.text, "pi")) {
          *out = Constant(std::numbers::pi);
        } else if (EqualNoCase(token.text, "e")) {
          *out = Constant(std::numbers::e);
        } else {
          *out = Variable(token.text);
        }
        return true;
      case Tok::kLParen:
        if (!Advance() || !ParseBinary(0, depth, out)) return false;
        return Expect(Tok::kRParen, ")");
      default:
        return FailUnexpected();
    }
  }

  // m_token is the '(' after the function name.
  bool ParseCall(const Token& name, int32_t depth, Operand* out) {
    if (!Advance()) return false;
    const auto* builtin =
        std::find_if(std::begin(kBuiltins), std::end(kBuiltins),
                     [&](const Builtin& b) { return EqualNoCase(b.name, name.text); });
    if (builtin == std::end(kBuiltins)) return ParseUserCall(name, depth, out);
    // Arguments are folded in as they come (min and max take any number);
    // a wrong count is reported once they have all been read.
    Operand acc;
    int32_t count = 0;
    if (m_token.kind != Tok::kRParen) {
      for (;;) {
        Operand arg;
        if (!ParseBinary(0, count == 0 ? depth : NextDepth(acc, depth), &arg)) return false;
        acc = count == 0 ? arg : Emit(builtin->op, acc, arg, depth);
        ++count;
        if (m_token.kind != Tok::kComma) break;
        if (!Advance()) return false;
      }
    }
    if (count < builtin->minArgs || (builtin->maxArgs != 0 && count > builtin->maxArgs)) {
      return FailArguments(*builtin, name, count);
    }
    if (builtin->maxArgs == 1) acc = Emit(builtin->op, acc, acc, depth);
    *out = acc;
    return Expect(Tok::kRParen, ")");
  }

  bool FailArguments(const Builtin& builtin, const Token& name, int32_t count) {
    return Fail(kCalcErrorArgumentCount,
                Concat(name.text, " (expects ", builtin.maxArgs == 0 ? "at least " : "",
                       std::to_string(builtin.minArgs), ", got ", std::to_string(count), ")",
                       At(name.pos)));
  }

  // A function that is not built in: the host computes it from arguments
  // laid out in consecutive temporaries.
  bool ParseUserCall(const Token& name, int32_t depth, Operand* out) {
    int32_t count = 0;
    if (m_token.kind != Tok::kRParen) {
      for (;;) {
        if (count == kMaxUserArguments) {
          return Fail(kCalcErrorArgumentCount,
                      Concat(name.text, " (at most ", std::to_string(kMaxUserArguments),
                             " arguments)", At(name.pos)));
        }
        Operand arg;
        if (!ParseBinary(0, depth + count, &arg)) return false;
        if (arg.kind != Kind::kTemp) Push(Op::kCopy, Check::kNone, depth + count, arg, arg);
        ++count;
        if (m_token.kind != Tok::kComma) break;
        if (!Advance()) return false;
      }
    }
    if (!Expect(Tok::kRParen, ")")) return false;
    auto& functions = m_program->functions;
    const auto found = std::find(functions.begin(), functions.end(), name.text);
    const auto function = static_cast<int32_t>(found - functions.begin());
    if (found == functions.end()) functions.emplace_back(name.text);
    const Operand first{Kind::kTemp, depth};
    *out = Push(Op::kCallUser, Check::kHostCall, depth, first, first, count, function);
    return true;
  }

  // Appends `op` writing the temporary at `depth`, or folds it when both
  // operands are constants and it cannot fail.
  Operand Emit(Op op, Operand a, Operand b, int32_t depth) {
    Check check = Check::kNone;
    if (op == Op::kDiv || op == Op::kMod) {
      const bool safe = b.kind == Kind::kConstant && m_constants[b.index] != 0.0;
      check = safe ? Check::kNone : Check::kDivisorZero;
    } else if (op == Op::kLog || op == Op::kLog10) {
      check = Check::kArgumentZero;
    }
    if (a.kind == Kind::kConstant && b.kind == Kind::kConstant) {
      const double x = m_constants[a.index];
      const double y = m_constants[b.index];
      if (CheckFault(check, x, y) == Fault::kNone) return Constant(Apply(op, x, y));
    }
    return Push(op, check, depth, a, b);
  }

  Operand Push(Op op, Check check, int32_t depth, Operand a, Operand b, int32_t argCount = 0,
               int32_t function = 0) {
    m_code.push_back({op, check, depth, a, b, argCount, function});
    m_maxTemp = std::max(m_maxTemp, depth);
    return {Kind::kTemp, depth};
  }

  Operand Constant(double value) {
    m_constants.push_back(value);
    return {Kind::kConstant, static_cast<int32_t>(m_constants.size() - 1)};
  }

  // Numbers each distinct spelling once, found by hash (the spellings are
  // views of the expression text, which outlives the parse).
  Operand Variable(std::string_view spelling) {
    auto& names = m_program->variables;
    const auto [it, added] =
        m_variableIndex.try_emplace(spelling, static_cast<int32_t>(names.size()));
    if (added) names.emplace_back(spelling);
    return {Kind::kVariable, it->second};
  }

  // Numbers the registers (keeping only the constants still referenced
  // after folding) and writes the program.
  void Finish(Operand result) {
    if (result.kind != Kind::kTemp) Push(Op::kCopy, Check::kNone, 0, result, result);
    std::vector<int32_t> constantSlot(m_constants.size(), -1);
    auto useConstant = [&](const Operand& x) {
      if (x.kind == Kind::kConstant && constantSlot[x.index] < 0) {
        constantSlot[x.index] = static_cast<int32_t>(m_program->constants.size());
        m_program->constants.push_back(m_constants[x.index]);
      }
    };
    for (const Draft& d : m_code) {
      useConstant(d.a);
      useConstant(d.b);
    }
    const int32_t firstConstant = m_program->FirstConstant();
    const int32_t firstTemp = m_program->FirstTemp();
    auto reg = [&](const Operand& x) {
      switch (x.kind) {
        case Kind::kVariable:
          return x.index;
        case Kind::kConstant:
          return firstConstant + constantSlot[x.index];
        case Kind::kTemp:
          break;
      }
      return firstTemp + x.index;
    };
    m_program->code.reserve(m_code.size());
    for (const Draft& d : m_code) {
      Instr in{d.op, d.check, firstTemp + d.dstDepth, reg(d.a), reg(d.b), d.function};
      if (d.op == Op::kCallUser) in.b = d.argCount;
      m_program->code.push_back(in);
    }
    m_program->tempCount = m_maxTemp + 1;
  }

  std::string_view m_text;
  Program* m_program;
  CompileError* m_error;
  size_t m_pos = 0;
  Token m_token;
  int32_t m_maxNesting;
  int32_t m_nesting = 0;
  std::vector<Draft> m_code;
  std::vector<double> m_constants;
  std::unordered_map<std::string_view, int32_t> m_variableIndex;
  int32_t m_maxTemp = 0;
};

}  // namespace

bool Compile(std::string_view text, Program* program, CompileError* error, int32_t maxNesting) {
  *program = Program{};
  return Parser(text, program, error, maxNesting).Run();
}

}  // namespace utilkit::calc
