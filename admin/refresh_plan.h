// PlanRefresh: which queues get a command job, and why the others do not.
//
// A queue gets one when it uses the filter, accepts jobs, is not stopped
// and has no command job pending, held or processing: a printer switched
// off all week must not collect a job per run.  With a minimum age, also
// only when its levels are older than that and it has no job at all, so
// that a print job never waits for more than the one command job that may
// already be running when it arrives.

#ifndef QUILLAROTH_ADMIN_REFRESH_PLAN_H_
#define QUILLAROTH_ADMIN_REFRESH_PLAN_H_

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "admin/queue_list.h"
#include "admin/scheduler.h"

struct RefreshStep {
  std::string queue;
  bool submit = false;
  // Why not (when !submit), for example "the queue is stopped".
  std::string skipped_because;
  // The skip is a problem with the queue that the admin should mend (not
  // accepting, stopped, no filter), rather than nothing to do.
  bool problem = false;
};

// One step per queue, in the queues' order.
std::vector<RefreshStep> PlanRefresh(const std::vector<Queue>& queues,
                                     const std::vector<ActiveJob>& jobs,
                                     std::optional<long> min_age_seconds,
                                     time_t now);

#endif  // QUILLAROTH_ADMIN_REFRESH_PLAN_H_
