// VCUDataBuffer: the library's growable byte buffer.
//
// A heap block that always holds a 0 byte after its used bytes, so it can be
// read both as counted bytes (GetBasePtr, GetSize) and as a C string. It
// carries serialised XML, socket traffic and message parts.
//
//   VCUDataBuffer buffer;
//   buffer.Append("<a>");          // NUL-terminated: length taken
//   buffer.Append(bytes, count);   // counted bytes, may hold 0 bytes
//   send(socket, buffer.GetBasePtr(), buffer.GetSize(), 0);
//
// Ownership: the buffer owns its block (malloc/realloc/free). Pointers from
// GetBasePtr are invalidated by any operation that may grow the block.
//
// Growth: the block grows in whole multiples of an increment, starting at
// 4096 bytes. A request above twice the increment raises the increment to
// half the request (at most 500000), so the block grows by about one and a
// half times the request until the increment reaches 500000, then in steps of
// 500000. The block never shrinks; Clear keeps it.
//
// Failure: only growth fails, with -655577 "Out of memory" on the error
// stack. A failed growth records the new size and stores the null result of
// realloc before testing it: the old block is then lost (not freed) and the
// buffer is unusable until a later SetAllocSize beyond the recorded size
// succeeds. Hosts treat a failed Append as fatal for the buffer.
//
// Sizes are 32-bit. A size that cannot be represented is refused: Append
// fails with -655577 and leaves the buffer as it was when used + length + 1
// exceeds INT32_MAX, and SetAllocSize rounds up to at most INT32_MAX.
#pragma once

#include <cstdint>
#include <cstring>

#include <utilkit/base/export.h>

class UTILKIT_API VCUDataBuffer {
 public:
  // An empty buffer with a block of 4096 bytes.
  VCUDataBuffer();
  // An empty buffer whose block holds at least `size` bytes.
  explicit VCUDataBuffer(int32_t size);
  // A buffer holding a copy of `other`'s used bytes (the increment starts afresh).
  VCUDataBuffer(const VCUDataBuffer& other);
  // Replaces the contents by `other`'s used bytes; the increment is kept.
  VCUDataBuffer& operator=(const VCUDataBuffer& other);
  virtual ~VCUDataBuffer();

  // Ensures the block holds at least `size` bytes. True on success (also when
  // the block is already large enough); false with -655577 when realloc fails.
  bool SetAllocSize(int32_t size);
  // Appends `length` bytes of `data` (a negative length: `data` is
  // NUL-terminated; null counts as ""). A length below 1 appends nothing and returns true.
  // False with -655577 when the block cannot grow.
  bool Append(const char* data, int32_t length = -1) {
    if (length > 0 && length < m_allocated - m_used && data) {  // fits: the inline fast path
      std::memcpy(m_data + m_used, data, static_cast<size_t>(length));
      m_used += length;
      m_data[m_used] = 0;
      return true;
    }
    return AppendWithGrowth(data, length);
  }
  // Empties the buffer; the block keeps its size.
  void Clear();
  // Shortens the used bytes to `n` when 1 <= n < GetSize(); otherwise
  // nothing happens (Truncate(0) does not empty the buffer).
  void Truncate(int32_t n);
  // Removes in place every byte for which isspace() is true, scanning up to
  // the first 0 byte; bytes after an embedded 0 are dropped too.
  void RemoveWhitespace();

  // The block (always followed by a 0 at GetSize()); null only after a failed growth.
  char* GetBasePtr() const { return m_data; }
  // The number of used bytes.
  int32_t GetSize() const { return m_used; }
  // The size of the block in bytes.
  int32_t GetAllocSize() const { return m_allocated; }

 private:
  // The reset shared by the constructors: increment 4096, a 4096-byte block, empty.
  void Init();
  // Append for terminated data, empty data and data that needs a larger block.
  bool AppendWithGrowth(const char* data, int32_t length);

  char* m_data = nullptr;
  int32_t m_allocated = 0;
  int32_t m_used = 0;
  int32_t m_increment = 4096;
};
