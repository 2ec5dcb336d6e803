// `utilkit send`: connects to a server, sends one text or XML document and
// prints the answer.
//
//   utilkit send --port 5000 "hello"
//   utilkit send --host ::1 --port 5000 --xml Reply --file request.xml
#pragma once

#include <CLI/CLI.hpp>

// Registers the send subcommand on `app`.
void AddSendCommand(CLI::App& app);
