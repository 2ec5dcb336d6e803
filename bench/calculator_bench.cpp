// VCCalculator over a computed column of 1M rows, '#A# * #B# / 1000 + 1',
// three ways in one run: a plain C++ loop (the floor), block evaluation, and
// row-by-row evaluation through the virtual GetVariableValue. Each reports
// per_row, the time per row: block evaluation should stay within 3x of the
// loop and row-by-row evaluation under 15 ns.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include <utilkit/base/calculator.h>
#include <utilkit/base/error_stack.h>

namespace {

constexpr size_t kRows = 1000000;
constexpr const char* kExpression = "#A# * #B# / 1000 + 1";

struct Columns {
  std::vector<double> a;
  std::vector<double> b;
  std::vector<double> out;
  Columns() : a(kRows), b(kRows), out(kRows) {
    for (size_t i = 0; i < kRows; ++i) {
      a[i] = static_cast<double>(i % 1000) * 0.25;
      b[i] = 100.0 + static_cast<double>(i % 37);
    }
  }
};

const Columns& Data() {
  static const Columns data;
  return data;
}

// The host of the row-by-row case: #A# and #B# read the arrays at `row`.
class ArrayCalculator : public VCCalculator {
 public:
  bool GetVariableId(const char* name, int32_t* id) override {
    if (std::strcmp(name, "#A#") == 0 || std::strcmp(name, "#B#") == 0) {
      *id = name[1] == 'A' ? 0 : 1;
      return true;
    }
    return false;
  }
  bool GetVariableValue(int32_t id, double* value) override {
    *value = columns[id][row];
    return true;
  }
  const double* columns[2] = {};
  size_t row = 0;
};

// Rows per second, and its inverse "per_row": the time per row ("1.2ns").
void ReportRows(benchmark::State& state) {
  const auto rows = static_cast<double>(state.iterations()) * static_cast<double>(kRows);
  state.SetItemsProcessed(static_cast<int64_t>(rows));
  state.counters["per_row"] =
      benchmark::Counter(rows, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_PlainLoop(benchmark::State& state) {
  const Columns& data = Data();
  std::vector<double> out(kRows);
  for (auto _ : state) {
    const double* a = data.a.data();
    const double* b = data.b.data();
    double* o = out.data();
    for (size_t i = 0; i < kRows; ++i) o[i] = a[i] * b[i] / 1000 + 1;
    benchmark::DoNotOptimize(o);
    benchmark::ClobberMemory();
  }
  ReportRows(state);
}

void BM_BlockEvaluation(benchmark::State& state) {
  const Columns& data = Data();
  std::vector<double> out(kRows);
  ArrayCalculator calc;
  if (!calc.SetExpression(kExpression)) {
    state.SkipWithError(VFErrorGetFullString().c_str());
    return;
  }
  const double* columns[] = {data.a.data(), data.b.data()};
  for (auto _ : state) {
    if (!calc.EvaluateBlock(columns, 0, kRows, out.data())) {
      state.SkipWithError(VFErrorGetFullString().c_str());
      return;
    }
    benchmark::ClobberMemory();
  }
  ReportRows(state);
}

void BM_RowByRowEvaluation(benchmark::State& state) {
  const Columns& data = Data();
  std::vector<double> out(kRows);
  ArrayCalculator calc;
  calc.columns[0] = data.a.data();
  calc.columns[1] = data.b.data();
  if (!calc.SetExpression(kExpression)) {
    state.SkipWithError(VFErrorGetFullString().c_str());
    return;
  }
  for (auto _ : state) {
    for (calc.row = 0; calc.row < kRows; ++calc.row) {
      if (!calc.EvaluateExpressionToDouble(&out[calc.row])) {
        state.SkipWithError(VFErrorGetFullString().c_str());
        return;
      }
    }
    benchmark::ClobberMemory();
  }
  ReportRows(state);
}

BENCHMARK(BM_PlainLoop)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BlockEvaluation)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RowByRowEvaluation)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
