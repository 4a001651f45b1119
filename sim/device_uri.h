// The backend's device URI: quillarothsim://NAME?key=value&key=value
//
// NAME only names the simulated printer.  The keys script it:
//   total=N remaining=N   ribbon counts (0-65535)
//   error=XXXXXX          the printer's error code (6 hex digits)
//   sheet=XXXX            the ink-sheet type (4 hex digits)
//   power=XX memory=XX mech=XXXX   the other state bytes
//   wake=N|never          queries that find the printer still asleep
//   oneway=1|0            answer the probe as a one-way link

#ifndef QUILLAROTH_SIM_DEVICE_URI_H_
#define QUILLAROTH_SIM_DEVICE_URI_H_

#include <string>

#include "sim/scenario.h"

constexpr char DEVICE_URI_SCHEME[] = "quillarothsim";

// Fills the scenario from the URI.  On a bad URI, key or value returns false
// and says why in *why (one line, no "ERROR:" prefix).
bool parse_device_uri(const std::string& uri, Scenario* scenario,
                      std::string* why);

#endif  // QUILLAROTH_SIM_DEVICE_URI_H_
