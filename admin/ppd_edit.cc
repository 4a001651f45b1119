#include "admin/ppd_edit.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

// Older libcups headers mark the PPD API deprecated through _PPD_DEPRECATED
// (CUPS' own tools define it empty); newer ones mark each function, which
// ReadPpd allows for itself below.
#define _PPD_DEPRECATED
#include <cups/ppd.h>

#include "admin/command_filter_lines.h"

namespace {

const char kBegin[] = "*% quillaroth enable: begin";
// The begin line when the PPD's last line had no line end before enable.
const char kBeginNoLineEnd[] =
    "*% quillaroth enable: begin (the line above had no line end)";
const char kEnd[] = "*% quillaroth enable: end";
const char kWasPrefix[] = "*% quillaroth enable: was ";
const char kProgram[] = "commandtoquillaroth";
const char kCommandType[] = "application/vnd.cups-command";
// The one line that libcups needs before PPD lines.
const char kMinimalHeader[] = "*PPD-Adobe: \"4.3\"\n";

// A PPD without *cupsFilter or *cupsFilter2 lines is a PostScript printer's:
// for it, CUPS' PPD cache (_ppdCacheCreateWithPPD) lists
// "application/vnd.cups-postscript 0 -" as the queue's only print filter,
// and commandtops for command jobs as long as no other command filter is
// named.  The first filter line would drop that PostScript path, so such a
// PPD gets the same line written out beside ours: the scheduler's
// add_printer_filter then builds the same print path as before (the print
// path tests show it with cupsfilter), and command jobs go to our filter
// instead of commandtops.
const char kPostScriptPath[] =
    "*cupsFilter: \"application/vnd.cups-postscript 0 -\"";

// One line of the PPD: its text and its line end ("\n", "\r\n" or "" for a
// last line without one).
struct Line {
  std::string body;
  std::string end;
};

std::vector<Line> SplitLines(std::string_view text) {
  std::vector<Line> lines;
  std::string_view::size_type start = 0;
  while (start < text.size()) {
    std::string_view::size_type newline = text.find('\n', start);
    if (newline == std::string_view::npos) {
      lines.push_back({std::string(text.substr(start)), ""});
      break;
    }
    std::string_view::size_type body_end = newline;
    if (body_end > start && text[body_end - 1] == '\r') --body_end;
    lines.push_back({std::string(text.substr(start, body_end - start)),
                     std::string(text.substr(body_end, newline + 1 - body_end))});
    start = newline + 1;
  }
  return lines;
}

std::string JoinLines(const std::vector<Line>& lines) {
  std::string text;
  for (const Line& line : lines) text += line.body + line.end;
  return text;
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// A line "*cupsCommands: ..." (a main keyword, not one that starts so).
bool IsCommandsLine(const std::string& body) {
  static const char kKeyword[] = "*cupsCommands";
  if (!StartsWith(body, kKeyword)) return false;
  char next = body.size() > sizeof(kKeyword) - 1 ? body[sizeof(kKeyword) - 1]
                                                  : '\0';
  return next == ':' || next == ' ' || next == '\t';
}

// What CUPS reads in a PPD, through libcups.
struct PpdReading {
  // Set when libcups cannot read the PPD.
  std::optional<std::string> error;
  // The filter lines that CUPS uses: the *cupsFilter2 values when there is
  // any, else the *cupsFilter values.
  std::vector<std::string> filters;
  bool has_filter2 = false;
  // The value of the first *cupsCommands line.
  std::optional<std::string> commands;
  std::map<std::string, std::string> reasons;
};

// The PPD API is deprecated in favour of IPP Everywhere, but a queue with a
// vendor driver has a PPD all the same, and only libcups reads it as CUPS
// does.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
PpdReading ReadPpd(std::string_view text) {
  PpdReading facts;
  // libcups reads PPDs from files only: hand it an unlinked temporary one.
  FILE* file = std::tmpfile();
  if (file == nullptr) {
    facts.error = std::string("cannot make a temporary file: ") +
                  std::strerror(errno);
    return facts;
  }
  bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size() &&
                 std::fflush(file) == 0 && std::fseek(file, 0, SEEK_SET) == 0;
  // ppdOpenFd closes the descriptor it is given.
  int fd = written ? dup(fileno(file)) : -1;
  std::fclose(file);
  if (fd < 0) {
    facts.error = std::string("cannot write a temporary file: ") +
                  std::strerror(errno);
    return facts;
  }
  ppd_file_t* ppd = ppdOpenFd(fd);
  if (ppd == nullptr) {
    int line = 0;
    ppd_status_t status = ppdLastError(&line);
    facts.error = "line " + std::to_string(line) + ": " + ppdErrorString(status);
    return facts;
  }
  for (ppd_attr_t* attr = ppdFindAttr(ppd, "cupsFilter2", nullptr); attr;
       attr = ppdFindNextAttr(ppd, "cupsFilter2", nullptr)) {
    facts.has_filter2 = true;
    if (attr->value) facts.filters.push_back(attr->value);
  }
  if (!facts.has_filter2) {
    for (int i = 0; i < ppd->num_filters; ++i)
      facts.filters.push_back(ppd->filters[i]);
  }
  if (ppd_attr_t* attr = ppdFindAttr(ppd, "cupsCommands", nullptr))
    facts.commands = attr->value ? attr->value : "";
  for (ppd_attr_t* attr = ppdFindAttr(ppd, "cupsIPPReason", nullptr); attr;
       attr = ppdFindNextAttr(ppd, "cupsIPPReason", nullptr))
    facts.reasons.emplace(attr->spec, attr->text);
  ppdClose(ppd);
  return facts;
}
#pragma GCC diagnostic pop

// A filter line for command jobs: its cost and program.
struct CommandFilter {
  int cost = 0;
  std::string program;
};

// The command filter of one filter value ("source cost program" or, for
// *cupsFilter2, "source destination cost program", with an optional
// "maxsize(N)" before the program), if it is one.
std::optional<CommandFilter> ParseCommandFilter(const std::string& value,
                                                bool filter2) {
  std::vector<std::string> words = ValueWords(value);
  size_t cost_at = filter2 ? 2 : 1;
  if (words.size() < cost_at + 2 ||
      strcasecmp(words[0].c_str(), kCommandType) != 0)
    return std::nullopt;
  CommandFilter filter;
  filter.cost = std::atoi(words[cost_at].c_str());
  size_t program_at = cost_at + 1;
  if (StartsWith(words[program_at], "maxsize(")) ++program_at;
  for (size_t i = program_at; i < words.size(); ++i)
    filter.program += (i > program_at ? " " : "") + words[i];
  return filter;
}

bool IsOurProgram(const std::string& program) {
  std::string::size_type slash = program.rfind('/');
  return program.substr(slash == std::string::npos ? 0 : slash + 1) ==
         kProgram;
}

// The program that CUPS runs for command jobs: the cheapest command
// filter's ("" when the PPD names none; ours when ours is among the
// cheapest).
std::string CommandProgram(const PpdReading& facts) {
  std::optional<CommandFilter> best;
  for (const std::string& value : facts.filters) {
    std::optional<CommandFilter> filter =
        ParseCommandFilter(value, facts.has_filter2);
    if (!filter) continue;
    if (!best || filter->cost < best->cost ||
        (filter->cost == best->cost && IsOurProgram(filter->program)))
      best = filter;
  }
  return best ? best->program : "";
}

// Where the block stands: the indexes of its begin and end lines.
struct Block {
  size_t begin = 0;
  size_t end = 0;
  bool begin_had_no_line_end = false;
};

// What FindBlock found: the block, or none, or why the PPD's block is
// damaged.
struct BlockSearch {
  std::optional<Block> block;
  std::string error;
};

BlockSearch FindBlock(const std::vector<Line>& lines) {
  BlockSearch search;
  std::optional<size_t> open;
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string& body = lines[i].body;
    if (body == kBegin || body == kBeginNoLineEnd) {
      if (open || search.block) {
        search.error = "the PPD has a second \"" + std::string(kBegin) + "\" line";
        return search;
      }
      open = i;
    } else if (body == kEnd) {
      if (!open) {
        search.error = "the PPD has a \"" + std::string(kEnd) +
                       "\" line without a begin line before it";
        return search;
      }
      search.block = Block{*open, i, lines[*open].body == kBeginNoLineEnd};
      open.reset();
    }
  }
  if (open) {
    search.error = "the PPD has a \"" + std::string(kBegin) +
                   "\" line without an end line after it";
    search.block.reset();
  }
  return search;
}

// A lone CR ends a line for libcups but not for the line-based edit.
bool HasLoneCarriageReturn(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i)
    if (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'))
      return true;
  return false;
}

PpdEdit Refuse(const std::string& ppd, const std::string& why) {
  return PpdEdit{PpdEdit::Outcome::kRefused, ppd, why};
}

PpdEdit Unchanged(const std::string& ppd, const std::string& why) {
  return PpdEdit{PpdEdit::Outcome::kUnchanged, ppd, why};
}

std::string JoinWords(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// Adds the *cupsCommands line to the block's lines: ours, or the PPD's
// words and ours when it has a *cupsCommands line, which then stays as a
// "was" comment (CUPS reads the first such line; "none", no commands, gives
// way to ours).  Says what it did.
std::string AddCommands(const PpdReading& facts, std::vector<Line>* lines,
                        std::vector<std::string>* added) {
  const CommandFilterLines& ours = TheCommandFilterLines();
  if (!facts.commands) {
    added->push_back(ours.commands);
    return "*cupsCommands added";
  }
  std::vector<std::string> merged;
  for (const std::string& word : ValueWords(*facts.commands))
    if (strcasecmp(word.c_str(), "none") != 0) merged.push_back(word);
  for (const std::string& word : ours.command_words)
    if (std::find(merged.begin(), merged.end(), word) == merged.end())
      merged.push_back(word);
  if (merged == ValueWords(*facts.commands)) return "*cupsCommands kept";
  for (Line& line : *lines)
    if (IsCommandsLine(line.body)) line.body = kWasPrefix + line.body;
  added->push_back("*cupsCommands: \"" + JoinWords(merged) + "\"");
  return "*cupsCommands merged";
}

}  // namespace

PpdEdit EnableCommandFilter(const std::string& ppd) {
  if (HasLoneCarriageReturn(ppd))
    return Refuse(ppd, "the PPD has lines that end in a CR alone");
  std::vector<Line> lines = SplitLines(ppd);
  BlockSearch search = FindBlock(lines);
  if (!search.error.empty()) return Refuse(ppd, search.error);
  if (search.block) return Unchanged(ppd, "already enabled by quillaroth");

  PpdReading facts = ReadPpd(ppd);
  if (facts.error) return Refuse(ppd, "libcups cannot read the PPD: " + *facts.error);
  std::string program = CommandProgram(facts);
  if (IsOurProgram(program))
    return Unchanged(ppd, "the PPD already runs commandtoquillaroth for command jobs");
  if (!program.empty())
    return Refuse(ppd, "the PPD sends command jobs to " + program +
                           "; quillaroth does not replace another command filter");

  const CommandFilterLines& ours = TheCommandFilterLines();
  std::vector<std::string> added;
  std::string form;
  if (facts.has_filter2) {
    added.push_back(ours.filter2);
    form = "a *cupsFilter2 line";
  } else if (facts.filters.empty()) {
    added.push_back(kPostScriptPath);
    added.push_back(ours.filter);
    form = "a *cupsFilter line beside the PostScript path";
  } else {
    added.push_back(ours.filter);
    form = "a *cupsFilter line";
  }

  std::string commands = AddCommands(facts, &lines, &added);

  size_t reasons = 0;
  for (const std::string& reason : ours.reasons) {
    if (facts.reasons.count(ReasonKeyword(reason))) continue;
    added.push_back(reason);
    ++reasons;
  }

  std::string line_end = lines.empty() || lines[0].end.empty() ? "\n" : lines[0].end;
  bool had_no_line_end = !lines.empty() && lines.back().end.empty();
  if (had_no_line_end) lines.back().end = line_end;
  lines.push_back({had_no_line_end ? kBeginNoLineEnd : kBegin, line_end});
  for (const std::string& line : added) lines.push_back({line, line_end});
  lines.push_back({kEnd, line_end});

  PpdEdit edit{PpdEdit::Outcome::kChanged, JoinLines(lines),
               "enabled: " + form + ", " + commands + ", " +
                   std::to_string(reasons) + " reason texts added"};
  // The edited PPD must still read, and run the filter.
  PpdReading after = ReadPpd(edit.text);
  if (after.error)
    return Refuse(ppd, "the edited PPD would not read: " + *after.error);
  if (!IsOurProgram(CommandProgram(after)))
    return Refuse(ppd, "the edited PPD would not run commandtoquillaroth");
  std::vector<std::string> listed =
      after.commands ? ValueWords(*after.commands) : std::vector<std::string>();
  for (const std::string& word : ours.command_words)
    if (std::find(listed.begin(), listed.end(), word) == listed.end())
      return Refuse(ppd, "the edited PPD would not list " + word +
                             " in its *cupsCommands line");
  return edit;
}

PpdEdit DisableCommandFilter(const std::string& ppd) {
  std::vector<Line> lines = SplitLines(ppd);
  BlockSearch search = FindBlock(lines);
  if (!search.error.empty()) return Refuse(ppd, search.error);
  if (!search.block) return Unchanged(ppd, "not enabled by quillaroth");
  const Block& block = *search.block;

  std::vector<Line> kept;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i >= block.begin && i <= block.end) continue;
    Line line = lines[i];
    if (StartsWith(line.body, kWasPrefix))
      line.body.erase(0, sizeof(kWasPrefix) - 1);
    if (i + 1 == block.begin && block.begin_had_no_line_end) line.end.clear();
    kept.push_back(line);
  }
  return PpdEdit{PpdEdit::Outcome::kChanged, JoinLines(kept),
                 "disabled: the quillaroth block removed"};
}

bool RunsCommandFilter(const std::string& ppd) {
  PpdReading facts = ReadPpd(ppd);
  return !facts.error && IsOurProgram(CommandProgram(facts));
}

std::map<std::string, std::string> ReasonTexts(const std::string& ppd) {
  PpdReading facts = ReadPpd(ppd);
  // PPD lines without a PPD's header, such as the fragment, read with one.
  if (facts.error) facts = ReadPpd(std::string(kMinimalHeader) + ppd);
  return facts.reasons;
}
