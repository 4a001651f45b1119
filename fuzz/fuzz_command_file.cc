// Fuzz target: the command loop on arbitrary command-file contents.
//
// The input becomes the contents of an in-memory file (memfd), opened with
// libcups' cupsFileOpenFd() as the filter opens its command file, and the
// loop runs on a one-way link so that no printer is queried.

#include <cups/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "filter/command_loop.h"
#include "fuzz/quiet_stderr.h"

// libFuzzer's entry: one command file, one run of the loop.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quiet_stderr();
  int fd = memfd_create("commands", 0);
  if (fd < 0) abort();
  size_t done = 0;
  while (done < size) {
    ssize_t n = write(fd, data + done, size - done);
    if (n <= 0) abort();
    done += static_cast<size_t>(n);
  }
  lseek(fd, 0, SEEK_SET);
  cups_file_t* file = cupsFileOpenFd(fd, "r");
  if (file == nullptr) abort();
  run_command_loop(file, false);
  cupsFileClose(file);  // closes fd as well
  return 0;
}
