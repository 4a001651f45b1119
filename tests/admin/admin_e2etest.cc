// quillaroth enable, status and refresh against a real scheduler.

#include <gtest/gtest.h>
#include <cups/cups.h>


#include <regex>
#include <string>
#include <vector>

#include "tests/admin/admin_test.h"
#include "tests/admin/ppd_shapes.h"
#include "tests/support/files.h"
#include "tests/support/sim_printer.h"
#include "tests/support/subprocess.h"

namespace {

// The driver's print filter lines of the queues that enable changes.
const std::string kJpegFilter =
    std::string("*cupsFilter: \"image/jpeg 0 ") + kDriverFilter + "\"\n";
const std::string kJpegFilter2 =
    std::string("*cupsFilter2: \"image/jpeg application/vnd.vendor-raster 0 ") +
    kDriverFilter + "\"\n";

// What the filter reports for the simulated printer's default ribbon.
constexpr char kDefaultRibbon[] =
    "printer-state-reasons=none\n"
    "marker-colors=#00FF00\n"
    "marker-levels=35\n"
    "marker-message=Ink Ribbon = 123 / 350\n"
    "marker-names=InkSheetType: PV-R31A(GX) 13x18(5x7\xe2\x80\xb3)\n"
    "marker-types=ink-ribbon\n";

class EnableTest : public AdminTest {
 protected:
  // A queue on the simulated printer with PPD, its driver's filter
  // installed; enable, then enable again, then disable: the print path of
  // JPEG stays the scheduler's own, a command job reaches the printer
  // through commandtoquillaroth, and disable gives back the PPD.
  void EnableAndDisable(const std::string& queue, const std::string& ppd) {
    InstallVendorFilter();
    AddQueueWithPpd(queue, SimPrinter().DeviceUri(queue), ppd);
    std::string original = Ppd(queue);
    std::string print_path = PrintChain(queue, "image/jpeg");
    EXPECT_NE(std::string::npos, print_path.find(kDriverFilter)) << print_path;

    ProgramResult enable = Quillaroth({"enable", queue});
    EXPECT_EQ(0, enable.status) << enable.Describe();
    EXPECT_EQ(queue + ": enabled: its command jobs now run commandtoquillaroth "
                      "('quillaroth refresh " + queue + "' asks the printer)\n",
              enable.out);
    std::string enabled = Ppd(queue);
    EXPECT_NE(original, enabled);
    EXPECT_EQ(print_path, PrintChain(queue, "image/jpeg"));

    ProgramResult refresh = Quillaroth({"refresh", "--wait", queue});
    EXPECT_EQ(0, refresh.status) << refresh.Describe();
    EXPECT_EQ(kDefaultRibbon, cupsd().PrinterAttributes(queue));

    ProgramResult again = Quillaroth({"enable", queue});
    EXPECT_EQ(0, again.status);
    EXPECT_EQ(queue + ": already enabled by quillaroth; nothing changed\n",
              again.out);
    EXPECT_EQ(enabled, Ppd(queue));

    ProgramResult disable = Quillaroth({"disable", queue});
    EXPECT_EQ(0, disable.status) << disable.Describe();
    EXPECT_EQ(original, Ppd(queue));
    EXPECT_EQ(print_path, PrintChain(queue, "image/jpeg"));
  }
};

// The change as enable --dry-run shows it, written out: a PPD whose driver
// names its filter with *cupsFilter gets the *cupsFilter form; nothing
// changes on the scheduler.
TEST_F(EnableTest, GoldenDryRun) {
  AddQueueWithPpd("photo", SimPrinter().DeviceUri("photo"),
                  std::string(kHeader) + kJpegFilter + kTrailer);
  std::string original = Ppd("photo");
  ProgramResult dry = Quillaroth({"enable", "--dry-run", "photo"});
  EXPECT_EQ(0, dry.status) << dry.Describe();
  EXPECT_EQ("", dry.err);
  EXPECT_EQ(
      "--- a/photo.ppd\n"
      "+++ b/photo.ppd\n"
      "@@ -12,3 +12,26 @@\n"
      " *PSVersion: \"(3010.000) 0\"\n"
      " *cupsFilter: \"image/jpeg 0 quillaroth-test-raster\"\n"
      " *% End of vendor.ppd\n"
      "+*% quillaroth enable: begin\n"
      "+*cupsFilter: \"application/vnd.cups-command 0 commandtoquillaroth\"\n"
      "+*cupsCommands: \"ReportLevels ReportStatus\"\n"
      "+*cupsIPPReason com.quillaroth-error0001/Printer error 0001 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0002/Printer error 0002 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0003/Printer error 0003 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0004/Printer error 0004 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0005/Ink ribbon used up: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0006/Printer error 0006 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0007/Printer error 0007 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0008/Printer error 0008 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0009/Printer error 0009 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0010/Printer error 0010 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0011/Printer error 0011 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0012/Printer error 0012 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0013/Printer error 0013 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0014/Printer error 0014 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0018/Printer error 0018 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0020/Printer error 0020 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0021/Printer error 0021 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0022/Printer error 0022 - see the printer's panel: \"\"\n"
      "+*cupsIPPReason com.quillaroth-error0023/Printer not reachable or unknown printer error: \"\"\n"
      "+*% quillaroth enable: end\n",
      dry.out);
  EXPECT_EQ(original, Ppd("photo"));
}

TEST_F(EnableTest, OnlyCupsFilterLines) {
  EnableAndDisable("filter", WholePpd(kJpegFilter));
}

TEST_F(EnableTest, WithCupsFilter2) {
  EnableAndDisable("filter2", WholePpd(kJpegFilter2 + kJpegFilter));
}

TEST_F(EnableTest, WithItsOwnCupsCommands) {
  EnableAndDisable("commands", WholePpd(kJpegFilter +
                                        "*cupsCommands: \"AutoConfigure "
                                        "Clean\"\n"));
}

// The simulator's PPD runs the filter already: enable changes nothing.
TEST_F(EnableTest, AlreadyEnabled) {
  AddSimQueue("sim", SimPrinter());
  std::string original = Ppd("sim");
  ProgramResult enable = Quillaroth({"enable", "sim"});
  EXPECT_EQ(0, enable.status);
  EXPECT_EQ(
      "sim: the PPD already runs commandtoquillaroth for command jobs; "
      "nothing changed\n",
      enable.out);
  EXPECT_EQ(original, Ppd("sim"));
  ProgramResult disable = Quillaroth({"disable", "sim"});
  EXPECT_EQ(0, disable.status);
  EXPECT_EQ("sim: not enabled by quillaroth; nothing changed\n", disable.out);
  EXPECT_EQ(original, Ppd("sim"));
}

// The whole table, written out: a printer with 120 of 350 prints left, one
// that shows an error, and one whose levels were never read.
TEST_F(AdminTest, StatusGoldenTable) {
  AddSimQueue("booth-1", SimPrinter().Total(350).Remaining(120).Sheet(0x8f10));
  AddSimQueue("booth-2", SimPrinter().Error(0x060202).Remaining(40));
  AddSimQueue("booth-3", SimPrinter());
  ASSERT_NE(0, RunCommandJob("booth-1", kBothCommands));
  ASSERT_NE(0, RunCommandJob("booth-2", kBothCommands));
  ProgramResult status = Quillaroth({"status"});
  EXPECT_EQ(0, status.status);
  EXPECT_EQ("", status.err);
  EXPECT_EQ(
      "QUEUE    LINK           STATE     LEFT  LEVEL  READ\n"
      "booth-1  quillarothsim  idle   120/350    34%  Ns ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "booth-2  quillarothsim  idle    40/350    11%  Ns ago\n"
      "  ink sheet: PV-R31A(GX) 13x18(5x7\xe2\x80\xb3)\n"
      "  com.quillaroth-error0001: Printer error 0001 - see the printer's "
      "panel\n"
      "booth-3  quillarothsim  idle         -      -  never\n",
      MaskTableAges(status.out));
}

// The JSON document of the same kinds of printer and one that cannot be
// asked (a one-way link).
TEST_F(AdminTest, StatusGoldenJson) {
  AddSimQueue("good", SimPrinter().Total(350).Remaining(120).Sheet(0x8f10));
  AddSimQueue("never", SimPrinter());
  AddQueue("oneway", "quillarothsim://oneway?oneway=1");
  ASSERT_NE(0, RunCommandJob("good", kBothCommands));
  ASSERT_NE(0, RunCommandJob("oneway", kBothCommands));
  ProgramResult status = Quillaroth({"status", "--json"});
  EXPECT_EQ(0, status.status);
  EXPECT_EQ("", status.err);
  EXPECT_EQ(
      "{\"queues\": [\n"
      "  {\n"
      "    \"queue\": \"good\",\n"
      "    \"scheme\": \"quillarothsim\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [],\n"
      "    \"prints_remaining\": 120,\n"
      "    \"prints_total\": 350,\n"
      "    \"level_percent\": 34,\n"
      "    \"ink_sheet\": \"PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\",\n"
      "    \"levels_read_at\": \"TIME\",\n"
      "    \"levels_age_seconds\": AGE\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"never\",\n"
      "    \"scheme\": \"quillarothsim\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [],\n"
      "    \"prints_remaining\": null,\n"
      "    \"prints_total\": null,\n"
      "    \"level_percent\": null,\n"
      "    \"ink_sheet\": null,\n"
      "    \"levels_read_at\": null,\n"
      "    \"levels_age_seconds\": null\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"oneway\",\n"
      "    \"scheme\": \"quillarothsim\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [\n"
      "      {\"keyword\": \"com.quillaroth-error0023\", \"text\": \"Printer not "
      "reachable or unknown printer error\"}\n"
      "    ],\n"
      "    \"prints_remaining\": null,\n"
      "    \"prints_total\": null,\n"
      "    \"level_percent\": null,\n"
      "    \"ink_sheet\": null,\n"
      "    \"levels_read_at\": \"TIME\",\n"
      "    \"levels_age_seconds\": AGE\n"
      "  }\n"
      "]}\n",
      MaskJsonTimes(status.out));
}

// By default only the queues whose PPD runs the filter; --all every queue.
TEST_F(AdminTest, StatusListsFilterQueuesUnlessAll) {
  AddSimQueue("photo", SimPrinter());
  AddQueueWithPpd("plain", "socket://127.0.0.1:9", "");
  EXPECT_EQ(
      "QUEUE  LINK           STATE  LEFT  LEVEL  READ\n"
      "photo  quillarothsim  idle      -      -  never\n",
      Quillaroth({"status"}).out);
  EXPECT_EQ(
      "QUEUE  LINK           STATE  LEFT  LEVEL  READ\n"
      "photo  quillarothsim  idle      -      -  never\n"
      "plain  socket         idle      -      -  never\n",
      Quillaroth({"status", "--all"}).out);
}

// The PPDs are read once; a second status makes one request in all.
TEST_F(AdminTest, SecondStatusMakesOneRequest) {
  AddSimQueue("one", SimPrinter());
  AddSimQueue("two", SimPrinter());
  int before = Requests();
  ASSERT_EQ(0, Quillaroth({"status"}).status);
  int first = Requests() - before;
  ASSERT_EQ(0, Quillaroth({"status"}).status);
  int second = Requests() - before - first;
  EXPECT_EQ(3, first);  // CUPS-Get-Printers and two PPDs
  EXPECT_EQ(1, second);
}

TEST_F(AdminTest, StatusOfUnknownQueue) {
  AddSimQueue("photo", SimPrinter());
  ProgramResult status = Quillaroth({"status", "nosuchqueue"});
  EXPECT_EQ(1, status.status);
  EXPECT_EQ("quillaroth: no queue named 'nosuchqueue' on " + Where() + "\n",
            status.err);
  EXPECT_EQ("QUEUE  LINK  STATE  LEFT  LEVEL  READ\n", status.out);
}

TEST_F(AdminTest, NoScheduler) {
  ProgramResult status = Quillaroth({"-h", "127.0.0.1:1", "status"});
  EXPECT_EQ(1, status.status);
  EXPECT_EQ(
      "quillaroth: no scheduler answers at 127.0.0.1:1 (from -h)\n",
      status.err);
  EXPECT_EQ("", status.out);
}

TEST_F(AdminTest, UsageError) {
  ProgramResult status = Quillaroth({"status", "--wait"});
  EXPECT_EQ(2, status.status);
  EXPECT_EQ(
      "quillaroth: unknown option '--wait' for status\n"
      "Try 'quillaroth --help'.\n",
      status.err);
  EXPECT_EQ("", status.out);
}

// refresh --wait submits the command job, waits for it and shows what the
// printer said.
TEST_F(AdminTest, RefreshWaitShowsThePrintersCounts) {
  AddSimQueue("booth", SimPrinter().Total(350).Remaining(120).Sheet(0x8f10));
  ProgramResult refresh = Quillaroth({"refresh", "--wait", "booth"});
  EXPECT_EQ(0, refresh.status) << refresh.Describe();
  EXPECT_EQ(
      "booth: job 1 submitted\n"
      "booth: job 1 completed\n"
      "\n"
      "QUEUE  LINK           STATE     LEFT  LEVEL  READ\n"
      "booth  quillarothsim  idle   120/350    34%  Ns ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n",
      MaskTableAges(std::regex_replace(
          refresh.out, std::regex("booth: job 1 (pending|processing)\n"), "")));
  EXPECT_EQ("", refresh.err);
}

// Queues that cannot take a command job are named with the reason.
TEST_F(AdminTest, RefreshSkipsStoppedAndRejectingQueues) {
  AddSimQueue("stopped", SimPrinter());
  AddSimQueue("rejecting", SimPrinter());
  AddQueueWithPpd("plain", "socket://127.0.0.1:9", "");
  Admin({"cupsdisable", "stopped"});
  Admin({"cupsreject", "rejecting"});
  ProgramResult refresh =
      Quillaroth({"refresh", "stopped", "rejecting", "plain"});
  EXPECT_EQ(1, refresh.status);
  EXPECT_EQ(
      "plain: skipped: it does not use commandtoquillaroth ('quillaroth "
      "enable plain' adds it)\n"
      "rejecting: skipped: the queue is not accepting jobs\n"
      "stopped: skipped: the queue is stopped\n",
      refresh.out);
  EXPECT_EQ("", refresh.err);
}

// A printer that never answers: the second refresh finds the first one's
// job still there and adds none.
TEST_F(AdminTest, RefreshNeverPutsASecondCommandJobOnAQueue) {
  // Nothing listens on port 1: the socket backend keeps trying to connect.
  AddQueueWithPpd("asleep", "socket://127.0.0.1:1", ReadFile(PPD_PATH));
  ProgramResult first = Quillaroth({"refresh", "asleep"});
  EXPECT_EQ(0, first.status);
  EXPECT_EQ("asleep: job 1 submitted\n", first.out);
  ProgramResult second = Quillaroth({"refresh", "asleep"});
  EXPECT_EQ(0, second.status);
  EXPECT_EQ(std::string("asleep: skipped: command job 1 is ") +
                "processing already\n",
            std::regex_replace(second.out, std::regex("is pending already"),
                               "is processing already"));
  Admin({"cancel", "-a", "asleep"});
}

// refresh without --wait comes back at once.
TEST_F(AdminTest, RefreshWithoutWaitReturnsAtOnce) {
  AddSimQueue("quick", SimPrinter().WakeAfter(3));
  double start = Now();
  ProgramResult refresh = Quillaroth({"refresh"});
  EXPECT_LT(Now() - start, 2.0);
  EXPECT_EQ(0, refresh.status);
  EXPECT_EQ("quick: job 1 submitted\n", refresh.out);
  EXPECT_EQ(IPP_JSTATE_COMPLETED, cupsd().WaitForJob(1, 30.0));
}

TEST_F(AdminTest, EnableRefusesUnknownQueue) {
  ProgramResult enable = Quillaroth({"enable", "nosuchqueue"});
  EXPECT_EQ(1, enable.status);
  EXPECT_EQ("quillaroth: no queue named 'nosuchqueue' on " + Where() + "\n",
            enable.err);
}

TEST_F(AdminTest, EnableRefusesIppQueue) {
  AddQueueWithPpd("viaipp", "ipp://127.0.0.1:9/ipp/print",
                  ReadFile(PPD_PATH));
  std::string before = Ppd("viaipp");
  ProgramResult enable = Quillaroth({"enable", "viaipp"});
  EXPECT_EQ(1, enable.status);
  EXPECT_EQ(
      "quillaroth: viaipp: its backend 'ipp' answers no bidirectional link, "
      "so the filter could never read the printer; the usb and socket "
      "backends can\n",
      enable.err);
  EXPECT_EQ(before, Ppd("viaipp"));
}

TEST_F(AdminTest, EnableRefusesQueueWithoutPpd) {
  AddQueueWithPpd("raw", "socket://127.0.0.1:9", "");
  ProgramResult enable = Quillaroth({"enable", "raw"});
  EXPECT_EQ(1, enable.status);
  EXPECT_EQ(
      "quillaroth: raw has no PPD (a raw, driverless or IPP Everywhere "
      "queue): the filter is named in a queue's PPD\n",
      enable.err);
}

// A PPD that libcups cannot read (lpadmin checks what it hands over, so
// this one was damaged where the scheduler keeps it) is refused with
// libcups' reason.
TEST_F(AdminTest, EnableRefusesBrokenPpd) {
  AddQueueWithPpd("broken", "socket://127.0.0.1:9", WholePpd(kJpegFilter));
  std::string before = "*PPD-Adobe: \"4.3\"\nHello\n" + kJpegFilter;
  ASSERT_TRUE(
      WriteFile(cupsd().root() + "/etc/ppd/broken.ppd", before, 0640));
  ProgramResult enable = Quillaroth({"enable", "broken"});
  EXPECT_EQ(1, enable.status);
  EXPECT_EQ(
      "quillaroth: broken: libcups cannot read the PPD: line 2: Missing "
      "asterisk in column 1\n",
      enable.err);
  EXPECT_EQ(before, Ppd("broken"));
}

TEST_F(AdminTest, EnableRefusesClass) {
  AddSimQueue("member", SimPrinter());
  Admin({"lpadmin", "-p", "member", "-c", "booths"});
  ProgramResult enable = Quillaroth({"enable", "booths"});
  EXPECT_EQ(1, enable.status);
  EXPECT_EQ(
      "quillaroth: booths is a class, not a printer: enable each of its "
      "printers\n",
      enable.err);
}

// Without the right to change queues, enable says what it needs and the
// queue keeps its PPD.
TEST_F(AdminTest, EnableWithoutTheRightToChangeQueues) {
  AddQueueWithPpd("photo", "socket://127.0.0.1:9", WholePpd(kJpegFilter));
  std::string before = Ppd("photo");
  std::string error;
  ASSERT_TRUE(cupsd().RestartWith("<Location /admin>\n"
                                  "  AuthType Basic\n"
                                  "  Require user @SYSTEM\n"
                                  "  Order allow,deny\n"
                                  "  Allow from 127.0.0.1\n"
                                  "</Location>\n",
                                  &error))
      << error;
  ProgramResult enable = Quillaroth({"enable", "photo"});
  EXPECT_EQ(1, enable.status);
  EXPECT_EQ(
      "quillaroth: cannot change photo: the scheduler did not allow it: "
      "changing a queue needs root or the scheduler's admin group "
      "(SystemGroup in cups-files.conf, lpadmin on Debian)\n",
      enable.err);
  EXPECT_EQ(before, Ppd("photo"));
}

}  // namespace
