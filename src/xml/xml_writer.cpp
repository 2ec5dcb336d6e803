// VCUXmlHelper::ConvertNodeTreeToText and ConvertNodeTreeToHumanReadableText.
//
// The tree is walked with an explicit stack rather than by recursion, so a
// deeply nested document (which the parser accepts) cannot exhaust the
// call stack. The output is the same as a recursive writer's: a node type
// that cannot be written ends the whole walk at that point.
#include <utilkit/xml/xml_helper.h>

#include <cassert>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

#include <utilkit/xml/data_buffer_format_target.h>

#include "xml/dom_access.h"
#include "xml/xerces_platform.h"

namespace {

using Escapes = xc::XMLFormatter::EscapeFlags;
constexpr Escapes kNoEscapes = xc::XMLFormatter::NoEscapes;

std::u16string_view View(const XMLCh* text) {
  return text ? std::u16string_view(reinterpret_cast<const char16_t*>(text))
              : std::u16string_view();
}

// Position of the first surrogate at or after `from` without its partner, or npos. Xerces'
// UTF-8 transcoder does not check pairs (it merges a lone high surrogate with
// whatever follows and stalls on one at the end of a piece), so the parser
// never produces them but texts built by hosts may hold them.
size_t FindUnpairedSurrogate(std::u16string_view text, size_t from = 0) {
  for (size_t i = from; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c < 0xD800 || c > 0xDFFF) continue;
    if (c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      ++i;
      continue;
    }
    return i;
  }
  return std::u16string_view::npos;
}

// The value of the pseudo-attribute `name` in the data of an XML
// declaration node (`version="1.0" standalone="yes"`); `*found` tells
// whether it is there.
std::u16string_view PseudoAttribute(std::u16string_view data, std::u16string_view name,
                                    bool* found) {
  for (size_t at = data.find(name); at != std::u16string_view::npos; at = data.find(name, at + 1)) {
    const size_t open = at + name.size();
    if ((at == 0 || data[at - 1] == u' ') && data.substr(open, 2) == u"=\"") {
      const size_t close = data.find(u'"', open + 2);
      if (close == std::u16string_view::npos) break;
      *found = true;
      return data.substr(open + 2, close - open - 2);
    }
  }
  *found = false;
  return {};
}

class TreeWriter {
 public:
  TreeWriter(xc::XMLFormatter& formatter, bool humanReadable)
      : m_out(formatter), m_human(humanReadable) {}

  // Writes `root` and its descendants; false at the first node that cannot be written.
  bool Write(const xc::DOMNode* root);

 private:
  struct Open {
    const xc::DOMNode* node;
    int depth;
  };

  // Writes `text`; unpaired surrogates are written as U+FFFD.
  void Put(std::u16string_view text, Escapes escapes = kNoEscapes) {
    size_t bad = FindUnpairedSurrogate(text);
    if (bad != std::u16string_view::npos) {
      m_repaired.assign(text);
      for (; bad != std::u16string_view::npos; bad = FindUnpairedSurrogate(m_repaired, bad + 1)) {
        m_repaired[bad] = u'\uFFFD';
      }
      text = m_repaired;
    }
    m_out.formatBuf(reinterpret_cast<const XMLCh*>(text.data()), text.size(), escapes);
  }
  void Put(const XMLCh* text, Escapes escapes = kNoEscapes) { Put(View(text), escapes); }
  void NewLine(int depth) {
    Put(u"\n");
    for (int i = 0; i < depth; ++i) Put(u"\t");
  }

  // Writes what comes before a node's children (all of a leaf); false for
  // a node type that cannot be written. `*descend` tells whether the
  // children follow.
  bool Start(const xc::DOMNode* node, int depth, bool* descend);
  // Writes what follows the children of a node that has them.
  void End(const xc::DOMNode* node, int depth);
  // Writes what follows each child of `parent`.
  void AfterChild(const xc::DOMNode* parent) {
    if (parent->getNodeType() == xc::DOMNode::DOCUMENT_NODE) Put(u"\n");
  }

  void StartElement(const xc::DOMNode* node, int depth, bool* descend);
  void WriteEntity(const xc::DOMEntity* entity);
  void WriteDocumentType(const xc::DOMDocumentType* type);
  void WriteXmlDeclaration(const xc::DOMNode* node);

  xc::XMLFormatter& m_out;
  bool m_human;
  std::u16string m_repaired;  // scratch space of Put
};

bool TreeWriter::Write(const xc::DOMNode* root) {
  std::vector<Open> open;  // ancestors whose end is still to be written
  const xc::DOMNode* node = root;
  int depth = 0;
  for (;;) {
    bool descend = false;
    if (!Start(node, depth, &descend)) return false;
    if (descend && node->getFirstChild()) {
      open.push_back({node, depth});
      if (node->getNodeType() == xc::DOMNode::ELEMENT_NODE) ++depth;
      node = node->getFirstChild();
      continue;
    }
    // Climb until a node with a next sibling (inside the tree) is found.
    for (;;) {
      if (open.empty()) return true;
      AfterChild(open.back().node);
      if (const xc::DOMNode* next = node->getNextSibling()) {
        node = next;
        break;
      }
      node = open.back().node;
      depth = open.back().depth;
      open.pop_back();
      End(node, depth);
    }
  }
}

bool TreeWriter::Start(const xc::DOMNode* node, int depth, bool* descend) {
  switch (utilkit::xml::NodeTypeOf(node)) {
    case DOM_Node::ELEMENT_NODE:
      StartElement(node, depth, descend);
      return true;
    case DOM_Node::TEXT_NODE:
      Put(node->getNodeValue(), xc::XMLFormatter::CharEscapes);
      return true;
    case DOM_Node::CDATA_SECTION_NODE:
      Put(u"<![CDATA[");
      Put(node->getNodeValue());
      Put(u"]]>");
      return true;
    case DOM_Node::ENTITY_REFERENCE_NODE:
      Put(u"&");
      Put(node->getNodeName());
      Put(u";");
      return true;
    case DOM_Node::ENTITY_NODE:
      WriteEntity(static_cast<const xc::DOMEntity*>(node));
      return true;
    case DOM_Node::PROCESSING_INSTRUCTION_NODE: {
      Put(u"<?");
      Put(node->getNodeName());
      const std::u16string_view data = View(node->getNodeValue());
      if (!data.empty()) {
        Put(u" ");
        Put(data);
      }
      Put(u"?>");
      return true;
    }
    case DOM_Node::COMMENT_NODE:
      Put(u"<!--");
      Put(node->getNodeValue());
      Put(u"-->");
      return true;
    case DOM_Node::DOCUMENT_NODE:
      *descend = true;
      return true;
    case DOM_Node::DOCUMENT_TYPE_NODE:
      WriteDocumentType(static_cast<const xc::DOMDocumentType*>(node));
      return true;
    case DOM_Node::XML_DECL_NODE:
      WriteXmlDeclaration(node);
      return true;
    default:  // attribute, document fragment, notation
      return false;
  }
}

void TreeWriter::End(const xc::DOMNode* node, int depth) {
  if (node->getNodeType() != xc::DOMNode::ELEMENT_NODE) return;
  if (m_human) NewLine(depth);
  Put(u"</");
  Put(node->getNodeName());
  Put(u">");
}

void TreeWriter::StartElement(const xc::DOMNode* node, int depth, bool* descend) {
  if (m_human) NewLine(depth);
  Put(u"<");
  Put(node->getNodeName());
  if (const xc::DOMNamedNodeMap* attributes = node->getAttributes()) {
    for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
      const xc::DOMNode* attribute = attributes->item(i);
      Put(u" ");
      Put(attribute->getNodeName());
      Put(u"=\"");
      Put(attribute->getNodeValue(), xc::XMLFormatter::AttrEscapes);
      Put(u"\"");
    }
  }
  *descend = node->hasChildNodes();
  Put(*descend ? u">" : u"/>");
}

void TreeWriter::WriteEntity(const xc::DOMEntity* entity) {
  Put(u"<!ENTITY ");
  Put(entity->getNodeName());
  if (const XMLCh* id = entity->getPublicId(); !View(id).empty()) {
    Put(u"PUBLIC \"");
    Put(id);
    Put(u"\"");
  }
  if (const XMLCh* id = entity->getSystemId(); !View(id).empty()) {
    Put(u"SYSTEM \"");
    Put(id);
    Put(u"\"");
  }
  if (const XMLCh* name = entity->getNotationName(); !View(name).empty()) {
    Put(u"NDATA \"");
    Put(name);
    Put(u"\"");
  }
  Put(u">\n");
}

void TreeWriter::WriteDocumentType(const xc::DOMDocumentType* type) {
  Put(u"<!DOCTYPE ");
  Put(type->getNodeName());
  const std::u16string_view publicId = View(type->getPublicId());
  const std::u16string_view systemId = View(type->getSystemId());
  if (!publicId.empty()) {
    Put(u" PUBLIC \"");
    Put(publicId);
    Put(u"\"");
    if (!systemId.empty()) {
      Put(u" \"");
      Put(systemId);
      Put(u"\"");
    }
  } else if (!systemId.empty()) {
    Put(u" SYSTEM \"");
    Put(systemId);
    Put(u"\"");
  }
  if (const std::u16string_view subset = View(type->getInternalSubset()); !subset.empty()) {
    Put(u"[");
    Put(subset);
    Put(u"]");
  }
  Put(u">");
}

void TreeWriter::WriteXmlDeclaration(const xc::DOMNode* node) {
  const std::u16string_view data = View(node->getNodeValue());
  bool found = false;
  Put(u"<?xml version=\"");
  Put(PseudoAttribute(data, u"version", &found));
  Put(u"\" encoding=\"");
  Put(m_out.getEncodingName());
  if (const std::u16string_view standalone = PseudoAttribute(data, u"standalone", &found); found) {
    Put(u"\" standalone=\"");
    Put(standalone);
  }
  Put(u"\"?>\n");
}

// Passes the formatter's output on to a stream in pieces of kPiece bytes.
class StreamFormatTarget : public xc::XMLFormatTarget {
 public:
  explicit StreamFormatTarget(std::FILE* stream) : m_stream(stream) { m_piece.reserve(kPiece); }

  void writeChars(const XMLByte* const bytes, const XMLSize_t count, xc::XMLFormatter*) override {
    if (m_piece.size() + count > kPiece) Flush();
    if (count >= kPiece) {
      Write(reinterpret_cast<const char*>(bytes), count);
    } else {
      m_piece.append(reinterpret_cast<const char*>(bytes), count);
    }
  }
  // Writes what is held back; throws when the stream refuses it.
  void Flush() {
    Write(m_piece.data(), m_piece.size());
    m_piece.clear();
  }

 private:
  static constexpr size_t kPiece = size_t{64} << 10;
  void Write(const char* bytes, size_t count) {
    if (count != 0 && std::fwrite(bytes, 1, count, m_stream) != count) {
      throw xc::OutOfMemoryException();  // the formatter's only failure signal
    }
  }
  std::FILE* m_stream;
  std::string m_piece;
};

// Writes `node` through a UTF-8 formatter over `target`; false with "Failed
// to write out" on standard output when anything fails.
template <class Target, class Finish>
bool Serialise(const DOM_Node& node, bool humanReadable, Target make, Finish finish) {
  try {
    if (!utilkit::xml::EnsureXercesPlatform()) throw std::bad_alloc();
    auto target = make();
    xc::XMLFormatter formatter("UTF-8", &target, xc::XMLFormatter::NoEscapes,
                               xc::XMLFormatter::UnRep_CharRef);
    // The writer's result is deliberately not looked at: a node that cannot
    // be written only cuts the output short.
    if (const xc::DOMNode* root = VCUDomAccess::Node(node)) {
      TreeWriter(formatter, humanReadable).Write(root);
    }
    if (finish(target)) return true;
  } catch (...) {  // XMLException, OutOfMemoryException, DOMException, std::bad_alloc
  }
  std::fputs("Failed to write out\n", stdout);
  return false;
}

bool SerialiseToBuffer(const DOM_Node& node, VCUDataBuffer* out, bool humanReadable) {
  assert(out != nullptr);
  return Serialise(
      node, humanReadable, [] { return VCUDataBufferFormatTarget(); },
      [out](VCUDataBufferFormatTarget& target) {
        out->Clear();
        const VCUDataBuffer& written = target.GetBuffer();
        return out->Append(written.GetBasePtr(), written.GetSize());
      });
}

}  // namespace

bool VCUXmlHelper::ConvertNodeTreeToText(const DOM_Node& node, VCUDataBuffer* out) {
  return SerialiseToBuffer(node, out, false);
}

bool VCUXmlHelper::ConvertNodeTreeToHumanReadableText(const DOM_Node& node, VCUDataBuffer* out) {
  return SerialiseToBuffer(node, out, true);
}

bool VCUXmlHelper::WriteNodeTreeToStream(const DOM_Node& node, std::FILE* stream,
                                         bool humanReadable) {
  assert(stream != nullptr);
  return Serialise(
      node, humanReadable, [stream] { return StreamFormatTarget(stream); },
      [stream](StreamFormatTarget& target) {
        target.Flush();
        return std::fflush(stream) == 0;
      });
}
