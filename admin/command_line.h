// The command line of quillaroth: one table of subcommands and their
// options, from which the parser, --help and the manual page's synopsis
// all come.
//
//   quillaroth [-h HOST[:PORT]] COMMAND [OPTIONS] [QUEUE...]

#ifndef QUILLAROTH_ADMIN_COMMAND_LINE_H_
#define QUILLAROTH_ADMIN_COMMAND_LINE_H_

#include <optional>
#include <string>
#include <vector>

// Exit statuses.
constexpr int kExitDone = 0;     // done
constexpr int kExitProblem = 1;  // a problem with a printer or queue, reported
constexpr int kExitUsage = 2;    // a usage error

enum class Command { None, Enable, Disable, Status, Refresh };

// What one run was asked to do.
struct Invocation {
  Command command = Command::None;
  bool help = false;     // --help: print the command's help
  bool version = false;  // --version
  std::string host;      // -h HOST[:PORT]; "" for CUPS_SERVER or the default
  std::vector<std::string> queues;
  bool all = false;
  bool dry_run = false;
  bool json = false;
  bool prometheus = false;
  bool wait = false;
  long stale_seconds = 3600;
  long wait_timeout_seconds = 300;
  std::optional<long> if_older_than_seconds;
  std::optional<long> warn_below;
  std::string output;  // --output FILE; "" for standard output
};

// Reads argv into *invocation; false with a one-line reason in *error.
bool ParseCommandLine(int argc, const char* const* argv,
                      Invocation* invocation, std::string* error);

// The help of COMMAND (Command::None: the overview of all commands).
std::string HelpText(Command command);

// The options of COMMAND for the manual page: a .TP paragraph each.
std::string ManOptions(Command command);

// The name of COMMAND as typed ("enable", ...; "" for None).
const char* CommandName(Command command);

#endif  // QUILLAROTH_ADMIN_COMMAND_LINE_H_
