#include "comms_command.h"

#include <chrono>
#include <cstdio>
#include <filesystem>

#include <utilkit/base/error_stack.h>
#include <utilkit/net/client_socket.h>
#include <utilkit/net/message_form.h>
#include <utilkit/net/server_comms.h>
#include <utilkit/net/socket_io.h>
#include <utilkit/xml/data_buffer.h>

#include "input_file.h"

namespace {

constexpr size_t kMaxFileBytes = size_t{64} << 20;

// Prints a form's parts, one line each: name=value, or name: file "f" (type, n bytes).
void PrintForm(const VCUMessageForm& form) {
  for (int32_t i = 0; i < form.GetCount(); ++i) {
    const VCUMessageFormPart* p = form.GetPart(i);
    if (p->IsFile())
      std::printf("%s: file \"%s\" (%s, %d bytes)\n", p->GetName().c_str(),
                  p->GetFileName().c_str(), p->GetContentType().c_str(), p->GetSize());
    else
      std::printf("%s=%s\n", p->GetName().c_str(), p->GetData());
  }
}

}  // namespace

int RunServeMany(int port, const std::string& address, const std::string& reply, int count,
                 int timeLimit, int maxClients) {
  VFErrorClear();
  std::string replyBytes, error;
  if (!reply.empty() && !tool_input::ReadInputFile(reply, kMaxFileBytes, &replyBytes, &error)) {
    std::fprintf(stderr, "utilkit serve: %s\n", error.c_str());
    return 1;
  }
  VCTCBServerComms server;
  server.SetLimits(maxClients, 0, 0);
  int64_t answered = 0;
  server.SetHandler([&](const VCTCBServerRequest& r, VCUDataBuffer* answer) {
    VCUMessageForm form;
    if (r.framing == VTCommsFraming::kMessageForm && form.Parse(r.data, r.length))
      PrintForm(form);
    else
      std::printf("%s\n", r.data);
    if (count > 0 && ++answered >= count) server.Stop();
    return reply.empty()
               ? answer->Append(r.data, r.length)
               : answer->Append(replyBytes.data(), static_cast<int32_t>(replyBytes.size()));
  });
  if (!server.Start(port, address.c_str())) {
    std::fprintf(stderr, "%s", VFErrorGetFullString().c_str());
    return 1;
  }
  std::printf("listening on %s:%d\n", address.empty() ? "*" : address.c_str(), server.GetPort());
  std::fflush(stdout);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(timeLimit);
  while (timeLimit == 0 || std::chrono::steady_clock::now() < end) {
    const int64_t n = server.ServeFor(1000);
    std::fflush(stdout);
    if (VFErrorGetCount() > 0) std::fprintf(stderr, "%s", VFErrorGetFullString().c_str());
    VFErrorClear();  // refused clients are reported, the server goes on
    if (n > 0 && count > 0 && answered >= count) break;
  }
  return 0;
}

int RunSendForm(const std::string& host, int port, int timeout,
                const std::vector<std::string>& fields) {
  VFErrorClear();
  VCUMessageForm form;
  for (const std::string& field : fields) {
    const size_t eq = field.find('=');
    if (eq == std::string::npos || eq == 0) {
      std::fprintf(stderr, "utilkit send: --form %s: expected name=value or name=@path\n",
                   field.c_str());
      return 1;
    }
    const std::string name = field.substr(0, eq);
    if (field.compare(eq + 1, 1, "@") != 0) {
      if (!form.AddText(name.c_str(), field.c_str() + eq + 1)) return -1;
      continue;
    }
    const std::string path = field.substr(eq + 2);
    std::string bytes, error;
    if (!tool_input::ReadInputFile(path, kMaxFileBytes, &bytes, &error)) {
      std::fprintf(stderr, "utilkit send: %s\n", error.c_str());
      return 1;
    }
    const std::string fileName = std::filesystem::path(path).filename().string();
    if (!form.AddFile(name.c_str(), fileName.c_str(), nullptr, bytes.data(),
                      static_cast<int32_t>(bytes.size())))
      return -1;
  }
  VCUClientSocket client;
  VCUSocketIO io;
  VCUDataBuffer message, answer;
  int sent = 0, received = 0;
  char timedOut = 0;
  if (!form.Write(&message) || !client.Connect(host.c_str(), port, timeout, &io) ||
      !io.PutRawData(message.GetBasePtr(), message.GetSize(), timeout, &sent))
    return -1;
  static char chunk[65536];
  while (!VCUMessageForm::IsCompleteMessage(answer.GetBasePtr(), answer.GetSize())) {
    if (!io.GetRawData(chunk, sizeof chunk, &received, timeout, &timedOut)) return -1;
    if (timedOut || answer.GetSize() > io.GetMaxMessageSize() - received) {
      std::fprintf(stderr, "utilkit send: no complete message form in the answer\n");
      return timedOut ? 3 : 1;
    }
    if (!answer.Append(chunk, received)) return -1;
  }
  VCUMessageForm back;
  if (!back.Parse(answer.GetBasePtr(), answer.GetSize())) {
    std::fprintf(stderr, "%s", VFErrorGetFullString().c_str());
    return 1;
  }
  PrintForm(back);
  return 0;
}
