#include "tests/admin/admin_test.h"

#include <cups/cups.h>

#include <cstdlib>
#include <regex>

#include "tests/admin/ppd_shapes.h"
#include "tests/support/files.h"

const char kDriverFilter[] = "quillaroth-test-raster";

std::string PrintingPpd() {
  return WholePpd(std::string("*cupsFilter: \"text/plain 0 ") + kDriverFilter +
                  "\"\n"
                  "*cupsFilter: \"application/vnd.cups-command 0 "
                  "commandtoquillaroth\"\n"
                  "*cupsCommands: \"ReportLevels ReportStatus\"\n");
}

ProgramResult AdminTest::Quillaroth(const std::vector<std::string>& args) {
  ProcessSetup setup = QuillarothSetup(args);
  return RunProgram(setup.argv, "", setup.env, 120.0);
}

ProcessSetup AdminTest::QuillarothSetup(const std::vector<std::string>& args) {
  ProcessSetup setup;
  setup.argv = {QUILLAROTH_ADMIN_PATH};
  setup.argv.insert(setup.argv.end(), args.begin(), args.end());
  setup.env = {"CUPS_SERVER=" + cupsd().address(), "LANG=C"};
  setup.end_with_parent = true;
  return setup;
}

std::string AdminTest::Where() { return cupsd().address(); }

void AdminTest::AddSimQueue(const std::string& name, const SimPrinter& printer) {
  AddQueue(name, printer.DeviceUri(name));
}

void AdminTest::AddQueueWithPpd(const std::string& name, const std::string& uri,
                                const std::string& ppd_text) {
  std::string scheme = uri.substr(0, uri.find(':'));
  std::string error;
  ASSERT_TRUE(scheme == "quillarothsim" ||
              cupsd().AddSystemBackend(scheme, &error))
      << error;
  std::vector<std::string> argv = {"lpadmin", "-h", Where(), "-p", name,
                                   "-E", "-v", uri};
  if (!ppd_text.empty()) {
    std::string path = cupsd().root() + "/jobs/" + name + ".ppd";
    ASSERT_TRUE(WriteFile(path, ppd_text));
    argv.insert(argv.end(), {"-P", path});
  }
  ProgramResult result = RunProgram(argv);
  ASSERT_EQ(0, result.status) << result.Describe();
}

void AdminTest::InstallVendorFilter() {
  std::string path = cupsd().root() + "/bin/filter/" + kDriverFilter;
  ASSERT_TRUE(WriteFile(path, "#!/bin/sh\ncat >/dev/null\n", 0755));
}

std::string AdminTest::Admin(std::vector<std::string> argv) {
  argv.insert(argv.begin() + 1, {"-h", Where()});
  ProgramResult result = RunProgram(argv);
  EXPECT_EQ(0, result.status) << result.Describe();
  return result.out;
}

std::string AdminTest::Ppd(const std::string& queue) {
  return ReadFile(cupsd().root() + "/etc/ppd/" + queue + ".ppd");
}

std::string AdminTest::PrintChain(const std::string& queue,
                                  const std::string& format) {
  std::string path = cupsd().root() + "/jobs/page.bin";
  WriteFile(path, "page data\n");
  ProgramResult lp = RunProgram({"lp", "-h", Where(), "-d", queue, "-o",
                                 "document-format=" + format, path});
  std::string prefix = "request id is " + queue + "-";
  if (lp.status != 0 || lp.out.compare(0, prefix.size(), prefix) != 0)
    return "lp: " + lp.Describe();
  int job = atoi(lp.out.c_str() + prefix.size());
  cupsd().WaitForJob(job, 30.0);
  return std::regex_replace(cupsd().FilterChain(job),
                            std::regex("\\[Job [0-9]+\\] "), "[Job n] ");
}

int AdminTest::Requests() {
  std::string log = ReadFile(cupsd().root() + "/log/access_log");
  int lines = 0;
  for (char c : log) lines += c == '\n';
  return lines;
}

std::vector<int> AdminTest::Jobs(const std::string& which) {
  ipp_t* request = ippNewRequest(IPP_OP_GET_JOBS);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri",
               nullptr, "ipp://localhost/");
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "which-jobs",
               nullptr, which.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD,
               "requested-attributes", nullptr, "job-id");
  http_t* http = httpConnect2(cupsServer(), ippPort(), nullptr, AF_INET,
                              HTTP_ENCRYPTION_NEVER, 1, 5000, nullptr);
  std::vector<int> ids;
  if (http == nullptr) {
    ippDelete(request);
    return ids;
  }
  ipp_t* response = cupsDoRequest(http, request, "/");
  for (ipp_attribute_t* attr = ippFindAttribute(response, "job-id",
                                                IPP_TAG_INTEGER);
       attr != nullptr;
       attr = ippFindNextAttribute(response, "job-id", IPP_TAG_INTEGER))
    ids.push_back(ippGetInteger(attr, 0));
  ippDelete(response);
  httpClose(http);
  return ids;
}

std::string MaskTableAges(const std::string& table) {
  return std::regex_replace(table, std::regex("  [0-9]s ago\n"), "  Ns ago\n");
}

std::string MaskJsonTimes(const std::string& json) {
  std::string masked = std::regex_replace(
      json,
      std::regex("\"levels_read_at\": \"[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:"
                 "[0-9]{2}:[0-9]{2}Z\""),
      "\"levels_read_at\": \"TIME\"");
  return std::regex_replace(masked,
                            std::regex("\"levels_age_seconds\": [0-9]\n"),
                            "\"levels_age_seconds\": AGE\n");
}

