#include "admin/command_filter_lines.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace {

bool StartsWith(const std::string& text, const char* prefix) {
  return text.compare(0, std::char_traits<char>::length(prefix), prefix) == 0;
}

[[noreturn]] void BadFragment(const std::string& why) {
  std::fprintf(stderr, "quillaroth: built with a bad PPD fragment: %s\n",
               why.c_str());
  std::abort();
}

// Sets *slot once.
void SetOnce(std::string* slot, const std::string& line) {
  if (!slot->empty()) BadFragment("a second line \"" + line + "\"");
  *slot = line;
}

CommandFilterLines Parse(const char* text) {
  CommandFilterLines lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || StartsWith(line, "*%")) continue;
    if (StartsWith(line, "*cupsFilter2:")) {
      SetOnce(&lines.filter2, line);
    } else if (StartsWith(line, "*cupsFilter:")) {
      SetOnce(&lines.filter, line);
    } else if (StartsWith(line, "*cupsCommands:")) {
      SetOnce(&lines.commands, line);
    } else if (!ReasonKeyword(line).empty()) {
      lines.reasons.push_back(line);
    } else {
      BadFragment("an unknown line \"" + line + "\"");
    }
  }
  if (lines.filter2.empty() || lines.filter.empty() || lines.commands.empty())
    BadFragment("a filter or *cupsCommands line is missing");
  lines.command_words =
      ValueWords(lines.commands.substr(sizeof("*cupsCommands:") - 1));
  return lines;
}

}  // namespace

const CommandFilterLines& TheCommandFilterLines() {
  static const CommandFilterLines lines = Parse(kCommandFilterFragment);
  return lines;
}

std::string ReasonKeyword(const std::string& line) {
  static const char kReason[] = "*cupsIPPReason ";
  if (!StartsWith(line, kReason)) return "";
  std::string::size_type start = sizeof(kReason) - 1;
  std::string::size_type end = line.find_first_of("/:", start);
  if (end == std::string::npos || end == start) return "";
  return line.substr(start, end - start);
}

std::vector<std::string> ValueWords(const std::string& value) {
  std::vector<std::string> words;
  std::string word;
  for (char c : value) {
    if (c == ' ' || c == '\t' || c == '"' || c == '\r' || c == '\n') {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(word);
  return words;
}
