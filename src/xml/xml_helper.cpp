// VCUXmlHelper: queries, string conversions, files and the error-stack XML.
// Parsing is in xml_parse.cpp, serialisation in xml_writer.cpp.
#include <utilkit/xml/xml_helper.h>

#include <cassert>
#include <cstdio>
#include <memory>
#include <new>
#include <string>

#include <xercesc/util/XMLString.hpp>

#include <utilkit/base/error_report.h>
#include <utilkit/base/error_stack.h>
#include <utilkit/base/text_table.h>
#include <utilkit/base/vc_io.h>
#include <utilkit/xml/xml_errors.h>

#include "xml/dom_access.h"
#include "xml/text_conversion.h"
#include "xml/xerces_platform.h"

using utilkit::xml::FromXml;
using utilkit::xml::XmlChars;

namespace {

bool IsDroppedControl(unsigned char c) {
  return c >= 1 && c <= 31 && c != '\t' && c != '\n' && c != '\r';
}

// Appends <name>text</name> to `parent`; throws std::bad_alloc when the DOM refuses.
void AppendField(DOM_Document& document, DOM_Element& parent, const char* name, const char* text) {
  DOM_Element field = document.createElement(name);
  if (field.isNull() ||
      field.appendChild(document.createTextNode(VCUXmlHelper::VCToDOMString(text))).isNull() ||
      parent.appendChild(field).isNull()) {
    throw std::bad_alloc();
  }
}

}  // namespace

VCUXmlHelper::~VCUXmlHelper() = default;

DOM_Document VCUXmlHelper::ParseXmlFromFile(const char* fileName) {
  static constexpr const char* kLocation = "VCUXmlHelper::ParseXmlFromFile";
  VCIo file;
  int64_t size = 0;
  if (!file.Open(fileName, VCIo::kModeRead) || !file.GetSize(&size)) return DOM_Document();
  if (size > kMaxParseBytes) {
    VFReportError(kXmlErrorParse, kLocation);
    return DOM_Document();
  }
  std::unique_ptr<char[]> bytes(new (std::nothrow) char[size > 0 ? size : 1]);
  if (!bytes) {
    VFReportError(kXmlErrorOutOfMemory, kLocation);
    return DOM_Document();
  }
  if (!file.Read(bytes.get(), size, 0)) return DOM_Document();
  return ParseXml(bytes.get(), static_cast<int32_t>(size));
}

bool VCUXmlHelper::GetSingleElementChild(const DOM_Node& parent, const char* tag, DOM_Node* out) {
  static constexpr const char* kLocation = "VCUXmlHelper::GetSingleElementChild";
  assert(out != nullptr);
  *out = DOM_Node();
  if (!tag) tag = "";
  try {
    const DOMString wanted = VCToDOMString(tag);
    const xc::DOMNode* node = VCUDomAccess::Node(parent);
    for (xc::DOMNode* child = node ? node->getFirstChild() : nullptr; child;
         child = child->getNextSibling()) {
      if (child->getNodeType() == xc::DOMNode::ELEMENT_NODE &&
          xc::XMLString::equals(child->getNodeName(), XmlChars(wanted))) {
        *out = VCUDomAccess::Wrap(VCUDomAccess::Owner(parent), child);
        return true;
      }
    }
    VFReportError(kXmlErrorNoElement, kLocation, tag);
  } catch (...) {
    VFReportError(kXmlErrorUnknown, kLocation);
  }
  return false;
}

bool VCUXmlHelper::GetAttribute(const DOM_Node& element, const char* name, VCString* out) {
  static constexpr const char* kLocation = "VCUXmlHelper::GetAttribute";
  assert(out != nullptr);
  if (!name) name = "";
  try {
    const xc::DOMNode* node = VCUDomAccess::Node(element);
    const xc::DOMNamedNodeMap* attributes = node ? node->getAttributes() : nullptr;
    if (!attributes) {
      VFReportError(kXmlErrorNoAttributes, kLocation, name);
      return false;
    }
    const xc::DOMNode* attribute = attributes->getNamedItem(XmlChars(VCToDOMString(name)));
    if (!attribute) {
      VFReportError(kXmlErrorNoAttribute, kLocation, name);
      return false;
    }
    *out = DOMToVCString(FromXml(attribute->getNodeValue()));
    return true;
  } catch (...) {
    VFReportError(kXmlErrorGetAttribute, kLocation);
  }
  return false;
}

VCString VCUXmlHelper::GetTextFromElement(const DOM_Node& element) {
  static constexpr const char* kLocation = "VCUXmlHelper::GetTextFromElement";
  try {
    const xc::DOMNode* node = VCUDomAccess::Node(element);
    const xc::DOMNode* first = node ? node->getFirstChild() : nullptr;
    if (!first) {
      VFReportError(kXmlErrorNoTextChild, kLocation, DOMToVCString(element.getNodeName()).c_str());
      return VCString();
    }
    VCString text = DOMToVCString(FromXml(first->getNodeValue()));
    if (text.IsEmpty())
      VFReportError(kXmlErrorEmptyText, kLocation, DOMToVCString(element.getNodeName()).c_str());
    return text;
  } catch (...) {  // std::bad_alloc
    VFReportError(kXmlErrorOutOfMemory, kLocation);
  }
  return VCString();
}

VCString VCUXmlHelper::DOMToVCString(const DOMString& text) {
  return utilkit::xml::Utf16ToProcess(text.str());
}

VCString VCUXmlHelper::DOMToUTF8String(const DOMString& text) {
  return utilkit::xml::Utf16ToUtf8(text.str());
}

DOMString VCUXmlHelper::VCToDOMString(const char* text) {
  if (!text) return DOMString();
  std::string kept;
  for (const char* p = text; *p; ++p) {
    if (!IsDroppedControl(static_cast<unsigned char>(*p))) kept += *p;
  }
  return DOMString(utilkit::xml::ProcessToUtf16(kept));
}

DOMString VCUXmlHelper::UTF8ToDOMString(const char* text) {
  return text ? DOMString(utilkit::xml::Utf8ToUtf16(text)) : DOMString();
}

VCString VCUXmlHelper::PtrToString(char* text) {
  if (!text) return VCString();
  VCString result;
  try {
    result = VCString(text);
  } catch (...) {  // std::bad_alloc: the pointer is released all the same
  }
  xc::XMLString::release(&text);
  return result;
}

bool VCUXmlHelper::SaveNodeTreeToFile(const DOM_Node& node, const char* fileName, char mode) {
  VCUDataBuffer text;
  if (!ConvertNodeTreeToText(node, &text)) return false;  // it has said "Failed to write out"
  try {
    VCIo file;
    if (file.Open(fileName, mode ? VCIo::kModeCreate : VCIo::kModeAppend) &&
        file.Write(text.GetBasePtr(), text.GetSize()) && file.Close()) {
      return true;
    }
  } catch (...) {  // std::bad_alloc
  }
  std::fputs("Failed to write out\n", stdout);
  return false;
}

DOM_Element VCUXmlHelper::CreateUtlibErrorXmlNode(DOM_Document& document) {
  try {
    DOM_Element error = document.createElement("Error");
    DOM_Element current = error;
    for (const VCErrorRecord* record = VFGetUtLibError(); record && !current.isNull();) {
      AppendField(document, current, "Message", VFErrorGetMessage(record));
      if (*VFErrorGetLocation(record)) {
        AppendField(document, current, "Location", VFErrorGetLocation(record));
      }
      AppendField(document, current, "Code", VCString::Formatted("%d", VFErrorGetCode(record)));
      if (VFErrorGetOpSysCode(record) != 0) {
        AppendField(document, current, "OpSysCode",
                    VCString::Formatted("%d", VFErrorGetOpSysCode(record)));
      }
      if (*VFErrorGetOpSysMessage(record)) {
        AppendField(document, current, "OpSysMessage", VFErrorGetOpSysMessage(record));
      }
      record = VFErrorGetNextErr(record);
      if (record) {
        DOM_Element inner = document.createElement("Error");
        if (current.appendChild(inner).isNull()) throw std::bad_alloc();
        current = inner;
      }
    }
    return error;
  } catch (...) {  // std::bad_alloc
    return DOM_Element();
  }
}

void VCUXmlHelper::AppendUtlibErrorXmlToBuffer(const char* tag, VCUDataBuffer& buffer) {
  DOM_Document document = DOM_Document::createDocument();
  DOM_Element error = CreateUtlibErrorXmlNode(document);
  VCUDataBuffer text;
  if (error.isNull() || document.appendChild(error).isNull() ||
      !ConvertNodeTreeToText(error, &text)) {
    return;
  }
  const bool wrap = tag && *tag;
  if (wrap) {
    buffer.Append("<");
    buffer.Append(tag);
    buffer.Append(">");
  }
  buffer.Append(text.GetBasePtr(), text.GetSize());
  if (wrap) {
    buffer.Append("</");
    buffer.Append(tag);
    buffer.Append(">");
  }
}
