// ReadQueues: the queues that a command shows, read from the scheduler in
// one CUPS-Get-Printers request, with the facts of their PPDs (fetched only
// for a queue whose configuration changed since the cache last saw it).

#ifndef QUILLAROTH_ADMIN_QUEUE_LIST_H_
#define QUILLAROTH_ADMIN_QUEUE_LIST_H_

#include <string>
#include <vector>

#include "admin/queue_status.h"
#include "admin/scheduler.h"

// One queue as the scheduler holds it and as quillaroth shows it.
struct Queue {
  PrinterAttributes printer;
  QueueStatus status;
};

// Which queues: the named ones (each must exist), else every queue
// (EVERY_QUEUE) or those whose PPD runs the filter.
struct QueueSelection {
  std::vector<std::string> names;
  bool every_queue = false;
};

// The selected queues in the scheduler's order; notes on values that do
// not parse, and "no queue named ..." for each unknown name, go to *notes.
// False with a one-line reason when the scheduler cannot be read.
bool ReadQueues(Scheduler& scheduler, const QueueSelection& selection,
                std::vector<Queue>* queues, std::vector<std::string>* notes,
                std::string* error);

// The line for a name that no queue has.
std::string NoSuchQueue(const std::string& name, const Scheduler& scheduler);

#endif  // QUILLAROTH_ADMIN_QUEUE_LIST_H_
