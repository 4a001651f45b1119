#include "link/back_channel.h"

#include <cups/cups.h>
#include <cups/sidechannel.h>
#include <poll.h>

#include <cerrno>

ssize_t read_back_channel(char* buffer, size_t size, double timeout) {
  struct pollfd channel = {CUPS_BC_FD, POLLIN, 0};
  int result;
  do {
    result = poll(&channel, 1, static_cast<int>(timeout * 1000));
  } while (result < 0 && errno == EINTR);
  // A wait that runs out, a failed wait, and a descriptor that is not open
  // all mean that no reply can come.
  if (result <= 0 || (channel.revents & POLLNVAL) != 0) return -1;
  // Readable, or closed by the backend: libcups reads the bytes or the end.
  return cupsBackChannelRead(buffer, size, timeout);
}
