// utilkit: the command-line face of the library. Each subcommand lives in
// its own file and registers itself here.
#include <cstdio>

#include <CLI/CLI.hpp>

int main(int argc, char** argv) {
  CLI::App app{"utilkit: tables, trees and expressions over engineering data"};
  app.set_version_flag("--version", std::string("utilkit ") + UTILKIT_VERSION);
  app.require_subcommand(0, 1);
  CLI11_PARSE(app, argc, argv);
  if (app.get_subcommands().empty()) {
    std::fputs(app.help().c_str(), stdout);
  }
  return 0;
}
