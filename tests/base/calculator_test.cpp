#include <utilkit/base/calculator.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/base/vc_string.h>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr const char* kEvalAt = "VCCalculator::EvaluateExpressionToDouble";
constexpr const char* kSetAt = "VCCalculator::SetExpression";

std::string Text(int32_t code) {
  return VFTextGet(VFGetUtilKitText(), code);
}

std::string Repeat(const char* piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

// A host like a table: named columns, resolved ignoring case, read at `row`.
// Identifiers start at `idBase` so hosts that number from 1000 are covered.
class TableCalculator : public VCCalculator {
 public:
  explicit TableCalculator(int32_t idBase = 0) : m_idBase(idBase) {}

  void AddColumn(const char* name, std::vector<double> values) {
    m_names.emplace_back(name);
    m_columns.push_back(std::move(values));
  }
  // The columns for EvaluateBlock, in slot order.
  std::vector<const double*> SlotColumns() const {
    std::vector<const double*> columns;
    for (int32_t s = 0; s < GetVariableCount(); ++s) {
      columns.push_back(m_columns[GetVariableIdOfSlot(s) - m_idBase].data());
    }
    return columns;
  }

  // Accepts "#Column#" only.
  bool GetVariableId(const char* name, int32_t* id) override {
    ++idCalls;
    const std::string text = name;
    const bool hashed = text.size() >= 3 && text.front() == '#' && text.back() == '#';
    for (size_t i = 0; i < m_names.size() && hashed; ++i) {
      if (m_names[i].CompareNoCase(text.substr(1, text.size() - 2).c_str()) == 0) {
        *id = m_idBase + static_cast<int32_t>(i);
        return true;
      }
    }
    if (pushWhenRefusing) VFErrorSet(-1, "no such column", "TableCalculator::GetVariableId", 0);
    return false;
  }
  bool GetVariableValue(int32_t id, double* value) override {
    ++valueCalls;
    if (failValues) {
      VFErrorSet(-2, "read failed", "TableCalculator::GetVariableValue", 0);
      return false;
    }
    *value = m_columns[id - m_idBase][row];
    return true;
  }

  size_t row = 0;
  int idCalls = 0;
  int valueCalls = 0;
  bool pushWhenRefusing = true;
  bool failValues = false;

 private:
  int32_t m_idBase;
  std::vector<VCString> m_names;
  std::vector<std::vector<double>> m_columns;
};

class CalculatorTest : public ::testing::Test {
 protected:
  void SetUp() override { VFErrorClear(); }
  void TearDown() override { VFErrorClear(); }

  // The value of a text over columns X = 2 and N = NaN; fails the test on any
  // error. Texts with variables run rather than being folded at compile time.
  static double Eval(const char* text) {
    TableCalculator calc;
    calc.AddColumn("X", {2.0});
    calc.AddColumn("N", {kNaN});
    double value = -12345.0;
    EXPECT_TRUE(calc.SetExpression(text)) << text << ": " << VFErrorGetFullString().c_str();
    EXPECT_TRUE(calc.EvaluateExpressionToDouble(&value)) << text;
    return value;
  }
  // Checks that the stack holds exactly one record: code, message, location.
  static void ExpectOnlyError(int32_t code, const std::string& message, const char* location) {
    ASSERT_EQ(VFErrorGetCount(), 1u) << VFErrorGetFullString().c_str();
    const VCErrorRecord* e = VFGetUtLibError();
    EXPECT_EQ(VFErrorGetCode(e), code);
    EXPECT_EQ(VFErrorGetMessage(e), message);
    EXPECT_STREQ(VFErrorGetLocation(e), location);
    EXPECT_EQ(VFErrorGetFlag(e), 0);
  }
  // Checks that the newest record is the calculator's summary on top of the host's.
  static void ExpectSummary(int32_t hostCode, int32_t code, const std::string& message) {
    ASSERT_EQ(VFErrorGetCount(), 2u) << VFErrorGetFullString().c_str();
    EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), hostCode);
    const VCErrorRecord* last = VFErrorGetLast();
    EXPECT_EQ(VFErrorGetCode(last), code);
    EXPECT_EQ(VFErrorGetMessage(last), message);
    EXPECT_EQ(VFErrorGetFlag(last), 1);
  }
};

using CalculatorGrammar = CalculatorTest;
using CalculatorVariables = CalculatorTest;
using CalculatorMath = CalculatorTest;
using CalculatorSyntax = CalculatorTest;
using CalculatorBlock = CalculatorTest;
using CalculatorUserFunctions = CalculatorTest;

TEST_F(CalculatorGrammar, PrecedenceAssociativityAndTruthValues) {
  // Numbers and blanks; left-associative arithmetic; power, right-associative and
  // tighter than unary minus; comparisons and logic, 1 or 0 and strict at
  // equality; the invalid #N#, unequal to everything and true.
  const std::pair<const char*, double> cases[] = {
      {"!0", 1},         {"2 <= 1", 0},      {"3 - -#X#", 5},   {"1 || 0 && 0", 1},
      {"!5", 0},         {"1 >= 1", 1},      {"#N# && 1", 1},   {"100 / 10 / 5", 2},
      {"42", 42},        {"1 <= 1", 1},      {"1 + 2 * 3", 7},  {"10 - #X# - 3", 5},
      {"#X#", 2},        {"2 >= 3", 0},      {"-2^-2", -0.25},  {"16 / #X# / 2", 4},
      {"!#N#", 0},       {"3 == 3", 1},      {"#X#^3^2", 512},  {" \t1\r\n+\n2 ", 3},
      {"-2^2", -4},      {"3 != 3", 0},      {"10 - 4 - 3", 3}, {"#X# + 2 * #X#", 6},
      {"1 < 2", 1},      {"1 && 0", 0},      {"1 + 1 == 2", 1}, {"2 * 3 + 4 * 5", 26},
      {"2 > 1", 1},      {"0 || 2", 1},      {"1 < 2 == 1", 1}, {"#X# > 1 && #X# < 3", 1},
      {"1 < 1", 0},      {"2^3^2", 512},     {"#N# == #N#", 0}, {"2e3 + .5 + 2.5E-1", 2000.75},
      {"1 > 1", 0},      {"-#X#^2", -4},     {"#N# != #N#", 1}, {"(-2)^2", 4},
      {"2 * 3^2", 18},   {"(1 + 2) * 3", 9}, {"2^-1", 0.5},     {"--2 + +3", 5},
      {"#X#^-#X#", 0.25}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(Eval(text), expected) << text;
}

TEST_F(CalculatorGrammar, LongChainsNeedNoRecursion) {
  EXPECT_EQ(Eval(("1" + Repeat("+1", 100000)).c_str()), 100001.0);
}

TEST_F(CalculatorMath, Functions) {
  const double pi = std::numbers::pi;
  const std::pair<const char*, double> cases[] = {{"exp(0)", 1},
                                                  {"log(e)", 1},
                                                  {"sin(0)", 0},
                                                  {"cos(0)", 1},
                                                  {"tan(0)", 0},
                                                  {"abs(-3)", 3},
                                                  {"acos(1)", 0},
                                                  {"sinh(0)", 0},
                                                  {"cosh(0)", 1},
                                                  {"tanh(0)", 0},
                                                  {"sqrt(16)", 4},
                                                  {"mod(7, 3)", 1},
                                                  {"round(2.5)", 3},
                                                  {"log10(1000)", 3},
                                                  {"ceil(-1.5)", -1},
                                                  {"mod(-7, 3)", -1},
                                                  {"2 * PI", 2 * pi},
                                                  {"asin(1)", pi / 2},
                                                  {"atan(1)", pi / 4},
                                                  {"floor(-1.5)", -2},
                                                  {"round(-2.5)", -3},
                                                  {"min(3, 1, 2)", 1},
                                                  {"pow(2, 10)", 1024},
                                                  {"max(3, 1, 2, 7)", 7},
                                                  {"SQRT(4) + Abs(-1)", 3},
                                                  {"atan2(1, -1)", 3 * pi / 4},
                                                  {"max(1, min(5, 3)) * 2", 6}};
  for (const auto& [text, expected] : cases) {
    EXPECT_DOUBLE_EQ(Eval(text), expected) << text;
    // The same through a variable, so it runs rather than being folded.
    EXPECT_DOUBLE_EQ(Eval(("(" + std::string(text) + ") * #X# / 2").c_str()), expected) << text;
  }
}

TEST_F(CalculatorMath, DomainErrorsGiveNaNOrInfinityWithoutFailing) {
  for (const char* text : {"sqrt(-1)", "log(-1)", "log10(-1)", "asin(2)", "pow(-8, 1/3)", "#N# + 1",
                           "min(#N#, 1)", "min(1, #N#)", "max(#N#, 1)", "max(1, #N#)"}) {
    EXPECT_TRUE(std::isnan(Eval(text))) << text;
  }
  EXPECT_EQ(Eval("0^-1"), kInf);
  EXPECT_EQ(Eval("-exp(1000)"), -kInf);
  EXPECT_EQ(Eval("1 / 0.0001"), 10000.0);
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(CalculatorMath, DivisionAndLogarithmOfZeroFailWithTheirCodes) {
  TableCalculator calc;
  calc.AddColumn("A", {6.0, 0.0, kNaN});
  calc.AddColumn("B", {0.0, -0.0, 0.0});
  const int32_t div = kCalcErrorDivideByZero;
  const int32_t log = kCalcErrorLogOfZero;
  // The last two rows: the first failing operation decides.
  const std::pair<const char*, int32_t> cases[] = {
      {"1 / 0", div},  {"log(#B#)", log},  {"mod(#A#, #B#)", div},   {"1 + log(#B# * 5)", log},
      {"0 / 0", div},  {"#A# / #B#", div}, {"log10(#B#) + 1", log},  {"log(#B#) + 1 / #B#", log},
      {"log(0)", log}, {"log10(-0)", log}, {"#A# / (#B# * 2)", div}, {"1 / #B# + log(#B#)", div}};
  for (const auto& [text, code] : cases) {
    ASSERT_TRUE(calc.SetExpression(text)) << text;
    for (calc.row = 0; calc.row < 3; ++calc.row) {
      SCOPED_TRACE(std::string(text) + " row " + std::to_string(calc.row));
      VFErrorClear();
      double value = 7.0;
      EXPECT_FALSE(calc.EvaluateExpressionToDouble(&value));
      EXPECT_EQ(value, 7.0);
      ExpectOnlyError(code, Text(code), kEvalAt);
    }
  }
}

TEST_F(CalculatorVariables, EachDistinctNameIsResolvedOnceAndFetchedOncePerRow) {
  TableCalculator calc;
  calc.AddColumn("Force", {10.0, 20.0, 30.0, 40.0, 50.0, 60.0});
  calc.AddColumn("Area", {1.0, 2.0, 4.0, 5.0, 8.0, 10.0});
  ASSERT_TRUE(calc.SetExpression("#Force# / #Area# + #Force# * 0"));
  EXPECT_EQ(calc.idCalls, 2);
  ASSERT_EQ(calc.GetVariableCount(), 2);
  EXPECT_STREQ(calc.GetVariableName(0), "#Force#");
  EXPECT_STREQ(calc.GetVariableName(1), "#Area#");
  EXPECT_EQ(calc.GetVariableIdOfSlot(1), 1);
  EXPECT_STREQ(calc.GetVariableName(2), "");
  EXPECT_EQ(calc.GetVariableIdOfSlot(-1), -1);
  calc.row = 5;
  double value = 0.0;
  ASSERT_TRUE(calc.EvaluateExpressionToDouble(&value));
  EXPECT_EQ(value, 6.0);
  EXPECT_EQ(calc.valueCalls, 2);
  EXPECT_STREQ(calc.GetExpression(), "#Force# / #Area# + #Force# * 0");
}

TEST_F(CalculatorVariables, NamesDifferingOnlyInCaseAreTheHostsChoice) {
  // A host that ignores case gives #A# and #a# one identifier: one slot.
  TableCalculator table;
  table.AddColumn("A", {3.0});
  ASSERT_TRUE(table.SetExpression("#A# * 10 + #a#"));
  EXPECT_EQ(table.idCalls, 2);
  EXPECT_EQ(table.GetVariableCount(), 1);
  double value = 0.0;
  ASSERT_TRUE(table.EvaluateExpressionToDouble(&value));
  EXPECT_EQ(value, 33.0);
  EXPECT_EQ(table.valueCalls, 1);

  // The calculator itself keeps them apart: late binding asks for each.
  struct ByName : VCCalculator {
    bool GetVariable(const char* name, double* value) override {
      asked.emplace_back(name);
      *value = std::string(name) == "#A#" ? 3.0 : std::string(name) == "#a#" ? 5.0 : 100.0;
      return true;
    }
    std::vector<std::string> asked;
  } byName;
  ASSERT_TRUE(byName.SetExpression("#A# * 10 + #a# + Plain_1"));
  EXPECT_EQ(byName.GetVariableCount(), 3);
  ASSERT_TRUE(byName.EvaluateExpressionToDouble(&value));
  EXPECT_EQ(value, 135.0);
  EXPECT_EQ(byName.asked, (std::vector<std::string>{"#A#", "#a#", "Plain_1"}));
}

TEST_F(CalculatorVariables, IdentifiersFrom1000AreKeptAsGiven) {
  TableCalculator calc(1000);
  calc.AddColumn("Force_status", {32768.0, 0.0});
  calc.AddColumn("Force", {2.5, 3.5});
  ASSERT_TRUE(calc.SetExpression("#Force_status# + #FORCE# * 2"));
  ASSERT_EQ(calc.GetVariableCount(), 2);
  EXPECT_EQ(calc.GetVariableIdOfSlot(0), 1000);
  EXPECT_EQ(calc.GetVariableIdOfSlot(1), 1001);
  calc.row = 1;
  double value = 0.0;
  ASSERT_TRUE(calc.EvaluateExpressionToDouble(&value));
  EXPECT_EQ(value, 7.0);
  const std::vector<const double*> columns = calc.SlotColumns();
  double out[2] = {};
  ASSERT_TRUE(calc.EvaluateBlock(columns.data(), 0, 2, out));
  EXPECT_EQ(out[0], 32773.0);
  EXPECT_EQ(out[1], 7.0);
}

TEST_F(CalculatorVariables, TokensPassedToTheHostAsWritten) {
  struct Recorder : VCCalculator {
    bool GetVariableId(const char* name, int32_t* id) override {
      names.emplace_back(name);
      *id = static_cast<int32_t>(names.size());
      return true;
    }
    std::vector<std::string> names;
  } calc;
  ASSERT_TRUE(calc.SetExpression("#Peak Force# + ## + Force_2 * #x_status# + log(x) + pi + e"));
  EXPECT_EQ(calc.names,
            (std::vector<std::string>{"#Peak Force#", "##", "Force_2", "#x_status#", "x"}));
}

TEST_F(CalculatorVariables, RefusedNameFailsSetExpression) {
  TableCalculator calc;
  calc.AddColumn("A", {1.0});
  ASSERT_TRUE(calc.SetExpression("#A#"));
  // The host said why: the calculator's record is a summary on top.
  EXPECT_FALSE(calc.SetExpression("#A# + #Nope#"));
  ExpectSummary(-1, kCalcErrorUnknownVariable, Text(kCalcErrorUnknownVariable) + "#Nope#");
  EXPECT_STREQ(VFErrorGetLocation(VFErrorGetLast()), kSetAt);
  // A silent refusal gets a plain record; the failed text leaves no expression.
  VFErrorClear();
  calc.pushWhenRefusing = false;
  EXPECT_FALSE(calc.SetExpression("##"));
  ExpectOnlyError(kCalcErrorUnknownVariable, Text(kCalcErrorUnknownVariable) + "##", kSetAt);
  VFErrorClear();
  double value = 0.0;
  EXPECT_FALSE(calc.EvaluateExpressionToDouble(&value));
  ExpectOnlyError(kCalcErrorNoExpression, Text(kCalcErrorNoExpression), kEvalAt);
  EXPECT_EQ(calc.GetVariableCount(), 0);
}

TEST_F(CalculatorVariables, FailedValueFailsEvaluationWithSummary) {
  TableCalculator calc;
  calc.AddColumn("A", {1.0});
  ASSERT_TRUE(calc.SetExpression("#a# + 1"));
  calc.failValues = true;
  double value = 0.0;
  EXPECT_FALSE(calc.EvaluateExpressionToDouble(&value));
  ExpectSummary(-2, kCalcErrorVariableValue, Text(kCalcErrorVariableValue) + "#a#");
  // Without any host the variable is unknown when it is needed.
  VFErrorClear();
  VCCalculator bare;
  ASSERT_TRUE(bare.SetExpression("#B# * 2"));
  EXPECT_FALSE(bare.EvaluateExpressionToDouble(&value));
  EXPECT_TRUE(VFErrorCheck(kCalcErrorUnknownVariable));
  EXPECT_TRUE(VFErrorCheck(kCalcErrorVariableValue));
}

TEST_F(CalculatorSyntax, MalformedTextFailsWithCodeMessageAndLocation) {
  struct Case {
    const char* text;
    const char* detail;
    int32_t code = kCalcErrorSyntax;
  };
  const int32_t args = kCalcErrorArgumentCount;
  const std::string tooMany = "f(1" + Repeat(",1", 32) + ")";
  const Case cases[] = {
      {nullptr, "empty expression"},
      {"", "empty expression"},
      {"   ", "empty expression"},
      {"1 +", "unexpected end of expression at position 4"},
      {"1 + )", "unexpected ')' at position 5"},
      {"1 2", "unexpected '2' at position 3"},
      {"(1 + 2", "expected ')' but found end of expression at position 7"},
      {"(1 + 2 3)", "expected ')' but found '3' at position 8"},
      {"#Force + 1", "unterminated variable name '#Force + 1' at position 1"},
      {"#A# = 2", "unexpected character '=' at position 5 (comparison is '==')"},
      {"1 & 2", "unexpected character '&' at position 3 (logical and is '&&')"},
      {"2 $ 3", "unexpected character '$' at position 3"},
      {"1e+", "malformed number '1e+' at position 1"},
      {"1 + 1e999", "number out of range '1e999' at position 5"},
      {"f(1,)", "unexpected ')' at position 5"},
      {"sqrt(1, 2, 3)", "sqrt (expects 1, got 3) at position 1", args},
      {"1 + sqrt()", "sqrt (expects 1, got 0) at position 5", args},
      {"atan2(1)", "atan2 (expects 2, got 1) at position 1", args},
      {"MIN(1)", "MIN (expects at least 2, got 1) at position 1", args},
      {tooMany.c_str(), "f (at most 32 arguments) at position 1", args},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text ? c.text : "(null)");
    VFErrorClear();
    VCCalculator calc;
    EXPECT_FALSE(calc.SetExpression(c.text));
    ExpectOnlyError(c.code, Text(c.code) + c.detail, kSetAt);
  }
}

TEST_F(CalculatorSyntax, BadTextNeverReachesTheHost) {
  TableCalculator calc;
  calc.AddColumn("A", {1.0});
  EXPECT_FALSE(calc.SetExpression("#A# + #A# * (2"));
  EXPECT_EQ(calc.idCalls, 0);
  EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kCalcErrorSyntax);
}

TEST_F(CalculatorSyntax, DeepNestingIsRefusedNotOverflowed) {
  const int n = 200000;
  for (const std::string& text :
       {Repeat("(", n) + "1" + Repeat(")", n), Repeat("-", n) + "1", Repeat("2^", n) + "2",
        Repeat("abs(", n) + "1" + Repeat(")", n)}) {
    VFErrorClear();
    VCCalculator calc;
    EXPECT_FALSE(calc.SetExpression(text.c_str()));
    ASSERT_EQ(VFErrorGetCount(), 1u);
    EXPECT_EQ(VFErrorGetCode(VFGetUtLibError()), kCalcErrorTooDeep);
    EXPECT_EQ(std::string(VFErrorGetMessage(VFGetUtLibError())).rfind(Text(kCalcErrorTooDeep), 0),
              0u);
  }
  // Ordinary depths are fine.
  EXPECT_EQ(Eval((Repeat("(", 60) + "2" + Repeat(")", 60) + "^2").c_str()), 4.0);
  // A host may set another limit, which the message names.
  VCCalculator calc;
  calc.SetMaxNesting(300);
  EXPECT_TRUE(calc.SetExpression((Repeat("(", 250) + "1" + Repeat(")", 250)).c_str()));
  calc.SetMaxNesting(3);
  VFErrorClear();
  EXPECT_FALSE(calc.SetExpression("(((1)))"));
  ExpectOnlyError(kCalcErrorTooDeep, Text(kCalcErrorTooDeep) + "more than 3 levels at position 4",
                  kSetAt);
}

// Rows that cross several chunks and end in a partial one.
constexpr size_t kRows = 1500;

void AddTestColumns(TableCalculator& calc) {
  std::vector<double> a(kRows), b(kRows);
  for (size_t i = 0; i < kRows; ++i) {
    a[i] = static_cast<double>(static_cast<int>(i * 7919 % 2001) - 1000) / 8.0;
    b[i] = static_cast<double>(static_cast<int>(i * 104729 % 997) - 400) / 3.0 + 0.5;
  }
  a[17] = kNaN;
  b[900] = kNaN;
  calc.AddColumn("A", a);
  calc.AddColumn("B", b);
}

bool Same(double x, double y) {
  return (std::isnan(x) && std::isnan(y)) || x == y;
}

TEST_F(CalculatorBlock, BlockEvaluationEqualsRowEvaluation) {
  const char* texts[] = {
      "#A# * #B# / 1000 + 1",
      "-#A#^2 + sqrt(abs(#B#)) - min(#A#, #B#, 3) + max(#b#, 0)",
      "(#A# > #B#) * 2 + (#A# <= #B#) - !#B# + (#A# && #B#) + (#A# || 0) + (#A# != #a#)",
      "atan2(#A#, #B#) + exp(#B# / 100) + log(abs(#A#) + 1) + log10(abs(#B#)) + mod(#A#, 7)",
      "floor(#A#) + ceil(#B#) + round(#A# / 3) + pi - e + sin(#A#) * cos(#B#) - tanh(#B#)",
      "#A# / (#B# + 1e9) - pow(abs(#A#), 0.5) + #B# ^ 2",
      "10 / #B# - 2 ^ (#A# / 100) + (1000 - #A#) * (0.5 < #B#)",
      // Chains of + - * / with constants, run fused with the operation before.
      "#A# * 9 / 5 + 32 - (#B# - 0.1) * 3",
      "(#A# + #B#) / 3 / 3 / 3 * 3 - 1",
      "1000 / (#B# + 1e9) * 2 - 1 + (100 - #A# / 7 * 3)",
      "#B#",
      "42",
  };
  TableCalculator calc;
  AddTestColumns(calc);
  for (const char* text : texts) {
    ASSERT_TRUE(calc.SetExpression(text)) << text;
    std::vector<double> out(kRows, -1.0);
    const std::vector<const double*> columns = calc.SlotColumns();
    size_t failed = 0;
    ASSERT_TRUE(calc.EvaluateBlock(columns.data(), 0, kRows, out.data(), &failed)) << text;
    EXPECT_EQ(failed, kRows);
    for (calc.row = 0; calc.row < kRows; ++calc.row) {
      double value = 0.0;
      ASSERT_TRUE(calc.EvaluateExpressionToDouble(&value)) << text << " row " << calc.row;
      ASSERT_TRUE(Same(value, out[calc.row])) << text << " row " << calc.row;
    }
  }
  EXPECT_EQ(VFErrorGetCount(), 0u);
}

TEST_F(CalculatorBlock, ADivisionByAZeroConstantAfterArithmeticStillFails) {
  TableCalculator calc;
  AddTestColumns(calc);
  ASSERT_TRUE(calc.SetExpression("#A# * 2 / 0 + 1"));
  const std::vector<const double*> columns = calc.SlotColumns();
  std::vector<double> out(kRows);
  size_t failed = kRows;
  EXPECT_FALSE(calc.EvaluateBlock(columns.data(), 4, kRows, out.data(), &failed));
  EXPECT_EQ(failed, 4u);
  EXPECT_TRUE(VFErrorCheck(kCalcErrorDivideByZero));
}

TEST_F(CalculatorBlock, EvaluatesOnlyTheGivenRange) {
  TableCalculator calc;
  AddTestColumns(calc);
  ASSERT_TRUE(calc.SetExpression("#A# + #B#"));
  std::vector<double> out(kRows, -7.0);
  const std::vector<const double*> columns = calc.SlotColumns();
  ASSERT_TRUE(calc.EvaluateBlock(columns.data(), 700, 1300, out.data()));
  for (size_t i = 0; i < kRows; ++i) {
    if (i < 700 || i >= 1300) {
      ASSERT_EQ(out[i], -7.0) << i;
    } else {
      ASSERT_TRUE(Same(out[i], columns[0][i] + columns[1][i])) << i;
    }
  }
  size_t failed = 0;
  EXPECT_TRUE(calc.EvaluateBlock(columns.data(), 5, 5, out.data(), &failed));
  EXPECT_EQ(failed, 5u);
}

TEST_F(CalculatorBlock, ReportsTheFirstFailingRowSoTrapsCanResume) {
  TableCalculator calc;
  std::vector<double> a(kRows, 2.0), b(kRows, 4.0), c(kRows, 1.0);
  b[5] = 0.0;   // division by zero
  c[3] = 0.0;   // logarithm of zero, earlier in the block though later in the text
  b[10] = 0.0;  // both: the division comes first in the text
  c[10] = 0.0;
  c[1200] = 0.0;  // in a later chunk
  calc.AddColumn("A", a);
  calc.AddColumn("B", b);
  calc.AddColumn("C", c);
  // The second text computes the divisor and the logarithm's argument into
  // the very register the operation then overwrites.
  // The third runs the checked division and the arithmetic after it as one.
  for (const char* text :
       {"#A# / #B# + log(#C#)", "#A# / (#B# * 1) + log(#C# * 1)", "#A# / #B# * 3 - 1 + log(#C#)"}) {
    ASSERT_TRUE(calc.SetExpression(text));
    const std::vector<const double*> columns = calc.SlotColumns();
    std::vector<double> out(kRows, 0.0);
    std::vector<std::pair<size_t, int32_t>> failures;
    for (size_t begin = 0;;) {
      VFErrorClear();
      size_t failed = 0;
      if (calc.EvaluateBlock(columns.data(), begin, kRows, out.data(), &failed)) break;
      ASSERT_EQ(VFErrorGetCount(), 1u);
      EXPECT_STREQ(VFErrorGetLocation(VFGetUtLibError()), "VCCalculator::EvaluateBlock");
      const int32_t code = VFErrorGetCode(VFGetUtLibError());
      failures.emplace_back(failed, code);
      out[failed] = code == kCalcErrorDivideByZero ? -1.0 : -2.0;  // the traps
      begin = failed + 1;
    }
    const std::vector<std::pair<size_t, int32_t>> expected = {{3, kCalcErrorLogOfZero},
                                                              {5, kCalcErrorDivideByZero},
                                                              {10, kCalcErrorDivideByZero},
                                                              {1200, kCalcErrorLogOfZero}};
    EXPECT_EQ(failures, expected) << text;
    // Every row matches row-by-row evaluation with the same traps.
    for (calc.row = 0; calc.row < kRows; ++calc.row) {
      VFErrorClear();
      double value = 0.0;
      if (!calc.EvaluateExpressionToDouble(&value)) {
        value = VFErrorCheck(kCalcErrorDivideByZero) ? -1.0 : -2.0;
      }
      ASSERT_EQ(value, out[calc.row]) << text << " row " << calc.row;
    }
  }
}

TEST_F(CalculatorBlock, MisuseFailsCleanly) {
  TableCalculator calc;
  AddTestColumns(calc);
  double out[4] = {};
  size_t failed = 99;
  EXPECT_FALSE(calc.EvaluateBlock(nullptr, 0, 4, out, &failed));
  ExpectOnlyError(kCalcErrorNoExpression, Text(kCalcErrorNoExpression),
                  "VCCalculator::EvaluateBlock");
  EXPECT_EQ(failed, 0u);
  VFErrorClear();
  ASSERT_TRUE(calc.SetExpression("#A# + #B#"));
  const double* columns[] = {calc.SlotColumns()[0], nullptr};
  EXPECT_FALSE(calc.EvaluateBlock(columns, 0, 4, out));
  ExpectOnlyError(kCalcErrorNoColumn, Text(kCalcErrorNoColumn) + "#B#",
                  "VCCalculator::EvaluateBlock");
  // A constant expression needs no columns at all.
  ASSERT_TRUE(calc.SetExpression("2 * 3"));
  ASSERT_TRUE(calc.EvaluateBlock(nullptr, 0, 4, out));
  EXPECT_EQ(out[3], 6.0);
}

// A host with one function of its own: hyp(x, y...) = sqrt of the sum of squares.
struct FunctionHost : VCCalculator {
  bool ExecuteUserFunction(const char* name, const double* args, int32_t argCount,
                           double* result) override {
    if (std::string(name) == "zero" && argCount == 0) {
      *result = 0.0;
      return true;
    }
    if (std::string(name) != "hyp")
      return VCCalculator::ExecuteUserFunction(name, args, argCount, result);
    double sum = 0.0;
    for (int32_t i = 0; i < argCount; ++i) sum += args[i] * args[i];
    *result = std::sqrt(sum);
    return true;
  }
  bool GetVariable(const char* name, double* value) override {
    *value = values[std::string(name) == "#A#" ? 0 : 1][row];
    return true;
  }
  std::vector<double> values[2] = {{4.0, 6.0, 0.0}, {1.0, 2.0, 3.0}};
  size_t row = 0;
};

TEST_F(CalculatorUserFunctions, HostFunctionsGetEvaluatedArguments) {
  FunctionHost calc;
  ASSERT_TRUE(calc.SetExpression("1 + hyp(3, #A#) + zero() + hyp(1 + 1, 2 * #B#, hyp(0, 1))"));
  double value = 0.0;
  ASSERT_TRUE(calc.EvaluateExpressionToDouble(&value));
  EXPECT_DOUBLE_EQ(value, 1.0 + 5.0 + 0.0 + 3.0);
  // Block evaluation runs them row by row, with the same faults.
  ASSERT_TRUE(calc.SetExpression("hyp(#A#, hyp(#B#)) / #A#"));
  const double* columns[] = {calc.values[0].data(), calc.values[1].data()};
  double out[3] = {};
  size_t failed = 0;
  EXPECT_FALSE(calc.EvaluateBlock(columns, 0, 3, out, &failed));
  EXPECT_EQ(failed, 2u);
  EXPECT_TRUE(VFErrorCheck(kCalcErrorDivideByZero));
  EXPECT_DOUBLE_EQ(out[0], std::sqrt(17.0) / 4.0);
  EXPECT_DOUBLE_EQ(out[1], std::sqrt(40.0) / 6.0);
}

TEST_F(CalculatorUserFunctions, UnknownFunctionFailsWhenEvaluated) {
  FunctionHost calc;
  ASSERT_TRUE(calc.SetExpression("2 * Nope(#A#)"));
  double value = 0.0;
  EXPECT_FALSE(calc.EvaluateExpressionToDouble(&value));
  ExpectOnlyError(kCalcErrorUnknownFunction, Text(kCalcErrorUnknownFunction) + "Nope",
                  "VCCalculator::ExecuteUserFunction");
}

}  // namespace
