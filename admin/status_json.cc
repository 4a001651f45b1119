#include "admin/status_json.h"

#include <cstdio>

namespace {

std::string IntOrNull(const std::optional<int>& value) {
  return value ? std::to_string(*value) : "null";
}

}  // namespace

std::string JsonString(const std::string& text) {
  std::string json = "\"";
  for (char c : text) {
    unsigned char byte = static_cast<unsigned char>(c);
    if (c == '"') {
      json += "\\\"";
    } else if (c == '\\') {
      json += "\\\\";
    } else if (c == '\n') {
      json += "\\n";
    } else if (c == '\t') {
      json += "\\t";
    } else if (byte < 0x20 || byte == 0x7f) {
      char escaped[8];
      snprintf(escaped, sizeof(escaped), "\\u%04x", byte);
      json += escaped;
    } else {
      json += c;
    }
  }
  return json + "\"";
}

std::string Rfc3339(time_t when) {
  struct tm utc;
  gmtime_r(&when, &utc);
  char text[32];
  strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text;
}

std::string StatusJson(const std::vector<QueueStatus>& queues, time_t now) {
  if (queues.empty()) return "{\"queues\": []}\n";
  std::string json = "{\"queues\": [\n";
  for (size_t q = 0; q < queues.size(); q++) {
    const QueueStatus& s = queues[q];
    json += "  {\n";
    json += "    \"queue\": " + JsonString(s.queue) + ",\n";
    json += "    \"scheme\": " + JsonString(s.scheme) + ",\n";
    json += "    \"state\": " + JsonString(StateName(s.state)) + ",\n";
    json += std::string("    \"enabled\": ") + (s.enabled ? "true" : "false") +
            ",\n";
    if (s.reasons.empty()) {
      json += "    \"reasons\": [],\n";
    } else {
      json += "    \"reasons\": [\n";
      for (size_t r = 0; r < s.reasons.size(); r++) {
        json += "      {\"keyword\": " + JsonString(s.reasons[r].keyword) +
                ", \"text\": " + JsonString(s.reasons[r].text) + "}";
        json += r + 1 < s.reasons.size() ? ",\n" : "\n";
      }
      json += "    ],\n";
    }
    json += "    \"prints_remaining\": " + IntOrNull(s.prints_remaining) + ",\n";
    json += "    \"prints_total\": " + IntOrNull(s.prints_total) + ",\n";
    json += "    \"level_percent\": " + IntOrNull(s.level_percent) + ",\n";
    json += "    \"ink_sheet\": " +
            (s.ink_sheet ? JsonString(*s.ink_sheet) : "null") + ",\n";
    json += "    \"levels_read_at\": " +
            (s.levels_read_at ? JsonString(Rfc3339(*s.levels_read_at))
                              : "null") +
            ",\n";
    json += "    \"levels_age_seconds\": " +
            (s.levels_read_at ? std::to_string(now - *s.levels_read_at)
                              : "null") +
            "\n";
    json += q + 1 < queues.size() ? "  },\n" : "  }\n";
  }
  return json + "]}\n";
}
