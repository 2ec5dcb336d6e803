// VCUXmlHelper::ParseXml: the hardened XercesDOMParser set-up (see xml_helper.h).
#include <utilkit/xml/xml_helper.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/xml/xml_errors.h>

#include "xml/dom_access.h"
#include "xml/parse_memory.h"
#include "xml/xerces_platform.h"

namespace {

constexpr size_t kBaseParseMemory = size_t{64} << 20;

// A parsed document with the memory manager it was built with; the
// document goes first.
struct ParsedDocument {
  explicit ParsedDocument(size_t budget) : memory(budget) {}
  ~ParsedDocument() {
    if (document) document->release();
  }
  ParsedDocument(const ParsedDocument&) = delete;
  ParsedDocument& operator=(const ParsedDocument&) = delete;

  utilkit::xml::ParseMemory memory;
  xc::DOMDocument* document = nullptr;
};

// The plain HandlerBase error behaviour (warnings and errors ignored, fatal
// errors thrown) plus an entity resolver that turns every external DTD and
// external entity into empty text.
class SafeHandler : public xc::HandlerBase {
 public:
  xc::InputSource* resolveEntity(const XMLCh* const, const XMLCh* const) override {
    static const XMLByte kNothing[1] = {0};
    return new xc::MemBufInputSource(kNothing, 0, "", false);
  }
};

std::atomic<int32_t> g_maxNestingDepth{VCUXmlHelper::kDefaultMaxNestingDepth};

// Thrown out of the scanner when elements nest deeper than the limit.
struct NestedTooDeeply {};

// The DOM parser, counting open elements: a document nested deeper than the
// limit ends the parse before its tree (and any deep walk over it) is built.
class DepthLimitedParser : public xc::XercesDOMParser {
 public:
  DepthLimitedParser(xc::MemoryManager* memory, int32_t limit)
      : xc::XercesDOMParser(nullptr, memory), m_limit(limit) {}

  void startElement(const xc::XMLElementDecl& decl, const unsigned int urlId,
                    const XMLCh* const prefix, const xc::RefVectorOf<xc::XMLAttr>& attributes,
                    const XMLSize_t count, const bool isEmpty, const bool isRoot) override {
    if (!isEmpty && ++m_depth > m_limit) throw NestedTooDeeply{};
    xc::XercesDOMParser::startElement(decl, urlId, prefix, attributes, count, isEmpty, isRoot);
  }
  void endElement(const xc::XMLElementDecl& decl, const unsigned int urlId, const bool isRoot,
                  const XMLCh* const prefix) override {
    --m_depth;
    xc::XercesDOMParser::endElement(decl, urlId, isRoot, prefix);
  }

 private:
  int32_t m_limit;
  int32_t m_depth = 0;
};

// The message of the exception in flight (call inside a catch block).
VCString DescribeParseFailure() noexcept {
  try {
    try {
      throw;
    } catch (const xc::XMLException& e) {
      return VCUXmlHelper::DOMToVCString(utilkit::xml::FromXml(e.getMessage()));
    } catch (const xc::SAXException& e) {  // includes the fatal errors of the handler
      return VCUXmlHelper::DOMToVCString(utilkit::xml::FromXml(e.getMessage()));
    } catch (const xc::DOMException& e) {
      return VCUXmlHelper::DOMToVCString(utilkit::xml::FromXml(e.getMessage()));
    } catch (const xc::OutOfMemoryException&) {  // the memory bound, or the heap
      return VCString(VFTextGet(VFGetUtilKitText(), kXmlErrorOutOfMemory));
    } catch (const std::bad_alloc&) {
      return VCString(VFTextGet(VFGetUtilKitText(), kXmlErrorOutOfMemory));
    } catch (const NestedTooDeeply&) {
      VCString message(VFTextGet(VFGetUtilKitText(), kXmlErrorParse));
      message += ": elements nested more than ";
      message += VCString::Formatted("%d", static_cast<int>(g_maxNestingDepth.load()));
      message += " deep";
      return message;
    }
  } catch (...) {  // anything else, or no memory for the message
  }
  return VCString();
}

void PushParseError(const VCString& message) {
  VFErrorSet(kXmlErrorParse,
             message.IsEmpty() ? VFTextGet(VFGetUtilKitText(), kXmlErrorParse) : message.c_str(),
             "VCUXmlHelper::ParseXml", 0);
}

DOM_Document Parse(const char* text, int32_t length) {
  const size_t budget =
      kBaseParseMemory + static_cast<size_t>(length) * VCUXmlHelper::kParseMemoryFactor;
  // Declared outside the try block: Xerces' exceptions allocate through this
  // memory manager, so it must outlive them.
  auto parsed = std::make_shared<ParsedDocument>(budget);
  try {
    xc::SecurityManager security;
    security.setEntityExpansionLimit(VCUXmlHelper::kMaxEntityExpansions);
    SafeHandler handler;
    auto parser = std::make_unique<DepthLimitedParser>(&parsed->memory, g_maxNestingDepth.load());
    parser->setValidationScheme(xc::XercesDOMParser::Val_Auto);
    parser->setDoNamespaces(false);
    parser->setDoSchema(false);
    parser->setValidationSchemaFullChecking(false);
    parser->setErrorHandler(&handler);
    parser->setEntityResolver(&handler);
    // Should a resolver ever decline, fail rather than fetch.
    parser->setDisableDefaultEntityResolution(true);
    parser->setSecurityManager(&security);
    xc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text),
                                 static_cast<XMLSize_t>(length), "MemData", false, &parsed->memory);
    parser->parse(source);
    parsed->document = parser->adoptDocument();
  } catch (...) {
    PushParseError(DescribeParseFailure());
    return DOM_Document();
  }
  parsed->memory.LiftBudget();
  xc::DOMDocument* document = parsed->document;
  return VCUDomAccess::Wrap<DOM_Document>(std::shared_ptr<void>(std::move(parsed), document),
                                          document);
}

}  // namespace

void VCUXmlHelper::SetMaxNestingDepth(int32_t depth) {
  g_maxNestingDepth.store(depth < 1 ? kDefaultMaxNestingDepth : depth);
}

int32_t VCUXmlHelper::GetMaxNestingDepth() {
  return g_maxNestingDepth.load();
}

DOM_Document VCUXmlHelper::ParseXml(const char* text, int32_t length) {
  if (!text) {
    text = "";
    length = 0;
  }
  if (length < 0) {
    length = static_cast<int32_t>(
        std::min<size_t>(std::strlen(text), std::numeric_limits<int32_t>::max()));
  }
  if (length > kMaxParseBytes || !utilkit::xml::EnsureXercesPlatform()) {
    PushParseError(VCString());
    return DOM_Document();
  }
  try {
    return Parse(text, length);
  } catch (...) {
    PushParseError(DescribeParseFailure());
  }
  return DOM_Document();
}
