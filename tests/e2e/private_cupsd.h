// PrivateCupsd: a CUPS scheduler of the test's own, on a free loopback port,
// with every file it reads or writes under one temporary folder.
//
// The folder holds cupsd.conf and cups-files.conf, filled in from
// tests/e2e/cupsd.conf.in and cups-files.conf.in (which the shell scripts'
// private schedulers use too, through tests/e2e/private_cupsd.sh), the
// spool, cache, state and log folders, and a private server folder (bin/)
// with our filter and backend copied in and cups-exec linked from the
// system's.  The system's /etc/cups, /etc/printcap, spool and running
// scheduler (if any) are never touched.  The scheduler runs as root (it
// must, to switch filters and backends to the unprivileged "lp" user); the
// tree is made readable for that user.
//
// Queues are added and jobs submitted with the real command-line tools
// (lpadmin, lp, cupsdisable) against "127.0.0.1:PORT"; states and attributes
// are read back over IPP with the CUPS API.

#ifndef QUILLAROTH_TESTS_E2E_PRIVATE_CUPSD_H_
#define QUILLAROTH_TESTS_E2E_PRIVATE_CUPSD_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/subprocess.h"

class PrivateCupsd {
 public:
  // Remembers the programs to install; nothing runs yet.
  PrivateCupsd(std::string cupsd, std::string cups_exec,
               std::string data_dir, std::string filter, std::string backend,
               std::string ppd);
  // Stops the scheduler and removes the tree.
  ~PrivateCupsd();

  PrivateCupsd(const PrivateCupsd&) = delete;
  PrivateCupsd& operator=(const PrivateCupsd&) = delete;

  // Why no private scheduler can run here ("" when one can): it needs root.
  static std::string WhyNotHere();

  // Checks that we are root and that cupsd is installed, then makes the
  // tree's empty root folder (no CUPS call yet, so that the caller can point
  // HOME and the client's configuration into it before libcups reads them).
  // Returns false with a reason in *error.
  bool MakeRoot(std::string* error);
  // Builds the tree, starts cupsd and waits until it answers IPP requests.
  // Returns false with a reason in *error.
  bool Start(std::string* error);
  // Stops cupsd (SIGTERM, then SIGKILL after 5 s) and waits for it.
  void Stop();
  // Deletes the temporary tree (after Stop).
  void RemoveTree();

  bool running() const { return cupsd_process_ != nullptr; }
  // "127.0.0.1:PORT".
  std::string address() const;
  const std::string& root() const { return root_; }

  // Restarts the scheduler with the same queues and LINES added to its
  // cupsd.conf (for example a <Location> that asks for authentication).
  // Returns false with a reason in *error.
  bool RestartWith(const std::string& lines, std::string* error);

  // Links the system's CUPS backend NAME (for example "socket" or "usb",
  // from the server folder that cups-exec comes from) into the private
  // server folder, so that queues can use its scheme.  cupsd runs it as
  // the system would: as lp when it is world-executable, else as root.
  // Returns false with a reason in *error.
  bool AddSystemBackend(const std::string& name, std::string* error);

  // lpadmin -p NAME -E -v URI -P PPD.
  ProgramResult AddQueue(const std::string& name, const std::string& uri);
  // lpadmin -p NAME -v URI.
  ProgramResult SetDeviceUri(const std::string& name, const std::string& uri);
  // lpadmin -d NAME.
  ProgramResult SetDefault(const std::string& name);
  // lpadmin -x NAME.
  ProgramResult DeleteQueue(const std::string& name);
  // cupsdisable NAME.
  ProgramResult DisableQueue(const std::string& name);

  // Writes the command file and submits it with
  // lp -d QUEUE -o document-format=application/vnd.cups-command FILE.
  // Returns the job id, or 0 with the reason in *error.
  int SubmitCommandJob(const std::string& queue, const std::string& commands,
                       std::string* error);
  // Polls the job's state until it has ended or the time-out passes;
  // returns the last job-state seen (0 when it could not be read).
  int WaitForJob(int job_id, double timeout_seconds);

  // The queue's printer-state-reasons and marker-* attributes over IPP, one
  // "name=value" line each in a fixed order (printer-state-reasons,
  // marker-colors, marker-levels, marker-message, marker-names,
  // marker-types); attributes that the queue lacks are left out; values of
  // multi-valued attributes are joined with commas.
  std::string PrinterAttributes(const std::string& queue);
  // The default destination's name per CUPS-Get-Default, "" when none.
  std::string DefaultDestination();

  // The whole error_log.
  std::string ErrorLog() const;
  // The error_log lines of one job ("[Job N]"), timestamps kept.
  std::string JobLog(int job_id) const;
  // The messages of one job, in the log's order: the text after the
  // "[date] [Job N] " of each of its lines.
  std::vector<std::string> JobMessages(int job_id) const;
  // The messages of one job that begin with PREFIX, one a line.
  std::string JobLines(int job_id, std::string_view prefix) const;
  // The job's filter chain as the scheduler logged it, with timestamps,
  // the tree's path and process ids taken out.
  std::string FilterChain(int job_id) const;
  // The filter's "DEBUG: #retry_status=[...]" lines of one job, text after
  // the "[Job N] " label.
  std::string RetryStatusLines(int job_id) const;
  // The scheduler's lines about the ends of the job's processes ("[Job N]
  // PID n (ROOT/bin/filter/commandtoquillaroth) exited with no errors."),
  // process ids and the tree's path taken out, sorted: the filter and the
  // backend may end at the same time.
  std::string ProcessExits(int job_id) const;

 private:
  // Writes the configuration files and folders of the tree.
  bool BuildTree(std::string* error);
  // Starts cupsd -f on the tree's configuration.
  void Launch();
  // Waits until cupsd answers, or fails after 15 s or when it exits.
  bool WaitUntilAnswering(std::string* error);

  std::string cupsd_;
  std::string cups_exec_;
  std::string data_dir_;
  std::string filter_;
  std::string backend_;
  std::string ppd_;
  std::string root_;
  int port_ = 0;
  std::unique_ptr<Subprocess> cupsd_process_;
  int job_files_ = 0;
};

#endif  // QUILLAROTH_TESTS_E2E_PRIVATE_CUPSD_H_
