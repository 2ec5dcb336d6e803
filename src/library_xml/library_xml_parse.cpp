// Reading a report library with the SAX parser (see library_xml_parse.h).
#include "library_xml/library_xml_parse.h"

#include <charconv>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <utilkit/base/error_report.h>
#include <utilkit/base/vc_io.h>
#include <utilkit/library_xml/library_xml_errors.h>
#include <utilkit/xml/xml_helper.h>

#include "library_xml/library_xml_reader.h"
#include "xml/parse_memory.h"
#include "xml/text_conversion.h"
#include "xml/xerces_platform.h"

namespace xc = XERCES_CPP_NAMESPACE;

namespace {

constexpr size_t kBaseParseMemory = size_t{64} << 20;
constexpr XMLSize_t kTextPiece = 64 * 1024;  // characters handed over at a time

// Reads a file in pieces through VCIo; a failed read ends the input and is
// remembered (the parser then reports a cut document, which the reader
// replaces by the file error).
class FileStream : public xc::BinInputStream {
 public:
  FileStream(VCIo& file, bool* failed) : m_file(file), m_failed(failed) {}
  XMLFilePos curPos() const override { return static_cast<XMLFilePos>(m_position); }
  XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override {
    int64_t got = 0;
    if (!m_file.Read(toFill, static_cast<int64_t>(maxToRead), m_position, &got)) {
      *m_failed = true;
      return 0;
    }
    m_position += got;
    return static_cast<XMLSize_t>(got);
  }
  const XMLCh* getContentType() const override { return nullptr; }

 private:
  VCIo& m_file;
  bool* m_failed;
  int64_t m_position = 0;
};

class FileSource : public xc::InputSource {
 public:
  FileSource(VCIo& file, bool* failed, xc::MemoryManager* memory)
      : xc::InputSource(memory), m_file(file), m_failed(failed) {}
  xc::BinInputStream* makeStream() const override { return new FileStream(m_file, m_failed); }

 private:
  VCIo& m_file;
  bool* m_failed;
};

// The SAX events, handed to the element handler; failures are thrown as
// VCULibraryXMLReader::Abort after the handler recorded them.
class SaxHandler : public xc::DefaultHandler {
 public:
  explicit SaxHandler(VCULibraryXMLReader& elements) : m_elements(elements) {}

  void startElement(const XMLCh* const, const XMLCh* const, const XMLCh* const qname,
                    const xc::Attributes& attributes) override {
    m_elements.Start(
        Text(qname), [&](std::u16string_view name) -> std::optional<std::u16string_view> {
          const XMLCh* value = attributes.getValue(reinterpret_cast<const XMLCh*>(name.data()));
          if (!value) return std::nullopt;
          return std::u16string_view(reinterpret_cast<const char16_t*>(value));
        });
  }
  void endElement(const XMLCh* const, const XMLCh* const, const XMLCh* const) override {
    m_elements.End();
  }
  void characters(const XMLCh* const chars, const XMLSize_t length) override {
    m_elements.Characters(std::u16string_view(reinterpret_cast<const char16_t*>(chars), length));
  }
  // A report library never has a document type declaration.
  void startDTD(const XMLCh* const, const XMLCh* const, const XMLCh* const) override {
    m_elements.Fail(kLibraryXMLErrorItem, "DOCTYPE");
  }
  xc::InputSource* resolveEntity(const XMLCh* const, const XMLCh* const) override {
    static const XMLByte kNothing[1] = {0};
    return new xc::MemBufInputSource(kNothing, 0, "", false);
  }

 private:
  static std::u16string_view Text(const XMLCh* text) {
    return std::u16string_view(reinterpret_cast<const char16_t*>(text));
  }
  VCULibraryXMLReader& m_elements;
};

// Parses `source`, whose length is `length` bytes, into `library`.
bool Parse(xc::InputSource& source, size_t length, const bool* fileFailed, VCULibraryXML* library,
           const char* location, const char* path) {
  VCULibraryXMLReader elements(library, length);
  // Declared before the try block: Xerces' exceptions allocate through it.
  utilkit::xml::ParseMemory memory(kBaseParseMemory + 4 * length);
  std::string message;
  int32_t code = 0;
  try {
    xc::SecurityManager security;
    security.setEntityExpansionLimit(VCUXmlHelper::kMaxEntityExpansions);
    SaxHandler handler(elements);
    std::unique_ptr<xc::SAX2XMLReader> parser(xc::XMLReaderFactory::createXMLReader(&memory));
    parser->setFeature(xc::XMLUni::fgSAX2CoreNameSpaces, false);
    parser->setFeature(xc::XMLUni::fgSAX2CoreValidation, false);
    parser->setFeature(xc::XMLUni::fgXercesSchema, false);
    parser->setFeature(xc::XMLUni::fgXercesLoadExternalDTD, false);
    parser->setFeature(xc::XMLUni::fgXercesDisableDefaultEntityResolution, true);
    parser->setProperty(xc::XMLUni::fgXercesSecurityManager, &security);
    parser->setContentHandler(&handler);
    parser->setErrorHandler(&handler);
    parser->setEntityResolver(&handler);
    parser->setLexicalHandler(&handler);
    parser->setInputBufferSize(kTextPiece);
    parser->parse(source);
    return true;
  } catch (const VCULibraryXMLReader::Abort&) {
    code = elements.GetCode();
    message = elements.GetName();
  } catch (const xc::SAXParseException& e) {
    code = kLibraryXMLErrorXml;
    message = utilkit::xml::Utf16ToProcess(reinterpret_cast<const char16_t*>(e.getMessage())).str();
  } catch (const xc::XMLException& e) {
    code = kLibraryXMLErrorXml;
    message = utilkit::xml::Utf16ToProcess(reinterpret_cast<const char16_t*>(e.getMessage())).str();
  } catch (const xc::OutOfMemoryException&) {
    code = kErrorOutOfMemory;
  } catch (const std::bad_alloc&) {
    code = kErrorOutOfMemory;
  }
  if (fileFailed && *fileFailed) return VFReportError(kLibraryXMLErrorFile, location, path, 1);
  if (code == 0) return false;  // the record is on the stack already
  return VFReportError(code, location, code == kErrorOutOfMemory ? nullptr : message.c_str());
}

// False with -656068 when the parser cannot start.
bool StartXerces(const char* location) {
  if (utilkit::xml::EnsureXercesPlatform()) return true;
  return VFReportError(kLibraryXMLErrorXml, location, "Error initialising Xerces!");
}

}  // namespace

namespace utilkit::library_xml {

bool ReadLibraryFile(const char* path, VCULibraryXML* library, const char* location) {
  if (!StartXerces(location)) return false;
  VCIo file;
  int64_t size = 0;
  if (!file.Open(path, VCIo::kModeRead) || !file.GetSize(&size)) {
    return VFReportError(kLibraryXMLErrorFile, location, path, 1);
  }
  if (size > VCULibraryXML::kMaxFileBytes)
    return VFReportError(kLibraryXMLErrorFile, location, path);
  bool failed = false;
  try {
    FileSource source(file, &failed, xc::XMLPlatformUtils::fgMemoryManager);
    return Parse(source, static_cast<size_t>(size), &failed, library, location, path);
  } catch (const std::bad_alloc&) {
    return VFReportError(kErrorOutOfMemory, location);
  }
}

bool ReadLibraryBuffer(const char* text, size_t length, VCULibraryXML* library,
                       const char* location) {
  if (!StartXerces(location)) return false;
  try {
    xc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text),
                                 static_cast<XMLSize_t>(length), "LibraryXML", false);
    return Parse(source, length, nullptr, library, location, nullptr);
  } catch (const std::bad_alloc&) {
    return VFReportError(kErrorOutOfMemory, location);
  }
}

}  // namespace utilkit::library_xml
