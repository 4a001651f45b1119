// RunProgram: runs a command-line tool (lp, lpadmin, ...) and collects what
// it printed and how it ended.

#ifndef QUILLAROTH_TESTS_E2E_RUN_PROGRAM_H_
#define QUILLAROTH_TESTS_E2E_RUN_PROGRAM_H_

#include <string>
#include <vector>

struct ProgramResult {
  int status;        // exit status, or 128 + signal number, or -1 when not run
  std::string out;   // everything written to stdout
  std::string err;   // everything written to stderr

  // "status=N stdout=[...] stderr=[...]", for failure messages.
  std::string Describe() const;
};

// Runs argv[0] (looked up in PATH) with the given arguments, stdin from
// /dev/null, and waits for it to end.
ProgramResult RunProgram(const std::vector<std::string>& argv);

#endif  // QUILLAROTH_TESTS_E2E_RUN_PROGRAM_H_
