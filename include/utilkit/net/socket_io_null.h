// VCUSocketIONull: zero-terminated text messages over a VCUSocketIO.
//
// A message is a text followed by one 0 byte, which is the delimiter. The
// usual exchange is request then answer:
//
//   int sent = 0;
//   VCUDataBuffer answer;
//   if (io.PutData("STATUS", 5, &sent) && io.GetData(&answer, 5)) puts(answer.GetBasePtr());
//
// PutData first throws away anything already received (a late answer to an
// earlier request), so GetData returns the answer to this request.
// Ownership and copying as for VCUSocketIO.
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/net/socket_io.h>

class VCUDataBuffer;

class UTILKIT_API VCUSocketIONull : public VCUSocketIO {
 public:
  VCUSocketIONull() = default;
  VCUSocketIONull(const VCUSocketIONull& other) = default;
  VCUSocketIONull& operator=(const VCUSocketIONull& other) = default;
  ~VCUSocketIONull() override = default;

  // Discards whatever has arrived, then sends `text` and its terminating 0
  // (PutRawData's errors; `*sent` counts the 0). 1 on success, 0 on failure
  // (a failure while discarding, e.g. -655575, also ends it).
  int PutData(const char* text, int timeoutSeconds, int* sent);
  // Receives one message into `out` (cleared first), its terminating 0
  // included in GetSize(). Each wait for more data may take `timeoutSeconds`.
  // 1 on success; 0 with GetRawData's errors, -655578 at
  // "VCUSocketIONull::GetData" when the time limit passes, -655561 when the
  // message grows past GetMaxMessageSize() (`out` emptied, connection
  // closed), or the buffer's -655577.
  int GetData(VCUDataBuffer* out, int timeoutSeconds);
};
