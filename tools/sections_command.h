// `utilkit sections`: checks a sections text against a signal's sample rate
// and number of points, converts it between time and points, normalises it
// and prints it; and the --sections cut of `utilkit table`.
//
//   utilkit sections examples/sections.txt --rate 1000 --points 5001
//   utilkit table --sections examples/sections.txt:1 --time-column Time examples/signals.csv
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "table_job.h"

// Registers the sections subcommand on `app`.
void AddSectionsCommand(CLI::App& app);

namespace utilkit::tool {

// The --sections and --time-column options of `utilkit table`.
struct SectionsCut {
  std::string sections;    // FILE:CHANNEL; empty: no cut
  std::string timeColumn;  // empty: the sections are points, row N is point N-1
};

// Registers the two options on the table subcommand.
void AddSectionsCutOptions(CLI::App* table, SectionsCut* cut);

// Narrows every input to its rows inside the sections (an input with a row
// selection keeps the selected rows inside them, in its order). False with
// `*error` a one-line message for an unreadable or malformed sections file,
// a missing time column, or a failed cut.
bool ApplySectionsCut(const SectionsCut& cut, std::vector<TableInput>* inputs, std::string* error);

}  // namespace utilkit::tool
