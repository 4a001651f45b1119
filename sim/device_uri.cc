// Parsing of the backend's device URI.

#include "sim/device_uri.h"

namespace {

// Applies one key=value pair of the URI's query.
bool apply_uri_key(const std::string& key, const std::string& value,
                   Scenario* scenario, std::string* why) {
  if (key == "wake") {
    if (!parse_wake_after(value, &scenario->wake_after)) {
      *why = "wake takes a number or never, not \"" + value + "\"";
      return false;
    }
    return true;
  }
  if (key == "oneway") {
    if (value != "0" && value != "1") {
      *why = "oneway takes 1 or 0, not \"" + value + "\"";
      return false;
    }
    scenario->bidi_data = {static_cast<uint8_t>(value == "1" ? 0 : 1)};
    return true;
  }
  static const char* const REPLY_KEYS[] = {"total", "remaining", "error",
                                           "sheet", "power",     "memory",
                                           "mech"};
  for (const char* known : REPLY_KEYS) {
    if (key == known) return set_reply_key(&scenario->every, key, value, why);
  }
  *why = "unknown key \"" + key + "\"";
  return false;
}

}  // namespace

// Checks the scheme, then applies each key of the query.
bool parse_device_uri(const std::string& uri, Scenario* scenario,
                      std::string* why) {
  std::string prefix = std::string(DEVICE_URI_SCHEME) + "://";
  if (uri.compare(0, prefix.size(), prefix) != 0) {
    *why = "not a " + std::string(DEVICE_URI_SCHEME) + " URI";
    return false;
  }
  size_t question = uri.find('?', prefix.size());
  if (question == std::string::npos) return true;
  std::string query = uri.substr(question + 1);
  size_t start = 0;
  while (start <= query.size()) {
    size_t end = query.find('&', start);
    if (end == std::string::npos) end = query.size();
    std::string item = query.substr(start, end - start);
    if (!item.empty()) {
      size_t equals = item.find('=');
      if (equals == std::string::npos) {
        *why = "\"" + item + "\" is not key=value";
        return false;
      }
      if (!apply_uri_key(item.substr(0, equals), item.substr(equals + 1),
                         scenario, why))
        return false;
    }
    start = end + 1;
  }
  return true;
}
