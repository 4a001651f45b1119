// Subprocess: the one way the tests start a program (the filter, the
// simulator, a backend, cupsd, lp ...): with exactly the descriptors and
// the environment that the test gives it, optionally as another user, and
// with a time limit on the wait for its end.
//
// A program that cannot be started leaves a line saying why on the
// descriptor 2 that it was given ("subprocess: cannot run PATH: REASON")
// and ends with status 127 (126 when the user could not be changed), so
// that a test that compares stderr shows the reason.

#ifndef QUILLAROTH_TESTS_SUPPORT_SUBPROCESS_H_
#define QUILLAROTH_TESTS_SUPPORT_SUBPROCESS_H_

#include <sys/types.h>

#include <string>
#include <vector>

// One descriptor of the child: `target` becomes a copy of our `source`.
struct FdWiring {
  int target;
  int source;
};

// How a child ended.
struct ExitStatus {
  bool exited = false;  // ended by exit (not by a signal, not killed by us)
  int code = -1;        // its exit status, when it exited
  int signal = 0;       // the signal that ended it, if one did
  bool killed = false;  // we killed it: it outlived its time
  double seconds = 0;   // from its start to its end

  // The shell's number for the end: the exit status, or 128 + the signal.
  int ShellStatus() const;
  // "exit status N", "signal N" or "killed after N s", for messages.
  std::string Describe() const;
};

// What to start, and how.
struct ProcessSetup {
  // The program and its arguments; a program name without "/" is looked
  // up in $PATH.
  std::vector<std::string> argv;
  // The child's descriptors; every descriptor not named here is closed.
  std::vector<FdWiring> fds;
  // "NAME=value" entries laid over the environment.
  std::vector<std::string> env;
  // Start from an empty environment instead of ours.
  bool clean_env = false;
  // Run as this user (and its primary group) when >= 0.
  int uid = -1;
  // The child gets SIGTERM when the test program dies first.
  bool end_with_parent = false;
};

class Subprocess {
 public:
  // Starts the program; the test program ends (abort) if it cannot fork.
  explicit Subprocess(const ProcessSetup& setup);
  // Kills the child if it still runs, and reaps it.
  ~Subprocess();

  Subprocess(const Subprocess&) = delete;
  Subprocess& operator=(const Subprocess&) = delete;

  pid_t pid() const { return pid_; }
  // A descriptor that becomes readable when the child ends.
  int pidfd() const { return pidfd_; }
  // Seconds since the start.
  double Elapsed() const;

  // True once the child has ended (it is then reaped and *status set).
  bool HasEnded(ExitStatus* status);
  // Waits at most timeout seconds for the end, then kills the child.
  ExitStatus Wait(double timeout);
  // Sends SIGTERM, waits at most grace seconds, then kills the child.
  ExitStatus Stop(double grace);

 private:
  // Reaps the child and records how it ended.
  ExitStatus Reap(bool killed);

  pid_t pid_ = -1;
  int pidfd_ = -1;
  double start_ = 0;
  bool reaped_ = false;
  ExitStatus status_;
};

// The full path of a program: names with "/" as they are, others looked
// up in $PATH; "" when not found.
std::string FindProgram(const std::string& name);

// What a program printed and how it ended.
struct ProgramResult {
  int status = -1;  // exit status, 128 + signal, or -1 when it did not end
  std::string out;  // everything written to stdout
  std::string err;  // everything written to stderr

  // "status=N stdout=[...] stderr=[...]", for failure messages.
  std::string Describe() const;
};

// Runs a program with stdin_text on its stdin (/dev/null when empty) and
// the environment entries laid over ours, collects stdout and stderr, and
// waits for its end (killing it after timeout seconds).
ProgramResult RunProgram(const std::vector<std::string>& argv,
                         const std::string& stdin_text = "",
                         const std::vector<std::string>& env = {},
                         double timeout = 60.0);

#endif  // QUILLAROTH_TESTS_SUPPORT_SUBPROCESS_H_
