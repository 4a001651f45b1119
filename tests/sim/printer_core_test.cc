// The printer core: the host's bytes in, cut anywhere; the printer's
// reactions out.

#include "sim/printer_core.h"

#include <gtest/gtest.h>

#include "tests/sim/sim_kit.h"

namespace {

const std::string kWakeUp = std::string("\x1b" "EWU", 4);
const std::string kPrinterInfo = std::string("\x1b" "V21", 4);
const std::string kJobStatus = std::string("\x1b" "V10\0\0", 6);
// The log lines of the unscripted printer's two replies.
const std::string kDefaultInfo =
    "reply 192 bytes: power 00, error 00 00 00, sheet 84 10, ribbon 123/350";
const std::string kDefaultJobStatus = "reply 20 bytes: status 00 00 00 00";

class PrinterCoreTest : public ::testing::Test {
 protected:
  // Scripts the printer with device-URI keys; call before the first Send.
  void Script(const std::string& keys) {
    ASSERT_EQ("", ScriptUri(&scenario_, keys));
    printer_ = PrinterCore(scenario_);
  }
  // The printer is switched on.
  void Start() { Note(printer_.Start()); }
  // The host sends these bytes in one go.
  void Send(const std::string& bytes) {
    Note(printer_.Take(reinterpret_cast<const uint8_t*>(bytes.data()),
                       bytes.size()));
  }
  // The host's output ends.
  void End() { Note(printer_.Finish()); }
  // What the printer did so far, one line per reaction; a query's line
  // goes on with " => " and its reply's log line.
  std::string Story() const { return story_; }

  PrinterCore printer_{Scenario()};

 private:
  void Note(const std::vector<PrinterEvent>& events) {
    for (const PrinterEvent& event : events) {
      story_ += event.log_line;
      if (event.is_query) story_ += " => " + describe_reply(event.reply);
      story_ += "\n";
    }
  }

  Scenario scenario_;
  std::string story_;
};

TEST_F(PrinterCoreTest, AnswersTheCommandsOfAFilterRun) {
  Send(kWakeUp);
  Send(kPrinterInfo);
  Send(kJobStatus);
  EXPECT_EQ(
      "cmd 1b 45 57 55\n"
      "cmd 1b 56 32 31 => " + kDefaultInfo + "\n"
      "cmd 1b 56 31 30 00 00 => " + kDefaultJobStatus + "\n",
      Story());
  EXPECT_EQ(1, printer_.info_queries());
  EXPECT_EQ(1, printer_.job_status_queries());
}

TEST_F(PrinterCoreTest, CommandsCutAnywhereAreJoined) {
  std::string all = kWakeUp + kPrinterInfo + kJobStatus + kPrinterInfo;
  for (char byte : all) Send(std::string(1, byte));
  EXPECT_EQ(
      "cmd 1b 45 57 55\n"
      "cmd 1b 56 32 31 => " + kDefaultInfo + "\n"
      "cmd 1b 56 31 30 00 00 => " + kDefaultJobStatus + "\n"
      "cmd 1b 56 32 31 => " + kDefaultInfo + "\n",
      Story());
  EXPECT_EQ(2, printer_.info_queries());
}

TEST_F(PrinterCoreTest, UnknownBytesRunToTheNextEscape) {
  Send("junk" + kWakeUp + "\x1b" "Q" + std::string(20, 'x'));
  Send(kPrinterInfo);
  EXPECT_EQ(
      "unknown bytes (4): 6a 75 6e 6b\n"
      "cmd 1b 45 57 55\n"
      "unknown bytes (22): 1b 51 78 78 78 78 78 78 78 78 78 78 78 78 78 78 "
      "...\n"
      "cmd 1b 56 32 31 => " + kDefaultInfo + "\n",
      Story());
}

TEST_F(PrinterCoreTest, CommandBrokenOffAtTheEndIsUnknown) {
  Send(kWakeUp + "\x1b" "V2");
  EXPECT_EQ("cmd 1b 45 57 55\n", Story());
  End();
  EXPECT_EQ("cmd 1b 45 57 55\nunknown bytes (3): 1b 56 32\n", Story());
}

TEST_F(PrinterCoreTest, QueriesCountForThisCoreAlone) {
  Script("wake-after=1");
  Send(kPrinterInfo + kPrinterInfo);
  PrinterCore next_connection(printer_.scenario());
  std::vector<PrinterEvent> events = next_connection.Take(
      reinterpret_cast<const uint8_t*>(kPrinterInfo.data()), 4);
  ASSERT_EQ(1u, events.size());
  EXPECT_EQ(WithBytes(DefaultInfoReply(), 5, Hex("01")),
            events[0].reply.bytes);
  EXPECT_EQ(2, printer_.info_queries());
  EXPECT_EQ(1, next_connection.info_queries());
}

TEST_F(PrinterCoreTest, StalledPrinterHangsAfterItsReply) {
  Script("stall=100");
  Send(kWakeUp + kPrinterInfo + kPrinterInfo);
  Send(kJobStatus);
  End();
  EXPECT_EQ("cmd 1b 45 57 55\n"
            "cmd 1b 56 32 31 => " + kDefaultInfo + "\n"
            "printer hangs after 100 of 192 bytes\n",
            Story());
  EXPECT_TRUE(printer_.hung());
}

TEST_F(PrinterCoreTest, HungPrinterTakesNothing) {
  Script("hang");
  EXPECT_TRUE(printer_.hung());
  Start();
  Send(kWakeUp + kPrinterInfo);
  End();
  EXPECT_EQ("printer hangs: it reads and answers nothing\n", Story());
  EXPECT_EQ(0, printer_.info_queries());
}

}  // namespace
