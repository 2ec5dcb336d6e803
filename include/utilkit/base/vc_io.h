// VCIo: a binary file, read at any offset or written in sequence.
//
// Bytes go to and from the file unchanged (no line-ending translation).
// Every failure pushes one of the kVCIoError... records (the message names the
// file when one is open or being opened, and the operating system's error
// number is added when one is known) and returns false.
//
//   VCIo file;
//   int64_t size = 0;
//   if (file.Open(path, VCIo::kModeRead) && file.GetSize(&size)) {
//     std::vector<char> bytes(size);
//     file.Read(bytes.data(), size, 0);
//   }
//
// Ownership: the object owns its open file; the destructor closes it (any
// failure then goes unreported: call Close to learn of it). Not copyable.
// One thread at a time.
#pragma once

#include <cstdint>
#include <fstream>

#include <utilkit/base/base_errors.h>
#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API VCIo {
 public:
  // Open modes.
  static constexpr int32_t kModeRead = 1;    // an existing file, for reading
  static constexpr int32_t kModeAppend = 3;  // for writing at its end; created when missing
  static constexpr int32_t kModeCreate = 4;  // for writing anew; an existing file is emptied

  VCIo() = default;
  ~VCIo() = default;
  VCIo(const VCIo&) = delete;
  VCIo& operator=(const VCIo&) = delete;

  // Opens `path` in `mode` (one of kMode...), closing any file open before.
  // Fails with kVCIoErrorOpen for a null path, an unknown mode or a file that
  // cannot be opened, and with kVCIoErrorWrite when the earlier file cannot
  // be closed.
  bool Open(const char* path, int32_t mode);
  bool IsOpen() const { return m_file.is_open(); }
  const VCString& GetPath() const { return m_path; }

  // The file's size in bytes, including what has been written.
  // kVCIoErrorNotOpen, or kVCIoErrorRead when the size cannot be found.
  bool GetSize(int64_t* size);

  // Reads `count` bytes starting at byte `offset` into `buffer`. With
  // `bytesRead`, reading past the end is no error: it receives the number of
  // bytes read (0 at or after the end). Without it, fewer than `count` bytes
  // is kVCIoErrorRead. Also kVCIoErrorRead for a negative count or offset or
  // a file opened for writing; kVCIoErrorNotOpen.
  bool Read(void* buffer, int64_t count, int64_t offset, int64_t* bytesRead = nullptr);

  // Writes `count` bytes at the current position (the end in kModeAppend).
  // kVCIoErrorWrite for a negative count, a file opened for reading or a
  // failed write (which may also show only at Close); kVCIoErrorNotOpen.
  bool Write(const void* buffer, int64_t count);

  // Flushes and closes the file. kVCIoErrorWrite when pending bytes cannot
  // be written; kVCIoErrorNotOpen when no file is open.
  bool Close();

 private:
  bool Fail(int32_t code, const char* what, const char* location, int osCode = 0) const;
  bool CheckOpen(const char* location) const;

  std::filebuf m_file;
  VCString m_path;
  int32_t m_mode = 0;
};
