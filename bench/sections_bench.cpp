// Cutting a table of 10 million rows (a Double time column, 10 kHz for
// 1000 s) to the 10,000 sections of one channel with
// VCUSections::GetTableRows, against a hand-written loop over the same
// times and the same sorted section bounds that collects the row numbers
// in a std::vector (grown by push_back). Each reports per_row, the time per row; the target is
// the loop's time divided by the library's of at least 0.8.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include <utilkit/sections/sections.h>
#include <utilkit/table/memory_table.h>

namespace {

constexpr int32_t kRows = 10000000;
constexpr int32_t kSections = 10000;
constexpr double kRate = 10000.0;

struct Inputs {
  std::vector<double> times;
  std::vector<double> starts, ends;  // sorted, disjoint: the loop's own copy
  VCUSections sections;
  VCUTableMemory table{"signal"};

  Inputs() {
    times.resize(kRows);
    for (int32_t i = 0; i < kRows; ++i) times[static_cast<size_t>(i)] = i / kRate;
    uint64_t seed = 12345;
    const double slot = kRows / kRate / kSections;  // one section in each slot of 0.1 s
    for (int32_t i = 0; i < kSections; ++i) {
      seed = seed * 6364136223846793005u + 1442695040888963407u;
      const double offset = static_cast<double>(seed >> 11) / 9007199254740992.0 * slot / 2;
      starts.push_back(i * slot + offset);
      ends.push_back(starts.back() + slot / 4);
      sections.AddTime(1, starts.back(), ends.back());
      sections.AddTime(2, starts.back(), ends.back() + slot / 8);  // another channel's
    }
    table.AddCol("Time", kRows, times.data());
    table.SetNumRows(kRows);
  }
};

Inputs& Data() {
  static Inputs data;
  return data;
}

// per_row, and the rows kept (equal in both cases).
void Report(benchmark::State& state, size_t kept) {
  state.counters["kept"] = static_cast<double>(kept);
  state.counters["per_row"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kRows,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_SectionsCut(benchmark::State& state) {
  Inputs& data = Data();
  size_t kept = 0;
  for (auto _ : state) {
    VCArray<int64_t> rows;
    if (!data.sections.GetTableRows(&data.table, 1, 0, &rows)) state.SkipWithError("cut failed");
    benchmark::DoNotOptimize(rows.GetData());
    kept = static_cast<size_t>(rows.GetSize());
  }
  Report(state, kept);
}

void BM_HandLoop(benchmark::State& state) {
  const Inputs& data = Data();
  size_t kept = 0;
  for (auto _ : state) {
    std::vector<int64_t> rows;
    size_t k = 0;
    for (size_t i = 0; i < data.times.size(); ++i) {
      const double t = data.times[i];
      while (k < data.ends.size() && data.ends[k] < t) ++k;
      if (k < data.ends.size() && data.starts[k] <= t) rows.push_back(static_cast<int64_t>(i) + 1);
    }
    benchmark::DoNotOptimize(rows.data());
    kept = rows.size();
  }
  Report(state, kept);
}

BENCHMARK(BM_SectionsCut)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandLoop)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
