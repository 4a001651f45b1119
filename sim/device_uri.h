// The backend's device URI: quillarothsim://NAME?key=value&key=value
//
// NAME only names the simulated printer.  The keys script it: every option
// of sim/option_table.h that scenario keys may use ("error=060202",
// "wake-after=3", "split=100+92" ...), the same names and values as on
// quillaroth-sim's command line.

#ifndef QUILLAROTH_SIM_DEVICE_URI_H_
#define QUILLAROTH_SIM_DEVICE_URI_H_

#include <string>

#include "sim/scenario.h"

constexpr char kDeviceUriScheme[] = "quillarothsim";

// Fills the scenario from the URI.  On a bad URI, key or value returns false
// and says why in *why (one line, no "ERROR:" prefix).
bool parse_device_uri(const std::string& uri, Scenario* scenario,
                      std::string* why);

#endif  // QUILLAROTH_SIM_DEVICE_URI_H_
