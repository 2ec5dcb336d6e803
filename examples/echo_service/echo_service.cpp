// echo_service: an example service that answers each zero-terminated text
// request (as `utilkit send` sends it) with the same text.
//
//   echo_service -i utilkit_echo -name "Echo" -description "Answers requests"
//   echo_service -u utilkit_echo
//   echo_service                  (started by the service manager)
//
// Settings come from the environment, as a service manager passes them
// (systemd: Environment= in a drop-in of the unit):
//   UTILKIT_ECHO_PORT  the port to listen on (default 5790; 0: a free one,
//                      written to the log)
//   UTILKIT_ECHO_LOG   a log file to append to; without it the log goes to
//                      standard error with the journal's "<priority>" prefix.
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/server_socket.h>
#include <utilkit/net/socket_io_null.h>
#include <utilkit/service/service_base.h>
#include <utilkit/xml/data_buffer.h>

namespace {

constexpr int kDefaultPort = 5790;
constexpr int kRequestSeconds = 5;      // the time limit of one request and answer
constexpr int kPollMilliseconds = 100;  // how often Run looks for a stop request

class EchoService : public VCUServiceBase {
 public:
  EchoService() : VCUServiceBase("utilkit_echo") {
    if (const char* path = std::getenv("UTILKIT_ECHO_LOG")) m_log = std::fopen(path, "a");
  }
  ~EchoService() override {
    if (m_log) std::fclose(m_log);
  }

  int OnInit() override {
    const char* port = std::getenv("UTILKIT_ECHO_PORT");
    if (!m_server.Listen(port ? std::atoi(port) : kDefaultPort)) {
      LogErrors();
      m_failed = true;
      return 0;
    }
    PutLogMessage(kServiceLogTrace, "EchoService::OnInit",
                  VCString::Formatted("Listening on port %d", m_server.GetPort()));
    return 1;
  }

  void Run() override {
    VCUSocketIONull client;
    while (!IsStopRequested()) {
      if (!m_server.Accept(0, &client)) {
        VFErrorClear();  // no client waiting
        WaitForStop(kPollMilliseconds);
        continue;
      }
      Answer(client);
      client.CloseConnection();
    }
    m_server.Close();
  }

  // True when the service could not start (the program then exits 1).
  bool Failed() const { return m_failed; }

  void OnStop() override {
    PutLogMessage(kServiceLogTrace, "EchoService::OnStop", "Stop requested");
  }

 protected:
  void PutLogMessage(VDCULogLevel level, const char* location, const char* text) override {
    std::lock_guard<VCThreadSync> hold(m_LogLock);
    if (level > m_LogLevel) return;
    if (m_log) {
      std::fprintf(m_log, "%d %s: %s\n", static_cast<int>(level), location, text);
      std::fflush(m_log);
    } else {
      std::fprintf(stderr, "<%d>%s: %s\n", level <= kServiceLogFailure ? 3 : 7, location, text);
    }
  }

 private:
  void Answer(VCUSocketIONull& client) {
    VCUDataBuffer request;
    int sent = 0;
    if (!client.GetData(&request, kRequestSeconds) ||
        !client.PutData(request.GetBasePtr(), kRequestSeconds, &sent)) {
      LogErrors();
    }
  }
  void LogErrors() {
    for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e))
      PutLogMessage(kServiceLogFailure, VFErrorGetLocation(e), VFErrorGetMessage(e));
    VFErrorClear();
  }

  VCUServerSocket m_server;
  FILE* m_log = nullptr;
  bool m_failed = false;
};

}  // namespace

int main(int argc, char** argv) {
  EchoService service;
  if (service.ParseStandardArgs(argc, argv)) return VFErrorGetCount() == 0 ? 0 : 1;
  if (!service.StartServiceA()) {
    std::fprintf(stderr, "%s", VFErrorGetFullString().c_str());
    return 1;
  }
  return service.Failed() || service.GetExitCode() != 0 ? 1 : 0;
}
