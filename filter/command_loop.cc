#include "filter/command_loop.h"

#include <cups/sidechannel.h>

#include <cstdio>

#include "debug/cups_names.h"
#include "link/channel_buffer.h"
#include "link/printer_info_retry.h"
#include "report/printer_state_reasons.h"
#include "report/report_printer_levels.h"
#include "status/printer_info.h"
#include "status/printer_levels.h"
#include "status/printer_state.h"

// libcups' own case-insensitive comparison: exported by the library, but
// declared in none of its public headers.
extern "C" int _cups_strcasecmp(const char* s, const char* t);

namespace {

// How long the backend may take to say whether the link is bidirectional.
const double kBidiProbeTimeout = 30.0;
// Room for one line of the command file.
const int kCommandLineSize = 1024;

}  // namespace

bool probe_bidirectional() {
  char data[kChannelBufferSize];
  int datalen = sizeof(data);
  cups_sc_status_t status = cupsSideChannelDoRequest(
      CUPS_SC_CMD_GET_BIDI, data, &datalen, kBidiProbeTimeout);
  if (status == CUPS_SC_STATUS_OK && datalen == 1 &&
      static_cast<signed char>(data[0]) == CUPS_SC_BIDI_SUPPORTED)
    return true;
  fprintf(stderr,
          "DEBUG: Unable to retrieve supply status from printer - "
          "nobidirectional I/O available! %s(%d)\n",
          to_string(status), static_cast<int>(status));
  return false;
}

void run_command_loop(cups_file_t* file, bool bidirectional) {
  char command[kCommandLineSize];
  char* value = nullptr;
  int linenum = 0;
  while (cupsFileGetConf(file, command, sizeof(command), &value, &linenum) !=
         nullptr) {
    fprintf(stderr, "DEBUG: ====> command=[%s] linenum=%d\n", command,
            linenum);
    if (_cups_strcasecmp(command, "ReportLevels") == 0) {
      if (bidirectional) {
        // The same reply gives the levels and the state, levels first.
        PrinterInfo info = get_printer_info_retry();
        report_printer_levels(info.GetPrinterLevels());
        update_printer_state(info.GetPrinterState());
      } else {
        report_printer_levels(PrinterLevels::Unavailable());
      }
    } else if (_cups_strcasecmp(command, "ReportStatus") == 0) {
      if (bidirectional)
        update_printer_state(get_printer_info_retry().GetPrinterState());
      else
        update_printer_state(PrinterState::Unavailable());
    }
  }
}
