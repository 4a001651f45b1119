// The simulated printer as a CUPS backend (quillarothsim): listing, device
// URI checks, and the filter talking to it over the channels that cupsd
// would set up between them.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_text.h"
#include "tests/support/filter_run.h"

namespace {

const std::vector<std::string> JOB_ARGS = {"7", "user", "title", "1", ""};

TEST(SimBackend, ListsItselfWhenRunWithoutArguments) {
  FilterResult run = run_backend(built_backend(), {}, "", "");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out,
            "network quillarothsim \"Unknown\" \"Quillaroth simulated "
            "printer\"\n");
  EXPECT_EQ(run.err, "");
}

TEST(SimBackend, UnknownUriKeyFailsTheJob) {
  FilterResult run = run_backend(built_backend(), JOB_ARGS,
                                 "quillarothsim://x?total=5&colour=red", "");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "ERROR: Bad device URI \"quillarothsim://x?total=5&colour=red\": "
            "unknown key \"colour\"\n");
}

TEST(SimBackend, BadUriValuesFailTheJob) {
  FilterResult run = run_backend(built_backend(), JOB_ARGS,
                                 "quillarothsim://x?error=06020", "");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "ERROR: Bad device URI \"quillarothsim://x?error=06020\": error "
            "takes 6 hex digits, not \"06020\"\n");

  run = run_backend(built_backend(), JOB_ARGS,
                    "quillarothsim://x?remaining=65536", "");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "ERROR: Bad device URI \"quillarothsim://x?remaining=65536\": "
            "remaining takes a number 0-65535, not \"65536\"\n");

  run = run_backend(built_backend(), JOB_ARGS, "quillarothsim://x?wake=soon",
                    "");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "ERROR: Bad device URI \"quillarothsim://x?wake=soon\": wake "
            "takes a number or never, not \"soon\"\n");

  run = run_backend(built_backend(), JOB_ARGS, "quillarothsim://x?oneway=yes",
                    "");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "ERROR: Bad device URI \"quillarothsim://x?oneway=yes\": oneway "
            "takes 1 or 0, not \"yes\"\n");
}

TEST(SimBackend, WrongSchemeFailsTheJob) {
  FilterResult run =
      run_backend(built_backend(), JOB_ARGS, "socket://10.0.0.1", "");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "ERROR: Bad device URI \"socket://10.0.0.1\": not a quillarothsim "
            "URI\n");
}

TEST(SimBackend, ReadsTheCommandsUntilItsInputEnds) {
  // No back channel and no side channel: the commands are only logged.
  FilterResult run =
      run_backend(built_backend(), JOB_ARGS, "quillarothsim://x",
                  WAKE_UP_COMMAND + PRINTER_INFO_COMMAND + "junk");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "DEBUG: sim: cmd 1b 45 57 55\n"
            "DEBUG: sim: cmd 1b 56 32 31\n"
            "DEBUG: sim: no reply to printer information (back channel "
            "closed)\n"
            "DEBUG: sim: unknown bytes (4): 6a 75 6e 6b\n");
}

TEST(SimBackend, FilterReportsWhatTheUriScripts) {
  FilterCall call;
  call.stdin_text = "ReportLevels\n";
  FilterResult run = run_filter_with_backend(
      built_tools(), built_backend(),
      "quillarothsim://shelf?total=500&remaining=123&error=060202&sheet=8400",
      call);
  InfoReply reply;
  reply.total = 500;
  reply.remaining = 123;
  reply.error[0] = 0x06;
  reply.error[1] = 0x02;
  reply.error[2] = 0x02;
  reply.sheet[0] = 0x84;
  reply.sheet[1] = 0x00;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.backend_status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportLevels", 1) +
                "DEBUG: get_printer_info_retry() START\n" +
                info_query_lines(info_reply_bytes(reply)) +
                "DEBUG: printer_info=[power_state=0x00 mech_state=[0x00,0x00] "
                "memory_state=0x00 error_info=[0x06,0x02,0x02] levels=[ink "
                "ribbon 123 / 500 ink_sheet_type=0x84.0x00]]\n"
                "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
                "DEBUG: get_printer_info_retry() END\n"
                "DEBUG: [ReportLevels] ink ribbon 123 / 500 "
                "ink_sheet_type=0x84.0x00\n"
                "ATTR: marker-colors=#00FF00\n"
                "ATTR: marker-levels=24\n"
                "ATTR: marker-message=\"Ink Ribbon = 123 / 500\"\n"
                "ATTR: marker-names=\"InkSheetType: PV-R31A "
                "13x18(5x7\xe2\x80\xb3)\"\n"
                "ATTR: marker-types=ink-ribbon\n" +
                state_lines("0001"));
  EXPECT_EQ(run.sleeps, "usleep 500000\n");
  EXPECT_EQ(run.sim_log,
            "DEBUG: sim: sc GET_BIDI -> OK 01\n"
            "DEBUG: sim: cmd 1b 45 57 55\n"
            "DEBUG: sim: sc DRAIN_OUTPUT -> OK\n"
            "DEBUG: sim: cmd 1b 56 32 31\n"
            "DEBUG: sim: reply 192 bytes\n"
            "DEBUG: sim: sc DRAIN_OUTPUT -> OK\n");
}

TEST(SimBackend, OneWayUriMakesAOneWayLink) {
  FilterCall call;
  call.stdin_text = "ReportStatus\n";
  FilterResult run = run_filter_with_backend(
      built_tools(), built_backend(), "quillarothsim://x?oneway=1", call);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.backend_status, 0);
  EXPECT_EQ(run.err, no_bidi_line("CUPS_SC_STATUS_OK", 1) + wake_up_lines() +
                         command_line("ReportStatus", 1) + state_lines("0023"));
}

TEST(SimBackend, SleepyPrinterWakesAfterTheScriptedQueries) {
  FilterCall call;
  call.stdin_text = "ReportStatus\n";
  FilterResult run = run_filter_with_backend(
      built_tools(), built_backend(), "quillarothsim://x?wake=2", call);
  InfoReply asleep;
  asleep.power = 0x01;
  std::string asleep_lines =
      info_query_lines(info_reply_bytes(asleep)) +
      "DEBUG: printer_info=[power_state=0x01 mech_state=[0x00,0x00] "
      "memory_state=0x00 error_info=[GOOD] levels=[ink ribbon 123 / 350 "
      "ink_sheet_type=0x84.0x10]]\n";
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.backend_status, 0);
  EXPECT_EQ(run.err,
            wake_up_lines() + command_line("ReportStatus", 1) +
                "DEBUG: get_printer_info_retry() START\n" + asleep_lines +
                "DEBUG: #retry_status=[wake_up=retrying(1/60)]\n" +
                asleep_lines +
                "DEBUG: #retry_status=[wake_up=retrying(2/60)]\n" +
                info_query_lines(info_reply_bytes(InfoReply())) +
                DEFAULT_INFO_LINE +
                "DEBUG: #retry_status=[wake_up=fulfilled(2/60)]\n"
                "DEBUG: get_printer_info_retry() END\n" +
                state_lines(""));
  EXPECT_EQ(run.sleeps, "usleep 500000\nsleep 1\nsleep 1\n");
}

}  // namespace
