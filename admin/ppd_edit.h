// STUB until the ppd branch is merged.
#ifndef QUILLAROTH_ADMIN_PPD_EDIT_H_
#define QUILLAROTH_ADMIN_PPD_EDIT_H_
#include <map>
#include <string>
struct PpdEdit {
  enum class Outcome { kChanged, kUnchanged, kRefused };
  Outcome outcome;
  std::string text;
  std::string reason;
};
PpdEdit EnableCommandFilter(const std::string& ppd);
PpdEdit DisableCommandFilter(const std::string& ppd);
bool RunsCommandFilter(const std::string& ppd);
std::map<std::string, std::string> ReasonTexts(const std::string& ppd);
std::string UnifiedDiff(const std::string& a, const std::string& b,
                        const std::string& old_text, const std::string& new_text);
#endif
