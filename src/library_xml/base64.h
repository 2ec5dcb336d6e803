// Base64 (RFC 4648: standard alphabet, '=' padding, no line breaks),
// encoded and decoded in pieces so that no whole encoded copy of an image
// is ever held.
//
//   char text[Base64Length(3)];
//   Base64Encode(bytes, 3, text);          // pieces: multiples of 3 bytes but the last
//   Base64Decoder decoder(out, capacity);   // decodes into out[0..capacity)
//   decoder.Feed(chars, count);             // XML white space is skipped
//   Take(out, decoder.GetSize()); decoder.Rewind();  // and feed the next piece
//   if (!decoder.Finish()) { /* not base64, or more than capacity bytes */ }
#pragma once

#include <cstddef>
#include <cstdint>

namespace utilkit::library_xml {

// Characters of the encoding of `bytes` bytes.
constexpr size_t Base64Length(size_t bytes) {
  return (bytes + 2) / 3 * 4;
}

// Writes the Base64Length(size) characters of `size` bytes at `in` to `out`.
void Base64Encode(const unsigned char* in, size_t size, char* out);

class Base64Decoder {
 public:
  Base64Decoder(unsigned char* out, size_t capacity) : m_out(out), m_capacity(capacity) {}

  // Decodes `count` characters; false (and every later call false) at a
  // character outside the alphabet and white space, at data after the
  // padding, or when the bytes would exceed the capacity.
  bool Feed(const char16_t* text, size_t count);
  // True when the text so far ends a whole quartet (padding included).
  bool Finish() const { return m_ok && m_pending == 0; }
  // Bytes decoded since the start or the last Rewind.
  size_t GetSize() const { return m_size; }
  // Starts filling the output from its beginning again (after the caller
  // took the bytes decoded so far).
  void Rewind() { m_size = 0; }

 private:
  bool Store(int bytes);

  unsigned char* m_out;
  size_t m_capacity;
  size_t m_size = 0;
  uint32_t m_bits = 0;   // the quartet's 6-bit groups so far
  int m_pending = 0;     // characters of the current quartet (padding included)
  int m_padding = 0;     // '=' seen in the current quartet
  bool m_ended = false;  // a padded quartet has ended the data
  bool m_ok = true;
};

}  // namespace utilkit::library_xml
