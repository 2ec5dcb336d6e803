// VCULibraryXML_ItemImage: an image (PNG or JPEG) on a report library page.
//
// The item holds the image file's bytes unchanged. Its format is
// recognised from the bytes (the PNG signature, or the JPEG start-of-image
// marker) and its width and height are read from the header (PNG: the IHDR
// chunk; JPEG: the first start-of-frame segment); bytes that are neither are
// refused. In the file the bytes are the base64 text (RFC 4648, no line
// breaks) of an "Image" element with the attributes "format" ("PNG" or
// "JPEG"), "width", "height" (pixels) and "size" (bytes before encoding);
// reading checks all four against the decoded bytes.
//
//   auto* plot = new VCULibraryXML_ItemImage();
//   if (!plot->SetDataFromFile("force.png")) { /* see the error stack */ }
//   page->AppendItem(plot);  // the page owns it now
//
// Ownership: the item owns its bytes in a VCUDataBuffer.
#pragma once

#include <cstdint>

#include <utilkit/base/export.h>
#include <utilkit/library_xml/library_xml_item.h>
#include <utilkit/xml/data_buffer.h>

enum class VTLibraryXMLImageFormat : int32_t {
  None = 0,  // no image yet
  PNG = 1,
  JPEG = 2,
};

class UTILKIT_API VCULibraryXML_ItemImage : public VCULibraryXML_Item {
 public:
  // Largest image accepted, in bytes (so that its base64 text fits a data buffer).
  static constexpr int32_t kMaxImageBytes = 1536 * 1024 * 1024;

  VCULibraryXML_ItemImage() = default;
  ~VCULibraryXML_ItemImage() override;

  VTLibraryXMLItemType GetType() const override { return VTLibraryXMLItemType::Image; }
  // Replaces the image by a copy of `size` bytes of `data`. False, leaving
  // the item as it was, with -656065 when the bytes are not a PNG or JPEG
  // image whose size can be read (or `size` is negative or above
  // kMaxImageBytes), -655577 when memory runs out.
  bool SetData(const char* data, int32_t size);
  // As SetData with the bytes of the file at `path`; -656067 (on top of the
  // file layer's record) when the file cannot be read or is larger than
  // kMaxImageBytes.
  bool SetDataFromFile(const char* path);

  // The image's bytes (empty before SetData).
  const VCUDataBuffer& GetData() const { return m_data; }
  VTLibraryXMLImageFormat GetFormat() const { return m_format; }
  // "PNG", "JPEG" ("" before SetData).
  const char* GetFormatName() const;
  // "image/png", "image/jpeg" ("" before SetData).
  const char* GetMimeType() const;
  // Appends the base64 text of the bytes (as in the file) to `*out`. False
  // with -655577 when the buffer cannot grow.
  bool AppendBase64(VCUDataBuffer* out) const;
  int32_t GetWidth() const { return m_width; }
  int32_t GetHeight() const { return m_height; }

  // The format, width and height of an image in `size` bytes of `data`;
  // false (nothing pushed) when they are neither PNG nor JPEG or the header
  // is cut short.
  static bool ReadHeader(const unsigned char* data, int64_t size, VTLibraryXMLImageFormat* format,
                         int32_t* width, int32_t* height);
  // The format called `name` ("PNG", "JPEG"); None for any other name.
  static VTLibraryXMLImageFormat FormatFromName(const char* name);

 private:
  friend class VCULibraryXMLReader;

  VCUDataBuffer m_data{1};
  VTLibraryXMLImageFormat m_format = VTLibraryXMLImageFormat::None;
  int32_t m_width = 0;
  int32_t m_height = 0;
};
