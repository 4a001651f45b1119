#include "tests/sim/listening_printer.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "tests/support/built_tools.h"
#include "tests/support/files.h"

namespace {

constexpr int kStartTimeoutMs = 5000;
constexpr double kStopGrace = 5.0;
constexpr char kListening[] = "listening on 127.0.0.1:";

// The first line that fd gives within the time-out ("" when none).
std::string FirstLine(int fd) {
  std::string text;
  struct pollfd wait = {fd, POLLIN, 0};
  while (text.find('\n') == std::string::npos &&
         poll(&wait, 1, kStartTimeoutMs) > 0) {
    char buffer[256];
    ssize_t n = read(fd, buffer, sizeof buffer);
    if (n <= 0) break;
    text.append(buffer, static_cast<size_t>(n));
  }
  return text.substr(0, text.find('\n') + 1);
}

}  // namespace

ListeningPrinter::ListeningPrinter(std::vector<std::string> options)
    : options_(std::move(options)) {}

ListeningPrinter::~ListeningPrinter() {
  Stop();
  if (!folder_.empty()) RemoveTree(folder_);
}

std::string ListeningPrinter::address() const {
  return "127.0.0.1:" + std::to_string(port_);
}

std::string ListeningPrinter::Log() const {
  return ReadFile(folder_ + "/sim.log");
}

bool ListeningPrinter::Start(std::string* error) {
  folder_ = MakeTempDir("quillaroth-listen.");
  int out[2];
  if (pipe2(out, O_CLOEXEC) != 0) {
    *error = "pipe2 failed";
    return false;
  }
  ProcessSetup setup;
  setup.argv = {BuiltTools().sim, "--listen", "127.0.0.1:0", "--log",
                folder_ + "/sim.log"};
  setup.argv.insert(setup.argv.end(), options_.begin(), options_.end());
  setup.fds = {{STDOUT_FILENO, out[1]}, {STDERR_FILENO, STDERR_FILENO}};
  setup.end_with_parent = true;
  process_ = std::make_unique<Subprocess>(setup);
  close(out[1]);
  std::string line = FirstLine(out[0]);
  close(out[0]);
  if (line.compare(0, sizeof kListening - 1, kListening) != 0 ||
      line.back() != '\n') {
    *error = "quillaroth-sim --listen said \"" + line + "\"";
    Stop();
    return false;
  }
  port_ = atoi(line.c_str() + sizeof kListening - 1);
  return true;
}

ExitStatus ListeningPrinter::Stop() {
  if (process_ == nullptr) return ExitStatus();
  ExitStatus status = process_->Stop(kStopGrace);
  process_.reset();
  return status;
}
