// Report library files: saving and loading a library of 100 images of 1 MB
// and 10 tables of 100,000 cells, against base64-encoding the same image
// bytes alone (a plain hand-written encoder), in one run:
//  - BM_SaveLibrary, BM_LoadLibrary: SaveToFile and LoadFromFile; bytes/s
//    counts the image bytes; peak_MB is the process's peak resident memory
//    during the benchmark (Linux: VmHWM after resetting it) and peak_ratio
//    that peak over the library's own size (target: below 3);
//  - BM_Base64Baseline: the same bytes encoded to base64 into one kept block.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

#include <utilkit/library_xml/library_xml.h>

namespace {

constexpr int kImages = 100;
constexpr int kImageBytes = 1 << 20;
constexpr int kTables = 10;
constexpr int kRows = 10000;  // 10 columns: 100,000 cells
const char* const kPath = "library_xml_bench.lxm";

// Resets the peak resident size (Linux); the benchmark then reads it.
void ResetPeak() {
#if defined(__linux__)
  std::ofstream("/proc/self/clear_refs") << "5";
#endif
}

double PeakMegabytes() {
#if defined(__linux__)
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) / 1024.0;
  }
#endif
  return 0;
}

// The image bytes: a PNG header followed by noise.
std::string ImageBytes(std::mt19937& random) {
  std::string bytes("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\x02\x80\0\0\x01\xe0\x08\x02\0\0\0", 29);
  while (bytes.size() < static_cast<size_t>(kImageBytes))
    bytes.push_back(static_cast<char>(random()));
  return bytes;
}

void Fill(VCULibraryXML* library) {
  std::mt19937 random(7);
  auto* page = new VCULibraryXML_Page("Images");
  for (int i = 0; i < kImages; ++i) {
    auto* image = new VCULibraryXML_ItemImage();
    const std::string bytes = ImageBytes(random);
    image->SetData(bytes.data(), kImageBytes);
    page->AppendItem(image);
  }
  library->AppendPage(page);
  page = new VCULibraryXML_Page("Tables");
  VCStringArray row;
  for (int t = 0; t < kTables; ++t) {
    auto* table = new VCULibraryXML_ItemTable();
    for (int c = 0; c < 10; ++c)
      table->AddColumn(("C" + std::to_string(c)).c_str(), VTTableDataType::Double, "");
    for (int r = 0; r < kRows; ++r) {
      row.RemoveAll();
      for (int c = 0; c < 10; ++c) row.Add(VCString(std::to_string(r * 0.125 + c)));
      table->AddRow(row);
    }
    page->AppendItem(table);
  }
  library->AppendPage(page);
}

constexpr double kLibraryMegabytes =
    kImages * (kImageBytes / 1048576.0) + 10.0;  // images + ~10 MB of tables

void Report(benchmark::State& state, double peak) {
  state.SetBytesProcessed(state.iterations() * int64_t{kImages} * kImageBytes);
  state.counters["peak_MB"] = peak;
  state.counters["peak_ratio"] = peak / kLibraryMegabytes;
}

void BM_SaveLibrary(benchmark::State& state) {
  ResetPeak();
  VCULibraryXML library;
  Fill(&library);
  for (auto _ : state) {
    if (!library.SaveToFile(kPath)) state.SkipWithError("save failed");
  }
  Report(state, PeakMegabytes());
}
BENCHMARK(BM_SaveLibrary)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LoadLibrary(benchmark::State& state) {
  {
    VCULibraryXML library;
    Fill(&library);
    library.SaveToFile(kPath);
  }
  ResetPeak();
  for (auto _ : state) {
    VCULibraryXML library;
    if (!library.LoadFromFile(kPath)) state.SkipWithError("load failed");
  }
  Report(state, PeakMegabytes());
  std::remove(kPath);
}
BENCHMARK(BM_LoadLibrary)->Unit(benchmark::kMillisecond)->Iterations(3);

// A plain base64 encoder: one table look-up per character.
void EncodeBase64(const unsigned char* in, size_t size, char* out) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  size_t i = 0;
  for (; i + 3 <= size; i += 3) {
    const uint32_t v = (uint32_t{in[i]} << 16) | (uint32_t{in[i + 1]} << 8) | in[i + 2];
    *out++ = kAlphabet[v >> 18];
    *out++ = kAlphabet[(v >> 12) & 63];
    *out++ = kAlphabet[(v >> 6) & 63];
    *out++ = kAlphabet[v & 63];
  }
}

void BM_Base64Baseline(benchmark::State& state) {
  std::mt19937 random(7);
  std::string images;
  for (int i = 0; i < kImages; ++i) images += ImageBytes(random);
  std::string text(images.size() / 3 * 4 + 4, '\0');
  for (auto _ : state) {
    EncodeBase64(reinterpret_cast<const unsigned char*>(images.data()), images.size(), text.data());
    benchmark::DoNotOptimize(text.data());
  }
  state.SetBytesProcessed(state.iterations() * int64_t{kImages} * kImageBytes);
}
BENCHMARK(BM_Base64Baseline)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
