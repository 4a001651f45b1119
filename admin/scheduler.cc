#include "admin/scheduler.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

// The attributes that status and refresh read of every queue.
const char* const kPrinterAttributes[] = {
    "printer-name",         "device-uri",
    "printer-state",        "printer-state-reasons",
    "printer-is-accepting-jobs", "printer-type",
    "marker-levels",        "marker-message",
    "marker-names",         "marker-change-time",
    "printer-config-change-time",
};

const char* const kJobAttributes[] = {
    "job-id", "job-printer-uri", "job-state", "document-format-supplied",
};

constexpr int kConnectTimeoutMs = 10000;
constexpr double kRequestTimeoutSeconds = 30.0;
constexpr char kCommandFormat[] = "application/vnd.cups-command";

// Never asks for a password: a refusal is reported, not prompted for.
const char* NoPassword(const char*, http_t*, const char*, const char*,
                       void*) {
  return nullptr;
}

// The queue's name: the last path segment of a job-printer-uri.
std::string QueueOfUri(const char* uri) {
  if (uri == nullptr) return "";
  const char* slash = strrchr(uri, '/');
  return slash == nullptr ? uri : slash + 1;
}

// A new temporary file in $TMPDIR or /tmp; its descriptor, or -1 with the
// reason in *error.
int TemporaryFile(std::string* path, std::string* error) {
  const char* dir = getenv("TMPDIR");
  *path = std::string(dir != nullptr && *dir ? dir : "/tmp") +
          "/quillaroth.XXXXXX";
  int fd = mkstemp(&(*path)[0]);
  if (fd < 0)
    *error = "cannot make a temporary file " + *path + ": " + strerror(errno);
  return fd;
}

// Calls READ(attribute, name, object) for each attribute of GROUP in
// RESPONSE, with a new object appended to *OBJECTS for each group.
template <typename Object, typename Read>
void ForEachObject(ipp_t* response, ipp_tag_t group,
                   std::vector<Object>* objects, Read read) {
  Object* object = nullptr;
  for (ipp_attribute_t* attr = ippFirstAttribute(response); attr != nullptr;
       attr = ippNextAttribute(response)) {
    const char* name = ippGetName(attr);
    if (name == nullptr) {  // a separator: the next object begins
      object = nullptr;
      continue;
    }
    if (ippGetGroupTag(attr) != group) continue;
    if (object == nullptr) {
      objects->emplace_back();
      object = &objects->back();
    }
    read(attr, name, object);
  }
}

// A request of OPERATION on job JOB_ID (by printer-uri and job-id).
ipp_t* JobRequest(ipp_op_t operation, int job_id) {
  ipp_t* request = ippNewRequest(operation);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri",
               nullptr, "ipp://localhost/");
  ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id",
                job_id);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME,
               "requesting-user-name", nullptr, cupsUser());
  return request;
}

}  // namespace

std::string LastErrorText() {
  ipp_status_t status = cupsLastError();
  if (status == IPP_STATUS_ERROR_FORBIDDEN ||
      status == IPP_STATUS_ERROR_NOT_AUTHORIZED ||
      status == IPP_STATUS_ERROR_CUPS_AUTHENTICATION_CANCELED)
    return "the scheduler did not allow it: changing a queue needs root or "
           "the scheduler's admin group (SystemGroup in cups-files.conf, "
           "lpadmin on Debian)";
  const char* text = cupsLastErrorString();
  return text != nullptr && *text ? text : ippErrorString(status);
}

Scheduler::Scheduler(http_t* http, std::string where)
    : http_(http), where_(std::move(where)) {}

Scheduler::~Scheduler() { httpClose(http_); }

std::unique_ptr<Scheduler> Scheduler::Connect(const std::string& host,
                                              std::string* error) {
  if (!host.empty()) cupsSetServer(host.c_str());
  cupsSetPasswordCB2(NoPassword, nullptr);
  std::string server = cupsServer();
  std::string address = server[0] == '/'
                            ? server
                            : server + ":" + std::to_string(ippPort());
  http_t* http = httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC,
                              cupsEncryption(), 1, kConnectTimeoutMs, nullptr);
  if (http == nullptr) {
    const char* source = !host.empty()               ? "from -h"
                         : getenv("CUPS_SERVER") != nullptr ? "from CUPS_SERVER"
                                                            : "the default";
    *error = "no scheduler answers at " + address + " (" + source + ")";
    return nullptr;
  }
  httpSetTimeout(http, kRequestTimeoutSeconds, nullptr, nullptr);
  return std::unique_ptr<Scheduler>(new Scheduler(http, address));
}

std::string Scheduler::PrinterUri(const std::string& queue) {
  char uri[HTTP_MAX_URI];
  httpAssembleURIf(HTTP_URI_CODING_ALL, uri, sizeof(uri), "ipp", nullptr,
                   "localhost", 0, "/printers/%s", queue.c_str());
  return uri;
}

ipp_t* Scheduler::ListRequest(ipp_t* request, const char* what,
                              std::string* error) {
  ipp_t* response = cupsDoRequest(http_, request, "/");
  if (response != nullptr && cupsLastError() <= IPP_STATUS_OK_CONFLICTING)
    return response;
  // A scheduler without queues or jobs answers client-error-not-found.
  if (cupsLastError() != IPP_STATUS_ERROR_NOT_FOUND)
    *error = std::string("cannot read the ") + what + " from " + where_ +
             ": " + LastErrorText();
  ippDelete(response);
  return nullptr;
}

ipp_t* Scheduler::RequestWithFile(ipp_t* request, const char* resource,
                                  const std::string& document,
                                  std::string* error) {
  std::string path;
  int fd = TemporaryFile(&path, error);
  if (fd < 0) {
    ippDelete(request);
    return nullptr;
  }
  bool written = write(fd, document.data(), document.size()) ==
                 static_cast<ssize_t>(document.size());
  close(fd);
  if (!written) {
    unlink(path.c_str());
    ippDelete(request);
    *error = "cannot write the temporary file " + path;
    return nullptr;
  }
  ipp_t* response = cupsDoFileRequest(http_, request, resource, path.c_str());
  unlink(path.c_str());
  if (response == nullptr || cupsLastError() > IPP_STATUS_OK_CONFLICTING) {
    *error = LastErrorText();
    ippDelete(response);
    return nullptr;
  }
  return response;
}

ipp_t* Scheduler::Request(ipp_t* request, const char* resource,
                          std::string* error) {
  ipp_t* response = cupsDoRequest(http_, request, resource);
  if (response == nullptr || cupsLastError() > IPP_STATUS_OK_CONFLICTING) {
    *error = LastErrorText();
    ippDelete(response);
    return nullptr;
  }
  return response;
}

bool Scheduler::GetPrinters(std::vector<PrinterAttributes>* printers,
                            std::string* error) {
  ipp_t* request = ippNewRequest(IPP_OP_CUPS_GET_PRINTERS);
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD,
                "requested-attributes",
                sizeof(kPrinterAttributes) / sizeof(kPrinterAttributes[0]),
                nullptr, kPrinterAttributes);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME,
               "requesting-user-name", nullptr, cupsUser());
  printers->clear();
  ipp_t* response = ListRequest(request, "queues", error);
  if (response == nullptr) return cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND;
  ForEachObject(response, IPP_TAG_PRINTER, printers, [](
      ipp_attribute_t* attr, const char* name, PrinterAttributes* printer) {
    ipp_tag_t tag = ippGetValueTag(attr);
    bool integer = tag == IPP_TAG_INTEGER || tag == IPP_TAG_ENUM;
    const char* text = ippGetString(attr, 0, nullptr);
    if (strcmp(name, "printer-name") == 0 && text != nullptr) {
      printer->name = text;
    } else if (strcmp(name, "device-uri") == 0 && text != nullptr) {
      printer->device_uri = text;
    } else if (strcmp(name, "printer-state") == 0 && integer) {
      printer->state = ippGetInteger(attr, 0);
    } else if (strcmp(name, "printer-state-reasons") == 0) {
      for (int i = 0; i < ippGetCount(attr); i++) {
        const char* reason = ippGetString(attr, i, nullptr);
        if (reason != nullptr) printer->reasons.emplace_back(reason);
      }
    } else if (strcmp(name, "printer-is-accepting-jobs") == 0 &&
               tag == IPP_TAG_BOOLEAN) {
      printer->accepting = ippGetBoolean(attr, 0) != 0;
    } else if (strcmp(name, "printer-type") == 0 && integer) {
      printer->type = ippGetInteger(attr, 0);
    } else if (strcmp(name, "marker-levels") == 0 && integer) {
      for (int i = 0; i < ippGetCount(attr); i++)
        printer->marker_levels.push_back(ippGetInteger(attr, i));
    } else if (strcmp(name, "marker-message") == 0 && text != nullptr) {
      printer->marker_message = text;
    } else if (strcmp(name, "marker-names") == 0 && text != nullptr) {
      printer->marker_names = text;
    } else if (strcmp(name, "marker-change-time") == 0 && integer) {
      printer->marker_change_time = ippGetInteger(attr, 0);
    } else if (strcmp(name, "printer-config-change-time") == 0 && integer) {
      printer->config_change_time = ippGetInteger(attr, 0);
    }
  });
  ippDelete(response);
  return true;
}

Scheduler::PpdFetch Scheduler::GetPpd(const std::string& queue,
                                      std::string* text, std::string* error) {
  std::string path;
  int fd = TemporaryFile(&path, error);
  if (fd < 0) return PpdFetch::kFailed;
  unlink(path.c_str());
  std::string resource = "/printers/" + queue + ".ppd";
  http_status_t status = cupsGetFd(http_, resource.c_str(), fd);
  if (status != HTTP_STATUS_OK) {
    close(fd);
    if (status == HTTP_STATUS_NOT_FOUND) return PpdFetch::kNoPpd;
    *error = "cannot fetch " + resource + " from " + where_ + ": " +
             httpStatus(status);
    return PpdFetch::kFailed;
  }
  text->clear();
  lseek(fd, 0, SEEK_SET);
  char buffer[8192];
  ssize_t got;
  while ((got = read(fd, buffer, sizeof(buffer))) > 0)
    text->append(buffer, static_cast<size_t>(got));
  close(fd);
  return PpdFetch::kGot;
}

bool Scheduler::PutPpd(const std::string& queue, const std::string& text,
                       std::string* error) {
  ipp_t* request = ippNewRequest(IPP_OP_CUPS_ADD_MODIFY_PRINTER);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri",
               nullptr, PrinterUri(queue).c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME,
               "requesting-user-name", nullptr, cupsUser());
  ipp_t* response = RequestWithFile(request, "/admin/", text, error);
  ippDelete(response);
  return response != nullptr;
}

bool Scheduler::GetActiveJobs(std::vector<ActiveJob>* jobs,
                              std::string* error) {
  ipp_t* request = ippNewRequest(IPP_OP_GET_JOBS);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri",
               nullptr, "ipp://localhost/");
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME,
               "requesting-user-name", nullptr, cupsUser());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "which-jobs",
               nullptr, "not-completed");
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD,
                "requested-attributes",
                sizeof(kJobAttributes) / sizeof(kJobAttributes[0]), nullptr,
                kJobAttributes);
  jobs->clear();
  ipp_t* response = ListRequest(request, "jobs", error);
  if (response == nullptr) return cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND;
  ForEachObject(response, IPP_TAG_JOB, jobs, [](
      ipp_attribute_t* attr, const char* name, ActiveJob* job) {
    if (strcmp(name, "job-id") == 0) {
      job->id = ippGetInteger(attr, 0);
    } else if (strcmp(name, "job-state") == 0) {
      job->state = ippGetInteger(attr, 0);
    } else if (strcmp(name, "job-printer-uri") == 0) {
      job->queue = QueueOfUri(ippGetString(attr, 0, nullptr));
    } else if (strcmp(name, "document-format-supplied") == 0) {
      const char* format = ippGetString(attr, 0, nullptr);
      job->command = format != nullptr && strcmp(format, kCommandFormat) == 0;
    }
  });
  ippDelete(response);
  return true;
}

bool Scheduler::GetJobState(int job_id, JobState* state, std::string* error) {
  static const char* const kWanted[] = {"job-state", "job-state-reasons"};
  ipp_t* request = JobRequest(IPP_OP_GET_JOB_ATTRIBUTES, job_id);
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD,
                "requested-attributes", 2, nullptr, kWanted);
  ipp_t* response = cupsDoRequest(http_, request, "/");
  *state = JobState();
  if (response != nullptr && cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND) {
    ippDelete(response);
    return true;
  }
  if (response == nullptr || cupsLastError() > IPP_STATUS_OK_CONFLICTING) {
    *error = "cannot read job " + std::to_string(job_id) + " from " + where_ +
             ": " + LastErrorText();
    ippDelete(response);
    return false;
  }
  ipp_attribute_t* attr =
      ippFindAttribute(response, "job-state", IPP_TAG_ENUM);
  if (attr != nullptr) state->state = ippGetInteger(attr, 0);
  attr = ippFindAttribute(response, "job-state-reasons", IPP_TAG_KEYWORD);
  for (int i = 0; attr != nullptr && i < ippGetCount(attr); i++)
    state->reasons.emplace_back(ippGetString(attr, i, nullptr));
  ippDelete(response);
  return true;
}

int Scheduler::SubmitCommandJob(const std::string& queue,
                                const std::string& title,
                                const std::string& commands,
                                std::string* error) {
  std::string uri = PrinterUri(queue);
  ipp_t* request = ippNewRequest(IPP_OP_PRINT_JOB);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri",
               nullptr, uri.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME,
               "requesting-user-name", nullptr, cupsUser());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", nullptr,
               title.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_MIMETYPE,
               "document-format", nullptr, kCommandFormat);
  std::string resource = "/printers/" + queue;
  ipp_t* response = RequestWithFile(request, resource.c_str(), commands, error);
  if (response == nullptr) return 0;
  ipp_attribute_t* id = ippFindAttribute(response, "job-id", IPP_TAG_INTEGER);
  int job_id = id != nullptr ? ippGetInteger(id, 0) : 0;
  ippDelete(response);
  if (job_id == 0) *error = "the scheduler gave no job id";
  return job_id;
}

bool Scheduler::PurgeJob(int job_id, std::string* error) {
  ipp_t* request = JobRequest(IPP_OP_CANCEL_JOB, job_id);
  ippAddBoolean(request, IPP_TAG_OPERATION, "purge-job", 1);
  ipp_t* response = Request(request, "/jobs/", error);
  ippDelete(response);
  return response != nullptr;
}
