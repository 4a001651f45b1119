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
#include "tests/support/sim_printer.h"
#include "tests/support/stderr_capture.h"

namespace {

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
  std::string LpoptionsPath() {
    return cupsd().root() + "/home/.cups/lpoptions";
  }

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

  // Adds a queue whose printer reports the error code and runs a
  // ReportStatus job through it, which leaves the queue with the reasons.
  void RaiseWithJob(const std::string& queue, uint32_t error,
                    const std::string& reasons) {
    SimPrinter printer = SimPrinter().Total(500).Error(error);
    AddQueue(queue, printer.DeviceUri(queue));
    ASSERT_NE(0, RunCommandJob(queue, kReportStatus));
    ASSERT_EQ("printer-state-reasons=" + reasons + "\n",
              cupsd().PrinterAttributes(queue));
  }

  // What clean_printer_state() writes around the lines of its work.
  static std::string Cleaned(const std::string& lines) {
    return "clean_printer_state() START\n" + lines +
           "clean_printer_state() END\n";
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
  ASSERT_NO_FATAL_FAILURE(
      RaiseWithJob("cps_error", 0x060202, "com.quillaroth-error0001"));
  SetDefault("cps_error");

  EXPECT_EQ(Cleaned("STATE: -com.quillaroth-error0001\n"),
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, WithdrawsTheSchedulersOwnReasonsGoldenTrace) {
  ASSERT_NO_FATAL_FAILURE(
      RaiseWithJob("cps_paused", 0x090202, "com.quillaroth-error0002"));
  ProgramResult cupsdisable = cupsd().DisableQueue("cps_paused");
  ASSERT_EQ(0, cupsdisable.status) << cupsdisable.Describe();
  // A stopped queue gets the scheduler's "paused" after the vendor reason.
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0002,paused\n",
            cupsd().PrinterAttributes("cps_paused"));
  SetDefault("cps_paused");

  // The whole trace, written out: the readable example of this file.
  EXPECT_EQ(
      "clean_printer_state() START\n"
      "STATE: -com.quillaroth-error0002\n"
      "STATE: -paused\n"
      "clean_printer_state() END\n",
      CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, GoodQueueListsTheKeywordNone) {
  ASSERT_NO_FATAL_FAILURE(RaiseWithJob("cps_good", 0x000000, "none"));
  SetDefault("cps_good");

  EXPECT_EQ(Cleaned("STATE: -none\n"), CleanPrinterStateOutput());
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

  EXPECT_EQ(Cleaned("DEBUG: Not found default(destination) printer.\n"),
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, UserDefaultThatTheSchedulerLacksIsNoDefault) {
  AddQueue("cps_other", "quillarothsim://cps_other?error=060202");
  SetDefault("cps_other");
  WriteLpoptions("Default cps_missing\n");

  EXPECT_EQ(Cleaned("DEBUG: Not found default(destination) printer.\n"),
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, EmptyReasonsListWithdrawsNothing) {
  ASSERT_NO_FATAL_FAILURE(
      RaiseWithJob("cps_empty", 0x060202, "com.quillaroth-error0001"));
  // The scheduler always lists at least "none"; an empty list can only come
  // from the user's own options for the destination, which cupsGetDests()
  // lays over the scheduler's.
  WriteLpoptions("Default cps_empty printer-state-reasons=\n");

  EXPECT_EQ(Cleaned(""), CleanPrinterStateOutput());
}

// The reasons below come from the user's own options for the destination,
// which cupsGetDests() lays over the scheduler's: the scheduler itself never
// lists empty fields or blanks.

TEST_F(CleanPrinterStateTest, WithdrawsEveryReasonInTheListsOrder) {
  AddQueue("cps_two", "quillarothsim://cps_two?error=060202");
  WriteLpoptions(
      "Default cps_two "
      "printer-state-reasons=com.quillaroth-error0001,media-empty-error\n");

  EXPECT_EQ(Cleaned("STATE: -com.quillaroth-error0001\n"
                    "STATE: -media-empty-error\n"),
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, EmptyFieldsAreSkipped) {
  AddQueue("cps_gap", "quillarothsim://cps_gap?error=060202");
  WriteLpoptions("Default cps_gap printer-state-reasons=a,,b\n");

  EXPECT_EQ(Cleaned("STATE: -a\n"
                    "STATE: -b\n"),
            CleanPrinterStateOutput());
}

TEST_F(CleanPrinterStateTest, BlanksStayPartOfTheReason) {
  AddQueue("cps_blank", "quillarothsim://cps_blank?error=060202");
  WriteLpoptions("Default cps_blank printer-state-reasons=\"a, b\"\n");

  EXPECT_EQ(Cleaned("STATE: -a\n"
                    "STATE: - b\n"),
            CleanPrinterStateOutput());
}

}  // namespace
