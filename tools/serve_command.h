// `utilkit serve`: listens on a port and answers each request by echoing it
// or with a fixed reply file, in zero-terminated or XML framing.
//
//   utilkit serve --port 5000 --count 3
//   utilkit serve --port 0 --xml Request --reply reply.xml --time-limit 60
#pragma once

#include <CLI/CLI.hpp>

// Registers the serve subcommand on `app`.
void AddServeCommand(CLI::App& app);
