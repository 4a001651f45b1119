#include "link/escape_commands.h"

#include <cups/sidechannel.h>
#include <unistd.h>

#include <cstdio>

#include "debug/cups_names.h"
#include "debug/dump_mem.h"
#include "link/back_channel.h"
#include "link/channel_buffer.h"

namespace {

// The escape commands, byte for byte.  The job-status command carries two
// zero bytes after its name.
const char kWakeUp[] = {0x1b, 'E', 'W', 'U'};
const char kPrinterInfo[] = {0x1b, 'V', '2', '1'};
const char kJobStatus[] = {0x1b, 'V', '1', '0', 0x00, 0x00};

// The smallest replies that hold everything the records read.
const ssize_t kPrinterInfoSize = 192;
const ssize_t kJobStatusSize = 20;

// How long the backend may take to push a command out to the printer.
const double kDrainTimeout = 5.0;
// How long each piece of a reply may take to arrive.
const double kReplyReadTimeout = 1.0;
// The printer's time to wake up after the wake-up command: half a second.
const useconds_t kWakeUpPause = 500000;

// Writes a command to the printer and has the backend drain it; logs a write
// or flush failure and returns false.
bool send_command(const char* command, size_t length, char* buffer) {
  dump_mem("[CMD]", command, static_cast<int>(length));
  size_t written = fwrite(command, 1, length, stdout);
  if (written != length) {
    fprintf(stderr, "DEBUG: fwrite() failed. ret=%zu\n", written);
    return false;
  }
  if (fflush(stdout) != 0) {
    fprintf(stderr, "DEBUG: fflush() failed.\n");
    return false;
  }
  // A drain that fails is only logged: the reply may come all the same.
  int datalen = kChannelBufferSize;
  cups_sc_status_t status = cupsSideChannelDoRequest(
      CUPS_SC_CMD_DRAIN_OUTPUT, buffer, &datalen, kDrainTimeout);
  if (status != CUPS_SC_STATUS_OK)
    fprintf(stderr, "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=%s(%d)\n",
            to_string(status), static_cast<int>(status));
  return true;
}

// Gathers a reply of at least reply_size bytes into buffer, however the
// printer splits it, and dumps it; logs a failed read and returns false.
bool read_reply(char* buffer, ssize_t reply_size) {
  ssize_t count = 0;
  while (count < reply_size) {
    ssize_t result =
        read_back_channel(buffer + count,
                          static_cast<size_t>(kChannelBufferSize - count),
                          kReplyReadTimeout);
    if (result < 1) {
      fprintf(stderr, "DEBUG: cupsBackChannelRead() failed. ret=%zd\n",
              result);
      return false;
    }
    count += result;
  }
  dump_mem("[STS]", buffer, static_cast<int>(count));
  return true;
}

// Sends a query and parses its reply of at least reply_size bytes into a
// Record; Record::Unavailable() on any failure.
template <typename Record>
Record query(const char* command, size_t length, ssize_t reply_size) {
  char buffer[kChannelBufferSize];
  if (!send_command(command, length, buffer) ||
      !read_reply(buffer, reply_size))
    return Record::Unavailable();
  return Record::Parse(buffer);
}

}  // namespace

int wr_esc_wakeup() {
  fprintf(stderr, "DEBUG: wr_esc_wakeup() START\n");
  char buffer[kChannelBufferSize];
  int result = -1;
  if (send_command(kWakeUp, sizeof(kWakeUp), buffer)) {
    usleep(kWakeUpPause);
    result = 0;
  }
  fprintf(stderr, "DEBUG: wr_esc_wakeup() END\n");
  return result;
}

PrinterInfo get_printer_info() {
  fprintf(stderr, "DEBUG: get_printer_info() START\n");
  PrinterInfo info = query<PrinterInfo>(kPrinterInfo, sizeof(kPrinterInfo),
                                        kPrinterInfoSize);
  fprintf(stderr, "DEBUG: get_printer_info() END\n");
  return info;
}

JobStatus get_job_status() {
  fprintf(stderr, "DEBUG: get_job_status() START\n");
  JobStatus status =
      query<JobStatus>(kJobStatus, sizeof(kJobStatus), kJobStatusSize);
  fprintf(stderr, "DEBUG: get_job_status() END\n");
  return status;
}
