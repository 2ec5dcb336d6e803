// `utilkit calc`: evaluates an expression over every row of a CSV file and
// prints the file with the result appended as a new column.
//
//   utilkit calc --expr '#Peak# * #Time# / 1000 + 1' examples/signals.csv
#pragma once

#include <CLI/CLI.hpp>

// Registers the calc subcommand on `app`.
void AddCalcCommand(CLI::App& app);
