// What the printer answers, as the scheduler gets it: the state reasons
// and the ink-ribbon marker attributes, from end to end.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_text.h"
#include "tests/support/filter_run.h"

namespace {

// The wait around one query that finds the printer awake at once.
std::string awake_query(const std::string& reply,
                        const std::string& info_line) {
  return "DEBUG: get_printer_info_retry() START\n" + info_query_lines(reply) +
         "DEBUG: printer_info=[" + info_line +
         "]\n"
         "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
         "DEBUG: get_printer_info_retry() END\n";
}

TEST(StateReport, GoodPrinterReportLevelsGivesLevelsThenState) {
  FilterResult run = run_commands("ReportLevels\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportLevels", 1) +
                awake_query(info_reply_bytes(InfoReply()),
                            "power_state=0x00 mech_state=[0x00,0x00] "
                            "memory_state=0x00 error_info=[GOOD] "
                            "levels=[ink ribbon 123 / 350 "
                            "ink_sheet_type=0x84.0x10]") +
                "DEBUG: [ReportLevels] ink ribbon 123 / 350 "
                "ink_sheet_type=0x84.0x10\n"
                "ATTR: marker-colors=#00FF00\n"
                "ATTR: marker-levels=35\n"
                "ATTR: marker-message=\"Ink Ribbon = 123 / 350\"\n"
                "ATTR: marker-names=\"InkSheetType: PV-R31A(GX) "
                "13x18(5x7\xe2\x80\xb3)\"\n"
                "ATTR: marker-types=ink-ribbon\n" +
                state_lines(""));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(StateReport, LevelsOfAnotherSheetAndCounts) {
  FilterResult run = run_commands(
      "ReportLevels\n",
      {"--sheet", "8f00", "--total", "500", "--remaining", "499", "--memory",
       "ff", "--mech", "2001"});
  InfoReply reply;
  reply.sheet[0] = 0x8f;
  reply.sheet[1] = 0x00;
  reply.total = 500;
  reply.remaining = 499;
  reply.memory = 0xff;
  reply.mech[0] = 0x20;
  reply.mech[1] = 0x01;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportLevels", 1) +
                awake_query(info_reply_bytes(reply),
                            "power_state=0x00 mech_state=[0x20,0x01] "
                            "memory_state=0xff error_info=[GOOD] "
                            "levels=[ink ribbon 499 / 500 "
                            "ink_sheet_type=0x8f.0x00]") +
                "DEBUG: [ReportLevels] ink ribbon 499 / 500 "
                "ink_sheet_type=0x8f.0x00\n"
                "ATTR: marker-colors=#00FF00\n"
                "ATTR: marker-levels=99\n"
                "ATTR: marker-message=\"Ink Ribbon = 499 / 500\"\n"
                "ATTR: marker-names=\"InkSheetType: PV-R32A "
                "15x20(6x8\xe2\x80\xb3)\"\n"
                "ATTR: marker-types=ink-ribbon\n" +
                state_lines(""));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
}

TEST(StateReport, ErrorCodeFromTheTableRaisesItsReason) {
  FilterResult run = run_commands("ReportStatus\n", {"--error", "060202"});
  InfoReply reply;
  reply.error[0] = 0x06;
  reply.error[1] = 0x02;
  reply.error[2] = 0x02;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                awake_query(info_reply_bytes(reply),
                            "power_state=0x00 mech_state=[0x00,0x00] "
                            "memory_state=0x00 error_info=[0x06,0x02,0x02] "
                            "levels=[ink ribbon 123 / 350 "
                            "ink_sheet_type=0x84.0x10]") +
                state_lines("0001"));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
}

TEST(StateReport, OneOfSeveralCodesOfAReasonRaisesIt) {
  FilterResult run = run_commands("ReportStatus\n", {"--error", "230707"});
  InfoReply reply;
  reply.error[0] = 0x23;
  reply.error[1] = 0x07;
  reply.error[2] = 0x07;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                awake_query(info_reply_bytes(reply),
                            "power_state=0x00 mech_state=[0x00,0x00] "
                            "memory_state=0x00 error_info=[0x23,0x07,0x07] "
                            "levels=[ink ribbon 123 / 350 "
                            "ink_sheet_type=0x84.0x10]") +
                state_lines("0009"));
}

TEST(StateReport, UnknownErrorCodeIsUndefined) {
  FilterResult run = run_commands("ReportStatus\n", {"--error", "0b0505"});
  InfoReply reply;
  reply.error[0] = 0x0b;
  reply.error[1] = 0x05;
  reply.error[2] = 0x05;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                awake_query(info_reply_bytes(reply),
                            "power_state=0x00 mech_state=[0x00,0x00] "
                            "memory_state=0x00 error_info=[0x0b,0x05,0x05] "
                            "levels=[ink ribbon 123 / 350 "
                            "ink_sheet_type=0x84.0x10]") +
                "DEBUG: encountered undefined error number (0x0b,0x05,0x05)\n" +
                state_lines("0023"));
}

TEST(StateReport, UsedUpRibbonOutranksThePrintersErrorCode) {
  FilterResult run = run_commands(
      "ReportLevels\nReportStatus\n",
      {"--error", "060202", "--remaining", "0", "--total", "350"});
  InfoReply reply;
  reply.error[0] = 0x06;
  reply.error[1] = 0x02;
  reply.error[2] = 0x02;
  reply.remaining = 0;
  std::string query = awake_query(
      info_reply_bytes(reply),
      "power_state=0x00 mech_state=[0x00,0x00] memory_state=0x00 "
      "error_info=[0xfe,0xed,0x01] levels=[ink ribbon 0 / 350 "
      "ink_sheet_type=0x84.0x10]");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportLevels", 1) + query +
                "DEBUG: [ReportLevels] ink ribbon 0 / 350 "
                "ink_sheet_type=0x84.0x10\n"
                "ATTR: marker-colors=#00FF00\n"
                "ATTR: marker-levels=0\n"
                "ATTR: marker-message=\"Ink Ribbon = 0 / 350\"\n"
                "ATTR: marker-names=\"InkSheetType: PV-R31A(GX) "
                "13x18(5x7\xe2\x80\xb3)\"\n"
                "ATTR: marker-types=ink-ribbon\n" +
                state_lines("0005") + command_line("ReportStatus", 2) + query +
                state_lines("0005"));
  EXPECT_EQ(run.out,
            WAKE_UP_COMMAND + PRINTER_INFO_COMMAND + PRINTER_INFO_COMMAND);
}

TEST(StateReport, UnusableCountsAndUnknownSheetInTheSupplyReport) {
  FilterResult run = run_commands(
      "ReportLevels\n", {"--total", "0", "--remaining", "5", "--sheet", "8501"});
  InfoReply reply;
  reply.total = 0;
  reply.remaining = 5;
  reply.sheet[0] = 0x85;
  reply.sheet[1] = 0x01;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportLevels", 1) +
                awake_query(info_reply_bytes(reply),
                            "power_state=0x00 mech_state=[0x00,0x00] "
                            "memory_state=0x00 error_info=[GOOD] "
                            "levels=[ink ribbon 5 / 0 "
                            "ink_sheet_type=0x85.0x01]") +
                "DEBUG: [ReportLevels] ink ribbon 5 / 0 "
                "ink_sheet_type=0x85.0x01\n"
                "ATTR: marker-colors=#00FF00\n"
                "ATTR: marker-levels=-1\n"
                "ATTR: marker-message=\" \"\n"
                "ATTR: marker-names=\"InkSheetType: 85\"\n"
                "ATTR: marker-types=ink-ribbon\n" +
                state_lines(""));
}

TEST(StateReport, RawRepliesWithTheRibbonLeftAndUsedUp) {
  // All zero but the ink-sheet type 84 10 and the counts 350 and 123; then
  // the same with no ribbon left.
  std::string left(192, '\0');
  left[145] = '\x84';
  left[146] = '\x10';
  left[148] = '\x01';
  left[149] = '\x5e';
  left[151] = '\x7b';
  std::string used_up = left;
  used_up[151] = '\0';
  std::string left_hex;
  std::string used_up_hex;
  for (size_t i = 0; i < 192; i++) {
    static const char DIGITS[] = "0123456789abcdef";
    left_hex += DIGITS[static_cast<uint8_t>(left[i]) >> 4];
    left_hex += DIGITS[static_cast<uint8_t>(left[i]) & 15];
    used_up_hex += DIGITS[static_cast<uint8_t>(used_up[i]) >> 4];
    used_up_hex += DIGITS[static_cast<uint8_t>(used_up[i]) & 15];
  }
  FilterResult run =
      run_commands("ReportStatus\nReportStatus\n",
                   {"--raw", left_hex, "--reply", "2:raw=" + used_up_hex});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                awake_query(left,
                            "power_state=0x00 mech_state=[0x00,0x00] "
                            "memory_state=0x00 error_info=[GOOD] "
                            "levels=[ink ribbon 123 / 350 "
                            "ink_sheet_type=0x84.0x10]") +
                state_lines("") + command_line("ReportStatus", 2) +
                awake_query(used_up,
                            "power_state=0x00 mech_state=[0x00,0x00] "
                            "memory_state=0x00 error_info=[0xfe,0xed,0x01] "
                            "levels=[ink ribbon 0 / 350 "
                            "ink_sheet_type=0x84.0x10]") +
                state_lines("0005"));
}

TEST(StateReport, EachReportStatusLineWaitsOnItsOwn) {
  // The first line's printer sleeps through one query; so does the second
  // line's (query 3), which starts again from a fresh count.
  FilterResult run = run_commands(
      "ReportStatus\nReportStatus\n", {"--wake-after", "1", "--reply", "3:power=01"});
  InfoReply asleep;
  asleep.power = 0x01;
  std::string asleep_query =
      info_query_lines(info_reply_bytes(asleep)) +
      "DEBUG: printer_info=[power_state=0x01 mech_state=[0x00,0x00] "
      "memory_state=0x00 error_info=[GOOD] levels=[ink ribbon 123 / 350 "
      "ink_sheet_type=0x84.0x10]]\n"
      "DEBUG: #retry_status=[wake_up=retrying(1/60)]\n";
  std::string awake_query_lines =
      info_query_lines(info_reply_bytes(InfoReply())) + DEFAULT_INFO_LINE +
      "DEBUG: #retry_status=[wake_up=fulfilled(1/60)]\n";
  std::string one_line = "DEBUG: get_printer_info_retry() START\n" +
                         asleep_query + awake_query_lines +
                         "DEBUG: get_printer_info_retry() END\n" +
                         state_lines("");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         one_line + command_line("ReportStatus", 2) + one_line);
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND +
                         PRINTER_INFO_COMMAND + PRINTER_INFO_COMMAND +
                         PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\nsleep 1\nsleep 1\n");
}

}  // namespace
