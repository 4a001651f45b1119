// CupsdTest: the GoogleTest fixture of the end-to-end tests.
//
// All tests of one process share one private scheduler (PrivateCupsd),
// started by the first test that needs it and stopped when the process ends
// (or, should the process die, by the SIGTERM that the kernel then sends
// it).  Each test uses queues of its own.  A test that fails gets the
// scheduler's log of its jobs in its output.

#ifndef QUILLAROTH_TESTS_E2E_CUPSD_TEST_H_
#define QUILLAROTH_TESTS_E2E_CUPSD_TEST_H_

#include <cups/ipp.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/e2e/private_cupsd.h"
#include "tests/support/sim_printer.h"

// The marker attributes of a ribbon with the given level, message and
// ink-sheet name, as the queue shows them.
std::string Markers(const std::string& level, const std::string& message,
                    const std::string& names);

// The printer's state reasons and ribbon as the queue shows them, with the
// marker level and the ink sheet's name that its counts and type give.
std::string Shown(const std::string& reasons, const SimPrinter& printer,
                  const std::string& level, const char* sheet);

// What the queue shows after a query that got no answer, or a printer that
// could not be asked: the unavailable state and levels.
std::string UnreachableShown();

// The command files of the command jobs.
constexpr char kReportLevels[] = "#CUPS-COMMAND\nReportLevels\n";
constexpr char kReportStatus[] = "#CUPS-COMMAND\nReportStatus\n";
constexpr char kBothCommands[] = "#CUPS-COMMAND\nReportLevels\nReportStatus\n";

// The filter's own waits, in seconds, from which the tests bound a job's
// time: the pause after the wake-up command, a back-channel read, an
// unanswered drain, the pause between queries of a printer that is still
// waking up.
constexpr double kWakeUpPauseSeconds = 0.5;
constexpr double kReadTimeout = 1.0;
constexpr double kDrainTimeout = 5.0;
constexpr double kRetrySleep = 1.0;
// Starting the filter and the backend, and the scheduler noticing the
// job's end (0.1 to 0.3 s when the machine is idle; it is shared).
constexpr double kSchedulerSlack = 3.0;

// How a command job went: its id (0 when it could not be submitted), the
// last job-state seen and the seconds from its submission to its end.
struct JobRun {
  int id = 0;
  int state = 0;
  double seconds = 0;
};

// How much longer than its bound a job is waited for, so that a slow job is
// reported with its time rather than as "still processing".
constexpr double kJobWaitLimit = 30.0;
// The bound of a command job whose test states none (RunCommandJob).
constexpr double kCommandJobBound = 30.0;

// The GoogleTest environment that stops the shared scheduler at the end.
class CupsdEnvironment : public ::testing::Environment {
 public:
  // Stops the shared scheduler, if one was started, and removes its tree.
  void TearDown() override;
};

class CupsdTest : public ::testing::Test {
 protected:
  // Skips the test where no private scheduler can run (not root); fails it
  // unless the shared scheduler runs (starting it if needed).
  void SetUp() override;
  // On failure, prints the scheduler's log lines of this test's jobs and its
  // error lines.
  void TearDown() override;

  // The shared scheduler.
  PrivateCupsd& cupsd();
  // Adds a queue for the simulated printer with our PPD; fails the test if
  // lpadmin fails.
  void AddQueue(const std::string& name, const std::string& uri);
  // Submits a command job and records it for the failure log; returns its
  // id, or fails the test and returns 0.
  int SubmitJob(const std::string& queue, const std::string& commands);
  // Submits a command job (SubmitJob) and waits for it to end, kJobWaitLimit
  // seconds longer than BOUND at most; prints how long it took (ctest -V
  // shows it).  Checks that it ended in STATE within BOUND seconds, through
  // exactly our filter and BACKEND.
  JobRun RunJob(const std::string& queue, const std::string& commands,
                double bound, const std::string& backend = "quillarothsim",
                int state = IPP_JSTATE_COMPLETED);
  // Runs a command job on the simulated printer's backend (RunJob, within
  // kCommandJobBound) and checks that it completed; returns its id (0 on
  // failure, which has then been reported).
  int RunCommandJob(const std::string& queue, const std::string& commands);
  // The filter chain that every command job of the queue must take, to the
  // simulated printer's backend or another one.
  static std::string ExpectedFilterChain(
      int job_id, const std::string& queue,
      const std::string& backend = "quillarothsim");
  // The scheduler's lines about the ends of a job's processes
  // (PrivateCupsd::ProcessExits): the backend's as BACKEND_END says, the
  // filter exiting 0.
  static std::string ExpectedExits(
      int job_id, const std::string& backend,
      const std::string& backend_end = "exited with no errors.");

 private:
  std::vector<int> jobs_;
};

#endif  // QUILLAROTH_TESTS_E2E_CUPSD_TEST_H_
