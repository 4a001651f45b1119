// The bidirectional probe: a backend that cannot (or will not) say that the
// printer talks back makes the filter report without asking the printer.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_text.h"
#include "tests/support/filter_run.h"

namespace {

// The simulator's log for a one-way run: the probe's answer, the wake-up
// and its drain, and no query.
std::string one_way_sim_log(const std::string& probe_answer) {
  return "sim: sc GET_BIDI -> " + probe_answer +
         "\n"
         "sim: cmd 1b 45 57 55\n"
         "sim: sc DRAIN_OUTPUT -> OK\n"
         "sim: filter exited with status 0\n";
}

// The filter's whole stderr for one "ReportStatus" line after a probe that
// found no bidirectional link: the probe's line with its status, the
// wake-up, the command and the unavailable state.
std::string one_way_status_report(const std::string& status, int number) {
  return no_bidi_line(status, number) + wake_up_lines() +
         command_line("ReportStatus", 1) + state_lines("0023");
}

TEST(BidiProbe, OneWayReportStatusReportsTheUnavailableState) {
  FilterResult run = run_commands("ReportStatus\n", {"--oneway"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, one_way_status_report("CUPS_SC_STATUS_OK", 1));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
  EXPECT_EQ(run.sim_log, one_way_sim_log("OK 00"));
}

TEST(BidiProbe, OneWayReportLevelsReportsUnavailableLevelsOnly) {
  FilterResult run = run_commands("ReportLevels\n", {"--oneway"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, no_bidi_line("CUPS_SC_STATUS_OK", 1) + wake_up_lines() +
                         command_line("ReportLevels", 1) +
                         unavailable_levels_lines());
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
  EXPECT_EQ(run.sim_log, one_way_sim_log("OK 00"));
}

TEST(BidiProbe, OneWayLinkAnswersEveryLineWithoutAQuery) {
  FilterResult run = run_commands(
      "ReportLevels\nReportStatus\nReportStatus\n", {"--oneway"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, no_bidi_line("CUPS_SC_STATUS_OK", 1) + wake_up_lines() +
                         command_line("ReportLevels", 1) +
                         unavailable_levels_lines() +
                         command_line("ReportStatus", 2) + state_lines("0023") +
                         command_line("ReportStatus", 3) + state_lines("0023"));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(BidiProbe, StatusNotImplementedMeansOneWay) {
  FilterResult run = run_commands(
      "ReportStatus\n", {"--bidi-status", "NOT_IMPLEMENTED", "--bidi-data", ""});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            one_way_status_report("CUPS_SC_STATUS_NOT_IMPLEMENTED", 7));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sim_log, one_way_sim_log("NOT_IMPLEMENTED"));
}

TEST(BidiProbe, NotOkStatusWithTheSupportedByteMeansOneWay) {
  FilterResult run = run_commands("ReportStatus\n", {"--bidi-status", "2"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, one_way_status_report("CUPS_SC_STATUS_IO_ERROR", 2));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sim_log, one_way_sim_log("IO_ERROR 01"));
}

TEST(BidiProbe, StatusWithoutANameIsUnknown) {
  FilterResult run = run_commands("ReportStatus\n", {"--bidi-status", "8"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, one_way_status_report("UNKNOWN", 8));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
}

TEST(BidiProbe, EmptyAnswerMeansOneWay) {
  FilterResult run = run_commands("ReportStatus\n", {"--bidi-data", ""});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, one_way_status_report("CUPS_SC_STATUS_OK", 1));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sim_log, one_way_sim_log("OK"));
}

TEST(BidiProbe, TwoByteAnswerMeansOneWay) {
  FilterResult run = run_commands("ReportStatus\n", {"--bidi-data", "0101"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, one_way_status_report("CUPS_SC_STATUS_OK", 1));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sim_log, one_way_sim_log("OK 01 01"));
}

TEST(BidiProbe, AnswerByteOtherThanOneMeansOneWay) {
  FilterResult run = run_commands("ReportStatus\n", {"--bidi-data", "81"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, one_way_status_report("CUPS_SC_STATUS_OK", 1));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
}

// A side channel that is gone: libcups' request cannot be answered and comes
// back as a time-out at once, for the probe and for the wake-up's drain.
TEST(BidiProbe, ClosedSideChannelMeansOneWay) {
  FilterResult run = run_commands("ReportStatus\n", {"--close-sidechannel"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            no_bidi_line("CUPS_SC_STATUS_TIMEOUT", 3) +
                "DEBUG: wr_esc_wakeup() START\n" +
                hex_dump("[CMD]", WAKE_UP_COMMAND) +
                "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=CUPS_SC_STATUS_TIMEOUT(3)\n"
                "DEBUG: wr_esc_wakeup() END\n" +
                command_line("ReportStatus", 1) + state_lines("0023"));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
  EXPECT_EQ(run.sim_log,
            "sim: side channel closed\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: filter exited with status 0\n");
}

// The probe reaches the backend, which hangs up instead of answering.
TEST(BidiProbe, SideChannelClosingOnTheProbeMeansOneWay) {
  FilterResult run = run_commands("ReportStatus\n", {"--close-sidechannel=1"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            no_bidi_line("CUPS_SC_STATUS_TIMEOUT", 3) +
                "DEBUG: wr_esc_wakeup() START\n" +
                hex_dump("[CMD]", WAKE_UP_COMMAND) +
                "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=CUPS_SC_STATUS_TIMEOUT(3)\n"
                "DEBUG: wr_esc_wakeup() END\n" +
                command_line("ReportStatus", 1) + state_lines("0023"));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> no answer\n"
            "sim: side channel closed\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: filter exited with status 0\n");
}

// libcups waits the probe's whole 30 seconds for an answer that never
// comes, and not longer: the slowest test of the suite, run in parallel with
// the others.
TEST(BidiProbe, UnansweredProbeTimesOutAfter30Seconds) {
  FilterResult run = run_commands("ReportStatus\n", {"--bidi", "never"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, one_way_status_report("CUPS_SC_STATUS_TIMEOUT", 3));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND);
  EXPECT_GE(run.seconds, 29.5);
  EXPECT_LE(run.seconds, 40.0);
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> no answer\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: filter exited with status 0\n");
}

}  // namespace
