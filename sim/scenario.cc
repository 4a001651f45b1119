// Parsing of the simulated printer's script keys.

#include "sim/scenario.h"

#include <strings.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace {

// The CUPS side-channel statuses by number, without their common prefix.
const char* const SC_STATUS_NAMES[] = {
    "NONE",        "OK",      "IO_ERROR", "TIMEOUT", "NO_RESPONSE",
    "BAD_MESSAGE", "TOO_BIG", "NOT_IMPLEMENTED"};
constexpr int SC_STATUS_COUNT = 8;

// The value of one hex digit, or -1.
int hex_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Splits text at every separator character.
std::vector<std::string> split_at(const std::string& text, char separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    size_t end = text.find(separator, start);
    parts.push_back(text.substr(start, end - start));
    if (end == std::string::npos) return parts;
    start = end + 1;
  }
}

// Parses "A+B+C" (or "A,B,C") piece sizes, each at least 1.
bool parse_pieces(const std::string& text, char separator,
                  std::vector<size_t>* out) {
  std::vector<size_t> pieces;
  for (const std::string& part : split_at(text, separator)) {
    long n = 0;
    if (!parse_count(part, 1, 65536, &n)) return false;
    pieces.push_back(static_cast<size_t>(n));
  }
  *out = pieces;
  return true;
}

}  // namespace

// Parses exactly 2*count hex digits into count bytes.
bool parse_hex_exact(const std::string& text, uint8_t* out, size_t count) {
  if (text.size() != 2 * count) return false;
  for (size_t i = 0; i < count; i++) {
    int high = hex_value(text[2 * i]);
    int low = hex_value(text[2 * i + 1]);
    if (high < 0 || low < 0) return false;
    out[i] = static_cast<uint8_t>(high * 16 + low);
  }
  return true;
}

// Parses hex digit pairs, allowing blanks and colons between the bytes.
bool parse_hex_bytes(const std::string& text, Bytes* out) {
  Bytes bytes;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] == ' ' || text[i] == ':' || text[i] == '\n' ||
        text[i] == '\t') {
      i++;
      continue;
    }
    if (i + 1 >= text.size()) return false;
    int high = hex_value(text[i]);
    int low = hex_value(text[i + 1]);
    if (high < 0 || low < 0) return false;
    bytes.push_back(static_cast<uint8_t>(high * 16 + low));
    i += 2;
  }
  *out = bytes;
  return true;
}

// Parses a decimal number in [min, max], nothing else in the text.
bool parse_count(const std::string& text, long min, long max, long* out) {
  if (text.empty() || !isdigit(static_cast<unsigned char>(text[0])))
    return false;
  errno = 0;
  char* end = nullptr;
  long value = strtol(text.c_str(), &end, 10);
  if (errno != 0 || *end != '\0' || value < min || value > max) return false;
  *out = value;
  return true;
}

// Parses a side-channel status name (with or without the CUPS prefix) or
// number.
bool parse_sc_status(const std::string& text, int* out) {
  long number = 0;
  if (parse_count(text, 0, 255, &number)) {
    *out = static_cast<int>(number);
    return true;
  }
  std::string name = text;
  if (strncasecmp(name.c_str(), "CUPS_SC_STATUS_", 15) == 0)
    name = name.substr(15);
  for (int i = 0; i < SC_STATUS_COUNT; i++) {
    if (strcasecmp(name.c_str(), SC_STATUS_NAMES[i]) == 0) {
      *out = i;
      return true;
    }
  }
  return false;
}

// The short status name for the log, or the number when it has none.
std::string sc_status_name(int status) {
  if (status >= 0 && status < SC_STATUS_COUNT) return SC_STATUS_NAMES[status];
  return std::to_string(status);
}

// Parses the wake-up point: a number of sleeping queries or "never".
bool parse_wake_after(const std::string& text, long* out) {
  if (text == "never") {
    *out = -1;
    return true;
  }
  return parse_count(text, 0, 1000000, out);
}

// Sets one reply key in the shape; explains a bad key or value in *why.
bool set_reply_key(ReplyShape* shape, const std::string& key,
                   const std::string& value, std::string* why) {
  uint8_t bytes[3];
  long n = 0;
  if (key == "power" || key == "memory") {
    if (!parse_hex_exact(value, bytes, 1)) {
      *why = key + " takes 2 hex digits, not \"" + value + "\"";
      return false;
    }
    (key == "power" ? shape->power : shape->memory) = bytes[0];
  } else if (key == "mech" || key == "sheet") {
    if (!parse_hex_exact(value, bytes, 2)) {
      *why = key + " takes 4 hex digits, not \"" + value + "\"";
      return false;
    }
    (key == "mech" ? shape->mech : shape->sheet) =
        std::array<uint8_t, 2>{bytes[0], bytes[1]};
  } else if (key == "error") {
    if (!parse_hex_exact(value, bytes, 3)) {
      *why = "error takes 6 hex digits, not \"" + value + "\"";
      return false;
    }
    shape->error = std::array<uint8_t, 3>{bytes[0], bytes[1], bytes[2]};
  } else if (key == "total" || key == "remaining") {
    if (!parse_count(value, 0, 65535, &n)) {
      *why = key + " takes a number 0-65535, not \"" + value + "\"";
      return false;
    }
    (key == "total" ? shape->total : shape->remaining) =
        static_cast<uint16_t>(n);
  } else if (key == "raw") {
    Bytes raw;
    if (!parse_hex_bytes(value, &raw)) {
      *why = "raw takes hex bytes, not \"" + value + "\"";
      return false;
    }
    shape->raw = raw;
  } else if (key == "size" || key == "short") {
    if (!parse_count(value, 0, 65536, &n)) {
      *why = key + " takes a byte count, not \"" + value + "\"";
      return false;
    }
    shape->size = static_cast<size_t>(n);
  } else if (key == "split") {
    std::vector<size_t> pieces;
    char separator = value.find(',') != std::string::npos ? ',' : '+';
    if (!parse_pieces(value, separator, &pieces)) {
      *why = "split takes piece sizes like 100+92, not \"" + value + "\"";
      return false;
    }
    shape->split = pieces;
  } else if (key == "none" || key == "close") {
    if (!value.empty()) {
      *why = key + " takes no value";
      return false;
    }
    (key == "none" ? shape->none : shape->close) = true;
  } else {
    *why = "unknown key \"" + key + "\"";
    return false;
  }
  return true;
}

// Sets every key of a comma-separated "key=value" list.
bool set_reply_keys(ReplyShape* shape, const std::string& list,
                    std::string* why) {
  for (const std::string& item : split_at(list, ',')) {
    size_t equals = item.find('=');
    std::string key = item.substr(0, equals);
    std::string value =
        equals == std::string::npos ? std::string() : item.substr(equals + 1);
    if (!set_reply_key(shape, key, value, why)) return false;
  }
  return true;
}
