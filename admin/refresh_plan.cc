#include "admin/refresh_plan.h"

#include "admin/duration.h"

namespace {

const char* JobStateWord(int state) {
  switch (state) {
    case IPP_JSTATE_HELD:
      return "held";
    case IPP_JSTATE_PROCESSING:
      return "processing";
    case IPP_JSTATE_STOPPED:
      return "stopped";
    default:
      return "pending";
  }
}

// Why QUEUE gets no command job; "" when it gets one.
std::string WhyNot(const Queue& queue, const std::vector<ActiveJob>& jobs,
                   std::optional<long> min_age_seconds, time_t now,
                   bool* problem) {
  const QueueStatus& s = queue.status;
  *problem = true;
  if (!s.enabled)
    return "it does not use commandtoquillaroth ('quillaroth enable " +
           s.queue + "' adds it)";
  if (!queue.printer.accepting) return "the queue is not accepting jobs";
  if (s.state == QueueStatus::State::Stopped) return "the queue is stopped";
  *problem = false;
  for (const ActiveJob& job : jobs)
    if (job.queue == s.queue && job.command)
      return "command job " + std::to_string(job.id) + " is " +
             JobStateWord(job.state) + " already";
  if (!min_age_seconds) return "";
  for (const ActiveJob& job : jobs)
    if (job.queue == s.queue)
      return "busy with job " + std::to_string(job.id);
  if (s.levels_read_at) {
    long age = static_cast<long>(now - *s.levels_read_at);
    if (age <= *min_age_seconds)
      return "levels read " + ShortAge(age) + " ago, not older than " +
             ShortAge(*min_age_seconds);
  }
  return "";
}

}  // namespace

std::vector<RefreshStep> PlanRefresh(const std::vector<Queue>& queues,
                                     const std::vector<ActiveJob>& jobs,
                                     std::optional<long> min_age_seconds,
                                     time_t now) {
  std::vector<RefreshStep> steps;
  for (const Queue& queue : queues) {
    RefreshStep step;
    step.queue = queue.status.queue;
    step.skipped_because =
        WhyNot(queue, jobs, min_age_seconds, now, &step.problem);
    step.submit = step.skipped_because.empty();
    if (step.submit) step.problem = false;
    steps.push_back(step);
  }
  return steps;
}
