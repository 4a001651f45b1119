// The printer transactions over real pipes and a real side channel: how the
// filter gathers replies that come in pieces, too long, cut short or not at
// all, and how it copes with drains that fail and channels that close.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_text.h"
#include "tests/support/filter_run.h"

namespace {

// The wait around one failed query: the transaction's own lines end with
// the failure line and END; the wait gives up at once.
std::string failed_query(const std::string& failure_lines) {
  return "DEBUG: get_printer_info_retry() START\n"
         "DEBUG: get_printer_info() START\n" +
         hex_dump("[CMD]", PRINTER_INFO_COMMAND) + failure_lines +
         "DEBUG: get_printer_info() END\n"
         "DEBUG: printer_info=[UNAVAILABLE]\n"
         "DEBUG: get_printer_info_retry() END\n";
}

TEST(PrinterTransaction, StdoutCarriesTheExactCommandBytes) {
  FilterResult run = run_commands("ReportStatus\nReportLevels\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, std::string("\x1b\x45\x57\x55"
                                 "\x1b\x56\x32\x31"
                                 "\x1b\x56\x32\x31",
                                 12));
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         default_status_lines() +
                         command_line("ReportLevels", 2) +
                         default_levels_lines());
}

TEST(PrinterTransaction, ReplyInTwoPiecesIsGatheredWhole) {
  FilterResult run = run_commands("ReportStatus\n", {"--split", "100,92"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         default_status_lines());
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> OK 01\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: cmd 1b 56 32 31\n"
            "sim: reply 192 bytes in pieces 100,92\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: filter exited with status 0\n");
}

TEST(PrinterTransaction, ReplyInManySmallPiecesIsGatheredWhole) {
  FilterResult run =
      run_commands("ReportStatus\n", {"--split", "1,4,1,10,100,50,26"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         default_status_lines());
}

TEST(PrinterTransaction, OversizedReplyIsDumpedWholeAndParsedToByte191) {
  // Every byte that no field covers holds 5a, the 8 extra bytes included;
  // none of them may change what the filter makes of the reply.
  FilterResult run =
      run_commands("ReportStatus\n", {"--size", "200", "--fill", "5a"});
  InfoReply reply;
  reply.size = 200;
  reply.fill = 0x5a;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         "DEBUG: get_printer_info_retry() START\n" +
                         info_query_lines(info_reply_bytes(reply)) +
                         DEFAULT_INFO_LINE +
                         "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
                         "DEBUG: get_printer_info_retry() END\n" +
                         state_lines(""));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
}

TEST(PrinterTransaction, OversizedReplyDumpLinesSpelledOut) {
  FilterResult run =
      run_commands("ReportStatus\n", {"--size", "200", "--fill", "5a"});
  const std::string dump =
      "DEBUG: [STS] size=200\n"
      "DEBUG: [STS] 0000: 5a 5a 5a 5a 00 00 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0010: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0020: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0030: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0040: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0050: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0060: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0070: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0080: 00 00 5a 00 00 00 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 0090: 5a 84 10 5a 01 5e 00 7b 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 00a0: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 00b0: 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a 5a\n"
      "DEBUG: [STS] 00c0: 5a 5a 5a 5a 5a 5a 5a 5a\n";
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            "DEBUG: wr_esc_wakeup() START\n"
            "DEBUG: [CMD] size=4\n"
            "DEBUG: [CMD] 0000: 1b 45 57 55\n"
            "DEBUG: wr_esc_wakeup() END\n"
            "DEBUG: ====> command=[ReportStatus] linenum=1\n"
            "DEBUG: get_printer_info_retry() START\n"
            "DEBUG: get_printer_info() START\n"
            "DEBUG: [CMD] size=4\n"
            "DEBUG: [CMD] 0000: 1b 56 32 31\n" +
                dump +
                "DEBUG: get_printer_info() END\n"
                "DEBUG: printer_info=[power_state=0x00 mech_state=[0x00,0x00] "
                "memory_state=0x00 error_info=[GOOD] levels=[ink ribbon 123 / "
                "350 ink_sheet_type=0x84.0x10]]\n"
                "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines(""));
}

// Costs the filter's one-second read time-out.
TEST(PrinterTransaction, ReplyCutShortAfter150BytesIsUnavailable) {
  FilterResult run = run_commands("ReportStatus\n", {"--short", "150"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                failed_query("DEBUG: cupsBackChannelRead() failed. ret=-1\n") +
                state_lines("0023"));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> OK 01\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: cmd 1b 56 32 31\n"
            "sim: reply 150 bytes\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: filter exited with status 0\n");
}

// Costs the filter's one-second read time-out.
TEST(PrinterTransaction, MissingReplyOnALevelsLineReportsUnavailableLevels) {
  FilterResult run = run_commands("ReportLevels\n", {"--no-reply"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportLevels", 1) +
                failed_query("DEBUG: cupsBackChannelRead() failed. ret=-1\n") +
                unavailable_levels_lines() + state_lines("0023"));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
}

TEST(PrinterTransaction, ClosedBackChannelReadsEndOfFile) {
  FilterResult run =
      run_commands("ReportStatus\nReportStatus\n", {"--close-backchannel"});
  std::string failed =
      failed_query("DEBUG: cupsBackChannelRead() failed. ret=0\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wake_up_lines() + command_line("ReportStatus", 1) +
                         failed + state_lines("0023") +
                         command_line("ReportStatus", 2) + failed +
                         state_lines("0023"));
  EXPECT_EQ(run.out,
            WAKE_UP_COMMAND + PRINTER_INFO_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(PrinterTransaction, BackChannelClosingAtTheSecondQuery) {
  FilterResult run =
      run_commands("ReportStatus\nReportStatus\n", {"--close-backchannel=2"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                default_status_lines() + command_line("ReportStatus", 2) +
                failed_query("DEBUG: cupsBackChannelRead() failed. ret=0\n") +
                state_lines("0023"));
}

// The one test that pays a real drain time-out (5 s): the drain of the
// query goes unanswered, and the reply is read all the same.
TEST(PrinterTransaction, DrainTimeOutIsLoggedAndTheReplyStillRead) {
  FilterResult run =
      run_commands("ReportStatus\n", {"--drain-at", "2:never"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                "DEBUG: get_printer_info_retry() START\n"
                "DEBUG: get_printer_info() START\n" +
                hex_dump("[CMD]", PRINTER_INFO_COMMAND) +
                "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=CUPS_SC_STATUS_TIMEOUT(3)\n" +
                hex_dump("[STS]", info_reply_bytes(InfoReply())) +
                "DEBUG: get_printer_info() END\n" + DEFAULT_INFO_LINE +
                "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines(""));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_GE(run.seconds, 4.9);
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> OK 01\n"
            "sim: cmd 1b 45 57 55\n"
            "sim: sc DRAIN_OUTPUT -> OK\n"
            "sim: cmd 1b 56 32 31\n"
            "sim: reply 192 bytes\n"
            "sim: sc DRAIN_OUTPUT -> no answer\n"
            "sim: filter exited with status 0\n");
}

TEST(PrinterTransaction, DrainWithABadStatusIsLoggedOnly) {
  FilterResult run = run_commands(
      "ReportStatus\n", {"--drain-at", "1:IO_ERROR", "--drain-at", "2:9"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err,
            "DEBUG: wr_esc_wakeup() START\n" +
                hex_dump("[CMD]", WAKE_UP_COMMAND) +
                "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=CUPS_SC_STATUS_IO_ERROR(2)\n"
                "DEBUG: wr_esc_wakeup() END\n" +
                command_line("ReportStatus", 1) +
                "DEBUG: get_printer_info_retry() START\n"
                "DEBUG: get_printer_info() START\n" +
                hex_dump("[CMD]", PRINTER_INFO_COMMAND) +
                "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=UNKNOWN(9)\n" +
                hex_dump("[STS]", info_reply_bytes(InfoReply())) +
                "DEBUG: get_printer_info() END\n" + DEFAULT_INFO_LINE +
                "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines(""));
  EXPECT_EQ(run.out, WAKE_UP_COMMAND + PRINTER_INFO_COMMAND);
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
}

TEST(PrinterTransaction, WakeUpThatCannotBeFlushedEndsWithStatus1) {
  FilterResult run =
      run_commands("ReportStatus\nReportLevels\n", {"--stdout-devfull"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "DEBUG: wr_esc_wakeup() START\n" +
                         hex_dump("[CMD]", WAKE_UP_COMMAND) +
                         "DEBUG: fflush() failed.\n"
                         "DEBUG: wr_esc_wakeup() END\n");
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.sleeps, "");
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> OK 01\n"
            "sim: filter exited with status 1\n");
}

TEST(PrinterTransaction, WakeUpFailureOnAOneWayLinkEndsWithStatus1Too) {
  FilterResult run = run_commands("ReportStatus\n",
                                  {"--stdout-devfull", "--oneway"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, no_bidi_line("CUPS_SC_STATUS_OK", 1) +
                         "DEBUG: wr_esc_wakeup() START\n" +
                         hex_dump("[CMD]", WAKE_UP_COMMAND) +
                         "DEBUG: fflush() failed.\n"
                         "DEBUG: wr_esc_wakeup() END\n");
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.sleeps, "");
}

// A stream that takes only part of the wake-up command: the filter says how
// much went, ends the transaction and the run.  What did go reaches the
// printer when the process exits.
TEST(PrinterTransaction, ShortWriteOfTheWakeUpEndsWithStatus1) {
  FilterCall call;
  call.stdin_text = "ReportStatus\n";
  call.preload = {SHORT_FWRITE_PATH};
  FilterResult run = run_filter(call);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "DEBUG: wr_esc_wakeup() START\n" +
                         hex_dump("[CMD]", WAKE_UP_COMMAND) +
                         "DEBUG: fwrite() failed. ret=2\n"
                         "DEBUG: wr_esc_wakeup() END\n");
  EXPECT_EQ(run.out, std::string("\x1b" "E"));
  EXPECT_EQ(run.sleeps, "");
  EXPECT_EQ(run.sim_log,
            "sim: sc GET_BIDI -> OK 01\n"
            "sim: unknown bytes (2): 1b 45\n"
            "sim: filter exited with status 1\n");
}

}  // namespace
