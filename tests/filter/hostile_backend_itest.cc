// The real filter against a backend that misbehaves in every way the CUPS
// channels allow: probe and drain answers with every status, wrong lengths
// and wrong command codes, or none at all; printer replies of every length
// from 0 to 600 bytes in random pieces, cut off by a silent printer or a
// closed back channel; channels and stdout's reader going away mid-run.
//
// Every run must end by exit with the right status, within the time that
// the filter's own time-outs allow, with a consistent trace and exactly the
// expected stderr and stdout.  Random choices come from one seed, printed
// by every test and fixed by default; set QUILLAROTH_HOSTILE_SEED to vary it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "status/printer_info.h"
#include "tests/support/built_tools.h"
#include "tests/support/expected_trace.h"
#include "tests/support/hostile_backend.h"

namespace {

// Slack on top of the time-outs that a run is allowed to wait for.
constexpr double kSlack = 3.0;

// The seed of every random choice in this file.
unsigned Seed() {
  const char* text = getenv("QUILLAROTH_HOSTILE_SEED");
  return text != nullptr ? static_cast<unsigned>(strtoul(text, nullptr, 0))
                         : 20240611u;
}

// A generator seeded for one test, the seed shown in the test's output.
std::mt19937 Random(const char* test) {
  unsigned seed = Seed();
  printf("[ seed     ] %s: QUILLAROTH_HOSTILE_SEED=%u\n", test, seed);
  return std::mt19937(seed);
}

// A side-channel message.
std::string Message(int command, int status, const std::string& data) {
  return HostileBackend::Message(command, status, data);
}

// Starts the filter with the commands on stdin.
std::unique_ptr<HostileBackend> Start(
    const std::string& commands,
    const HostileOptions& options = HostileOptions()) {
  return std::make_unique<HostileBackend>(commands, options);
}

// Expects the next request to be `command` and answers it with `answer`.
void Answer(HostileBackend& backend, int command, const std::string& answer) {
  ASSERT_EQ(command, backend.ReadRequest(10.0));
  ASSERT_TRUE(backend.SendSide(answer));
}

// Answers a drain request with a status.
void AnswerDrain(HostileBackend& backend, int status) {
  Answer(backend, CUPS_SC_CMD_DRAIN_OUTPUT,
         Message(CUPS_SC_CMD_DRAIN_OUTPUT, status, ""));
}

// The probe answer of a bidirectional backend.
const std::string& BidiYes() {
  static const std::string answer =
      Message(CUPS_SC_CMD_GET_BIDI, CUPS_SC_STATUS_OK, "\x01");
  return answer;
}

// Random bytes of a reply; byte 5 (power) is set as asked when it exists.
std::string RandomReply(std::mt19937& random, size_t length, int power) {
  std::string reply(length, '\0');
  for (char& byte : reply) byte = static_cast<char>(random() & 0xff);
  if (length > 5 && power >= 0) reply[5] = static_cast<char>(power);
  return reply;
}

// Random piece sizes that add up to length; no piece is so large that the
// filter's read could not take it whole.
std::vector<size_t> RandomPieces(std::mt19937& random, size_t length) {
  std::vector<size_t> pieces;
  size_t max_pieces = 1 + random() % 6;
  while (length > 0) {
    size_t most = std::min<size_t>(length, 320);
    size_t piece = pieces.size() + 1 >= max_pieces ? most : 1 + random() % most;
    pieces.push_back(piece);
    length -= piece;
  }
  return pieces;
}

// How a short reply ends.
enum class Ending { kClose, kSilence };

// Serves one printer-information reply in pieces, each after the filter has
// read the one before, as the filter would see it: it stops reading at 192
// bytes or more.  With send_rest, the bytes that the filter no longer reads
// are sent all the same and stay unread (only in a run's last query: the
// next query would read them as the start of its reply).
// A reply under 192 bytes is ended by closing the back channel or by
// silence.  Returns the expected lines of the transaction from its read on,
// and sets *info to the record that the filter must make of it.
std::string ServeReply(HostileBackend& backend, const std::string& reply,
                       const std::vector<size_t>& pieces, Ending ending,
                       PrinterInfo* info, bool send_rest = true) {
  size_t taken = 0, next = 0;
  for (size_t piece : pieces) {
    if (taken >= 192) break;
    EXPECT_TRUE(backend.SendBack(reply.substr(next, piece)));
    EXPECT_TRUE(backend.WaitBackDrained(10.0));
    next += piece;
    taken = next;
  }
  if (taken >= 192) {
    if (send_rest && next < reply.size()) backend.SendBack(reply.substr(next));
    *info = PrinterInfo::Parse(reply.data());
    return InfoReceivedLines(reply.substr(0, taken));
  }
  *info = PrinterInfo::Unavailable();
  if (ending == Ending::kClose) {
    backend.CloseBack();
    return InfoReadFailureLines(0);
  }
  return InfoReadFailureLines(-1);
}

// Checks a finished run against its expected outcome.
void ExpectRun(const ExitInfo& run, int status, const std::string& err,
               const std::string& out, double bound) {
  EXPECT_FALSE(run.exit.killed) << "overran " << bound << " s";
  EXPECT_EQ(0, run.exit.signal) << "died of signal " << run.exit.signal;
  EXPECT_TRUE(run.exit.exited);
  EXPECT_EQ(status, run.exit.code);
  EXPECT_GE(bound * Slowdown(), run.exit.seconds);
  EXPECT_EQ("", CheckTrace(run.err));
  EXPECT_EQ(err, run.err);
  EXPECT_EQ(out, run.out);
}

// The wake-up followed by n printer-information commands, on the wire.
std::string Commands(int queries) {
  std::string out = kWakeUpCommand;
  for (int i = 0; i < queries; i++) out += kPrinterInfoCommand;
  return out;
}

// Expected report for one command and record.
std::string Report(bool levels, const PrinterInfo& info) {
  return levels ? ReportedLevels(info) : ReportedState(info);
}

// ---------------------------------------------------------------------------
// The probe.

struct ProbeCase {
  const char* name;
  std::string answer;  // raw side-channel bytes
  int status;          // what libcups makes of them; OK with byte 1 = bidi
  bool bidi;
};

// Every answer a backend can give to GET_BIDI, and what libcups makes of it
// (as found by trying each against libcups 2.4.2).  libcups reads an answer
// with one recv() and checks it in this order: a command byte outside 1 to 8 is
// treated like no answer at all (TIMEOUT); a length above the caller's buffer
// or above the bytes that came gives TOO_BIG; a command other than the one
// asked gives BAD_MESSAGE; else the status byte is passed on as it is (as a
// signed char: 255 gives -1), with the data.  The filter's own rule then wants
// OK, length 1, byte 1.
std::vector<ProbeCase> ProbeCases() {
  std::vector<ProbeCase> cases;
  for (int status = 0; status <= 8; status++)
    cases.push_back({"status", Message(CUPS_SC_CMD_GET_BIDI, status, "\x01"),
                     status, status == CUPS_SC_STATUS_OK});
  cases.push_back(
      {"status 255", Message(CUPS_SC_CMD_GET_BIDI, 255, "\x01"), -1, false});
  cases.push_back(
      {"status 7, no data", Message(CUPS_SC_CMD_GET_BIDI, 7, ""), 7, false});
  cases.push_back(
      {"OK, no data", Message(CUPS_SC_CMD_GET_BIDI, 1, ""), 1, false});
  cases.push_back({"OK, byte 0",
                   Message(CUPS_SC_CMD_GET_BIDI, 1, std::string(1, '\0')), 1,
                   false});
  cases.push_back(
      {"OK, byte 2", Message(CUPS_SC_CMD_GET_BIDI, 1, "\x02"), 1, false});
  cases.push_back(
      {"OK, byte ff", Message(CUPS_SC_CMD_GET_BIDI, 1, "\xff"), 1, false});
  cases.push_back(
      {"OK, 2 bytes", Message(CUPS_SC_CMD_GET_BIDI, 1, "\x01\x01"), 1, false});
  cases.push_back({"OK, 512 bytes",
                   Message(CUPS_SC_CMD_GET_BIDI, 1, std::string(512, 1)), 1,
                   false});
  cases.push_back({"OK, 513 bytes",
                   Message(CUPS_SC_CMD_GET_BIDI, 1, std::string(513, 1)), 6,
                   false});
  cases.push_back(
      {"length 5, 1 byte sent",
       Message(CUPS_SC_CMD_GET_BIDI, 1, "\x01").substr(0, 3) + "\x05\x01", 6,
       false});
  cases.push_back({"length 0, 1 byte sent",
                   Message(CUPS_SC_CMD_GET_BIDI, 1, "").substr(0, 4) + "\x01",
                   1, false});
  cases.push_back({"answer to DRAIN_OUTPUT",
                   Message(CUPS_SC_CMD_DRAIN_OUTPUT, 1, "\x01"), 5, false});
  cases.push_back({"command 0", Message(0, 1, "\x01"), 3, false});
  cases.push_back({"command 9", Message(9, 1, "\x01"), 3, false});
  cases.push_back({"command 255", Message(255, 1, "\x01"), 3, false});
  cases.push_back({"3-byte header",
                   Message(CUPS_SC_CMD_GET_BIDI, 1, "").substr(0, 3), 3,
                   false});
  return cases;
}

// Runs one probe case with "ReportStatus" and an awake, good printer.
void RunProbeCase(const ProbeCase& probe, std::mt19937& random) {
  SCOPED_TRACE(std::string(probe.name) + " -> " + std::to_string(probe.status));
  auto backend = Start("ReportStatus\n");
  Answer(*backend, CUPS_SC_CMD_GET_BIDI, probe.answer);
  AnswerDrain(*backend, CUPS_SC_STATUS_OK);
  std::string err = probe.bidi ? "" : ProbeFailureLine(probe.status);
  err += WakeUpLines(CUPS_SC_STATUS_OK) + CommandLine("ReportStatus", 1);
  PrinterInfo info = PrinterInfo::Unavailable();
  if (probe.bidi) {
    AnswerDrain(*backend, CUPS_SC_STATUS_OK);
    std::string reply = RandomReply(random, 192, 0);
    err += kRetryStartLine + InfoSentLines(CUPS_SC_STATUS_OK) +
           ServeReply(*backend, reply, {192}, Ending::kClose, &info);
    err += InfoLine(info) + RetryLine("fulfilled", 0) + kRetryEndLine;
  }
  err += ReportedState(info);
  ExpectRun(backend->Wait(kSlack), 0, err, Commands(probe.bidi ? 1 : 0),
            kSlack);
}

TEST(HostileBackendTest, ProbeAnsweredEveryWay) {
  std::mt19937 random = Random("ProbeAnsweredEveryWay");
  for (const ProbeCase& probe : ProbeCases()) RunProbeCase(probe, random);
}

// A backend that never answers the probe costs libcups' 30 s time-out, and
// the filter carries on one-way.
TEST(HostileBackendTest, ProbeNeverAnswered) {
  auto backend = Start("ReportStatus\n");
  ASSERT_EQ(CUPS_SC_CMD_GET_BIDI, backend->ReadRequest(5.0));
  // Not answered: the next request is the wake-up's drain, 30 s later.
  ASSERT_EQ(CUPS_SC_CMD_DRAIN_OUTPUT, backend->ReadRequest(30.0 + kSlack));
  ASSERT_TRUE(backend->SendSide(
      Message(CUPS_SC_CMD_DRAIN_OUTPUT, CUPS_SC_STATUS_OK, "")));
  std::string err = ProbeFailureLine(CUPS_SC_STATUS_TIMEOUT) +
                    WakeUpLines(CUPS_SC_STATUS_OK) +
                    CommandLine("ReportStatus", 1) +
                    ReportedState(PrinterInfo::Unavailable());
  ExitInfo run = backend->Wait(30.0 + kSlack);
  ExpectRun(run, 0, err, Commands(0), 30.0 + kSlack);
  EXPECT_LE(29.5, run.exit.seconds);
  printf("[ measured ] probe never answered: %.2f s\n", run.exit.seconds);
}

// The trace of "ReportStatus" and "ReportLevels" lines on a link without a
// side channel: every request comes back as a time-out at once.
std::string OneWayStatusAndLevels() {
  return ProbeFailureLine(CUPS_SC_STATUS_TIMEOUT) +
         WakeUpLines(CUPS_SC_STATUS_TIMEOUT) + CommandLine("ReportStatus", 1) +
         ReportedState(PrinterInfo::Unavailable()) +
         CommandLine("ReportLevels", 2) + UnavailableLevelsLines();
}

// A side channel that is closed before the probe: the write of every
// request fails (EPIPE: SIGPIPE is ignored, so the filter lives on), which
// libcups reports as TIMEOUT at once, for the probe and for the drain.
TEST(HostileBackendTest, SideChannelClosedBeforeProbe) {
  auto backend = Start("ReportStatus\nReportLevels\n");
  backend->CloseSide();
  ExitInfo run = backend->Wait(kSlack);
  ExpectRun(run, 0, OneWayStatusAndLevels(), Commands(0), 1.0);
  printf("[ measured ] side channel closed before the probe: %.3f s\n",
         run.exit.seconds);
}

// Started with neither back nor side channel (by hand, outside CUPS): the
// one-way path, at once.
TEST(HostileBackendTest, NoChannelsAtAll) {
  HostileOptions options;
  options.back_channel = false;
  options.side_channel = false;
  ExitInfo run = Start("ReportStatus\nReportLevels\n", options)->Wait(kSlack);
  ExpectRun(run, 0, OneWayStatusAndLevels(), Commands(0), 1.0);
  printf("[ measured ] fds 3 and 4 closed: %.3f s\n", run.exit.seconds);
}

// ---------------------------------------------------------------------------
// Drains.

// The wake-up's drain and the query's drain answered with every status, and
// with answers that libcups rejects; a failed drain is only logged.
TEST(HostileBackendTest, DrainAnsweredEveryWay) {
  std::mt19937 random = Random("DrainAnsweredEveryWay");
  struct DrainCase {
    std::string answer;
    int status;
  };
  std::vector<DrainCase> cases;
  for (int status = 0; status <= 8; status++)
    cases.push_back({Message(CUPS_SC_CMD_DRAIN_OUTPUT, status, ""), status});
  cases.push_back({Message(CUPS_SC_CMD_DRAIN_OUTPUT, 255, ""), -1});
  cases.push_back(
      {Message(CUPS_SC_CMD_DRAIN_OUTPUT, 1, std::string(600, 'x')), 6});
  cases.push_back({Message(CUPS_SC_CMD_GET_BIDI, 1, ""), 5});
  cases.push_back({Message(0, 1, ""), 3});
  for (const DrainCase& wake : cases) {
    const DrainCase& query = cases[random() % cases.size()];
    SCOPED_TRACE("wake-up drain " + std::to_string(wake.status) +
                 ", query drain " + std::to_string(query.status));
    auto backend = Start("ReportLevels\n");
    Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
    Answer(*backend, CUPS_SC_CMD_DRAIN_OUTPUT, wake.answer);
    Answer(*backend, CUPS_SC_CMD_DRAIN_OUTPUT, query.answer);
    PrinterInfo info = PrinterInfo::Unavailable();
    std::string err = WakeUpLines(wake.status) +
                      CommandLine("ReportLevels", 1) + kRetryStartLine +
                      InfoSentLines(query.status) +
                      ServeReply(*backend, RandomReply(random, 192, 0), {192},
                                 Ending::kClose, &info);
    err += InfoLine(info) + RetryLine("fulfilled", 0) + kRetryEndLine +
           ReportedLevels(info);
    ExpectRun(backend->Wait(kSlack), 0, err, Commands(1), kSlack);
  }
}

// A drain that is never answered costs its 5 s; the reply that the printer
// sends meanwhile is still read.
TEST(HostileBackendTest, DrainsNeverAnswered) {
  std::mt19937 random = Random("DrainsNeverAnswered");
  auto backend = Start("ReportStatus\n");
  Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
  ASSERT_EQ(CUPS_SC_CMD_DRAIN_OUTPUT,
            backend->ReadRequest(5.0));  // wake-up: silence
  ASSERT_EQ(CUPS_SC_CMD_DRAIN_OUTPUT,
            backend->ReadRequest(10.0));  // query: silence
  std::string reply = RandomReply(random, 200, 0);
  PrinterInfo info = PrinterInfo::Unavailable();
  std::string err = WakeUpLines(CUPS_SC_STATUS_TIMEOUT) +
                    CommandLine("ReportStatus", 1) + kRetryStartLine +
                    InfoSentLines(CUPS_SC_STATUS_TIMEOUT) +
                    ServeReply(*backend, reply, {200}, Ending::kClose, &info);
  err += InfoLine(info) + RetryLine("fulfilled", 0) + kRetryEndLine +
         ReportedState(info);
  ExitInfo run = backend->Wait(5.0 + kSlack);
  ExpectRun(run, 0, err, Commands(1), 10.0 + kSlack);
  EXPECT_LE(9.5, run.exit.seconds);
  printf("[ measured ] two unanswered drains: %.2f s\n", run.exit.seconds);
}

// ---------------------------------------------------------------------------
// Replies.

// Replies of every length from 0 to 600 bytes in random pieces.  Under 192
// bytes the reply is ended by a closed back channel (the read returns 0);
// for a few lengths by a silent printer instead (the 1 s read time-out, -1).
TEST(HostileBackendTest, RepliesOfEveryLength) {
  std::mt19937 random = Random("RepliesOfEveryLength");
  const std::vector<size_t> silent = {0, 1, 150, 191};
  int failed = 0, parsed = 0;
  // Under a memory checker every run is slow: a sample of the lengths.
  const size_t step = Slowdown() > 1.0 ? 17 : 1;
  for (size_t length = 0; length <= 600; length += step) {
    bool levels = random() % 2 == 0;
    const char* command = levels ? "reportlevels" : "REPORTSTATUS";
    std::string reply = RandomReply(random, length, 0);
    std::vector<size_t> pieces = RandomPieces(random, length);
    Ending ending =
        std::find(silent.begin(), silent.end(), length) != silent.end()
            ? Ending::kSilence
            : Ending::kClose;
    SCOPED_TRACE("length " + std::to_string(length) + " in " +
                 std::to_string(pieces.size()) + " pieces");
    auto backend = Start(std::string("# hostile\n\n") + command + " x y\n");
    Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
    AnswerDrain(*backend, CUPS_SC_STATUS_OK);
    AnswerDrain(*backend, CUPS_SC_STATUS_OK);
    PrinterInfo info = PrinterInfo::Unavailable();
    std::string err = WakeUpLines(CUPS_SC_STATUS_OK) + CommandLine(command, 3) +
                      kRetryStartLine + InfoSentLines(CUPS_SC_STATUS_OK) +
                      ServeReply(*backend, reply, pieces, ending, &info);
    err += InfoLine(info);
    if (info.isAvailable()) err += RetryLine("fulfilled", 0);
    err += kRetryEndLine + Report(levels, info);
    double bound = (ending == Ending::kSilence ? 1.0 : 0.0) + kSlack;
    ExpectRun(backend->Wait(bound), 0, err, Commands(1), bound);
    (info.isAvailable() ? parsed : failed)++;
    if (::testing::Test::HasFailure()) break;
  }
  printf("[ measured ] %d replies: %d parsed, %d failed as expected\n",
         parsed + failed, parsed, failed);
}

// A printer that wakes after a random number of queries, with the replies
// of each query in random pieces and random drain statuses, over several
// command lines; and one that never wakes (61 queries).
TEST(HostileBackendTest, WakeUpWaitUnderRandomTransport) {
  std::mt19937 random = Random("WakeUpWaitUnderRandomTransport");
  for (int run_index = 0; run_index < 20; run_index++) {
    int lines = 1 + static_cast<int>(random() % 3);
    std::string text, err = WakeUpLines(CUPS_SC_STATUS_OK);
    std::vector<bool> levels;
    for (int i = 0; i < lines; i++) {
      levels.push_back(random() % 2 == 0);
      text += levels.back() ? "ReportLevels\n" : "ReportStatus\n";
    }
    auto backend = Start(text);
    Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
    AnswerDrain(*backend, CUPS_SC_STATUS_OK);
    int queries = 0;
    for (int line = 0; line < lines; line++) {
      int asleep =
          run_index == 0 && line == 0 ? 61 : static_cast<int>(random() % 6);
      err += CommandLine(levels[line] ? "ReportLevels" : "ReportStatus",
                         line + 1) +
             kRetryStartLine;
      PrinterInfo info = PrinterInfo::Unavailable();
      for (int attempt = 0;; attempt++) {
        int drain = static_cast<int>(random() % 8);
        AnswerDrain(*backend, drain);
        queries++;
        int power = attempt < asleep ? 1 + static_cast<int>(random() % 255) : 0;
        std::string reply = RandomReply(random, 192 + random() % 64, power);
        err += InfoSentLines(drain);
        err += ServeReply(*backend, reply, RandomPieces(random, reply.size()),
                          Ending::kClose, &info, false);
        err += InfoLine(info);
        if (power == 0) {
          err += RetryLine("fulfilled", static_cast<unsigned>(attempt));
          break;
        }
        if (attempt == 60) {
          err += RetryLine("expired", 61) + kRetryOverLine;
          info = PrinterInfo::Unavailable();
          break;
        }
        err += RetryLine("retrying", static_cast<unsigned>(attempt + 1));
      }
      err += kRetryEndLine + Report(levels[line], info);
    }
    ExpectRun(backend->Wait(kSlack), 0, err, Commands(queries), kSlack);
    if (::testing::Test::HasFailure()) break;
  }
}

// ---------------------------------------------------------------------------
// Channels going away mid-run.

// The back channel closed before any query: every read sees the end of
// the file (0) at once.
TEST(HostileBackendTest, BackChannelClosed) {
  auto backend = Start("ReportStatus\nReportLevels\n");
  backend->CloseBack();
  Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
  std::string err = WakeUpLines(CUPS_SC_STATUS_OK);
  AnswerDrain(*backend, CUPS_SC_STATUS_OK);
  for (int line = 1; line <= 2; line++) {
    AnswerDrain(*backend, CUPS_SC_STATUS_OK);
    err += CommandLine(line == 1 ? "ReportStatus" : "ReportLevels", line) +
           kRetryStartLine + InfoSentLines(CUPS_SC_STATUS_OK) +
           InfoReadFailureLines(0) + InfoLine(PrinterInfo::Unavailable()) +
           kRetryEndLine + Report(line == 2, PrinterInfo::Unavailable());
  }
  ExpectRun(backend->Wait(kSlack), 0, err, Commands(2), kSlack);
}

// No back channel descriptor at all on a link that claims to be
// bidirectional: the read fails at once with -1.
TEST(HostileBackendTest, NoBackChannelDescriptor) {
  HostileOptions options;
  options.back_channel = false;
  auto backend = Start("ReportStatus\n", options);
  Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
  AnswerDrain(*backend, CUPS_SC_STATUS_OK);
  AnswerDrain(*backend, CUPS_SC_STATUS_OK);
  std::string err =
      WakeUpLines(CUPS_SC_STATUS_OK) + CommandLine("ReportStatus", 1) +
      kRetryStartLine + InfoSentLines(CUPS_SC_STATUS_OK) +
      InfoReadFailureLines(-1) + InfoLine(PrinterInfo::Unavailable()) +
      kRetryEndLine + ReportedState(PrinterInfo::Unavailable());
  ExpectRun(backend->Wait(kSlack), 0, err, Commands(1), 1.0);
}

// The side channel closed after the wake-up: later drains fail (logged)
// and the reply already waiting in the back channel is still read.
TEST(HostileBackendTest, SideChannelClosedMidRun) {
  std::mt19937 random = Random("SideChannelClosedMidRun");
  auto backend = Start("ReportStatus\nReportStatus\n");
  Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
  AnswerDrain(*backend, CUPS_SC_STATUS_OK);
  std::string reply = RandomReply(random, 192, 0);
  ASSERT_TRUE(backend->SendBack(reply));
  backend->CloseSide();
  ExitInfo run = backend->Wait(kSlack);
  PrinterInfo info = PrinterInfo::Parse(reply.data());
  // The drain's request cannot be written: libcups says TIMEOUT at once.
  const int status = CUPS_SC_STATUS_TIMEOUT;
  std::string err =
      WakeUpLines(CUPS_SC_STATUS_OK) + CommandLine("ReportStatus", 1) +
      kRetryStartLine + InfoSentLines(status) + InfoReceivedLines(reply) +
      InfoLine(info) + RetryLine("fulfilled", 0) + kRetryEndLine +
      ReportedState(info) + CommandLine("ReportStatus", 2) + kRetryStartLine +
      InfoSentLines(status) + InfoReadFailureLines(-1) +
      InfoLine(PrinterInfo::Unavailable()) + kRetryEndLine +
      ReportedState(PrinterInfo::Unavailable());
  ExpectRun(run, 0, err, Commands(2), 1.0 + kSlack);
}

// Nobody reads stdout before the wake-up: the flush fails (EPIPE, not a
// SIGPIPE death) and the filter ends with 1 before reading any command.
// The whole trace, written out: the readable example of this file.
TEST(HostileBackendTest, StdoutReaderGoneBeforeWakeUpGoldenTrace) {
  auto backend = Start("ReportStatus\n");
  backend->CloseStdoutReader();
  Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
  ExpectRun(backend->Wait(kSlack), 1,
            "DEBUG: wr_esc_wakeup() START\n"
            "DEBUG: [CMD] size=4\n"
            "DEBUG: [CMD] 0000: 1b 45 57 55\n"
            "DEBUG: fflush() failed.\n"
            "DEBUG: wr_esc_wakeup() END\n",
            "", kSlack);
}

// Nobody reads stdout after the wake-up: each query's flush fails, the
// record is unavailable, and the run still ends with 0.  The wake-up is
// flushed before its drain is asked for; the reader goes before the drain
// is answered, so that no query can reach it.
TEST(HostileBackendTest, StdoutReaderGoneAfterWakeUp) {
  auto backend = Start("ReportLevels\nReportStatus\n");
  Answer(*backend, CUPS_SC_CMD_GET_BIDI, BidiYes());
  ASSERT_EQ(CUPS_SC_CMD_DRAIN_OUTPUT, backend->ReadRequest(10.0));
  backend->CloseStdoutReader();
  ASSERT_TRUE(backend->SendSide(
      Message(CUPS_SC_CMD_DRAIN_OUTPUT, CUPS_SC_STATUS_OK, "")));
  std::string err = WakeUpLines(CUPS_SC_STATUS_OK);
  for (int line = 1; line <= 2; line++)
    err += CommandLine(line == 1 ? "ReportLevels" : "ReportStatus", line) +
           kRetryStartLine + "DEBUG: get_printer_info() START\n" +
           HexDump("[CMD]", kPrinterInfoCommand) + "DEBUG: fflush() failed.\n" +
           "DEBUG: get_printer_info() END\n" +
           InfoLine(PrinterInfo::Unavailable()) + kRetryEndLine +
           Report(line == 1, PrinterInfo::Unavailable());
  ExpectRun(backend->Wait(kSlack), 0, err, Commands(0), kSlack);
}

}  // namespace
