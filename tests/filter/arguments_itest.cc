// The filter's start-up and command loop, run beside the simulated printer:
// argument count, command file or stdin, line numbers, command words.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_text.h"
#include "tests/support/filter_run.h"

namespace {

const std::string USAGE = std::string("ERROR: Usage: ") + FILTER_PATH +
                          " job-id user title copies options [file]";

TEST(FilterArguments, FourArgumentsGiveUsageWithoutLineEnd) {
  FilterCall call;
  call.args = {"1", "user", "title", "1"};
  call.stdin_text = "ReportStatus\n";
  FilterResult run = run_filter(call);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, USAGE);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.sleeps, "");
  EXPECT_EQ(run.sim_log, "sim: filter exited with status 1\n");
}

TEST(FilterArguments, SevenArgumentsGiveUsageWithoutLineEnd) {
  FilterCall call;
  call.args = {"1", "user", "title", "1", "", "/dev/null", "extra"};
  FilterResult run = run_filter(call);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, USAGE);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.sleeps, "");
  EXPECT_EQ(run.sim_log, "sim: filter exited with status 1\n");
}

TEST(FilterArguments, UnopenableCommandFileEndsWithStatus1) {
  FilterCall call;
  call.args = {"1", "user", "title", "1", "", "/nonexistent/quillaroth/cmds"};
  call.stdin_text = "ReportStatus\n";
  FilterResult run = run_filter(call);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "ERROR: Unable to open command file - : No such file or "
            "directory\n");
  EXPECT_EQ(run.out, "");  // no wake-up either
  EXPECT_EQ(run.sleeps, "");
  EXPECT_EQ(run.sim_log, "sim: filter exited with status 1\n");
}

TEST(FilterArguments, FiveArgumentsReadCommandsFromStdin) {
  FilterResult run = run_commands("ReportStatus\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         default_status_lines());
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> OK 01\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: cmd 1b 56 32 31\n"
            "sim: reply 192 bytes\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: filter exited with status 0\n");
}

TEST(FilterArguments, SixArgumentsReadTheNamedFileNotStdin) {
  FilterCall call;
  call.command_file = "ReportLevels\n";
  call.stdin_text = "ReportStatus\nReportStatus\n";
  FilterResult run = run_filter(call);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportLevels", 1) +
                         default_levels_lines());
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(FilterArguments, CommentsAndBlankLinesAdvanceTheLineNumber) {
  FilterResult run =
      run_commands("# a comment line\n\nReportStatus\n\n# end\nReportStatus\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 3) +
                         default_status_lines() +
                         command_line("ReportStatus", 6) + default_status_lines());
  EXPECT_EQ(run.out,
            WAKE_UP_COMMAND + PRINTER_INFO_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(FilterArguments, CommandWordsMatchInAnyCaseAndIgnoreFurtherWords) {
  FilterResult run = run_commands(
      "reportstatus\n"
      "REPORTLEVELS\n"
      "rEpOrTsTaTuS now please\n"
      "ReportLevels all of them\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("reportstatus", 1) +
                         default_status_lines() +
                         command_line("REPORTLEVELS", 2) + default_levels_lines() +
                         command_line("rEpOrTsTaTuS", 3) + default_status_lines() +
                         command_line("ReportLevels", 4) + default_levels_lines());
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND +
                         PRINTER_INFO_COMMAND + PRINTER_INFO_COMMAND +
                         PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(FilterArguments, OnlyUnknownCommandsStillSendTheWakeUp) {
  FilterResult run =
      run_commands("PrintSelfTestPage\nClean all\nReportStatusNow\nReport\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() +
                         command_line("PrintSelfTestPage", 1) +
                         command_line("Clean", 2) +
                         command_line("ReportStatusNow", 3) +
                         command_line("Report", 4));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> OK 01\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: filter exited with status 0\n");
}

TEST(FilterArguments, EmptyCommandFileStillSendsTheWakeUp) {
  FilterResult run = run_commands("");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines());
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

}  // namespace
