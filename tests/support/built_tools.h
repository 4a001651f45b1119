// The programs and libraries that this build made for the tests, and how a
// test hands them to a child process wherever the build tree lies.
//
// The build tree may sit below a folder that other users cannot enter, and
// its path may hold blanks or colons, which LD_PRELOAD takes as separators.
// So what a child must load or execute under such constraints is copied
// into a private folder under /tmp (mode 0755, removed when the test
// program ends) and used from there.

#ifndef QUILLAROTH_TESTS_SUPPORT_BUILT_TOOLS_H_
#define QUILLAROTH_TESTS_SUPPORT_BUILT_TOOLS_H_

#include <string>
#include <vector>

// Where the built programs are.
struct ToolPaths {
  std::string filter;        // commandtoquillaroth
  std::string sim;           // quillaroth-sim, the simulator harness
  std::string backend;       // quillarothsim, the simulated printer's backend
  std::string fake_sleep;    // the sleep interposer (shared library)
  std::string short_fwrite;  // the short-write interposer (shared library)
};

// The programs that this build made.
const ToolPaths& BuiltTools();

// The private folder under /tmp of this test program, which every user can
// enter (mode 0755) and whose path has no blank, colon or non-ASCII byte;
// removed when the test program ends.
const std::string& ReachableDir();

// A copy of the file in that folder, made once per file and test program.
std::string ReachableCopy(const std::string& path);

// The value of LD_PRELOAD for these libraries, in this order (from
// reachable copies).
std::string PreloadValue(const std::vector<std::string>& libraries);

// The command that runs the filter: the words of
// $QUILLAROTH_FILTER_WRAPPER (a prefix such as "valgrind --log-file=...";
// split at blanks, with '...' and "..." quoting), its program looked up in
// $PATH, then the filter's path.
std::vector<std::string> FilterCommand(const std::string& filter);

// The slow-down factor of that wrapper (1 without one); time bounds are
// multiplied by it.
double Slowdown();

#endif  // QUILLAROTH_TESTS_SUPPORT_BUILT_TOOLS_H_
