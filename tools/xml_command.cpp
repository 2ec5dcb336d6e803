#include "xml_command.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/xml_helper.h>

namespace {

constexpr const char* kFooter =
    R"(The file is parsed safely: external DTDs and entities are never read (they
count as empty), at most 10000 entity references are expanded, elements nest
at most 1000 deep (--max-depth, up to 10000: the layout indents each level by
a tab, so a deep chain prints its depth squared in tabs), and files over
256 MiB are refused (a document's tree takes about 13 times its size in
memory). Validity against a DTD is not checked; only
well-formedness errors stop the parse.

Output (UTF-8, standard output):
  default   each start tag on its own line, indented by one tab per level,
            and the end tag of every element with children on its own line
  --plain   the document as one text, no line feeds or indentation added
On failure the error records are printed as nested "Error" elements inside
"Errors" on standard error and the exit status is 1.

Examples:
  utilkit xml examples/channels.xml
  utilkit xml --plain examples/channels.xml
  utilkit xml examples/broken.xml)";

struct XmlOptions {
  std::string file;
  bool plain = false;
  int32_t maxDepth = VCUXmlHelper::kDefaultMaxNestingDepth;
};

int RunXml(const XmlOptions& options) {
  VFErrorClear();
  VCUXmlHelper::SetMaxNestingDepth(options.maxDepth);
  const DOM_Document document = VCUXmlHelper::ParseXmlFromFile(options.file.c_str());
  VCUDataBuffer text;
  if (document.isNull()) {
    std::fprintf(stderr, "utilkit xml: %s: cannot be read as XML\n", options.file.c_str());
    VCUXmlHelper::AppendUtlibErrorXmlToBuffer("Errors", text);
    std::fprintf(stderr, "%s\n", text.GetBasePtr());
    return 1;
  }
  // Streamed: the layout of a large document is never held whole.
  if (!VCUXmlHelper::WriteNodeTreeToStream(document, stdout, !options.plain)) {
    return 1;  // the helper has said "Failed to write out"
  }
  return 0;
}

}  // namespace

void AddXmlCommand(CLI::App& app) {
  auto options = std::make_shared<XmlOptions>();
  CLI::App* xml = app.add_subcommand(
      "xml", "Print an XML file in the human-readable layout, or show why it does not parse");
  xml->add_option("file", options->file, "XML file")->required();
  xml->add_flag("--plain", options->plain, "Print the plain layout instead");
  xml->add_option("--max-depth", options->maxDepth, "Deepest nesting of elements")
      ->capture_default_str()
      ->check(CLI::Range(1, 10000));
  xml->footer(kFooter);
  xml->callback([options] {
    if (const int status = RunXml(*options); status != 0) throw CLI::RuntimeError(status);
  });
}
