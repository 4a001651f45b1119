// The compiled-in fragment, ppd/quillaroth-command-filter.txt: its lines,
// and the simulated printer's PPD carrying exactly the same ones.

#include "admin/command_filter_lines.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "tests/admin/ppd_shapes.h"
#include "tests/support/expected_trace.h"

namespace {

// The lines of text that start with one of the prefixes, in their order.
std::vector<std::string> LinesStartingWith(
    const std::string& text, const std::vector<std::string>& prefixes) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line))
    for (const std::string& prefix : prefixes)
      if (line.compare(0, prefix.size(), prefix) == 0) {
        lines.push_back(line);
        break;
      }
  return lines;
}

TEST(CommandFilterLinesTest, FragmentLines) {
  const CommandFilterLines& lines = TheCommandFilterLines();
  EXPECT_EQ("*cupsFilter2: \"application/vnd.cups-command "
            "application/vnd.cups-command 0 commandtoquillaroth\"",
            lines.filter2);
  EXPECT_EQ("*cupsFilter: \"application/vnd.cups-command 0 commandtoquillaroth\"",
            lines.filter);
  EXPECT_EQ("*cupsCommands: \"ReportLevels ReportStatus\"", lines.commands);
  EXPECT_EQ((std::vector<std::string>{"ReportLevels", "ReportStatus"}),
            lines.command_words);
  std::vector<std::string> keywords;
  for (const std::string& line : lines.reasons)
    keywords.push_back(ReasonKeyword(line));
  // The filter's own list of the reasons it raises and withdraws.
  EXPECT_EQ(std::vector<std::string>(std::begin(kKnownReasons),
                                     std::end(kKnownReasons)),
            keywords);
}

// The fragment's lines in the fragment's order: the *cupsFilter2 form (the
// simulated printer's PPD has no *cupsFilter line), *cupsCommands and the
// reasons.
TEST(CommandFilterLinesTest, SimulatorPpdCarriesTheFragmentsLines) {
  const CommandFilterLines& lines = TheCommandFilterLines();
  std::vector<std::string> expected = {lines.filter2, lines.commands};
  expected.insert(expected.end(), lines.reasons.begin(), lines.reasons.end());
  EXPECT_EQ(expected,
            LinesStartingWith(kSimulatorPpd,
                              {"*cupsFilter", "*cupsCommands", "*cupsIPPReason"}));
}

TEST(CommandFilterLinesTest, ReasonKeywordAndValueWords) {
  EXPECT_EQ("com.example-one", ReasonKeyword("*cupsIPPReason com.example-one/Text: \"\""));
  EXPECT_EQ("com.example-one", ReasonKeyword("*cupsIPPReason com.example-one: \"\""));
  EXPECT_EQ("", ReasonKeyword("*cupsCommands: \"A\""));
  EXPECT_EQ((std::vector<std::string>{"A", "B"}), ValueWords(" \"A  B\"\r"));
  EXPECT_EQ((std::vector<std::string>{"none"}), ValueWords("none"));
}

}  // namespace
