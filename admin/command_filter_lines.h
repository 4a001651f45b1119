// CommandFilterLines: the PPD lines that send a queue's command jobs to
// commandtoquillaroth and give the filter's printer-state-reasons their
// texts.  Their one source is ppd/quillaroth-command-filter.txt, compiled
// into the program at build time (cmake/embed_text.cmake).

#ifndef QUILLAROTH_ADMIN_COMMAND_FILTER_LINES_H_
#define QUILLAROTH_ADMIN_COMMAND_FILTER_LINES_H_

#include <string>
#include <vector>

// The whole text of ppd/quillaroth-command-filter.txt.
extern const char kCommandFilterFragment[];

// The fragment's lines, each without its line end, *% comments left out.
struct CommandFilterLines {
  // *cupsFilter2: "application/vnd.cups-command ... commandtoquillaroth",
  // for a PPD that has *cupsFilter2 lines.
  std::string filter2;
  // *cupsFilter: "application/vnd.cups-command 0 commandtoquillaroth",
  // for a PPD that has none.
  std::string filter;
  // *cupsCommands: "ReportLevels ReportStatus".
  std::string commands;
  // The words of the *cupsCommands value, in their order.
  std::vector<std::string> command_words;
  // The *cupsIPPReason lines, in the fragment's order.
  std::vector<std::string> reasons;
};

// The fragment's lines; a line of another kind, a missing or a second
// filter or *cupsCommands line ends the program (the build's fragment is
// checked by tests/admin).
const CommandFilterLines& TheCommandFilterLines();

// The reason keyword of a "*cupsIPPReason KEYWORD/TEXT: ..." line; "" for
// another line.
std::string ReasonKeyword(const std::string& line);

// The words of a PPD string value ("A B" or A), split at blanks.
std::vector<std::string> ValueWords(const std::string& value);

#endif  // QUILLAROTH_ADMIN_COMMAND_FILTER_LINES_H_
