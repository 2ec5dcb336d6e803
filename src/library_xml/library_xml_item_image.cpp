// VCULibraryXML_ItemImage (see library_xml_item_image.h).
#include <utilkit/library_xml/library_xml_item_image.h>

#include <algorithm>
#include <cstring>

#include <utilkit/base/error_report.h>
#include <utilkit/base/vc_io.h>
#include <utilkit/library_xml/library_xml_errors.h>

#include "library_xml/base64.h"

namespace {

constexpr unsigned char kPngSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

uint32_t BigEndian32(const unsigned char* p) {
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
}
uint32_t BigEndian16(const unsigned char* p) {
  return (uint32_t{p[0]} << 8) | p[1];
}

// PNG: the signature, then the IHDR chunk with width and height.
bool ReadPng(const unsigned char* data, int64_t size, int32_t* width, int32_t* height) {
  if (size < 24 || std::memcmp(data + 12, "IHDR", 4) != 0) return false;
  const uint32_t w = BigEndian32(data + 16), h = BigEndian32(data + 20);
  if (w == 0 || h == 0 || w > 0x7FFFFFFF || h > 0x7FFFFFFF) return false;
  *width = static_cast<int32_t>(w);
  *height = static_cast<int32_t>(h);
  return true;
}

// JPEG: segments after the start-of-image marker up to the first
// start-of-frame (SOF0..SOF15 but DHT, JPG and DAC), which holds height and width.
bool ReadJpeg(const unsigned char* data, int64_t size, int32_t* width, int32_t* height) {
  int64_t at = 2;
  while (at + 4 <= size) {
    if (data[at] != 0xFF) return false;
    const unsigned char marker = data[at + 1];
    if (marker == 0xFF) {  // fill byte
      ++at;
      continue;
    }
    if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {  // no length
      at += 2;
      continue;
    }
    if (marker == 0xD9 || marker == 0xDA) return false;  // end of image or scan before a frame
    const uint32_t length = BigEndian16(data + at + 2);
    if (length < 2) return false;
    if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) {
      if (length < 7 || at + 9 > size) return false;
      const uint32_t h = BigEndian16(data + at + 5), w = BigEndian16(data + at + 7);
      if (w == 0 || h == 0) return false;
      *width = static_cast<int32_t>(w);
      *height = static_cast<int32_t>(h);
      return true;
    }
    at += 2 + length;
  }
  return false;
}

}  // namespace

VCULibraryXML_ItemImage::~VCULibraryXML_ItemImage() = default;

bool VCULibraryXML_ItemImage::ReadHeader(const unsigned char* data, int64_t size,
                                         VTLibraryXMLImageFormat* format, int32_t* width,
                                         int32_t* height) {
  if (!data) return false;
  if (size >= 8 && std::memcmp(data, kPngSignature, 8) == 0) {
    *format = VTLibraryXMLImageFormat::PNG;
    return ReadPng(data, size, width, height);
  }
  if (size >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF) {
    *format = VTLibraryXMLImageFormat::JPEG;
    return ReadJpeg(data, size, width, height);
  }
  return false;
}

VTLibraryXMLImageFormat VCULibraryXML_ItemImage::FormatFromName(const char* name) {
  if (name && std::strcmp(name, "PNG") == 0) return VTLibraryXMLImageFormat::PNG;
  if (name && std::strcmp(name, "JPEG") == 0) return VTLibraryXMLImageFormat::JPEG;
  return VTLibraryXMLImageFormat::None;
}

const char* VCULibraryXML_ItemImage::GetFormatName() const {
  switch (m_format) {
    case VTLibraryXMLImageFormat::PNG:
      return "PNG";
    case VTLibraryXMLImageFormat::JPEG:
      return "JPEG";
    default:
      return "";
  }
}

const char* VCULibraryXML_ItemImage::GetMimeType() const {
  switch (m_format) {
    case VTLibraryXMLImageFormat::PNG:
      return "image/png";
    case VTLibraryXMLImageFormat::JPEG:
      return "image/jpeg";
    default:
      return "";
  }
}

bool VCULibraryXML_ItemImage::SetData(const char* data, int32_t size) {
  static constexpr const char* kWhere = "VCULibraryXML_ItemImage::SetData";
  VTLibraryXMLImageFormat format = VTLibraryXMLImageFormat::None;
  int32_t width = 0, height = 0;
  if (size < 0 || size > kMaxImageBytes ||
      !ReadHeader(reinterpret_cast<const unsigned char*>(data), size, &format, &width, &height)) {
    return VFReportError(kLibraryXMLErrorImage, kWhere, "PNG or JPEG");
  }
  if (!m_data.SetAllocSize(size + 1)) return VFReportError(kErrorOutOfMemory, kWhere);
  m_data.Clear();
  m_data.Append(data, size);
  m_format = format;
  m_width = width;
  m_height = height;
  return true;
}

bool VCULibraryXML_ItemImage::SetDataFromFile(const char* path) {
  static constexpr const char* kWhere = "VCULibraryXML_ItemImage::SetDataFromFile";
  VCIo file;
  int64_t size = 0;
  if (!file.Open(path, VCIo::kModeRead) || !file.GetSize(&size)) {
    return VFReportError(kLibraryXMLErrorFile, kWhere, path, 1);
  }
  if (size > kMaxImageBytes) return VFReportError(kLibraryXMLErrorFile, kWhere, path);
  VCUDataBuffer bytes(static_cast<int32_t>(size) + 1);
  if (bytes.GetAllocSize() <= size) return VFReportError(kErrorOutOfMemory, kWhere);
  int64_t got = 0;
  if (!file.Read(bytes.GetBasePtr(), size, 0, &got) || got != size) {
    return VFReportError(kLibraryXMLErrorFile, kWhere, path, 1);
  }
  return SetData(bytes.GetBasePtr(), static_cast<int32_t>(size));
}

bool VCULibraryXML_ItemImage::AppendBase64(VCUDataBuffer* out) const {
  constexpr size_t kPiece = 3 * 4096;  // bytes encoded at a time
  char text[utilkit::library_xml::Base64Length(kPiece)];
  const auto* data = reinterpret_cast<const unsigned char*>(m_data.GetBasePtr());
  const auto size = static_cast<size_t>(m_data.GetSize());
  for (size_t done = 0; done < size; done += kPiece) {
    const size_t piece = std::min(kPiece, size - done);
    utilkit::library_xml::Base64Encode(data + done, piece, text);
    const auto length = static_cast<int32_t>(utilkit::library_xml::Base64Length(piece));
    if (!out->Append(text, length)) return false;  // the buffer pushed -655577
  }
  return true;
}
