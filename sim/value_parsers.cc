#include "sim/value_parsers.h"

#include <strings.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace {

// A CUPS enumeration value and its name without the common prefix.
struct NamedValue {
  int value;
  const char* name;
};

const NamedValue kScStatusNames[] = {
    {CUPS_SC_STATUS_NONE, "NONE"},
    {CUPS_SC_STATUS_OK, "OK"},
    {CUPS_SC_STATUS_IO_ERROR, "IO_ERROR"},
    {CUPS_SC_STATUS_TIMEOUT, "TIMEOUT"},
    {CUPS_SC_STATUS_NO_RESPONSE, "NO_RESPONSE"},
    {CUPS_SC_STATUS_BAD_MESSAGE, "BAD_MESSAGE"},
    {CUPS_SC_STATUS_TOO_BIG, "TOO_BIG"},
    {CUPS_SC_STATUS_NOT_IMPLEMENTED, "NOT_IMPLEMENTED"},
};
constexpr char kScStatusPrefix[] = "CUPS_SC_STATUS_";

const NamedValue kScCommandNames[] = {
    {CUPS_SC_CMD_NONE, "NONE"},
    {CUPS_SC_CMD_SOFT_RESET, "SOFT_RESET"},
    {CUPS_SC_CMD_DRAIN_OUTPUT, "DRAIN_OUTPUT"},
    {CUPS_SC_CMD_GET_BIDI, "GET_BIDI"},
    {CUPS_SC_CMD_GET_DEVICE_ID, "GET_DEVICE_ID"},
    {CUPS_SC_CMD_GET_STATE, "GET_STATE"},
    {CUPS_SC_CMD_SNMP_GET, "SNMP_GET"},
    {CUPS_SC_CMD_SNMP_GET_NEXT, "SNMP_GET_NEXT"},
    {CUPS_SC_CMD_GET_CONNECTED, "GET_CONNECTED"},
};

// The value of one hex digit, or -1.
int hex_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The byte of two hex digits at text[at], or -1.
int hex_byte(const std::string& text, size_t at) {
  if (at + 1 >= text.size()) return -1;
  int high = hex_value(text[at]);
  int low = hex_value(text[at + 1]);
  return high < 0 || low < 0 ? -1 : high * 16 + low;
}

// The name of value in the table, or its number.
template <size_t N>
std::string name_of(const NamedValue (&table)[N], int value) {
  for (const NamedValue& entry : table)
    if (entry.value == value) return entry.name;
  return std::to_string(value);
}

}  // namespace

bool parse_hex_exact(const std::string& text, size_t count, Bytes* out) {
  if (text.size() != 2 * count) return false;
  Bytes bytes;
  for (size_t i = 0; i < count; i++) {
    int byte = hex_byte(text, 2 * i);
    if (byte < 0) return false;
    bytes.push_back(static_cast<uint8_t>(byte));
  }
  *out = bytes;
  return true;
}

bool parse_hex_bytes(const std::string& text, Bytes* out) {
  Bytes bytes;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] == ' ' || text[i] == ':' || text[i] == '\n' ||
        text[i] == '\t') {
      i++;
      continue;
    }
    int byte = hex_byte(text, i);
    if (byte < 0) return false;
    bytes.push_back(static_cast<uint8_t>(byte));
    i += 2;
  }
  *out = bytes;
  return true;
}

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

bool parse_pieces(const std::string& text, std::vector<size_t>* out) {
  char separator =
      text.find(',') != std::string::npos ? ',' : kListSeparator;
  std::vector<size_t> pieces;
  for (const std::string& part : split_at(text, separator)) {
    long n = 0;
    if (!parse_count(part, 1, 65536, &n)) return false;
    pieces.push_back(static_cast<size_t>(n));
  }
  *out = pieces;
  return true;
}

bool parse_sc_status(const std::string& text, int* out) {
  long number = 0;
  if (parse_count(text, 0, 255, &number)) {
    *out = static_cast<int>(number);
    return true;
  }
  std::string name = text;
  size_t prefix = sizeof kScStatusPrefix - 1;
  if (strncasecmp(name.c_str(), kScStatusPrefix, prefix) == 0)
    name = name.substr(prefix);
  for (const NamedValue& status : kScStatusNames) {
    if (strcasecmp(name.c_str(), status.name) == 0) {
      *out = status.value;
      return true;
    }
  }
  return false;
}

bool parse_switch(const std::string& text, bool* out) {
  if (text != "" && text != "1" && text != "0") return false;
  *out = text != "0";
  return true;
}

bool parse_numbered(const std::string& text, long* number, std::string* rest) {
  size_t colon = text.find(':');
  if (colon == std::string::npos ||
      !parse_count(text.substr(0, colon), 1, 1000000, number))
    return false;
  *rest = text.substr(colon + 1);
  return true;
}

bool parse_count_or_never(const std::string& text, long* out) {
  if (text == "never") {
    *out = -1;
    return true;
  }
  return parse_count(text, 0, 1000000, out);
}

bool parse_host_port(const std::string& text, std::string* host, int* port) {
  size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0) return false;
  std::string name = text.substr(0, colon);
  if (name.front() == '[') {
    if (name.size() < 3 || name.back() != ']') return false;
    name = name.substr(1, name.size() - 2);
  } else if (name.find(':') != std::string::npos) {
    return false;  // an IPv6 address needs its brackets
  }
  long number = 0;
  if (!parse_count(text.substr(colon + 1), 0, 65535, &number)) return false;
  *host = name;
  *port = static_cast<int>(number);
  return true;
}

std::string sc_status_name(int status) {
  return name_of(kScStatusNames, status);
}

std::string sc_command_name(int command) {
  return name_of(kScCommandNames, command);
}

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
