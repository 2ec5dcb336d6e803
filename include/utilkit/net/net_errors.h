// Error codes of the socket classes.
//
// Every failure of VCUSocketIO, its framings and the client and server
// sockets is pushed on the error stack with one of these codes, the
// library's message for it (VFTextGet(VFGetUtilKitText(), code)) and the
// qualified name of the reporting member as location. Failures of an
// operating-system call carry the system's error number
// (VFErrorGetOpSysCode), e.g.
//
//   if (!io.GetRawData(buffer, sizeof buffer, &n, 5, &timedOut)) {
//     const VCErrorRecord* e = VFErrorGetLast();
//     // VFErrorGetCode(e) == kSocketErrorConnectionLost,
//     // VFErrorGetLocation(e) == "VCUSocketIO::GetRawData"
//   }
//
// The server communications class (VCTCBServerComms) and the message form
// (VCUMessageForm) use the last three codes of the block; it has none left.
#pragma once

#include <cstdint>

#include <utilkit/base/base_errors.h>

// clang-format off
inline constexpr int32_t kSocketErrorMessageTooLong = -655561;  // Message exceeds the size limit
inline constexpr int32_t kSocketErrorCall = -655562;            // Error during socket call
inline constexpr int32_t kSocketErrorRefused = -655563;         // Connection refused: <host:port>
inline constexpr int32_t kSocketErrorUnknownHost = -655564;     // Unknown host: <host>
inline constexpr int32_t kSocketErrorCodeLabel = -655565;       // Socket error code (message part)
inline constexpr int32_t kSocketErrorConnectTimeout = -655566;  // Timeout waiting for connection: <address>
inline constexpr int32_t kSocketErrorTooManyConnections = -655567; // Too many connections, limit: <n>
inline constexpr int32_t kSocketErrorIdle = -655568;            // Connection idle too long, seconds: <n>
inline constexpr int32_t kSocketErrorSelect = -655569;          // Error in socket select
inline constexpr int32_t kSocketErrorClose = -655570;           // Error in socket close
inline constexpr int32_t kSocketErrorMessageForm = -655571;     // Malformed message form at byte: <n, what>
inline constexpr int32_t kSocketErrorSend = -655572;            // Error in socket send
inline constexpr int32_t kSocketErrorRecv = -655573;            // Error in socket recv
inline constexpr int32_t kSocketErrorNoConnection = -655574;    // No active connection
inline constexpr int32_t kSocketErrorConnectionLost = -655575;  // Connection lost
inline constexpr int32_t kSocketErrorWriteTimeout = -655576;    // Timeout writing data to socket
inline constexpr int32_t kSocketErrorOutOfMemory = kErrorOutOfMemory;     // Out of memory
inline constexpr int32_t kSocketErrorReadTimeout = -655578;     // Timeout waiting for response from socket
// clang-format on
