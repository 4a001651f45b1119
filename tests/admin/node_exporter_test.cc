// The node exporter (Debian package prometheus-node-exporter) serving
// quillaroth.prom: the file that PrometheusText() and
// WriteFileAtomically() make is read by the real textfile collector
// without an error, and every line comes back from its /metrics page.

#include <arpa/inet.h>
#include <cups/cups.h>
#include <cups/http.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "admin/atomic_file.h"
#include "admin/prometheus_text.h"
#include "tests/admin/sample_queues.h"
#include "tests/support/files.h"
#include "tests/support/subprocess.h"

namespace {

// How long the exporter may take to listen.
constexpr double kStartSeconds = 10.0;
// Tries with a new port when another program took the one we picked.
constexpr int kPortTries = 3;

using Lines = std::vector<std::string>;

// A loopback TCP port that nothing listens on just now; 0 if none.
int FreeLoopbackPort() {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return 0;
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(address);
  int port = 0;
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0 &&
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
    port = ntohs(address.sin_port);
  }
  close(fd);
  return port;
}

// GETs http://127.0.0.1:<port><path> with libcups: true with the body, or
// false with *why ("" while nothing listens yet).
bool HttpGet(int port, const std::string& path, std::string* body,
             std::string* why) {
  http_t* http = httpConnect2("127.0.0.1", port, nullptr, AF_INET,
                              HTTP_ENCRYPTION_NEVER, 1, 2000, nullptr);
  if (http == nullptr) {
    why->clear();
    return false;
  }
  std::unique_ptr<http_t, void (*)(http_t*)> closer(http, httpClose);
  httpClearFields(http);
  if (httpGet(http, path.c_str()) != 0) {
    *why = "GET " + path + " failed: " + cupsLastErrorString();
    return false;
  }
  http_status_t status;
  while ((status = httpUpdate(http)) == HTTP_STATUS_CONTINUE) {
  }
  if (status != HTTP_STATUS_OK) {
    *why = "GET " + path + ": HTTP status " + std::to_string(status);
    return false;
  }
  body->clear();
  char buffer[8192];
  ssize_t n;
  while ((n = httpRead2(http, buffer, sizeof(buffer))) > 0) {
    body->append(buffer, static_cast<size_t>(n));
  }
  return true;
}

// The lines of text that start with one of the prefixes, sorted.
Lines SortedLines(const std::string& text, const Lines& prefixes) {
  Lines lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    for (const std::string& prefix : prefixes) {
      if (line.compare(0, prefix.size(), prefix) == 0) {
        lines.push_back(line);
        break;
      }
    }
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

class NodeExporterTest : public ::testing::Test {
 protected:
  void SetUp() override { dir_ = MakeTempDir("node_exporter_"); }
  void TearDown() override { RemoveTree(dir_); }

  // Starts the exporter with only the textfile collector on dir_ and
  // scrapes its /metrics once it listens: true with the page, false with
  // *why.
  bool Scrape(const std::string& exporter, std::string* page,
              std::string* why) {
    for (int attempt = 0; attempt < kPortTries; ++attempt) {
      const int port = FreeLoopbackPort();
      if (port == 0) {
        *why = "no free loopback port";
        return false;
      }
      const int log = OpenTempFile();
      const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
      ProcessSetup setup;
      setup.argv = {exporter,
                    "--web.listen-address=127.0.0.1:" + std::to_string(port),
                    "--web.disable-exporter-metrics",
                    "--collector.disable-defaults",
                    "--collector.textfile",
                    "--collector.textfile.directory=" + dir_};
      setup.fds = {{0, null}, {1, null}, {2, log}};
      setup.end_with_parent = true;
      Subprocess server(setup);
      close(null);
      ExitStatus status;
      bool ended = false;
      while (server.Elapsed() < kStartSeconds) {
        if (HttpGet(port, "/metrics", page, why)) {
          close(log);
          return true;
        }
        if (!why->empty()) break;
        if ((ended = server.HasEnded(&status))) break;
        usleep(50000);
      }
      if (why->empty()) {
        *why = ended ? "the exporter ended (" + status.Describe() + "): "
                     : "the exporter did not listen in time: ";
        *why += ReadDescriptor(log);
      }
      close(log);
      if (!ended) return false;  // not a port taken by someone else
    }
    return false;
  }

  std::string dir_;
};

TEST_F(NodeExporterTest, ServesTheTextFile) {
  std::string exporter = FindProgram("prometheus-node-exporter");
  if (exporter.empty()) exporter = FindProgram("node_exporter");
  if (exporter.empty()) {
    GTEST_SKIP() << "the node exporter is not installed (Debian package "
                    "prometheus-node-exporter)";
  }
  std::vector<QueueStatus> queues = SampleQueues();
  queues.push_back(OddlyNamedQueue());
  const std::string text = PrometheusText(queues, kSampleNow);
  std::string error;
  ASSERT_TRUE(WriteFileAtomically(dir_ + "/quillaroth.prom", text, &error))
      << error;

  std::string page;
  std::string why;
  ASSERT_TRUE(Scrape(exporter, &page, &why)) << why;
  EXPECT_EQ(Lines{"node_textfile_scrape_error 0"},
            SortedLines(page, {"node_textfile_scrape_error"}));
  const Lines ours = {"quillaroth_", "# HELP quillaroth_",
                      "# TYPE quillaroth_"};
  EXPECT_EQ(SortedLines(text, {""}), SortedLines(page, ours));
}

}  // namespace
