#include <utilkit/xml/dom_document.h>

#include "xml/dom_access.h"
#include "xml/xerces_platform.h"

using utilkit::xml::Guarded;
using utilkit::xml::XmlChars;

namespace {

xc::DOMDocument* DocumentOf(const DOM_Node& handle) {
  return static_cast<xc::DOMDocument*>(VCUDomAccess::Node(handle));
}

xc::DOMDocument* RequireDocument(const DOM_Node& handle) {
  return static_cast<xc::DOMDocument*>(utilkit::xml::Require(handle));
}

// Appends ` name="value"` to `data` when `value` is not empty.
void AppendPseudoAttribute(std::u16string& data, std::u16string_view name, const DOMString& value) {
  if (value.length() == 0) return;
  if (!data.empty()) data += u' ';
  data.append(name).append(u"=\"").append(value.str()).append(u"\"");
}

}  // namespace

DOM_Document::DOM_Document(const DOM_Node& node) {
  if (node.getNodeType() == DOCUMENT_NODE) static_cast<DOM_Node&>(*this) = node;
}

DOM_Document DOM_Document::createDocument() {
  if (!utilkit::xml::EnsureXercesPlatform()) return DOM_Document();
  return Guarded(nullptr, [] {
    xc::DOMDocument* document = xc::DOMImplementation::getImplementation()->createDocument();
    std::shared_ptr<void> owner(document,
                                [](void* d) { static_cast<xc::DOMDocument*>(d)->release(); });
    return VCUDomAccess::Wrap<DOM_Document>(owner, document);
  });
}

DOM_Element DOM_Document::getDocumentElement() const {
  return isNull()
             ? DOM_Element()
             : VCUDomAccess::Wrap<DOM_Element>(m_document, DocumentOf(*this)->getDocumentElement());
}

DOM_DocumentType DOM_Document::getDoctype() const {
  return isNull()
             ? DOM_DocumentType()
             : VCUDomAccess::Wrap<DOM_DocumentType>(m_document, DocumentOf(*this)->getDoctype());
}

DOM_NodeList DOM_Document::getElementsByTagName(const DOMString& tagName) const {
  if (isNull()) return DOM_NodeList();
  return Guarded(nullptr, [&] {
    return VCUDomAccess::Wrap(m_document,
                              DocumentOf(*this)->getElementsByTagName(XmlChars(tagName)));
  });
}

DOM_Element DOM_Document::createElement(const DOMString& tagName, DOM_DOMException* error) {
  return Guarded(error, [&] {
    return VCUDomAccess::Wrap<DOM_Element>(
        m_document, RequireDocument(*this)->createElement(XmlChars(tagName)));
  });
}

DOM_Node DOM_Document::createTextNode(const DOMString& data, DOM_DOMException* error) {
  return Guarded(error, [&] {
    return VCUDomAccess::Wrap(m_document, RequireDocument(*this)->createTextNode(XmlChars(data)));
  });
}

DOM_Node DOM_Document::createComment(const DOMString& data, DOM_DOMException* error) {
  return Guarded(error, [&] {
    return VCUDomAccess::Wrap(m_document, RequireDocument(*this)->createComment(XmlChars(data)));
  });
}

DOM_Node DOM_Document::createCDATASection(const DOMString& data, DOM_DOMException* error) {
  return Guarded(error, [&] {
    return VCUDomAccess::Wrap(m_document,
                              RequireDocument(*this)->createCDATASection(XmlChars(data)));
  });
}

DOM_Node DOM_Document::createProcessingInstruction(const DOMString& target, const DOMString& data,
                                                   DOM_DOMException* error) {
  return Guarded(error, [&] {
    return VCUDomAccess::Wrap(m_document, RequireDocument(*this)->createProcessingInstruction(
                                              XmlChars(target), XmlChars(data)));
  });
}

DOM_Node DOM_Document::createEntityReference(const DOMString& name, DOM_DOMException* error) {
  return Guarded(error, [&] {
    return VCUDomAccess::Wrap(m_document,
                              RequireDocument(*this)->createEntityReference(XmlChars(name)));
  });
}

DOM_Node DOM_Document::createXMLDecl(const DOMString& version, const DOMString& encoding,
                                     const DOMString& standalone, DOM_DOMException* error) {
  return Guarded(error, [&] {
    std::u16string data;
    AppendPseudoAttribute(data, u"version", version);
    AppendPseudoAttribute(data, u"encoding", encoding);
    AppendPseudoAttribute(data, u"standalone", standalone);
    return createProcessingInstruction(u"xml", DOMString(std::move(data)), error);
  });
}

DOM_Node DOM_Document::importNode(const DOM_Node& node, bool deep, DOM_DOMException* error) {
  return Guarded(error, [&] {
    return VCUDomAccess::Wrap(
        m_document, RequireDocument(*this)->importNode(utilkit::xml::Require(node), deep));
  });
}
