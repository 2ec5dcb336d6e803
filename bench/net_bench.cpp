// Socket I/O over loopback against plain blocking send/recv, in one run:
//  - BM_RoundTripNull vs BM_RoundTripPlain: request/response round trips of
//    a 64-byte zero-terminated text with VCUSocketIONull (PutData, GetData)
//    against a blocking send/recv loop, both against the same plain echo
//    peer; target: at least 0.8x the plain rate;
//  - BM_XmlGetData vs BM_PlainReceive: one 50 MB XML document received and
//    parsed by VCUSocketIOXml::GetData against a plain recv of the same
//    bytes; BM_XmlParseOnly parses the same text without a socket, so the
//    transfer's own share is GetData minus the parse; target: transfer at
//    least 0.8x the plain rate.
// `net_bench --memory xml|parse|stream` instead measures peak memory in a fresh
// process with the peer in a child process: receiving and parsing the 50 MB
// document (target: under 4x its size), or a peer streaming 1 GB without a
// terminator, refused at the 64 MiB limit (target: under twice the limit).
#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/client_socket.h>
#include <utilkit/net/server_socket.h>
#include <utilkit/net/socket_io_null.h>
#include <utilkit/net/socket_io_xml.h>
#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/xml_helper.h>

namespace {

constexpr size_t kDocumentBytes = 50u * 1000 * 1000;

// A plain listening socket on 127.0.0.1 with a free port.
int PlainListen(int* port) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof a;
  if (bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0 || listen(fd, 4) != 0 ||
      getsockname(fd, reinterpret_cast<sockaddr*>(&a), &length) != 0) {
    std::perror("listen");
    std::exit(1);
  }
  *port = ntohs(a.sin_port);
  return fd;
}

int PlainConnect(int port) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  a.sin_port = htons(static_cast<uint16_t>(port));
  if (connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0) {
    std::perror("connect");
    std::exit(1);
  }
  return fd;
}

void SendAll(int fd, const char* data, size_t length) {
  while (length > 0) {
    const ssize_t n = send(fd, data, length, MSG_NOSIGNAL);
    if (n <= 0) return;
    data += n;
    length -= static_cast<size_t>(n);
  }
}

// The plain echo peer: answers every zero-terminated message with itself.
void Echo(int listener) {
  const int fd = accept(listener, nullptr, nullptr);
  std::vector<char> message;
  char buffer[4096];
  for (;;) {
    const ssize_t n = recv(fd, buffer, sizeof buffer, 0);
    if (n <= 0) break;
    message.insert(message.end(), buffer, buffer + n);
    if (message.back() == 0) {
      SendAll(fd, message.data(), message.size());
      message.clear();
    }
  }
  close(fd);
}

const std::string kRequest(63, 'r');

void BM_RoundTripNull(benchmark::State& state) {
  int port = 0;
  const int listener = PlainListen(&port);
  std::thread peer(Echo, listener);
  VCUClientSocket client;
  VCUSocketIONull io;
  if (!client.Connect("127.0.0.1", port, 5, &io)) state.SkipWithError("connect");
  VCUDataBuffer answer;
  int sent = 0;
  for (auto _ : state) {
    if (!io.PutData(kRequest.c_str(), 5, &sent) || !io.GetData(&answer, 5)) {
      state.SkipWithError("round trip");
      break;
    }
  }
  io.CloseConnection();
  peer.join();
  close(listener);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RoundTripNull)->UseRealTime();

void BM_RoundTripPlain(benchmark::State& state) {
  int port = 0;
  const int listener = PlainListen(&port);
  std::thread peer(Echo, listener);
  const int fd = PlainConnect(port);
  char buffer[10000];
  for (auto _ : state) {
    SendAll(fd, kRequest.c_str(), kRequest.size() + 1);
    size_t got = 0;
    do {
      const ssize_t n = recv(fd, buffer, sizeof buffer, 0);
      if (n <= 0) break;
      got += static_cast<size_t>(n);
    } while (buffer[0] == 0 || got < kRequest.size() + 1);
  }
  close(fd);
  peer.join();
  close(listener);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RoundTripPlain)->UseRealTime();

// About 50 MB of channel records under the root "Reply".
const std::string& Document() {
  static const std::string text = [] {
    std::string t = "<?xml version=\"1.0\"?>\n<Reply>\n";
    for (int i = 0; t.size() < kDocumentBytes; ++i) {
      const std::string n = std::to_string(i);
      t += "  <Channel id=\"" + n + "\" unit=\"kN\"><Name>Strain gauge " + n + "</Name><Samples>" +
           n + ".25 " + n + ".5 " + n + ".75</Samples></Channel>\n";
    }
    return t + "</Reply>\n";
  }();
  return text;
}

// A peer thread that connects to `port` and sends the document once.
std::thread SendDocument(int port) {
  return std::thread([port] {
    const int fd = PlainConnect(port);
    SendAll(fd, Document().data(), Document().size());
    close(fd);
  });
}

void BM_XmlGetData(benchmark::State& state) {
  VCUServerSocket server;
  server.Listen(0, "127.0.0.1");
  for (auto _ : state) {
    std::thread peer = SendDocument(server.GetPort());
    VCUSocketIOXml io;
    DOM_Document document;
    if (!server.Accept(5, &io) || !io.GetData("Reply", &document, 5)) {
      state.SkipWithError("GetData");
    }
    peer.join();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Document().size()));
}
BENCHMARK(BM_XmlGetData)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PlainReceive(benchmark::State& state) {
  int port = 0;
  const int listener = PlainListen(&port);
  std::vector<char> received(Document().size());
  for (auto _ : state) {
    std::thread peer = SendDocument(port);
    const int fd = accept(listener, nullptr, nullptr);
    size_t got = 0;
    for (ssize_t n; got < received.size() &&
                    (n = recv(fd, received.data() + got, received.size() - got, 0)) > 0;) {
      got += static_cast<size_t>(n);
    }
    close(fd);
    peer.join();
  }
  close(listener);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Document().size()));
}
BENCHMARK(BM_PlainReceive)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_XmlParseOnly(benchmark::State& state) {
  for (auto _ : state) {
    const DOM_Document document =
        VCUXmlHelper::ParseXml(Document().data(), static_cast<int32_t>(Document().size()));
    benchmark::DoNotOptimize(document.isNull());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Document().size()));
}
BENCHMARK(BM_XmlParseOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

long PeakKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// Forks a peer that connects to `port`, runs `body` and exits.
template <typename Body>
pid_t Peer(int port, Body body) {
  const pid_t pid = fork();
  if (pid == 0) {
    const int fd = PlainConnect(port);
    body(fd);
    close(fd);
    _exit(0);
  }
  return pid;
}

// Peak memory of receiving the document (`what` "xml"), of parsing it from
// memory without a socket ("parse", the baseline of "xml"), or of refusing
// an endless stream ("stream"), each in its own process.
int MeasureMemory(const char* what) {
  if (std::strcmp(what, "parse") == 0) {
    const double size = static_cast<double>(Document().size());
    const long before = PeakKiB();
    const DOM_Document document = VCUXmlHelper::ParseXml(Document().data(), Document().size());
    const double mib = static_cast<double>(PeakKiB() - before) / 1024.0;
    std::printf(
        "XML document of %.1f MB parsed from memory: peak growth %.1f MiB = %.2fx its size\n",
        size / 1e6, mib, mib * 1024 * 1024 / size);
    return document.isNull() ? 1 : 0;
  }
  VCUServerSocket server;
  server.Listen(0, "127.0.0.1");
  if (std::strcmp(what, "xml") == 0) {
    const double size = static_cast<double>(Document().size());  // built before measuring
    const long before = PeakKiB();
    const pid_t peer =
        Peer(server.GetPort(), [](int fd) { SendAll(fd, Document().data(), Document().size()); });
    VCUSocketIOXml io;
    DOM_Document document;
    const bool ok = server.Accept(10, &io) && io.GetData("Reply", &document, 10);
    const double mib = static_cast<double>(PeakKiB() - before) / 1024.0;
    std::printf("XML document of %.1f MB: %s, peak growth %.1f MiB = %.2fx its size\n", size / 1e6,
                ok ? "parsed" : "FAILED", mib, mib * 1024 * 1024 / size);
    waitpid(peer, nullptr, 0);
    return ok ? 0 : 1;
  }
  const long before = PeakKiB();
  const pid_t peer = Peer(server.GetPort(), [](int fd) {
    const std::vector<char> block(1 << 20, 'x');
    for (int i = 0; i < 1024; ++i) SendAll(fd, block.data(), block.size());
  });
  VCUSocketIONull io;
  VCUDataBuffer out;
  const bool refused = server.Accept(10, &io) && !io.GetData(&out, 10) &&
                       VFErrorGetCode(VFErrorGetLast()) == -655561;
  const double mib = static_cast<double>(PeakKiB() - before) / 1024.0;
  std::printf(
      "1 GB stream without terminator: %s at the 64 MiB limit, peak growth %.1f MiB = "
      "%.2fx the limit\n",
      refused ? "refused" : "NOT refused", mib, mib / 64.0);
  waitpid(peer, nullptr, 0);
  return refused ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], "--memory") == 0) return MeasureMemory(argv[2]);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
