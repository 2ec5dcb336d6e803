// VCUXmlHelper: the static XML operations every XML user of the library goes through.
//
// It parses XML text or files into DOM documents (dom.h), finds children,
// attributes and text with fixed failure rules, converts between VCString
// and DOMString, serialises node trees into a VCUDataBuffer or a file, and
// renders the error stack as nested "Error" elements.
//
//   DOM_Document doc = VCUXmlHelper::ParseXml(text, -1);
//   DOM_Node channel;
//   VCString unit;
//   if (!doc.isNull() &&
//       VCUXmlHelper::GetSingleElementChild(doc.getDocumentElement(), "Channel", &channel) &&
//       VCUXmlHelper::GetAttribute(channel, "unit", &unit)) { ... }
//   VCUDataBuffer out;
//   VCUXmlHelper::ConvertNodeTreeToHumanReadableText(doc, &out);
//
// Ownership: documents are shared handles (see dom_node.h); the caller's
// buffers and strings are replaced or appended to as each member says.
// Errors go to the error stack with the codes below; no member throws.
// Text passed as `char` is in the process encoding (VFGetEncodingType,
// asked on every call); serialised output is always UTF-8.
//
// Safe parsing. Documents may come from untrusted peers, so ParseXml:
//  - never reads an external DTD or external entity: every such resource
//    resolves to empty text, so a SYSTEM or PUBLIC entity expands to nothing
//    and a document that names an external DTD parses as if it had none
//    (no file or network access is made from a document);
//  - allows at most kMaxEntityExpansions entity expansions per document
//    (a "billion laughs" document fails at once);
//  - refuses texts longer than kMaxParseBytes, and stops a parse that needs
//    more than 64 MiB plus kParseMemoryFactor times the text's length
//    (bounding what entities can amplify even below the expansion limit);
//  - refuses elements nested deeper than GetMaxNestingDepth() (default
//    kDefaultMaxNestingDepth), so no walk over a parsed tree runs deep and
//    the human-readable layout of a parsed document stays in proportion;
//  - ignores validity errors: a DOCTYPE switches the validator on (the
//    scheme is automatic), but only well-formedness errors end a parse.
// Internal DTD subsets with entities, default attributes, CDATA sections,
// comments and processing instructions parse normally. All refusals are
// -655761 like any other parse failure.
//
// The XML platform is initialised on first use (once per process, thread
// safe); if that fails, "Error initialising Xerces!\n" goes to standard
// error and every parse fails with -655761.
#pragma once

#include <cstdint>
#include <cstdio>

#include <utilkit/base/export.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/dom.h>

class R5Property;

class UTILKIT_API VCUXmlHelper {
 public:
  // Longest text (in bytes) that ParseXml and ParseXmlFromFile accept.
  static constexpr int32_t kMaxParseBytes = 256 * 1024 * 1024;
  // Most entity expansions (references to declared entities) in one document.
  static constexpr int32_t kMaxEntityExpansions = 10000;
  // A parse may use 64 MiB plus this many times the text's length.
  static constexpr int32_t kParseMemoryFactor = 96;
  // Default of the deepest element nesting a parse accepts.
  static constexpr int32_t kDefaultMaxNestingDepth = 1000;

  // Sets the deepest element nesting that ParseXml accepts for the whole
  // process (a value below 1 restores the default). Thread safe.
  static void SetMaxNestingDepth(int32_t depth);
  static int32_t GetMaxNestingDepth();

  VCUXmlHelper() = default;
  VCUXmlHelper(const VCUXmlHelper&) = default;
  VCUXmlHelper& operator=(const VCUXmlHelper&) = default;
  virtual ~VCUXmlHelper();

  // Parses `length` bytes of `text` (a negative length: up to the first 0;
  // a null text counts as ""). Null document on failure with -655761
  // carrying the parser's message in the process encoding ("Error parsing
  // XML text" when there is none; "Out of memory" when the memory bound is
  // hit; "Error parsing XML text: elements nested more than N deep").
  static DOM_Document ParseXml(const char* text, int32_t length);
  // Reads the whole file and parses it. Null document on failure: open and
  // read failures leave only the file layer's record; -655577 when the
  // bytes cannot be allocated; -655761 from the parse (or for a file
  // longer than kMaxParseBytes).
  static DOM_Document ParseXmlFromFile(const char* fileName);

  // Finds the first direct child element of `parent` whose name is `tag`
  // (exact, case-sensitive) and stores it in `*out` (null otherwise).
  // Later children with the same tag are ignored, so -655762 is never
  // raised. False with -655764 when there is none, -655763 on an
  // unexpected failure.
  static bool GetSingleElementChild(const DOM_Node& parent, const char* tag, DOM_Node* out);
  // Stores the attribute's value in `*out`. False with -655765 when the
  // node has no attribute map (it is not an element), -655766 when the
  // attribute is absent, -655767 on an unexpected failure. A present but
  // empty attribute succeeds with "".
  static bool GetAttribute(const DOM_Node& element, const char* name, VCString* out);
  // The value of the node's first child, whatever its type (text, CDATA or
  // comment give their text; an element gives ""). "" with -655768 when
  // there is no child, with -655769 when the value is empty.
  static VCString GetTextFromElement(const DOM_Node& element);

  // UTF-16 to the process encoding.
  static VCString DOMToVCString(const DOMString& text);
  // UTF-16 to UTF-8, whatever the process encoding.
  static VCString DOMToUTF8String(const DOMString& text);
  // Process encoding to UTF-16, dropping the control bytes 1 to 31 other
  // than tab, line feed and carriage return. Null for a null pointer.
  static DOMString VCToDOMString(const char* text);
  // UTF-8 to UTF-16 without filtering. Null for a null pointer.
  static DOMString UTF8ToDOMString(const char* text);
  // A VCString of `text` ("" for null); releases `text`, which Xerces
  // allocated (XMLString::transcode), through Xerces.
  static VCString PtrToString(char* text);

  // Replaces `*out` with the node tree in the plain layout (UTF-8, no line
  // feeds or indentation added; attributes in the map's order, sorted by
  // name; unpaired UTF-16 surrogates as U+FFFD). True even when a node type that cannot
  // be written (attribute, document fragment, notation) ends the output
  // early; false with "Failed to write out\n" on standard output when
  // serialisation fails (memory, unencodable text).
  static bool ConvertNodeTreeToText(const DOM_Node& node, VCUDataBuffer* out);
  // As ConvertNodeTreeToText in the human-readable layout: each start tag
  // on its own line indented by one tab per level, and the end tag of each
  // element with children on its own line. A document's children are at
  // the document's level (the root element is not indented).
  static bool ConvertNodeTreeToHumanReadableText(const DOM_Node& node, VCUDataBuffer* out);
  // Writes the plain (or, with `humanReadable`, the human-readable) layout
  // to `stream` in pieces of 64 KiB, never holding the whole text. False
  // with "Failed to write out\n" on standard output when serialisation or
  // a write fails; what was written before stays written.
  static bool WriteNodeTreeToStream(const DOM_Node& node, std::FILE* stream, bool humanReadable);
  // Writes the plain layout to a file: created or emptied when `mode` is
  // non-zero, appended to when it is 0. False with "Failed to write out\n"
  // on standard output on any failure; the file layer's own record stays
  // on the error stack, this member adds none.
  static bool SaveNodeTreeToFile(const DOM_Node& node, const char* fileName, char mode);

  // A new "Error" element of `document` holding the error stack, oldest
  // record first, each later record nested in an "Error" element inside
  // the earlier one: "Message", "Location" (if not empty), "Code",
  // "OpSysCode" (if not 0), "OpSysMessage" (if not empty). An empty stack
  // gives an empty "Error". Null when `document` is null or memory runs out.
  static DOM_Element CreateUtlibErrorXmlNode(DOM_Document& document);
  // Appends the error stack as plain XML to `buffer`, inside <tag>...</tag>
  // when `tag` is neither null nor empty. The stack is only read. Nothing
  // is appended when serialisation fails.
  static void AppendUtlibErrorXmlToBuffer(const char* tag, VCUDataBuffer& buffer);

  // Appends to `parent` a "property" element describing `property` (see
  // VFPropertyToDomElement in <utilkit/properties/property_to_dom_element.h>
  // for the layout). False when `property` is null or the DOM refuses.
  static bool PropertyToDomElement(R5Property* property, int32_t index, DOM_Element& parent,
                                   const VCString& name);
};
