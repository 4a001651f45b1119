// The printer transactions over real pipes and a real side channel: how the
// filter gathers replies that come in pieces, too long, cut short or not at
// all, and how it copes with drains that fail and channels that close.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/built_tools.h"
#include "tests/support/expected_run.h"
#include "tests/support/expected_trace.h"
#include "tests/support/filter_run.h"
#include "tests/support/sim_printer.h"

namespace {

// One "ReportStatus" line beside the printer, whose report raises
// `raised`.
void ExpectStatusLine(const SimPrinter& printer, const std::string& raised) {
  ExpectRun(
      ExpectedRun(printer).Command("ReportStatus", 1).Wait().State(raised),
      RunCommands("ReportStatus\n", printer));
}

// A run whose wake-up could not be written: status 1 after the wake-up's
// failure line, nothing on stdout, no pause; the simulator saw `sim_log`.
ExpectedRun WakeUpFailure(const std::string& failure_line,
                          const std::string& sim_log) {
  ExpectedRun expected;
  expected.status = 1;
  expected.err = WakeUpFailureLines(failure_line);
  expected.out = "";
  expected.sleeps = "";
  expected.sim_log = sim_log;
  return expected;
}

TEST(PrinterTransaction, StdoutCarriesTheExactCommandBytes) {
  FilterResult run = RunCommands("ReportStatus\nReportLevels\n");
  EXPECT_EQ(std::string("\x1b\x45\x57\x55"
                        "\x1b\x56\x32\x31"
                        "\x1b\x56\x32\x31",
                        12),
            run.out);
  ExpectRun(ExpectedRun().ReportStatus(1, "").ReportLevels(2, "35",
                                                           kSheetPvR31aGx, ""),
            run);
}

TEST(PrinterTransaction, ReplyInTwoPiecesIsGatheredWhole) {
  SimPrinter printer = SimPrinter().Split({100, 92});
  ExpectStatusLine(printer, "");
}

TEST(PrinterTransaction, ReplyInManySmallPiecesIsGatheredWhole) {
  SimPrinter printer = SimPrinter().Split({1, 4, 1, 10, 100, 50, 26});
  ExpectStatusLine(printer, "");
}

// Every byte that no field covers holds 5a, the 8 extra bytes included;
// none of them may change what the filter makes of the reply.
TEST(PrinterTransaction, OversizedReplyIsDumpedWholeAndParsedToByte191) {
  SimPrinter printer = SimPrinter().Size(200).Fill(0x5a);
  ExpectStatusLine(printer, "");
}

TEST(PrinterTransaction, OversizedReplyDumpLinesSpelledOut) {
  FilterResult run =
      RunCommands("ReportStatus\n", {"--size", "200", "--fill", "5a"});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(
      WakeUpLines() + CommandLine("ReportStatus", 1) + kRetryStartLine +
          InfoSentLines() +
          "DEBUG: [STS] size=200\n"
          "DEBUG: [STS] 0000: 5a 5a 5a 5a 00 00 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0010: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0020: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0030: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0040: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0050: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0060: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0070: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0080: 00 00 5a 00 00 00 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 0090: 5a 84 10 5a 01 5e 00 7b 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 00a0: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 00b0: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: [STS] 00c0: 5a 5a 5a 5a 5a 5a 5a 5a\n"
          "DEBUG: get_printer_info() END\n" +
          SimPrinter().InfoLine(false) + RetryLine("fulfilled", 0) +
          kRetryEndLine + StateLines(""),
      run.err);
}

// Costs the filter's one-second read time-out.
TEST(PrinterTransaction, ReplyCutShortAfter150BytesIsUnavailable) {
  SimPrinter printer = SimPrinter().Size(150);
  ExpectStatusLine(printer, "0023");
}

// Costs the filter's one-second read time-out.
TEST(PrinterTransaction, MissingReplyOnALevelsLineReportsUnavailableLevels) {
  SimPrinter printer = SimPrinter().FailAt(1);
  ExpectRun(ExpectedRun(printer).UnansweredReportLevels(1),
            RunCommands("ReportLevels\n", printer));
}

TEST(PrinterTransaction, ClosedBackChannelReadsEndOfFile) {
  SimPrinter printer = SimPrinter().CloseBackAt(SimPrinter::kAtStart);
  ExpectRun(
      ExpectedRun(printer).ReportStatus(1, "0023").ReportStatus(2, "0023"),
      RunCommands("ReportStatus\nReportStatus\n", printer));
}

TEST(PrinterTransaction, BackChannelClosingAtTheSecondQuery) {
  SimPrinter printer = SimPrinter().CloseBackAt(2);
  ExpectRun(ExpectedRun(printer).ReportStatus(1, "").ReportStatus(2, "0023"),
            RunCommands("ReportStatus\nReportStatus\n", printer));
}

// The wait around one query whose drain got the status, and which then
// received the default printer's reply.
std::string DrainedQuery(int drain_status) {
  SimPrinter printer;
  return kRetryStartLine + InfoSentLines(drain_status) +
         InfoReceivedLines(printer.Reply(false)) + printer.InfoLine(false) +
         RetryLine("fulfilled", 0) + kRetryEndLine;
}

// The one test that pays a real drain time-out (5 s): the drain of the
// query goes unanswered, and the reply is read all the same.
TEST(PrinterTransaction, DrainTimeOutIsLoggedAndTheReplyStillRead) {
  FilterResult run = RunCommands("ReportStatus\n", {"--drain-at", "2:never"});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(WakeUpLines() + CommandLine("ReportStatus", 1) +
                DrainedQuery(CUPS_SC_STATUS_TIMEOUT) + StateLines(""),
            run.err);
  EXPECT_EQ(kWakeUpCommand + kPrinterInfoCommand, run.out);
  EXPECT_LE(4.9, run.seconds);
  EXPECT_EQ(
      "sim: sc GET_BIDI -> OK 01\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: cmd 1b 56 32 31\n" +
          SimPrinter().SimReplyLine(false) +
          "sim: sc DRAIN_OUTPUT -> no answer\n"
          "sim: filter exited with status 0\n",
      run.sim_log);
}

TEST(PrinterTransaction, DrainWithABadStatusIsLoggedOnly) {
  FilterResult run = RunCommands(
      "ReportStatus\n", {"--drain-at", "1:IO_ERROR", "--drain-at", "2:9"});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(WakeUpLines(CUPS_SC_STATUS_IO_ERROR) +
                CommandLine("ReportStatus", 1) + DrainedQuery(9) +
                StateLines(""),
            run.err);
  EXPECT_EQ(kWakeUpCommand + kPrinterInfoCommand, run.out);
  EXPECT_EQ(kWakeUpPause, run.sleeps);
}

// The whole trace, written out: the readable example of this file.
// Standard output is /dev/full: the wake-up command cannot be flushed, and
// the run ends with status 1 before it reads a command line.
TEST(PrinterTransaction, WakeUpThatCannotBeFlushedGoldenTrace) {
  FilterResult run =
      RunCommands("ReportStatus\nReportLevels\n", {"--stdout-devfull"});
  EXPECT_EQ(1, run.status);
  EXPECT_EQ(
      "DEBUG: wr_esc_wakeup() START\n"
      "DEBUG: [CMD] size=4\n"
      "DEBUG: [CMD] 0000: 1b 45 57 55\n"
      "DEBUG: fflush() failed.\n"
      "DEBUG: wr_esc_wakeup() END\n",
      run.err);
  EXPECT_EQ("", run.out);
  EXPECT_EQ("", run.sleeps);
  EXPECT_EQ(
      "sim: sc GET_BIDI -> OK 01\n"
      "sim: filter exited with status 1\n",
      run.sim_log);
}

TEST(PrinterTransaction, WakeUpFailureOnAOneWayLinkEndsWithStatus1Too) {
  ExpectedRun expected =
      WakeUpFailure("DEBUG: fflush() failed.\n", "sim: sc GET_BIDI -> OK 00\n");
  expected.err = ProbeFailureLine(CUPS_SC_STATUS_OK) + expected.err;
  ExpectRun(expected,
            RunCommands("ReportStatus\n", {"--stdout-devfull", "--oneway"}));
}

// A stream that takes only part of the wake-up command: the filter says how
// much went, ends the transaction and the run.  What did go reaches the
// printer when the process exits.
TEST(PrinterTransaction, ShortWriteOfTheWakeUpEndsWithStatus1) {
  FilterCall call;
  call.stdin_text = "ReportStatus\n";
  call.preload = {BuiltTools().short_fwrite};
  ExpectedRun expected = WakeUpFailure("DEBUG: fwrite() failed. ret=2\n",
                                       "sim: sc GET_BIDI -> OK 01\n"
                                       "sim: unknown bytes (2): 1b 45\n");
  expected.out = kWakeUpCommand.substr(0, 2);
  ExpectRun(expected, RunFilter(call));
}

}  // namespace
