#include "tests/e2e/private_cupsd.h"

#include <cups/cups.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/text.h"

namespace {

// Sleeps for the given number of milliseconds.
void SleepMs(int ms) { usleep(static_cast<useconds_t>(ms) * 1000); }

// Asks the kernel for a loopback TCP port that is free right now.
int FreeLoopbackPort() {
  int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return 0;
  struct sockaddr_in addr;
  memset(&addr, 0, sizeof(addr));
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  addr.sin_port = 0;
  socklen_t len = sizeof(addr);
  int port = 0;
  if (bind(fd, reinterpret_cast<struct sockaddr*>(&addr), sizeof(addr)) == 0 &&
      getsockname(fd, reinterpret_cast<struct sockaddr*>(&addr), &len) == 0)
    port = ntohs(addr.sin_port);
  close(fd);
  return port;
}

// Sends one IPP request to the scheduler on 127.0.0.1:port; the response,
// or nullptr when there was none.  Takes over the request.
ipp_t* DoIppRequest(int port, ipp_t* request, const char* resource) {
  http_t* http = httpConnect2("127.0.0.1", port, nullptr, AF_INET,
                              HTTP_ENCRYPTION_NEVER, 1, 2000, nullptr);
  if (http == nullptr) {
    ippDelete(request);
    return nullptr;
  }
  ipp_t* response = cupsDoRequest(http, request, resource);
  httpClose(http);
  return response;
}

// The values of one attribute joined with commas: integers and enums in
// decimal, everything else as its string.
std::string AttributeValues(ipp_attribute_t* attr) {
  std::string text;
  for (int i = 0; i < ippGetCount(attr); i++) {
    if (i > 0) text += ",";
    ipp_tag_t tag = ippGetValueTag(attr);
    if (tag == IPP_TAG_INTEGER || tag == IPP_TAG_ENUM) {
      text += std::to_string(ippGetInteger(attr, i));
    } else {
      const char* value = ippGetString(attr, i, nullptr);
      text += value != nullptr ? value : "(null)";
    }
  }
  return text;
}

// The folder of cupsd.conf.in and cups-files.conf.in.
constexpr char kConfigTemplates[] = PRIVATE_CUPSD_TEMPLATES;

// Replaces every NAME in *text with VALUE.
void ReplaceAll(std::string* text, const std::string& name,
                const std::string& value) {
  size_t at = 0;
  while ((at = text->find(name, at)) != std::string::npos) {
    text->replace(at, name.size(), value);
    at += value.size();
  }
}

// Reads the template at PATH into *text with each name of VALUES replaced
// by its value.  Returns false with a reason in *error, also when the
// template names a value not among VALUES.
bool FillTemplate(const std::string& path,
                  const std::vector<std::pair<std::string, std::string>>& values,
                  std::string* text, std::string* error) {
  *text = ReadFile(path);
  if (text->empty()) {
    *error = "cannot read the configuration template " + path;
    return false;
  }
  std::string unnamed = *text;
  for (const auto& [name, value] : values) ReplaceAll(&unnamed, name, "");
  if (unnamed.find('@') != std::string::npos) {
    *error = path + " names a value that the scheduler was not given";
    return false;
  }
  for (const auto& [name, value] : values) ReplaceAll(text, name, value);
  return true;
}

// The scheduler's words that begin or end the job messages read here.
constexpr std::string_view kFiltersForJob = " filters for job:";
constexpr std::string_view kStartedFilter = "Started filter ";
constexpr std::string_view kStartedBackend = "Started backend ";
constexpr std::string_view kRetryStatus = "#retry_status=";
constexpr std::string_view kPid = "PID ";

// The label of a job's lines in the error_log: "[Job N] ".
std::string JobTag(int job_id) {
  return "[Job " + std::to_string(job_id) + "] ";
}

// The message of a log line: what follows the "[date] " stamp.
std::string_view LogMessage(std::string_view line) {
  size_t stamp_end = line.find("] ");
  return stamp_end == std::string_view::npos ? line
                                             : line.substr(stamp_end + 2);
}

}  // namespace

// Remembers the programs to install; nothing runs yet.
PrivateCupsd::PrivateCupsd(std::string cupsd, std::string cups_exec,
                           std::string data_dir, std::string filter,
                           std::string backend, std::string ppd)
    : cupsd_(std::move(cupsd)),
      cups_exec_(std::move(cups_exec)),
      data_dir_(std::move(data_dir)),
      filter_(std::move(filter)),
      backend_(std::move(backend)),
      ppd_(std::move(ppd)) {}

// Stops the scheduler and removes the tree.
PrivateCupsd::~PrivateCupsd() {
  Stop();
  RemoveTree();
}

// "127.0.0.1:PORT".
std::string PrivateCupsd::address() const {
  return "127.0.0.1:" + std::to_string(port_);
}

std::string PrivateCupsd::WhyNotHere() {
  if (geteuid() != 0)
    return "needs root: cupsd runs as root and switches filters and "
           "backends to the lp user";
  return "";
}

bool PrivateCupsd::MakeRoot(std::string* error) {
  std::string why = WhyNotHere();
  if (!why.empty()) {
    *error = why;
    return false;
  }
  if (access(cupsd_.c_str(), X_OK) != 0) {
    *error = "no scheduler at " + cupsd_ + " (install cups-daemon)";
    return false;
  }
  if (access(cups_exec_.c_str(), X_OK) != 0) {
    *error = "no " + cups_exec_ + " (install cups-daemon)";
    return false;
  }
  if (root_.empty()) {
    // Under /tmp whatever $TMPDIR says: the lp user must reach it.
    root_ = MakeTempDir("quillaroth-e2e.", "/tmp");
  }
  return true;
}

// Builds the tree, starts cupsd and waits until it answers; a port that
// another program took meanwhile costs one more try.
bool PrivateCupsd::Start(std::string* error) {
  if (!MakeRoot(error)) return false;
  for (int attempt = 0; attempt < 3; attempt++) {
    port_ = FreeLoopbackPort();
    if (port_ == 0) {
      *error = "no free loopback port";
      return false;
    }
    if (!BuildTree(error)) return false;
    Launch();
    if (WaitUntilAnswering(error)) return true;
    Stop();
  }
  return false;
}

// Writes the configuration files and folders of the tree.
bool PrivateCupsd::BuildTree(std::string* error) {
  // The lp user must reach the filter, the backend and the spooled files.
  chmod(root_.c_str(), 0755);
  for (const char* dir : {"etc", "etc/ppd", "spool", "tmp", "cache", "state",
                          "log", "bin", "bin/filter", "bin/backend",
                          "bin/daemon", "home", "home/.cups", "client", "jobs"}) {
    std::string path = root_ + "/" + dir;
    if (mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
      *error = "mkdir " + path + ": " + strerror(errno);
      return false;
    }
  }
  if (!CopyFile(filter_, root_ + "/bin/filter/commandtoquillaroth", 0755)) {
    *error = "cannot copy the filter from " + filter_;
    return false;
  }
  if (!CopyFile(backend_, root_ + "/bin/backend/quillarothsim", 0755)) {
    *error = "cannot copy the backend from " + backend_;
    return false;
  }
  std::string exec_link = root_ + "/bin/daemon/cups-exec";
  unlink(exec_link.c_str());
  if (symlink(cups_exec_.c_str(), exec_link.c_str()) != 0) {
    *error = "symlink cups-exec: " + std::string(strerror(errno));
    return false;
  }

  // The configuration that the shell scripts' private schedulers have too
  // (tests/e2e/private_cupsd.sh).
  const std::vector<std::pair<std::string, std::string>> values = {
      {"@ROOT@", root_},
      {"@PORT@", std::to_string(port_)},
      {"@SERVER_BIN@", root_ + "/bin"},
      {"@DATA_DIR@", data_dir_}};
  std::string cupsd_conf, files_conf;
  if (!FillTemplate(kConfigTemplates + std::string("/cupsd.conf.in"), values,
                    &cupsd_conf, error) ||
      !FillTemplate(kConfigTemplates + std::string("/cups-files.conf.in"),
                    values, &files_conf, error))
    return false;
  if (!WriteFile(root_ + "/etc/cupsd.conf", cupsd_conf, 0644) ||
      !WriteFile(root_ + "/etc/cups-files.conf", files_conf, 0644)) {
    *error = "cannot write the configuration under " + root_;
    return false;
  }
  return true;
}

// Starts cupsd -f on the tree's configuration, with a fresh log and a
// clean environment.  The child gets SIGTERM when the test process dies, so
// no scheduler outlives a crash.
void PrivateCupsd::Launch() {
  unlink((root_ + "/log/error_log").c_str());
  int null_fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
  int out_fd = open((root_ + "/log/cupsd.out").c_str(),
                    O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  ProcessSetup setup;
  setup.argv = {cupsd_, "-f", "-c", root_ + "/etc/cupsd.conf", "-s",
               root_ + "/etc/cups-files.conf"};
  setup.fds = {{0, null_fd}, {1, out_fd}, {2, out_fd}};
  setup.env = {"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LANG=C"};
  setup.clean_env = true;
  setup.end_with_parent = true;
  cupsd_process_ = std::make_unique<Subprocess>(setup);
  close(null_fd);
  close(out_fd);
}

// Waits until cupsd answers an IPP request, or fails after 15 s, when it
// exits (a bad configuration) or when it could not take the port (another
// program took it meanwhile; cupsd then runs on without listening, and an
// answer on the port would come from someone else).
bool PrivateCupsd::WaitUntilAnswering(std::string* error) {
  std::string listening = "Listening to " + address() + " on fd ";
  for (int waited = 0; waited < 15000; waited += 50) {
    ExitStatus status;
    if (cupsd_process_->HasEnded(&status)) {
      cupsd_process_.reset();
      *error = "cupsd ended at start (" + status.Describe() + "):\n" +
               ReadFile(root_ + "/log/cupsd.out") + ErrorLog();
      return false;
    }
    std::string log = ErrorLog();
    if (log.find("Unable to open listen socket") != std::string::npos) {
      *error = "cupsd could not listen on " + address() + ":\n" + log;
      return false;
    }
    if (log.find(listening) != std::string::npos) {
      ipp_t* response =
          DoIppRequest(port_, ippNewRequest(IPP_OP_CUPS_GET_PRINTERS), "/");
      if (response != nullptr) {
        ippDelete(response);
        return true;
      }
    }
    SleepMs(50);
  }
  *error = "cupsd did not answer on " + address() + " within 15 s:\n" +
           ErrorLog();
  return false;
}

bool PrivateCupsd::RestartWith(const std::string& lines, std::string* error) {
  Stop();
  std::string conf = root_ + "/etc/cupsd.conf";
  if (!WriteFile(conf, ReadFile(conf) + lines, 0644)) {
    *error = "cannot write " + conf;
    return false;
  }
  Launch();
  return WaitUntilAnswering(error);
}

void PrivateCupsd::Stop() {
  if (cupsd_process_ == nullptr) return;
  cupsd_process_->Stop(5.0);
  cupsd_process_.reset();
}

// Deletes the temporary tree, unless QUILLAROTH_E2E_KEEP is set (then its
// path is printed for a look at the logs).
void PrivateCupsd::RemoveTree() {
  if (root_.empty()) return;
  if (getenv("QUILLAROTH_E2E_KEEP") != nullptr) {
    fprintf(stderr, "e2e: kept %s\n", root_.c_str());
  } else {
    ::RemoveTree(root_);
  }
  root_.clear();
}

// Links SERVERBIN/backend/NAME, next to the system's cups-exec, into the
// tree's backend folder.
bool PrivateCupsd::AddSystemBackend(const std::string& name,
                                    std::string* error) {
  std::string daemon_dir = cups_exec_.substr(0, cups_exec_.rfind('/'));
  std::string server_bin = daemon_dir.substr(0, daemon_dir.rfind('/'));
  std::string system_backend = server_bin + "/backend/" + name;
  if (access(system_backend.c_str(), X_OK) != 0) {
    *error = "no CUPS backend " + system_backend + " (install cups)";
    return false;
  }
  std::string link = root_ + "/bin/backend/" + name;
  unlink(link.c_str());
  if (symlink(system_backend.c_str(), link.c_str()) != 0) {
    *error = "symlink " + link + ": " + strerror(errno);
    return false;
  }
  return true;
}

// lpadmin -p NAME -E -v URI -P PPD.
ProgramResult PrivateCupsd::AddQueue(const std::string& name,
                                     const std::string& uri) {
  return RunProgram({"lpadmin", "-h", address(), "-p", name, "-E", "-v", uri,
                     "-P", ppd_});
}

// lpadmin -p NAME -v URI.
ProgramResult PrivateCupsd::SetDeviceUri(const std::string& name,
                                         const std::string& uri) {
  return RunProgram({"lpadmin", "-h", address(), "-p", name, "-v", uri});
}

// lpadmin -d NAME.
ProgramResult PrivateCupsd::SetDefault(const std::string& name) {
  return RunProgram({"lpadmin", "-h", address(), "-d", name});
}

// lpadmin -x NAME.
ProgramResult PrivateCupsd::DeleteQueue(const std::string& name) {
  return RunProgram({"lpadmin", "-h", address(), "-x", name});
}

// cupsdisable NAME.
ProgramResult PrivateCupsd::DisableQueue(const std::string& name) {
  return RunProgram({"cupsdisable", "-h", address(), name});
}

// Writes the command file and submits it with lp as a command job.
int PrivateCupsd::SubmitCommandJob(const std::string& queue,
                                   const std::string& commands,
                                   std::string* error) {
  std::string path = root_ + "/jobs/" + queue + "-" +
                     std::to_string(++job_files_) + ".txt";
  if (!WriteFile(path, commands)) {
    *error = "cannot write " + path;
    return 0;
  }
  ProgramResult lp =
      RunProgram({"lp", "-h", address(), "-d", queue, "-o",
                  "document-format=application/vnd.cups-command", path});
  int job_id = 0;
  std::string prefix = "request id is " + queue + "-";
  if (lp.status == 0 && lp.out.compare(0, prefix.size(), prefix) == 0)
    job_id = atoi(lp.out.c_str() + prefix.size());
  std::string expected = prefix + std::to_string(job_id) + " (1 file(s))\n";
  if (job_id <= 0 || lp.out != expected || !lp.err.empty()) {
    *error = "lp: " + lp.Describe();
    return 0;
  }
  return job_id;
}

// Polls the job's state every 50 ms until it has ended (canceled, aborted
// or completed) or the time-out passes.
int PrivateCupsd::WaitForJob(int job_id, double timeout_seconds) {
  std::string job_uri =
      "ipp://" + address() + "/jobs/" + std::to_string(job_id);
  int state = 0;
  for (int waited = 0; waited < timeout_seconds * 1000; waited += 50) {
    ipp_t* request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr,
                 job_uri.c_str());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME,
                 "requesting-user-name", nullptr, cupsUser());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD,
                 "requested-attributes", nullptr, "job-state");
    ipp_t* response = DoIppRequest(port_, request, "/jobs");
    if (response != nullptr) {
      ipp_attribute_t* attr =
          ippFindAttribute(response, "job-state", IPP_TAG_ENUM);
      if (attr != nullptr) state = ippGetInteger(attr, 0);
      ippDelete(response);
    }
    if (state >= IPP_JSTATE_CANCELED) return state;
    SleepMs(50);
  }
  return state;
}

// The queue's reasons and marker attributes, one "name=value" line each.
std::string PrivateCupsd::PrinterAttributes(const std::string& queue) {
  static const char* const kNames[] = {
      "printer-state-reasons", "marker-colors", "marker-levels",
      "marker-message",        "marker-names",  "marker-types"};
  std::string printer_uri = "ipp://" + address() + "/printers/" + queue;
  ipp_t* request = ippNewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri",
               nullptr, printer_uri.c_str());
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD,
                "requested-attributes", 6, nullptr, kNames);
  ipp_t* response = DoIppRequest(port_, request, "/");
  if (response == nullptr) return "(no answer from cupsd)\n";
  std::string text;
  if (ippGetStatusCode(response) > IPP_STATUS_OK_CONFLICTING)
    text = std::string("(IPP error ") +
           ippErrorString(ippGetStatusCode(response)) + ")\n";
  for (const char* name : kNames) {
    ipp_attribute_t* attr = ippFindAttribute(response, name, IPP_TAG_ZERO);
    if (attr != nullptr)
      text += std::string(name) + "=" + AttributeValues(attr) + "\n";
  }
  ippDelete(response);
  return text;
}

// The default destination's name per CUPS-Get-Default, "" when none.
std::string PrivateCupsd::DefaultDestination() {
  ipp_t* request = ippNewRequest(IPP_OP_CUPS_GET_DEFAULT);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD,
               "requested-attributes", nullptr, "printer-name");
  ipp_t* response = DoIppRequest(port_, request, "/");
  if (response == nullptr) return "";
  std::string name;
  ipp_attribute_t* attr =
      ippFindAttribute(response, "printer-name", IPP_TAG_NAME);
  if (attr != nullptr) name = ippGetString(attr, 0, nullptr);
  ippDelete(response);
  return name;
}

// The whole error_log.
std::string PrivateCupsd::ErrorLog() const {
  return ReadFile(root_ + "/log/error_log");
}

// The error_log lines of one job.
std::string PrivateCupsd::JobLog(int job_id) const {
  std::string tag = JobTag(job_id);
  std::istringstream log(ErrorLog());
  std::string line;
  std::string lines;
  while (std::getline(log, line))
    if (line.find(tag) != std::string::npos) lines += line + "\n";
  return lines;
}

// The messages of one job, in the log's order.
std::vector<std::string> PrivateCupsd::JobMessages(int job_id) const {
  std::string tag = JobTag(job_id);
  std::istringstream log(ErrorLog());
  std::string line;
  std::vector<std::string> messages;
  while (std::getline(log, line)) {
    std::string_view message = LogMessage(line);
    if (StartsWith(message, tag))
      messages.emplace_back(message.substr(tag.size()));
  }
  return messages;
}

// The messages of one job that begin with the prefix, one a line.
std::string PrivateCupsd::JobLines(int job_id,
                                   std::string_view prefix) const {
  std::string lines;
  for (const std::string& message : JobMessages(job_id))
    if (StartsWith(message, prefix)) lines += message + "\n";
  return lines;
}

// The job's filter chain as logged by the scheduler: the "N filters for
// job:" line, one "NAME (TYPE to TYPE, cost N)" line per filter, and the
// programs it started.
std::string PrivateCupsd::FilterChain(int job_id) const {
  std::string tag = JobTag(job_id);
  std::string chain;
  for (std::string text : JobMessages(job_id)) {
    bool count_line = text.size() > kFiltersForJob.size() &&
                      EndsWith(text, kFiltersForJob);
    bool filter_line = text.find(" to ") != std::string::npos &&
                       text.find(", cost ") != std::string::npos &&
                       text.back() == ')';
    bool started_line =
        StartsWith(text, kStartedFilter) || StartsWith(text, kStartedBackend);
    if (!count_line && !filter_line && !started_line) continue;
    size_t at;
    while ((at = text.find(root_)) != std::string::npos)
      text.replace(at, root_.size(), "ROOT");
    if (started_line && (at = text.rfind("(PID ")) != std::string::npos)
      text = text.substr(0, at) + "(PID n)";
    chain += tag + text + "\n";
  }
  return chain;
}

// The filter's "#retry_status" lines of one job, after the "[Job N] " label.
std::string PrivateCupsd::RetryStatusLines(int job_id) const {
  return JobLines(job_id, kRetryStatus);
}

// The "PID n (...) ..." lines of one job, ids and root path taken out,
// sorted.
std::string PrivateCupsd::ProcessExits(int job_id) const {
  std::string tag = JobTag(job_id);
  std::vector<std::string> exits;
  for (std::string message : JobMessages(job_id)) {
    if (!StartsWith(message, kPid)) continue;
    size_t open = message.find(" (");
    size_t root = message.find(root_);
    if (open == std::string::npos || root == std::string::npos) continue;
    message.replace(root, root_.size(), "ROOT");
    exits.push_back(tag + "PID n" + message.substr(open) + "\n");
  }
  std::sort(exits.begin(), exits.end());
  std::string text;
  for (const std::string& exit : exits) text += exit;
  return text;
}
