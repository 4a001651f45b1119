// Command jobs through CUPS' own socket backend to a network printer.
//
// The socket backend answers the side channel itself (GET_BIDI: OK
// with 01; DRAIN_OUTPUT: OK once it has written what the filter wrote to
// the connection) and, once the filter is done, half-closes the connection
// and waits up to 90 s for the printer to close it ("waiteof"); a refused
// connection it retries every 5 s and more until "contimeout" seconds have
// passed (a week by default).  The faults that would hold a job that long
// use the URI options waiteof=false and contimeout=1.
//
// Each test checks the queue's reasons and markers over IPP, what the
// printer received (its log), how the job ended, that the filter exited 0,
// and that the job took no longer than the filter's own waits and the
// backend's allow.

#include <gtest/gtest.h>

#include "tests/e2e/socket_backend_test.h"

namespace {

TEST_F(SocketBackendTest, GoodPrinterHasNoReasonsAndPublishesItsRibbon) {
  AddNetworkQueue("good", {});
  ASSERT_NE(0, RunJob("good", kReportLevels, kWakeUpPause));
  EXPECT_EQ("printer-state-reasons=none\n" + DefaultMarkers(),
            cupsd().PrinterAttributes("good"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes\n"
      "sim: connection 1 closed by the host\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, PrinterErrorCodeRaisesItsReason) {
  AddNetworkQueue("printererror", {"--error", "060202"});
  ASSERT_NE(0, RunJob("printererror", kReportLevels,
                      kWakeUpPause));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0001\n" +
                DefaultMarkers(),
            cupsd().PrinterAttributes("printererror"));
}

TEST_F(SocketBackendTest, UsedUpRibbonRaisesTheRibbonReason) {
  AddNetworkQueue("usedup", {"--remaining", "0", "--total", "500"});
  ASSERT_NE(0, RunJob("usedup", kReportLevels, kWakeUpPause));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0005\n" +
                Markers("0", "Ink Ribbon = 0 / 500",
                        "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("usedup"));
}

TEST_F(SocketBackendTest, UnknownErrorCodeRaisesTheUndefinedErrorReason) {
  AddNetworkQueue("unknown", {"--error", "112233"});
  ASSERT_NE(0, RunJob("unknown", kReportStatus, kWakeUpPause));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n",
            cupsd().PrinterAttributes("unknown"));
}

TEST_F(SocketBackendTest, PrinterThatWakesAfterTwoQueriesIsWaitedFor) {
  AddNetworkQueue("sleepy", {"--wake-after", "2"});
  int job = RunJob("sleepy", kReportLevels,
                   kWakeUpPause + 2 * kRetryPause);
  ASSERT_NE(0, job);
  EXPECT_EQ("#retry_status=[wake_up=retrying(1/60)]\n"
            "#retry_status=[wake_up=retrying(2/60)]\n"
            "#retry_status=[wake_up=fulfilled(2/60)]\n",
            cupsd().RetryStatusLines(job));
  EXPECT_EQ("printer-state-reasons=none\n" + DefaultMarkers(),
            cupsd().PrinterAttributes("sleepy"));
}

TEST_F(SocketBackendTest, ReplyInPiecesIsGathered) {
  AddNetworkQueue("pieces", {"--split", "100+92"});
  ASSERT_NE(0, RunJob("pieces", kReportLevels, kWakeUpPause));
  EXPECT_EQ("printer-state-reasons=none\n" + DefaultMarkers(),
            cupsd().PrinterAttributes("pieces"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes in pieces 100,92\n"
      "sim: connection 1 closed by the host\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, SecondJobWithdrawsTheReasonsOfTheFirst) {
  AddNetworkQueue("twice", {"--error", "060202", "--connection",
                            "2:error=000000"});
  ASSERT_NE(0, RunJob("twice", kReportStatus, kWakeUpPause));
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0001\n",
            cupsd().PrinterAttributes("twice"));
  ASSERT_NE(0, RunJob("twice", kReportStatus, kWakeUpPause));
  EXPECT_EQ("printer-state-reasons=none\n", cupsd().PrinterAttributes("twice"));
  EXPECT_EQ("sim: connection 1 from 127.0.0.1\n" + AnsweredQueryLog() +
                "sim: connection 1 closed by the host\n"
                "sim: connection 2 from 127.0.0.1\n" +
                AnsweredQueryLog() + "sim: connection 2 closed by the host\n",
            PrinterLog());
}

TEST_F(SocketBackendTest, BothCommandsInOneJobQueryTwice) {
  AddNetworkQueue("both", {"--remaining", "0"});
  ASSERT_NE(0, RunJob("both", "#CUPS-COMMAND\nReportLevels\nReportStatus\n",
                      kWakeUpPause));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0005\n" +
                Markers("0", "Ink Ribbon = 0 / 350",
                        "InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)"),
            cupsd().PrinterAttributes("both"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes\n"
      "sim: connection 1 closed by the host\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, ConnectionResetMidReplyIsAnUnreachablePrinter) {
  AddNetworkQueue("reset", {"--reset", "100"});
  ASSERT_NE(0, RunJob("reset", kReportLevels,
                      kWakeUpPause + kReadTimeout));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n" +
                UnavailableMarkers(),
            cupsd().PrinterAttributes("reset"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes\n"
      "sim: connection 1 reset after 100 of 192 bytes\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, StalledReplyIsAnUnreachablePrinter) {
  AddNetworkQueue("stall", {"--stall", "100"}, "waiteof=false");
  ASSERT_NE(0, RunJob("stall", kReportLevels,
                      kWakeUpPause + kReadTimeout));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n" +
                UnavailableMarkers(),
            cupsd().PrinterAttributes("stall"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes\n"
      "sim: printer hangs after 100 of 192 bytes\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, PrinterThatNeverAnswersIsUnreachable) {
  AddNetworkQueue("mute", {"--hang"}, "waiteof=false");
  ASSERT_NE(0, RunJob("mute", kReportLevels,
                      kWakeUpPause + kReadTimeout));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n" +
                UnavailableMarkers(),
            cupsd().PrinterAttributes("mute"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: printer hangs: it reads and answers nothing\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, RefusedConnectionIsAnUnreachablePrinter) {
  AddNetworkQueue("refused", {"--accept", "0"}, "contimeout=1");
  // contimeout counts from the backend's start, so after its SNMP
  // look-ups the first refused connection ends it: "The printer is not
  // responding", CUPS_BACKEND_FAILED, and the scheduler's error policy
  // (abort-job here) aborts the job.  The filter has made no wait of its
  // own by then: its drain and read fail at once on the closed channels.
  ASSERT_NE(0, RunJob("refused", kReportLevels, 0, IPP_JSTATE_ABORTED));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n" +
                UnavailableMarkers(),
            cupsd().PrinterAttributes("refused"));
  EXPECT_EQ("sim: refusing connections\n", PrinterLog());
}

}  // namespace
