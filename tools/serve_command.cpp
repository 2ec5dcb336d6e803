#include "serve_command.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/net/server_socket.h>
#include <utilkit/net/socket_io_null.h>
#include <utilkit/xml/data_buffer.h>

#include "comms_command.h"
#include "input_file.h"
#if defined(UTILKIT_WITH_XML)
#include <utilkit/net/socket_io_xml.h>
#include <utilkit/xml/xml_helper.h>
#endif

namespace {

constexpr const char* kFooter =
    R"(Prints "listening on ADDRESS:PORT" (the port chosen when --port is 0), then
serves one client at a time: each request is printed and answered, with
the request itself (echo) or with the --reply file. A client that closes
its connection is replaced by the next one.

Zero-terminated framing (default): requests and answers are texts ended by
a 0 byte. XML framing (--xml ROOT): a request is a document that ends with
</ROOT> or <ROOT/>; the answer is the request document or the reply file,
sent as UTF-8 without terminator. Requests over 64 MiB are refused and
their connection closed.

Many-clients mode (--clients N): up to N clients are served at once on
one thread, each request in the framing it arrives in (zero-terminated,
XML, or a message form as `utilkit send --form` writes it, whose parts are
printed) and answered with itself or the --reply file's bytes. Clients
beyond N, requests over 64 MiB and clients idle for 60 s are refused and
reported on standard error; the server goes on.

Stops with status 0 after --count requests or --time-limit seconds (either
or both; without them it runs until interrupted); 1 when it cannot listen
or the reply file cannot be read.

Examples:
  utilkit serve --port 5000 --count 1 &
  utilkit send --port 5000 "hello"                 # prints hello
  utilkit serve --port 5000 --xml Request --reply examples/channels.xml --time-limit 60
  utilkit serve --port 5000 --clients 100 --time-limit 60)";

struct ServeOptions {
  int port = 0;
  std::string address;
  std::string reply;
  std::string xmlRoot;
  int count = 0;
  int timeLimit = 0;
  int clients = 0;
};

using Clock = std::chrono::steady_clock;

// The replies and framing of one run.
class Server {
 public:
  explicit Server(const ServeOptions& options) : m_options(options) {}

  bool LoadReply() {
    if (m_options.reply.empty()) return true;
#if defined(UTILKIT_WITH_XML)
    if (!m_options.xmlRoot.empty()) {
      m_replyDocument = VCUXmlHelper::ParseXmlFromFile(m_options.reply.c_str());
      return !m_replyDocument.isNull();
    }
#endif
    return tool_input::ReadInputFile(m_options.reply, size_t{64} << 20, &m_replyText, &m_loadError);
  }

  // Why LoadReply failed to read the reply file, when it did.
  const std::string& LoadError() const {
    return m_loadError;
  }

  VCUSocketIO& Io() {
#if defined(UTILKIT_WITH_XML)
    if (!m_options.xmlRoot.empty()) return m_xml;
#endif
    return m_null;
  }

  // Waits up to `seconds` for one request and answers it. True when answered.
  bool Answer(int seconds) {
#if defined(UTILKIT_WITH_XML)
    if (!m_options.xmlRoot.empty()) {
      DOM_Document request;
      if (!m_xml.GetData(m_options.xmlRoot.c_str(), &request, seconds)) return false;
      VCUDataBuffer text;
      VCUXmlHelper::ConvertNodeTreeToHumanReadableText(request, &text);
      std::printf("%s\n", text.GetBasePtr());
      return m_xml.PutData(m_replyDocument.isNull() ? request : m_replyDocument, seconds);
    }
#endif
    VCUDataBuffer request;
    if (!m_null.GetData(&request, seconds)) return false;
    std::printf("%s\n", request.GetBasePtr());
    int sent = 0;
    return m_null.PutData(m_options.reply.empty() ? request.GetBasePtr() : m_replyText.c_str(),
                          seconds, &sent);
  }

 private:
  const ServeOptions& m_options;
  VCUSocketIONull m_null;
  std::string m_replyText;
  std::string m_loadError;
#if defined(UTILKIT_WITH_XML)
  VCUSocketIOXml m_xml;
  DOM_Document m_replyDocument;
#endif
};

int RunServe(const ServeOptions& options) {
  if (options.clients > 0) {
    return RunServeMany(options.port, options.address, options.reply, options.count,
                        options.timeLimit, options.clients);
  }
  VFErrorClear();
  Server server(options);
  if (!server.LoadReply()) {
    if (!server.LoadError().empty()) {
      std::fprintf(stderr, "utilkit serve: %s\n", server.LoadError().c_str());
    } else {
      std::fprintf(stderr, "utilkit serve: %s: cannot be read\n%s", options.reply.c_str(),
                   VFErrorGetFullString().c_str());
    }
    return 1;
  }
  VCUServerSocket listener;
  if (!listener.Listen(options.port, options.address.c_str())) {
    std::fprintf(stderr, "%s", VFErrorGetFullString().c_str());
    return 1;
  }
  std::printf("listening on %s:%d\n", options.address.empty() ? "*" : options.address.c_str(),
              listener.GetPort());
  std::fflush(stdout);
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(options.timeLimit);
  int served = 0;
  while (options.count == 0 || served < options.count) {
    int wait = 60;
    if (options.timeLimit > 0) {
      const auto left = std::chrono::ceil<std::chrono::seconds>(deadline - Clock::now()).count();
      if (left <= 0) break;
      wait = left < wait ? static_cast<int>(left) : wait;
    }
    VFErrorClear();
    VCUSocketIO& io = server.Io();
    bool ok = false;
    if (!io.IsConnectionOpen()) {
      ok = listener.Accept(wait, &io);
    } else if ((ok = server.Answer(wait))) {
      ++served;
    }
    if (!ok) {
      const int32_t code = VFErrorGetCode(VFErrorGetLast());
      if (code != kSocketErrorReadTimeout && code != kSocketErrorConnectTimeout &&
          code != kSocketErrorConnectionLost) {
        std::fprintf(stderr, "%s", VFErrorGetFullString().c_str());
        io.CloseConnection();
      }
    }
    std::fflush(stdout);
  }
  return 0;
}

}  // namespace

void AddServeCommand(CLI::App& app) {
  auto options = std::make_shared<ServeOptions>();
  CLI::App* serve = app.add_subcommand(
      "serve", "Listen on a port and answer each request by echoing it or with a reply file");
  serve->add_option("--port", options->port, "Port to listen on (0: a free one)")
      ->capture_default_str()
      ->check(CLI::Range(0, 65535));
  serve->add_option("--address", options->address,
                    "Address or name to listen on (default: all interfaces)");
  serve->add_option("--reply", options->reply, "Answer every request with this file");
#if defined(UTILKIT_WITH_XML)
  serve->add_option("--xml", options->xmlRoot, "XML framing; ROOT is the requests' root element");
#endif
  serve->add_option("--count", options->count, "Stop after this many requests")
      ->check(CLI::NonNegativeNumber);
  serve->add_option("--time-limit", options->timeLimit, "Stop after this many seconds")
      ->check(CLI::NonNegativeNumber);
  serve->add_option("--clients", options->clients, "Serve up to N clients at once (any framing)")
      ->check(CLI::PositiveNumber);
  serve->footer(kFooter);
  serve->callback([options] {
    if (const int status = RunServe(*options); status != 0) throw CLI::RuntimeError(status);
  });
}
