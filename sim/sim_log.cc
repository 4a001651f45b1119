// The simulator's log lines.

#include "sim/sim_log.h"

#include <cstdarg>

// Keeps the file and the prefix.
SimLog::SimLog(FILE* file, const char* prefix) : file_(file), prefix_(prefix) {}

// Writes prefix, the formatted text and a line end, then flushes.
void SimLog::Line(const char* format, ...) {
  if (file_ == nullptr) return;
  va_list args;
  va_start(args, format);
  fputs(prefix_, file_);
  vfprintf(file_, format, args);
  fputc('\n', file_);
  fflush(file_);
  va_end(args);
}

// Formats each byte as two lower-case hex digits, blank-separated.
std::string hex_text(const uint8_t* data, size_t size) {
  std::string text;
  char byte[4];
  for (size_t i = 0; i < size; i++) {
    snprintf(byte, sizeof byte, i == 0 ? "%02x" : " %02x", data[i]);
    text += byte;
  }
  return text;
}
