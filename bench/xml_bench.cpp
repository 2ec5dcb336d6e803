// The XML helper against Xerces-C used directly, on one generated document
// of about 20 MB, and the data buffer against std::string, in one run:
//  - BM_ParseHelper vs BM_ParseXerces: VCUXmlHelper::ParseXml against a
//    XercesDOMParser with the same settings (automatic validation,
//    namespaces and schemas off, HandlerBase error handler); target: within 1.1x;
//  - BM_WriteHelper vs BM_WriteXerces: ConvertNodeTreeToText against
//    DOMLSSerializer writing UTF-8 into memory; target: at most 1.0x;
//  - BM_AppendDataBuffer vs BM_AppendStdString: 16-byte pieces into a kept
//    block; target: within 1.2x. The ...Fresh pair includes growth from empty.
// `xml_bench --memory helper|xerces` instead measures, in a fresh process,
// the peak memory of reading the document from a file and printing it in
// the human-readable layout to /dev/null with the helper, or of parsing the
// file with Xerces-C alone (the baseline); target: within 1.5x.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include <memory>
#include <string>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/xml_helper.h>

namespace {

namespace xc = XERCES_CPP_NAMESPACE;

// Records with attributes, escaped text, nested elements and comments.
const std::string& Document() {
  static const std::string text = [] {
    std::string t = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Measurements>\n";
    for (int i = 0; t.size() < 20u * 1024 * 1024; ++i) {
      const std::string n = std::to_string(i);
      t += "  <Channel id=\"" + n + "\" name=\"Force &amp; torque " + n +
           "\" unit=\"kN\">\n    <Description>Strain gauge " + n +
           " at &lt;bridge&gt; position</Description>\n    <Samples rate=\"1000\">" + n + ".25 " +
           n + ".5 " + n + ".75</Samples>\n    <!-- calibrated -->\n  </Channel>\n";
    }
    return t + "</Measurements>\n";
  }();
  return text;
}

// A Xerces document parsed with the helper's settings, owned by its parser.
std::unique_ptr<xc::XercesDOMParser> ParseWithXerces(xc::HandlerBase& handler) {
  auto parser = std::make_unique<xc::XercesDOMParser>();
  parser->setValidationScheme(xc::XercesDOMParser::Val_Auto);
  parser->setDoNamespaces(false);
  parser->setDoSchema(false);
  parser->setValidationSchemaFullChecking(false);
  parser->setErrorHandler(&handler);
  const std::string& text = Document();
  xc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                               "MemData", false);
  parser->parse(source);
  return parser;
}

void BM_ParseHelper(benchmark::State& state) {
  const std::string& text = Document();
  for (auto _ : state) {
    DOM_Document doc = VCUXmlHelper::ParseXml(text.data(), static_cast<int32_t>(text.size()));
    if (doc.isNull()) state.SkipWithError("parse failed");
    benchmark::DoNotOptimize(doc);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_ParseXerces(benchmark::State& state) {
  xc::XMLPlatformUtils::Initialize();
  xc::HandlerBase handler;
  for (auto _ : state) {
    auto parser = ParseWithXerces(handler);
    benchmark::DoNotOptimize(parser->getDocument());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Document().size()));
  xc::XMLPlatformUtils::Terminate();
}

void BM_WriteHelper(benchmark::State& state) {
  const std::string& text = Document();
  const DOM_Document doc = VCUXmlHelper::ParseXml(text.data(), static_cast<int32_t>(text.size()));
  VCUDataBuffer out;
  for (auto _ : state) {
    if (!VCUXmlHelper::ConvertNodeTreeToText(doc, &out)) state.SkipWithError("write failed");
    benchmark::DoNotOptimize(out.GetBasePtr());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * out.GetSize());
}

void BM_WriteXerces(benchmark::State& state) {
  xc::XMLPlatformUtils::Initialize();
  {
    xc::HandlerBase handler;
    auto parser = ParseWithXerces(handler);
    xc::DOMImplementation* dom = xc::DOMImplementation::getImplementation();
    xc::DOMLSSerializer* serializer = dom->createLSSerializer();
    xc::DOMLSOutput* output = dom->createLSOutput();
    output->setEncoding(reinterpret_cast<const XMLCh*>(u"UTF-8"));
    XMLSize_t written = 0;
    for (auto _ : state) {
      xc::MemBufFormatTarget target(32 * 1024 * 1024);  // no growth: copies would be counted
      output->setByteStream(&target);
      serializer->write(parser->getDocument(), output);
      written = target.getLen();
      benchmark::DoNotOptimize(target.getRawBuffer());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * written));
    output->release();
    serializer->release();
  }
  xc::XMLPlatformUtils::Terminate();
}

constexpr int kPieces = 1 << 20;  // 16 MB in 16-byte pieces
constexpr char kPiece[] = "0123456789abcdef";

// Append cost alone: the buffer keeps its block between iterations
// (Clear and clear keep the capacity), so no page is faulted in.
void BM_AppendDataBuffer(benchmark::State& state) {
  VCUDataBuffer buffer;
  for (auto _ : state) {
    buffer.Clear();
    for (int i = 0; i < kPieces; ++i) buffer.Append(kPiece, 16);
    benchmark::DoNotOptimize(buffer.GetBasePtr());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kPieces * 16);
}

void BM_AppendStdString(benchmark::State& state) {
  std::string buffer;
  for (auto _ : state) {
    buffer.clear();
    for (int i = 0; i < kPieces; ++i) buffer.append(kPiece, 16);
    benchmark::DoNotOptimize(buffer.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kPieces * 16);
}

// With growth from empty each time (fresh memory: page faults weigh in).
void BM_AppendDataBufferFresh(benchmark::State& state) {
  for (auto _ : state) {
    VCUDataBuffer buffer;
    for (int i = 0; i < kPieces; ++i) buffer.Append(kPiece, 16);
    benchmark::DoNotOptimize(buffer.GetBasePtr());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kPieces * 16);
}

void BM_AppendStdStringFresh(benchmark::State& state) {
  for (auto _ : state) {
    std::string buffer;
    for (int i = 0; i < kPieces; ++i) buffer.append(kPiece, 16);
    benchmark::DoNotOptimize(buffer.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kPieces * 16);
}

}  // namespace

BENCHMARK(BM_ParseHelper)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseXerces)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteHelper)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteXerces)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AppendDataBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AppendStdString)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AppendDataBufferFresh)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AppendStdStringFresh)->Unit(benchmark::kMillisecond);

// Peak resident memory of this process so far, KiB (Linux).
long PeakKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// The document in a temporary file, read back by one of the two readers.
int MeasureMemory(const char* what) {
  const std::string path = "/tmp/utilkit_xml_bench.xml";
  // A child writes the file, so that this process never holds the text.
  if (const pid_t child = fork(); child == 0) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    const bool written =
        file && std::fwrite(Document().data(), 1, Document().size(), file) == Document().size();
    _exit(file && std::fclose(file) == 0 && written ? 0 : 1);
  } else if (int status = 1; child < 0 || waitpid(child, &status, 0) != child || status != 0) {
    return 1;
  }
  struct stat info {};
  stat(path.c_str(), &info);
  const double size = static_cast<double>(info.st_size);
  const long before = PeakKiB();
  bool ok = false;
  if (std::strcmp(what, "xerces") == 0) {
    xc::XMLPlatformUtils::Initialize();
    {
      xc::HandlerBase handler;
      xc::XercesDOMParser parser;
      parser.setErrorHandler(&handler);
      parser.parse(path.c_str());
      ok = parser.getDocument() != nullptr && parser.getErrorCount() == 0;
    }
    xc::XMLPlatformUtils::Terminate();
  } else {
    const DOM_Document document = VCUXmlHelper::ParseXmlFromFile(path.c_str());
    std::FILE* sink = std::fopen("/dev/null", "wb");
    ok = !document.isNull() && sink != nullptr &&
         VCUXmlHelper::WriteNodeTreeToStream(document, sink, true);
    if (sink) std::fclose(sink);
  }
  std::remove(path.c_str());
  const double mib = static_cast<double>(PeakKiB() - before) / 1024.0;
  std::printf("%s: %.1f MB document, peak growth %.1f MiB\n",
              std::strcmp(what, "xerces") == 0 ? "Xerces-C parse alone" : "helper read and print",
              size / 1e6, mib);
  return ok ? 0 : 1;
}

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], "--memory") == 0) return MeasureMemory(argv[2]);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
