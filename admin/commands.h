// The commands of quillaroth.  Each writes its result to standard output,
// its problems to standard error as "quillaroth: ..." lines, and returns
// the exit status (kExitDone, kExitProblem).

#ifndef QUILLAROTH_ADMIN_COMMANDS_H_
#define QUILLAROTH_ADMIN_COMMANDS_H_

#include "admin/command_line.h"
#include "admin/scheduler.h"

// quillaroth enable QUEUE, and disable QUEUE.
int RunEnable(const Invocation& invocation, Scheduler& scheduler);
// quillaroth status [QUEUE...].
int RunStatus(const Invocation& invocation, Scheduler& scheduler);
// quillaroth refresh [QUEUE...].
int RunRefresh(const Invocation& invocation, Scheduler& scheduler);

// Writes "quillaroth: LINE\n" to standard error.
void Complain(const std::string& line);

#endif  // QUILLAROTH_ADMIN_COMMANDS_H_
