#include "sim/option_help.h"

#include <vector>

namespace {

constexpr size_t kHelpWidth = 79;
constexpr size_t kHelpIndent = 27;

// A group and its heading.
struct GroupHeading {
  OptionGroup group;
  const char* heading;
};
const GroupHeading kGroups[] = {
    {OptionGroup::kOutput, "Output"},
    {OptionGroup::kSideChannel, "Side channel"},
    {OptionGroup::kPrinter, "Printer"},
    {OptionGroup::kFaults, "Faults"},
    {OptionGroup::kNetwork, "Network printer"},
};

const char kUsage[] =
    "Usage: quillaroth-sim [options] -- FILTER job-id user title copies opts "
    "[file]\n"
    "       quillaroth-sim [options] --listen HOST:PORT\n";
const char kDescription[] =
    "Runs FILTER as a CUPS filter beside a simulated printer and its backend, "
    "or serves the simulated printer as a network printer.  Bytes are hex "
    "(XX), counts decimal (N), lists joined with '+'; a switch is on when "
    "named bare or =1, off with =0.";

// The lead-ins of the manual page's lists of keys, in roff.
const char kManReplyKeys[] =
    "Keys of \\fB\\-\\-reply\\fR "
    "\\fIN\\fB:\\fIKEY\\fB=\\fIVALUE\\fB,\\fR...:\n";
const char kManScenarioKeys[] =
    "Keys of \\fB\\-\\-connection\\fR "
    "\\fIN\\fB:\\fIKEY\\fB=\\fIVALUE\\fB,\\fR... and of a device URI "
    "\\fBquillarothsim://\\fINAME\\fB?\\fIKEY\\fB=\\fIVALUE\\fB&\\fR...:\n";

// True for an option that takes no value (a switch).
bool is_switch(const OptionSpec& option) {
  return option.kind == ValueKind::kSwitch;
}

// Text without its backticks.
std::string plain(const std::string& text) {
  std::string out;
  for (char c : text)
    if (c != '`') out += c;
  return out;
}

// Text with every '|' escaped for a Markdown table cell.
std::string cell(const std::string& text) {
  std::string out;
  for (char c : text) out += c == '|' ? std::string("\\|") : std::string(1, c);
  return out;
}

// Wraps words into lines of at most kHelpWidth columns; the first line
// goes on after `first` (already `first.size()` columns), the others are
// indented by `indent`.
std::string wrap(const std::string& first, const std::string& text,
                 size_t indent) {
  std::string out = first;
  size_t column = first.size();
  size_t start = 0;
  bool line_empty = true;
  while (start < text.size()) {
    size_t end = text.find(' ', start);
    if (end == std::string::npos) end = text.size();
    std::string word = text.substr(start, end - start);
    start = end + 1;
    if (word.empty()) continue;
    if (!line_empty && column + 1 + word.size() > kHelpWidth) {
      out += "\n" + std::string(indent, ' ');
      column = indent;
      line_empty = true;
    }
    if (!line_empty) {
      out += ' ';
      column++;
    }
    out += word;
    column += word.size();
    line_empty = false;
  }
  return out + "\n";
}

// "--error XXXXXX", "--oneway", "--close-sidechannel[=N]".
std::string command_line_form(const char* name, const OptionSpec& option) {
  std::string form = std::string("--") + name;
  if (is_switch(option)) return form;
  if (option.kind == ValueKind::kOptional)
    return form + "[=" + option.value + "]";
  return form + " " + option.value;
}

// "error=XXXXXX", "oneway", "close-sidechannel=N".
std::string key_form(const OptionSpec& option) {
  std::string form = option.name;
  if (is_switch(option)) return form;
  return form + "=" + option.value;
}

// The Option column: each command-line spelling, or a dash.
std::string option_cell(const OptionSpec& option) {
  if ((option.scope & kCommandLine) == 0) return "-";
  std::string text = "`" + command_line_form(option.name, option) + "`";
  if (option.alias != nullptr)
    text += ", `" + command_line_form(option.alias, option) + "`";
  return cell(text);
}

// True when the option is a key too (of --reply, --connection, a URI).
bool has_key(const OptionSpec& option) {
  return (option.scope & (kPerQuery | kScenarioKey)) != 0;
}

// "`size=N` (also `short`)": the key's spelling and where it is taken.
std::string key_text(const OptionSpec& option) {
  std::string notes;
  if (option.alias != nullptr)
    notes += std::string("also `") + option.alias + "`";
  if ((option.scope & kPerQuery) == 0)
    notes += std::string(notes.empty() ? "" : "; ") + "not in `--reply`";
  std::string text = "`" + key_form(option) + "`";
  if (!notes.empty()) text += " (" + notes + ")";
  return text;
}

// The Key column: the key's spelling and where it is taken, or a dash.
std::string key_cell(const OptionSpec& option) {
  return has_key(option) ? cell(key_text(option)) : "-";
}

// Markdown as roff text: literal text (in backticks) becomes bold, with
// its hyphens as minus signs, as options are typed; and the characters
// that roff reads as its own are escaped.
std::string roff(const std::string& markdown, bool literal = false) {
  std::string out;
  bool bold = literal;
  for (char c : markdown) {
    if (c == '`') {
      out += bold ? "\\fR" : "\\fB";
      bold = !bold;
    } else if (c == '-' && bold) {
      out += "\\-";
    } else if (c == '\\') {
      out += "\\e";
    } else {
      out += c;
    }
  }
  if (!out.empty() && (out[0] == '.' || out[0] == '\'')) out = "\\&" + out;
  return out;
}

// "\fB\-\-size\fR \fIN\fR": one command-line spelling in roff.
std::string man_form(const char* name, const OptionSpec& option) {
  std::string form = "\\fB" + roff(std::string("--") + name, true) + "\\fR";
  if (option.kind == ValueKind::kRequired)
    return form + " \\fI" + roff(option.value, true) + "\\fR";
  if (option.kind == ValueKind::kOptional)
    return form + "[=\\fI" + roff(option.value, true) + "\\fR]";
  return form;
}

// The names of the keys that the scope takes, in bold, comma-separated.
std::string man_key_names(unsigned scope) {
  std::string names;
  for (const OptionSpec& option : option_table())
    if ((option.scope & scope) != 0)
      names += (names.empty() ? "\\fB" : ", \\fB") +
               roff(option.name, true) + "\\fR";
  return names;
}

// The names of the keys that the scope takes, comma-separated.
std::string key_names(unsigned scope) {
  std::string names;
  for (const OptionSpec& option : option_table())
    if ((option.scope & scope) != 0)
      names += (names.empty() ? "" : ", ") + std::string(option.name);
  return names;
}

}  // namespace

std::string option_meaning(const OptionSpec& option) {
  std::string text = option.help;
  const ReplyField& field = option.field;
  if (field.width == 1) {
    text += " Offset " + std::to_string(field.offset) + ".";
  } else if (field.width > 1) {
    text += " Offsets " + std::to_string(field.offset) + "-" +
            std::to_string(field.offset + field.width - 1) +
            (field.is_count ? ", big-endian." : ".");
  }
  if (option.default_value[0] != '\0')
    text += std::string(" Default `") + option.default_value + "`.";
  return text;
}

std::string usage_text() {
  std::string text = kUsage + wrap("", kDescription, 0);
  for (const GroupHeading& group : kGroups) {
    text += std::string("\n") + group.heading + ":\n";
    for (const OptionSpec& option : option_table()) {
      if (option.group != group.group || (option.scope & kCommandLine) == 0)
        continue;
      std::string form = "  " + command_line_form(option.name, option);
      if (option.alias != nullptr)
        form += ", " + command_line_form(option.alias, option);
      if (form.size() + 1 > kHelpIndent)
        form += "\n" + std::string(kHelpIndent, ' ');
      else
        form += std::string(kHelpIndent - form.size(), ' ');
      // wrap() counts columns from the last line of `form`.
      size_t last_line = form.rfind('\n');
      std::string head = last_line == std::string::npos
                             ? form
                             : form.substr(last_line + 1);
      std::string lead = last_line == std::string::npos
                             ? ""
                             : form.substr(0, last_line + 1);
      text += lead + wrap(head, plain(option_meaning(option)), kHelpIndent);
    }
  }
  text += "\nKeys of --reply N:KEY=VALUE,...:\n" +
          wrap("  ", key_names(kPerQuery) + ".", 2);
  text += "Keys of --connection N:KEY=VALUE,... and of a device URI\n"
          "quillarothsim://NAME?KEY=VALUE&...:\n" +
          wrap("  ", key_names(kScenarioKey) + ".", 2);
  return text;
}

std::string uri_key_table() {
  std::string text = "| Key | Value | Meaning |\n|---|---|---|\n";
  for (const OptionSpec& option : option_table()) {
    if ((option.scope & kScenarioKey) == 0) continue;
    std::string key = "`" + std::string(option.name) + "`";
    if (option.alias != nullptr)
      key += std::string(" (also `") + option.alias + "`)";
    text += "| " + cell(key) + " | " + cell(option_takes(option)) + " | " +
            cell(option_meaning(option)) + " |\n";
  }
  return text;
}

std::string man_sections() {
  std::string text;
  for (const GroupHeading& group : kGroups) {
    text += std::string(".SS ") + group.heading + "\n";
    for (const OptionSpec& option : option_table()) {
      if (option.group != group.group) continue;
      std::string tag = man_form(option.name, option);
      if (option.alias != nullptr)
        tag += ", " + man_form(option.alias, option);
      std::string meaning = option_meaning(option);
      if (has_key(option)) meaning += " Key " + key_text(option) + ".";
      text += ".TP\n" + tag + "\n" + roff(meaning) + "\n";
    }
  }
  return text + ".SS Keys\n" + kManReplyKeys + man_key_names(kPerQuery) +
         ".\n.PP\n" + kManScenarioKeys + man_key_names(kScenarioKey) + ".\n";
}

std::string printed_table(const std::string& format) {
  if (format == "uri-keys") return uri_key_table();
  if (format == "man") return man_sections();
  return markdown_tables();
}

std::string markdown_tables() {
  std::string text;
  for (const GroupHeading& group : kGroups) {
    text += std::string(text.empty() ? "" : "\n") + "#### " + group.heading +
            "\n\n| Option | Key | Meaning |\n|---|---|---|\n";
    for (const OptionSpec& option : option_table()) {
      if (option.group != group.group) continue;
      text += "| " + option_cell(option) + " | " + key_cell(option) + " | " +
              cell(option_meaning(option)) + " |\n";
    }
  }
  return text;
}
