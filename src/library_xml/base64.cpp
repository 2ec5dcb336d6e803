// Base64 in pieces (see base64.h).
#include "library_xml/base64.h"

#include <array>
#include <cstring>

namespace utilkit::library_xml {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr int8_t kSpace = -2;
constexpr int8_t kPad = -3;
constexpr int8_t kBad = -1;

// The value of each ASCII character: 0..63, or one of the marks above.
constexpr std::array<int8_t, 128> MakeValues() {
  std::array<int8_t, 128> values{};
  for (auto& v : values) v = kBad;
  for (int i = 0; i < 64; ++i)
    values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<int8_t>(i);
  values[' '] = values['\t'] = values['\n'] = values['\r'] = kSpace;
  values['='] = kPad;
  return values;
}
constexpr std::array<int8_t, 128> kValues = MakeValues();

// Two characters for each 12-bit group, so a quartet takes two look-ups.
struct PairTable {
  char pairs[4096][2];
  PairTable() {
    for (int i = 0; i < 4096; ++i) {
      pairs[i][0] = kAlphabet[i >> 6];
      pairs[i][1] = kAlphabet[i & 63];
    }
  }
};
const PairTable kPairs;

}  // namespace

void Base64Encode(const unsigned char* in, size_t size, char* out) {
  size_t i = 0;
  for (; i + 3 <= size; i += 3, out += 4) {
    const uint32_t v = (uint32_t{in[i]} << 16) | (uint32_t{in[i + 1]} << 8) | in[i + 2];
    std::memcpy(out, kPairs.pairs[v >> 12], 2);
    std::memcpy(out + 2, kPairs.pairs[v & 0xFFF], 2);
  }
  if (i < size) {
    const uint32_t v = (uint32_t{in[i]} << 16) | (i + 1 < size ? uint32_t{in[i + 1]} << 8 : 0);
    out[0] = kAlphabet[v >> 18];
    out[1] = kAlphabet[(v >> 12) & 63];
    out[2] = i + 1 < size ? kAlphabet[(v >> 6) & 63] : '=';
    out[3] = '=';
  }
}

bool Base64Decoder::Store(int bytes) {
  if (m_capacity - m_size < static_cast<size_t>(bytes)) return m_ok = false;
  const unsigned char decoded[3] = {static_cast<unsigned char>(m_bits >> 16),
                                    static_cast<unsigned char>(m_bits >> 8),
                                    static_cast<unsigned char>(m_bits)};
  std::memcpy(m_out + m_size, decoded, static_cast<size_t>(bytes));
  m_size += static_cast<size_t>(bytes);
  return true;
}

bool Base64Decoder::Feed(const char16_t* text, size_t count) {
  for (size_t i = 0; i < count && m_ok; ++i) {
    const char16_t c = text[i];
    const int8_t v = c < 128 ? kValues[c] : kBad;
    if (v == kSpace) continue;
    if (v == kBad || m_ended) return m_ok = false;
    if (v == kPad) {
      // Padding may only complete a quartet of at least two characters.
      if (m_pending < 2) return m_ok = false;
      ++m_padding;
    } else {
      if (m_padding) return m_ok = false;
      m_bits = (m_bits << 6) | static_cast<uint32_t>(v);
    }
    if (++m_pending < 4) continue;
    m_bits <<= 6 * m_padding;
    if (!Store(3 - m_padding)) return false;
    m_ended = m_padding > 0;
    m_pending = m_padding = 0;
    m_bits = 0;
  }
  return m_ok;
}

}  // namespace utilkit::library_xml
