#include "sections_command.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

#include <utilkit/base/error_stack.h>
#include <utilkit/base/number_text.h>
#include <utilkit/sections/sections.h>

#include "input_file.h"

namespace {

constexpr const char* kFooter = R"(Text form:
  One line per channel: "ch<channel>:" and its sections "start,end" joined
  by ";", e.g. "ch1: 0.5,1.25; 2,3". White space and blank lines are free.
  Numbers are plain decimals ("-1", "0.25"); points must be whole.
Checks (--rate and --points):
  start <= end (start = end is one sample), 0 <= start and end <= the last
  sample (points: N - 1; time: (N - 1) / RATE), and with --channels C a
  channel from 0 to C - 1. Every violation is printed; the exit status is 1.
Conversion (--to, needs --rate):
  To points, a start becomes the first sample at or after it and an end the
  last sample at or before it; a section holding no sample is dropped.
  To time, a point P becomes P / RATE.
Output:
  The sections after the checks, the conversion and --normalise, written as
  "ch%ld:" lines of "%0.12lf,%0.12lf" sections.
Examples:
  utilkit sections examples/sections.txt --rate 1000 --points 5001 --channels 3
  utilkit sections examples/sections.txt --rate 1000 --to points --normalise)";

struct SectionsOptions {
  std::string file;
  std::string units = "time";
  std::optional<double> rate;
  std::optional<int64_t> points;
  int32_t channels = -1;
  std::string to;
  bool normalise = false;
  size_t maxInputMiB = tool_input::kDefaultInputLimit >> 20;
};

int FailWithErrors() {
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    std::fprintf(stderr, "utilkit sections: %s (error %d in %s)\n", VFErrorGetMessage(e),
                 VFErrorGetCode(e), VFErrorGetLocation(e));
  }
  VFErrorClear();
  return 1;
}

// The error stack as one line, cleared.
std::string ErrorLine() {
  std::string line;
  for (const VCErrorRecord* e = VFGetUtLibError(); e; e = VFErrorGetNextErr(e)) {
    if (!line.empty()) line += "; ";
    line += VFErrorGetMessage(e);
  }
  VFErrorClear();
  return line;
}

bool ReadSections(const std::string& path, VCUSections* sections, std::string* error,
                  size_t limit = tool_input::kDefaultInputLimit) {
  std::string text;
  if (!tool_input::ReadInputFile(path, limit, &text, error)) return false;
  if (text.find('\0') != std::string::npos) {
    *error = path + ": not a sections text";
    return false;
  }
  if (!sections->SetFromText(text.c_str())) {
    *error = path + ": " + ErrorLine();
    return false;
  }
  return true;
}

int RunSections(const SectionsOptions& options) {
  VFErrorClear();
  VCUSections sections(options.units == "points" ? VTSectionUnits::Points : VTSectionUnits::Time);
  if (std::string error;
      !ReadSections(options.file, &sections, &error, options.maxInputMiB << 20)) {
    std::fprintf(stderr, "utilkit sections: %s\n", error.c_str());
    return 1;
  }
  if (options.points &&
      !sections.Validate(options.rate.value_or(0.0), *options.points, options.channels, true)) {
    return FailWithErrors();
  }
  if (options.to == "points" && !sections.ConvertToPoints(options.rate.value_or(0.0))) {
    return FailWithErrors();
  }
  if (options.to == "time" && !sections.ConvertToTime(options.rate.value_or(0.0))) {
    return FailWithErrors();
  }
  VCString text;
  if ((options.normalise && !sections.Normalise()) || !sections.GetText(&text)) {
    return FailWithErrors();
  }
  std::fputs(text.c_str(), stdout);
  return 0;
}

}  // namespace

void AddSectionsCommand(CLI::App& app) {
  auto options = std::make_shared<SectionsOptions>();
  CLI::App* command = app.add_subcommand(
      "sections", "Check sections of a signal against it; convert them between time and points");
  command->add_option("file", options->file, "The sections text")->required();
  command->add_option("--max-input-mb", options->maxInputMiB, "Largest sections file, in MiB")
      ->capture_default_str()
      ->check(CLI::Range(size_t{1}, size_t{1} << 20));
  command->add_option("--units", options->units, "Units of the file's numbers")
      ->check(CLI::IsMember({"time", "points"}))
      ->capture_default_str();
  auto* rate = command->add_option("--rate", options->rate, "Samples per second of the signal");
  command->add_option("--points", options->points, "Number of samples of the signal")->needs(rate);
  command->add_option("--channels", options->channels, "Number of channels (0 to C - 1)")
      ->type_name("C");
  command->add_option("--to", options->to, "Convert to these units")
      ->check(CLI::IsMember({"time", "points"}))
      ->needs(rate);
  command->add_flag("--normalise", options->normalise,
                    "Sort by channel and start; merge overlapping or touching sections");
  command->footer(kFooter);
  command->callback([options] {
    if (const int status = RunSections(*options); status != 0) throw CLI::RuntimeError(status);
  });
}

namespace utilkit::tool {

void AddSectionsCutOptions(CLI::App* table, SectionsCut* cut) {
  table
      ->add_option("--sections", cut->sections,
                   "Keep the rows inside the sections of CHANNEL in FILE (see `utilkit "
                   "sections --help`)")
      ->type_name("FILE:CHANNEL");
  table
      ->add_option("--time-column", cut->timeColumn,
                   "The column of times for --sections (without it the sections are points and "
                   "row N is point N-1)")
      ->type_name("NAME");
}

bool ApplySectionsCut(const SectionsCut& cut, std::vector<TableInput>* inputs, std::string* error) {
  if (cut.sections.empty()) return true;
  const size_t colon = cut.sections.rfind(':');
  int32_t channel = 0;
  if (colon == std::string::npos || !VFAscToNum(cut.sections.substr(colon + 1).c_str(), &channel)) {
    *error = "--sections " + cut.sections + ": expected FILE:CHANNEL";
    return false;
  }
  const std::string path = cut.sections.substr(0, colon);
  VCUSections sections(cut.timeColumn.empty() ? VTSectionUnits::Points : VTSectionUnits::Time);
  if (!ReadSections(path, &sections, error)) return false;
  for (TableInput& input : *inputs) {
    int32_t column = -1;
    VCArray<int64_t> rows;
    if ((!cut.timeColumn.empty() &&
         !input.table->GetColIndexFromKeyword(cut.timeColumn.c_str(), &column)) ||
        !sections.GetTableRows(input.table, channel, column, &rows)) {
      *error = "--sections: " + ErrorLine();
      return false;
    }
    if (input.selected) {
      std::erase_if(input.rows, [&rows](int64_t row) {
        return !std::binary_search(rows.begin(), rows.end(), row);
      });
    } else {
      input.rows.assign(rows.begin(), rows.end());
      input.selected = true;
    }
  }
  return true;
}

}  // namespace utilkit::tool
