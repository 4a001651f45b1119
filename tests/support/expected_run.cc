#include "tests/support/expected_run.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/expected_trace.h"

namespace {

// The simulator's log lines of the wake-up command and its drain.
const char kSimWakeUp[] =
    "sim: cmd 1b 45 57 55\n"
    "sim: sc DRAIN_OUTPUT -> OK\n";

}  // namespace

ExpectedRun::ExpectedRun(const SimPrinter& printer) : printer_(printer) {
  err = WakeUpLines();
  out = kWakeUpCommand;
  sleeps = kWakeUpPause;
  sim_log = std::string(printer.close_back_at == SimPrinter::kAtStart
                            ? "sim: back channel closed\n"
                            : "") +
            "sim: sc GET_BIDI -> OK 01\n" + kSimWakeUp;
}

ExpectedRun ExpectedRun::OneWay(int status, const std::string& sim_answer) {
  ExpectedRun run;
  run.err = ProbeFailureLine(status) + run.err;
  run.sim_log = "sim: sc GET_BIDI -> " + sim_answer + "\n" + kSimWakeUp;
  return run;
}

ExpectedRun ExpectedRun::Literal(int status, const std::string& err,
                                 const std::string& out,
                                 const std::string& sleeps,
                                 const std::string& sim_log) {
  ExpectedRun run;
  run.status = status;
  run.err = err;
  run.out = out;
  run.sleeps = sleeps;
  run.sim_log = sim_log;
  return run;
}

ExpectedRun& ExpectedRun::Becomes(const SimPrinter& printer) {
  printer_ = printer;
  return *this;
}

ExpectedRun& ExpectedRun::Command(const std::string& word, int linenum) {
  err += CommandLine(word, linenum);
  return *this;
}

ExpectedRun& ExpectedRun::Wait() {
  err += kRetryStartLine;
  for (unsigned attempt = 0;; attempt++) {
    int query = ++queries_;
    bool asleep = printer_.IsAsleepAt(query);
    out += kPrinterInfoCommand;
    sim_log += "sim: cmd 1b 56 32 31\n" + printer_.SimAnswerLines(query) +
               "sim: sc DRAIN_OUTPUT -> OK\n";
    if (!printer_.Answers(query)) {
      err += InfoFailureLines(ReadFailureLine(printer_.ReadFailure(query))) +
             kUnavailableInfoLine;
      break;
    }
    err += InfoQueryLines(printer_.Reply(asleep)) + printer_.InfoLine(asleep);
    if (!asleep) {
      err += RetryLine("fulfilled", attempt);
      break;
    }
    if (attempt == 60) {
      err += RetryLine("expired", 61) + kRetryOverLine;
      break;
    }
    err += RetryLine("retrying", attempt + 1);
    sleeps += kRetryPause;
  }
  err += kRetryEndLine;
  return *this;
}

ExpectedRun& ExpectedRun::State(const std::string& raised) {
  err += StateLines(raised);
  return *this;
}

ExpectedRun& ExpectedRun::Levels(const std::string& level,
                                 const std::string& sheet_name) {
  err += printer_.LevelsLines(level, sheet_name);
  return *this;
}

ExpectedRun& ExpectedRun::UnavailableLevels() {
  err += UnavailableLevelsLines();
  return *this;
}

ExpectedRun& ExpectedRun::ReportStatus(int linenum, const std::string& raised) {
  return Command("ReportStatus", linenum).Wait().State(raised);
}

ExpectedRun& ExpectedRun::ReportLevels(int linenum, const std::string& level,
                                       const std::string& sheet_name,
                                       const std::string& raised) {
  return Command("ReportLevels", linenum)
      .Wait()
      .Levels(level, sheet_name)
      .State(raised);
}

ExpectedRun& ExpectedRun::UnansweredReportLevels(int linenum) {
  return Command("ReportLevels", linenum)
      .Wait()
      .UnavailableLevels()
      .State("0023");
}

void ExpectRun(const ExpectedRun& expected, const FilterResult& run) {
  EXPECT_EQ(expected.status, run.status) << "exit status";
  EXPECT_EQ(expected.err, run.err) << "stderr";
  EXPECT_EQ(expected.out, run.out) << "stdout";
  EXPECT_EQ(expected.sleeps, run.sleeps) << "sleeps";
  EXPECT_EQ(expected.sim_log + "sim: filter exited with status " +
                std::to_string(expected.status) + "\n",
            run.sim_log)
      << "simulator log";
}

void ExpectBackendRun(const ExpectedRun& expected, const FilterResult& run) {
  std::istringstream lines(expected.sim_log);
  std::string line, backend_log;
  while (std::getline(lines, line)) backend_log += "DEBUG: " + line + "\n";
  EXPECT_EQ(expected.status, run.status) << "exit status";
  EXPECT_EQ(0, run.backend_status) << "backend's exit status";
  EXPECT_EQ(expected.err, run.err) << "stderr";
  EXPECT_EQ(expected.sleeps, run.sleeps) << "sleeps";
  EXPECT_EQ(backend_log, run.sim_log) << "backend's log";
}
