// Names of CUPS enumeration values, for the log.
//
// Each overload returns the CUPS enumerator's own identifier, for example
// "CUPS_SC_STATUS_TIMEOUT".  A value that an overload does not know gives
// "<enum>(%d)" written into that overload's own static buffer (valid until
// the overload's next unknown value); the side-channel status overload has
// no buffer and gives "UNKNOWN".  Not re-entrant.

#ifndef QUILLAROTH_DEBUG_CUPS_NAMES_H_
#define QUILLAROTH_DEBUG_CUPS_NAMES_H_

#include <cups/raster.h>
#include <cups/sidechannel.h>

const char* to_string(cups_sc_status_e value);
const char* to_string(cups_adv_e value);
const char* to_string(cups_bool_e value);
const char* to_string(cups_cspace_e value);
const char* to_string(cups_cut_e value);
const char* to_string(cups_edge_e value);
const char* to_string(cups_jog_e value);
const char* to_string(cups_order_e value);
const char* to_string(cups_orient_e value);

#endif  // QUILLAROTH_DEBUG_CUPS_NAMES_H_
