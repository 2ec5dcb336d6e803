// Shared by the report library tests: small real PNG and JPEG images, a
// sample library holding every kind of item, and error record checks.
#pragma once

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/library_xml/library_xml.h>

namespace lxml_test {

inline void PutBig32(std::string* out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out->push_back(static_cast<char>(v >> shift));
}

inline uint32_t Crc32(const std::string& bytes, size_t from) {
  uint32_t crc = 0xFFFFFFFFu;
  for (size_t i = from; i < bytes.size(); ++i) {
    crc ^= static_cast<unsigned char>(bytes[i]);
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

inline void PutChunk(std::string* png, const char* type, const std::string& data) {
  PutBig32(png, static_cast<uint32_t>(data.size()));
  const size_t start = png->size();
  png->append(type, 4).append(data);
  PutBig32(png, Crc32(*png, start));
}

// A w x h RGB PNG of one colour (uncompressed deflate blocks), decodable by any viewer.
inline std::string MakePng(uint32_t w, uint32_t h) {
  std::string png("\x89PNG\r\n\x1a\n", 8), header;
  PutBig32(&header, w);
  PutBig32(&header, h);
  header.append("\x08\x02\x00\x00\x00", 5);
  PutChunk(&png, "IHDR", header);
  std::string raw;
  for (uint32_t y = 0; y < h; ++y) {
    raw.push_back(0);
    for (uint32_t x = 0; x < w; ++x) raw.append("\x20\x90\xD0", 3);
  }
  std::string z("\x78\x01", 2);
  for (size_t at = 0; at < raw.size() || at == 0; at += 65535) {
    const size_t n = std::min<size_t>(65535, raw.size() - at);
    z.push_back(at + n >= raw.size() ? 1 : 0);
    z.push_back(static_cast<char>(n & 0xFF));
    z.push_back(static_cast<char>(n >> 8));
    z.push_back(static_cast<char>(~n & 0xFF));
    z.push_back(static_cast<char>((~n >> 8) & 0xFF));
    z.append(raw, at, n);
  }
  uint32_t a = 1, b = 0;
  for (unsigned char c : raw) {
    a = (a + c) % 65521;
    b = (b + a) % 65521;
  }
  PutBig32(&z, (b << 16) | a);
  PutChunk(&png, "IDAT", z);
  PutChunk(&png, "IEND", "");
  return png;
}

// A w x h grey baseline JPEG (w and h multiples of 8): one-code Huffman
// tables, every block flat.
inline std::string MakeJpeg(uint32_t w, uint32_t h) {
  std::string j("\xFF\xD8\xFF\xDB\x00\x43\x00", 7);
  j.append(64, '\x01');
  j.append("\xFF\xC0\x00\x0B\x08", 5);
  j.push_back(static_cast<char>(h >> 8));
  j.push_back(static_cast<char>(h & 0xFF));
  j.push_back(static_cast<char>(w >> 8));
  j.push_back(static_cast<char>(w & 0xFF));
  j.append("\x01\x01\x11\x00", 4);
  for (const char* table : {"\x00", "\x10"}) {
    j.append("\xFF\xC4\x00\x14", 4).append(table, 1).append("\x01", 1).append(15, '\0');
    j.push_back(0);
  }
  j.append("\xFF\xDA\x00\x08\x01\x01\x00\x00\x3F\x00", 10);
  const size_t bits = 2 * (w / 8) * (h / 8);  // two 1-bit codes per block, all zero
  j.append(bits / 8, '\0');
  if (bits % 8) j.push_back(static_cast<char>(0xFF >> (bits % 8)));
  j.append("\xFF\xD9", 2);
  return j;
}

// Checks that the stack holds exactly one record (or, with `summary`, a
// file layer record and then this one flagged as summary).
inline void ExpectError(int32_t code, const std::string& name, const char* location,
                        bool summary = false) {
  ASSERT_EQ(VFErrorGetCount(), summary ? 2u : 1u) << VFErrorGetFullString().c_str();
  const VCErrorRecord* e = VFErrorGetLast();
  EXPECT_EQ(VFErrorGetCode(e), code);
  EXPECT_EQ(std::string(VFErrorGetMessage(e)), VFTextGet(VFGetUtilKitText(), code) + name);
  EXPECT_STREQ(VFErrorGetLocation(e), location);
  EXPECT_EQ(VFErrorGetFlag(e), summary ? 1 : 0);
}

}  // namespace lxml_test
