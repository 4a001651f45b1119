// SocketBackendTest: the fixture of the command jobs that go through CUPS'
// own socket backend to the network printer (quillaroth-sim --listen).
//
// The printer listens on a free loopback port (one per test); the queue is
// a stock "socket://127.0.0.1:PORT" queue with the simulated printer's PPD,
// and /usr/lib/cups/backend/socket from Debian's cups package, linked into
// the private scheduler's server folder, carries the filter's escape
// commands to the printer and its replies back.

#ifndef QUILLAROTH_TESTS_E2E_SOCKET_BACKEND_TEST_H_
#define QUILLAROTH_TESTS_E2E_SOCKET_BACKEND_TEST_H_

#include <cups/cups.h>
#include <gtest/gtest.h>
#include <time.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/e2e/cupsd_test.h"
#include "tests/sim/listening_printer.h"

constexpr char kReportLevels[] = "#CUPS-COMMAND\nReportLevels\n";
constexpr char kReportStatus[] = "#CUPS-COMMAND\nReportStatus\n";

// The filter's own waits, in seconds: the pause after the wake-up command,
// a back-channel read, an unanswered drain, the pause between queries of a
// printer that is still waking up.
constexpr double kWakeUpPause = 0.5;
constexpr double kReadTimeout = 1.0;
constexpr double kDrainTimeout = 5.0;
constexpr double kRetryPause = 1.0;
// The socket backend's look-ups of the printer's supplies over SNMP before
// it serves the side channel: two queries with 2 s time-outs, which a
// printer without an SNMP agent (this one) lets run out.
constexpr double kSnmpLookups = 4.0;
// Starting the filter and the backend, the backend's look-ups, and the
// scheduler noticing the job's end (0.1 to 0.3 s when the machine is idle;
// it is shared).
constexpr double kSchedulerSlack = 3.0;
// How much longer than its bound a job is waited for, so that a slow job
// is reported with its time rather than as "still processing".
constexpr double kJobWaitLimit = 30.0;
// How long the socket backend waits for the printer to close the
// connection after the job ("waiteof", unless waiteof=false).
constexpr double kWaitEof = 90.0;

// Seconds on the monotonic clock.
inline double Now() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

// The marker attributes of a ribbon, as the queue shows them.
inline std::string Markers(const std::string& level, const std::string& message,
                    const std::string& names) {
  return "marker-colors=#00FF00\n"
         "marker-levels=" + level + "\n"
         "marker-message=" + message + "\n"
         "marker-names=" + names + "\n"
         "marker-types=ink-ribbon\n";
}

// The markers of the simulated printer's default ribbon, 123 of 350.
inline std::string DefaultMarkers() {
  return Markers("35", "Ink Ribbon = 123 / 350",
                 "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)");
}

// The markers of a ribbon that could not be read.
inline std::string UnavailableMarkers() { return Markers("-2", " ", "InkSheetType: 00"); }

// The printer's log lines of a wake-up and one answered query.
inline std::string AnsweredQueryLog() {
  return "sim: cmd 1b 45 57 55\n"
         "sim: cmd 1b 56 32 31\n"
         "sim: reply 192 bytes\n";
}

class SocketBackendTest : public CupsdTest {
 protected:
  void SetUp() override {
    CupsdTest::SetUp();
    if (HasFatalFailure()) return;
    std::string error;
    ASSERT_TRUE(cupsd().AddSystemBackend("socket", &error)) << error;
  }

  // Starts the network printer with these quillaroth-sim options and adds
  // the queue "socket://127.0.0.1:PORT" (with "/?URI_OPTIONS" if given).
  void AddNetworkQueue(const std::string& queue,
                       const std::vector<std::string>& options,
                       const std::string& uri_options = "") {
    printer_ = std::make_unique<ListeningPrinter>(SIM_PATH, options);
    std::string error;
    ASSERT_TRUE(printer_->Start(&error)) << error;
    std::string uri = "socket://" + printer_->address();
    if (!uri_options.empty()) uri += "/?" + uri_options;
    AddQueue(queue, uri);
  }

  // Runs a command job and checks that it ended in `state` through our
  // filter and the socket backend, with the filter exiting 0, and within
  // the waits of the filter and the backend (`waits` seconds), the
  // backend's SNMP look-ups and the scheduler's slack.  Prints how long it
  // took (ctest -V shows it).  Returns the job id (0 when it could not be
  // run).
  int RunJob(const std::string& queue, const std::string& commands,
             double waits, int state = IPP_JSTATE_COMPLETED) {
    double bound = kSnmpLookups + waits + kSchedulerSlack;
    double limit = bound + kJobWaitLimit;
    std::string error;
    double start = Now();
    int job = cupsd().SubmitCommandJob(queue, commands, &error);
    if (job == 0) {
      ADD_FAILURE() << error;
      return 0;
    }
    int ended = cupsd().WaitForJob(job, limit);
    double took = Now() - start;
    last_job_seconds_ = took;
    printf("job %d on %s ended in state %d after %.2f s (bound %.2f s)\n", job,
           queue.c_str(), ended, took, bound);
    EXPECT_EQ(state, ended) << "job " << job << " on " << queue;
    EXPECT_GE(bound, took) << "job " << job << " on " << queue;
    EXPECT_EQ(FilterChain(job, queue), cupsd().FilterChain(job));
    EXPECT_EQ("[Job " + std::to_string(job) +
                  "] PID n (ROOT/bin/filter/commandtoquillaroth) exited with "
                  "no errors.\n",
              FilterExit(job));
    return job;
  }

  // The printer's log so far.
  std::string PrinterLog() const { return printer_->Log(); }

  double last_job_seconds_ = 0;  // how long the last RunJob() took

 private:
  // The filter chain of a command job on a socket queue.
  static std::string FilterChain(int job_id, const std::string& queue) {
    std::string job = "[Job " + std::to_string(job_id) + "] ";
    return job + "2 filters for job:\n" + job +
           "commandtoquillaroth (application/vnd.cups-command to printer/" +
           queue + "/application/vnd.cups-command, cost 0)\n" + job +
           "- (printer/" + queue + "/application/vnd.cups-command to printer/" +
           queue + ", cost 0)\n" + job +
           "Started filter ROOT/bin/filter/commandtoquillaroth (PID n)\n" +
           job + "Started backend ROOT/bin/backend/socket (PID n)\n";
  }

  // The scheduler's line about the filter's end, process id and the
  // tree's path taken out.
  std::string FilterExit(int job_id) {
    std::istringstream log(cupsd().JobLog(job_id));
    std::string line;
    std::string found;
    const std::string filter = "/bin/filter/commandtoquillaroth)";
    while (std::getline(log, line)) {
      size_t pid = line.find("] PID ");
      size_t path = line.find(" (" + cupsd().root() + filter);
      if (pid == std::string::npos || path == std::string::npos) continue;
      size_t tag = line.find("[Job ");
      found += line.substr(tag, pid + 1 - tag) + " PID n (ROOT" + filter +
               line.substr(path + 2 + cupsd().root().size() + filter.size()) +
               "\n";
    }
    return found;
  }

  std::unique_ptr<ListeningPrinter> printer_;
};

#endif  // QUILLAROTH_TESTS_E2E_SOCKET_BACKEND_TEST_H_
