// Beginnings and ends of texts, for reading log lines (C++17 has no
// string_view::starts_with).

#ifndef QUILLAROTH_TESTS_SUPPORT_TEXT_H_
#define QUILLAROTH_TESTS_SUPPORT_TEXT_H_

#include <string_view>

// Whether TEXT begins with PREFIX.
inline bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// Whether TEXT ends with SUFFIX.
inline bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() &&
         text.substr(text.size() - suffix.size()) == suffix;
}

#endif  // QUILLAROTH_TESTS_SUPPORT_TEXT_H_
