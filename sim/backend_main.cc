// quillarothsim: a CUPS backend with a simulated printer behind it.
//
// With no arguments it lists itself, as cupsd and lpinfo ask backends to.
// Run by cupsd for a job (job-id user title copies options [file], the
// device URI in DEVICE_URI or argv[0]) it takes the escape commands that
// the filter writes from stdin (or the file), answers the side channel on
// descriptor 4 and writes the printer's replies to the back channel on
// descriptor 3, until its input ends.  The device URI scripts the printer
// (see sim/device_uri.h); a queue on it works with no printer attached.

#include <cups/backend.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "sim/device_uri.h"
#include "sim/serve.h"
#include "sim/sim_log.h"

namespace {

// The device URI: DEVICE_URI, or argv[0] when cupsd put it there.
std::string device_uri(const char* argv0) {
  const char* uri = getenv("DEVICE_URI");
  if (uri != nullptr) return uri;
  if (strstr(argv0, "://") != nullptr) return argv0;
  return "";
}

}  // namespace

// Lists the backend, or serves one job.
int main(int argc, char** argv) {
  if (argc == 1) {
    printf("network %s \"Unknown\" \"Quillaroth simulated printer\"\n",
           kDeviceUriScheme);
    return CUPS_BACKEND_OK;
  }
  if (argc < 6 || argc > 7) {
    fprintf(stderr, "Usage: %s job-id user title copies options [file]\n",
            argv[0]);
    return CUPS_BACKEND_FAILED;
  }

  std::string uri = device_uri(argv[0]);
  Scenario scenario;
  std::string why;
  if (uri.empty()) {
    fprintf(stderr, "ERROR: No device URI given\n");
    return CUPS_BACKEND_FAILED;
  }
  if (!parse_device_uri(uri, &scenario, &why)) {
    fprintf(stderr, "ERROR: Bad device URI \"%s\": %s\n", uri.c_str(),
            why.c_str());
    return CUPS_BACKEND_FAILED;
  }

  int input_fd = 0;
  if (argc == 7) {
    input_fd = open(argv[6], O_RDONLY);
    if (input_fd < 0) {
      fprintf(stderr, "ERROR: Unable to open print file \"%s\": %s\n", argv[6],
              strerror(errno));
      return CUPS_BACKEND_FAILED;
    }
  }

  signal(SIGPIPE, SIG_IGN);
  SimLog log(stderr, "DEBUG: sim: ");
  ServeChannels channels;
  channels.input_fd = input_fd;
  channels.until_sidechannel_eof = false;
  serve_printer(scenario, channels, log);
  return CUPS_BACKEND_OK;
}
