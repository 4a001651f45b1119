#include "admin/refresh_plan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "admin/queue_checks.h"

namespace {

constexpr time_t kNow = 1790000000;

class RefreshPlanTest : public ::testing::Test {
 protected:
  // A queue that uses the filter, idle and accepting, read AGE seconds ago.
  Queue& Add(const std::string& name, long age = 3600) {
    Queue queue;
    queue.printer.name = name;
    queue.status.queue = name;
    queue.status.enabled = true;
    queue.status.levels_read_at = kNow - age;
    queues_.push_back(queue);
    return queues_.back();
  }

  void Job(int id, const std::string& queue, int state, bool command) {
    jobs_.push_back({id, queue, state, command});
  }

  // "QUEUE: submit" or "QUEUE: REASON[ (problem)]" for each queue.
  std::string Plan(std::optional<long> min_age = std::nullopt) {
    std::string text;
    for (const RefreshStep& step : PlanRefresh(queues_, jobs_, min_age, kNow)) {
      text += step.queue + ": " +
              (step.submit ? "submit" : step.skipped_because) +
              (step.problem ? " (problem)" : "") + "\n";
    }
    return text;
  }

  std::vector<Queue> queues_;
  std::vector<ActiveJob> jobs_;
};

TEST_F(RefreshPlanTest, GoldenPlan) {
  Add("idle");
  Add("nofilter").status.enabled = false;
  Add("rejecting").printer.accepting = false;
  Add("stopped").status.state = QueueStatus::State::Stopped;
  Add("pending");
  Job(7, "pending", IPP_JSTATE_PENDING, true);
  Add("held");
  Job(8, "held", IPP_JSTATE_HELD, true);
  Add("working");
  Job(9, "working", IPP_JSTATE_PROCESSING, true);
  Add("printing");
  Job(10, "printing", IPP_JSTATE_PROCESSING, false);
  EXPECT_EQ(
      "idle: submit\n"
      "nofilter: it does not use commandtoquillaroth ('quillaroth enable "
      "nofilter' adds it) (problem)\n"
      "rejecting: the queue is not accepting jobs (problem)\n"
      "stopped: the queue is stopped (problem)\n"
      "pending: command job 7 is pending already\n"
      "held: command job 8 is held already\n"
      "working: command job 9 is processing already\n"
      "printing: submit\n",
      Plan());
}

TEST_F(RefreshPlanTest, OnlyOldLevelsOfIdleQueues) {
  Add("fresh", 300);
  Add("old", 700);
  Add("never").status.levels_read_at.reset();
  Add("printing", 700);
  Job(10, "printing", IPP_JSTATE_PENDING, false);
  EXPECT_EQ(
      "fresh: levels read 5m ago, not older than 10m\n"
      "old: submit\n"
      "never: submit\n"
      "printing: busy with job 10\n",
      Plan(600));
}

TEST(QueueChecksTest, BackendsAndQueueKinds) {
  PrinterAttributes p;
  p.name = "q";
  for (const char* uri : {"usb://Maker/Model?serial=1", "socket://10.0.0.9",
                          "dnssd://Photo._pdl-datastream._tcp.local/",
                          "serial:/dev/ttyS0"}) {
    p.device_uri = uri;
    EXPECT_EQ("", WhyNoFilterHere(p)) << uri;
  }
  for (const char* uri : {"ipp://h/ipp/print", "ipps://h/ipp/print",
                          "http://h:631/printers/x", "https://h/x",
                          "lpd://h/queue", "dnssd://Photo._ipp._tcp.local/"}) {
    p.device_uri = uri;
    std::string scheme = std::string(uri).substr(0, std::string(uri).find(':'));
    EXPECT_EQ("q: its backend '" + scheme +
                  "' answers no bidirectional link, so the filter could never "
                  "read the printer; the usb and socket backends can",
              WhyNoFilterHere(p));
  }
  p.device_uri = "implicitclass://q/";
  EXPECT_EQ(
      "q is a queue for a printer shared from elsewhere (implicitclass): "
      "enable it on the server that owns the printer",
      WhyNoFilterHere(p));
  p.device_uri = "ipp://server/printers/q";
  p.type = CUPS_PRINTER_REMOTE;
  EXPECT_EQ(
      "q is a remote queue, shared from another server: enable it on the "
      "server that owns the printer",
      WhyNoFilterHere(p));
  p.type = CUPS_PRINTER_CLASS;
  EXPECT_EQ("q is a class, not a printer: enable each of its printers",
            WhyNoFilterHere(p));
}

}  // namespace
