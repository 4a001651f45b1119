// quillaroth: the admin's command for the queues of commandtoquillaroth.

#include <cstdio>
#include <memory>
#include <string>

#include "admin/command_line.h"
#include "admin/commands.h"
#include "admin/scheduler.h"

#ifndef QUILLAROTH_VERSION
#define QUILLAROTH_VERSION "unknown"
#endif

int main(int argc, char** argv) {
  Invocation invocation;
  std::string error;
  if (!ParseCommandLine(argc, argv, &invocation, &error)) {
    Complain(error);
    fprintf(stderr, "Try 'quillaroth --help'.\n");
    return kExitUsage;
  }
  if (invocation.version) {
    printf("quillaroth %s\n", QUILLAROTH_VERSION);
    return kExitDone;
  }
  if (invocation.help) {
    fputs(HelpText(invocation.command).c_str(), stdout);
    return kExitDone;
  }
  std::unique_ptr<Scheduler> scheduler =
      Scheduler::Connect(invocation.host, &error);
  if (scheduler == nullptr) {
    Complain(error);
    return kExitProblem;
  }
  switch (invocation.command) {
    case Command::Enable:
    case Command::Disable:
      return RunEnable(invocation, *scheduler);
    case Command::Status:
      return RunStatus(invocation, *scheduler);
    case Command::Refresh:
      return RunRefresh(invocation, *scheduler);
    case Command::None:
      break;
  }
  return kExitUsage;
}
