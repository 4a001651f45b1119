// Scheduler: the CUPS scheduler that quillaroth talks to, over libcups' IPP
// and HTTP API: the attributes of every queue in one CUPS-Get-Printers
// request, a queue's PPD (GET and CUPS-Add-Modify-Printer, as lpadmin -P
// hands one over), its jobs, and command jobs.

#ifndef QUILLAROTH_ADMIN_SCHEDULER_H_
#define QUILLAROTH_ADMIN_SCHEDULER_H_

#include <cups/cups.h>

#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// One queue's attributes as CUPS-Get-Printers returns them.  A marker
// attribute the queue lacks is empty; *_count tells how many values it had.
struct PrinterAttributes {
  std::string name;
  std::string device_uri;
  int state = IPP_PSTATE_IDLE;
  std::vector<std::string> reasons;
  bool accepting = true;
  int type = 0;  // printer-type bits (CUPS_PRINTER_REMOTE, _CLASS, ...)
  std::vector<int> marker_levels;
  std::optional<std::string> marker_message;
  std::optional<std::string> marker_names;
  time_t marker_change_time = 0;
  time_t config_change_time = 0;
};

// A job that has not ended.
struct ActiveJob {
  int id = 0;
  std::string queue;
  int state = IPP_JSTATE_PENDING;
  // Its document is a CUPS command file.
  bool command = false;
};

// One job's state as Get-Job-Attributes gives it.
struct JobState {
  int state = 0;  // ipp_jstate_t; 0 when the job is no longer known
  std::vector<std::string> reasons;
};

class Scheduler {
 public:
  // Connects to HOST[:PORT], or with HOST "" to $CUPS_SERVER or the local
  // scheduler as every CUPS tool does; nullptr with a one-line reason that
  // names where it looked.
  static std::unique_ptr<Scheduler> Connect(const std::string& host,
                                            std::string* error);
  ~Scheduler();

  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  // "HOST:PORT", or the socket's path: where the scheduler was asked.
  const std::string& where() const { return where_; }

  // The attributes of every queue, in one request.
  bool GetPrinters(std::vector<PrinterAttributes>* printers,
                   std::string* error);

  enum class PpdFetch { kGot, kNoPpd, kFailed };
  // The queue's PPD (GET /printers/QUEUE.ppd), byte for byte.
  PpdFetch GetPpd(const std::string& queue, std::string* text,
                  std::string* error);
  // Hands the queue a new PPD: CUPS-Add-Modify-Printer with the PPD
  // attached, as lpadmin -P does.
  bool PutPpd(const std::string& queue, const std::string& text,
              std::string* error);

  // Every job of every queue that has not ended, in one request.
  bool GetActiveJobs(std::vector<ActiveJob>* jobs, std::string* error);
  // One job's state; state 0 when the scheduler no longer knows it.
  bool GetJobState(int job_id, JobState* state, std::string* error);
  // Submits COMMANDS (a CUPS command file) to QUEUE as one Print-Job;
  // returns the job id, or 0 with the reason in *error.
  int SubmitCommandJob(const std::string& queue, const std::string& title,
                       const std::string& commands, std::string* error);
  // Removes an ended job from the history (Cancel-Job with purge-job, as
  // cancel -x does).
  bool PurgeJob(int job_id, std::string* error);

 private:
  Scheduler(http_t* http, std::string where);

  // Sends REQUEST (taken over) to RESOURCE; the response or nullptr with
  // the reason in *error.
  ipp_t* Request(ipp_t* request, const char* resource, std::string* error);
  // The same with DOCUMENT attached (a PPD, a command file), sent from a
  // temporary file as libcups sends files.
  ipp_t* RequestWithFile(ipp_t* request, const char* resource,
                         const std::string& document, std::string* error);
  // The ipp://localhost/printers/QUEUE URI.
  static std::string PrinterUri(const std::string& queue);

  http_t* http_;
  std::string where_;
};

// The one-line reason of the last failed request, with the rights it needs
// when the scheduler said forbidden or not authorized.
std::string LastErrorText();

#endif  // QUILLAROTH_ADMIN_SCHEDULER_H_
