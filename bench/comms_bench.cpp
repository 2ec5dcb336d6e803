// The server communications class and the message form, in one run:
//  - BM_CommsClients/1, /10, /100 vs BM_SingleClientBaseline: requests per
//    second (items_per_second) of 1, 10 and 100 loopback clients, each on
//    its own thread doing zero-terminated round trips of a 64-byte text with
//    VCUSocketIONull, served by one VCTCBServerComms on one thread, against
//    one such client and a plain blocking echo peer (the sockets'
//    single-client round trip); target: 100 clients together at least 0.8x
//    the baseline;
//  - BM_CommsLoad/1, /10, /100: the same requests from one load thread that
//    drives all connections with plain sockets and poll, so that 100 client
//    threads do not crowd out the one server thread;
//  - BM_FormWrite and BM_FormParse vs BM_PlainCopy: bytes_per_second of
//    writing and parsing a form of four 256 KiB binary parts against
//    appending the same bytes to a data buffer.
#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/client_socket.h>
#include <utilkit/net/message_form.h>
#include <utilkit/net/server_comms.h>
#include <utilkit/net/socket_io_null.h>
#include <utilkit/xml/data_buffer.h>

namespace {

const std::string kRequest(63, 'r');
constexpr int kRequestsPerRound = 2000;

bool RoundTrip(VCUSocketIONull& io, VCUDataBuffer* answer) {
  int sent = 0;
  return io.PutData(kRequest.c_str(), 5, &sent) && io.GetData(answer, 5);
}

// The plain blocking echo peer of one client: answers each zero-terminated message with itself.
void PlainEcho(int listener) {
  const int fd = accept(listener, nullptr, nullptr);
  std::vector<char> message;
  char buffer[4096];
  for (ssize_t n; (n = recv(fd, buffer, sizeof buffer, 0)) > 0;) {
    message.insert(message.end(), buffer, buffer + n);
    if (message.back() == 0) {
      if (send(fd, message.data(), message.size(), MSG_NOSIGNAL) <= 0) break;
      message.clear();
    }
  }
  close(fd);
}

void BM_SingleClientBaseline(benchmark::State& state) {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof a;
  if (bind(listener, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0 || listen(listener, 4) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&a), &length) != 0) {
    state.SkipWithError("listen");
    return;
  }
  std::thread peer(PlainEcho, listener);
  VCUClientSocket connector;
  VCUSocketIONull io;
  VCUDataBuffer answer;
  if (!connector.Connect("127.0.0.1", ntohs(a.sin_port), 5, &io)) state.SkipWithError("connect");
  for (auto _ : state)
    if (!RoundTrip(io, &answer)) state.SkipWithError("round trip");
  io.CloseConnection();
  peer.join();
  close(listener);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SingleClientBaseline)->UseRealTime();

// Each iteration: every client makes kRequestsPerRound / clients round trips at once.
void BM_CommsClients(benchmark::State& state) {
  const int clients = static_cast<int>(state.range(0));
  VCTCBServerComms server;
  server.SetHandler([](const VCTCBServerRequest& r, VCUDataBuffer* answer) {
    return answer->Append(r.data, r.length);
  });
  if (!server.Start(0, "127.0.0.1")) state.SkipWithError("start");
  std::atomic<bool> stop{false};
  std::thread serving([&] {
    while (!stop) server.ServeOne(20);
  });
  VCUClientSocket connector;
  std::vector<std::unique_ptr<VCUSocketIONull>> ios;
  for (int i = 0; i < clients; ++i) {
    ios.push_back(std::make_unique<VCUSocketIONull>());
    if (!connector.Connect("127.0.0.1", server.GetPort(), 5, ios.back().get()))
      state.SkipWithError("connect");
  }
  const int each = kRequestsPerRound / clients;
  std::atomic<int> failures{0};
  for (auto _ : state) {
    std::vector<std::thread> threads;
    for (auto& io : ios)
      threads.emplace_back([&, io = io.get()] {
        VCUDataBuffer answer;
        for (int i = 0; i < each; ++i)
          if (!RoundTrip(*io, &answer)) ++failures;
      });
    for (auto& t : threads) t.join();
  }
  if (failures > 0) state.SkipWithError("round trip");
  ios.clear();
  stop = true;
  serving.join();
  state.SetItemsProcessed(state.iterations() * each * clients);
}
BENCHMARK(BM_CommsClients)->Arg(1)->Arg(10)->Arg(100)->UseRealTime();

// One load thread drives all `clients` connections with plain sockets: each
// iteration sends one request on every connection, then polls until every
// answer has come back, so the clients' own scheduling is taken out.
void BM_CommsLoad(benchmark::State& state) {
  const int clients = static_cast<int>(state.range(0));
  VCTCBServerComms server;
  server.SetHandler([](const VCTCBServerRequest& r, VCUDataBuffer* answer) {
    return answer->Append(r.data, r.length);
  });
  if (!server.Start(0, "127.0.0.1")) state.SkipWithError("start");
  std::atomic<bool> stop{false};
  std::thread serving([&] {
    while (!stop) server.ServeOne(20);
  });
  std::vector<pollfd> fds;
  for (int i = 0; i < clients; ++i) {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = htons(static_cast<uint16_t>(server.GetPort()));
    if (connect(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0) state.SkipWithError("connect");
    fds.push_back({fd, POLLIN, 0});
  }
  char buffer[4096];
  for (auto _ : state) {
    for (const pollfd& p : fds) send(p.fd, kRequest.c_str(), kRequest.size() + 1, MSG_NOSIGNAL);
    for (int waiting = clients; waiting > 0;) {
      if (poll(fds.data(), fds.size(), 5000) <= 0) {
        state.SkipWithError("poll");
        break;
      }
      for (const pollfd& p : fds) {  // an answer of 64 bytes comes in one piece on loopback
        const ssize_t n = p.revents ? recv(p.fd, buffer, sizeof buffer, 0) : 0;
        if (n > 0 && buffer[n - 1] == 0) --waiting;
      }
    }
  }
  for (const pollfd& p : fds) close(p.fd);
  stop = true;
  serving.join();
  state.SetItemsProcessed(state.iterations() * clients);
}
BENCHMARK(BM_CommsLoad)->Arg(1)->Arg(10)->Arg(100)->UseRealTime();

constexpr int kPartBytes = 256 * 1024;

std::string PartBytes(int seed) {
  std::string bytes(kPartBytes, '\0');
  uint32_t x = 2463534242u + static_cast<uint32_t>(seed);
  for (char& c : bytes) {
    x ^= x << 13, x ^= x >> 17, x ^= x << 5;
    c = static_cast<char>(x);
  }
  return bytes;
}

void FillForm(VCUMessageForm* form, std::string* plain) {
  for (int i = 0; i < 4; ++i) {
    const std::string bytes = PartBytes(i);
    form->AddFile(("part" + std::to_string(i)).c_str(), "data.bin", "", bytes.data(), kPartBytes);
    *plain += bytes;
  }
}

void BM_PlainCopy(benchmark::State& state) {
  VCUMessageForm form;
  std::string plain;
  FillForm(&form, &plain);
  VCUDataBuffer out;
  for (auto _ : state) {
    out.Clear();
    out.Append(plain.data(), static_cast<int32_t>(plain.size()));
    benchmark::DoNotOptimize(out.GetBasePtr());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(plain.size()));
}
BENCHMARK(BM_PlainCopy);

void BM_FormWrite(benchmark::State& state) {
  VCUMessageForm form;
  std::string plain;
  FillForm(&form, &plain);
  VCUDataBuffer out;
  for (auto _ : state) {
    out.Clear();
    if (!form.Write(&out)) state.SkipWithError("write");
    benchmark::DoNotOptimize(out.GetBasePtr());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(plain.size()));
}
BENCHMARK(BM_FormWrite);

void BM_FormParse(benchmark::State& state) {
  VCUMessageForm form, back;
  std::string plain;
  FillForm(&form, &plain);
  VCUDataBuffer message;
  form.Write(&message);
  for (auto _ : state)
    if (!back.Parse(message.GetBasePtr(), message.GetSize())) state.SkipWithError("parse");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(plain.size()));
}
BENCHMARK(BM_FormParse);

}  // namespace

BENCHMARK_MAIN();
