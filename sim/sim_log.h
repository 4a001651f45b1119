// The simulator's own log: one line per event, flushed at once.
//
// The simulator writes "sim: cmd 1b 56 32 31", "sim: sc GET_BIDI -> OK 01",
// "sim: reply 192 bytes" and the like to the file named by --log; the CUPS
// backend writes the same lines to its stderr behind "DEBUG: ", where cupsd
// puts them in its error log.

#ifndef QUILLAROTH_SIM_SIM_LOG_H_
#define QUILLAROTH_SIM_SIM_LOG_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

class SimLog {
 public:
  // Logs to file (nothing when it is null), each line behind prefix.
  SimLog(FILE* file, const char* prefix);

  // Writes one formatted line (the format carries no line end).
  void Line(const char* format, ...) __attribute__((format(printf, 2, 3)));

 private:
  FILE* file_;
  const char* prefix_;
};

// "1b 56 32 31": the bytes in lower-case hex, blank-separated.
std::string hex_text(const uint8_t* data, size_t size);

#endif  // QUILLAROTH_SIM_SIM_LOG_H_
