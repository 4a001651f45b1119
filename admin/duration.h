// Durations on the command line: "90s", "10min", "1h", "2d" or a plain
// number of seconds.

#ifndef QUILLAROTH_ADMIN_DURATION_H_
#define QUILLAROTH_ADMIN_DURATION_H_

#include <optional>
#include <string>

// The seconds that TEXT stands for; empty when it is no duration (a
// negative number, an unknown unit, more than a year).
std::optional<long> ParseDuration(const std::string& text);

// A short age for people: "45s", "12m", "3h", "2d".
std::string ShortAge(long seconds);

#endif  // QUILLAROTH_ADMIN_DURATION_H_
