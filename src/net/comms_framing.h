// The request framing of the server communications class: where a complete
// request ends in the bytes a connection has received so far.
#pragma once

#include <cstdint>

#include <utilkit/net/server_comms.h>

namespace utilkit::net {

// A complete request at the start of the received bytes.
struct FramedRequest {
  int32_t consumed = 0;  // bytes the request takes, a 0 terminator included
  int32_t length = 0;    // bytes of the request itself
  VTCommsFraming framing = VTCommsFraming::kZeroTerminated;
};

// Looks for a complete request in the `length` bytes at `data` (followed by a
// 0 byte); `searched` bytes at the start are known to hold no 0 byte. True
// with `*out` set when one is complete.
bool FindCompleteRequest(const char* data, int32_t length, int32_t searched, FramedRequest* out);

}  // namespace utilkit::net
