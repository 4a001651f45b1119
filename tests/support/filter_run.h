// Runs the real filter binary beside the simulated printer.
//
// run_filter() starts quillaroth-sim with the call's scenario options and
// "-- FILTER job-id user title copies options [file]", with the sleep
// interposer preloaded, and collects everything that a test compares: the
// filter's exit status, the whole of its stderr, the bytes it wrote to
// stdout, the simulator's log and the list of sleeps it asked for.

#ifndef QUILLAROTH_TESTS_SUPPORT_FILTER_RUN_H_
#define QUILLAROTH_TESTS_SUPPORT_FILTER_RUN_H_

#include <optional>
#include <string>
#include <vector>

// Where the built programs are.
struct ToolPaths {
  std::string filter;      // commandtoquillaroth
  std::string sim;         // quillaroth-sim
  std::string fake_sleep;  // the sleep interposer (shared library)
};

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
  int status = -1;      // exit status (128 + signal when killed)
  std::string err;      // the filter's whole stderr
  std::string out;      // the bytes on the filter's stdout
  std::string sim_log;  // the simulator's log
  std::string sleeps;   // "sleep 1\n", "usleep 500000\n", ... in call order
  double seconds = 0;   // wall-clock time of the run
  int backend_status = -1;  // the backend's exit status, when one ran
};

// Runs a CUPS backend on its own: argv after the program's name, the
// device URI in DEVICE_URI (none when empty), stdin_text on stdin.  The
// result holds its status, stdout (out) and stderr (err).
FilterResult run_backend(const std::string& backend,
                         const std::vector<std::string>& args,
                         const std::string& device_uri,
                         const std::string& stdin_text);

// Runs the filter in front of a CUPS backend, wired as cupsd wires them:
// the filter's stdout into the backend's stdin, the back channel from the
// backend's descriptor 3 to the filter's, the side-channel socket pair on
// both descriptors 4.  err is the filter's stderr, sim_log the backend's,
// status the filter's exit status and backend_status the backend's.
FilterResult run_filter_with_backend(const ToolPaths& tools,
                                     const std::string& backend,
                                     const std::string& device_uri,
                                     const FilterCall& call);

// Runs the call with the given programs.
FilterResult run_filter(const ToolPaths& tools, const FilterCall& call);

#if defined(FILTER_PATH) && defined(SIM_PATH) && defined(FAKE_SLEEP_PATH)
// The programs that this build made.
inline ToolPaths built_tools() {
  return ToolPaths{FILTER_PATH, SIM_PATH, FAKE_SLEEP_PATH};
}

// Runs the call with the programs that this build made.
inline FilterResult run_filter(const FilterCall& call) {
  return run_filter(built_tools(), call);
}

// The CUPS backend that this build made, beside the simulator.
inline std::string built_backend() {
  std::string sim = SIM_PATH;
  return sim.substr(0, sim.rfind('/') + 1) + "quillarothsim";
}

// Runs the filter on these commands (from stdin) beside a printer scripted
// by the simulator options.
inline FilterResult run_commands(const std::string& commands,
                                 const std::vector<std::string>& sim_options =
                                     {}) {
  FilterCall call;
  call.stdin_text = commands;
  call.sim_options = sim_options;
  return run_filter(call);
}
#endif

#endif  // QUILLAROTH_TESTS_SUPPORT_FILTER_RUN_H_
