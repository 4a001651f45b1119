// The printer-state-reasons and marker attributes of a queue, as
// PrivateCupsd::PrinterAttributes() reads them back over IPP.

#ifndef QUILLAROTH_TESTS_E2E_QUEUE_ATTRIBUTES_H_
#define QUILLAROTH_TESTS_E2E_QUEUE_ATTRIBUTES_H_

#include <string>

#include "tests/support/sim_printer.h"

// The marker attributes of a ribbon with the given level, message and
// ink-sheet name, as the queue shows them.
inline std::string Markers(const std::string& level, const std::string& message,
                           const std::string& names) {
  return "marker-colors=#00FF00\n"
         "marker-levels=" +
         level +
         "\n"
         "marker-message=" +
         message +
         "\n"
         "marker-names=" +
         names +
         "\n"
         "marker-types=ink-ribbon\n";
}

// The printer's state reasons and ribbon as the queue shows them, with the
// marker level and the ink sheet's name that its counts and type give.
inline std::string Shown(const std::string& reasons, const SimPrinter& printer,
                         const std::string& level, const char* sheet) {
  return "printer-state-reasons=" + reasons + "\n" +
         Markers(level, printer.RibbonMessage(),
                 std::string("InkSheetType: ") + sheet);
}

#endif  // QUILLAROTH_TESTS_E2E_QUEUE_ATTRIBUTES_H_
