// The option table: one name and one value syntax for each option on the
// command line, in --reply, in --connection and in the device URI, and the
// help and README tables printed from it.

#include "sim/option_table.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <vector>

#include "sim/device_uri.h"
#include "sim/option_help.h"
#include "sim/reply_plan.h"
#include "sim/sim_options.h"
#include "tests/sim/sim_kit.h"

namespace {

// A block of generated text in a file: it lies between these two lines.
struct GeneratedBlock {
  const char* path;
  const char* start;
  const char* end;
  const char* format;  // what --print-table prints there
};
const GeneratedBlock kBlocks[] = {
    {README_PATH, "<!-- quillaroth-sim --print-table markdown -->\n",
     "<!-- end of quillaroth-sim --print-table -->\n", "markdown"},
    {README_PATH, "<!-- quillaroth-sim --print-table uri-keys -->\n",
     "<!-- end of quillaroth-sim --print-table uri-keys -->\n", "uri-keys"},
    {MANPAGE_PATH,
     ".\\\" quillaroth-sim --print-table man; a test checks that they are as "
     "printed.\n",
     ".\\\" End of the output of quillaroth-sim --print-table man.\n", "man"},
};

// The whole text of a file.
std::string FileText(const char* path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class OptionTableTest : public ::testing::Test {
 protected:
  // Parses a quillaroth-sim command line (after the program's name);
  // false when it is refused.
  bool CommandLine(std::vector<std::string> words) {
    words.insert(words.begin(), "quillaroth-sim");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    settings_ = SimSettings();
    return parse_sim_options(static_cast<int>(words.size()), argv.data(),
                             &settings_);
  }
  // Parses a device URI; returns its complaint, or "".
  std::string Uri(const std::string& uri) {
    uri_scenario_ = Scenario();
    std::string why;
    parse_device_uri(uri, &uri_scenario_, &why);
    return why;
  }
  // The first printer-information reply of a scenario.
  static Bytes FirstReply(const Scenario& scenario) {
    return plan_info_reply(scenario, 1).bytes;
  }

  SimSettings settings_;
  Scenario uri_scenario_;
};

TEST_F(OptionTableTest, EveryNameAndAliasIsTakenOnce) {
  std::set<std::string> names;
  for (const OptionSpec& option : option_table()) {
    EXPECT_TRUE(names.insert(option.name).second) << option.name;
    if (option.alias != nullptr) {
      EXPECT_TRUE(names.insert(option.alias).second) << option.alias;
    }
  }
}

TEST_F(OptionTableTest, ReplyFieldsLieInsideTheReplyApart) {
  std::vector<int> owner(kInfoReplySize, -1);
  const std::vector<OptionSpec>& table = option_table();
  for (size_t row = 0; row < table.size(); row++) {
    const ReplyField& field = table[row].field;
    for (size_t i = 0; i < field.width; i++) {
      ASSERT_LT(field.offset + i, kInfoReplySize) << table[row].name;
      EXPECT_EQ(-1, owner[field.offset + i]) << table[row].name;
      owner[field.offset + i] = static_cast<int>(row);
    }
  }
}

TEST_F(OptionTableTest, EveryDefaultIsAGoodValue) {
  Scenario scenario;
  for (const OptionSpec& option : option_table()) {
    if (option.default_value[0] == '\0') continue;
    std::string why;
    EXPECT_TRUE(apply_option(option, option.name, option.default_value,
                             scenario_target(&scenario), &why))
        << why;
  }
}

TEST_F(OptionTableTest, UnscriptedScenarioHasTheTableDefaults) {
  Scenario scenario;
  EXPECT_TRUE(scenario.bidi.answered);
  EXPECT_EQ(CUPS_SC_STATUS_OK, scenario.bidi.status);
  EXPECT_EQ(Bytes({0x01}), scenario.bidi_data);
  EXPECT_TRUE(scenario.drain.answered);
  EXPECT_EQ(CUPS_SC_STATUS_OK, scenario.drain.status);
  EXPECT_EQ(0, scenario.wake_after);
  EXPECT_EQ(0x00, scenario.fill);
  EXPECT_EQ((std::array<uint8_t, 4>{0, 0, 0, 0}), scenario.job_status);
  EXPECT_EQ(-1, scenario.close_sidechannel_at);
  EXPECT_FALSE(scenario.hang);
  EXPECT_EQ(DefaultInfoReply(), FirstReply(scenario));
}

TEST_F(OptionTableTest, SameKeysMakeTheSameReplyEverywhere) {
  ASSERT_TRUE(CommandLine({"--error", "060202", "--split", "100+50",
                           "--remaining", "0", "--", "filter"}));
  Bytes expected = WithBytes(WithBytes(DefaultInfoReply(), 131,
                                       Hex("06 02 02")),
                             150, Hex("00 00"));
  EXPECT_EQ(expected, FirstReply(settings_.scenario));
  EXPECT_EQ(std::vector<size_t>({100, 50}), *settings_.scenario.every.split);

  ASSERT_EQ("", Uri("quillarothsim://x?error=060202&split=100+50&remaining=0"));
  EXPECT_EQ(expected, FirstReply(uri_scenario_));
  EXPECT_EQ(std::vector<size_t>({100, 50}), *uri_scenario_.every.split);

  Scenario per_query;
  ASSERT_EQ("", ScriptQuery(&per_query, 1, "error=060202,split=100+50,"
                                           "remaining=0"));
  EXPECT_EQ(expected, FirstReply(per_query));
  EXPECT_EQ(std::vector<size_t>({100, 50}), *per_query.per_query[1].split);
}

TEST_F(OptionTableTest, OlderSpellingsStillWork) {
  ASSERT_TRUE(CommandLine({"--split", "100,92", "--short", "150", "--reply",
                           "2:none", "--", "filter"}));
  EXPECT_EQ(std::vector<size_t>({100, 92}), *settings_.scenario.every.split);
  EXPECT_EQ(150u, *settings_.scenario.every.size);
  EXPECT_TRUE(settings_.scenario.per_query[2].none);
  ASSERT_EQ("", Uri("quillarothsim://x?wake=3&oneway=1"));
  EXPECT_EQ(3, uri_scenario_.wake_after);
  EXPECT_EQ(Bytes({CUPS_SC_BIDI_NOT_SUPPORTED}), uri_scenario_.bidi_data);
}

TEST_F(OptionTableTest, SwitchesAndOptionalValuesOnTheCommandLine) {
  ASSERT_TRUE(CommandLine({"--oneway", "--close-sidechannel=2",
                           "--close-backchannel", "--hang=0", "--", "f"}));
  EXPECT_EQ(Bytes({CUPS_SC_BIDI_NOT_SUPPORTED}), settings_.scenario.bidi_data);
  EXPECT_EQ(2, settings_.scenario.close_sidechannel_at);
  EXPECT_TRUE(settings_.scenario.close_backchannel_at_start);
  EXPECT_FALSE(settings_.scenario.hang);
  EXPECT_EQ(std::vector<std::string>({"f"}), settings_.command);
}

TEST_F(OptionTableTest, ComplaintsNameTheKeyAndTheValue) {
  EXPECT_EQ("error takes 6 hex digits, not \"06020\"",
            Uri("quillarothsim://x?error=06020"));
  EXPECT_EQ("remaining takes a number 0-65535, not \"65536\"",
            Uri("quillarothsim://x?remaining=65536"));
  EXPECT_EQ("wake takes a number or never, not \"soon\"",
            Uri("quillarothsim://x?wake=soon"));
  EXPECT_EQ("oneway takes 1 or 0, not \"yes\"",
            Uri("quillarothsim://x?oneway=yes"));
  EXPECT_EQ("split takes piece sizes like 100+92, not \"100+0\"",
            Uri("quillarothsim://x?split=100+0"));
  EXPECT_EQ("unknown key \"colour\"", Uri("quillarothsim://x?colour=red"));
  EXPECT_EQ("key \"log\" does not apply here",
            Uri("quillarothsim://x?log=/tmp/x"));
  EXPECT_EQ("\"total\" is not key=value", Uri("quillarothsim://x?total"));
  EXPECT_EQ("not a quillarothsim URI", Uri("socket://10.0.0.1"));
  Scenario scenario;
  EXPECT_EQ("key \"wake-after\" does not apply here",
            ScriptQuery(&scenario, 1, "wake-after=2"));
}

TEST_F(OptionTableTest, CommandLineRefusesBadUse) {
  EXPECT_FALSE(CommandLine({"--error", "0602"}));
  EXPECT_FALSE(CommandLine({"--reply", "2:wake-after=1", "--", "f"}));
  EXPECT_FALSE(CommandLine({"--error", "060202"}));  // no filter command
  EXPECT_FALSE(CommandLine({"--listen", "127.0.0.1:0", "--", "f"}));
  EXPECT_TRUE(CommandLine({"--listen", "127.0.0.1:0"}));
  EXPECT_EQ("127.0.0.1", settings_.listen_host);
}

TEST_F(OptionTableTest, ConnectionKeysAreLaidOverTheRun) {
  ASSERT_TRUE(CommandLine({"--listen", "127.0.0.1:9100", "--error", "060202",
                           "--connection", "2:error=000000,wake-after=1"}));
  Scenario first = scenario_for_connection(settings_, 1);
  Scenario second = scenario_for_connection(settings_, 2);
  EXPECT_EQ(WithBytes(DefaultInfoReply(), 131, Hex("06 02 02")),
            FirstReply(first));
  EXPECT_EQ(WithBytes(DefaultInfoReply(), 5, Hex("01")), FirstReply(second));
  EXPECT_FALSE(CommandLine({"--listen", "127.0.0.1:9100", "--connection",
                            "2:colour=red"}));
}

TEST_F(OptionTableTest, HelpFitsInSeventyNineColumns) {
  std::istringstream help(usage_text());
  std::string line;
  while (std::getline(help, line)) EXPECT_GE(79u, line.size()) << line;
}

TEST_F(OptionTableTest, FaultsTableAsTheReadmeShowsIt) {
  std::string tables = markdown_tables();
  size_t start = tables.find("#### Faults\n");
  size_t end = tables.find("\n####", start);
  ASSERT_NE(std::string::npos, start);
  EXPECT_EQ(
      "#### Faults\n"
      "\n"
      "| Option | Key | Meaning |\n"
      "|---|---|---|\n"
      "| `--reset N` | `reset=N` | Send the reply's first N bytes, then reset "
      "the connection (over the pipes: close the back channel). |\n"
      "| `--stall N` | `stall=N` | Send the reply's first N bytes, then hang: "
      "nothing more is sent or read, and the connection stays open. |\n"
      "| `--hang` | `hang` (not in `--reply`) | The printer hangs from the "
      "start: it reads and answers nothing (a backend in front of it still "
      "answers the side channel). |\n",
      tables.substr(start, end - start));
}

TEST_F(OptionTableTest, FaultsAsTheManualPageShowsThem) {
  std::string sections = man_sections();
  size_t start = sections.find(".SS Faults\n");
  size_t end = sections.find(".SS ", start + 1);
  ASSERT_NE(std::string::npos, start);
  EXPECT_EQ(
      ".SS Faults\n"
      ".TP\n"
      "\\fB\\-\\-reset\\fR \\fIN\\fR\n"
      "Send the reply's first N bytes, then reset the connection (over the "
      "pipes: close the back channel). Key \\fBreset=N\\fR.\n"
      ".TP\n"
      "\\fB\\-\\-stall\\fR \\fIN\\fR\n"
      "Send the reply's first N bytes, then hang: nothing more is sent or "
      "read, and the connection stays open. Key \\fBstall=N\\fR.\n"
      ".TP\n"
      "\\fB\\-\\-hang\\fR\n"
      "The printer hangs from the start: it reads and answers nothing (a "
      "backend in front of it still answers the side channel). Key "
      "\\fBhang\\fR (not in \\fB\\-\\-reply\\fR).\n",
      sections.substr(start, end - start));
}

TEST_F(OptionTableTest, UriKeysAreTheScenarioKeys) {
  std::istringstream table(uri_key_table());
  std::string line;
  std::getline(table, line);
  EXPECT_EQ("| Key | Value | Meaning |", line);
  std::getline(table, line);
  size_t rows = 0;
  while (std::getline(table, line)) rows++;
  size_t keys = 0;
  for (const OptionSpec& option : option_table())
    if ((option.scope & kScenarioKey) != 0) keys++;
  EXPECT_EQ(keys, rows);
}

TEST_F(OptionTableTest, DocumentsHaveTheTablesAsPrinted) {
  for (const GeneratedBlock& block : kBlocks) {
    SCOPED_TRACE(std::string(block.path) + ", " + block.format);
    std::string text = FileText(block.path);
    size_t start = text.find(block.start);
    size_t end = text.find(block.end);
    ASSERT_NE(std::string::npos, start) << "no block " << block.start;
    ASSERT_NE(std::string::npos, end) << "no end " << block.end;
    start += strlen(block.start);
    EXPECT_EQ(printed_table(block.format), text.substr(start, end - start))
        << "paste the output of quillaroth-sim --print-table "
        << block.format;
  }
}

TEST_F(OptionTableTest, EveryTableFormatIsPrinted) {
  for (const char* format : kTableFormats) {
    ASSERT_TRUE(CommandLine({"--print-table", format}));
    EXPECT_EQ(format, settings_.print_table);
  }
  EXPECT_FALSE(CommandLine({"--print-table", "html"}));
}

}  // namespace
