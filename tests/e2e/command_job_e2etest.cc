// Command jobs through a real scheduler.
//
// Each queue has the simulated printer's PPD, whose filter line sends
// command jobs to commandtoquillaroth; the filter talks to the simulated
// printer through the quillarothsim backend, and what it reports on stderr
// ("STATE:" and "ATTR: marker-" lines) ends up in the queue's attributes,
// read back here over IPP.  The filter's waits are real here: half a second
// after the wake-up command and a second per wake-up retry.

#include <gtest/gtest.h>

#include <string>

#include "tests/e2e/cupsd_test.h"
#include "tests/support/expected_trace.h"
#include "tests/support/sim_printer.h"

namespace {

// A printer with these counts, error code and ink sheet.
SimPrinter Printer(uint16_t total, uint16_t remaining, uint32_t error,
                   uint16_t sheet) {
  SimPrinter printer =
      SimPrinter().Total(total).Remaining(remaining).Error(error).Sheet(sheet);
  return printer;
}

class CommandJobTest : public CupsdTest {
 protected:
  // Adds a queue for the printer, runs a command job through it and
  // returns the queue's attributes afterwards.
  std::string AttributesAfterJob(const std::string& queue,
                                 const SimPrinter& printer,
                                 const std::string& commands) {
    AddQueue(queue, printer.DeviceUri(queue));
    if (RunCommandJob(queue, commands) == 0) return "(the job failed)";
    return cupsd().PrinterAttributes(queue);
  }
};

// The whole trace, written out: the readable example of this file.  What
// the queue shows after a "ReportLevels" job, read back over IPP: a good
// printer with 123 of 500 prints left on a PV-R31A(GX) ribbon lists no
// reason and publishes the ribbon's marker attributes.
TEST_F(CommandJobTest, GoodPrinterGoldenAttributes) {
  SimPrinter printer = Printer(500, 123, 0x000000, 0x8410);
  EXPECT_EQ(
      "printer-state-reasons=none\n"
      "marker-colors=#00FF00\n"
      "marker-levels=24\n"
      "marker-message=Ink Ribbon = 123 / 500\n"
      "marker-names=InkSheetType: PV-R31A(GX) 13x18(5x7\xe2\x80\xb3)\n"
      "marker-types=ink-ribbon\n",
      AttributesAfterJob("good", printer, kReportLevels));
}

TEST_F(CommandJobTest, PrinterErrorCodeRaisesItsReason) {
  SimPrinter printer = Printer(350, 300, 0x060202, 0x8f00);
  EXPECT_EQ(Shown("com.quillaroth-error0001", printer, "85", kSheetPvR32a),
            AttributesAfterJob("printererror", printer, kReportLevels));
}

TEST_F(CommandJobTest, ReportStatusSetsReasonsOnly) {
  SimPrinter printer = Printer(350, 300, 0x0b0507, 0x8f10);
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0011\n",
            AttributesAfterJob("status", printer, kReportStatus));
}

TEST_F(CommandJobTest, UnknownErrorCodeRaisesTheUndefinedErrorReason) {
  SimPrinter printer = Printer(500, 250, 0x112233, 0x8410);
  EXPECT_EQ(Shown("com.quillaroth-error0023", printer, "50", kSheetPvR31aGx),
            AttributesAfterJob("unknown", printer, kReportLevels));
}

TEST_F(CommandJobTest, UsedUpRibbonRaisesTheRibbonReason) {
  SimPrinter printer = Printer(500, 0, 0x000000, 0x8400);
  EXPECT_EQ(Shown("com.quillaroth-error0005", printer, "0", kSheetPvR31a),
            AttributesAfterJob("usedup", printer, kReportLevels));
}

TEST_F(CommandJobTest, PrinterThatWakesAfterThreeQueriesIsWaitedFor) {
  SimPrinter printer = Printer(500, 123, 0x000000, 0x8410);
  printer.wake_after = 3;
  AddQueue("sleepy", printer.DeviceUri("sleepy"));
  int job = RunCommandJob("sleepy", kReportLevels);
  ASSERT_NE(0, job);
  EXPECT_EQ(
      "#retry_status=[wake_up=retrying(1/60)]\n"
      "#retry_status=[wake_up=retrying(2/60)]\n"
      "#retry_status=[wake_up=retrying(3/60)]\n"
      "#retry_status=[wake_up=fulfilled(3/60)]\n",
      cupsd().RetryStatusLines(job));
  EXPECT_EQ(Shown("none", printer, "24", kSheetPvR31aGx),
            cupsd().PrinterAttributes("sleepy"));
}

TEST_F(CommandJobTest, OneWayLinkReportsUnavailableLevelsAndState) {
  AddQueue("oneway", Printer(500, 123, 0x000000, 0x8410).DeviceUri("oneway") +
                         "&oneway=1");
  ASSERT_NE(0, RunCommandJob("oneway",
                             "#CUPS-COMMAND\nReportLevels\nReportStatus\n"));
  EXPECT_EQ(UnreachableShown(), cupsd().PrinterAttributes("oneway"));
}

TEST_F(CommandJobTest, SecondJobWithdrawsTheReasonsOfTheFirst) {
  SimPrinter first = Printer(500, 400, 0x060202, 0x8410);
  const std::string first_shown =
      Shown("com.quillaroth-error0001", first, "80", kSheetPvR31aGx);
  ASSERT_EQ(first_shown, AttributesAfterJob("twice", first, kReportLevels));

  // The printer has been seen to, and its ribbon changed; pointing the
  // queue at the new state leaves the reasons that the first job raised.
  SimPrinter second = Printer(350, 350, 0x000000, 0x8f10);
  ProgramResult lpadmin =
      cupsd().SetDeviceUri("twice", second.DeviceUri("twice"));
  ASSERT_EQ(0, lpadmin.status) << lpadmin.Describe();
  ASSERT_EQ(first_shown, cupsd().PrinterAttributes("twice"));

  ASSERT_NE(0, RunCommandJob("twice", kReportLevels));
  EXPECT_EQ(Shown("none", second, "100", kSheetPvR32aGx),
            cupsd().PrinterAttributes("twice"));
}

}  // namespace
