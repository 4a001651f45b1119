#include "admin/queue_list.h"

#include <algorithm>
#include <set>

#include "admin/ppd_cache.h"
#include "admin/queue_reader.h"

std::string NoSuchQueue(const std::string& name, const Scheduler& scheduler) {
  return "no queue named '" + name + "' on " + scheduler.where();
}

bool ReadQueues(Scheduler& scheduler, const QueueSelection& selection,
                std::vector<Queue>* queues, std::vector<std::string>* notes,
                std::string* error) {
  std::vector<PrinterAttributes> printers;
  if (!scheduler.GetPrinters(&printers, error)) return false;

  PpdCache cache = PpdCache::Load(scheduler.where());
  std::set<std::string> names;
  for (const PrinterAttributes& printer : printers) names.insert(printer.name);
  cache.Keep(names);
  for (const std::string& name : selection.names)
    if (names.count(name) == 0) notes->push_back(NoSuchQueue(name, scheduler));

  queues->clear();
  for (const PrinterAttributes& printer : printers) {
    bool named = std::find(selection.names.begin(), selection.names.end(),
                           printer.name) != selection.names.end();
    if (!selection.names.empty() && !named) continue;
    PpdFacts facts;
    const PpdFacts* known = cache.Find(printer.name, printer.config_change_time);
    if (known != nullptr) {
      facts = *known;
    } else {
      std::string text;
      std::string why;
      Scheduler::PpdFetch fetch = scheduler.GetPpd(printer.name, &text, &why);
      if (fetch == Scheduler::PpdFetch::kFailed) {
        notes->push_back(printer.name + ": " + why);
      } else {
        if (fetch == Scheduler::PpdFetch::kGot) facts = ReadPpdFacts(text);
        cache.Put(printer.name, printer.config_change_time, facts);
      }
    }
    if (selection.names.empty() && !selection.every_queue && !facts.runs_filter)
      continue;
    queues->push_back({printer, ReadQueueStatus(printer, facts, notes)});
  }
  cache.Save();
  return true;
}
