// VCTextIo: a text file, written or read line by line.
//
// WriteString writes one line: the text followed by "\n" (the same on every
// platform; no "\r" is added). ReadLine accepts lines ended by "\n" or
// "\r\n", and a last line without an ending. The file itself is handled by
// a VCIo, with the same open modes and errors (so failure records carry
// VCIo locations such as "VCIo::Open").
//
//   VCTextIo out;
//   if (out.Open(path, VCIo::kModeCreate) && out.WriteString("Row,Force") && out.Close()) {...}
//   VCTextIo in;
//   VCString line;
//   if (in.Open(path, VCIo::kModeRead)) while (in.ReadLine(&line)) Use(line);
//
// Ownership: the object owns its open file; the destructor closes it
// without reporting. Not copyable. One thread at a time.
#pragma once

#include <cstdint>
#include <string>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_io.h>
#include <utilkit/base/vc_string.h>

class UTILKIT_API VCTextIo {
 public:
  VCTextIo() = default;

  // Opens `path` in a VCIo mode (kModeRead, kModeAppend, kModeCreate);
  // errors as VCIo::Open.
  bool Open(const char* path, int32_t mode);
  bool IsOpen() const { return m_file.IsOpen(); }

  // Writes `text` (null is "") and "\n". Errors as VCIo::Write.
  bool WriteString(const char* text);

  // Reads the next line into `line`, without its ending. Returns false with
  // nothing pushed at the end of the file; false with a VCIo error when the
  // file cannot be read (not open, opened for writing, read failure).
  bool ReadLine(VCString* line);

  // Errors as VCIo::Close.
  bool Close();

 private:
  // Reads the next chunk into m_buffer; false at the end or on an error.
  bool Refill(bool* failed);

  VCIo m_file;
  std::string m_buffer;      // bytes read ahead
  size_t m_bufferUsed = 0;   // bytes of m_buffer already returned
  int64_t m_readOffset = 0;  // file offset just after m_buffer
};
