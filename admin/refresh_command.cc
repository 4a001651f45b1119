// quillaroth refresh [QUEUE...].

#include <time.h>

#include <cstdio>
#include <string>
#include <vector>

#include "admin/commands.h"
#include "admin/queue_list.h"
#include "admin/refresh_plan.h"
#include "admin/status_table.h"

namespace {

// The command file of a refresh, and the jobs' name.
constexpr char kRefreshCommands[] = "#CUPS-COMMAND\nReportLevels\nReportStatus\n";
constexpr char kRefreshTitle[] = "quillaroth refresh";
// How often --wait asks for the jobs' states.
constexpr long kPollNanoseconds = 250L * 1000 * 1000;
// How long --wait waits for a scheduler that stopped answering.
constexpr double kSchedulerGoneSeconds = 10.0;

struct Submitted {
  std::string queue;
  int job_id;
  int state;
};

double MonotonicSeconds() {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) +
         static_cast<double>(now.tv_nsec) / 1e9;
}

const char* JobStateName(int state) {
  return ippEnumString("job-state", state);
}

// Waits until every job has ended, printing each change of state; false
// when the time ran out or the scheduler went away (said on stderr).
bool WaitForJobs(Scheduler& scheduler, std::vector<Submitted>* jobs,
                 long timeout_seconds, bool* failed_job) {
  double deadline = MonotonicSeconds() + static_cast<double>(timeout_seconds);
  double last_answer = MonotonicSeconds();
  for (;;) {
    bool all_ended = true;
    for (Submitted& job : *jobs) {
      if (job.state >= IPP_JSTATE_CANCELED) continue;
      JobState now;
      std::string error;
      if (!scheduler.GetJobState(job.job_id, &now, &error)) {
        // A scheduler that restarts answers again within seconds, and keeps
        // its jobs; one that stays away ends the wait.
        if (MonotonicSeconds() - last_answer < kSchedulerGoneSeconds) {
          all_ended = false;
          continue;
        }
        Complain("the scheduler stopped answering while refresh waited: " +
                 error);
        return false;
      }
      last_answer = MonotonicSeconds();
      if (now.state == 0) now.state = IPP_JSTATE_CANCELED;  // gone
      if (now.state != job.state) {
        job.state = now.state;
        printf("%s: job %d %s\n", job.queue.c_str(), job.job_id,
               JobStateName(job.state));
        fflush(stdout);
        if (job.state == IPP_JSTATE_CANCELED || job.state == IPP_JSTATE_ABORTED)
          *failed_job = true;
      }
      if (job.state < IPP_JSTATE_CANCELED) all_ended = false;
    }
    if (all_ended) return true;
    if (MonotonicSeconds() >= deadline) {
      for (const Submitted& job : *jobs)
        if (job.state < IPP_JSTATE_CANCELED)
          Complain(job.queue + ": job " + std::to_string(job.job_id) +
                   " still " + JobStateName(job.state) + " after " +
                   std::to_string(timeout_seconds) + "s");
      return false;
    }
    struct timespec pause = {0, kPollNanoseconds};
    nanosleep(&pause, nullptr);
  }
}

}  // namespace

int RunRefresh(const Invocation& invocation, Scheduler& scheduler) {
  std::vector<Queue> queues;
  std::vector<std::string> notes;
  std::string error;
  QueueSelection selection{invocation.queues, false};
  if (!ReadQueues(scheduler, selection, &queues, &notes, &error)) {
    Complain(error);
    return kExitProblem;
  }
  int status = kExitDone;
  for (const std::string& note : notes) Complain(note);
  if (queues.size() < invocation.queues.size()) status = kExitProblem;

  time_t now = time(nullptr);
  // The jobs are read only when some queue may get one: a run that finds
  // every reading fresh makes one request in all.
  bool any_candidate = false;
  for (const RefreshStep& step :
       PlanRefresh(queues, {}, invocation.if_older_than_seconds, now))
    any_candidate = any_candidate || step.submit;
  std::vector<ActiveJob> active;
  if (any_candidate && !scheduler.GetActiveJobs(&active, &error)) {
    Complain(error);
    return kExitProblem;
  }
  std::vector<Submitted> submitted;
  for (const RefreshStep& step :
       PlanRefresh(queues, active, invocation.if_older_than_seconds, now)) {
    if (!step.submit) {
      printf("%s: skipped: %s\n", step.queue.c_str(),
             step.skipped_because.c_str());
      if (step.problem) status = kExitProblem;
      continue;
    }
    int job_id = scheduler.SubmitCommandJob(step.queue, kRefreshTitle,
                                            kRefreshCommands, &error);
    if (job_id == 0) {
      Complain("cannot submit a command job to " + step.queue + ": " + error);
      status = kExitProblem;
      continue;
    }
    printf("%s: job %d submitted\n", step.queue.c_str(), job_id);
    submitted.push_back({step.queue, job_id, IPP_JSTATE_PENDING});
  }
  fflush(stdout);
  if (!invocation.wait || submitted.empty()) return status;

  bool failed_job = false;
  if (!WaitForJobs(scheduler, &submitted, invocation.wait_timeout_seconds,
                   &failed_job))
    return kExitProblem;
  if (failed_job) status = kExitProblem;

  // The finished command jobs leave no history behind.
  for (const Submitted& job : submitted) {
    if (job.state != IPP_JSTATE_COMPLETED) continue;
    if (!scheduler.PurgeJob(job.job_id, &error)) {
      Complain("cannot remove the finished command jobs from the history: " +
               error);
      break;
    }
  }

  QueueSelection done;
  for (const Submitted& job : submitted) done.names.push_back(job.queue);
  std::vector<Queue> after;
  notes.clear();
  if (!ReadQueues(scheduler, done, &after, &notes, &error)) {
    Complain(error);
    return kExitProblem;
  }
  for (const std::string& note : notes) Complain(note);
  std::vector<QueueStatus> shown = Statuses(after);
  TableStyle style;
  style.stale_seconds = invocation.stale_seconds;
  printf("\n%s", StatusTable(shown, time(nullptr), style).c_str());
  return status;
}
