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
  SimPrinter printer = SimPrinter().WakeAfter(n);
  return printer;
}

TEST(WakeUpWait, PrinterAwakeAtTheFirstQueryNeedsNoSleep) {
  ExpectRun(ExpectedRun().ReportStatus(1, ""), RunCommands("ReportStatus\n"));
}

TEST(WakeUpWait, PrinterWakingAtTheFourthQuery) {
  SimPrinter printer = WakingAfter(3);
  ExpectRun(ExpectedRun(printer).ReportStatus(1, ""),
            RunCommands("ReportStatus\n", printer));
}

TEST(WakeUpWait, PrinterThatNeverWakesIsGivenUpAfter61Queries) {
  SimPrinter printer = WakingAfter(SimPrinter::kNeverWakes);
  ExpectRun(ExpectedRun(printer).UnansweredReportLevels(1),
            RunCommands("ReportLevels\n", printer));
}

// Costs the filter's one-second read time-out.
TEST(WakeUpWait, QueryFailingAtTheFifthAttemptEndsTheWait) {
  SimPrinter printer = WakingAfter(SimPrinter::kNeverWakes);
  printer.fail_at = 5;
  ExpectRun(ExpectedRun(printer).ReportStatus(1, "0023"),
            RunCommands("ReportStatus\n", printer));
}

TEST(WakeUpWait, EveryLineStartsTheCountAfresh) {
  // Query 1 and 2 asleep, 3 awake (first line); 4 asleep, 5 awake.
  SimPrinter printer = WakingAfter(2);
  printer.asleep_at = {4};
  ExpectRun(ExpectedRun(printer).ReportStatus(1, "").ReportStatus(2, ""),
            RunCommands("ReportStatus\nReportStatus\n", printer));
}

TEST(WakeUpWait, AwakePrinterWithAnErrorIsReportedAfterTheWait) {
  SimPrinter printer = WakingAfter(1);
  printer.error = 0x0d0807;
  ExpectRun(ExpectedRun(printer).ReportStatus(1, "0021"),
            RunCommands("ReportStatus\n", printer));
}

}  // namespace
