// `utilkit xml`: prints an XML file in the human-readable layout (or plain),
// or shows as XML why it does not parse.
//
//   utilkit xml examples/channels.xml
//   utilkit xml --plain examples/channels.xml
#pragma once

#include <CLI/CLI.hpp>

// Registers the xml subcommand on `app`.
void AddXmlCommand(CLI::App& app);
