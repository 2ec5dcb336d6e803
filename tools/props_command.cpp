#include "props_command.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/properties/user_defined_properties.h>
#include <utilkit/xml/data_buffer.h>
#include <utilkit/xml/dom_document.h>
#include <utilkit/xml/xml_helper.h>

namespace {

constexpr const char* kFooter =
    R"(The file holds a "Properties" element with one "Property" element per
property. Attributes of "Property":
  name           required; a later property of the same name replaces it
  type           string (default), long, huge, float, double, enum, boolean
  mandatory      "true" (any case) when a value must be given
  min, max       bounds of long, huge, float and double; whole numbers for
                 long and huge (others are rounded half away from zero)
  minallowequal  whether the value may equal the bound (default true);
  maxallowequal  true/false, yes/no, on/off or 1/0
  enumopts       the entries of an enum, separated by ","
  description    a short description
  help           help text; "|" starts a new line
Output: one line per property (name, type, valid values, flags), then its
description and help indented. With --encoded the definition is printed as
the library writes it back. On failure the error records are printed as XML
on standard error and the exit status is 1.

Example:
  utilkit props examples/properties.xml)";

struct PropsOptions {
  std::string file;
  bool encoded = false;
};

// "min <= value <= max" with the bounds that restrict the type.
template <class T>
std::string RangeText(const R5Property& property) {
  using P = R5RangedProperty<T>;
  const auto& ranged = static_cast<const P&>(property);
  std::string text;
  const bool hasMin = ranged.GetMin() != P::Lowest() || !ranged.GetMinAllowEqual();
  const bool hasMax = ranged.GetMax() != P::Highest() || !ranged.GetMaxAllowEqual();
  if (!hasMin && !hasMax) return "any number";
  if (hasMin) {
    text = P::ValueToText(ranged.GetMin()).str() + (ranged.GetMinAllowEqual() ? " <= " : " < ");
  }
  text += "value";
  if (hasMax) {
    text += (ranged.GetMaxAllowEqual() ? " <= " : " < ") + P::ValueToText(ranged.GetMax()).str();
  }
  return text;
}

std::string ValuesText(const R5Property& property) {
  switch (property.GetType()) {
    case R5PropertyType::kLong:
      return RangeText<int32_t>(property);
    case R5PropertyType::kHuge:
      return RangeText<int64_t>(property);
    case R5PropertyType::kFloat:
      return RangeText<float>(property);
    case R5PropertyType::kDouble:
      return RangeText<double>(property);
    case R5PropertyType::kEnum: {
      const auto& enumeration = static_cast<const R5EnumProperty&>(property);
      std::string text = "one of ";
      for (int32_t i = 0; i < enumeration.GetValidCount(); ++i) {
        text += (i > 0 ? ", " : "") + enumeration.GetValidEntry(i).GetName().str();
      }
      return text;
    }
    case R5PropertyType::kBoolean:
      return "true or false";
    default:
      return "any text";
  }
}

std::string FlagsText(const R5Property& property) {
  std::string text = property.IsMandatory() ? "mandatory" : "";
  if (property.IsMultiLineString()) text += text.empty() ? "multi-line" : ", multi-line";
  return text;
}

// Prints `text` line by line: the first line after `first`, the others after
// as many blanks.
void PrintLines(const std::string& first, const std::string& text) {
  const std::string indent(first.size(), ' ');
  size_t start = 0;
  do {
    const size_t end = std::min(text.find('\n', start), text.size());
    std::printf("%s%s\n", start == 0 ? first.c_str() : indent.c_str(),
                text.substr(start, end - start).c_str());
    start = end + 1;
  } while (start <= text.size());
}

void PrintProperties(const R5PropertySet& set, const std::string& file) {
  std::printf("%s: %d %s\n", file.c_str(), set.GetCount(),
              set.GetCount() == 1 ? "property" : "properties");
  size_t nameWidth = 0;
  for (int32_t i = 0; i < set.GetCount(); ++i) {
    nameWidth = std::max(nameWidth, set.GetProperty(i)->GetName().str().size());
  }
  for (int32_t i = 0; i < set.GetCount(); ++i) {
    const R5Property& property = *set.GetProperty(i);
    std::string line = "  " + property.GetName().str();
    line.resize(nameWidth + 4, ' ');
    line += R5Property::GetTypeName(property.GetType());
    line.resize(nameWidth + 13, ' ');
    line += ValuesText(property);
    if (const std::string flags = FlagsText(property); !flags.empty()) line += "  " + flags;
    std::printf("%s\n", line.c_str());
    if (!property.GetDescription().IsEmpty()) PrintLines("      ", property.GetDescription().str());
    if (!property.GetHelp().IsEmpty()) PrintLines("      help: ", property.GetHelp().str());
  }
}

// The error stack as "Error" elements on standard error.
void PrintErrors(const std::string& file) {
  std::fprintf(stderr, "utilkit props: %s: no valid property definition\n", file.c_str());
  VCUDataBuffer text;
  VCUXmlHelper::AppendUtlibErrorXmlToBuffer(nullptr, text);
  std::fprintf(stderr, "%s\n",
               text.GetSize() > 0 ? text.GetBasePtr() : VFErrorGetFullString().c_str());
}

int RunProps(const PropsOptions& options) {
  VFErrorClear();
  const DOM_Document document = VCUXmlHelper::ParseXmlFromFile(options.file.c_str());
  VCUUserDefinedProperties properties;
  if (document.isNull() || !properties.SetPropDef(document.getDocumentElement())) {
    PrintErrors(options.file);
    return 1;
  }
  if (options.encoded) {
    std::printf("%s\n", properties.GetPropDef().c_str());
  } else {
    PrintProperties(properties.GetPropertySet(), options.file);
  }
  return 0;
}

}  // namespace

void AddPropsCommand(CLI::App& app) {
  auto options = std::make_shared<PropsOptions>();
  CLI::App* props = app.add_subcommand(
      "props", "Check a user-defined property definition file and list its properties");
  props->add_option("file", options->file, "XML file with a \"Properties\" root element")
      ->required();
  props->add_flag("--encoded", options->encoded,
                  "Print the definition as the library writes it back instead of the list");
  props->footer(kFooter);
  props->callback([options] {
    if (const int status = RunProps(*options); status != 0) throw CLI::RuntimeError(status);
  });
}
