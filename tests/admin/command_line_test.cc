#include "admin/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "admin/duration.h"
#include "tests/support/files.h"

namespace {

class CommandLineTest : public ::testing::Test {
 protected:
  // Parses "quillaroth WORDS..."; the error text, "" when it parsed.
  std::string Parse(std::vector<const char*> words) {
    words.insert(words.begin(), "quillaroth");
    invocation_ = Invocation();
    std::string error;
    if (ParseCommandLine(static_cast<int>(words.size()), words.data(),
                         &invocation_, &error))
      return "";
    return error;
  }

  Invocation invocation_;
};

// The whole help of one command, written out.
TEST_F(CommandLineTest, GoldenRefreshHelp) {
  EXPECT_EQ(
      "Usage: quillaroth [-h HOST[:PORT]] refresh [--all] [--if-older-than "
      "DURATION]\n"
      "       [--wait] [--wait-timeout DURATION] [QUEUE...]\n"
      "Ask the printers for their levels and state: one command job per "
      "queue.\n"
      "\n"
      "Options:\n"
      "  --all            every queue that uses the filter (the default)\n"
      "  --if-older-than DURATION\n"
      "                   only queues whose levels are older than this, and "
      "not busy\n"
      "  --wait           wait for the jobs, showing their progress, then "
      "show their\n"
      "                   status\n"
      "  --wait-timeout DURATION\n"
      "                   with --wait, give up waiting after this long "
      "(default 5min)\n"
      "  -h HOST[:PORT]   the scheduler to ask (default: $CUPS_SERVER, or the\n"
      "                   local one)\n"
      "  --help           this help\n",
      HelpText(Command::Refresh));
}

TEST_F(CommandLineTest, HelpFitsEightyColumns) {
  for (Command c : {Command::None, Command::Enable, Command::Disable,
                    Command::Status, Command::Refresh}) {
    std::string help = HelpText(c);
    size_t start = 0;
    while (start < help.size()) {
      size_t end = help.find('\n', start);
      EXPECT_LE(end - start, 79u) << help.substr(start, end - start);
      start = end + 1;
    }
  }
}

// The manual page lists each command's options as the command line's table
// has them.
TEST_F(CommandLineTest, ManualPageHasTheOptionsOfTheTable) {
  std::string page = ReadFile(QUILLAROTH_MAN_PAGE);
  ASSERT_FALSE(page.empty()) << QUILLAROTH_MAN_PAGE;
  for (Command c : {Command::Enable, Command::Status, Command::Refresh}) {
    std::string name = CommandName(c);
    std::string begin = ".\\\" Options of " + name + ", from quillaroth " + name +
                        " \\-\\-help: begin\n";
    std::string end = ".\\\" Options of " + name + ": end\n";
    size_t from = page.find(begin);
    size_t to = page.find(end);
    ASSERT_NE(std::string::npos, from) << begin;
    ASSERT_NE(std::string::npos, to) << end;
    from += begin.size();
    EXPECT_EQ(ManOptions(c), page.substr(from, to - from)) << name;
  }
}

TEST_F(CommandLineTest, StatusWithOptions) {
  EXPECT_EQ("", Parse({"-h", "server:8631", "status", "--json", "--stale",
                       "10min", "photo", "booth"}));
  EXPECT_EQ(Command::Status, invocation_.command);
  EXPECT_EQ("server:8631", invocation_.host);
  EXPECT_TRUE(invocation_.json);
  EXPECT_EQ(600, invocation_.stale_seconds);
  EXPECT_EQ((std::vector<std::string>{"photo", "booth"}), invocation_.queues);
}

TEST_F(CommandLineTest, HostAnywhereAndJoined) {
  EXPECT_EQ("", Parse({"refresh", "--wait", "-hprint.example:631",
                       "--if-older-than=90s"}));
  EXPECT_EQ("print.example:631", invocation_.host);
  EXPECT_TRUE(invocation_.wait);
  EXPECT_EQ(90, invocation_.if_older_than_seconds.value_or(-1));
}

TEST_F(CommandLineTest, HelpOfACommand) {
  EXPECT_EQ("", Parse({"enable", "--help"}));
  EXPECT_TRUE(invocation_.help);
  EXPECT_EQ(Command::Enable, invocation_.command);
  EXPECT_EQ("", Parse({"help"}));
  EXPECT_TRUE(invocation_.help);
}

TEST_F(CommandLineTest, UsageErrors) {
  EXPECT_EQ("no command (enable, disable, status, refresh; --help tells more)",
            Parse({}));
  EXPECT_EQ("unknown command 'stauts' (enable, disable, status, refresh)",
            Parse({"stauts"}));
  EXPECT_EQ("enable takes one queue", Parse({"enable"}));
  EXPECT_EQ("disable takes one queue", Parse({"disable", "a", "b"}));
  EXPECT_EQ("unknown option '--dry-run' for status",
            Parse({"status", "--dry-run"}));
  EXPECT_EQ("--stale needs DURATION", Parse({"status", "--stale"}));
  EXPECT_EQ("--stale: '5 weeks' is no duration (say 90s, 10min, 1h or 2d)",
            Parse({"status", "--stale", "5 weeks"}));
  EXPECT_EQ("--warn-below: '-3' is not a whole number",
            Parse({"status", "--warn-below", "-3"}));
  EXPECT_EQ("--json takes no value", Parse({"status", "--json=yes"}));
  EXPECT_EQ("--json and --prometheus exclude each other",
            Parse({"status", "--json", "--prometheus"}));
  EXPECT_EQ("--all or queue names, not both",
            Parse({"refresh", "--all", "photo"}));
  EXPECT_EQ("-h needs HOST[:PORT]", Parse({"status", "-h"}));
}

TEST_F(CommandLineTest, QueueNamedLikeAnOptionAfterDoubleDash) {
  EXPECT_EQ("", Parse({"status", "--", "--json"}));
  EXPECT_FALSE(invocation_.json);
  EXPECT_EQ((std::vector<std::string>{"--json"}), invocation_.queues);
}

TEST(DurationTest, Units) {
  EXPECT_EQ(90, ParseDuration("90s").value_or(-1));
  EXPECT_EQ(90, ParseDuration("90").value_or(-1));
  EXPECT_EQ(600, ParseDuration("10min").value_or(-1));
  EXPECT_EQ(600, ParseDuration("10m").value_or(-1));
  EXPECT_EQ(3600, ParseDuration("1h").value_or(-1));
  EXPECT_EQ(172800, ParseDuration("2d").value_or(-1));
  EXPECT_FALSE(ParseDuration(""));
  EXPECT_FALSE(ParseDuration("h"));
  EXPECT_FALSE(ParseDuration("1.5h"));
  EXPECT_FALSE(ParseDuration("-1s"));
  EXPECT_FALSE(ParseDuration("10 min"));
  EXPECT_FALSE(ParseDuration("367d"));
  EXPECT_FALSE(ParseDuration("9999999999"));
}

TEST(DurationTest, ShortAges) {
  EXPECT_EQ("0s", ShortAge(-5));
  EXPECT_EQ("119s", ShortAge(119));
  EXPECT_EQ("2m", ShortAge(120));
  EXPECT_EQ("119m", ShortAge(7199));
  EXPECT_EQ("2h", ShortAge(7200));
  EXPECT_EQ("47h", ShortAge(172799));
  EXPECT_EQ("2d", ShortAge(172800));
}

}  // namespace
