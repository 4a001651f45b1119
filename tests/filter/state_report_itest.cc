// What the printer answers, as the scheduler gets it: the state reasons
// and the ink-ribbon marker attributes, from end to end.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_run.h"
#include "tests/support/expected_trace.h"
#include "tests/support/filter_run.h"
#include "tests/support/sim_printer.h"

namespace {

// The whole trace, written out: the readable example of this file.
TEST(StateReport, GoodPrinterReportLevelsGoldenTrace) {
  FilterResult run = RunCommands("ReportLevels\n");
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(
      "DEBUG: wr_esc_wakeup() START\n"
      "DEBUG: [CMD] size=4\n"
      "DEBUG: [CMD] 0000: 1b 45 57 55\n"
      "DEBUG: wr_esc_wakeup() END\n"
      "DEBUG: ====> command=[ReportLevels] linenum=1\n"
      "DEBUG: get_printer_info_retry() START\n"
      "DEBUG: get_printer_info() START\n"
      "DEBUG: [CMD] size=4\n"
      "DEBUG: [CMD] 0000: 1b 56 32 31\n"
      "DEBUG: [STS] size=192\n"
      "DEBUG: [STS] 0000: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0010: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0020: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0030: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0040: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0050: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0060: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0070: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0080: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 0090: 00 84 10 00 01 5e 00 7b 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 00a0: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: [STS] 00b0: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"
      "DEBUG: get_printer_info() END\n"
      "DEBUG: printer_info=[power_state=0x00 mech_state=[0x00,0x00] "
      "memory_state=0x00 error_info=[GOOD] levels=[ink ribbon 123 / 350 "
      "ink_sheet_type=0x84.0x10]]\n"
      "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
      "DEBUG: get_printer_info_retry() END\n"
      "DEBUG: [ReportLevels] ink ribbon 123 / 350 ink_sheet_type=0x84.0x10\n"
      "ATTR: marker-colors=#00FF00\n"
      "ATTR: marker-levels=35\n"
      "ATTR: marker-message=\"Ink Ribbon = 123 / 350\"\n"
      "ATTR: marker-names=\"InkSheetType: PV-R31A(GX) 13x18(5x7\xe2\x80\xb3)\"\n"
      "ATTR: marker-types=ink-ribbon\n" +
          // The state report's 19 lines: written out in its own tests.
          StateLines(""),
      run.err);
  EXPECT_EQ(std::string("\x1b\x45\x57\x55\x1b\x56\x32\x31", 8), run.out);
  EXPECT_EQ("usleep 500000\n", run.sleeps);
  EXPECT_EQ(
      "sim: sc GET_BIDI -> OK 01\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes: power 00, error 00 00 00, sheet 84 10, "
      "ribbon 123/350\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: filter exited with status 0\n",
      run.sim_log);
}

TEST(StateReport, LevelsOfAnotherSheetAndCounts) {
  SimPrinter printer =
      SimPrinter().Sheet(0x8f00).Total(500).Remaining(499).Memory(0xff).Mech(
          0x2001);
  ExpectRun(ExpectedRun(printer).ReportLevels(1, "99", kSheetPvR32a, ""),
            RunCommands("ReportLevels\n", printer));
}

TEST(StateReport, ErrorCodeFromTheTableRaisesItsReason) {
  SimPrinter printer = SimPrinter().Error(0x060202);
  ExpectRun(ExpectedRun(printer).ReportStatus(1, "0001"),
            RunCommands("ReportStatus\n", printer));
}

TEST(StateReport, OneOfSeveralCodesOfAReasonRaisesIt) {
  SimPrinter printer = SimPrinter().Error(0x230707);
  ExpectRun(ExpectedRun(printer).ReportStatus(1, "0009"),
            RunCommands("ReportStatus\n", printer));
}

TEST(StateReport, UnknownErrorCodeIsUndefined) {
  SimPrinter printer = SimPrinter().Error(0x0b0505);
  ExpectedRun expected(printer);
  expected.Command("ReportStatus", 1).Wait();
  expected.err += UndefinedErrorLine("0x0b,0x05,0x05");
  ExpectRun(expected.State("0023"), RunCommands("ReportStatus\n", printer));
}

TEST(StateReport, UsedUpRibbonOutranksThePrintersErrorCode) {
  SimPrinter printer = SimPrinter().Error(0x060202).Remaining(0);
  ExpectRun(ExpectedRun(printer)
                .ReportLevels(1, "0", kSheetPvR31aGx, "0005")
                .ReportStatus(2, "0005"),
            RunCommands("ReportLevels\nReportStatus\n", printer));
}

TEST(StateReport, UnusableCountsAndUnknownSheetInTheSupplyReport) {
  SimPrinter printer = SimPrinter().Total(0).Remaining(5).Sheet(0x8501);
  ExpectRun(ExpectedRun(printer)
                .Command("ReportLevels", 1)
                .Wait()
                .Levels("-1", "85")
                .State(""),
            RunCommands("ReportLevels\n", printer));
}

// The hex digits of bytes, for the simulator's --raw.
std::string Hex(const std::string& bytes) {
  static const char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

// The printer's replies given whole, as raw bytes: all zero but the
// ink-sheet type 84 10 and the counts 350 and 123, then with no ribbon left.
TEST(StateReport, RawRepliesWithTheRibbonLeftAndUsedUp) {
  SimPrinter left;
  SimPrinter used_up = SimPrinter().Remaining(0);
  ExpectRun(ExpectedRun(left).ReportStatus(1, "").Becomes(used_up).ReportStatus(
                2, "0005"),
            RunCommands("ReportStatus\nReportStatus\n",
                        {"--raw", Hex(left.Reply(false)), "--reply",
                         "2:raw=" + Hex(used_up.Reply(false))}));
}

TEST(StateReport, EachReportStatusLineWaitsOnItsOwn) {
  // The first line's printer sleeps through one query; so does the second
  // line's (query 3), which starts again from a fresh count.
  SimPrinter printer = SimPrinter().WakeAfter(1).AsleepAt({3});
  ExpectRun(ExpectedRun(printer).ReportStatus(1, "").ReportStatus(2, ""),
            RunCommands("ReportStatus\nReportStatus\n", printer));
}

}  // namespace
