// clean_printer_state() against a real scheduler.
//
// The function reads the default destination's "printer-state-reasons"
// through cupsGetDests() from the scheduler that CUPS_SERVER names (the
// private one) and from the lpoptions file in HOME (the private tree's), and
// writes one withdrawal line per reason.  The reasons here are the ones the
// scheduler really holds: raised by a command job through our filter, or
// set by the scheduler itself.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "report/clean_printer_state.h"
#include "tests/e2e/cupsd_test.h"
#include "tests/support/stderr_capture.h"

namespace {

const char kReportStatus[] = "#CUPS-COMMAND\nReportStatus\n";

class CleanPrinterStateTest : public CupsdTest {
 protected:
  // Starts every test without a user lpoptions file.
  void SetUp() override {
    CupsdTest::SetUp();
    if (HasFatalFailure() || IsSkipped()) return;
    remove(LpoptionsPath().c_str());
  }
  // Leaves no lpoptions file behind for the next test.
  void TearDown() override {
    CupsdTest::TearDown();
    if (!IsSkipped() && !HasFatalFailure()) remove(LpoptionsPath().c_str());
  }

  // The user's lpoptions file, which cupsGetDests() reads.
  std::string LpoptionsPath() { return cupsd().root() + "/home/.cups/lpoptions"; }

  // Writes the user's lpoptions file.
  void WriteLpoptions(const std::string& text) {
    FILE* file = fopen(LpoptionsPath().c_str(), "w");
    ASSERT_NE(nullptr, file);
    fputs(text.c_str(), file);
    fclose(file);
  }

  // Makes the queue the scheduler's default destination.
  void SetDefault(const std::string& queue) {
    ProgramResult lpadmin = cupsd().SetDefault(queue);
    ASSERT_EQ(0, lpadmin.status) << lpadmin.Describe();
    ASSERT_EQ(queue, cupsd().DefaultDestination());
  }

  // Runs clean_printer_state() here and returns everything it wrote to
  // stderr.
  static std::string CleanPrinterStateOutput() {
    StderrCapture capture;
    clean_printer_state();
    return capture.Text();
  }
};

TEST_F(CleanPrinterStateTest, WithdrawsTheReasonThatAJobRaised) {
  AddQueue("cps_error", "quillarothsim://cps_error?total=500&remaining=123&error=060202&sheet=8410");
  ASSERT_NE(0, RunCommandJob("cps_error", kReportStatus));
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0001\n",
            cupsd().PrinterAttributes("cps_error"));
  SetDefault("cps_error");

  EXPECT_EQ("clean_printer_state() START\n"
            "STATE: -com.quillaroth-error0001\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, WithdrawsTheSchedulersOwnReasonsToo) {
  AddQueue("cps_paused", "quillarothsim://cps_paused?total=500&remaining=123&error=090202&sheet=8410");
  ASSERT_NE(0, RunCommandJob("cps_paused", kReportStatus));
  ProgramResult cupsdisable = cupsd().DisableQueue("cps_paused");
  ASSERT_EQ(0, cupsdisable.status) << cupsdisable.Describe();
  // A stopped queue gets the scheduler's "paused" after the vendor reason.
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0002,paused\n",
            cupsd().PrinterAttributes("cps_paused"));
  SetDefault("cps_paused");

  EXPECT_EQ("clean_printer_state() START\n"
            "STATE: -com.quillaroth-error0002\n"
            "STATE: -paused\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, GoodQueueListsTheKeywordNone) {
  AddQueue("cps_good", "quillarothsim://cps_good?total=500&remaining=123&error=000000&sheet=8410");
  ASSERT_NE(0, RunCommandJob("cps_good", kReportStatus));
  ASSERT_EQ("printer-state-reasons=none\n", cupsd().PrinterAttributes("cps_good"));
  SetDefault("cps_good");

  EXPECT_EQ("clean_printer_state() START\n"
            "STATE: -none\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, NoDefaultDestination) {
  AddQueue("cps_nodefault", "quillarothsim://cps_nodefault?error=060202");
  // Deleting the default queue leaves the scheduler without a default.
  std::string current = cupsd().DefaultDestination();
  if (!current.empty()) {
    ProgramResult lpadmin = cupsd().DeleteQueue(current);
    ASSERT_EQ(0, lpadmin.status) << lpadmin.Describe();
  }
  ASSERT_EQ("", cupsd().DefaultDestination());

  EXPECT_EQ("clean_printer_state() START\n"
            "DEBUG: Not found default(destination) printer.\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, UserDefaultThatTheSchedulerLacksIsNoDefault) {
  AddQueue("cps_other", "quillarothsim://cps_other?error=060202");
  SetDefault("cps_other");
  WriteLpoptions("Default cps_missing\n");

  EXPECT_EQ("clean_printer_state() START\n"
            "DEBUG: Not found default(destination) printer.\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, EmptyReasonsListWithdrawsNothing) {
  AddQueue("cps_empty", "quillarothsim://cps_empty?total=500&remaining=123&error=060202&sheet=8410");
  ASSERT_NE(0, RunCommandJob("cps_empty", kReportStatus));
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0001\n",
            cupsd().PrinterAttributes("cps_empty"));
  // The scheduler always lists at least "none"; an empty list can only come
  // from the user's own options for the destination, which cupsGetDests()
  // lays over the scheduler's.
  WriteLpoptions("Default cps_empty printer-state-reasons=\n");

  EXPECT_EQ("clean_printer_state() START\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

// The reasons below come from the user's own options for the destination,
// which cupsGetDests() lays over the scheduler's: the scheduler itself never
// lists empty fields or blanks.

TEST_F(CleanPrinterStateTest, WithdrawsEveryReasonInTheListsOrder) {
  AddQueue("cps_two", "quillarothsim://cps_two?error=060202");
  WriteLpoptions(
      "Default cps_two "
      "printer-state-reasons=com.quillaroth-error0001,media-empty-error\n");

  EXPECT_EQ("clean_printer_state() START\n"
            "STATE: -com.quillaroth-error0001\n"
            "STATE: -media-empty-error\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, EmptyFieldsAreSkipped) {
  AddQueue("cps_gap", "quillarothsim://cps_gap?error=060202");
  WriteLpoptions("Default cps_gap printer-state-reasons=a,,b\n");

  EXPECT_EQ("clean_printer_state() START\n"
            "STATE: -a\n"
            "STATE: -b\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, BlanksStayPartOfTheReason) {
  AddQueue("cps_blank", "quillarothsim://cps_blank?error=060202");
  WriteLpoptions("Default cps_blank printer-state-reasons=\"a, b\"\n");

  EXPECT_EQ("clean_printer_state() START\n"
            "STATE: -a\n"
            "STATE: - b\n"
            "clean_printer_state() END\n",
            CleanPrinterStateOutput());
}

}  // namespace
