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

#include <memory>
#include <string>
#include <vector>

#include "tests/e2e/cupsd_test.h"
#include "tests/sim/listening_printer.h"
#include "tests/support/expected_trace.h"
#include "tests/support/sim_printer.h"

// The socket backend's look-ups of the printer's supplies over SNMP before
// it serves the side channel: two queries with 2 s time-outs, which a
// printer without an SNMP agent (this one) lets run out.
constexpr double kSnmpLookups = 4.0;
// How long the socket backend waits for the printer to close the
// connection after the job ("waiteof", unless waiteof=false).
constexpr double kWaitEof = 90.0;

// The printer's log lines of a query that it answers as `printer`.
inline std::string QueryLog(const SimPrinter& printer) {
  return "sim: cmd 1b 56 32 31\n" + printer.SimReplyLine(false);
}

// The printer's log lines of a job's connection (the Nth of the run): the
// wake-up command, `queries` (as QueryLog gives them) and the host's close.
inline std::string ConnectionLog(int connection, const std::string& queries) {
  std::string n = std::to_string(connection);
  return "sim: connection " + n + " from 127.0.0.1\n"
         "sim: cmd 1b 45 57 55\n" +
         queries + "sim: connection " + n + " closed by the host\n";
}

class SocketBackendTest : public CupsdTest {
 protected:
  void SetUp() override {
    CupsdTest::SetUp();
    if (HasFatalFailure() || IsSkipped()) return;
    std::string error;
    ASSERT_TRUE(cupsd().AddSystemBackend("socket", &error)) << error;
  }

  // Starts the network printer as `printer` says, with these further
  // quillaroth-sim options, and adds the queue "socket://127.0.0.1:PORT"
  // (with "/?URI_OPTIONS" if given).
  void AddNetworkQueue(const std::string& queue, const SimPrinter& printer,
                       const std::vector<std::string>& more_options = {},
                       const std::string& uri_options = "") {
    std::vector<std::string> options = printer.SimOptions();
    options.insert(options.end(), more_options.begin(), more_options.end());
    printer_ = std::make_unique<ListeningPrinter>(options);
    std::string error;
    ASSERT_TRUE(printer_->Start(&error)) << error;
    std::string uri = "socket://" + printer_->address();
    if (!uri_options.empty()) uri += "/?" + uri_options;
    AddQueue(queue, uri);
  }

  // Runs a command job through the socket backend (RunJob) within the
  // waits of the filter and the backend (`waits` seconds), the backend's
  // SNMP look-ups and the scheduler's slack, ending in `state`; checks that
  // the filter exited 0 and the backend as `backend_end` says (the
  // scheduler's words).  Returns the job id (0 when it could not be run).
  int RunSocketJob(const std::string& queue, const std::string& commands,
                   double waits, int state = IPP_JSTATE_COMPLETED,
                   const std::string& backend_end = "exited with no errors.") {
    JobRun run = RunJob(queue, commands,
                        kSnmpLookups + waits + kSchedulerSlack, "socket", state);
    last_job_seconds_ = run.seconds;
    if (run.id == 0) return 0;
    EXPECT_EQ(ExpectedExits(run.id, "socket", backend_end),
              cupsd().ProcessExits(run.id));
    return run.id;
  }

  // The printer's log so far.
  std::string PrinterLog() const { return printer_->Log(); }

  double last_job_seconds_ = 0;  // how long the last RunSocketJob() took

 private:
  std::unique_ptr<ListeningPrinter> printer_;
};

#endif  // QUILLAROTH_TESTS_E2E_SOCKET_BACKEND_TEST_H_
