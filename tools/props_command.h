// `utilkit props`: checks a user-defined property definition file and lists
// the properties it defines with their types, ranges and flags.
//
//   utilkit props examples/properties.xml
//   utilkit props --encoded examples/properties.xml
#pragma once

#include <CLI/CLI.hpp>

// Registers the props subcommand on `app`.
void AddPropsCommand(CLI::App& app);
