// VCUSocketIO: one connected stream socket and byte transfer over it with
// time limits. The framings VCUSocketIONull (zero-terminated texts) and
// VCUSocketIOXml (XML documents) derive from it; VCUClientSocket and
// VCUServerSocket hand their connections to it.
//
//   VCUSocketIONull io;
//   if (!client.Connect("localhost", 5000, 5, &io)) return;   // or server.Accept
//   int sent = 0;
//   io.PutData("PING", 5, &sent);
//   VCUDataBuffer reply;
//   if (io.GetData(&reply, 5)) use(reply.GetBasePtr());
//
// The connection id is the socket handle: the descriptor on POSIX, the
// SOCKET on Windows. 0 means "no connection"; on POSIX descriptor 0 is
// therefore never used as a connection (the client and server sockets
// never produce it, and SetConnectionId(0) leaves the object without one).
//
// Ownership: an object owns its socket and closes it in CloseConnection, on
// a lost connection, in SetNewConnection and in its destructor. A socket
// has exactly one owner: the copy constructor makes an object without a
// connection (only the message limit is copied), operator= copies the
// message limit and leaves both connections as they were, and only
// SetNewConnection moves a socket from one object to another.
//
// Time limits are whole seconds; 0 looks without waiting, a negative limit
// counts as 0. Every failure is pushed on the error stack (codes in
// net_errors.h); failures of a system call carry its error number.
// An object is used by one thread at a time.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>

class VCUDataBuffer;

class UTILKIT_API VCUSocketIO {
 public:
  // The most bytes one received message may hold unless SetMaxMessageSize says otherwise.
  static constexpr int32_t kDefaultMaxMessageSize = 64 * 1024 * 1024;

  // No connection; starts the sockets library (WSAStartup 1.1 on Windows).
  VCUSocketIO();
  // An object without a connection and with `other`'s message limit.
  VCUSocketIO(const VCUSocketIO& other);
  // Copies the message limit only; both connections stay as they were.
  VCUSocketIO& operator=(const VCUSocketIO& other);
  // Closes the connection (failures ignored) and undoes the start-up.
  virtual ~VCUSocketIO();

  // True when the object holds a connection (id not 0).
  char IsConnectionOpen() const;
  // True when `id` is not the invalid handle (all ones); otherwise false
  // with -655562 at "VCUSocketIO::CheckConnectionId".
  char CheckConnectionId(uint64_t id);
  // Takes `id` as the connection (without closing a previous one), asks
  // for send and receive buffers of 1048576 bytes and, on Windows, switches
  // the socket to non-blocking mode so that no send outlasts its time
  // limit. False only for the invalid handle (as CheckConnectionId);
  // failures of the other settings are ignored.
  char SetConnectionId(uint64_t id);
  // The connection id; 0 without a connection.
  uint64_t GetConnectionId() const { return m_connectionId; }
  // Closes this object's socket (a failure is pushed as -655570 and
  // otherwise ignored), then takes over `from`'s socket, chunk size and
  // start-up flag; `from` is left without a connection.
  void SetNewConnection(VCUSocketIO& from);
  // Closes the socket; the object is without a connection afterwards in any
  // case. 1 (also without a socket), or 0 with -655570 when closing failed.
  int CloseConnection();

  // Sends `length` bytes, waiting at most `timeoutSeconds` for room before
  // each piece; `*sent` counts the bytes sent. 1 on success (length 0: at
  // once); 0 with -655574 without a connection, -655569 when the wait
  // fails, -655576 when the time limit passes, -655572 when send fails.
  int PutRawData(const char* data, int length, int timeoutSeconds, int* sent);
  // Waits at most `timeoutSeconds` for data and receives up to `size` bytes
  // into `buffer` (`*received`). 1 on success; the time limit passing is a
  // success with `*timedOut` set and nothing read. 0 with -655574 without a
  // connection, -655569 when the wait fails, -655573 when recv fails, and
  // -655575 when the peer closed the connection (the socket is then closed).
  int GetRawData(char* buffer, int size, int* received, int timeoutSeconds, char* timedOut);

  // Sets the most bytes a received message may hold (below 1: the default).
  void SetMaxMessageSize(int32_t bytes);
  // The most bytes a received message may hold.
  int32_t GetMaxMessageSize() const { return m_maxMessageSize; }

 protected:
  // True when the first `length` bytes of `buffer`, trailing white space
  // ignored, end with `text`. An empty `text` is true exactly when
  // buffer[length] is 0. False when fewer characters than `text` remain.
  char CheckBufferEndForText(const char* buffer, int length, const char* text);
  // Pushes `code` with the message "<text of code>\nSocket error code : <e>"
  // at `location`, e being the system's last socket error, recorded as the
  // record's system error number.
  void SetSocketError(int code, const char* location);
  // True when `length` more bytes keep the message in `out` within the
  // message limit. Otherwise false: the message is emptied, the connection
  // closed (the rest of the message cannot be told from the next one) and
  // -655561 pushed at `location`.
  bool CheckMessageLimit(VCUDataBuffer* out, int length, const char* location);

 private:
  uint64_t m_connectionId = 0;
  int32_t m_chunkSize = 0;
  int32_t m_started = 0;
  int32_t m_maxMessageSize = kDefaultMaxMessageSize;
};
