// The simulator's command line: the scenario, the log, and the filter to run.
//
//   quillaroth-sim [options] -- /path/to/filter job user title copies opts [file]
//
// Every option is listed in the README and by --help.

#ifndef QUILLAROTH_SIM_SIM_OPTIONS_H_
#define QUILLAROTH_SIM_SIM_OPTIONS_H_

#include <string>
#include <vector>

#include "sim/scenario.h"

struct SimSettings {
  Scenario scenario;
  std::string log_path;        // --log (empty: no log)
  std::string stdout_path;     // --stdout-file (empty: not saved)
  bool stdout_devfull = false; // the filter's stdout is /dev/full
  std::vector<std::string> command;  // the filter and its arguments
};

// Parses the command line.  On a bad option writes a message to stderr and
// returns false; *help is set when --help was asked for.
bool parse_sim_options(int argc, char** argv, SimSettings* settings,
                       bool* help);

// The --help text.
const char* sim_usage();

#endif  // QUILLAROTH_SIM_SIM_OPTIONS_H_
