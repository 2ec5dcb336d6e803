// VCCalculator: compiles an arithmetic expression once, then evaluates it
// many times, one row at a time or over whole blocks of rows.
//
// A host derives from it to supply variables. SetExpression asks
// GetVariableId once for each distinct variable name; each row evaluation
// then asks GetVariableValue with the identifier it got back. For bulk work
// EvaluateBlock reads the variables from arrays instead, one per variable
// slot, and runs each instruction over a chunk of rows at a time.
//
//   class ColumnCalculator : public VCCalculator {
//    public:
//     bool GetVariableId(const char* name, int32_t* id) override;  // "#Force#" -> 0
//     bool GetVariableValue(int32_t id, double* value) override {
//       *value = columns[id][row];
//       return true;
//     }
//     std::vector<const double*> columns;
//     size_t row = 0;
//   };
//   ColumnCalculator calc;
//   if (!calc.SetExpression("#Force# / #Area# * 1000")) return false;  // error stack says why
//   double value;
//   if (!calc.EvaluateExpressionToDouble(&value)) { /* -68445 or -68448 on the stack */ }
//
// Ownership: the calculator owns its compiled program and its scratch memory.
// It keeps no pointer to the expression text, the columns or the output it
// is given. Not thread-safe: one thread at a time per calculator.
//
// The expression language
// - Numbers: 12, 1.5, .5, 2e-3 (no sign of their own: -3 is unary minus on 3;
//   one beyond the range of a double, such as 1e999, is a syntax error).
// - Variables: '#', any characters but '#', '#' (#Force#, #Force_status#,
//   #Peak Force#; "##" is a variable named "##"); or a plain identifier
//   (a letter or '_', then letters, digits and '_') that is neither a
//   constant nor followed by '('. The name given to GetVariableId is the
//   token exactly as written, '#' included. Names are case-sensitive here;
//   a host that ignores case returns one identifier for #A# and #a#, which
//   then share one slot.
// - Constants: pi and e (case ignored; write #e# for a variable called e).
// - Operators, loosest first: ||, &&, == !=, < <= > >=, + -, * /, unary - + !,
//   then ^ (right-associative). So -2^2 is -4, 2^3^2 is 512, 2^-1 is 0.5.
//   Comparisons and logic give 1 or 0; any non-zero value, NaN included,
//   counts as true. Both sides of && and || are always evaluated.
// - Functions (names ignore case): abs sqrt exp log (natural) log10 sin cos
//   tan asin acos atan sinh cosh tanh floor ceil round (halves away from 0),
//   one argument each; atan2(y, x), pow(x, y) (same as x ^ y), mod(x, y)
//   (remainder with the sign of x), two; min and max, two or more. Any other
//   name followed by '(' calls ExecuteUserFunction when evaluated (at most
//   32 arguments).
// - Spaces, tabs and line breaks between tokens are ignored. Nesting
//   (parentheses, unary operators, powers, calls) is limited to 100 levels.
//
// Arithmetic is IEEE double: a NaN operand (an invalid value) gives NaN
// (min and max included), overflow gives +-inf, and other domain errors give
// NaN without failing: sqrt(-1), log(-1), asin(2), pow(-8, 1/3). 0^-1 is inf.
// Two cases fail the evaluation instead, whatever the other operand (0/0 and
// NaN/0 included): a divisor of zero in / or mod pushes -68445, and log or
// log10 of zero pushes -68448. Constant parts are worked out once by
// SetExpression, except those that would fail: "1/0" compiles and then fails
// every evaluation, so a host's per-row traps apply to it.
//
// Errors (message: the code's text from the library's text table, then the
// name or detail; positions count characters from 1):
//   -68436 out of memory                   -68437 no expression has been set
//   -68438 no array for a variable slot    -68439 a variable's value could not be got
//   -68440 syntax error (what and where)   -68441 nested too deeply
//   -68442 wrong number of arguments       -68443 unknown variable
//   -68444 unknown function                -68445 division by zero
//   -68448 logarithm of zero
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <utilkit/base/base_errors.h>
#include <utilkit/base/export.h>

class UTILKIT_API VCCalculator {
 public:
  VCCalculator();
  virtual ~VCCalculator();
  VCCalculator(const VCCalculator&) = delete;
  VCCalculator& operator=(const VCCalculator&) = delete;

  // Late binding by name: the value of `name` now. Reached only through the
  // default GetVariableValue. The default fails, pushing -68443 + name.
  virtual bool GetVariable(const char* name, double* value);
  // The value of the variable that GetVariableId resolved to `id`. A failing
  // override pushes its reason; the calculator then adds -68439 + name (flag 1).
  // The default serves the identifiers of the default GetVariableId through
  // GetVariable; an override of one of the two overrides the other too.
  virtual bool GetVariableValue(int32_t id, double* value);
  // Resolves `name` (as written, see above) to an identifier of the host's
  // choosing (any value; equal identifiers share a slot). Returning false
  // fails SetExpression with -68443 + name. The default accepts every name
  // and binds it late, by name, through GetVariable.
  virtual bool GetVariableId(const char* name, int32_t* id);
  // Computes a function that is not built in from `argCount` arguments.
  // A failing override pushes its reason. The default fails with -68444 + name.
  virtual bool ExecuteUserFunction(const char* name, const double* args, int32_t argCount,
                                   double* result);

  // The deepest nesting of parentheses, unary operators, powers and calls
  // that SetExpression accepts (default 100; deeper is -68441). Each level
  // takes about 2 KB of the calling thread's stack in the parser, so raise
  // it only as far as that stack allows. Values below 1 are taken as 1.
  // Never fails.
  void SetMaxNesting(int32_t levels);
  int32_t GetMaxNesting() const;

  // Compiles `text` and resolves each distinct variable name once through
  // GetVariableId. Fails with -68440/-68441/-68442 on bad text (null is
  // empty text), -68443 on a refused name, -68436 without memory; after a
  // failure no expression is set.
  bool SetExpression(const char* text);
  // The text of the expression set last (successfully or not); "" at first.
  const char* GetExpression() const;

  // Evaluates the expression once, asking GetVariableValue once per slot.
  // Fails with -68437 without an expression, -68439 when a value cannot be
  // got, -68445 / -68448 as described above, or a user function's error.
  bool EvaluateExpressionToDouble(double* result);

  // Evaluates rows [begin, end) with slot s reading columns[s][row], writing
  // out[row]; GetVariableValue is not called. `out` must not overlap any
  // column. On success *failedRow (may be null) is set to `end`. On -68445 or
  // -68448 *failedRow is the first failing row and out[begin, *failedRow)
  // hold results (later entries are unspecified): apply a trap to that row
  // and go on from *failedRow + 1. Fails with -68437 without an expression
  // and -68438 + name for a null column. Expressions that call user
  // functions are evaluated row by row.
  bool EvaluateBlock(const double* const* columns, size_t begin, size_t end, double* out,
                     size_t* failedRow = nullptr);

  // Number of variable slots: one per distinct identifier of the expression.
  int32_t GetVariableCount() const;
  // The name of slot `slot` as first written; "" when out of range.
  const char* GetVariableName(int32_t slot) const;
  // The identifier GetVariableId gave slot `slot`; -1 when out of range.
  int32_t GetVariableIdOfSlot(int32_t slot) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
