// The table command's CSV reader and writer on 1 and 10 million rows
// (Channel 0..999, Time and Peak doubles, Name of 5,000 distinct mixed-case
// texts, Flag 0/1; about 36 bytes a row), against hand-written loops doing
// the same work in the same run:
// - Read: the CSV text into a typed memory table (types inferred, names
//   pooled), against a loop splitting at commas and line ends with
//   std::from_chars into vectors of the known types and the names into a
//   hash map;
// - Write: the table as CSV into a stream that drops the bytes, against a
//   loop formatting the same vectors with std::to_chars into one buffer.
// Each reports the rate in bytes of CSV a second (target: 300 MB/s both).
// The 10 million row case is the target size; run it with
//   table_csv_bench --benchmark_filter=/10000000
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <utilkit/base/dictionary.h>
#include <utilkit/table/memory_table.h>

#include "table_csv.h"

namespace {

struct Workload {
  int64_t rows;
  std::vector<int32_t> channel;
  std::vector<double> time, peak;
  std::vector<int32_t> flag;
  std::vector<std::string> names;
  std::vector<int32_t> name;
  std::string csv;

  explicit Workload(int64_t n) : rows(n) {
    uint64_t seed = 42;
    auto next = [&seed] {
      seed = seed * 6364136223846793005u + 1442695040888963407u;
      return seed >> 11;
    };
    for (int32_t i = 0; i < 5000; ++i) {
      std::string text = "gauge" + std::to_string(next() % 100000);
      for (char& c : text) c = (next() % 2 && c >= 'a') ? static_cast<char>(c - 32) : c;
      names.push_back(text);
    }
    for (int64_t i = 0; i < n; ++i) {
      channel.push_back(static_cast<int32_t>(next() % 1000));
      time.push_back(static_cast<double>(next() % 1000000) / 100);
      peak.push_back(static_cast<double>(next() % 1000003) / 7);
      name.push_back(static_cast<int32_t>(next() % 5000));
      flag.push_back(static_cast<int32_t>(next() % 2));
    }
    csv = "Channel,Time,Peak,Name,Flag\n";
    Format(&csv, 0, n);
  }

  // Appends rows first..first+n-1 as CSV records (the hand-written writer).
  void Format(std::string* out, int64_t first, int64_t n) const {
    char cell[32];
    auto number = [&](auto value, char end) {
      const auto r = std::to_chars(cell, cell + sizeof cell, value);
      out->append(cell, static_cast<size_t>(r.ptr - cell)).push_back(end);
    };
    for (int64_t i = first; i < first + n; ++i) {
      const auto r = static_cast<size_t>(i);
      number(channel[r], ',');
      number(time[r], ',');
      number(peak[r], ',');
      out->append(names[static_cast<size_t>(name[r])]).push_back(',');
      number(flag[r], '\n');
    }
  }
};

Workload& Data(int64_t rows) {
  static std::unique_ptr<Workload> current;
  if (!current || current->rows != rows) {
    current.reset();
    current = std::make_unique<Workload>(rows);
  }
  return *current;
}

// A stream that counts and drops what is written.
class DropBuffer : public std::streambuf {
 protected:
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

void Read(benchmark::State& state) {
  const Workload& w = Data(state.range(0));
  for (auto _ : state) {
    VCUDictionary texts;
    VCUTableMemory table("bench");
    std::string error;
    if (!utilkit::tool::CsvToMemoryTable(w.csv, "bench", &table, &texts, &error)) {
      state.SkipWithError(error.c_str());
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(w.csv.size()));
}

void ReadBaseline(benchmark::State& state) {
  const Workload& w = Data(state.range(0));
  for (auto _ : state) {
    std::vector<int32_t> channel, flag, name;
    std::vector<double> time, peak;
    std::unordered_map<std::string_view, int32_t> pool;
    const char* p = w.csv.data() + w.csv.find('\n') + 1;
    const char* end = w.csv.data() + w.csv.size();
    auto field = [&]() {
      const char* start = p;
      while (p < end && *p != ',' && *p != '\n') ++p;
      return std::string_view(start, static_cast<size_t>(p++ - start));
    };
    auto number = [](std::string_view f, auto* values) {
      typename std::remove_pointer_t<decltype(values)>::value_type v{};
      std::from_chars(f.data(), f.data() + f.size(), v);
      values->push_back(v);
    };
    while (p < end) {
      number(field(), &channel);
      number(field(), &time);
      number(field(), &peak);
      name.push_back(pool.try_emplace(field(), static_cast<int32_t>(pool.size())).first->second);
      number(field(), &flag);
    }
    benchmark::DoNotOptimize(name.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(w.csv.size()));
}

void Write(benchmark::State& state) {
  const Workload& w = Data(state.range(0));
  VCUDictionary texts;
  VCUTableMemory table("bench");
  std::string error;
  if (!utilkit::tool::CsvToMemoryTable(w.csv, "bench", &table, &texts, &error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  DropBuffer drop;
  std::ostream out(&drop);
  for (auto _ : state) {
    if (!utilkit::tool::WriteTableCsv(table, false, out, &error)) state.SkipWithError("failed");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(w.csv.size()));
}

void WriteBaseline(benchmark::State& state) {
  const Workload& w = Data(state.range(0));
  DropBuffer drop;
  std::ostream out(&drop);
  std::string buffer;
  for (auto _ : state) {
    buffer = "Channel,Time,Peak,Name,Flag\n";
    for (int64_t first = 0; first < w.rows; first += 4096) {
      w.Format(&buffer, first, std::min<int64_t>(4096, w.rows - first));
      if (buffer.size() >= (1 << 20)) {
        out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        buffer.clear();
      }
    }
    out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(w.csv.size()));
}

}  // namespace

int main(int argc, char** argv) {
  const std::pair<const char*, void (*)(benchmark::State&)> cases[] = {
      {"Read", Read},
      {"ReadBaseline", ReadBaseline},
      {"Write", Write},
      {"WriteBaseline", WriteBaseline},
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
