// utilkit: the command-line face of the library. Each subcommand lives in
// its own file and registers itself here.
#include <cstdio>

#include <CLI/CLI.hpp>

#include "calc_command.h"
#include "sections_command.h"
#include "send_command.h"
#include "serve_command.h"
#include "table_command.h"
#include "tree_command.h"
#if defined(UTILKIT_WITH_XML)
#include "props_command.h"
#include "report_command.h"
#include "xml_command.h"
#endif

int main(int argc, char** argv) {
  CLI::App app{"utilkit: tables, trees and expressions over engineering data"};
  app.set_version_flag("--version", std::string("utilkit ") + UTILKIT_VERSION);
  app.require_subcommand(0, 1);
  AddCalcCommand(app);
  AddSectionsCommand(app);
  AddSendCommand(app);
  AddServeCommand(app);
  AddTableCommand(app);
  AddTreeCommand(app);
#if defined(UTILKIT_WITH_XML)
  AddPropsCommand(app);
  AddReportCommand(app);
  AddXmlCommand(app);
#endif
  CLI11_PARSE(app, argc, argv);
  if (app.get_subcommands().empty()) {
    std::fputs(app.help().c_str(), stdout);
  }
  return 0;
}
