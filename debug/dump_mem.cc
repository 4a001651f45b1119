#include "debug/dump_mem.h"

#include <cstdio>
#include <string>

namespace {

// Appends printf-formatted text to a line under construction.
template <typename... Args>
void append(std::string& line, const char* format, Args... args) {
  char text[64];
  int length = snprintf(text, sizeof(text), format, args...);
  if (length > 0) line.append(text, static_cast<size_t>(length));
}

}  // namespace

void dump_mem(const char* label, const void* data, int size) {
  const unsigned char* bytes = static_cast<const unsigned char*>(data);
  std::string line = "DEBUG: ";
  line += label;
  append(line, " size=%d", size);
  for (int i = 0;; i++) {
    if (size == 0 || ((i & 0xf) == 0 && i < size)) {
      // The previous line ends here: write it, then open the next one.
      line += '\n';
      fputs(line.c_str(), stderr);
      line = "DEBUG: ";
      line += label;
      append(line, " %04x:", i);
    }
    if (!(i < size)) break;
    // " %02x", spelt out by hand: a formatted write per byte was most of
    // the time the filter spent on a reply.
    static const char kHexDigits[] = "0123456789abcdef";
    const char hex[3] = {' ', kHexDigits[bytes[i] >> 4],
                         kHexDigits[bytes[i] & 0xf]};
    line.append(hex, sizeof(hex));
  }
  line += '\n';
  fputs(line.c_str(), stderr);
}
