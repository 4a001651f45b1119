// withdraw_reasons: the "STATE: -" lines for one "printer-state-reasons"
// value, as clean_printer_state() writes them for the default destination
// (which tests/e2e/clean_printer_state_e2etest.cc runs against a scheduler).

#include "report/clean_printer_state.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/stderr_capture.h"
#include "tests/support/stderr_writes.h"

namespace {

// Runs withdraw_reasons and returns all it wrote to stderr.
std::string Withdraw(const char* value) {
  StderrCapture capture;
  withdraw_reasons(value);
  return capture.Text();
}

// The withdrawal line of one reason.
std::string Line(const std::string& reason) {
  return "STATE: -" + reason + "\n";
}

// The whole trace, written out: the readable example of this file.
TEST(WithdrawReasonsTest, VendorAndSchedulerReasonsGoldenTrace) {
  EXPECT_EQ(
      "STATE: -com.quillaroth-error0001\n"
      "STATE: -media-empty-error\n"
      "STATE: -paused\n",
      Withdraw("com.quillaroth-error0001,media-empty-error,paused"));
}

TEST(WithdrawReasonsTest, OneReason) {
  EXPECT_EQ(Line("none"), Withdraw("none"));
}

TEST(WithdrawReasonsTest, EmptyFieldsAreSkipped) {
  EXPECT_EQ(Line("a") + Line("b"), Withdraw("a,,b"));
  EXPECT_EQ(Line("a") + Line("b"), Withdraw(",a,b,"));
}

TEST(WithdrawReasonsTest, BlanksStayPartOfTheReason) {
  EXPECT_EQ(Line(" a") + Line(" b ") + Line(" "), Withdraw(" a, b , "));
}

TEST(WithdrawReasonsTest, NothingToWithdraw) {
  EXPECT_EQ("", Withdraw(nullptr));
  EXPECT_EQ("", Withdraw(""));
  EXPECT_EQ("", Withdraw(","));
  EXPECT_EQ("", Withdraw(",,,"));
}

TEST(WithdrawReasonsTest, OnlyCommasDelimit) {
  EXPECT_EQ(Line("a;b c\td") + Line("e"), Withdraw("a;b c\td,e"));
}

TEST(WithdrawReasonsTest, LeavesTheValueAsItWas) {
  const std::string value = "a,b";
  std::string copy = value;
  Withdraw(copy.c_str());
  EXPECT_EQ(value, copy);
}

TEST(WithdrawReasonsTest, LongReasonIsWrittenWhole) {
  const std::string reason(10000, 'r');
  EXPECT_EQ(Line(reason) + Line("s"), Withdraw((reason + ",s").c_str()));
}

TEST(WithdrawReasonsTest, EachLineIsOneWrite) {
  StderrWrites writes;
  withdraw_reasons("com.quillaroth-error0001,,media-empty-error");
  EXPECT_EQ(SplitLines(Line("com.quillaroth-error0001") +
                       Line("media-empty-error")),
            writes.Writes());
}

}  // namespace
