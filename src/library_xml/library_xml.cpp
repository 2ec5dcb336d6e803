// VCULibraryXML (see library_xml.h): pages, saving and loading.
#include <utilkit/library_xml/library_xml.h>

#include <cstring>
#include <limits>
#include <utility>

#include <utilkit/base/error_report.h>
#include <utilkit/base/vc_io.h>
#include <utilkit/library_xml/library_xml_errors.h>

#include "library_xml/library_xml_parse.h"
#include "library_xml/library_xml_writer.h"

namespace {

using utilkit::library_xml::WriteSink;

class FileSink : public WriteSink {
 public:
  FileSink(VCIo& file, const char* path) : m_file(file), m_path(path) {}
  bool Put(const char* data, size_t size) override {
    if (m_file.Write(data, static_cast<int64_t>(size))) return true;
    return VFReportError(kLibraryXMLErrorFile, "VCULibraryXML::SaveToFile", m_path, 1);
  }

 private:
  VCIo& m_file;
  const char* m_path;
};

class BufferSink : public WriteSink {
 public:
  explicit BufferSink(VCUDataBuffer* out) : m_out(out) {}
  bool Put(const char* data, size_t size) override {
    if (size > static_cast<size_t>(std::numeric_limits<int32_t>::max()) ||
        !m_out->Append(data, static_cast<int32_t>(size))) {
      return VFReportError(kErrorOutOfMemory, "VCULibraryXML::SaveToBuffer");
    }
    return true;
  }

 private:
  VCUDataBuffer* m_out;
};

}  // namespace

VCULibraryXML::~VCULibraryXML() {
  RemoveAll();
}

bool VCULibraryXML::AppendPage(VCULibraryXML_Page* page) {
  if (!page) return false;
  if (m_pages.Add(page) < 0) {
    delete page;
    return VFReportError(kErrorOutOfMemory, "VCULibraryXML::AppendPage");
  }
  return true;
}

void VCULibraryXML::RemoveAll() {
  for (VCULibraryXML_Page* page : m_pages) delete page;
  m_pages.RemoveAll();
  m_title.Empty();
}

bool VCULibraryXML::SaveToFile(const char* path) const {
  static constexpr const char* kWhere = "VCULibraryXML::SaveToFile";
  VCIo file;
  if (!file.Open(path, VCIo::kModeCreate))
    return VFReportError(kLibraryXMLErrorFile, kWhere, path, 1);
  FileSink sink(file, path);
  if (!utilkit::library_xml::WriteLibrary(*this, sink, kWhere)) return false;
  if (!file.Close()) return VFReportError(kLibraryXMLErrorFile, kWhere, path, 1);
  return true;
}

bool VCULibraryXML::SaveToBuffer(VCUDataBuffer* out) const {
  out->Clear();
  BufferSink sink(out);
  return utilkit::library_xml::WriteLibrary(*this, sink, "VCULibraryXML::SaveToBuffer");
}

bool VCULibraryXML::LoadFromFile(const char* path) {
  VCULibraryXML fresh;
  if (!utilkit::library_xml::ReadLibraryFile(path, &fresh, "VCULibraryXML::LoadFromFile")) {
    return false;
  }
  std::swap(m_title, fresh.m_title);
  std::swap(m_pages, fresh.m_pages);
  return true;
}

bool VCULibraryXML::LoadFromBuffer(const char* text, int32_t length) {
  if (!text) text = "";
  const size_t size = length < 0 ? std::strlen(text) : static_cast<size_t>(length);
  VCULibraryXML fresh;
  if (!utilkit::library_xml::ReadLibraryBuffer(text, size, &fresh,
                                               "VCULibraryXML::LoadFromBuffer")) {
    return false;
  }
  std::swap(m_title, fresh.m_title);
  std::swap(m_pages, fresh.m_pages);
  return true;
}
