// The printer's faults over the pipes of quillaroth-sim, in front of the
// real filter: a reply broken off by a reset or a stall, and a printer
// that hangs, as the filter sees them.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_run.h"
#include "tests/support/filter_run.h"
#include "tests/support/sim_printer.h"

namespace {

// The whole log written out: the readable example of this file.
TEST(PipeFaults, ResetMidReplyLooksLikeAClosedBackChannel) {
  FilterResult reset = RunCommands("ReportStatus\n", {"--reset", "100"});
  FilterResult closed =
      RunCommands("ReportStatus\n", {"--close-backchannel=1"});
  EXPECT_EQ(0, reset.status);
  EXPECT_EQ(closed.err, reset.err);
  EXPECT_EQ(
      "sim: sc GET_BIDI -> OK 01\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes: power 00, error 00 00 00, sheet 84 10, ribbon "
      "123/350\n"
      "sim: back channel closes after 100 of 192 bytes\n"
      "sim: back channel closed\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: filter exited with status 0\n",
      reset.sim_log);
}

TEST(PipeFaults, StalledReplyLooksLikeNoReply) {
  FilterResult stall =
      RunCommands("ReportStatus\nReportStatus\n", {"--stall", "100"});
  FilterResult none =
      RunCommands("ReportStatus\nReportStatus\n", {"--no-reply"});
  EXPECT_EQ(0, stall.status);
  EXPECT_EQ(none.err, stall.err);
  EXPECT_EQ(
      ExpectedRun().sim_log + "sim: cmd 1b 56 32 31\n" +
          SimPrinter().SimReplyLine(false) +
          "sim: printer hangs after 100 of 192 bytes\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: filter exited with status 0\n",
      stall.sim_log);
}

TEST(PipeFaults, HungPrinterLooksLikeNoReply) {
  FilterResult hang = RunCommands("ReportLevels\n", {"--hang"});
  FilterResult none = RunCommands("ReportLevels\n", {"--no-reply"});
  EXPECT_EQ(0, hang.status);
  EXPECT_EQ(none.err, hang.err);
  EXPECT_EQ(
      "sim: printer hangs: it reads and answers nothing\n"
      "sim: sc GET_BIDI -> OK 01\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: sc DRAIN_OUTPUT -> OK\n"
      "sim: filter exited with status 0\n",
      hang.sim_log);
}

}  // namespace
