// Command jobs through CUPS' own usb backend, on the emulated USB printer.
//
// The private scheduler's backend folder gets the wrapper backend "usb",
// which runs the system's usb backend on the emulated libusb-1.0 (sim/usb),
// and the printer's script beside it (bin/backend/usb-printer), rewritten
// before each job from the test's SimPrinter.  The queues point at the
// device URI that the backend makes for the printer.  Besides the queue's
// attributes over IPP, each test checks what the printer received and
// answered (the emulation's "sim:" and "usb:" lines in the job's log) and
// that the job ended within its bound.
//
// The bound of a job is the filter's own waits plus the backend's, plus 3 s
// for the scheduler: 0.5 s after the wake-up command, 5 s for each drain
// that goes unanswered (one after the wake-up and one per query), 1 s per
// wake-up retry and per failed back-channel read; 5 s for each device scan
// that misses the printer, up to 3 s for the backend's side-channel thread
// and 7 + 1 s for its read thread once the job's data has ended.

#include <cups/ipp.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/e2e/cupsd_test.h"
#include "tests/support/expected_trace.h"
#include "tests/support/sim_printer.h"
#include "tests/support/text.h"

namespace {

const char kUsbUri[] = "usb://Quillaroth/Simulated%20Printer?serial=SIM0001";

// The usb backend's own waits, in seconds (the filter's are in the
// fixture's header).
constexpr double kRescanSleep = 5.0;
constexpr double kSideChannelThreadWait = 3.0;
constexpr double kReadThreadWait = 7.0 + 1.0;

// What a job waits for: by default one query, answered at once.
struct JobWaits {
  int queries = 1;
  int retry_sleeps = 0;
  int failed_reads = 0;
  int missed_scans = 0;

  JobWaits& Queries(int n) { queries = n; return *this; }
  JobWaits& RetrySleeps(int n) { retry_sleeps = n; return *this; }
  JobWaits& FailedReads(int n) { failed_reads = n; return *this; }
  JobWaits& MissedScans(int n) { missed_scans = n; return *this; }
};

// The longest that a job with these waits may take, in seconds.
double JobBound(const JobWaits& waits) {
  return kWakeUpPauseSeconds + (1 + waits.queries) * kDrainTimeout +
         waits.retry_sleeps * kRetrySleep + waits.failed_reads * kReadTimeout +
         waits.missed_scans * kRescanSleep + kSideChannelThreadWait +
         kReadThreadWait + kSchedulerSlack;
}

// The printer of most tests: 123 of 500 prints left on a PV-R31A(GX) sheet.
SimPrinter Ribbon() { return SimPrinter().Total(500).Remaining(123); }

// The script that makes the emulated printer this simulated one, then the
// device's own lines.
std::string Script(const SimPrinter& printer, const std::string& device = "") {
  return printer.UsbScript() + device;
}

// What the printer logs for the wake-up command, and for the first n
// printer-information queries with its answers.
const char kWakeUp[] = "sim: cmd 1b 45 57 55\n";
const char kQuery[] = "sim: cmd 1b 56 32 31\n";
std::string Queries(const SimPrinter& printer, int n) {
  std::string lines = kWakeUp;
  for (int query = 1; query <= n; query++)
    lines += kQuery + printer.SimAnswerLines(query);
  return lines;
}

class UsbBackendTest : public CupsdTest {
 protected:
  // Puts the wrapper backend into the scheduler's backend folder, and the
  // device-listing helper that lpinfo needs into its daemon folder.
  void SetUp() override {
    CupsdTest::SetUp();
    if (HasFatalFailure() || IsSkipped()) return;
#ifdef QUILLAROTH_USB_SANITIZED
    GTEST_SKIP() << "the emulated libusb is built with sanitizers, which CUPS' "
                    "uninstrumented usb backend cannot load";
#endif
    if (access(USB_REAL_BACKEND, X_OK) != 0)
      GTEST_SKIP() << "no " << USB_REAL_BACKEND << " (install cups)";
    namespace fs = std::filesystem;
    fs::path wrapper = fs::path(cupsd().root()) / "bin/backend/usb";
    std::error_code error;
    fs::copy_file(USB_WRAPPER_PATH, wrapper,
                  fs::copy_options::overwrite_existing, error);
    ASSERT_FALSE(error) << "copying " << USB_WRAPPER_PATH << ": "
                        << error.message();
    // Not world-executable: cupsd runs it as root, as its own usb backend.
    fs::permissions(wrapper, fs::perms(0744), error);
    ASSERT_FALSE(error) << error.message();
    fs::path deviced = fs::path(cupsd().root()) / "bin/daemon/cups-deviced";
    if (!fs::exists(fs::symlink_status(deviced)))
      fs::create_symlink(CUPS_DEVICED_PATH, deviced, error);
    ASSERT_FALSE(error) << "linking " << CUPS_DEVICED_PATH << ": "
                        << error.message();
    WriteScript("");
  }

  // Writes the printer's script for the next job.
  void WriteScript(const std::string& text) {
    std::ofstream file(cupsd().root() + "/bin/backend/usb-printer",
                       std::ios::binary | std::ios::trunc);
    file << text;
    ASSERT_TRUE(file.good());
  }

  // Adds a queue on the emulated printer, makes it the simulated printer
  // with the device's own script lines, and runs a command job (see
  // RunUsbJob).
  int RunJobOnPrinter(const std::string& queue, const SimPrinter& printer,
                      const std::string& device, const std::string& commands,
                      const JobWaits& waits = JobWaits()) {
    AddQueue(queue, kUsbUri);
    WriteScript(Script(printer, device));
    return RunUsbJob(queue, commands, waits);
  }

  // Runs a ReportLevels job on a printer whose reply does not reach the
  // filter (one failed read), and checks that the queue shows the printer
  // unavailable.  Returns the job's id (0 on failure).
  int RunUnansweredJob(const std::string& queue, const SimPrinter& printer,
                       const std::string& device) {
    int job = RunJobOnPrinter(queue, printer, device, kReportLevels,
                              JobWaits().FailedReads(1));
    EXPECT_EQ(UnreachableShown(), Attributes(queue));
    return job;
  }

  // The queue's printer-state-reasons and marker-* attributes.
  std::string Attributes(const std::string& queue) {
    return cupsd().PrinterAttributes(queue);
  }

  // Runs a command job through the usb backend (RunJob) within the bound of
  // its waits; checks that it completed and that the filter and the backend
  // exited 0.  Returns its id (0 on failure, which has been reported).
  int RunUsbJob(const std::string& queue, const std::string& commands,
                const JobWaits& waits = JobWaits()) {
    JobRun run = RunJob(queue, commands, JobBound(waits), "usb");
    if (run.id == 0) return 0;
    EXPECT_EQ(ExpectedExits(run.id, "usb"), cupsd().ProcessExits(run.id));
    return run.state == IPP_JSTATE_COMPLETED ? run.id : 0;
  }

  // What the printer received and answered.
  std::string PrinterLines(int job) { return cupsd().JobLines(job, "sim: "); }
  // The bulk IN transfers, as the device saw them end.
  std::string InTransfers(int job) {
    return cupsd().JobLines(job, "usb: in ") + cupsd().JobLines(job, "usb: unplugged");
  }
  // The back-channel writes of the backend's read thread.
  std::string BackChannelWrites(int job) {
    constexpr std::string_view kRead = "Read ";
    constexpr std::string_view kWrite = " bytes of back-channel data...";
    std::string writes;
    for (const std::string& message : cupsd().JobMessages(job))
      if (StartsWith(message, kRead) && message.size() > kWrite.size() &&
          EndsWith(message, kWrite))
        writes += message + "\n";
    return writes;
  }
};

// lpinfo lists the printer as the usb backend found it.
TEST_F(UsbBackendTest, LpinfoListsTheEmulatedPrinter) {
  ProgramResult lpinfo = RunProgram({"lpinfo", "-h", cupsd().address(), "-l",
                                     "--include-schemes", "usb", "-v"});
  EXPECT_EQ(0, lpinfo.status) << lpinfo.Describe();
  EXPECT_EQ(
      "Device: uri = usb://Quillaroth/Simulated%20Printer?serial=SIM0001\n"
      "        class = direct\n"
      "        info = Quillaroth Simulated Printer\n"
      "        make-and-model = Quillaroth Simulated Printer\n"
      "        device-id = MFG:Quillaroth;MDL:Simulated Printer;"
      "CMD:QUILLAROTH-ESC;CLS:PRINTER;DES:Quillaroth Simulated Printer;\n"
      "        location = \n",
      lpinfo.out);
}

// The readable example: a good printer, its script and every line of its
// log written out.
TEST_F(UsbBackendTest, GoodPrinterHasNoReasonsAndPublishesItsRibbon) {
  AddQueue("usb_good", "usb://Quillaroth/Simulated%20Printer?serial=SIM0001");
  WriteScript("total=500\nremaining=123\nerror=000000\nsheet=8410\n");
  int job = RunUsbJob("usb_good", "#CUPS-COMMAND\nReportLevels\n");
  ASSERT_NE(0, job);
  EXPECT_EQ("printer-state-reasons=none\n"
            "marker-colors=#00FF00\n"
            "marker-levels=24\n"
            "marker-message=Ink Ribbon = 123 / 500\n"
            "marker-names=InkSheetType: PV-R31A(GX) 13x18(5x7\u2033)\n"
            "marker-types=ink-ribbon\n",
            Attributes("usb_good"));
  EXPECT_EQ("sim: cmd 1b 45 57 55\n"
            "sim: cmd 1b 56 32 31\n"
            "sim: reply 192 bytes: power 00, error 00 00 00, sheet 84 10, "
            "ribbon 123/500\n",
            PrinterLines(job));
  EXPECT_EQ("usb: open (handle 1)\n"
            "usb: claim interface 0\n"
            "usb: interface 0 alternate setting 1\n"
            "usb: GET_DEVICE_ID\n"
            "usb: in 192 bytes (64+64+64+0)\n"
            "usb: release interface 0\n"
            "usb: close (handle 1)\n",
            cupsd().JobLines(job, "usb: "));
  EXPECT_EQ("Read 192 bytes of back-channel data...\n", BackChannelWrites(job));
}

TEST_F(UsbBackendTest, PrinterErrorCodeRaisesItsReason) {
  SimPrinter printer =
      SimPrinter().Total(350).Remaining(300).Error(0x060202).Sheet(0x8f00);
  int job = RunJobOnPrinter("usb_error", printer, "", kReportLevels);
  ASSERT_NE(0, job);
  EXPECT_EQ(Shown("com.quillaroth-error0001", printer, "85", kSheetPvR32a),
            Attributes("usb_error"));
  EXPECT_EQ(Queries(printer, 1), PrinterLines(job));
}

TEST_F(UsbBackendTest, UsedUpRibbonRaisesTheRibbonReason) {
  SimPrinter printer = SimPrinter().Total(500).Remaining(0).Sheet(0x8400);
  ASSERT_NE(0, RunJobOnPrinter("usb_usedup", printer, "", kReportLevels));
  EXPECT_EQ(Shown("com.quillaroth-error0005", printer, "0", kSheetPvR31a),
            Attributes("usb_usedup"));
}

TEST_F(UsbBackendTest, UnknownErrorCodeRaisesTheUndefinedErrorReason) {
  SimPrinter printer = Ribbon().Error(0x112233);
  int job = RunJobOnPrinter("usb_unknown", printer, "", kReportStatus);
  ASSERT_NE(0, job);
  EXPECT_EQ("printer-state-reasons=com.quillaroth-error0023\n",
            Attributes("usb_unknown"));
  EXPECT_EQ(Queries(printer, 1), PrinterLines(job));
}

TEST_F(UsbBackendTest, PrinterThatWakesAfterTwoQueriesIsWaitedFor) {
  SimPrinter printer = Ribbon().WakeAfter(2);
  int job = RunJobOnPrinter("usb_sleepy", printer, "", kReportLevels,
                            JobWaits().Queries(3).RetrySleeps(2));
  ASSERT_NE(0, job);
  EXPECT_EQ("#retry_status=[wake_up=retrying(1/60)]\n"
            "#retry_status=[wake_up=retrying(2/60)]\n"
            "#retry_status=[wake_up=fulfilled(2/60)]\n",
            cupsd().RetryStatusLines(job));
  EXPECT_EQ(Shown("none", printer, "24", kSheetPvR31aGx),
            Attributes("usb_sleepy"));
  EXPECT_EQ(Queries(printer, 3), PrinterLines(job));
}

// Pieces of a reply end with a short packet or a zero-length one, so that
// each is a bulk IN transfer of its own, passed on as one back-channel
// write; a lone zero-length packet is an empty transfer that the backend
// does not pass on.
TEST_F(UsbBackendTest, ReplyInSeveralTransfersAndPackets) {
  SimPrinter printer = Ribbon().Split({64, 100, 28});
  int job = RunJobOnPrinter("usb_split", printer, "empty=1\n", kReportLevels);
  ASSERT_NE(0, job);
  EXPECT_EQ(Shown("none", printer, "24", kSheetPvR31aGx),
            Attributes("usb_split"));
  EXPECT_EQ(Queries(printer, 1), PrinterLines(job));
  EXPECT_EQ("usb: in 0 bytes (0)\n"
            "usb: in 64 bytes (64+0)\n"
            "usb: in 100 bytes (64+36)\n"
            "usb: in 28 bytes (28)\n",
            InTransfers(job));
  EXPECT_EQ("Read 64 bytes of back-channel data...\n"
            "Read 100 bytes of back-channel data...\n"
            "Read 28 bytes of back-channel data...\n",
            BackChannelWrites(job));
}

// Protocol 1 has no bulk IN endpoint: the backend answers the probe one-way
// and the filter asks nothing.
TEST_F(UsbBackendTest, OneWayDeviceReportsUnavailableLevelsAndState) {
  int job = RunJobOnPrinter("usb_oneway", Ribbon(), "oneway\n", kBothCommands,
                            JobWaits().Queries(0));
  ASSERT_NE(0, job);
  EXPECT_EQ(UnreachableShown(), Attributes("usb_oneway"));
  EXPECT_EQ(Queries(Ribbon(), 0), PrinterLines(job));
  EXPECT_EQ("usb: open (handle 1)\n"
            "usb: claim interface 0\n"
            "usb: GET_DEVICE_ID\n"
            "usb: release interface 0\n"
            "usb: close (handle 1)\n",
            cupsd().JobLines(job, "usb: "));
}

TEST_F(UsbBackendTest, SecondJobWithdrawsTheReasonsOfTheFirst) {
  SimPrinter first = Ribbon().Total(500).Remaining(400).Error(0x060202);
  ASSERT_NE(0, RunJobOnPrinter("usb_twice", first, "", kReportLevels));
  ASSERT_EQ(Shown("com.quillaroth-error0001", first, "80", kSheetPvR31aGx),
            Attributes("usb_twice"));

  // The printer has been seen to and its ribbon changed.
  SimPrinter second = SimPrinter().Total(350).Remaining(350).Sheet(0x8f10);
  WriteScript(Script(second));
  ASSERT_NE(0, RunUsbJob("usb_twice", kReportLevels));
  EXPECT_EQ(Shown("none", second, "100", kSheetPvR32aGx),
            Attributes("usb_twice"));
}

TEST_F(UsbBackendTest, BothCommandsInOneJobQueryTheirOwnReplies) {
  SimPrinter printer = Ribbon();
  SimPrinter second_reply = Ribbon().Error(0x0b0507);
  int job = RunJobOnPrinter("usb_both", printer, "reply=2:error=0b0507\n",
                            kBothCommands, JobWaits().Queries(2));
  ASSERT_NE(0, job);
  // The levels come from the first reply, the reasons from the second.
  EXPECT_EQ(Shown("com.quillaroth-error0011", printer, "24", kSheetPvR31aGx),
            Attributes("usb_both"));
  EXPECT_EQ(Queries(printer, 1) + kQuery + second_reply.SimAnswerLines(1),
            PrinterLines(job));
}

// The faults.  A printer that vanishes or says nothing is reported as
// unavailable; the filter exits 0 and nothing hangs.  On USB a reply that
// breaks off with a reset (reset=N) is the device unplugged after N bytes.

TEST_F(UsbBackendTest, PrinterUnpluggedInTheMiddleOfAReply) {
  int job = RunUnansweredJob("usb_unplug", Ribbon(), "reset=100\n");
  ASSERT_NE(0, job);
  EXPECT_EQ(
      Queries(Ribbon(), 1) + "sim: device unplugs after 100 of 192 bytes\n",
      PrinterLines(job));
  EXPECT_EQ("usb: in 100 bytes (64+36)\n"
            "usb: unplugged\n",
            InTransfers(job));
  EXPECT_EQ("Read 100 bytes of back-channel data...\n", BackChannelWrites(job));
}

// The backend finds no printer, waits 5 s and looks again.
TEST_F(UsbBackendTest, PrinterThatAppearsAfterTheFirstScanIsWaitedFor) {
  int job = RunJobOnPrinter("usb_late", Ribbon(), "appear=2\n", kReportLevels,
                            JobWaits().MissedScans(1));
  ASSERT_NE(0, job);
  EXPECT_EQ(Shown("none", Ribbon(), "24", kSheetPvR31aGx),
            Attributes("usb_late"));
  EXPECT_EQ(Queries(Ribbon(), 1), PrinterLines(job));
  EXPECT_EQ("libusb_get_device_list=0\nlibusb_get_device_list=1\n",
            cupsd().JobLines(job, "libusb_get_device_list="));
}

TEST_F(UsbBackendTest, PrinterThatNeverAnswers) {
  SimPrinter printer = Ribbon().FailAt(1);
  int job = RunUnansweredJob("usb_silent", printer, "");
  ASSERT_NE(0, job);
  EXPECT_EQ(Queries(printer, 1), PrinterLines(job));
  EXPECT_EQ("", InTransfers(job));
}

// 192 bytes fill three 64-byte packets; without the zero-length packet that
// should follow, the backend's 512-byte transfer waits for more and the
// reply never reaches the filter.
TEST_F(UsbBackendTest, ReplyWithoutItsZeroLengthPacketIsLost) {
  int job = RunUnansweredJob("usb_nozlp", Ribbon(), "zlp=0\n");
  ASSERT_NE(0, job);
  EXPECT_EQ(Queries(Ribbon(), 1), PrinterLines(job));
  EXPECT_EQ("", BackChannelWrites(job));
}

}  // namespace
