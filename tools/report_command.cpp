#include "report_command.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <utilkit/base/error_stack.h>
#include <utilkit/library_xml/library_xml.h>

#include "csv_table.h"
#include "input_file.h"
#include "report_html.h"

namespace {

constexpr const char* kNewFooter =
    R"(The items follow the --page they come after, in the order given. A --table
reads a CSV file (first record: column names) into a table item titled with
the file's name; each column is typed Long when all its fields are 32-bit
integers, Double when all are numbers, Text otherwise (empty fields are
cells without value). --types LETTERS (one of S, L, H, F, D, T per column)
sets the types of the --table before it instead. Tables are limited to
1000000 cells.

Example:
  utilkit report new run.lxm --title "Run 12" --page Results \
      --table examples/runs.csv --text notes.txt --page Plots --image force.png)";

struct NewOptions {
  std::string out, title;
  std::vector<std::string> pages, texts, images, tables, types;
};

struct FileOptions {
  std::string file, out;
};

int Fail(const std::string& message) {
  std::fprintf(stderr, "utilkit report: %s\n", message.c_str());
  return 1;
}

int FailWithStack(const std::string& what) {
  return Fail(what + ": " + VFErrorGetFullString().c_str());
}

std::string BaseName(const std::string& path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool FitsType(const std::string& field, VTTableDataType type) {
  if (field.empty() || type == VTTableDataType::Text) return true;
  const char* end = field.data() + field.size();
  int64_t whole = 0;
  double real = 0;
  switch (type) {
    case VTTableDataType::Short:
      return std::from_chars(field.data(), end, whole).ptr == end && whole >= -32768 &&
             whole <= 32767;
    case VTTableDataType::Long:
      return std::from_chars(field.data(), end, whole).ptr == end && whole >= INT32_MIN &&
             whole <= INT32_MAX;
    case VTTableDataType::Huge:
      return std::from_chars(field.data(), end, whole).ptr == end;
    default:
      return std::from_chars(field.data(), end, real).ptr == end;
  }
}

// The column types of `csv`: from `letters` when given, else inferred.
bool ColumnTypes(const utilkit::tool::CsvTable& csv, const std::string& letters,
                 std::vector<VTTableDataType>* types, std::string* error) {
  const size_t cols = csv.header.size();
  if (!letters.empty() && letters.size() != cols) {
    *error = "--types '" + letters + "' has " + std::to_string(letters.size()) + " letters for " +
             std::to_string(cols) + " columns";
    return false;
  }
  types->clear();
  for (size_t c = 0; c < cols; ++c) {
    VTTableDataType type = VTTableDataType::Long;
    if (!letters.empty()) {
      const size_t at = std::string("SLHFDT").find(letters[c]);
      if (at == std::string::npos) {
        *error =
            std::string("--types: unknown type letter '") + letters[c] + "' (S, L, H, F, D, T)";
        return false;
      }
      type = static_cast<VTTableDataType>(at + 1);
    }
    for (size_t r = 0; r < csv.rows.size(); ++r) {
      const std::string& field = csv.rows[r][c];
      if (FitsType(field, type)) continue;
      if (!letters.empty()) {
        *error = "line " + std::to_string(csv.lines[r]) + ": '" + field + "' is not " +
                 VCULibraryXML_ItemTable::TypeName(type);
        return false;
      }
      type = type == VTTableDataType::Long && FitsType(field, VTTableDataType::Double)
                 ? VTTableDataType::Double
                 : VTTableDataType::Text;
    }
    types->push_back(type);
  }
  return true;
}

// Adds a table item read from the CSV file at `path`.
int AddTable(VCULibraryXML_Page* page, const std::string& path, const std::string& letters) {
  utilkit::tool::CsvTable csv;
  std::string error;
  std::vector<VTTableDataType> types;
  if (!utilkit::tool::ReadCsvFile(path, &csv, &error)) return Fail(error);
  if (!ColumnTypes(csv, letters, &types, &error)) return Fail(path + ": " + error);
  auto* table = new VCULibraryXML_ItemTable();
  page->AppendItem(table);
  table->SetTitle(BaseName(path).c_str());
  for (size_t c = 0; c < types.size(); ++c) {
    if (!table->AddColumn(csv.header[c].c_str(), types[c], "")) return FailWithStack(path);
  }
  VCStringArray cells;
  for (const auto& row : csv.rows) {
    cells.RemoveAll();
    for (const auto& field : row) cells.Add(VCString(field));
    if (!table->AddRow(cells)) return FailWithStack(path);
  }
  return 0;
}

int RunNew(CLI::App& command, const NewOptions& options) {
  VFErrorClear();
  VCULibraryXML library;
  library.SetTitle(options.title.c_str());
  VCULibraryXML_Page* page = nullptr;
  size_t next[5] = {};  // the next value of --page, --text, --image, --table, --types
  for (const CLI::Option* option : command.parse_order()) {
    const std::string& name = option->get_name();
    if (name == "--page") {
      page = new VCULibraryXML_Page(options.pages[next[0]++].c_str());
      library.AppendPage(page);
      continue;
    }
    if (name == "--types") {
      ++next[4];
      continue;
    }
    if (name != "--text" && name != "--image" && name != "--table") continue;
    if (!page) return Fail(name + " before the first --page");
    if (name == "--text") {
      const std::string& path = options.texts[next[1]++];
      std::string text;
      if (std::string error;
          !tool_input::ReadInputFile(path, tool_input::kDefaultInputLimit, &text, &error)) {
        return Fail(error);
      }
      auto* item = new VCULibraryXML_ItemText();
      page->AppendItem(item);
      if (!item->SetText(text.data(), static_cast<int32_t>(text.size())))
        return FailWithStack(path);
    } else if (name == "--image") {
      const std::string& path = options.images[next[2]++];
      auto* item = new VCULibraryXML_ItemImage();
      page->AppendItem(item);
      item->SetTitle(BaseName(path).c_str());
      if (!item->SetDataFromFile(path.c_str())) return FailWithStack(path);
    } else {
      // --types applies to the --table just before it.
      const auto& order = command.parse_order();
      const auto self = std::find(order.begin(), order.end(), option);
      std::string letters;
      size_t typesSeen = next[4];
      for (auto it = self + 1; it != order.end() && (*it)->get_name() != "--table"; ++it) {
        if ((*it)->get_name() == "--types") {
          letters = options.types[typesSeen];
          break;
        }
      }
      if (const int status = AddTable(page, options.tables[next[3]++], letters)) return status;
    }
  }
  if (!library.SaveToFile(options.out.c_str())) return FailWithStack(options.out);
  return 0;
}

int RunShow(const FileOptions& options) {
  VFErrorClear();
  VCULibraryXML library;
  if (!library.LoadFromFile(options.file.c_str())) return FailWithStack(options.file);
  std::printf("Library \"%s\": %d pages\n", library.GetTitle().c_str(), library.GetNumPages());
  for (int32_t p = 0; p < library.GetNumPages(); ++p) {
    const VCULibraryXML_Page& page = *library.GetPage(p);
    std::printf("Page %d \"%s\": %d items\n", p + 1, page.GetTitle().c_str(), page.GetNumItems());
    for (int32_t i = 0; i < page.GetNumItems(); ++i) {
      const VCULibraryXML_Item* item = page.GetItem(i);
      std::printf("  %d. ", i + 1);
      if (item->GetType() == VTLibraryXMLItemType::Image) {
        const auto& image = static_cast<const VCULibraryXML_ItemImage&>(*item);
        std::printf("Image %s %dx%d, %d bytes", image.GetFormatName(), image.GetWidth(),
                    image.GetHeight(), image.GetData().GetSize());
      } else if (item->GetType() == VTLibraryXMLItemType::Text) {
        std::printf("Text, %d bytes",
                    static_cast<const VCULibraryXML_ItemText&>(*item).GetText().GetLength());
      } else {
        const auto& table = static_cast<const VCULibraryXML_ItemTable&>(*item);
        std::printf("Table %d columns x %lld rows:", table.GetNumCols(),
                    static_cast<long long>(table.GetNumRows()));
        for (int32_t c = 0; c < table.GetNumCols(); ++c) {
          std::printf(" %s (%s)", table.GetColName(c).c_str(),
                      VCULibraryXML_ItemTable::TypeName(table.GetColType(c)));
        }
      }
      if (!item->GetTitle().IsEmpty()) std::printf(" \"%s\"", item->GetTitle().c_str());
      std::printf("\n");
    }
  }
  return 0;
}

int RunHtml(const FileOptions& options) {
  VFErrorClear();
  VCULibraryXML library;
  if (!library.LoadFromFile(options.file.c_str())) return FailWithStack(options.file);
  std::ofstream out(options.out, std::ios::binary);
  if (!out || !utilkit::tool::WriteReportHtml(library, out)) {
    return Fail(options.out + ": cannot be written");
  }
  return 0;
}

template <typename Run>
void Finish(CLI::App* command, Run run) {
  command->callback([run] {
    if (const int status = run(); status != 0) throw CLI::RuntimeError(status);
  });
}

}  // namespace

void AddReportCommand(CLI::App& app) {
  CLI::App* report = app.add_subcommand(
      "report", "Build, list or show as a web page a report library file (.lxm)");
  report->require_subcommand(1);

  auto made = std::make_shared<NewOptions>();
  CLI::App* create = report->add_subcommand("new", "Build a report library file");
  create->add_option("out", made->out, "The library file to write (e.g. library.lxm)")->required();
  create->add_option("--title", made->title, "The library's title");
  create->add_option("--page", made->pages, "Start a page with this title");
  create->add_option("--text", made->texts, "Add a text item from a file (kept byte for byte)");
  create->add_option("--image", made->images, "Add a PNG or JPEG image item from a file");
  create->add_option("--table", made->tables, "Add a table item from a CSV file");
  create->add_option("--types", made->types, "Column types of the --table before it (e.g. LDT)");
  for (const char* name : {"--page", "--text", "--image", "--table", "--types"}) {
    create->get_option(name)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }
  create->footer(kNewFooter);
  Finish(create, [create, made] { return RunNew(*create, *made); });

  auto shown = std::make_shared<FileOptions>();
  CLI::App* show = report->add_subcommand("show", "List the pages and items of a report library");
  show->add_option("file", shown->file, "The library file")->required();
  Finish(show, [shown] { return RunShow(*shown); });

  auto page = std::make_shared<FileOptions>();
  CLI::App* html = report->add_subcommand(
      "html", "Write a report library as one self-contained web page (images inline)");
  html->add_option("file", page->file, "The library file")->required();
  html->add_option("-o,--output", page->out, "The HTML file to write")->required();
  Finish(html, [page] { return RunHtml(*page); });
}
