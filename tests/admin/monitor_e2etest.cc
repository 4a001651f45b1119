// quillaroth keeping the levels fresh unattended, against a real scheduler:
// refresh --if-older-than, the purge of finished command jobs, printers that
// never answer, a scheduler that goes away, and the outputs for monitoring.

#include <gtest/gtest.h>
#include <cups/cups.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/admin/admin_test.h"
#include "tests/admin/fleet.h"
#include "tests/support/files.h"
#include "tests/support/sim_printer.h"
#include "tests/support/subprocess.h"

namespace {

// Queues whose levels were just read are left alone; the others refreshed.
TEST_F(AdminTest, IfOlderThanSkipsFreshQueues) {
  AddSimQueue("fresh", SimPrinter());
  AddSimQueue("never", SimPrinter());
  ASSERT_NE(0, RunCommandJob("fresh", kBothCommands));
  ProgramResult refresh = Quillaroth({"refresh", "--if-older-than", "10min"});
  EXPECT_EQ(0, refresh.status);
  EXPECT_EQ("", refresh.err);
  EXPECT_EQ(
      "fresh: skipped: levels read Ns ago, not older than 10m\n"
      "never: job 2 submitted\n",
      std::regex_replace(refresh.out, std::regex("read [0-9]s ago"),
                         "read Ns ago"));
}

// A queue with a print job waiting is busy: an unattended refresh leaves it
// alone, so that the print job waits for no command job.
TEST_F(AdminTest, IfOlderThanLeavesBusyQueuesAlone) {
  AddQueueWithPpd("printing", SimPrinter().DeviceUri("printing"),
                  PrintingPpd());
  std::string path = cupsd().root() + "/jobs/page.txt";
  ASSERT_TRUE(WriteFile(path, "page\n"));
  Admin({"lp", "-d", "printing", "-H", "indefinite", path});
  ProgramResult refresh = Quillaroth({"refresh", "--if-older-than", "90s"});
  EXPECT_EQ(0, refresh.status);
  EXPECT_EQ("printing: skipped: busy with job 1\n", refresh.out);
  EXPECT_EQ((std::vector<int>{1}), Jobs("not-completed"));
}

// Without --if-older-than the command job goes behind the print job.
TEST_F(AdminTest, RefreshWhileAPrintJobIsQueued) {
  AddQueueWithPpd("printing", SimPrinter().DeviceUri("printing"),
                  PrintingPpd());
  std::string path = cupsd().root() + "/jobs/page.txt";
  ASSERT_TRUE(WriteFile(path, "page\n"));
  Admin({"lp", "-d", "printing", "-H", "indefinite", path});
  ProgramResult refresh = Quillaroth({"refresh", "printing"});
  EXPECT_EQ(0, refresh.status);
  EXPECT_EQ("printing: job 2 submitted\n", refresh.out);
}

// A finished command job leaves no history behind.
TEST_F(AdminTest, WaitPurgesTheFinishedCommandJobs) {
  AddSimQueue("booth", SimPrinter());
  ProgramResult refresh = Quillaroth({"refresh", "--wait"});
  EXPECT_EQ(0, refresh.status) << refresh.Describe();
  EXPECT_EQ((std::vector<int>{}), Jobs("completed"));
  EXPECT_EQ((std::vector<int>{}), Jobs("not-completed"));
}

// A printer that never answers, refreshed ten times, holds one command job.
TEST_F(AdminTest, PrinterThatNeverAnswersHoldsOneJob) {
  // Nothing listens on port 1: the socket backend keeps trying.
  AddQueueWithPpd("off", "socket://127.0.0.1:1", ReadFile(PPD_PATH));
  for (int run = 0; run < 10; run++) {
    ProgramResult refresh = Quillaroth({"refresh", "--if-older-than", "0s"});
    EXPECT_EQ(0, refresh.status);
    if (run == 0) EXPECT_EQ("off: job 1 submitted\n", refresh.out);
    else
      EXPECT_EQ("off: skipped: command job 1 is STATE already\n",
                std::regex_replace(refresh.out,
                                   std::regex("is (pending|processing) "),
                                   "is STATE "));
  }
  EXPECT_EQ((std::vector<int>{1}), Jobs("not-completed"));
  Admin({"cancel", "-a", "off"});
}

// The scheduler goes away while refresh waits: a clear message, no hang.
TEST_F(AdminTest, SchedulerRestartedDuringWait) {
  AddSimQueue("slow", SimPrinter().WakeAfter(5));
  Subprocess refresh(QuillarothSetup({"refresh", "--wait", "slow"}));
  // Until the job runs.
  for (int i = 0; i < 100 && Jobs("not-completed").empty(); i++)
    usleep(50 * 1000);
  std::string error;
  ASSERT_TRUE(cupsd().RestartWith("", &error)) << error;
  ExitStatus end = refresh.Wait(60.0);
  EXPECT_FALSE(end.killed) << "quillaroth hung";
  EXPECT_EQ(1, end.ShellStatus());
  EXPECT_LT(end.seconds, 30.0);
}

// --warn-below: one line per queue that needs a look, exit 1.
TEST_F(AdminTest, WarnBelow) {
  AddSimQueue("low", SimPrinter().Total(350).Remaining(12));
  AddSimQueue("fine", SimPrinter().Total(350).Remaining(300));
  AddSimQueue("jammed", SimPrinter().Error(0x060202).Remaining(300));
  ASSERT_NE(0, RunCommandJob("low", kBothCommands));
  ASSERT_NE(0, RunCommandJob("fine", kBothCommands));
  ASSERT_NE(0, RunCommandJob("jammed", kBothCommands));
  ProgramResult warn = Quillaroth({"status", "--warn-below", "20"});
  EXPECT_EQ(1, warn.status);
  EXPECT_EQ(
      "jammed: com.quillaroth-error0001 Printer error 0001 - see the "
      "printer's panel\n"
      "low: 12 prints left (below 20)\n",
      warn.out);
  EXPECT_EQ(0, Quillaroth({"status", "--warn-below", "5", "fine"}).status);
}

// --prometheus --output writes the metrics file whole.
TEST_F(AdminTest, PrometheusToAFile) {
  AddSimQueue("booth", SimPrinter().Total(350).Remaining(120));
  ASSERT_NE(0, RunCommandJob("booth", kBothCommands));
  std::string file = cupsd().root() + "/jobs/quillaroth.prom";
  ProgramResult status =
      Quillaroth({"status", "--prometheus", "--output", file});
  EXPECT_EQ(0, status.status) << status.Describe();
  EXPECT_EQ("", status.out);
  std::string metrics = ReadFile(file);
  EXPECT_NE(std::string::npos,
            metrics.find("quillaroth_prints_remaining{queue=\"booth\"} 120\n"))
      << metrics;
}

// 200 queues, 5 of them using the filter: status and refresh read them all
// in one request, once the PPDs are known.
TEST_F(AdminTest, TwoHundredQueuesInOneRequest) {
  std::string error;
  ASSERT_TRUE(StartFleet(cupsd(), 200, 40, PPD_PATH, &error)) << error;
  for (int q = 40; q <= 200; q += 40)
    ASSERT_NE(0, RunCommandJob(FleetQueue(q), kBothCommands));
  int before = Requests();
  ProgramResult first = Quillaroth({"status", "--all", "--json"});
  ASSERT_EQ(0, first.status) << first.Describe();
  EXPECT_EQ(1 + 200, Requests() - before);  // CUPS-Get-Printers, each PPD
  before = Requests();
  ProgramResult again = Quillaroth({"status", "--all", "--json"});
  EXPECT_EQ(first.out.size(), again.out.size());
  EXPECT_EQ(1, Requests() - before);

  before = Requests();
  ProgramResult status = Quillaroth({"status"});
  EXPECT_EQ(1, Requests() - before);
  EXPECT_EQ(
      "QUEUE      LINK           STATE     LEFT  LEVEL  READ\n"
      "fleet-040  quillarothsim  idle   120/350    34%  Ns ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "fleet-080  quillarothsim  idle   120/350    34%  Ns ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "fleet-120  quillarothsim  idle   120/350    34%  Ns ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "fleet-160  quillarothsim  idle   120/350    34%  Ns ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "fleet-200  quillarothsim  idle   120/350    34%  Ns ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n",
      MaskTableAges(status.out));

  before = Requests();
  ProgramResult refresh =
      Quillaroth({"refresh", "--all", "--if-older-than", "1h"});
  EXPECT_EQ(0, refresh.status);
  EXPECT_EQ(1, Requests() - before);
  std::string expected;
  for (const char* q : {"fleet-040", "fleet-080", "fleet-120", "fleet-160",
                        "fleet-200"})
    expected += std::string(q) +
                ": skipped: levels read Ns ago, not older than 60m\n";
  EXPECT_EQ(expected, std::regex_replace(refresh.out,
                                         std::regex("read [0-9]s ago"),
                                         "read Ns ago"));
}

}  // namespace
