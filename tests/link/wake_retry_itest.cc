// The wait for a printer that is still waking up: one query a second, at
// most 61 queries, with sleep() interposed so that the wait costs nothing.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_text.h"
#include "tests/support/filter_run.h"

namespace {

// The printer_info line of a reply from a printer that is still asleep.
const std::string ASLEEP_INFO_LINE =
    "DEBUG: printer_info=[power_state=0x01 mech_state=[0x00,0x00] "
    "memory_state=0x00 error_info=[GOOD] levels=[ink ribbon 123 / 350 "
    "ink_sheet_type=0x84.0x10]]\n";

// One query that finds the printer asleep, with the counter's status.
std::string asleep_query(const std::string& status) {
  InfoReply asleep;
  asleep.power = 0x01;
  return info_query_lines(info_reply_bytes(asleep)) + ASLEEP_INFO_LINE +
         "DEBUG: #retry_status=[wake_up=" + status + "]\n";
}

// n sleeping queries with statuses retrying(1/60) to retrying(n/60).
std::string asleep_queries(int n) {
  std::string lines;
  for (int i = 1; i <= n; i++)
    lines += asleep_query("retrying(" + std::to_string(i) + "/60)");
  return lines;
}

// n "sleep 1" lines.
std::string sleeps(int n) {
  std::string lines;
  for (int i = 0; i < n; i++) lines += "sleep 1\n";
  return lines;
}

TEST(WakeUpWait, PrinterAwakeAtTheFirstQueryNeedsNoSleep) {
  FilterResult run = run_commands("ReportStatus\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         default_status_lines());
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(WakeUpWait, PrinterWakingAtTheFourthQuery) {
  FilterResult run = run_commands("ReportStatus\n", {"--wake-after", "3"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                "DEBUG: get_printer_info_retry() START\n" + asleep_queries(3) +
                info_query_lines(info_reply_bytes(InfoReply())) +
                DEFAULT_INFO_LINE +
                "DEBUG: #retry_status=[wake_up=fulfilled(3/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines(""));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND +
                         PRINTER_INFO_COMMAND + PRINTER_INFO_COMMAND +
                         PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n" + sleeps(3));
}

TEST(WakeUpWait, PrinterThatNeverWakesIsGivenUpAfter61Queries) {
  FilterResult run =
      run_commands("ReportLevels\n", {"--wake-after", "never"});
  std::string out = WAKE_UP_COMMAND;
  for (int i = 0; i < 61; i++) out += PRINTER_INFO_COMMAND;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportLevels", 1) +
                         "DEBUG: get_printer_info_retry() START\n" +
                         asleep_queries(60) + asleep_query("expired(61/60)") +
                         "DEBUG: #retry over\n"
                         "DEBUG: get_printer_info_retry() END\n" +
                         unavailable_levels_lines() + state_lines("0023"));
  EXPECT_EQ(run.out, out);
  EXPECT_EQ(run.sleeps, "usleep 500000\n" + sleeps(60));
}

// Costs the filter's one-second read time-out.
TEST(WakeUpWait, QueryFailingAtTheFifthAttemptEndsTheWait) {
  FilterResult run = run_commands(
      "ReportStatus\n", {"--wake-after", "never", "--fail-at", "5"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                "DEBUG: get_printer_info_retry() START\n" + asleep_queries(4) +
                "DEBUG: get_printer_info() START\n" +
                hex_dump("[CMD]", PRINTER_INFO_COMMAND) +
                "DEBUG: cupsBackChannelRead() failed. ret=-1\n"
                "DEBUG: get_printer_info() END\n"
                "DEBUG: printer_info=[UNAVAILABLE]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines("0023"));
  std::string out = WAKE_UP_COMMAND;
  for (int i = 0; i < 5; i++) out += PRINTER_INFO_COMMAND;
  EXPECT_EQ(run.out, out);
  EXPECT_EQ(run.sleeps, "usleep 500000\n" + sleeps(4));
}

TEST(WakeUpWait, EveryLineStartsTheCountAfresh) {
  // Query 1 and 2 asleep, 3 awake (first line); 4 asleep, 5 awake.
  FilterResult run = run_commands(
      "ReportStatus\nReportStatus\n", {"--wake-after", "2", "--reply", "4:power=01"});
  std::string awake = info_query_lines(info_reply_bytes(InfoReply())) +
                      DEFAULT_INFO_LINE;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                "DEBUG: get_printer_info_retry() START\n" + asleep_queries(2) +
                awake +
                "DEBUG: #retry_status=[wake_up=fulfilled(2/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines("") + command_line("ReportStatus", 2) +
                "DEBUG: get_printer_info_retry() START\n" + asleep_queries(1) +
                awake +
                "DEBUG: #retry_status=[wake_up=fulfilled(1/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines(""));
  EXPECT_EQ(run.sleeps, "usleep 500000\n" + sleeps(3));
}

TEST(WakeUpWait, AwakePrinterWithAnErrorIsReportedAfterTheWait) {
  FilterResult run = run_commands(
      "ReportStatus\n", {"--wake-after", "1", "--error", "0d0807"});
  InfoReply asleep;
  asleep.power = 0x01;
  asleep.error[0] = 0x0d;
  asleep.error[1] = 0x08;
  asleep.error[2] = 0x07;
  InfoReply awake = asleep;
  awake.power = 0x00;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                "DEBUG: get_printer_info_retry() START\n" +
                info_query_lines(info_reply_bytes(asleep)) +
                "DEBUG: printer_info=[power_state=0x01 mech_state=[0x00,0x00] "
                "memory_state=0x00 error_info=[0x0d,0x08,0x07] levels=[ink "
                "ribbon 123 / 350 ink_sheet_type=0x84.0x10]]\n"
                "DEBUG: #retry_status=[wake_up=retrying(1/60)]\n" +
                info_query_lines(info_reply_bytes(awake)) +
                "DEBUG: printer_info=[power_state=0x00 mech_state=[0x00,0x00] "
                "memory_state=0x00 error_info=[0x0d,0x08,0x07] levels=[ink "
                "ribbon 123 / 350 ink_sheet_type=0x84.0x10]]\n"
                "DEBUG: #retry_status=[wake_up=fulfilled(1/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines("0021"));
  EXPECT_EQ(run.sleeps, "usleep 500000\nsleep 1\n");
}

}  // namespace
