// `utilkit tree`: groups, filters and sorts a tree with VCUTree and prints
// the result. See AddTreeCommand's help text and docs/tree.md.
#pragma once

#include <CLI/CLI.hpp>

// Registers the "tree" subcommand on `app`.
void AddTreeCommand(CLI::App& app);
