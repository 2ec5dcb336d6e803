// `utilkit table`: merges the rows of CSV files with the table processor,
// filters, compresses and sorts them, adds computed columns, and writes the
// chosen columns as CSV or as a table dump.
//
//   utilkit table -f 'Peak > 10 AND Grade = low' --sort Peak:desc -c Test,Peak
//       examples/tests_a.csv examples/tests_b.csv    (one command line)
#pragma once

#include <CLI/CLI.hpp>

// Registers the table subcommand on `app`.
void AddTableCommand(CLI::App& app);
