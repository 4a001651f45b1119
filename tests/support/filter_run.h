// Runs the real filter binary beside the simulated printer.
//
// RunFilter() starts quillaroth-sim with the call's options and
// "-- FILTER job-id user title copies options [file]", with the sleep
// interposer preloaded, and collects everything that a test compares: the
// filter's exit status, the whole of its stderr, the bytes it wrote to
// stdout, the simulator's log and the list of sleeps it asked for.

#ifndef QUILLAROTH_TESTS_SUPPORT_FILTER_RUN_H_
#define QUILLAROTH_TESTS_SUPPORT_FILTER_RUN_H_

#include <optional>
#include <string>
#include <vector>

#include "tests/support/sim_printer.h"
#include "tests/support/subprocess.h"

struct FilterCall {
  // Options for quillaroth-sim, e.g. {"--error", "060202"}.
  std::vector<std::string> sim_options;
  // The filter's arguments after its name: job-id user title copies options.
  std::vector<std::string> args = {"1", "user", "title", "1", ""};
  // What the filter finds on stdin.
  std::string stdin_text;
  // When set, written to a file whose path is added as the last argument.
  std::optional<std::string> command_file;
  // Further libraries to preload into the filter, after the sleep
  // interposer.
  std::vector<std::string> preload;
};

struct FilterResult {
  int status = -1;          // exit status (128 + signal when killed)
  std::string err;          // the filter's whole stderr
  std::string out;          // the bytes on the filter's stdout
  std::string sim_log;      // the simulator's log (the backend's stderr)
  std::string sleeps;       // "sleep 1\n", "usleep 500000\n", ... in call order
  double seconds = 0;       // wall-clock time of the run
  int backend_status = -1;  // the backend's exit status, when one ran
};

// Runs the call under the simulator built here.
FilterResult RunFilter(const FilterCall& call);

// Runs the filter on these commands (from stdin) beside a printer scripted
// by the simulator options.
FilterResult RunCommands(const std::string& commands,
                         const std::vector<std::string>& sim_options = {});

// Runs the filter on these commands beside the printer.
FilterResult RunCommands(const std::string& commands,
                         const SimPrinter& printer);

// Runs the filter in front of the simulated printer's CUPS backend, wired
// as cupsd wires them: the filter's stdout into the backend's stdin, the
// back channel from the backend's descriptor 3 to the filter's, the
// side-channel socket pair on both descriptors 4.  err is the filter's
// stderr, sim_log the backend's, status the filter's exit status and
// backend_status the backend's.
FilterResult RunFilterWithBackend(const std::string& device_uri,
                                  const FilterCall& call);

// Runs the simulated printer's CUPS backend on its own: argv after the
// program's name, the device URI in DEVICE_URI (none when empty),
// stdin_text on stdin.
ProgramResult RunBackend(const std::vector<std::string>& args,
                         const std::string& device_uri,
                         const std::string& stdin_text);

#endif  // QUILLAROTH_TESTS_SUPPORT_FILTER_RUN_H_
