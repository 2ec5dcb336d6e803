#include <utilkit/net/socket_io_null.h>

#include <cstring>

#include <utilkit/base/error_report.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/xml/data_buffer.h>

namespace {

constexpr int kReadSize = 10000;

}  // namespace

int VCUSocketIONull::PutData(const char* text, int timeoutSeconds, int* sent) {
  char scratch[kReadSize];
  int received = 0;
  char timedOut = 0;
  do {
    if (!GetRawData(scratch, kReadSize, &received, 0, &timedOut)) {
      *sent = 0;
      return 0;
    }
  } while (received > 0);
  return PutRawData(text, static_cast<int>(std::strlen(text)) + 1, timeoutSeconds, sent);
}

int VCUSocketIONull::GetData(VCUDataBuffer* out, int timeoutSeconds) {
  static constexpr const char* kWhere = "VCUSocketIONull::GetData";
  char chunk[kReadSize];
  out->Clear();
  for (;;) {
    int received = 0;
    char timedOut = 0;
    if (!GetRawData(chunk, kReadSize, &received, timeoutSeconds, &timedOut)) return 0;
    if (timedOut) return VFReportError(kSocketErrorReadTimeout, kWhere);
    if (received == 0) continue;
    if (!CheckMessageLimit(out, received, kWhere) || !out->Append(chunk, received)) return 0;
    if (out->GetBasePtr()[out->GetSize() - 1] == 0) return 1;
  }
}
