// SimSettings: everything that quillaroth-sim's command line sets.
//
//   quillaroth-sim [options] -- FILTER job-id user title copies opts [file]
//   quillaroth-sim [options] --listen HOST:PORT
//
// The options are listed once, in sim/option_table.h.

#ifndef QUILLAROTH_SIM_SIM_SETTINGS_H_
#define QUILLAROTH_SIM_SIM_SETTINGS_H_

#include <map>
#include <string>
#include <vector>

#include "sim/scenario.h"

struct SimSettings {
  Scenario scenario;
  std::string log_path;         // --log (empty: no log)
  std::string stdout_path;      // --stdout-file (empty: not saved)
  bool stdout_devfull = false;  // the filter's stdout is /dev/full

  // --listen: serve the printer on this address instead of running a
  // filter (listen_port 0: a free port).
  bool listen = false;
  std::string listen_host;
  int listen_port = 0;
  // Connections served before the port refuses the rest; -1: no limit.
  long accept_limit = -1;
  // --connection N:KEYS: the keys for the Nth connection, checked already.
  std::map<long, std::string> connection_keys;

  bool help = false;         // --help
  std::string print_table;   // --print-table FORMAT
  std::vector<std::string> command;  // the filter and its arguments
};

#endif  // QUILLAROTH_SIM_SIM_SETTINGS_H_
