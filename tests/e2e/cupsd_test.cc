#include "tests/e2e/cupsd_test.h"

#include <cups/cups.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "tests/support/built_tools.h"
#include "tests/support/files.h"

namespace {

std::unique_ptr<PrivateCupsd> shared_cupsd;
std::string start_error;

// Starts the shared scheduler once; later calls report the first outcome.
// HOME, the client configuration folder and CUPS_SERVER are pointed into
// the private tree before libcups reads them, so that neither the user's nor
// the system's lpoptions, client.conf or default printer leak in.
PrivateCupsd* SharedCupsd(std::string* error) {
  static bool tried = false;
  if (!tried) {
    tried = true;
    shared_cupsd = std::make_unique<PrivateCupsd>(
        CUPSD_PATH, CUPS_EXEC_PATH, CUPS_DATA_DIR, BuiltTools().filter,
        BuiltTools().backend, PPD_PATH);
    if (shared_cupsd->MakeRoot(&start_error)) {
      setenv("HOME", (shared_cupsd->root() + "/home").c_str(), 1);
      setenv("CUPS_SERVERROOT", (shared_cupsd->root() + "/client").c_str(), 1);
      unsetenv("LPDEST");
      unsetenv("PRINTER");
      if (shared_cupsd->Start(&start_error)) {
        setenv("CUPS_SERVER", shared_cupsd->address().c_str(), 1);
        cupsSetServer(shared_cupsd->address().c_str());
      }
    }
  }
  *error = start_error;
  return shared_cupsd != nullptr && shared_cupsd->running()
             ? shared_cupsd.get()
             : nullptr;
}

}  // namespace

// Stops the shared scheduler, if one was started, and removes its tree.
void CupsdEnvironment::TearDown() { shared_cupsd.reset(); }

// Skips the test where no private scheduler can run; fails it unless the
// shared scheduler runs.
void CupsdTest::SetUp() {
  std::string why = PrivateCupsd::WhyNotHere();
  if (!why.empty()) GTEST_SKIP() << "no private cupsd here: " << why;
  std::string error;
  ASSERT_NE(nullptr, SharedCupsd(&error))
      << "cannot run the private cupsd: " << error;
}

// On failure, prints the scheduler's log lines of this test's jobs and its
// error and warning lines.
void CupsdTest::TearDown() {
  if (!HasFailure() || shared_cupsd == nullptr) return;
  std::string text = "----- private cupsd " + shared_cupsd->root() + " -----\n";
  std::istringstream log(shared_cupsd->ErrorLog());
  std::string line;
  while (std::getline(log, line))
    if (line.compare(0, 2, "E ") == 0 || line.compare(0, 2, "W ") == 0)
      text += line + "\n";
  for (int job : jobs_) {
    text += "----- error_log of job " + std::to_string(job) + " -----\n";
    text += shared_cupsd->JobLog(job);
  }
  fprintf(stderr, "%s", text.c_str());
}

// The shared scheduler.
PrivateCupsd& CupsdTest::cupsd() { return *shared_cupsd; }

// Adds a queue for the simulated printer with our PPD.
void CupsdTest::AddQueue(const std::string& name, const std::string& uri) {
  ProgramResult result = cupsd().AddQueue(name, uri);
  EXPECT_EQ(0, result.status) << "lpadmin " << name << ": "
                              << result.Describe();
}

// Submits a command job and records it for the failure log.
int CupsdTest::SubmitJob(const std::string& queue,
                         const std::string& commands) {
  std::string error;
  int job = cupsd().SubmitCommandJob(queue, commands, &error);
  if (job == 0) {
    ADD_FAILURE() << error;
    return 0;
  }
  jobs_.push_back(job);
  return job;
}

// Submits a command job, waits for it and checks how it went.
JobRun CupsdTest::RunJob(const std::string& queue,
                         const std::string& commands, double bound,
                         const std::string& backend, int state) {
  JobRun run;
  double start = Now();
  run.id = SubmitJob(queue, commands);
  if (run.id == 0) return run;
  run.state = cupsd().WaitForJob(run.id, bound + kJobWaitLimit);
  run.seconds = Now() - start;
  printf("job %d on %s ended in state %d after %.2f s (bound %.2f s)\n",
         run.id, queue.c_str(), run.state, run.seconds, bound);
  EXPECT_EQ(state, run.state) << "job " << run.id << " on " << queue;
  EXPECT_GE(bound, run.seconds) << "job " << run.id << " on " << queue;
  EXPECT_EQ(ExpectedFilterChain(run.id, queue, backend),
            cupsd().FilterChain(run.id));
  return run;
}

// Runs a command job on the simulated printer's backend.
int CupsdTest::RunCommandJob(const std::string& queue,
                             const std::string& commands) {
  JobRun run = RunJob(queue, commands, kCommandJobBound);
  return run.state == IPP_JSTATE_COMPLETED ? run.id : 0;
}

// The filter chain that every command job of the queue must take: our
// filter alone, its output passed unchanged to the backend.
std::string CupsdTest::ExpectedFilterChain(int job_id,
                                           const std::string& queue,
                                           const std::string& backend) {
  std::string job = "[Job " + std::to_string(job_id) + "] ";
  return job + "2 filters for job:\n" +
         job + "commandtoquillaroth (application/vnd.cups-command to printer/" +
         queue + "/application/vnd.cups-command, cost 0)\n" +
         job + "- (printer/" + queue +
         "/application/vnd.cups-command to printer/" + queue + ", cost 0)\n" +
         job + "Started filter ROOT/bin/filter/commandtoquillaroth (PID n)\n" +
         job + "Started backend ROOT/bin/backend/" + backend + " (PID n)\n";
}

// The backend's end, then the filter's.
std::string CupsdTest::ExpectedExits(int job_id, const std::string& backend,
                                     const std::string& backend_end) {
  std::string tag = "[Job " + std::to_string(job_id) + "] PID n (ROOT/bin/";
  return tag + "backend/" + backend + ") " + backend_end + "\n" + tag +
         "filter/commandtoquillaroth) exited with no errors.\n";
}

// The reason of a printer that did not answer, and unavailable levels.
std::string UnreachableShown() {
  return "printer-state-reasons=com.quillaroth-error0023\n" +
         Markers("-2", " ", "InkSheetType: 00");
}

// The five marker lines, in the order in which the queue lists them.
std::string Markers(const std::string& level, const std::string& message,
                    const std::string& names) {
  return "marker-colors=#00FF00\n"
         "marker-levels=" + level + "\n"
         "marker-message=" + message + "\n"
         "marker-names=" + names + "\n"
         "marker-types=ink-ribbon\n";
}

// The reasons, then the markers of the printer's ribbon.
std::string Shown(const std::string& reasons, const SimPrinter& printer,
                  const std::string& level, const char* sheet) {
  return "printer-state-reasons=" + reasons + "\n" +
         Markers(level, printer.RibbonMessage(),
                 std::string("InkSheetType: ") + sheet);
}
