// VCTCBServerComms: one object that serves many clients on the caller's thread.
//
// The object listens on a port, accepts clients and waits on all of their
// connections at once (poll on POSIX, select on Windows). Each connection
// collects the bytes that arrive until they make a complete request, hands
// the request to the handler and sends the handler's answer back to the
// same client; a slow client that sends half a request holds up no other,
// since nothing blocks on one connection. The library starts no threads:
// the host calls ServeOne or ServeFor from its own thread and may do its own
// work between calls.
//
//   VCTCBServerComms server;
//   server.SetHandler([](const VCTCBServerRequest& request, VCUDataBuffer* answer) {
//     return answer->Append("OK");         // false: close without answering
//   });
//   if (!server.Start(5000)) return;       // 0: a free port, see GetPort
//   while (running) server.ServeFor(1000); // or ServeOne(timeoutMs) per round
//
// Framing: each request is read in the framing its first bytes show, and the
// answer goes back in the same framing.
// - A request starting with a "Content-Type:" or "MIME-Version:" header line
//   is a message form (VCUMessageForm::Write): it ends with its close
//   delimiter and may hold bytes of any value.
// - Otherwise a request ends at its first 0 byte (zero-terminated framing,
//   VCUSocketIONull); the 0 is not part of the request, and the answer is
//   sent with a 0 appended. Bytes after the 0 start the next request.
// - A request starting with '<' and holding no 0 byte is an XML document
//   (VCUSocketIOXml): it ends when everything received ends, white space
//   ignored, with the closing tag of its first element, or when that element
//   closes itself (its start tag must lie in the first 64 KiB). The answer
//   is sent as it is.
// While an answer is being sent the connection reads nothing more.
//
// Limits, each refusal pushed on the error stack at "VCTCBServerComms::ServeOne"
// with its own code and the connection closed; the server goes on:
// - more than GetMaxConnections() clients (default 256): the new client is
//   accepted and closed at once, -655567 "Too many connections, limit: <n>";
// - a request above GetMaxMessageSize() bytes (default 64 MiB): -655561;
// - no byte received or sent for GetIdleSeconds() seconds (default 60):
//   -655568 "Connection idle too long, seconds: <n>".
// A client that closes in the middle of a request is reported with -655575
// "Connection lost"; one that closes between requests is not reported.
// Failing socket calls on one connection close it, reported with their
// socket codes (-655572 send, -655573 recv, system error number attached);
// a failing accept is reported with -655562.
//
// Ownership: the object owns the listening socket and every connection and
// closes them in Close and in its destructor; it cannot be copied. The
// request's bytes belong to the object and are valid during the handler
// call only. Used by one thread at a time; a handler may call Stop.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <utilkit/base/export.h>
#include <utilkit/xml/data_buffer.h>

// The framings a request can arrive in (see VCTCBServerComms).
enum class VTCommsFraming { kZeroTerminated, kXml, kMessageForm };

// One complete request as the handler sees it.
struct VCTCBServerRequest {
  const char* data = nullptr;  // the request's bytes, followed by a 0 byte
  int32_t length = 0;          // without the terminator of the zero-terminated framing
  VTCommsFraming framing = VTCommsFraming::kZeroTerminated;
  uint64_t connection = 0;  // a number that names the client's connection while it lasts
};

class UTILKIT_API VCTCBServerComms {
 public:
  // Gets one request; appends the answer to `answer` (empty on entry) and
  // returns true, or returns false to close the connection without answering
  // (as does a std::exception thrown by the handler).
  using Handler = std::function<bool(const VCTCBServerRequest& request, VCUDataBuffer* answer)>;

  static constexpr int32_t kDefaultMaxConnections = 256;
  static constexpr int32_t kDefaultMaxMessageSize = 64 * 1024 * 1024;
  static constexpr int32_t kDefaultIdleSeconds = 60;

  VCTCBServerComms();
  VCTCBServerComms(const VCTCBServerComms&) = delete;
  VCTCBServerComms& operator=(const VCTCBServerComms&) = delete;
  virtual ~VCTCBServerComms();

  // Closes everything, then listens on `port` (0: a free one) of `address`
  // (null or "": all interfaces). False at "VCTCBServerComms::Start" with
  // -655564 for an unknown address, -655562 for a bad port or a failing
  // socket call (system error number attached).
  bool Start(int32_t port, const char* address = nullptr);
  // The port listened on; 0 when not listening.
  int32_t GetPort() const { return m_port; }
  // Sets the callable that HandleRequest calls.
  void SetHandler(Handler handler) { m_handler = std::move(handler); }
  // Sets the limits (a value below 1 keeps the old one). On Windows, whose
  // select waits on at most 1024 sockets, the connections are capped at 1023.
  void SetLimits(int32_t maxConnections, int32_t maxMessageSize, int32_t idleSeconds);
  int32_t GetMaxConnections() const { return m_maxConnections; }
  int32_t GetMaxMessageSize() const { return m_maxMessageSize; }
  int32_t GetIdleSeconds() const { return m_idleSeconds; }

  // One round: waits at most `timeoutMs` milliseconds (0: looks without
  // waiting) for clients, data or room to send, then accepts, reads, answers
  // and sends what is ready, and closes idle connections. Returns the number
  // of requests answered, or -1 when not listening (-655574) or when the wait
  // failed (-655569, system error number attached).
  int32_t ServeOne(int32_t timeoutMs);
  // Rounds of ServeOne until `timeMs` milliseconds have passed, Stop was
  // called or a round failed. Returns the number of requests answered, or -1
  // when the first round failed.
  int64_t ServeFor(int32_t timeMs);
  // Makes the running ServeFor return after the current round.
  void Stop() { m_stopped = true; }
  // The number of open client connections.
  int32_t GetConnectionCount() const { return static_cast<int32_t>(m_connections.size()); }
  // Closes every connection and stops listening.
  void Close();

 protected:
  // Answers one request; the default calls the handler set by SetHandler
  // (without one: false, so the client is closed).
  virtual bool HandleRequest(const VCTCBServerRequest& request, VCUDataBuffer* answer);

 private:
  struct Connection;
  // Accepts one pending client (or refuses it beyond the limit).
  void AcceptClient();
  // Reads what has arrived; false when the connection is to be closed.
  bool ReadFrom(Connection* c, int32_t* answered);
  // Answers the complete requests received; false to close.
  bool AnswerRequests(Connection* c, int32_t* answered);
  // Sends what the answer still holds; false to close.
  bool SendPending(Connection* c);

  Handler m_handler;
  std::vector<std::unique_ptr<Connection>> m_connections;
  uint64_t m_listener = 0;
  uint64_t m_nextConnection = 1;
  int32_t m_port = 0;
  int32_t m_maxConnections = kDefaultMaxConnections;
  int32_t m_maxMessageSize = kDefaultMaxMessageSize;
  int32_t m_idleSeconds = kDefaultIdleSeconds;
  bool m_started = false;
  bool m_stopped = false;
};
