// A fleet of queues written straight into a stopped private scheduler's
// printers.conf, so that hundreds of queues cost no lpadmin call each:
// most without a PPD (other printers), some on the simulated printer with
// its PPD.

#ifndef QUILLAROTH_TESTS_ADMIN_FLEET_H_
#define QUILLAROTH_TESTS_ADMIN_FLEET_H_

#include <string>

#include "tests/e2e/private_cupsd.h"

// The name of the fleet's queue number N: "fleet-NNN".
std::string FleetQueue(int n);

// Restarts CUPSD with QUEUES queues "fleet-NNN", every STRIDE-th of them
// using the filter, on a printer with 120 of 350 prints left.  False with
// a reason.
bool StartFleet(PrivateCupsd& cupsd, int queues, int stride,
                const std::string& ppd_path, std::string* error);

#endif  // QUILLAROTH_TESTS_ADMIN_FLEET_H_
