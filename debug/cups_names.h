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

// Names a side-channel status; "UNKNOWN" for a value CUPS does not define.
const char* to_string(cups_sc_status_e value);
// Names an AdvanceMedia value.
const char* to_string(cups_adv_e value);
// Names a boolean value.
const char* to_string(cups_bool_e value);
// Names a colour space.
const char* to_string(cups_cspace_e value);
// Names a CutMedia value.
const char* to_string(cups_cut_e value);
// Names a LeadingEdge value.
const char* to_string(cups_edge_e value);
// Names a Jog value.
const char* to_string(cups_jog_e value);
// Names a colour order.
const char* to_string(cups_order_e value);
// Names an orientation.
const char* to_string(cups_orient_e value);

#endif  // QUILLAROTH_DEBUG_CUPS_NAMES_H_
