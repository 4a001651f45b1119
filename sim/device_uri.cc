#include "sim/device_uri.h"

#include "sim/option_table.h"

namespace {

// Separates the keys of the URI's query.
constexpr char kUriKeySeparator = '&';

}  // namespace

bool parse_device_uri(const std::string& uri, Scenario* scenario,
                      std::string* why) {
  std::string prefix = std::string(kDeviceUriScheme) + "://";
  if (uri.compare(0, prefix.size(), prefix) != 0) {
    *why = "not a " + std::string(kDeviceUriScheme) + " URI";
    return false;
  }
  size_t question = uri.find('?', prefix.size());
  if (question == std::string::npos) return true;
  return apply_keys(uri.substr(question + 1), kUriKeySeparator, kScenarioKey,
                    scenario_target(scenario), why);
}
