// The table processor on 10 million rows from two memory tables of 5
// million rows each, against hand-written loops over the same doubles:
// - bulk GetValues_D of a whole column through the merged view and through
//   the output view, against a plain loop copying the doubles;
// - Process with one basic filter (X > 0.5) and with an AND of two
//   (X > 0.5 AND Y < 0.25), against a branch-free loop that collects the
//   numbers of the passing rows.
// Each reports per_row, the time per row; the targets are at most 3x the
// hand-written loop for the views and for Process.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_filter_and.h>
#include <utilkit/table/table_filter_basic.h>
#include <utilkit/table/table_processor.h>

namespace {

constexpr int32_t kRowsPerTable = 5000000;
constexpr int64_t kRows = 2 * int64_t{kRowsPerTable};

struct Inputs {
  std::vector<double> x[2];
  std::vector<double> y[2];
  VCUTableMemory tables[2] = {VCUTableMemory("first"), VCUTableMemory("second")};

  Inputs() {
    uint64_t seed = 12345;
    auto next = [&seed] {
      seed = seed * 6364136223846793005u + 1442695040888963407u;
      return static_cast<double>(seed >> 11) / 9007199254740992.0;
    };
    for (int t = 0; t < 2; ++t) {
      x[t].resize(kRowsPerTable);
      y[t].resize(kRowsPerTable);
      for (auto& v : x[t]) v = next();
      for (auto& v : y[t]) v = next();
      tables[t].AddCol("X", kRowsPerTable, x[t].data());
      tables[t].AddCol("Y", kRowsPerTable, y[t].data());
      tables[t].SetNumRows(kRowsPerTable);
    }
  }
};

Inputs& Data() {
  static Inputs data;
  return data;
}

// A processor over both tables with output columns X and Y.
std::unique_ptr<VCUTableProcessor> MakeProcessor() {
  auto processor = std::make_unique<VCUTableProcessor>();
  processor->AddInputTable(&Data().tables[0]);
  processor->AddInputTable(&Data().tables[1]);
  processor->AddOutputColumn("X");
  processor->AddOutputColumn("Y");
  return processor;
}

VCUTableFilterBasic* Compare(const char* column, VTTableFilterCompare compare, double value) {
  auto* filter = new VCUTableFilterBasic;
  filter->SetColumnKeyword(column);
  filter->SetCompare(compare);
  filter->SetCompareValue(VCVariant(value));
  return filter;
}

void ReportRows(benchmark::State& state) {
  const auto rows = static_cast<double>(state.iterations()) * static_cast<double>(kRows);
  state.counters["per_row"] =
      benchmark::Counter(rows, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_CopyLoop(benchmark::State& state) {
  Inputs& data = Data();
  std::vector<double> out(kRows);
  for (auto _ : state) {
    double* to = out.data();
    for (const auto& column : data.x) {
      for (double v : column) *to++ = v;
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  ReportRows(state);
}

void BM_MergedGetValuesD(benchmark::State& state) {
  auto processor = MakeProcessor();
  processor->Process();
  std::vector<double> out(kRows);
  for (auto _ : state) {
    if (!processor->GetInputData()->GetValues_D(0, 1, kRows, out.data())) {
      state.SkipWithError("GetValues_D failed");
    }
    benchmark::DoNotOptimize(out.data());
  }
  ReportRows(state);
}

void BM_OutputGetValuesD(benchmark::State& state) {
  auto processor = MakeProcessor();
  processor->Process();
  std::vector<double> out(kRows);
  for (auto _ : state) {
    if (!processor->GetOutputTable()->GetValues_D(0, 1, kRows, out.data())) {
      state.SkipWithError("GetValues_D failed");
    }
    benchmark::DoNotOptimize(out.data());
  }
  ReportRows(state);
}

// Collects the merged row numbers (1-based) of the rows that pass `test`,
// without a branch per row (as fast as a plain loop gets on random data).
template <class Test>
void HandFilter(benchmark::State& state, Test&& test) {
  Inputs& data = Data();
  std::vector<int32_t> rows(kRows);
  for (auto _ : state) {
    int32_t merged = 0;
    int64_t kept = 0;
    for (int t = 0; t < 2; ++t) {
      const double* x = data.x[t].data();
      const double* y = data.y[t].data();
      for (int32_t i = 0; i < kRowsPerTable; ++i) {
        rows[static_cast<size_t>(kept)] = ++merged;
        kept += test(x[i], y[i]) ? 1 : 0;
      }
    }
    benchmark::DoNotOptimize(rows.data());
    benchmark::DoNotOptimize(kept);
  }
  ReportRows(state);
}

void BM_HandFilterBasic(benchmark::State& state) {
  HandFilter(state, [](double x, double) { return x > 0.5; });
}

void BM_HandFilterAnd(benchmark::State& state) {
  HandFilter(state, [](double x, double y) { return (x > 0.5) & (y < 0.25); });
}

void RunProcess(benchmark::State& state, VCUTableFilter* filter) {
  auto processor = MakeProcessor();
  processor->SetFilter(filter);
  for (auto _ : state) {
    if (!processor->Process()) state.SkipWithError("Process failed");
  }
  ReportRows(state);
}

// Process without a filter: the cost of validating and numbering the rows.
void BM_ProcessNone(benchmark::State& state) {
  RunProcess(state, nullptr);
}

void BM_ProcessBasic(benchmark::State& state) {
  std::unique_ptr<VCUTableFilter> filter(Compare("X", VTTableFilterCompare::GreaterThan, 0.5));
  RunProcess(state, filter.get());
}

void BM_ProcessAnd(benchmark::State& state) {
  auto filter = std::make_unique<VCUTableFilterAND>();
  filter->SetFilters(Compare("X", VTTableFilterCompare::GreaterThan, 0.5),
                     Compare("Y", VTTableFilterCompare::LessThan, 0.25));
  RunProcess(state, filter.get());
}

BENCHMARK(BM_CopyLoop)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MergedGetValuesD)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OutputGetValuesD)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProcessNone)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandFilterBasic)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProcessBasic)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandFilterAnd)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProcessAnd)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
