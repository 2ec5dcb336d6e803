// VCUMessageForm: a message of several named parts in multipart/form-data.
//
// A form is an ordered list of parts. Each part has a name and either a text
// value or a file (file name, content type and bytes of any value). Names may
// repeat; FindPart walks the parts of one name in order. The form writes
// itself as multipart/form-data (the layout of RFC 2046 as RFC 7578 uses it)
// and parses such bodies back, including those written by other tools.
//
//   VCUMessageForm form;
//   form.AddText("job", "resample");
//   form.AddFile("signal", "run 7.bin", "application/octet-stream", bytes, count);
//   VCUDataBuffer message;
//   form.Write(&message);            // "Content-Type: ...boundary=..." CRLF CRLF body
//   VCUMessageForm back;
//   if (!back.Parse(message.GetBasePtr(), message.GetSize())) { /* -655571 at a byte */ }
//   const char* job = back.GetText("job");   // "resample"
//
// Two shapes of message:
// - Write / Parse: a self-describing message, a header block holding the
//   "Content-Type: multipart/form-data; boundary=..." line (other header lines
//   are ignored when parsing), an empty line, then the body. This is how a form
//   travels over the library's sockets: the message ends with the body's close
//   delimiter ("--" boundary "--"), see IsCompleteMessage.
// - WriteBody / ParseBody: the body alone, with the Content-Type value kept
//   apart, as an HTTP request carries it.
//
// The writer uses CRLF line ends, puts a part's name and file name in quoted
// strings (UTF-8 as RFC 7578 allows; '"' and '\' escaped with '\'), gives a
// file part its content type and a text part none, and chooses a boundary
// that occurs in no part: the one set with SetBoundary if it qualifies, else
// random ones until one does. The parser requires CRLF line ends and accepts:
// a preamble and an epilogue, white space after a boundary, folded and
// unknown header lines, header and parameter names in any case, quoted or bare
// parameter values, RFC 2231 file names (filename*=utf-8''%E2%82%AC.txt), and
// the transfer encodings 7bit, 8bit, binary and base64.
//
// Limits: at most GetMaxParts() parts (default 1000) holding at most
// GetMaxBytes() bytes of values in all (default 64 MiB). Adding or parsing
// beyond them fails with -655561; a body that breaks the format fails with
// -655571 "Malformed message form at byte: " followed by the byte offset in
// the parsed text and what was wrong (also kept as GetErrorPosition()). A
// failed parse leaves the form empty.
//
// Ownership: the form owns its parts; part pointers stay valid until the part
// is removed or the form is cleared, parsed into or destroyed.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/xml/data_buffer.h>

// One part of a message form: a name and a text value, or a name and a file.
class UTILKIT_API VCUMessageFormPart {
 public:
  const VCString& GetName() const { return m_name; }
  // True for a file part (it has a file name, possibly empty, and a content type).
  bool IsFile() const { return m_isFile; }
  const VCString& GetFileName() const { return m_fileName; }
  // The content type as written or parsed; "" for a text part without one.
  const VCString& GetContentType() const { return m_contentType; }
  // The value's bytes, followed by a 0 byte (so a text value reads as a C string).
  const char* GetData() const { return m_data.GetBasePtr(); }
  int32_t GetSize() const { return m_data.GetSize(); }

 private:
  friend class VCUMessageForm;
  friend class VCUMessageFormParser;
  VCString m_name;
  VCString m_fileName;
  VCString m_contentType;
  VCUDataBuffer m_data{1};
  bool m_isFile = false;
};

class UTILKIT_API VCUMessageForm {
 public:
  static constexpr int32_t kDefaultMaxParts = 1000;
  static constexpr int64_t kDefaultMaxBytes = 64 * 1024 * 1024;

  VCUMessageForm();
  VCUMessageForm(const VCUMessageForm&) = delete;
  VCUMessageForm& operator=(const VCUMessageForm&) = delete;
  virtual ~VCUMessageForm();

  // Appends a text part (`length` < 0: `value` is NUL-terminated). False with
  // -655571 when `name` is null or holds CR, LF or NUL, -655561 beyond a
  // limit, -655577 out of memory; the form is then unchanged.
  bool AddText(const char* name, const char* value, int32_t length = -1);
  // Appends a file part of `length` bytes (any values). `contentType` null or
  // "" means "application/octet-stream". Errors as AddText; CR or LF in the
  // file name or content type is refused too.
  bool AddFile(const char* name, const char* fileName, const char* contentType, const char* data,
               int32_t length);
  // The number of parts.
  int32_t GetCount() const { return static_cast<int32_t>(m_parts.size()); }
  // The part at `index` (from 0), or null when out of range.
  const VCUMessageFormPart* GetPart(int32_t index) const;
  // The index of the first part named `name` at or after `start`, or -1.
  int32_t FindPart(const char* name, int32_t start = 0) const;
  // The value of the first part named `name` as a C string, or null when none.
  const char* GetText(const char* name) const;
  // Removes the part at `index`; false (nothing pushed) when out of range.
  bool RemovePart(int32_t index);
  // Removes all parts.
  void Clear();

  // Sets the limits checked by Add and Parse (values below 1 keep the old ones).
  void SetLimits(int32_t maxParts, int64_t maxBytes);
  int32_t GetMaxParts() const { return m_maxParts; }
  int64_t GetMaxBytes() const { return m_maxBytes; }
  // The boundary Write tries first (1 to 70 characters of RFC 2046's set);
  // false with -655571 for one that is not allowed.
  bool SetBoundary(const char* boundary);
  // The boundary of the last Write or Parse.
  const VCString& GetBoundary() const { return m_boundary; }

  // Appends the self-describing message (header block and body) to `out`.
  // False with -655577 when the buffer cannot grow.
  bool Write(VCUDataBuffer* out) const;
  // Appends the body to `out` and, when `contentType` is not null, stores
  // "multipart/form-data; boundary=..." there. False with -655577.
  bool WriteBody(VCUDataBuffer* out, VCString* contentType) const;
  // Replaces the parts by those of a self-describing message of `length`
  // bytes. False with -655571 (position and cause) or -655561.
  bool Parse(const char* data, int32_t length);
  // Replaces the parts by those of a body whose Content-Type value is
  // `contentType`. False with -655571 (also for a type other than
  // multipart/form-data or one without a boundary) or -655561.
  bool ParseBody(const char* data, int32_t length, const char* contentType);
  // The byte offset of the last parse failure, or -1 after a success.
  int32_t GetErrorPosition() const { return m_errorPosition; }

  // True when the `length` bytes form a whole self-describing message: a
  // header block (within the first 64 KiB) naming a boundary and, at the end
  // (white space ignored), that boundary's close delimiter. The framing test
  // of the server communications class; cheap when the end does not match.
  static bool IsCompleteMessage(const char* data, int32_t length);

 private:
  friend class VCUMessageFormParser;
  // Appends `part` after checking the limits; reports at `location`.
  bool AddPart(std::unique_ptr<VCUMessageFormPart> part, const char* location);
  // A boundary that occurs in no part.
  VCString ChooseBoundary() const;
  // Appends the body delimited by m_boundary.
  bool AppendBody(VCUDataBuffer* out) const;
  void DropIndex() { m_index.clear(); }

  std::vector<std::unique_ptr<VCUMessageFormPart>> m_parts;
  mutable std::unordered_map<VCString, std::vector<int32_t>> m_index;
  mutable VCString m_boundary;
  VCString m_preferredBoundary;
  int64_t m_bytes = 0;
  int64_t m_maxBytes = kDefaultMaxBytes;
  int32_t m_maxParts = kDefaultMaxParts;
  int32_t m_errorPosition = -1;
};
