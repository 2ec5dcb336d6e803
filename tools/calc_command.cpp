#include "calc_command.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <utilkit/base/calculator.h>
#include <utilkit/base/error_stack.h>

#include "csv_table.h"

namespace {

using utilkit::tool::CsvTable;

constexpr const char* kFooter = R"(Variables:
  #Name# is the number in column Name of the current row (an exact match,
  else ignoring case; the name may hold spaces, as in #Peak Force#). An
  empty cell is invalid (NaN) and gives an empty result. Only the columns
  named in the expression must be numeric.
Operators, loosest first:
  ||   &&   == !=   < <= > >=   + -   * /   unary - + !   ^
  ^ is right-associative and binds tighter than unary minus (-2^2 = -4).
  Comparisons and logic give 1 or 0.
Functions:
  abs sqrt exp log (natural) log10 sin cos tan asin acos atan sinh cosh tanh
  floor ceil round; atan2(y, x) pow(x, y) mod(x, y); min(a, b, ...) max(a, b, ...)
Constants: pi e
A row that divides by zero or takes the logarithm of zero stops the command
unless --div-zero or --log-zero gives the value to use for that row.

Example:
  utilkit calc --expr '#Peak# * #Time# / 1000 + 1' examples/signals.csv
)";

struct CalcOptions {
  std::string expression;
  std::string input;
  std::string output;
  std::string name = "result";
  double divZeroValue = 0.0;
  double logZeroValue = 0.0;
  bool divZeroTrap = false;
  bool logZeroTrap = false;
  size_t maxInputMiB = 256;
  int32_t maxDepth = 100;
};

// Binds "#Column#" variables to the columns of a CSV table, converting each
// referenced column to numbers once.
class ColumnCalculator : public VCCalculator {
 public:
  ColumnCalculator(const CsvTable& table, const std::string& source)
      : m_table(table), m_source(source), m_values(table.header.size()) {}

  bool GetVariableId(const char* name, int32_t* id) override {
    const std::string_view text(name);
    const bool hashed = text.size() >= 3 && text.front() == '#' && text.back() == '#';
    const int32_t column = m_table.FindColumn(hashed ? text.substr(1, text.size() - 2) : text);
    if (column < 0) {
      std::string known;
      for (const std::string& h : m_table.header) known += (known.empty() ? "" : ", ") + h;
      m_problem =
          "no column named " + std::string(text) + " in " + m_source + " (columns: " + known + ")";
      return false;
    }
    if (!hashed) {
      m_problem = "write column " + std::string(text) + " as #" + std::string(text) + "#";
      return false;
    }
    if (m_values[column].empty() && !Convert(column)) return false;
    *id = column;
    return true;
  }

  const double* Column(int32_t id) const { return m_values[id].data(); }
  // What made GetVariableId refuse a name, if anything.
  const std::string& Problem() const { return m_problem; }

 private:
  bool Convert(int32_t column) {
    std::vector<double>& values = m_values[column];
    values.reserve(m_table.rows.size());
    for (size_t r = 0; r < m_table.rows.size(); ++r) {
      std::string_view cell = m_table.rows[r][column];
      while (!cell.empty() && (cell.front() == ' ' || cell.front() == '\t')) cell.remove_prefix(1);
      while (!cell.empty() && (cell.back() == ' ' || cell.back() == '\t')) cell.remove_suffix(1);
      if (cell.empty()) {
        values.push_back(std::nan(""));
        continue;
      }
      if (cell.front() == '+') cell.remove_prefix(1);
      double value = 0.0;
      const auto [end, ec] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
      if (ec != std::errc() || end != cell.data() + cell.size()) {
        m_problem = m_source + ":" + std::to_string(m_table.lines[r]) + ": column " +
                    m_table.header[column] + ": '" + m_table.rows[r][column] + "' is not a number";
        values.clear();
        return false;
      }
      values.push_back(value);
    }
    return true;
  }

  const CsvTable& m_table;
  const std::string& m_source;
  std::vector<std::vector<double>> m_values;  // per column, filled when referenced
  std::string m_problem;
};

// Prints the error stack's records, one per line, after `prefix`.
void PrintErrors(const std::string& prefix) {
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    std::fprintf(stderr, "utilkit calc: %s%s (error %d)\n", prefix.c_str(), VFErrorGetMessage(e),
                 VFErrorGetCode(e));
  }
  VFErrorClear();
}

// Shortest text that reads back as `value`; "" for an invalid value.
std::string FormatNumber(double value) {
  if (std::isnan(value)) return "";
  char buffer[32];
  const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, ec == std::errc() ? end : buffer);
}

int RunCalc(const CalcOptions& options) {
  CsvTable table;
  std::string error;
  if (!utilkit::tool::ReadCsvFile(options.input, &table, &error, options.maxInputMiB << 20)) {
    std::fprintf(stderr, "utilkit calc: %s\n", error.c_str());
    return 1;
  }
  VFErrorClear();
  ColumnCalculator calc(table, options.input);
  calc.SetMaxNesting(options.maxDepth);
  if (!calc.SetExpression(options.expression.c_str())) {
    if (!calc.Problem().empty()) {
      std::fprintf(stderr, "utilkit calc: %s\n", calc.Problem().c_str());
      VFErrorClear();
    } else {
      PrintErrors("");
    }
    return 1;
  }
  std::vector<const double*> columns;
  for (int32_t slot = 0; slot < calc.GetVariableCount(); ++slot) {
    columns.push_back(calc.Column(calc.GetVariableIdOfSlot(slot)));
  }
  std::vector<double> results(table.rows.size());
  for (size_t begin = 0; begin < results.size();) {
    size_t failed = 0;
    if (calc.EvaluateBlock(columns.data(), begin, results.size(), results.data(), &failed)) break;
    if (options.divZeroTrap && VFErrorCheck(kCalcErrorDivideByZero)) {
      results[failed] = options.divZeroValue;
    } else if (options.logZeroTrap && VFErrorCheck(kCalcErrorLogOfZero)) {
      results[failed] = options.logZeroValue;
    } else {
      PrintErrors(options.input + ":" + std::to_string(table.lines[failed]) + ": ");
      return 1;
    }
    VFErrorClear();
    begin = failed + 1;
  }

  std::ofstream file;
  if (!options.output.empty()) {
    file.open(options.output, std::ios::binary);
    if (!file) {
      std::fprintf(stderr, "utilkit calc: %s: cannot be written\n", options.output.c_str());
      return 1;
    }
  }
  std::ostream& out = options.output.empty() ? std::cout : file;
  std::vector<std::string> record = table.header;
  record.push_back(options.name);
  utilkit::tool::WriteCsvRecord(out, record);
  for (size_t r = 0; r < table.rows.size(); ++r) {
    record = table.rows[r];
    record.push_back(FormatNumber(results[r]));
    utilkit::tool::WriteCsvRecord(out, record);
  }
  out.flush();
  if (!out) {
    std::fprintf(stderr, "utilkit calc: writing the result failed\n");
    return 1;
  }
  return 0;
}

}  // namespace

void AddCalcCommand(CLI::App& app) {
  auto options = std::make_shared<CalcOptions>();
  CLI::App* calc = app.add_subcommand(
      "calc", "Evaluate an expression over the rows of a CSV file and append the result");
  calc->add_option("--expr,-e", options->expression, "The expression, e.g. '#Peak# * 2'")
      ->required();
  calc->add_option("file", options->input,
                   "CSV file: a header line of column names, then rows of cells")
      ->required();
  calc->add_option("--output,-o", options->output, "Write the CSV here instead of standard output");
  calc->add_option("--name", options->name, "Header of the result column")->capture_default_str();
  calc->add_option("--max-input-mb", options->maxInputMiB, "Largest input file, in MiB")
      ->capture_default_str()
      ->check(CLI::Range(size_t{1}, size_t{1} << 20));
  calc->add_option("--max-depth", options->maxDepth,
                   "Deepest nesting of parentheses, signs, powers and calls in the expression "
                   "(each level takes about 2 KB of stack)")
      ->capture_default_str()
      ->check(CLI::Range(1, 1000));
  CLI::Option* divZero =
      calc->add_option("--div-zero", options->divZeroValue, "Result for rows that divide by zero");
  CLI::Option* logZero = calc->add_option("--log-zero", options->logZeroValue,
                                          "Result for rows that take log or log10 of zero");
  calc->footer(kFooter);
  calc->callback([options, divZero, logZero] {
    options->divZeroTrap = divZero->count() > 0;
    options->logZeroTrap = logZero->count() > 0;
    if (const int status = RunCalc(*options); status != 0) throw CLI::RuntimeError(status);
  });
}
