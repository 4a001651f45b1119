// quillaroth status [QUEUE...].

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

#include "admin/atomic_file.h"
#include "admin/commands.h"
#include "admin/prometheus_text.h"
#include "admin/queue_list.h"
#include "admin/status_json.h"
#include "admin/status_table.h"
#include "admin/warn_below.h"

namespace {

// Colours only for a terminal that shows them, and not when NO_COLOR is
// set (https://no-color.org).
bool ColourWanted() {
  const char* term = getenv("TERM");
  return isatty(STDOUT_FILENO) && getenv("NO_COLOR") == nullptr &&
         term != nullptr && strcmp(term, "dumb") != 0;
}

}  // namespace

int RunStatus(const Invocation& invocation, Scheduler& scheduler) {
  std::vector<Queue> queues;
  std::vector<std::string> notes;
  std::string error;
  QueueSelection selection{invocation.queues, invocation.all};
  if (!ReadQueues(scheduler, selection, &queues, &notes, &error)) {
    Complain(error);
    return kExitProblem;
  }
  for (const std::string& note : notes) Complain(note);
  // A queue that was named but does not exist is a problem; a value that
  // did not parse is only noted.
  int status = kExitDone;
  for (const std::string& name : invocation.queues) {
    bool found = false;
    for (const Queue& q : queues) found = found || q.status.queue == name;
    if (!found) status = kExitProblem;
  }

  std::vector<QueueStatus> shown = Statuses(queues);
  time_t now = time(nullptr);
  std::string text;
  if (invocation.json) {
    text = StatusJson(shown, now);
  } else if (invocation.prometheus) {
    text = PrometheusText(shown, now);
  } else if (invocation.warn_below) {
    for (const std::string& line : WarnLines(shown, *invocation.warn_below))
      text += line + "\n";
    if (!text.empty()) status = kExitProblem;
  } else if (shown.empty() && invocation.queues.empty()) {
    text = "No queue on " + scheduler.where() +
           " uses commandtoquillaroth ('quillaroth status --all' lists every "
           "queue, 'quillaroth enable QUEUE' adds the filter to one).\n";
  } else {
    TableStyle style;
    style.stale_seconds = invocation.stale_seconds;
    style.colour = invocation.output.empty() && ColourWanted();
    text = StatusTable(shown, now, style);
  }

  if (invocation.output.empty()) {
    fwrite(text.data(), 1, text.size(), stdout);
    return status;
  }
  if (!WriteFileAtomically(invocation.output, text, &error)) {
    Complain(error);
    return kExitProblem;
  }
  return status;
}
