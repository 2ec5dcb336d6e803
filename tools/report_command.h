// `utilkit report`: builds a report library file from the shell, lists it,
// and turns it into one self-contained web page.
//
//   utilkit report new run.lxm --title "Run 12" --page Plots --image force.png --text notes.txt
//   utilkit report show run.lxm
//   utilkit report html run.lxm -o run.html
#pragma once

#include <CLI/CLI.hpp>

// Registers the report subcommand (with new, show and html) on `app`.
void AddReportCommand(CLI::App& app);
