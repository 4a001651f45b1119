// quillaroth-sim's command line, parsed with the option table.
//
//   quillaroth-sim [options] -- FILTER job-id user title copies opts [file]
//   quillaroth-sim [options] --listen HOST:PORT
//
// Every option is a row of sim/option_table.h; --help and the README's
// tables are printed from there.

#ifndef QUILLAROTH_SIM_SIM_OPTIONS_H_
#define QUILLAROTH_SIM_SIM_OPTIONS_H_

#include "sim/sim_settings.h"

// Parses the command line into settings.  On a bad option writes one line
// "quillaroth-sim: ..." to stderr and returns false.
bool parse_sim_options(int argc, char** argv, SimSettings* settings);

#endif  // QUILLAROTH_SIM_SIM_OPTIONS_H_
