// commandtoquillaroth: the CUPS command filter for the printer.
//
// Started by the scheduler for a command job ("ReportLevels",
// "ReportStatus") beside the backend that owns the printer, it wakes the
// printer, asks for its status through the side and back channels, and
// reports the state reasons and ink-ribbon level on stderr.
//
// Exit status: 1 for a usage error, an unopenable command file or a failed
// wake-up command; 0 otherwise, whatever the printer answered.

#include <cups/file.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "filter/command_loop.h"
#include "link/escape_commands.h"

// Checks the arguments, wakes the printer and handles the command file.
int main(int argc, char* argv[]) {
  if (argc < 6 || argc > 7) {
    fprintf(stderr, "ERROR: Usage: %s job-id user title copies options [file]",
            argv[0]);
    return 1;
  }

  cups_file_t* file;
  if (argc == 7) {
    file = cupsFileOpen(argv[6], "r");
    if (file == nullptr) {
      perror("ERROR: Unable to open command file - ");
      return 1;
    }
  } else {
    file = cupsFileStdin();
  }

  // A backend that has gone away must show up as a failed write, not as a
  // filter killed by SIGPIPE.
  signal(SIGPIPE, SIG_IGN);

  bool bidirectional = probe_bidirectional();

  // The printer is woken even when it cannot answer.
  if (wr_esc_wakeup() != 0) {
    if (file != nullptr) cupsFileClose(file);
    exit(1);
  }

  run_command_loop(file, bidirectional);

  cupsFileClose(file);
  return 0;
}
