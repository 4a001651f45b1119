// Guarded reads from the CUPS back channel (CUPS_BC_FD, descriptor 3).
//
// libcups' cupsBackChannelRead() does not keep its time-out on every
// platform we ship to: when its wait runs out it falls through to a blocking
// read(), so a printer that stops answering would hang the filter, and on a
// closed descriptor it spins.  read_back_channel() first waits for the
// descriptor itself and lets libcups read only when there is something to
// read.

#ifndef QUILLAROTH_LINK_BACK_CHANNEL_H_
#define QUILLAROTH_LINK_BACK_CHANNEL_H_

#include <sys/types.h>

#include <cstddef>

// Reads up to size bytes from the back channel, waiting at most timeout
// seconds for the first one.  Returns the count read, 0 at end of file, or -1
// when the wait runs out or the descriptor is not open.
ssize_t read_back_channel(char* buffer, size_t size, double timeout);

#endif  // QUILLAROTH_LINK_BACK_CHANNEL_H_
