#include "link/escape_commands.h"

#include <cups/sidechannel.h>
#include <unistd.h>

#include <cstdio>

#include "debug/cups_names.h"
#include "debug/dump_mem.h"
#include "link/back_channel.h"

namespace {

// The escape commands, byte for byte.  The job-status command carries two
// zero bytes after its name.
const char kWakeUp[] = {0x1b, 'E', 'W', 'U'};
const char kPrinterInfo[] = {0x1b, 'V', '2', '1'};
const char kJobStatus[] = {0x1b, 'V', '1', '0', 0x00, 0x00};

// The smallest replies that hold everything the records read.
const ssize_t kPrinterInfoSize = 192;
const ssize_t kJobStatusSize = 20;

// Room for a side-channel answer and for a reply.
const int kBufferSize = 512;

// Writes a command to the printer and has the backend drain it; on a write
// or flush failure logs it with the END line and returns false.
bool send_command(const char* name, const char* command, size_t length,
                  char* buffer) {
  dump_mem("[CMD]", command, static_cast<int>(length));
  size_t written = fwrite(command, 1, length, stdout);
  if (written != length) {
    fprintf(stderr, "DEBUG: fwrite() failed. ret=%zu\n", written);
    fprintf(stderr, "DEBUG: %s() END\n", name);
    return false;
  }
  if (fflush(stdout) != 0) {
    fprintf(stderr, "DEBUG: fflush() failed.\n");
    fprintf(stderr, "DEBUG: %s() END\n", name);
    return false;
  }
  // A drain that fails is only logged: the reply may come all the same.
  int datalen = kBufferSize;
  cups_sc_status_t status = cupsSideChannelDoRequest(
      CUPS_SC_CMD_DRAIN_OUTPUT, buffer, &datalen, 5.0);
  if (status != CUPS_SC_STATUS_OK)
    fprintf(stderr, "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=%s(%d)\n",
            to_string(status), static_cast<int>(status));
  return true;
}

// Sends a query and parses its reply of at least reply_size bytes into a
// Record; Record::Unavailable() on any failure.
template <typename Record>
Record query(const char* name, const char* command, size_t length,
             ssize_t reply_size) {
  fprintf(stderr, "DEBUG: %s() START\n", name);
  char buffer[kBufferSize];
  if (!send_command(name, command, length, buffer))
    return Record::Unavailable();

  // Gather the reply however the printer splits it, a second at most for
  // each piece.
  ssize_t count = 0;
  while (count < reply_size) {
    ssize_t result = read_back_channel(
        buffer + count, static_cast<size_t>(kBufferSize - count), 1.0);
    if (result < 1) {
      fprintf(stderr, "DEBUG: cupsBackChannelRead() failed. ret=%zd\n",
              result);
      fprintf(stderr, "DEBUG: %s() END\n", name);
      return Record::Unavailable();
    }
    count += result;
  }
  dump_mem("[STS]", buffer, static_cast<int>(count));
  fprintf(stderr, "DEBUG: %s() END\n", name);
  return Record::Parse(buffer);
}

}  // namespace

// Sends the wake-up command and gives the printer half a second.
int wr_esc_wakeup() {
  fprintf(stderr, "DEBUG: wr_esc_wakeup() START\n");
  char buffer[kBufferSize];
  if (!send_command("wr_esc_wakeup", kWakeUp, sizeof(kWakeUp), buffer))
    return -1;
  usleep(500000);
  fprintf(stderr, "DEBUG: wr_esc_wakeup() END\n");
  return 0;
}

// Asks the printer for its information block.
PrinterInfo get_printer_info() {
  return query<PrinterInfo>("get_printer_info", kPrinterInfo,
                            sizeof(kPrinterInfo), kPrinterInfoSize);
}

// Asks the printer for its job status.
JobStatus get_job_status() {
  return query<JobStatus>("get_job_status", kJobStatus, sizeof(kJobStatus),
                          kJobStatusSize);
}
