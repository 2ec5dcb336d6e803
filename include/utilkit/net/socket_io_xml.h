// VCUSocketIOXml: XML documents as messages over a VCUSocketIO.
//
// A message is one XML document as text, without length or terminator: the
// receiver knows it has ended when everything received so far ends, trailing
// white space ignored, with the closing tag of the expected root element
// ("</Reply>") or its empty-element form ("<Reply/>"). The peer must
// therefore send one document and then wait for the answer.
//
//   VCUSocketIOXml io;                       // connected by a client or server socket
//   io.PutData(request, 5);
//   DOM_Document reply;
//   if (io.GetData("Reply", &reply, 5)) ... reply.getDocumentElement() ...
//
// Received documents are parsed with the XML helper's safe settings (no
// external entities, entity expansion limited). Ownership and copying as
// for VCUSocketIO; the documents are shared handles (dom_node.h).
#pragma once

#include <utilkit/base/export.h>
#include <utilkit/net/socket_io.h>
#include <utilkit/xml/dom_document.h>

class UTILKIT_API VCUSocketIOXml : public VCUSocketIO {
 public:
  VCUSocketIOXml() = default;
  VCUSocketIOXml(const VCUSocketIOXml& other) = default;
  VCUSocketIOXml& operator=(const VCUSocketIOXml& other) = default;
  ~VCUSocketIOXml() override = default;

  // Sends the document in the helper's plain layout (UTF-8), no terminator.
  // 1 on success; 0 when it cannot be written (the helper's "Failed to
  // write out") or with PutRawData's errors.
  int PutData(const DOM_Document& document, int timeoutSeconds);
  // Receives one document whose root element is `rootTag` and parses it
  // into `*document` (null on failure). Each wait for more data may take
  // `timeoutSeconds`. 1 on success; 0 with GetRawData's errors, -655578 at
  // "VCUSocketIOXml::GetData" when the time limit passes, -655561 when the
  // text grows past GetMaxMessageSize() (connection closed), -655577 when
  // memory runs out, or the parser's -655761.
  int GetData(const char* rootTag, DOM_Document* document, int timeoutSeconds);
};
