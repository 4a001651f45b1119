// STUB until the ppd branch is merged.
#include "admin/ppd_edit.h"
#include <sstream>
PpdEdit EnableCommandFilter(const std::string& ppd) {
  return {PpdEdit::Outcome::kRefused, ppd, "not yet"};
}
PpdEdit DisableCommandFilter(const std::string& ppd) {
  return {PpdEdit::Outcome::kRefused, ppd, "not yet"};
}
bool RunsCommandFilter(const std::string& ppd) {
  return ppd.find("0 commandtoquillaroth\"") != std::string::npos;
}
std::map<std::string, std::string> ReasonTexts(const std::string& ppd) {
  std::map<std::string, std::string> texts;
  std::istringstream in(ppd);
  std::string line;
  const std::string key = "*cupsIPPReason ";
  while (std::getline(in, line)) {
    if (line.compare(0, key.size(), key) != 0) continue;
    std::string rest = line.substr(key.size());
    size_t slash = rest.find('/');
    size_t colon = rest.find(':', slash);
    if (slash == std::string::npos || colon == std::string::npos) continue;
    texts[rest.substr(0, slash)] = rest.substr(slash + 1, colon - slash - 1);
  }
  return texts;
}
std::string UnifiedDiff(const std::string&, const std::string&,
                        const std::string&, const std::string&) {
  return "";
}
