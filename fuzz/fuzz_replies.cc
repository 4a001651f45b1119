// Fuzz target: the printer's replies as the records parse and report them.
//
// The input is one printer-information reply (the first 192 bytes, zero
// padded when shorter, in a heap block of exactly 192 bytes so that any read
// beyond the reply is caught) and one job-status reply (its first 20 bytes,
// likewise).  Everything the filter derives from them runs: the state and
// the levels, every query, every to_string, both scheduler reports, and the
// same with the records' type tags set to the value of the last input byte,
// as a record that no named constructor makes.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "fuzz/quiet_stderr.h"
#include "report/printer_state_reasons.h"
#include "report/report_printer_levels.h"
#include "status/job_status.h"
#include "status/printer_info.h"
#include "status/printer_levels.h"
#include "status/printer_state.h"

namespace {

// A heap copy of the first `size` bytes of the input, zero padded.
std::unique_ptr<char[]> Reply(const uint8_t* data, size_t length, size_t size) {
  std::unique_ptr<char[]> reply(new char[size]);
  memset(reply.get(), 0, size);
  memcpy(reply.get(), data, length < size ? length : size);
  return reply;
}

// Runs every question and report on a printer-information record.
void Exercise(const PrinterInfo& info) {
  (void)info.isAvailable();
  (void)info.isWakeUp();
  (void)info.isMechGood();
  (void)info.isMemoryFree();
  (void)info.to_string();
  PrinterState state = info.GetPrinterState();
  PrinterLevels levels = info.GetPrinterLevels();
  (void)state.to_string();
  (void)(state == PrinterState::Good());
  (void)(state != PrinterState::Unavailable());
  (void)(state == &info.error_info);
  (void)(state != &info.error_info);
  (void)levels.isAvailable();
  (void)levels.InkSheetTypeName();
  (void)levels.to_string();
  report_printer_levels(levels);
  update_printer_state(state);
}

}  // namespace

// libFuzzer's entry: one input, one round.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quiet_stderr();
  std::unique_ptr<char[]> info_reply = Reply(data, size, 192);
  PrinterInfo info = PrinterInfo::Parse(info_reply.get());
  Exercise(info);

  std::unique_ptr<char[]> job_reply = Reply(data, size, 20);
  JobStatus job = JobStatus::Parse(job_reply.get());
  (void)job.isAvailable();
  (void)job.isReady();
  (void)job.to_string();

  if (size > 0) {
    int32_t tag = static_cast<int8_t>(data[size - 1]);
    info.type = static_cast<PrinterInfo::Type>(tag);
    Exercise(info);
    job.type = static_cast<JobStatus::Type>(tag);
    (void)job.isReady();
    (void)job.to_string();
    PrinterState state = PrinterState(static_cast<PrinterState::Type>(tag),
                                      &info.error_info);
    (void)state.to_string();
    (void)(state == state);
    update_printer_state(state);
    PrinterLevels levels = info.GetPrinterLevels();
    levels.type = static_cast<PrinterLevels::Type>(tag);
    (void)levels.to_string();
    report_printer_levels(levels);
  }
  return 0;
}
