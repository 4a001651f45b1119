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

namespace {

const char kReportLevels[] = "#CUPS-COMMAND\nReportLevels\n";
const char kReportStatus[] = "#CUPS-COMMAND\nReportStatus\n";

// The marker attributes of a ribbon with the given level, message and
// ink-sheet name, as the queue shows them.
std::string Markers(const std::string& level, const std::string& message,
                    const std::string& names) {
  return "marker-colors=#00FF00\n"
         "marker-levels=" + level + "\n"
         "marker-message=" + message + "\n"
         "marker-names=" + names + "\n"
         "marker-types=ink-ribbon\n";
}

using CommandJobTest = CupsdTest;

TEST_F(CommandJobTest, GoodPrinterHasNoReasonsAndPublishesItsRibbon) {
  AddQueue("good", "quillarothsim://good?total=500&remaining=123&error=000000&sheet=8410");
  ASSERT_NE(0, RunCommandJob("good", kReportLevels));
  EXPECT_EQ("printer-state-reasons=none\n" +
                Markers("24", "Ink Ribbon = 123 / 500",
                        "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("good"));
}

TEST_F(CommandJobTest, PrinterErrorCodeRaisesItsReason) {
  AddQueue("printererror", "quillarothsim://printererror?total=350&remaining=300&error=060202&sheet=8f00");
  ASSERT_NE(0, RunCommandJob("printererror", kReportLevels));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0001\n" +
                Markers("85", "Ink Ribbon = 300 / 350",
                        "InkSheetType: PV-R32A 15x20(6x8\u2033)"),
            cupsd().PrinterAttributes("printererror"));
}

TEST_F(CommandJobTest, ReportStatusSetsReasonsOnly) {
  AddQueue("status", "quillarothsim://status?total=350&remaining=300&error=0b0507&sheet=8f10");
  ASSERT_NE(0, RunCommandJob("status", kReportStatus));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0011\n",
            cupsd().PrinterAttributes("status"));
}

TEST_F(CommandJobTest, UnknownErrorCodeRaisesTheUndefinedErrorReason) {
  AddQueue("unknown", "quillarothsim://unknown?total=500&remaining=250&error=112233&sheet=8410");
  ASSERT_NE(0, RunCommandJob("unknown", kReportLevels));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n" +
                Markers("50", "Ink Ribbon = 250 / 500",
                        "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("unknown"));
}

TEST_F(CommandJobTest, UsedUpRibbonRaisesTheRibbonReason) {
  AddQueue("usedup", "quillarothsim://usedup?total=500&remaining=0&error=000000&sheet=8400");
  ASSERT_NE(0, RunCommandJob("usedup", kReportLevels));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0005\n" +
                Markers("0", "Ink Ribbon = 0 / 500",
                        "InkSheetType: PV-R31A 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("usedup"));
}

TEST_F(CommandJobTest, PrinterThatWakesAfterThreeQueriesIsWaitedFor) {
  AddQueue("sleepy", "quillarothsim://sleepy?total=500&remaining=123&error=000000&sheet=8410&wake=3");
  int job = RunCommandJob("sleepy", kReportLevels);
  ASSERT_NE(0, job);
  EXPECT_EQ("#retry_status=[wake_up=retrying(1/60)]\n"
            "#retry_status=[wake_up=retrying(2/60)]\n"
            "#retry_status=[wake_up=retrying(3/60)]\n"
            "#retry_status=[wake_up=fulfilled(3/60)]\n",
            cupsd().RetryStatusLines(job));
  EXPECT_EQ("printer-state-reasons=none\n" +
                Markers("24", "Ink Ribbon = 123 / 500",
                        "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("sleepy"));
}

TEST_F(CommandJobTest, OneWayLinkReportsUnavailableLevelsAndState) {
  AddQueue("oneway", "quillarothsim://oneway?total=500&remaining=123&error=000000&sheet=8410&oneway=1");
  ASSERT_NE(0, RunCommandJob("oneway", "#CUPS-COMMAND\nReportLevels\nReportStatus\n"));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n" +
                Markers("-2", " ", "InkSheetType: 00"),
            cupsd().PrinterAttributes("oneway"));
}

TEST_F(CommandJobTest, SecondJobWithdrawsTheReasonsOfTheFirst) {
  AddQueue("twice", "quillarothsim://twice?total=500&remaining=400&error=060202&sheet=8410");
  ASSERT_NE(0, RunCommandJob("twice", kReportLevels));
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0001\n" +
                Markers("80", "Ink Ribbon = 400 / 500",
                        "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("twice"));

  // The printer has been seen to, and its ribbon changed; pointing the
  // queue at the new state leaves the reasons that the first job raised.
  ProgramResult lpadmin = cupsd().SetDeviceUri(
      "twice", "quillarothsim://twice?total=350&remaining=350&error=000000&sheet=8f10");
  ASSERT_EQ(0, lpadmin.status) << lpadmin.Describe();
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0001\n" +
                Markers("80", "Ink Ribbon = 400 / 500",
                        "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("twice"));

  ASSERT_NE(0, RunCommandJob("twice", kReportLevels));
  EXPECT_EQ("printer-state-reasons=none\n" +
                Markers("100", "Ink Ribbon = 350 / 350",
                        "InkSheetType: PV-R32A(GX) 15x20(6x8\u2033)"),
            cupsd().PrinterAttributes("twice"));
}

}  // namespace
