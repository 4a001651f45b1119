// The filter's start-up and command loop, run beside the simulated printer:
// argument count, command file or stdin, line numbers, command words.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/built_tools.h"
#include "tests/support/expected_run.h"
#include "tests/support/expected_trace.h"
#include "tests/support/filter_run.h"

namespace {

// A run that ends at once with status 1 and this stderr: nothing written
// to the printer, no pause.
ExpectedRun EarlyExit(const std::string& err) {
  ExpectedRun expected;
  expected.status = 1;
  expected.err = err;
  expected.out = "";
  expected.sleeps = "";
  expected.sim_log = "";
  return expected;
}

// The usage message, which names the filter as started and has no line end.
std::string Usage() {
  return "ERROR: Usage: " + BuiltTools().filter +
         " job-id user title copies options [file]";
}

// The filter run with these arguments, the commands on stdin.
FilterResult RunWithArgs(const std::vector<std::string>& args,
                         const std::string& commands = "ReportStatus\n") {
  FilterCall call;
  call.args = args;
  call.stdin_text = commands;
  return RunFilter(call);
}

TEST(FilterArguments, FourArgumentsGiveUsageWithoutLineEnd) {
  ExpectRun(EarlyExit(Usage()), RunWithArgs({"1", "user", "title", "1"}));
}

TEST(FilterArguments, SevenArgumentsGiveUsageWithoutLineEnd) {
  ExpectRun(
      EarlyExit(Usage()),
      RunWithArgs({"1", "user", "title", "1", "", "/dev/null", "extra"}, ""));
}

TEST(FilterArguments, UnopenableCommandFileEndsWithStatus1) {
  // No wake-up either.
  ExpectRun(EarlyExit("ERROR: Unable to open command file - : No such file "
                      "or directory\n"),
            RunWithArgs({"1", "user", "title", "1", "",
                         "/nonexistent/quillaroth/cmds"}));
}

TEST(FilterArguments, FiveArgumentsReadCommandsFromStdin) {
  ExpectRun(ExpectedRun().ReportStatus(1, ""), RunCommands("ReportStatus\n"));
}

TEST(FilterArguments, SixArgumentsReadTheNamedFileNotStdin) {
  FilterCall call;
  call.command_file = "ReportLevels\n";
  call.stdin_text = "ReportStatus\nReportStatus\n";
  ExpectRun(ExpectedRun().ReportLevels(1, "35", kSheetPvR31aGx, ""),
            RunFilter(call));
}

TEST(FilterArguments, CommentsAndBlankLinesAdvanceTheLineNumber) {
  ExpectRun(ExpectedRun().ReportStatus(3, "").ReportStatus(6, ""),
            RunCommands("# a comment line\n\nReportStatus\n\n# end\n"
                        "ReportStatus\n"));
}

TEST(FilterArguments, CommandWordsMatchInAnyCaseAndIgnoreFurtherWords) {
  ExpectRun(ExpectedRun()
                .Command("reportstatus", 1)
                .Wait()
                .State("")
                .Command("REPORTLEVELS", 2)
                .Wait()
                .Levels("35", kSheetPvR31aGx)
                .State("")
                .Command("rEpOrTsTaTuS", 3)
                .Wait()
                .State("")
                .ReportLevels(4, "35", kSheetPvR31aGx, ""),
            RunCommands("reportstatus\n"
                        "REPORTLEVELS\n"
                        "rEpOrTsTaTuS now please\n"
                        "ReportLevels all of them\n"));
}

// The whole trace, written out: the readable example of this file.
// The commands come from stdin (five arguments); none of them is known, so
// the run is the wake-up and one debug line for each command.
TEST(FilterArguments, OnlyUnknownCommandsGoldenTrace) {
  ExpectRun(
      ExpectedRun::Literal(
          0,
          // The wake-up transaction: written out in
          // filter/state_report_itest.cc.
          WakeUpLines() + "DEBUG: ====> command=[PrintSelfTestPage] linenum=1\n"
                          "DEBUG: ====> command=[Clean] linenum=2\n"
                          "DEBUG: ====> command=[ReportStatusNow] linenum=3\n"
                          "DEBUG: ====> command=[Report] linenum=4\n",
          "\x1b\x45\x57\x55", "usleep 500000\n",
          "sim: sc GET_BIDI -> OK 01\n"
          "sim: cmd 1b 45 57 55\n"
          "sim: sc DRAIN_OUTPUT -> OK\n"),
      RunCommands("PrintSelfTestPage\nClean all\nReportStatusNow\nReport\n"));
}

TEST(FilterArguments, EmptyCommandFileStillSendsTheWakeUp) {
  ExpectRun(ExpectedRun(), RunCommands(""));
}

}  // namespace
