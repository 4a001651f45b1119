#include "admin/command_line.h"

#include <cctype>
#include <cstring>

#include "admin/duration.h"

namespace {

// The bits of the commands an option belongs to.
constexpr unsigned Bit(Command c) { return 1u << static_cast<unsigned>(c); }
constexpr unsigned kEnable = Bit(Command::Enable) | Bit(Command::Disable);
constexpr unsigned kStatus = Bit(Command::Status);
constexpr unsigned kRefresh = Bit(Command::Refresh);

struct CommandRow {
  Command command;
  const char* name;
  const char* operands;  // after the options in the synopsis
  const char* summary;
};

constexpr CommandRow kCommands[] = {
    {Command::Enable, "enable", "QUEUE",
     "add commandtoquillaroth to the queue's PPD, leaving its printing as it "
     "was"},
    {Command::Disable, "disable", "QUEUE",
     "take out what enable added: the queue's PPD as it was before"},
    {Command::Status, "status", "[QUEUE...]",
     "the state, reasons and prints left of the queues that use the filter"},
    {Command::Refresh, "refresh", "[QUEUE...]",
     "ask the printers for their levels and state: one command job per queue"},
};

enum class Kind { Switch, Count, Duration, File };

// One option: the commands it belongs to, its name, its value and its help.
struct OptionRow {
  unsigned commands;
  const char* name;
  Kind kind;
  const char* metavar;
  const char* help;
  bool Invocation::*flag;
  long Invocation::*number;
  std::optional<long> Invocation::*maybe;
};

constexpr OptionRow kOptions[] = {
    {kEnable, "--dry-run", Kind::Switch, "",
     "print the change as a unified diff; change nothing",
     &Invocation::dry_run, nullptr, nullptr},
    {kStatus, "--all", Kind::Switch, "",
     "every queue, not only those that use the filter", &Invocation::all,
     nullptr, nullptr},
    {kRefresh, "--all", Kind::Switch, "",
     "every queue that uses the filter (the default)", &Invocation::all,
     nullptr, nullptr},
    {kStatus, "--json", Kind::Switch, "", "JSON for scripts",
     &Invocation::json, nullptr, nullptr},
    {kStatus, "--prometheus", Kind::Switch, "",
     "Prometheus' text exposition format", &Invocation::prometheus, nullptr,
     nullptr},
    {kStatus, "--stale", Kind::Duration, "DURATION",
     "mark levels older than this as stale (default 1h)", nullptr,
     &Invocation::stale_seconds, nullptr},
    {kStatus, "--warn-below", Kind::Count, "N",
     "only the queues with fewer than N prints left or an error showing, "
     "one line each; exit 1 when there is any",
     nullptr, nullptr, &Invocation::warn_below},
    {kStatus, "--output", Kind::File, "FILE",
     "write to FILE (replaced whole, atomically) instead of standard output",
     nullptr, nullptr, nullptr},
    {kRefresh, "--if-older-than", Kind::Duration, "DURATION",
     "only queues whose levels are older than this, and not busy", nullptr,
     nullptr, &Invocation::if_older_than_seconds},
    {kRefresh, "--wait", Kind::Switch, "",
     "wait for the jobs, showing their progress, then show their status",
     &Invocation::wait, nullptr, nullptr},
    {kRefresh, "--wait-timeout", Kind::Duration, "DURATION",
     "with --wait, give up waiting after this long (default 5min)", nullptr,
     &Invocation::wait_timeout_seconds, nullptr},
};

// Where the help texts of the options begin.
constexpr size_t kHelpColumn = 19;

constexpr char kHostHelp[] =
    "  -h HOST[:PORT]   the scheduler to ask (default: $CUPS_SERVER, or the\n"
    "                   local one)\n"
    "  --help           this help\n";

const CommandRow* FindCommand(const char* name) {
  for (const CommandRow& row : kCommands)
    if (strcmp(row.name, name) == 0) return &row;
  return nullptr;
}

const CommandRow& RowOf(Command command) {
  for (const CommandRow& row : kCommands)
    if (row.command == command) return row;
  return kCommands[0];
}

const OptionRow* FindOption(Command command, const std::string& name) {
  for (const OptionRow& row : kOptions)
    if ((row.commands & Bit(command)) != 0 && name == row.name) return &row;
  return nullptr;
}

// Stores VALUE for ROW; false with a reason when it is no value of its kind.
bool Apply(const OptionRow& row, const std::string& value,
           Invocation* invocation, std::string* error) {
  long number = 0;
  switch (row.kind) {
    case Kind::Switch:
      invocation->*row.flag = true;
      return true;
    case Kind::File:
      if (value.empty()) {
        *error = std::string(row.name) + " needs a file name";
        return false;
      }
      invocation->output = value;
      return true;
    case Kind::Duration: {
      std::optional<long> seconds = ParseDuration(value);
      if (!seconds) {
        *error = std::string(row.name) + ": '" + value +
                 "' is no duration (say 90s, 10min, 1h or 2d)";
        return false;
      }
      number = *seconds;
      break;
    }
    case Kind::Count: {
      std::optional<long> count = ParseDuration(value);
      if (value.find_first_not_of("0123456789") != std::string::npos ||
          !count) {
        *error = std::string(row.name) + ": '" + value +
                 "' is not a whole number";
        return false;
      }
      number = *count;
      break;
    }
  }
  if (row.number != nullptr) invocation->*row.number = number;
  if (row.maybe != nullptr) invocation->*row.maybe = number;
  return true;
}

// PREFIX and the words of TEXT in lines of at most 79 columns, each line
// after the first indented by INDENT blanks.
std::string Wrap(const std::string& prefix, const std::string& text,
                 size_t indent) {
  constexpr size_t kWidth = 79;
  std::string wrapped;
  std::string line = prefix;
  bool fresh = true;  // nothing of TEXT on the line yet
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(' ', start);
    if (end == std::string::npos) end = text.size();
    std::string word = text.substr(start, end - start);
    start = end + 1;
    if (!fresh && line.size() + 1 + word.size() > kWidth) {
      wrapped += line + "\n";
      line = std::string(indent, ' ') + word;
    } else {
      line += (fresh ? "" : " ") + word;
    }
    fresh = false;
  }
  return wrapped + line;
}

// The usage line of COMMAND.
std::string Synopsis(const CommandRow& row) {
  std::string text = std::string("quillaroth [-h HOST[:PORT]] ") + row.name;
  for (const OptionRow& option : kOptions) {
    if ((option.commands & Bit(row.command)) == 0) continue;
    text += std::string(" [") + option.name;
    if (option.kind != Kind::Switch) text += std::string(" ") + option.metavar;
    text += "]";
  }
  return text + " " + row.operands;
}

}  // namespace

const char* CommandName(Command command) {
  return command == Command::None ? "" : RowOf(command).name;
}

std::string HelpText(Command command) {
  if (command == Command::None) {
    std::string text =
        "Usage: quillaroth [-h HOST[:PORT]] COMMAND [OPTIONS] [QUEUE...]\n"
        "The queues of commandtoquillaroth on a CUPS scheduler.\n\n"
        "Commands:\n";
    for (const CommandRow& row : kCommands) {
      std::string name = row.name;
      text += Wrap("  " + name + std::string(10 - name.size(), ' '),
                   row.summary, 12) + "\n";
    }
    text += "\nOptions:\n";
    text += kHostHelp;
    text += "  --version        the version\n\n";
    text += "'quillaroth COMMAND --help' tells more of each command.\n";
    text +=
        "Exit status: 0 done, 1 a problem with a printer or queue (reported),\n"
        "2 a usage error.\n";
    return text;
  }
  const CommandRow& row = RowOf(command);
  std::string summary = row.summary;
  summary[0] = static_cast<char>(toupper(static_cast<unsigned char>(summary[0])));
  std::string text = Wrap("Usage: ", Synopsis(row), 7) + "\n" +
                     Wrap("", summary + ".", 0) + "\n\n";
  text += "Options:\n";
  for (const OptionRow& option : kOptions) {
    if ((option.commands & Bit(command)) == 0) continue;
    std::string left = std::string("  ") + option.name;
    if (option.kind != Kind::Switch) left += std::string(" ") + option.metavar;
    if (left.size() + 1 >= kHelpColumn) {
      text += left + "\n";
      left.clear();
    }
    left += std::string(kHelpColumn - left.size(), ' ');
    text += Wrap(left, option.help, kHelpColumn) + "\n";
  }
  text += kHostHelp;
  return text;
}

std::string ManOptions(Command command) {
  std::string text;
  for (const OptionRow& option : kOptions) {
    if ((option.commands & Bit(command)) == 0) continue;
    std::string name;  // roff's minus signs
    for (char c : std::string(option.name))
      name += c == '-' ? std::string("\\-") : std::string(1, c);
    text += ".TP\n";
    if (option.kind == Kind::Switch)
      text += ".B " + name + "\n";
    else
      text += ".BI " + name + " \" " + option.metavar + "\"\n";
    std::string help = option.help;
    for (size_t at = help.find("--"); at != std::string::npos;
         at = help.find("--", at + 4))
      help.replace(at, 2, "\\-\\-");
    text += help + "\n";
  }
  return text;
}

bool ParseCommandLine(int argc, const char* const* argv,
                      Invocation* invocation, std::string* error) {
  bool options_end = false;
  for (int i = 1; i < argc; i++) {
    std::string word = argv[i];
    if (!options_end && word == "--") {
      options_end = true;
      continue;
    }
    if (!options_end && (word == "-h" || word.rfind("-h", 0) == 0)) {
      if (word == "-h") {
        if (i + 1 >= argc) {
          *error = "-h needs HOST[:PORT]";
          return false;
        }
        invocation->host = argv[++i];
      } else {
        invocation->host = word.substr(2);
      }
      if (invocation->host.empty()) {
        *error = "-h needs HOST[:PORT]";
        return false;
      }
      continue;
    }
    if (!options_end && word == "--help") {
      invocation->help = true;
      continue;
    }
    if (!options_end && word == "--version") {
      invocation->version = true;
      continue;
    }
    if (invocation->command == Command::None) {
      if (word == "help") {
        invocation->help = true;
        continue;
      }
      const CommandRow* row = FindCommand(word.c_str());
      if (row == nullptr) {
        *error = "unknown command '" + word +
                 "' (enable, disable, status, refresh)";
        return false;
      }
      invocation->command = row->command;
      continue;
    }
    if (!options_end && word.size() > 1 && word[0] == '-') {
      std::string name = word;
      std::string value;
      bool inline_value = false;
      size_t equals = word.find('=');
      if (word.rfind("--", 0) == 0 && equals != std::string::npos) {
        name = word.substr(0, equals);
        value = word.substr(equals + 1);
        inline_value = true;
      }
      const OptionRow* row = FindOption(invocation->command, name);
      if (row == nullptr) {
        *error = "unknown option '" + name + "' for " +
                 CommandName(invocation->command);
        return false;
      }
      if (row->kind == Kind::Switch && inline_value) {
        *error = name + " takes no value";
        return false;
      }
      if (row->kind != Kind::Switch && !inline_value) {
        if (i + 1 >= argc) {
          *error = name + " needs " + row->metavar;
          return false;
        }
        value = argv[++i];
      }
      if (!Apply(*row, value, invocation, error)) return false;
      continue;
    }
    invocation->queues.push_back(word);
  }
  if (invocation->help || invocation->version) return true;
  if (invocation->command == Command::None) {
    *error = "no command (enable, disable, status, refresh; --help tells more)";
    return false;
  }
  Command c = invocation->command;
  if ((c == Command::Enable || c == Command::Disable) &&
      invocation->queues.size() != 1) {
    *error = std::string(CommandName(c)) + " takes one queue";
    return false;
  }
  if (invocation->json && invocation->prometheus) {
    *error = "--json and --prometheus exclude each other";
    return false;
  }
  if (invocation->warn_below && (invocation->json || invocation->prometheus)) {
    *error = "--warn-below prints its own lines: not with --json or --prometheus";
    return false;
  }
  if (c == Command::Status && invocation->all && !invocation->queues.empty()) {
    *error = "--all or queue names, not both";
    return false;
  }
  if (c == Command::Refresh && invocation->all && !invocation->queues.empty()) {
    *error = "--all or queue names, not both";
    return false;
  }
  return true;
}
