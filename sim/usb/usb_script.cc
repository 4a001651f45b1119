// Parsing of the emulated USB printer's script.

#include "sim/usb/usb_script.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "sim/option_table.h"
#include "sim/value_parsers.h"

namespace {

// Sets one of the device's own keys; false on a bad value.
bool set_device_key(UsbScript* script, const std::string& key,
                    const std::string& value, std::string* why) {
  long n = 0;
  bool ok = true;
  if (key == "oneway") {
    ok = parse_switch(value, &script->oneway);
    if (!ok) *why = "oneway takes 1 or 0, not \"" + value + "\"";
  } else if (key == "zlp") {
    ok = parse_switch(value, &script->end_with_zlp);
    if (!ok) *why = "zlp takes 1 or 0, not \"" + value + "\"";
  } else if (key == "packet") {
    ok = parse_count(value, 8, 512, &n) &&
         (n == 8 || n == 16 || n == 32 || n == 64 || n == 512);
    if (ok)
      script->packet_size = static_cast<size_t>(n);
    else
      *why = "packet takes 8, 16, 32, 64 or 512, not \"" + value + "\"";
  } else if (key == "empty" || key == "appear") {
    ok = parse_count(value, key == "appear" ? 1 : 0, 1000000, &n);
    if (ok)
      (key == "empty" ? script->empty_packets : script->appear_at_scan) = n;
    else
      *why = key + " takes a number, not \"" + value + "\"";
  }
  return ok;
}

// Strips blanks and tabs from both ends.
std::string trim(const std::string& text) {
  size_t start = text.find_first_not_of(" \t\r");
  if (start == std::string::npos) return "";
  size_t end = text.find_last_not_of(" \t\r");
  return text.substr(start, end - start + 1);
}

}  // namespace

// The device's keys, the Nth reply, then the simulator's scenario keys.
bool set_usb_script_key(UsbScript* script, const std::string& key,
                        const std::string& value, std::string* why) {
  static const char* const kDeviceKeys[] = {"oneway", "zlp", "packet", "empty",
                                            "appear"};
  for (const char* device_key : kDeviceKeys)
    if (key == device_key) return set_device_key(script, key, value, why);
  OptionTarget target = scenario_target(&script->printer);
  if (key == "reply") {
    long number = 0;
    std::string keys;
    if (!parse_numbered(value, &number, &keys)) {
      *why = "reply takes N:key=value,..., not \"" + value + "\"";
      return false;
    }
    target.shape = &script->printer.per_query[number];
    return apply_keys(keys, kKeySeparator, kPerQuery, target, why);
  }
  const OptionSpec* option = find_option(key, kScenarioKey);
  if (option == nullptr) {
    *why = "unknown key \"" + key + "\"";
    return false;
  }
  if (option->group == OptionGroup::kSideChannel) {
    *why = key + " is CUPS' usb backend's to answer, not the printer's";
    return false;
  }
  return apply_option(*option, key, value, target, why);
}

// Applies each "key=value" line; comments and blank lines are skipped.
bool parse_usb_script(const std::string& text, UsbScript* script,
                      std::string* why) {
  std::istringstream lines(text);
  std::string line;
  for (int number = 1; std::getline(lines, line); number++) {
    line = trim(line.substr(0, line.find('#')));
    if (line.empty()) continue;
    size_t equals = line.find('=');
    std::string key = trim(line.substr(0, equals));
    std::string value =
        equals == std::string::npos ? "" : trim(line.substr(equals + 1));
    std::string reason;
    if (!set_usb_script_key(script, key, value, &reason)) {
      *why = "line " + std::to_string(number) + ": " + reason;
      return false;
    }
  }
  return true;
}

// Reads and parses the file; a missing file is the default printer.
bool load_usb_script(const std::string& path, UsbScript* script,
                     std::string* why) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    if (errno == ENOENT) return true;
    *why = path + ": " + strerror(errno);
    return false;
  }
  std::ostringstream text;
  text << file.rdbuf();
  if (!parse_usb_script(text.str(), script, why)) {
    *why = path + " " + *why;
    return false;
  }
  return true;
}
