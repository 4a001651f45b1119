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

// The whole story of one job, written out: the readable example of this
// file.  A good printer, asked for its levels through a stock socket queue:
// the queue lists no reason and publishes the ribbon; the printer saw one
// connection with the wake-up command and one query, which it answered.
TEST_F(SocketBackendTest, GoodPrinterGoldenJob) {
  AddNetworkQueue("good", SimPrinter());
  ASSERT_NE(0, RunSocketJob("good", kReportLevels, kWakeUpPauseSeconds));
  EXPECT_EQ(
      "printer-state-reasons=none\n"
      "marker-colors=#00FF00\n"
      "marker-levels=35\n"
      "marker-message=Ink Ribbon = 123 / 350\n"
      "marker-names=InkSheetType: PV-R31A(GX) 13x18(5x7\xe2\x80\xb3)\n"
      "marker-types=ink-ribbon\n",
      cupsd().PrinterAttributes("good"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes: power 00, error 00 00 00, sheet 84 10, ribbon "
      "123/350\n"
      "sim: connection 1 closed by the host\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, PrinterErrorCodeRaisesItsReason) {
  SimPrinter printer = SimPrinter().Error(0x060202);
  AddNetworkQueue("printererror", printer);
  ASSERT_NE(0, RunSocketJob("printererror", kReportLevels, kWakeUpPauseSeconds));
  EXPECT_EQ(Shown("com.quillaroth-error0001", printer, "35", kSheetPvR31aGx),
            cupsd().PrinterAttributes("printererror"));
  EXPECT_EQ(ConnectionLog(1, QueryLog(printer)), PrinterLog());
}

TEST_F(SocketBackendTest, UsedUpRibbonRaisesTheRibbonReason) {
  SimPrinter printer = SimPrinter().Total(500).Remaining(0);
  AddNetworkQueue("usedup", printer);
  ASSERT_NE(0, RunSocketJob("usedup", kReportLevels, kWakeUpPauseSeconds));
  EXPECT_EQ(Shown("com.quillaroth-error0005", printer, "0", kSheetPvR31aGx),
            cupsd().PrinterAttributes("usedup"));
}

TEST_F(SocketBackendTest, UnknownErrorCodeRaisesTheUndefinedErrorReason) {
  AddNetworkQueue("unknown", SimPrinter().Error(0x112233));
  ASSERT_NE(0, RunSocketJob("unknown", kReportStatus, kWakeUpPauseSeconds));
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n",
            cupsd().PrinterAttributes("unknown"));
}

TEST_F(SocketBackendTest, PrinterThatWakesAfterTwoQueriesIsWaitedFor) {
  SimPrinter printer = SimPrinter().WakeAfter(2);
  AddNetworkQueue("sleepy", printer);
  int job = RunSocketJob("sleepy", kReportLevels, kWakeUpPauseSeconds + 2 * kRetrySleep);
  ASSERT_NE(0, job);
  EXPECT_EQ(
      "#retry_status=[wake_up=retrying(1/60)]\n"
      "#retry_status=[wake_up=retrying(2/60)]\n"
      "#retry_status=[wake_up=fulfilled(2/60)]\n",
      cupsd().RetryStatusLines(job));
  EXPECT_EQ(Shown("none", printer, "35", kSheetPvR31aGx),
            cupsd().PrinterAttributes("sleepy"));
  std::string asleep = "sim: cmd 1b 56 32 31\n" + printer.SimReplyLine(true);
  EXPECT_EQ(ConnectionLog(1, asleep + asleep + QueryLog(printer)),
            PrinterLog());
}

TEST_F(SocketBackendTest, ReplyInPiecesIsGathered) {
  SimPrinter printer = SimPrinter().Split({100, 92});
  AddNetworkQueue("pieces", printer);
  ASSERT_NE(0, RunSocketJob("pieces", kReportLevels, kWakeUpPauseSeconds));
  EXPECT_EQ(Shown("none", printer, "35", kSheetPvR31aGx),
            cupsd().PrinterAttributes("pieces"));
  EXPECT_EQ(ConnectionLog(1, QueryLog(printer)), PrinterLog());
}

TEST_F(SocketBackendTest, SecondJobWithdrawsTheReasonsOfTheFirst) {
  SimPrinter first = SimPrinter().Error(0x060202);
  AddNetworkQueue("twice", first, {"--connection", "2:error=000000"});
  ASSERT_NE(0, RunSocketJob("twice", kReportStatus, kWakeUpPauseSeconds));
  ASSERT_EQ("printer-state-reasons=com.quillaroth-error0001\n",
            cupsd().PrinterAttributes("twice"));
  ASSERT_NE(0, RunSocketJob("twice", kReportStatus, kWakeUpPauseSeconds));
  EXPECT_EQ("printer-state-reasons=none\n", cupsd().PrinterAttributes("twice"));
  EXPECT_EQ(ConnectionLog(1, QueryLog(first)) +
                ConnectionLog(2, QueryLog(SimPrinter())),
            PrinterLog());
}

TEST_F(SocketBackendTest, BothCommandsInOneJobQueryTwice) {
  SimPrinter printer = SimPrinter().Remaining(0);
  AddNetworkQueue("both", printer);
  ASSERT_NE(0, RunSocketJob("both", kBothCommands,
                            kWakeUpPauseSeconds));
  EXPECT_EQ(Shown("com.quillaroth-error0005", printer, "0", kSheetPvR31aGx),
            cupsd().PrinterAttributes("both"));
  EXPECT_EQ(ConnectionLog(1, QueryLog(printer) + QueryLog(printer)),
            PrinterLog());
}

TEST_F(SocketBackendTest, ConnectionResetMidReplyIsAnUnreachablePrinter) {
  AddNetworkQueue("reset", SimPrinter(), {"--reset", "100"});
  ASSERT_NE(0, RunSocketJob("reset", kReportLevels, kWakeUpPauseSeconds + kReadTimeout));
  EXPECT_EQ(UnreachableShown(), cupsd().PrinterAttributes("reset"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n" +
          QueryLog(SimPrinter()) +
          "sim: connection 1 reset after 100 of 192 bytes\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, StalledReplyIsAnUnreachablePrinter) {
  AddNetworkQueue("stall", SimPrinter(), {"--stall", "100"}, "waiteof=false");
  ASSERT_NE(0, RunSocketJob("stall", kReportLevels, kWakeUpPauseSeconds + kReadTimeout));
  EXPECT_EQ(UnreachableShown(), cupsd().PrinterAttributes("stall"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n" +
          QueryLog(SimPrinter()) +
          "sim: printer hangs after 100 of 192 bytes\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, PrinterThatNeverAnswersIsUnreachable) {
  AddNetworkQueue("mute", SimPrinter(), {"--hang"}, "waiteof=false");
  ASSERT_NE(0, RunSocketJob("mute", kReportLevels, kWakeUpPauseSeconds + kReadTimeout));
  EXPECT_EQ(UnreachableShown(), cupsd().PrinterAttributes("mute"));
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: printer hangs: it reads and answers nothing\n",
      PrinterLog());
}

TEST_F(SocketBackendTest, RefusedConnectionIsAnUnreachablePrinter) {
  AddNetworkQueue("refused", SimPrinter(), {"--accept", "0"}, "contimeout=1");
  // contimeout counts from the backend's start, so after its SNMP
  // look-ups the first refused connection ends it: "The printer is not
  // responding", CUPS_BACKEND_FAILED, and the scheduler's error policy
  // (abort-job here) aborts the job.  The filter has made no wait of its
  // own by then: its drain and read fail at once on the closed channels.
  ASSERT_NE(0, RunSocketJob("refused", kReportLevels, 0, IPP_JSTATE_ABORTED,
                            "stopped with status 1."));
  EXPECT_EQ(UnreachableShown(), cupsd().PrinterAttributes("refused"));
  EXPECT_EQ("sim: refusing connections\n", PrinterLog());
}

}  // namespace
