#include "tree_command.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <utilkit/base/error_stack.h>
#include <utilkit/tree/tree.h>

#include "input_file.h"
#include "tree_sources.h"
#include "tree_text.h"

namespace {

constexpr const char* kTreeHelp = R"help(Group, filter and sort a tree and print the result.

The source is a directory (default: the current one; each file or folder a
node with Name, Extension, Size, Modified, Type and Path), a JSON file
(.json) or an indented text file (any other file); --from overrides.

Grouping (-g): levels separated by ".", each PROPERTY or PROPERTY{KEY=VALUE,...}:
  Type                               by value: "Type=file", "Type=folder"
  Name{TYPE=ALPHA}                   by first letter: "A", "B", ...
  Name{TYPE=ALPHA,NUM=3}             letter ranges: "A-C", "D-F", ..., "Y-["
  Modified{TYPE=DATE}                by day: "05-January-2024"
  Modified{TYPE=DATE,SUBTYPE=MONTH}  by month: "January", ...
  Modified{TYPE=DATE,SUBTYPE=YEAR}   by year: "2024"
Sorting (-s): keys separated by ".", each PROPERTY or PROPERTY{DIR=INC|DEC,
  METHOD=MIXEDSTRING}; missing values sort last (first when decreasing);
  MIXEDSTRING orders "a9" before "a10".
Filter (-f): NAME (exists), !NAME (missing), NAME OP VALUE with OP one of
  = != > >= < <= ~ (wildcards * and ?, any case), and (F)&(F), (F)|(F) with
  both operands in parentheses; VALUE is a date, a number or text.
Without --recurse only top-level nodes are filtered and sorted, and each
result node shows its whole source subtree.

Example: utilkit tree ~/src -g "Extension.Modified{TYPE=DATE,SUBTYPE=YEAR}" \
           -f "(Type=file) & (Size >= 1000)" -s "Size{DIR=DEC}" -r)help";

struct TreeOptions {
  std::string source = ".";
  std::string from;
  std::string group, filter, sort;
  bool recurse = false;
  bool json = false;
  bool ids = false;
  size_t maxDepth = tree_tool::kDefaultMaxTreeDepth;
  int32_t maxFilterDepth = 256;
  size_t maxInputMiB = tool_input::kDefaultInputLimit >> 20;
};

bool ReadSource(const TreeOptions& options, tree_tool::PropertyNode* root, std::string* error) {
  std::string from = options.from;
  if (from.empty()) {
    const std::string& s = options.source;
    std::error_code ec;
    from = std::filesystem::is_directory(s, ec)                          ? "dir"
           : (s.size() >= 5 && s.compare(s.size() - 5, 5, ".json") == 0) ? "json"
                                                                         : "text";
  }
  if (from == "dir") {
    return tree_tool::ReadDirectoryTree(options.source, root, options.maxDepth, error);
  }
  std::string text;
  if (!tool_input::ReadInputFile(options.source, options.maxInputMiB << 20, &text, error)) {
    return false;
  }
  return from == "json" ? tree_tool::ReadJsonTree(text, root, options.maxDepth, error)
                        : tree_tool::ParseIndentedTree(text, root, error, options.maxDepth);
}

// Sets the operations; false (the error stack tells why) when a text is wrong.
bool Configure(const TreeOptions& options, VCUTree* tree) {
  if (!options.group.empty() && !tree->SetGroupOpsFromText(options.group.c_str())) return false;
  tree->SetMaxFilterNesting(options.maxFilterDepth);
  if (!options.filter.empty() && !tree->SetFilterOpsFromText(options.filter.c_str())) return false;
  if (!options.sort.empty() && !tree->SetSortOpsFromText(options.sort.c_str())) return false;
  tree->SetRecurseChildren(options.recurse ? 1 : 0);
  return true;
}

int RunTree(const TreeOptions& options) {
  tree_tool::PropertyNode source(nullptr);
  std::string error;
  bool read = false;
  try {
    read = ReadSource(options, &source, &error);
  } catch (const std::exception& e) {  // memory, or a file system failure
    error = std::string("cannot read \"") + options.source + "\": " + e.what();
  }
  if (!read) {
    std::fprintf(stderr, "utilkit tree: %s\n", error.c_str());
    return 1;
  }
  VCUTree tree;
  std::unique_ptr<VCUTreeResultNode> result;
  if (Configure(options, &tree)) result.reset(tree.Process(&source));
  if (!result) {
    std::fprintf(stderr, "utilkit tree:\n%s", VFErrorGetFullString().c_str());
    VFErrorClear();
    return 1;
  }
  const std::string out = options.json ? tree_tool::FormatResultTreeJson(result.get(), 2)
                                       : tree_tool::FormatResultTree(result.get(), options.ids);
  std::fputs(out.c_str(), stdout);
  return 0;
}

}  // namespace

void AddTreeCommand(CLI::App& app) {
  auto options = std::make_shared<TreeOptions>();
  CLI::App* cmd =
      app.add_subcommand("tree", "Group, filter and sort a tree (a directory by default)");
  cmd->footer(kTreeHelp);
  cmd->add_option("source", options->source, "Directory, .json file or indented text file")
      ->capture_default_str();
  cmd->add_option("--from", options->from, "Read the source as dir, json or text")
      ->check(CLI::IsMember({"dir", "json", "text"}));
  cmd->add_option("-g,--group", options->group, "Grouping levels");
  cmd->add_option("-f,--filter", options->filter, "Filter expression");
  cmd->add_option("-s,--sort", options->sort, "Sort keys");
  cmd->add_flag("-r,--recurse", options->recurse, "Filter, group and sort at every depth");
  cmd->add_flag("--json", options->json, "Print the result as JSON");
  cmd->add_flag("--ids", options->ids, "Show category ids after descriptions");
  cmd->add_option("--max-depth", options->maxDepth, "Deepest nesting of the source tree")
      ->capture_default_str()
      ->check(CLI::Range(size_t{1}, size_t{10000}));
  cmd->add_option("--max-filter-depth", options->maxFilterDepth,
                  "Deepest nesting of the filter's parentheses")
      ->capture_default_str()
      ->check(CLI::Range(1, 10000));
  cmd->add_option("--max-input-mb", options->maxInputMiB, "Largest JSON or text source, in MiB")
      ->capture_default_str()
      ->check(CLI::Range(size_t{1}, size_t{1} << 20));
  cmd->callback([options] {
    if (const int code = RunTree(*options); code != 0) throw CLI::RuntimeError(code);
  });
}
