#include <utilkit/net/socket_io_xml.h>

#include <cctype>

#include <utilkit/base/error_report.h>
#include <utilkit/base/vc_string.h>
#include <utilkit/net/net_errors.h>
#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/xml_helper.h>

namespace {

constexpr int kReadSize = 10000;

}  // namespace

int VCUSocketIOXml::PutData(const DOM_Document& document, int timeoutSeconds) {
  VCUDataBuffer text;
  if (!VCUXmlHelper::ConvertNodeTreeToText(document, &text)) return 0;
  int sent = 0;
  return PutRawData(text.GetBasePtr(), text.GetSize(), timeoutSeconds, &sent);
}

int VCUSocketIOXml::GetData(const char* rootTag, DOM_Document* document, int timeoutSeconds) {
  static constexpr const char* kWhere = "VCUSocketIOXml::GetData";
  *document = DOM_Document();
  VCString endTag;
  VCString emptyTag;
  try {
    endTag.Format("</%s>", rootTag);
    emptyTag.Format("<%s/>", rootTag);
  } catch (...) {
    return VFReportError(kSocketErrorOutOfMemory, kWhere);
  }
  VCUDataBuffer text;
  char chunk[kReadSize];
  // Length of the text up to its last non-white-space byte: the end test
  // then never rescans white space that arrived earlier.
  int significant = 0;
  for (;;) {
    int received = 0;
    char timedOut = 0;
    if (!GetRawData(chunk, kReadSize, &received, timeoutSeconds, &timedOut)) return 0;
    if (timedOut) return VFReportError(kSocketErrorReadTimeout, kWhere);
    const int before = text.GetSize();
    if (!CheckMessageLimit(&text, received, kWhere)) return 0;
    if (!text.Append(chunk, received)) return VFReportError(kSocketErrorOutOfMemory, kWhere);
    for (int i = received; i > 0; --i) {
      if (!std::isspace(static_cast<unsigned char>(chunk[i - 1]))) {
        significant = before + i;
        break;
      }
    }
    if (CheckBufferEndForText(text.GetBasePtr(), significant, endTag) ||
        CheckBufferEndForText(text.GetBasePtr(), significant, emptyTag)) {
      break;
    }
  }
  *document = VCUXmlHelper::ParseXml(text.GetBasePtr(), text.GetSize());
  return document->isNull() ? 0 : 1;
}
