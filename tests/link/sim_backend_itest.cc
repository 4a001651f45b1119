// The simulated printer as a CUPS backend (quillarothsim): listing, device
// URI checks, and the filter talking to it over the channels that cupsd
// would set up between them.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/expected_run.h"
#include "tests/support/expected_trace.h"
#include "tests/support/filter_run.h"
#include "tests/support/sim_printer.h"

namespace {

const std::vector<std::string> kJobArgs = {"7", "user", "title", "1", ""};

// The backend's answer to a job whose device URI it refuses: status 1,
// nothing on stdout, the reason on stderr.
void ExpectBadUri(const std::string& uri, const std::string& reason) {
  ProgramResult run = RunBackend(kJobArgs, uri, "");
  EXPECT_EQ(1, run.status) << uri;
  EXPECT_EQ("", run.out) << uri;
  EXPECT_EQ("ERROR: Bad device URI \"" + uri + "\": " + reason + "\n", run.err);
}

// The filter's "ReportStatus" line in front of the backend for the URI.
FilterResult RunStatusBeside(const std::string& device_uri) {
  FilterCall call;
  call.stdin_text = "ReportStatus\n";
  return RunFilterWithBackend(device_uri, call);
}

TEST(SimBackend, ListsItselfWhenRunWithoutArguments) {
  ProgramResult run = RunBackend({}, "", "");
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(
      "network quillarothsim \"Unknown\" \"Quillaroth simulated "
      "printer\"\n",
      run.out);
  EXPECT_EQ("", run.err);
}

TEST(SimBackend, UnknownUriKeyFailsTheJob) {
  ExpectBadUri("quillarothsim://x?total=5&colour=red",
               "unknown key \"colour\"");
}

TEST(SimBackend, BadUriValuesFailTheJob) {
  ExpectBadUri("quillarothsim://x?error=06020",
               "error takes 6 hex digits, not \"06020\"");
  ExpectBadUri("quillarothsim://x?remaining=65536",
               "remaining takes a number 0-65535, not \"65536\"");
  ExpectBadUri("quillarothsim://x?wake=soon",
               "wake takes a number or never, not \"soon\"");
  ExpectBadUri("quillarothsim://x?oneway=yes",
               "oneway takes 1 or 0, not \"yes\"");
}

TEST(SimBackend, WrongSchemeFailsTheJob) {
  ExpectBadUri("socket://10.0.0.1", "not a quillarothsim URI");
}

TEST(SimBackend, ReadsTheCommandsUntilItsInputEnds) {
  // No back channel and no side channel: the commands are only logged.
  ProgramResult run = RunBackend(kJobArgs, "quillarothsim://x",
                                 kWakeUpCommand + kPrinterInfoCommand + "junk");
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("", run.out);
  EXPECT_EQ(
      "DEBUG: sim: cmd 1b 45 57 55\n"
      "DEBUG: sim: cmd 1b 56 32 31\n"
      "DEBUG: sim: no reply to printer information (back channel "
      "closed)\n"
      "DEBUG: sim: unknown bytes (4): 6a 75 6e 6b\n",
      run.err);
}

TEST(SimBackend, FilterReportsWhatTheUriScripts) {
  SimPrinter printer = SimPrinter().Total(500).Error(0x060202).Sheet(0x8400);
  FilterCall call;
  call.stdin_text = "ReportLevels\n";
  ExpectBackendRun(
      ExpectedRun(printer).ReportLevels(1, "24", kSheetPvR31a, "0001"),
      RunFilterWithBackend(printer.DeviceUri("shelf"), call));
}

// The whole trace, written out: the readable example of this file.
// The URI makes the backend answer the probe with OK and the byte 00: the
// filter reports the unavailable state without asking the printer.
TEST(SimBackend, OneWayUriGoldenTrace) {
  FilterResult run = RunStatusBeside("quillarothsim://x?oneway=1");
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(0, run.backend_status);
  EXPECT_EQ(
      "DEBUG: Unable to retrieve supply status from printer - nobidirectional "
      "I/O available! CUPS_SC_STATUS_OK(1)\n"
      "DEBUG: wr_esc_wakeup() START\n"
      "DEBUG: [CMD] size=4\n"
      "DEBUG: [CMD] 0000: 1b 45 57 55\n"
      "DEBUG: wr_esc_wakeup() END\n"
      "DEBUG: ====> command=[ReportStatus] linenum=1\n" +
          // The state report's 19 lines: written out in its own tests.
          StateLines("0023"),
      run.err);
  EXPECT_EQ("usleep 500000\n", run.sleeps);
  EXPECT_EQ(
      "DEBUG: sim: sc GET_BIDI -> OK 00\n"
      "DEBUG: sim: cmd 1b 45 57 55\n"
      "DEBUG: sim: sc DRAIN_OUTPUT -> OK\n",
      run.sim_log);
}

TEST(SimBackend, SleepyPrinterWakesAfterTheScriptedQueries) {
  SimPrinter printer = SimPrinter().WakeAfter(2);
  ExpectBackendRun(ExpectedRun(printer).ReportStatus(1, ""),
                   RunStatusBeside(printer.DeviceUri("x")));
}

}  // namespace
