#include <utilkit/base/error_stack.h>
#include <utilkit/base/vc_io.h>

#include <cerrno>

namespace {

constexpr std::ios::openmode kBinary = std::ios::binary;
static_assert(sizeof(std::streamsize) >= sizeof(int64_t), "byte counts are passed unchanged");

}  // namespace

bool VCIo::Fail(int32_t code, const char* what, const char* location, int osCode) const {
  VFErrorSet(code, VCString(what) + m_path, location, 0);
  if (osCode != 0) VFErrorSetOpSysCode(osCode);
  return false;
}

bool VCIo::CheckOpen(const char* location) const {
  if (IsOpen()) return true;
  VFErrorSet(kVCIoErrorNotOpen, "No file is open", location, 0);
  return false;
}

bool VCIo::Open(const char* path, int32_t mode) {
  if (IsOpen() && !Close()) return false;
  m_path = path;
  if (!path) return Fail(kVCIoErrorOpen, "Cannot open file without a name", "VCIo::Open");
  std::ios::openmode how;
  switch (mode) {
    case kModeRead:
      how = std::ios::in | kBinary;
      break;
    case kModeAppend:
      how = std::ios::app | kBinary;
      break;
    case kModeCreate:
      how = std::ios::out | std::ios::trunc | kBinary;
      break;
    default:
      return Fail(kVCIoErrorOpen, VCString::Formatted("Invalid open mode %d for file: ", mode),
                  "VCIo::Open");
  }
  errno = 0;
  if (!m_file.open(path, how))
    return Fail(kVCIoErrorOpen, "Cannot open file: ", "VCIo::Open", errno);
  m_mode = mode;
  return true;
}

bool VCIo::GetSize(int64_t* size) {
  if (!CheckOpen("VCIo::GetSize")) return false;
  const std::streampos failed(std::streamoff(-1));
  const std::streampos here = m_file.pubseekoff(0, std::ios::cur);
  const std::streampos end = m_file.pubseekoff(0, std::ios::end);
  if (here == failed || end == failed || m_file.pubseekpos(here) == failed) {
    return Fail(kVCIoErrorRead, "Cannot get the size of file: ", "VCIo::GetSize");
  }
  *size = static_cast<int64_t>(std::streamoff(end));
  return true;
}

bool VCIo::Read(void* buffer, int64_t count, int64_t offset, int64_t* bytesRead) {
  if (!CheckOpen("VCIo::Read")) return false;
  if (bytesRead) *bytesRead = 0;
  if (count < 0 || offset < 0 || m_mode != kModeRead) {
    return Fail(kVCIoErrorRead, "Cannot read file: ", "VCIo::Read");
  }
  if (m_file.pubseekpos(std::streamoff(offset)) == std::streampos(std::streamoff(-1))) {
    return Fail(kVCIoErrorRead, "Cannot read file: ", "VCIo::Read");
  }
  const std::streamsize got = m_file.sgetn(static_cast<char*>(buffer), count);
  if (bytesRead) {
    *bytesRead = got;
    return true;
  }
  return got == count || Fail(kVCIoErrorRead, "Cannot read file: ", "VCIo::Read");
}

bool VCIo::Write(const void* buffer, int64_t count) {
  if (!CheckOpen("VCIo::Write")) return false;
  if (count < 0 || m_mode == kModeRead ||
      m_file.sputn(static_cast<const char*>(buffer), count) != count) {
    return Fail(kVCIoErrorWrite, "Cannot write file: ", "VCIo::Write");
  }
  return true;
}

bool VCIo::Close() {
  if (!CheckOpen("VCIo::Close")) return false;
  m_mode = 0;
  errno = 0;
  if (!m_file.close()) return Fail(kVCIoErrorWrite, "Cannot close file: ", "VCIo::Close", errno);
  return true;
}
