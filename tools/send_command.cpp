#include "send_command.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/client_socket.h>
#include <utilkit/net/net_errors.h>
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
    R"(Zero-terminated framing (default): the text (or the file's text up to its
first 0 byte) is sent with a terminating 0 and the answer, up to its 0, is
printed followed by a line feed. Anything that arrived before the request
(a late answer) is thrown away.

XML framing (--xml ROOT): the document (the text, or --file) is sent as
UTF-8 without terminator; the answer is read until it ends with </ROOT> or
<ROOT/> and printed in the human-readable layout. Answers over 64 MiB are
refused.

Message form (--form, repeatable): the parts are sent as one
multipart/form-data message with its Content-Type header; the answer must
be a message form too, and its parts are printed one a line: NAME=VALUE,
or NAME: file "FILE NAME" (TYPE, N bytes).

Exit status: 0 answered, 1 other failure (unknown host, lost connection,
bad XML), 2 connection refused, 3 time limit passed (connecting, sending
or waiting for the answer). Failures print the error records on standard
error.

Examples:
  utilkit send --port 5000 "hello"
  utilkit send --host ::1 --port 5000 --file request.txt
  utilkit send --port 5000 --xml Reply --file examples/channels.xml
  utilkit send --port 5000 --form job=resample --form signal=@run7.bin)";

constexpr size_t kMaxFileBytes = size_t{64} << 20;

struct SendOptions {
  std::string host = "localhost";
  int port = 0;
  std::string text;
  std::string file;
  std::string xmlRoot;
  int timeout = 10;
  std::vector<std::string> forms;
};

// Prints the error records and maps the newest one to the exit status.
int Fail() {
  std::fprintf(stderr, "%s", VFErrorGetFullString().c_str());
  switch (VFErrorGetCode(VFErrorGetLast())) {
    case kSocketErrorRefused:
      return 2;
    case kSocketErrorConnectTimeout:
    case kSocketErrorReadTimeout:
    case kSocketErrorWriteTimeout:
      return 3;
    default:
      return 1;
  }
}

int SendText(const SendOptions& options, VCUClientSocket& client) {
  std::string text = options.text;
  if (!options.file.empty()) {
    std::string error;
    if (!tool_input::ReadInputFile(options.file, kMaxFileBytes, &text, &error)) {
      std::fprintf(stderr, "utilkit send: %s\n", error.c_str());
      return 1;
    }
  }
  VCUSocketIONull io;
  VCUDataBuffer answer;
  int sent = 0;
  if (!client.Connect(options.host.c_str(), options.port, options.timeout, &io) ||
      !io.PutData(text.c_str(), options.timeout, &sent) || !io.GetData(&answer, options.timeout)) {
    return Fail();
  }
  std::printf("%s\n", answer.GetBasePtr());
  return 0;
}

#if defined(UTILKIT_WITH_XML)
int SendXml(const SendOptions& options, VCUClientSocket& client) {
  const DOM_Document request = options.file.empty()
                                   ? VCUXmlHelper::ParseXml(options.text.c_str(), -1)
                                   : VCUXmlHelper::ParseXmlFromFile(options.file.c_str());
  if (request.isNull()) return Fail();
  VCUSocketIOXml io;
  DOM_Document answer;
  VCUDataBuffer text;
  if (!client.Connect(options.host.c_str(), options.port, options.timeout, &io) ||
      !io.PutData(request, options.timeout) ||
      !io.GetData(options.xmlRoot.c_str(), &answer, options.timeout)) {
    return Fail();
  }
  if (!VCUXmlHelper::ConvertNodeTreeToHumanReadableText(answer, &text)) return 1;
  std::fwrite(text.GetBasePtr(), 1, static_cast<size_t>(text.GetSize()), stdout);
  return 0;
}
#endif

int RunSend(const SendOptions& options) {
  VFErrorClear();
  VCUClientSocket client;
  if (!options.forms.empty()) {
    const int status = RunSendForm(options.host, options.port, options.timeout, options.forms);
    return status < 0 ? Fail() : status;
  }
#if defined(UTILKIT_WITH_XML)
  if (!options.xmlRoot.empty()) return SendXml(options, client);
#endif
  return SendText(options, client);
}

}  // namespace

void AddSendCommand(CLI::App& app) {
  auto options = std::make_shared<SendOptions>();
  CLI::App* send = app.add_subcommand(
      "send", "Connect to a server, send a text or an XML document and print the answer");
  send->add_option("text", options->text, "Text (or XML document) to send");
  send->add_option("--file", options->file, "Send this file instead of a text");
  send->add_option("--host", options->host, "Server name or address (IPv4 or IPv6)")
      ->capture_default_str();
  send->add_option("--port", options->port, "Server port")->required()->check(CLI::Range(1, 65535));
#if defined(UTILKIT_WITH_XML)
  send->add_option("--xml", options->xmlRoot, "XML framing; ROOT is the answer's root element");
#endif
  send->add_option("--timeout", options->timeout, "Time limit of each wait, in seconds")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  send->add_option("--form", options->forms,
                   "Send a message form; each NAME=VALUE is a text part, NAME=@PATH a file part");
  send->footer(kFooter);
  send->callback([options] {
    if (const int status = RunSend(*options); status != 0) throw CLI::RuntimeError(status);
  });
}
