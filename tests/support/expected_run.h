// ExpectedRun: everything that one run of the filter beside the simulated
// printer must leave behind (exit status, stderr, stdout, the sleeps asked
// for, the simulator's log), built in the order in which the run makes it,
// so that each fact of a test is stated once.
//
//   SimPrinter printer;
//   printer.wake_after = 3;
//   ExpectRun(ExpectedRun(printer).ReportStatus(1, ""),
//             RunCommands("ReportStatus\n", printer.SimOptions()));
//
// Each query of a wait adds its trace, its command on stdout, its reply to
// the simulator's log and, while the printer sleeps, a one-second pause.

#ifndef QUILLAROTH_TESTS_SUPPORT_EXPECTED_RUN_H_
#define QUILLAROTH_TESTS_SUPPORT_EXPECTED_RUN_H_

#include <string>

#include "tests/support/filter_run.h"
#include "tests/support/sim_printer.h"

class ExpectedRun {
 public:
  // A run whose probe finds a bidirectional link and whose wake-up command
  // is sent, drained and followed by its pause.
  explicit ExpectedRun(const SimPrinter& printer = SimPrinter());
  // A run whose probe finds no bidirectional link: the probe's status in
  // the trace, the simulator's answer (e.g. "OK 00") in its log.
  static ExpectedRun OneWay(int status, const std::string& sim_answer);
  // A run given whole, as a golden case writes it out; the simulator's log
  // without its exit line, which ExpectRun adds.
  static ExpectedRun Literal(int status, const std::string& err,
                             const std::string& out, const std::string& sleeps,
                             const std::string& sim_log);

  // From the next query on, the printer answers as this one.
  ExpectedRun& Becomes(const SimPrinter& printer);
  // A "ReportLevels" line whose wait gets no record: the unavailable
  // levels and state.
  ExpectedRun& UnansweredReportLevels(int linenum);
  // The debug line of a command line.
  ExpectedRun& Command(const std::string& word, int linenum);
  // The wake-up wait of a command line: queries until the printer is awake,
  // or 61 of them.
  ExpectedRun& Wait();
  // The state report raising "com.quillaroth-error<raised>" ("": none).
  ExpectedRun& State(const std::string& raised);
  // The supply report of the printer's reply with the marker level and the
  // ink sheet's name.
  ExpectedRun& Levels(const std::string& level, const std::string& sheet_name);
  // The supply report of an unavailable record.
  ExpectedRun& UnavailableLevels();
  // A "ReportStatus" line: its wait, then the state report.
  ExpectedRun& ReportStatus(int linenum, const std::string& raised);
  // A "ReportLevels" line: its wait, the supply report, the state report.
  ExpectedRun& ReportLevels(int linenum, const std::string& level,
                            const std::string& sheet_name,
                            const std::string& raised);

  int status = 0;       // the filter's exit status
  std::string err;      // its stderr
  std::string out;      // its stdout
  std::string sleeps;   // the sleep interposer's lines
  std::string sim_log;  // the simulator's log, but for its last line

 private:
  SimPrinter printer_;
  int queries_ = 0;
};

// Compares exit status, stderr, stdout, sleeps and the simulator's log
// (ended by "sim: filter exited with status N") with the expectation.
void ExpectRun(const ExpectedRun& expected, const FilterResult& run);

// The same for a run in front of the backend (RunFilterWithBackend):
// exit statuses, stderr, sleeps, and the backend's log, whose lines are
// "DEBUG: sim: ..." and which has no exit line.
void ExpectBackendRun(const ExpectedRun& expected, const FilterResult& run);

#endif  // QUILLAROTH_TESTS_SUPPORT_EXPECTED_RUN_H_
