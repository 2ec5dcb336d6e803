// The DOM handles: value semantics, navigation, creation, refusals, lifetime.
#include <utilkit/xml/dom.h>

#include "xml/xml_test_support.h"

namespace {

using xml_test::Parse;
using xml_test::Plain;
using xml_test::Utf8;

TEST(DomStringTest, NullAndEmptyAreDistinct) {
  DOMString null;
  DOMString empty(u"");
  EXPECT_TRUE(null.isNull());
  EXPECT_FALSE(empty.isNull());
  EXPECT_EQ(null.length(), 0u);
  EXPECT_EQ(std::u16string(null.rawBuffer()), u"");
  EXPECT_FALSE(null == empty);
  EXPECT_TRUE(DOMString(static_cast<const char*>(nullptr)).isNull());

  DOMString text("Kraft \xc3\xa4");
  EXPECT_EQ(text.str(), u"Kraft \u00e4");
  EXPECT_EQ(text.transcode(), "Kraft \xc3\xa4");
  EXPECT_TRUE(text == DOMString(u"Kraft \u00e4"));
  EXPECT_EQ(DOMString(u"abcdef", 3).str(), u"abc");
  null.appendData(DOMString(u"x"));
  EXPECT_FALSE(null.isNull());
  EXPECT_EQ(null.str(), u"x");
}

TEST(DomNodeTest, NullHandlesReadAsEmptyAndRefuseChanges) {
  DOM_Node null;
  EXPECT_TRUE(null.isNull());
  EXPECT_EQ(null.getNodeType(), 0);
  EXPECT_TRUE(null.getNodeName().isNull());
  EXPECT_TRUE(null.getFirstChild().isNull());
  EXPECT_TRUE(null.getChildNodes().isNull());
  EXPECT_EQ(null.getChildNodes().getLength(), 0u);
  EXPECT_TRUE(null.getAttributes().isNull());
  EXPECT_TRUE(null.getOwnerDocument().isNull());
  EXPECT_FALSE(null.hasChildNodes());
  EXPECT_TRUE(DOM_Document().getDocumentElement().getFirstChild().isNull());

  DOM_DOMException why;
  EXPECT_TRUE(null.appendChild(DOM_Node(), &why).isNull());
  EXPECT_EQ(why.code, DOM_DOMException::INVALID_STATE_ERR);
  EXPECT_FALSE(why.msg.isNull());
  EXPECT_FALSE(DOM_Element().setAttribute("a", "b"));
}

TEST(DomNodeTest, HandlesAreValuesComparedByNode) {
  DOM_Document doc = Parse("<r><a/><b/></r>");
  DOM_Node a = doc.getDocumentElement().getFirstChild();
  DOM_Node copy = a;
  EXPECT_TRUE(copy == a);
  EXPECT_TRUE(a.getNextSibling().getPreviousSibling() == a);
  EXPECT_FALSE(a == a.getNextSibling());
  EXPECT_TRUE(a.getParentNode() == doc.getDocumentElement());
  EXPECT_TRUE(a.getOwnerDocument() == doc);
  EXPECT_TRUE(doc.getOwnerDocument().isNull());
  copy = DOM_Node();
  EXPECT_FALSE(a.isNull());
}

TEST(DomNodeTest, AnyHandleKeepsTheDocumentAlive) {
  DOM_Node leaf;
  DOM_NodeList list;
  {
    DOM_Document doc = Parse("<r><a>text</a><b/></r>");
    leaf = doc.getDocumentElement().getFirstChild().getFirstChild();
    list = doc.getDocumentElement().getChildNodes();
  }
  EXPECT_EQ(Utf8(leaf.getNodeValue()), "text");
  EXPECT_EQ(Utf8(leaf.getOwnerDocument().getDocumentElement().getNodeName()), "r");
  ASSERT_EQ(list.getLength(), 2u);
  EXPECT_EQ(Utf8(list.item(1).getNodeName()), "b");
  EXPECT_TRUE(list.item(2).isNull());
}

TEST(DomNodeTest, TypesNamesAndValues) {
  DOM_Document doc = Parse("<r a=\"v\">t<![CDATA[c]]><!--m--><?p d?></r>");
  DOM_Element r = doc.getDocumentElement();
  EXPECT_EQ(doc.getNodeType(), DOM_Node::DOCUMENT_NODE);
  EXPECT_EQ(Utf8(doc.getNodeName()), "#document");
  EXPECT_EQ(r.getNodeType(), DOM_Node::ELEMENT_NODE);
  EXPECT_TRUE(r.getNodeValue().isNull());
  EXPECT_EQ(Utf8(r.getTagName()), "r");
  DOM_Node n = r.getFirstChild();
  EXPECT_EQ(n.getNodeType(), DOM_Node::TEXT_NODE);
  EXPECT_EQ(Utf8(n.getNodeName()), "#text");
  n = n.getNextSibling();
  EXPECT_EQ(n.getNodeType(), DOM_Node::CDATA_SECTION_NODE);
  n = n.getNextSibling();
  EXPECT_EQ(n.getNodeType(), DOM_Node::COMMENT_NODE);
  EXPECT_EQ(Utf8(n.getNodeValue()), "m");
  n = n.getNextSibling();
  EXPECT_EQ(n.getNodeType(), DOM_Node::PROCESSING_INSTRUCTION_NODE);
  EXPECT_EQ(Utf8(n.getNodeName()), "p");
  EXPECT_EQ(Utf8(n.getNodeValue()), "d");
  EXPECT_TRUE(n == r.getLastChild());
  DOM_Node attribute = r.getAttributes().item(0);
  EXPECT_EQ(attribute.getNodeType(), DOM_Node::ATTRIBUTE_NODE);
  EXPECT_EQ(Utf8(attribute.getNodeValue()), "v");
  EXPECT_TRUE(DOM_Element(n).isNull());
  EXPECT_TRUE(DOM_Document(r).isNull());
  EXPECT_FALSE(DOM_Element(DOM_Node(r)).isNull());
}

TEST(DomNodeTest, BuildingAndEditingATree) {
  DOM_Document doc = DOM_Document::createDocument();
  ASSERT_FALSE(doc.isNull());
  DOM_Element root = doc.createElement("Properties");
  EXPECT_TRUE(doc.appendChild(root) == root);
  DOM_Element b = doc.createElement("b");
  DOM_Element a = doc.createElement("a");
  root.appendChild(b);
  EXPECT_TRUE(root.insertBefore(a, b) == a);
  EXPECT_TRUE(root.setAttribute("name", "x"));
  EXPECT_TRUE(root.setAttribute("unit", "kN"));
  EXPECT_TRUE(root.setAttribute("name", "y"));  // replaced in place
  EXPECT_TRUE(root.hasAttribute("unit"));
  EXPECT_TRUE(root.removeAttribute("unit"));
  EXPECT_FALSE(root.hasAttribute("unit"));
  EXPECT_TRUE(root.getAttribute("unit").length() == 0 && !root.getAttribute("unit").isNull());
  a.appendChild(doc.createTextNode("1 < 2"));
  b.appendChild(doc.createComment("c"));
  b.appendChild(doc.createCDATASection("d"));
  b.appendChild(doc.createProcessingInstruction("t", "v"));
  EXPECT_EQ(
      Plain(doc),
      "<Properties name=\"y\"><a>1 &lt; 2</a><b><!--c--><![CDATA[d]]><?t v?></b></Properties>\n");

  EXPECT_TRUE(a.getFirstChild().setNodeValue("3"));
  DOM_Node clone = a.cloneNode(true);
  EXPECT_TRUE(clone.getParentNode().isNull());
  EXPECT_TRUE(root.replaceChild(clone, b) == b);
  EXPECT_TRUE(root.removeChild(a) == a);
  EXPECT_EQ(Plain(doc), "<Properties name=\"y\"><a>3</a></Properties>\n");
  EXPECT_EQ(root.getElementsByTagName("a").getLength(), 1u);
  EXPECT_EQ(doc.getElementsByTagName("*").getLength(), 2u);
}

TEST(DomNodeTest, RefusalsAreReportedNotThrown) {
  DOM_Document doc = DOM_Document::createDocument();
  DOM_Document other = DOM_Document::createDocument();
  DOM_Element root = doc.createElement("r");
  doc.appendChild(root);
  DOM_DOMException why;

  EXPECT_TRUE(doc.createElement("1bad", &why).isNull());
  EXPECT_EQ(why.code, DOM_DOMException::INVALID_CHARACTER_ERR);
  EXPECT_FALSE(why.msg.isNull());

  EXPECT_TRUE(root.appendChild(other.createElement("x"), &why).isNull());
  EXPECT_EQ(why.code, DOM_DOMException::WRONG_DOCUMENT_ERR);

  EXPECT_TRUE(doc.appendChild(doc.createElement("second"), &why).isNull());
  EXPECT_EQ(why.code, DOM_DOMException::HIERARCHY_REQUEST_ERR);

  DOM_Element child = doc.createElement("c");
  root.appendChild(child);
  EXPECT_TRUE(child.appendChild(root, &why).isNull());  // an ancestor
  EXPECT_EQ(why.code, DOM_DOMException::HIERARCHY_REQUEST_ERR);

  EXPECT_TRUE(root.removeChild(doc.createElement("loose"), &why).isNull());
  EXPECT_EQ(why.code, DOM_DOMException::NOT_FOUND_ERR);

  EXPECT_FALSE(root.setAttribute("a b", "v", &why));
  EXPECT_EQ(why.code, DOM_DOMException::INVALID_CHARACTER_ERR);

  EXPECT_TRUE(doc.cloneNode(true, &why).isNull());
  EXPECT_EQ(why.code, DOM_DOMException::NOT_SUPPORTED_ERR);

  // Entity reference contents are read-only.
  DOM_Document parsed = Parse("<!DOCTYPE r [<!ENTITY e \"v\">]><r>&e;</r>");
  DOM_Node text = parsed.getDocumentElement().getFirstChild().getFirstChild();
  EXPECT_FALSE(text.setNodeValue("w", &why));
  EXPECT_EQ(why.code, DOM_DOMException::NO_MODIFICATION_ALLOWED_ERR);
  EXPECT_FALSE(text.setNodeValue("w"));  // the report is optional
}

TEST(DomNodeTest, ImportCopiesAcrossDocuments) {
  DOM_Document source = Parse("<r><item k=\"1\">x</item></r>");
  DOM_Document target = DOM_Document::createDocument();
  DOM_Node copy = target.importNode(source.getDocumentElement().getFirstChild(), true);
  ASSERT_FALSE(copy.isNull());
  EXPECT_TRUE(copy.getOwnerDocument() == target);
  target.appendChild(copy);
  source = DOM_Document();
  EXPECT_EQ(Plain(target), "<item k=\"1\">x</item>\n");

  DOM_DOMException why;
  EXPECT_TRUE(target.importNode(target, true, &why).isNull());
  EXPECT_EQ(why.code, DOM_DOMException::NOT_SUPPORTED_ERR);
}

TEST(DomNodeTest, AttributeMapsAndDocumentTypes) {
  DOM_Document doc = Parse("<!DOCTYPE r SYSTEM \"r.dtd\" [<!ENTITY e \"v\">]><r b=\"2\" a=\"1\"/>");
  ASSERT_FALSE(doc.isNull());
  DOM_NamedNodeMap attributes = doc.getDocumentElement().getAttributes();
  ASSERT_EQ(attributes.getLength(), 2u);
  EXPECT_EQ(Utf8(attributes.item(0).getNodeName()), "a");  // sorted by name
  EXPECT_EQ(Utf8(attributes.getNamedItem("a").getNodeValue()), "1");
  EXPECT_TRUE(attributes.getNamedItem("c").isNull());
  EXPECT_TRUE(attributes.item(2).isNull());
  EXPECT_TRUE(doc.getDocumentElement().getFirstChild().getAttributes().isNull());

  DOM_DocumentType type = doc.getDoctype();
  ASSERT_FALSE(type.isNull());
  EXPECT_EQ(Utf8(type.getName()), "r");
  EXPECT_EQ(Utf8(type.getSystemId()), "r.dtd");
  EXPECT_EQ(Utf8(type.getPublicId()), "");
  EXPECT_EQ(Utf8(type.getInternalSubset()), "<!ENTITY e \"v\">");
  EXPECT_EQ(type.getEntities().getLength(), 1u);
  EXPECT_EQ(type.getEntities().item(0).getNodeType(), DOM_Node::ENTITY_NODE);
  EXPECT_TRUE(DOM_DocumentType(doc.getDocumentElement()).isNull());
}

}  // namespace
