// The table operations on 1 and 10 million rows of one memory table
// (Channel Long 0..999, Time Double, Peak Double, Name Text of about 5,000
// distinct mixed-case values, Flag Short 0/1), each run as a user runs it,
// through VCUTableProcessor::Process, against a hand-written single-threaded
// loop doing the same work in the same run:
// - Sort: Name ascending without case, then Time descending (stable),
//   against std::sort of row positions by the ranks of the upper-cased
//   names, Time and position. Its counters give the peak memory that
//   Process took on top of what was resident before (Linux), and that peak
//   against the size of the two key columns (8 bytes a cell each).
// Each Process is timed after one untimed run of the same processor (the
// first run also pays for its output row list's fresh memory, about 0.1 s
// at 10 million rows here; the sort's own work memory is fresh every run).
// - CompressMax: the row of largest Peak per Channel, against one pass
//   keeping the best row per channel;
// - CompressSum: Peak summed per (Channel, Flag) into each group's first
//   row, against one pass of sums per group;
// - Computed: "#Peak# * #Time# / 1000 + 1" read in full through the output
//   table into a buffer, against the plain loop;
// - FilterReadBack: Process with "Peak > 71428" (about half the rows, in
//   short runs), then every output column read back in blocks (the names
//   as texts), against a loop collecting the passing rows and gathering
//   each column into buffers;
// - SortReadBack: the Sort above, then every output column read back,
//   against SortBaseline's rank and sort followed by the same gather.
// The 10 million row case is the target size; run it with
//   table_ops_bench --benchmark_filter=/10000000/
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <utilkit/base/dictionary.h>
#include <utilkit/table/memory_table.h>
#include <utilkit/table/table_compress.h>
#include <utilkit/table/table_filter_basic.h>
#include <utilkit/table/table_new_column.h>
#include <utilkit/table/table_processor.h>
#include <utilkit/table/table_sort.h>

namespace {

constexpr int32_t kNames = 5000;
constexpr int32_t kChannels = 1000;

struct Workload {
  int32_t rows;
  std::vector<int32_t> channel;
  std::vector<double> time, peak;
  std::vector<int16_t> flag;
  VCUDictionary names;
  std::vector<VCUDictionaryRef*> name;
  VCUTableMemory table{"Tests"};

  explicit Workload(int32_t n) : rows(n) {
    uint64_t seed = 42;
    auto next = [&seed] {
      seed = seed * 6364136223846793005u + 1442695040888963407u;
      return seed >> 11;
    };
    std::vector<VCUDictionaryRef*> pool;
    for (int32_t i = 0; i < kNames; ++i) {
      std::string text = "Gauge" + std::to_string(next() % 100000);
      for (char& c : text) {
        if (next() % 2) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      }
      pool.push_back(names.InsertString(text));
    }
    channel.resize(n);
    time.resize(n);
    peak.resize(n);
    flag.resize(n);
    name.resize(n);
    for (int32_t i = 0; i < n; ++i) {
      channel[i] = static_cast<int32_t>(next() % kChannels);
      time[i] = static_cast<double>(next() % 1000000) / 100;
      peak[i] = static_cast<double>(next() % 1000003) / 7;
      flag[i] = static_cast<int16_t>(next() % 2);
      name[i] = pool[next() % kNames];
    }
    table.AddCol("Channel", n, channel.data());
    table.AddCol("Time", n, time.data());
    table.AddCol("Peak", n, peak.data());
    table.AddCol("Name", n, name.data(), names);
    table.AddCol("Flag", n, flag.data());
    table.SetNumRows(n);
  }
};

// The workload of `rows` rows; one is kept at a time.
Workload& Data(int64_t rows) {
  static std::unique_ptr<Workload> current;
  if (!current || current->rows != rows) {
    current.reset();
    current = std::make_unique<Workload>(static_cast<int32_t>(rows));
  }
  return *current;
}

// A resident-memory figure of this process from /proc/self/status ("VmRSS",
// "VmHWM"), in bytes; 0 where there is none.
int64_t MemoryFigure(const std::string& name) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind(name + ":", 0) == 0) return std::stoll(line.substr(name.size() + 1)) * 1024;
  }
  return 0;
}

// Starts measuring the peak resident memory anew (Linux: clear_refs 5).
void ResetPeakMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

// A processor over the workload's table showing `columns`.
struct Job {
  VCUTableProcessor processor;
  Job(Workload& w, std::initializer_list<const char*> columns) {
    processor.AddInputTable(&w.table);
    for (const char* column : columns) processor.AddOutputColumn(column);
  }
  // One untimed Process first: the first run of a processor also pays for
  // its output row list's fresh memory, which later runs reuse.
  void Run(benchmark::State& state) {
    if (!processor.Process()) state.SkipWithError("Process failed");
    for (auto _ : state) {
      if (!processor.Process()) state.SkipWithError("Process failed");
    }
  }
};

void Sort(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  VCUTableSort sort;
  sort.AddColumn("Name", 1, 0);
  sort.AddColumn("Time", 0, 1);
  Job job(w, {"Name", "Time"});
  job.processor.SetSort(&sort);
  const int64_t before = MemoryFigure("VmRSS");
  ResetPeakMemory();
  job.Run(state);
  const double peak = static_cast<double>(MemoryFigure("VmHWM") - before);
  const double keyBytes = static_cast<double>(w.rows) * 16;
  state.counters["peak_MB"] = peak / 1e6;
  state.counters["peak_per_key_bytes"] = peak / keyBytes;
}

// The hand-written stable sort: positions by name rank, Time descending.
std::vector<int32_t> HandSort(Workload& w) {
  std::vector<std::pair<std::string, VCUDictionaryRef*>> distinct;
  for (auto* r = w.names.GetFirstString(); r; r = w.names.GetNextString(r)) {
    std::string upper = w.names.GetString(r);
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    distinct.emplace_back(std::move(upper), r);
  }
  std::sort(distinct.begin(), distinct.end());
  std::unordered_map<VCUDictionaryRef*, int32_t> rankOf;
  for (size_t i = 0, rank = 0; i < distinct.size(); ++i) {
    if (i > 0 && distinct[i].first != distinct[i - 1].first) ++rank;
    rankOf[distinct[i].second] = static_cast<int32_t>(rank);
  }
  std::vector<int32_t> rank(w.rows), order(w.rows);
  for (int32_t i = 0; i < w.rows; ++i) rank[i] = rankOf[w.name[i]], order[i] = i;
  std::sort(order.begin(), order.end(), [&](int32_t a, int32_t b) {
    if (rank[a] != rank[b]) return rank[a] < rank[b];
    if (w.time[a] != w.time[b]) return w.time[a] > w.time[b];
    return a < b;
  });
  return order;
}

void SortBaseline(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  for (auto _ : state) {
    std::vector<int32_t> order = HandSort(w);
    benchmark::DoNotOptimize(order.data());
  }
}

// Every column of `table` (the workload's five) read in blocks, as a
// writer would.
struct ReadBack {
  std::vector<int32_t> channel;
  std::vector<double> time, peak;
  std::vector<int16_t> flag;
  VCStringArray name;

  bool Run(VCUTable& table) {
    constexpr int64_t kBlock = 65536;
    int64_t rows = 0;
    table.GetNumRows(&rows);
    channel.resize(kBlock), time.resize(kBlock), peak.resize(kBlock), flag.resize(kBlock);
    for (int64_t first = 1; first <= rows; first += kBlock) {
      const int64_t n = std::min(kBlock, rows - first + 1);
      if (!table.GetValues_L(0, first, n, channel.data()) ||
          !table.GetValues_D(1, first, n, time.data()) ||
          !table.GetValues_D(2, first, n, peak.data()) || !table.GetValues_T(3, first, n, &name) ||
          !table.GetValues_S(4, first, n, flag.data())) {
        return false;
      }
    }
    return true;
  }
};

// The hand-written gather of rows `order` of every column into buffers.
void Gather(const Workload& w, const std::vector<int32_t>& order, ReadBack* out,
            std::vector<std::string>* names) {
  const size_t n = order.size();
  out->channel.resize(n), out->time.resize(n), out->peak.resize(n), out->flag.resize(n);
  names->resize(n);
  for (size_t i = 0; i < n; ++i) {
    const int32_t r = order[i];
    out->channel[i] = w.channel[r];
    out->time[i] = w.time[r];
    out->peak[i] = w.peak[r];
    out->flag[i] = w.flag[r];
    (*names)[i] = w.names.GetString(w.name[r]);
  }
  benchmark::DoNotOptimize(names->data());
}

void FilterReadBack(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  VCUTableFilterBasic filter;
  filter.SetColumnKeyword("Peak");
  filter.SetCompare(VTTableFilterCompare::GreaterThan);
  filter.SetCompareValue(VCVariant(71428.0));
  Job job(w, {"Channel", "Time", "Peak", "Name", "Flag"});
  job.processor.SetFilter(&filter);
  ReadBack back;
  for (auto _ : state) {
    if (!job.processor.Process() || !back.Run(*job.processor.GetOutputTable())) {
      state.SkipWithError("failed");
    }
  }
}

void FilterReadBackBaseline(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  ReadBack back;
  std::vector<std::string> names;
  std::vector<int32_t> passed;
  for (auto _ : state) {
    passed.clear();
    for (int32_t i = 0; i < w.rows; ++i) {
      if (w.peak[i] > 71428.0) passed.push_back(i);
    }
    Gather(w, passed, &back, &names);
  }
}

void SortReadBack(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  VCUTableSort sort;
  sort.AddColumn("Name", 1, 0);
  sort.AddColumn("Time", 0, 1);
  Job job(w, {"Channel", "Time", "Peak", "Name", "Flag"});
  job.processor.SetSort(&sort);
  ReadBack back;
  for (auto _ : state) {
    if (!job.processor.Process() || !back.Run(*job.processor.GetOutputTable())) {
      state.SkipWithError("failed");
    }
  }
}

void SortReadBackBaseline(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  ReadBack back;
  std::vector<std::string> names;
  for (auto _ : state) Gather(w, HandSort(w), &back, &names);
}

void RunCompress(benchmark::State& state, VTCompressType type, bool byFlag) {
  Workload& w = Data(state.range(0));
  VCUTableCompress compress(0);
  compress.AddSearchColumn("Channel");
  if (byFlag) compress.AddSearchColumn("Flag");
  compress.SetSelectColumn("Peak");
  compress.SetSelectType(type);
  Job job(w, {"Channel", "Peak"});
  job.processor.AddCompress(&compress);
  job.Run(state);
}

void CompressMax(benchmark::State& state) {
  RunCompress(state, VTCompressType::Maximum, false);
}

void CompressMaxBaseline(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  for (auto _ : state) {
    std::vector<int32_t> best(kChannels, -1);
    for (int32_t i = 0; i < w.rows; ++i) {
      int32_t& b = best[w.channel[i]];
      if (b < 0 || w.peak[i] > w.peak[b]) b = i;
    }
    std::sort(best.begin(), best.end());
    benchmark::DoNotOptimize(best.data());
  }
}

void CompressSum(benchmark::State& state) {
  RunCompress(state, VTCompressType::Sum, true);
}

void CompressSumBaseline(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  for (auto _ : state) {
    std::vector<int32_t> first(2 * kChannels, -1);
    std::vector<double> sum(2 * kChannels, 0.0);
    for (int32_t i = 0; i < w.rows; ++i) {
      const int32_t g = w.channel[i] * 2 + w.flag[i];
      if (first[g] < 0) first[g] = i;
      sum[g] += w.peak[i];
    }
    benchmark::DoNotOptimize(sum.data());
  }
}

void Computed(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  VCUTableNewColumn column;
  column.SetKeyword("Energy");
  column.SetExpression("#Peak# * #Time# / 1000 + 1");
  VCUTableProcessor processor;
  processor.AddInputTable(&w.table);
  processor.AddOutputColumn(&column);
  if (!processor.Process()) state.SkipWithError("Process failed");
  VCUTable* output = processor.GetOutputTable();
  std::vector<double> out(w.rows);
  for (auto _ : state) {
    if (!output->GetValues_D(0, 1, w.rows, out.data())) state.SkipWithError("read failed");
  }
}

void ComputedBaseline(benchmark::State& state) {
  Workload& w = Data(state.range(0));
  std::vector<double> out(w.rows);
  for (auto _ : state) {
    for (int32_t i = 0; i < w.rows; ++i) out[i] = w.peak[i] * w.time[i] / 1000 + 1;
    benchmark::DoNotOptimize(out.data());
  }
}

}  // namespace

// Every operation and its baseline on 1 million rows, then on 10 million,
// so that each workload is built once.
int main(int argc, char** argv) {
  const std::pair<const char*, void (*)(benchmark::State&)> cases[] = {
      {"Sort", Sort},
      {"SortBaseline", SortBaseline},
      {"CompressMax", CompressMax},
      {"CompressMaxBaseline", CompressMaxBaseline},
      {"CompressSum", CompressSum},
      {"CompressSumBaseline", CompressSumBaseline},
      {"Computed", Computed},
      {"ComputedBaseline", ComputedBaseline},
      {"FilterReadBack", FilterReadBack},
      {"FilterReadBackBaseline", FilterReadBackBaseline},
      {"SortReadBack", SortReadBack},
      {"SortReadBackBaseline", SortReadBackBaseline},
  };
  for (int64_t rows : {1000000, 10000000}) {
    for (const auto& [name, run] : cases) {
      benchmark::RegisterBenchmark(name, run)
          ->Arg(rows)
          ->Unit(benchmark::kMillisecond)
          ->Iterations(3);
    }
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
