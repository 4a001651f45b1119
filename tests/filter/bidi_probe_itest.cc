// The bidirectional probe: a backend that cannot (or will not) say that the
// printer talks back makes the filter report without asking the printer.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expected_run.h"
#include "tests/support/expected_trace.h"
#include "tests/support/filter_run.h"

namespace {

// A one-way run of one "ReportStatus" line: the probe failed with the
// status (the simulator answered sim_answer), the unavailable state.
ExpectedRun OneWayStatus(int status, const std::string& sim_answer) {
  return ExpectedRun::OneWay(status, sim_answer)
      .Command("ReportStatus", 1)
      .State("0023");
}

// The same after a side channel that closed, so that the wake-up's drain
// fails too and the simulator logs no drain: its log starts with the
// lines given.
ExpectedRun ClosedSideChannel(const std::string& sim_log) {
  ExpectedRun expected = OneWayStatus(CUPS_SC_STATUS_TIMEOUT, "");
  expected.err = ProbeFailureLine(CUPS_SC_STATUS_TIMEOUT) +
                 WakeUpLines(CUPS_SC_STATUS_TIMEOUT) +
                 CommandLine("ReportStatus", 1) + StateLines("0023");
  expected.sim_log = sim_log + "sim: cmd 1b 45 57 55\n";
  return expected;
}

TEST(BidiProbe, OneWayReportStatusReportsTheUnavailableState) {
  ExpectRun(OneWayStatus(CUPS_SC_STATUS_OK, "OK 00"),
            RunCommands("ReportStatus\n", {"--oneway"}));
}

// The whole trace, written out: the readable example of this file.
// The backend answers the probe with OK and the byte 00: a one-way link, so
// "ReportLevels" reports unavailable levels without asking the printer, and
// leaves the state reasons alone.
TEST(BidiProbe, OneWayReportLevelsGoldenTrace) {
  ExpectRun(ExpectedRun::Literal(
                0,
                "DEBUG: Unable to retrieve supply status from printer - "
                "nobidirectional I/O available! CUPS_SC_STATUS_OK(1)\n" +
                    // The wake-up transaction: written out in
                    // filter/state_report_itest.cc.
                    WakeUpLines() +
                    "DEBUG: ====> command=[ReportLevels] linenum=1\n"
                    "DEBUG: [ReportLevels] UNAVAILABLE\n"
                    "ATTR: marker-colors=#00FF00\n"
                    "ATTR: marker-levels=-2\n"
                    "ATTR: marker-message=\" \"\n"
                    "ATTR: marker-names=\"InkSheetType: 00\"\n"
                    "ATTR: marker-types=ink-ribbon\n",
                "\x1b\x45\x57\x55", "usleep 500000\n",
                "sim: sc GET_BIDI -> OK 00\n"
                "sim: cmd 1b 45 57 55\n"
                "sim: sc DRAIN_OUTPUT -> OK\n"),
            RunCommands("ReportLevels\n", {"--oneway"}));
}

TEST(BidiProbe, OneWayLinkAnswersEveryLineWithoutAQuery) {
  ExpectRun(
      ExpectedRun::OneWay(CUPS_SC_STATUS_OK, "OK 00")
          .Command("ReportLevels", 1)
          .UnavailableLevels()
          .Command("ReportStatus", 2)
          .State("0023")
          .Command("ReportStatus", 3)
          .State("0023"),
      RunCommands("ReportLevels\nReportStatus\nReportStatus\n", {"--oneway"}));
}

TEST(BidiProbe, StatusNotImplementedMeansOneWay) {
  ExpectRun(OneWayStatus(CUPS_SC_STATUS_NOT_IMPLEMENTED, "NOT_IMPLEMENTED"),
            RunCommands("ReportStatus\n", {"--bidi-status", "NOT_IMPLEMENTED",
                                           "--bidi-data", ""}));
}

TEST(BidiProbe, NotOkStatusWithTheSupportedByteMeansOneWay) {
  ExpectRun(OneWayStatus(CUPS_SC_STATUS_IO_ERROR, "IO_ERROR 01"),
            RunCommands("ReportStatus\n", {"--bidi-status", "2"}));
}

TEST(BidiProbe, StatusWithoutANameIsUnknown) {
  ExpectRun(OneWayStatus(8, "8 01"),
            RunCommands("ReportStatus\n", {"--bidi-status", "8"}));
}

TEST(BidiProbe, EmptyAnswerMeansOneWay) {
  ExpectRun(OneWayStatus(CUPS_SC_STATUS_OK, "OK"),
            RunCommands("ReportStatus\n", {"--bidi-data", ""}));
}

TEST(BidiProbe, TwoByteAnswerMeansOneWay) {
  ExpectRun(OneWayStatus(CUPS_SC_STATUS_OK, "OK 01 01"),
            RunCommands("ReportStatus\n", {"--bidi-data", "0101"}));
}

TEST(BidiProbe, AnswerByteOtherThanOneMeansOneWay) {
  ExpectRun(OneWayStatus(CUPS_SC_STATUS_OK, "OK 81"),
            RunCommands("ReportStatus\n", {"--bidi-data", "81"}));
}

// A side channel that is gone: libcups' request cannot be answered and comes
// back as a time-out at once, for the probe and for the wake-up's drain.
TEST(BidiProbe, ClosedSideChannelMeansOneWay) {
  ExpectRun(ClosedSideChannel("sim: side channel closed\n"),
            RunCommands("ReportStatus\n", {"--close-sidechannel"}));
}

// The probe reaches the backend, which hangs up instead of answering.
TEST(BidiProbe, SideChannelClosingOnTheProbeMeansOneWay) {
  ExpectRun(ClosedSideChannel("sim: sc GET_BIDI -> no answer\n"
                              "sim: side channel closed\n"),
            RunCommands("ReportStatus\n", {"--close-sidechannel=1"}));
}

// libcups waits the probe's whole 30 seconds for an answer that never
// comes, and not longer: the slowest test of the suite, run in parallel with
// the others.
TEST(BidiProbe, UnansweredProbeTimesOutAfter30Seconds) {
  FilterResult run = RunCommands("ReportStatus\n", {"--bidi", "never"});
  ExpectRun(OneWayStatus(CUPS_SC_STATUS_TIMEOUT, "no answer"), run);
  EXPECT_LE(29.5, run.seconds);
  EXPECT_GE(40.0, run.seconds);
}

}  // namespace
