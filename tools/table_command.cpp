#include "table_command.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#define UTILKIT_ISATTY(f) _isatty(_fileno(f))
#else
#include <unistd.h>
#define UTILKIT_ISATTY(f) isatty(fileno(f))
#endif

#include <utilkit/base/error_stack.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_processor.h>

#include "sections_command.h"
#include "table_csv.h"
#include "table_job.h"

namespace {

constexpr const char* kFooter = R"(Input files:
  The first line names the columns. `name:type` declares a column's type
  (short, long, huge, float, double, text, enum); `name:enum(1=low|2=high)`
  lists an Enum column's options (cells are option names or codes); a
  column headed `name:status` holds the status words of column `name`
  (0x8000 marks a cell valid). Undeclared columns are long, huge, double or
  text, whichever fits every cell; an empty double cell is NaN.
  FILE@ROWS takes only the listed rows of FILE, in the order given, e.g.
  tests_a.csv@5,1-3 (rows count from 1, the header excluded).
Merging:
  The rows of all files follow one another in the order given. By default
  the columns are those every file has with one type; --all-columns takes
  every column of any file (a cell a file lacks reads 0, empty, or status 0).
Filter:
  <column> <op> <value> [CASE]   op: = == != <> < <= > >= CONTAINS STARTSWITH ENDSWITH
  <column> IS VALID | <column> IS INVALID
  NOT x, !x     x AND y, x && y     x OR y, x || y     ( ... )
  AND binds tighter than OR. Texts compare ignoring case unless CASE follows
  the value. Values are numbers, 'text', "text" or bare words; an Enum
  column compares with an option name or a code. Column names with spaces
  go in [brackets]. CONTAINS, STARTSWITH and ENDSWITH need a text column.
Order of work:
  The filter, then each --compress in the order given, then --sort with its
  --category trim. Computed columns are worked out from the rows that remain.
Sort (--sort KEY,KEY,...):
  KEY is COLUMN with any of :asc :desc :case :nocase (default :asc:nocase).
  Rows with equal keys keep their order. Embedded numbers order by value
  (x9 before x10); Enum columns order by option name; NaN comes last (first
  when descending). --category COLUMN[:N] keeps the first N rows (default 1;
  0 keeps one too) of each distinct value of the sort keys up to COLUMN,
  which must be a sort key; it compares texts ignoring case.
Compression (--compress SEARCH,...:SELECT[:max|min|sum][:later]):
  Rows with equal values in every SEARCH column form a group (texts compare
  with case, a NaN never groups); each group becomes its row with the
  largest SELECT value (max, the default; the first of equal ones), the
  smallest (min), or its first row holding the sum of the group's values
  and the OR of their status words (sum; SELECT must be a double column).
  With :later a row of a later file wins over rows of earlier files
  whatever its value.
Computed columns:
  --new NAME=EXPRESSION    #Col# is column Col's value, #Col_status# its status
                           word; names ignore case. + - * / ^, functions such
                           as log, sqrt, abs (see `utilkit calc --help`).
  --new NAME=NUMBER/[COL]  NUMBER divided by column COL
  Variables and divisors must be double columns (declare `name:double`).
  --row-index NAME[=FIRST] numbers the output rows FIRST, FIRST+1, ... (default 1)
  --new-status NAME=COL    the computed column NAME carries COL's status
  --div-zero V, --log-zero V   a cell dividing by zero or taking the log of
                           zero reads V instead of failing (every computed column)
  A computed column goes where -c names it; those not named follow the other
  columns, in the order given, the row index last. Names in [brackets] may
  hold , : or =.
Examples:
  utilkit table examples/tests_a.csv examples/tests_b.csv
  utilkit table -f "Peak > 10 AND NOT Grade = low" -c Test,Peak examples/tests_*.csv
  utilkit table --all-columns --format dump examples/tests_a.csv examples/tests_b.csv
  utilkit table --sort "Rig,Load:desc" --category Rig:1 examples/runs.csv
  utilkit table --compress Channel:Peak:later examples/tests_a.csv examples/tests_b.csv
  utilkit table --new "Rate=#Load# / #Seconds#" --div-zero 0 --row-index No examples/runs.csv)";

struct TableOptions {
  std::vector<std::string> inputs;
  int64_t maxRows = utilkit::tool::kMaxSelectedRows;  // FILE@ROWS: rows listed, all ranges
  utilkit::tool::TableJob job;
  std::string output;
  std::string format = "csv";
  bool types = false;
  bool quiet = false;
  utilkit::tool::SectionsCut sections;
};

// A progress line on standard error, shown only when it is a terminal and
// the work has taken a second: how far, the rate and the time left.
class Progress {
 public:
  explicit Progress(bool wanted) : m_on(wanted && UTILKIT_ISATTY(stderr)) {}
  ~Progress() { Done(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // `done` of `total` bytes (or rows, with `rows`) of `what`.
  void Show(const std::string& what, int64_t done, int64_t total, bool rows = false) {
    if (!m_on) return;
    using Clock = std::chrono::steady_clock;
    const auto now = Clock::now();
    if (what != m_what) {
      m_what = what;
      m_start = now;
    }
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    if (seconds < 1.0 || now - m_last < std::chrono::milliseconds(100)) return;
    m_last = now;
    const double scale = rows ? 1.0 : 1.0 / (1 << 20);
    const char* unit = rows ? "rows" : "MB";
    const double rate = static_cast<double>(done) / seconds;
    const double left = rate > 0 ? static_cast<double>(total - done) / rate : 0;
    std::fprintf(stderr, "\r%s: %.0f of %.0f %s, %.0f %s/s, %.0f s left\x1b[K", what.c_str(),
                 static_cast<double>(done) * scale, static_cast<double>(total) * scale, unit,
                 rate * scale, unit, left);
    m_shown = true;
  }
  void Done() {
    if (m_shown) std::fputs("\r\x1b[K", stderr);
    m_shown = false;
  }

 private:
  bool m_on;
  bool m_shown = false;
  std::string m_what;
  std::chrono::steady_clock::time_point m_start, m_last;
};

int Fail(std::string message) {
  while (!message.empty() && message.back() == '\n') message.pop_back();
  std::fprintf(stderr, "utilkit table: %s\n", message.c_str());
  return 1;
}

int FailWithErrors() {
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    std::fprintf(stderr, "utilkit table: %s (error %d in %s)\n", VFErrorGetMessage(e),
                 VFErrorGetCode(e), VFErrorGetLocation(e));
  }
  VFErrorClear();
  return 1;
}

// Loads one input into `table`: its rows, and the selected rows if any.
bool LoadInput(const std::string& argument, const TableOptions& options, VCUTableMemory* table,
               VCUDictionary* texts, std::vector<int64_t>* rows, bool* selected,
               std::string* error) {
  std::string path;
  utilkit::tool::SplitInputArgument(argument, &path, rows, selected, options.maxRows);
  const bool quiet = options.quiet;
  Progress progress(!quiet);
  if (utilkit::tool::ReadCsvToMemoryTable(
          path, table, texts, error, [&](const char* stage, int64_t done, int64_t total) {
            progress.Show(std::string(stage) + " " + path, done, total);
          })) {
    return true;
  }
  if (const size_t at = path.rfind('@'); !*selected && at != std::string::npos) {
    *error += " (nor is \"" + path.substr(at + 1) + "\" a list of at most " +
              std::to_string(options.maxRows) + " rows such as 5,1-3)";
  }
  return false;
}

int Write(VCUTable& table, const TableOptions& options) {
  if (options.format == "dump") {
    if (options.output.empty()) {
      table.DumpTableToScreen();
      return 0;
    }
    return table.DumpTableToFile(options.output.c_str()) ? 0 : FailWithErrors();
  }
  std::ofstream file;
  if (!options.output.empty()) {
    file.open(options.output, std::ios::binary);
    if (!file) return Fail(options.output + ": cannot be written");
  }
  std::ostream& out = options.output.empty() ? std::cout : file;
  std::string error;
  Progress progress(!options.quiet);
  if (!utilkit::tool::WriteTableCsv(table, options.types, out, &error,
                                    [&](const char*, int64_t done, int64_t total) {
                                      progress.Show("Writing", done, total, true);
                                    })) {
    return Fail(error);
  }
  progress.Done();
  out.flush();
  return out ? 0 : Fail("writing the result failed");
}

int RunTable(const TableOptions& options) {
  VFErrorClear();
  // The option texts are read before any file is.
  utilkit::tool::TableOperations operations;
  if (std::string error; !utilkit::tool::BuildTableOperations(options.job, &operations, &error)) {
    return Fail(error);
  }
  // Each table's texts are pooled in its dictionary, which outlives it.
  std::vector<std::unique_ptr<VCUDictionary>> texts;
  std::vector<std::unique_ptr<VCUTableMemory>> tables;
  std::vector<utilkit::tool::TableInput> inputs;
  for (const std::string& argument : options.inputs) {
    texts.push_back(std::make_unique<VCUDictionary>());
    tables.push_back(std::make_unique<VCUTableMemory>(argument.c_str()));
    utilkit::tool::TableInput& input = inputs.emplace_back();
    input.table = tables.back().get();
    std::string error;
    if (!LoadInput(argument, options, tables.back().get(), texts.back().get(), &input.rows,
                   &input.selected, &error)) {
      return Fail(error);
    }
  }
  if (std::string error; !utilkit::tool::ApplySectionsCut(options.sections, &inputs, &error)) {
    return Fail(error);
  }
  if (std::string error; !utilkit::tool::CheckFilterValues(inputs, operations, &error)) {
    return Fail(error);
  }
  VCUTableProcessor processor;
  if (!utilkit::tool::RunTableJob(inputs, options.job, operations, &processor)) {
    return FailWithErrors();
  }
  return Write(*processor.GetOutputTable(), options);
}

}  // namespace

void AddTableCommand(CLI::App& app) {
  auto options = std::make_shared<TableOptions>();
  CLI::App* table = app.add_subcommand(
      "table", "Merge CSV files; filter, compress and sort the rows; add computed columns");
  table->add_option("files", options->inputs, "CSV files, each FILE or FILE@ROWS")->required();
  table->add_option("--columns,-c", options->job.columns,
                    "Output columns, comma-separated (default: every merged column)");
  table->add_flag("--all-columns,-a", options->job.allColumns,
                  "Merge every column of any file, not only the common ones");
  table->add_option("--filter,-f", options->job.filter, "Keep the rows that pass this filter");
  table
      ->add_option("--max-depth", options->job.maxFilterDepth,
                   "Deepest nesting of parentheses in the filter (each level takes about "
                   "1.5 KB of stack)")
      ->capture_default_str()
      ->check(CLI::Range(size_t{1}, size_t{2000}));
  table
      ->add_option("--max-rows", options->maxRows,
                   "Most rows a FILE@ROWS list may select, all its ranges together")
      ->capture_default_str()
      ->check(CLI::Range(int64_t{1}, int64_t{1} << 40));
  table->add_option("--sort", options->job.sort, "Sort the rows by these keys (see below)")
      ->type_name("KEY,...");
  table
      ->add_option("--category", options->job.category,
                   "Keep the first N sorted rows (default 1) of each category")
      ->type_name("COLUMN[:N]");
  table
      ->add_option("--compress", options->job.compress,
                   "One row per group of equal SEARCH values; repeatable, run in order")
      ->type_name("SEARCH,...:SELECT[:max|min|sum][:later]")
      ->allow_extra_args(false);
  table
      ->add_option("--new", options->job.newColumns,
                   "A computed column: an expression or NUMBER / [COLUMN]; repeatable")
      ->type_name("NAME=EXPRESSION")
      ->allow_extra_args(false);
  table
      ->add_option("--row-index", options->job.rowIndex,
                   "A column numbering the output rows from FIRST (default 1)")
      ->type_name("NAME[=FIRST]");
  table
      ->add_option("--new-status", options->job.newStatus,
                   "The computed column NAME carries COLUMN's status; repeatable")
      ->type_name("NAME=COLUMN")
      ->allow_extra_args(false);
  table
      ->add_option("--div-zero", options->job.divZero,
                   "A computed cell that divides by zero reads VALUE (default: an error)")
      ->type_name("VALUE");
  table
      ->add_option("--log-zero", options->job.logZero,
                   "A computed cell that takes the log of zero reads VALUE (default: an error)")
      ->type_name("VALUE");
  table->add_option("--output,-o", options->output, "Write here instead of standard output");
  table->add_option("--format", options->format, "csv or dump (the table dump format)")
      ->check(CLI::IsMember({"csv", "dump"}))
      ->capture_default_str();
  table->add_flag("--types", options->types, "Write `name:type` headers that read back alike");
  table->add_flag("--quiet,-q", options->quiet,
                  "No progress line (shown on a terminal for work over a second)");
  utilkit::tool::AddSectionsCutOptions(table, &options->sections);
  table->footer(kFooter);
  table->callback([options] {
    if (const int status = RunTable(*options); status != 0) throw CLI::RuntimeError(status);
  });
}
