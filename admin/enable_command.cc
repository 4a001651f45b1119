// quillaroth enable QUEUE and quillaroth disable QUEUE.

#include <cstdio>
#include <vector>

#include "admin/commands.h"
#include "admin/ppd_edit.h"
#include "admin/queue_checks.h"

int RunEnable(const Invocation& invocation, Scheduler& scheduler) {
  const std::string& queue = invocation.queues[0];
  bool enable = invocation.command == Command::Enable;
  std::string error;
  std::vector<PrinterAttributes> printers;
  if (!scheduler.GetPrinters(&printers, &error)) {
    Complain(error);
    return kExitProblem;
  }
  const PrinterAttributes* printer = nullptr;
  for (const PrinterAttributes& p : printers)
    if (p.name == queue) printer = &p;
  if (printer == nullptr) {
    Complain("no queue named '" + queue + "' on " + scheduler.where());
    return kExitProblem;
  }
  std::string why = WhyNoFilterHere(*printer);
  if (enable && !why.empty()) {
    Complain(why);
    return kExitProblem;
  }

  std::string ppd;
  switch (scheduler.GetPpd(queue, &ppd, &error)) {
    case Scheduler::PpdFetch::kGot:
      break;
    case Scheduler::PpdFetch::kNoPpd:
      Complain(queue + " has no PPD (a raw, driverless or IPP Everywhere "
                       "queue): the filter is named in a queue's PPD");
      return kExitProblem;
    case Scheduler::PpdFetch::kFailed:
      Complain(error);
      return kExitProblem;
  }

  PpdEdit edit = enable ? EnableCommandFilter(ppd) : DisableCommandFilter(ppd);
  if (edit.outcome == PpdEdit::Outcome::kRefused) {
    Complain(queue + ": " + edit.reason);
    return kExitProblem;
  }
  if (edit.outcome == PpdEdit::Outcome::kUnchanged) {
    printf("%s: %s; nothing changed\n", queue.c_str(), edit.reason.c_str());
    return kExitDone;
  }
  if (invocation.dry_run) {
    fputs(UnifiedDiff("a/" + queue + ".ppd", "b/" + queue + ".ppd", ppd,
                      edit.text)
              .c_str(),
          stdout);
    return kExitDone;
  }
  if (!scheduler.PutPpd(queue, edit.text, &error)) {
    Complain("cannot change " + queue + ": " + error);
    return kExitProblem;
  }
  if (enable)
    printf("%s: enabled: its command jobs now run commandtoquillaroth "
           "('quillaroth refresh %s' asks the printer)\n",
           queue.c_str(), queue.c_str());
  else
    printf("%s: disabled: its PPD is as it was before 'quillaroth enable'\n",
           queue.c_str());
  return kExitDone;
}
