// The wait for a printer that is still waking up: one query a second, at
// most 61 queries, with sleep() interposed so that the wait costs nothing.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_run.h"
#include "tests/support/expected_trace.h"
#include "tests/support/filter_run.h"
#include "tests/support/sim_printer.h"

namespace {

// A printer that sleeps through the first n queries.
SimPrinter WakingAfter(int n) {
  SimPrinter printer;
  printer.wake_after = n;
  return printer;
}

// Runs the commands beside the printer.
FilterResult RunBeside(const SimPrinter& printer, const std::string& commands) {
  return RunCommands(commands, printer.SimOptions());
}

TEST(WakeUpWait, PrinterAwakeAtTheFirstQueryNeedsNoSleep) {
  ExpectRun(ExpectedRun().Command("ReportStatus", 1).Wait().State(""),
            RunCommands("ReportStatus\n"));
}

TEST(WakeUpWait, PrinterWakingAtTheFourthQuery) {
  SimPrinter printer = WakingAfter(3);
  ExpectRun(ExpectedRun(printer).Command("ReportStatus", 1).Wait().State(""),
            RunBeside(printer, "ReportStatus\n"));
}

TEST(WakeUpWait, PrinterThatNeverWakesIsGivenUpAfter61Queries) {
  SimPrinter printer = WakingAfter(SimPrinter::kNeverWakes);
  ExpectRun(ExpectedRun(printer)
                .Command("ReportLevels", 1)
                .Wait()
                .UnavailableLevels()
                .State("0023"),
            RunBeside(printer, "ReportLevels\n"));
}

// Costs the filter's one-second read time-out.
TEST(WakeUpWait, QueryFailingAtTheFifthAttemptEndsTheWait) {
  SimPrinter printer = WakingAfter(SimPrinter::kNeverWakes);
  printer.fail_at = 5;
  ExpectRun(ExpectedRun(printer).Command("ReportStatus", 1).Wait().State("0023"),
            RunBeside(printer, "ReportStatus\n"));
}

TEST(WakeUpWait, EveryLineStartsTheCountAfresh) {
  // Query 1 and 2 asleep, 3 awake (first line); 4 asleep, 5 awake.
  SimPrinter printer = WakingAfter(2);
  printer.asleep_at = {4};
  ExpectRun(ExpectedRun(printer)
                .Command("ReportStatus", 1)
                .Wait()
                .State("")
                .Command("ReportStatus", 2)
                .Wait()
                .State(""),
            RunBeside(printer, "ReportStatus\nReportStatus\n"));
}

TEST(WakeUpWait, AwakePrinterWithAnErrorIsReportedAfterTheWait) {
  SimPrinter printer = WakingAfter(1);
  printer.error = 0x0d0807;
  ExpectRun(ExpectedRun(printer).Command("ReportStatus", 1).Wait().State("0021"),
            RunBeside(printer, "ReportStatus\n"));
}

}  // namespace
