#include "tests/sim/listening_printer.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

namespace {

constexpr int kStartTimeoutMs = 5000;
constexpr int kStopTimeoutMs = 5000;
constexpr char kListening[] = "listening on 127.0.0.1:";

// Reads a whole file; "" when it cannot be read.
std::string ReadWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

ListeningPrinter::ListeningPrinter(std::string sim_path,
                                   std::vector<std::string> options)
    : sim_path_(std::move(sim_path)), options_(std::move(options)) {}

ListeningPrinter::~ListeningPrinter() {
  Stop();
  if (!folder_.empty()) {
    unlink((folder_ + "/sim.log").c_str());
    rmdir(folder_.c_str());
  }
}

std::string ListeningPrinter::address() const {
  return "127.0.0.1:" + std::to_string(port_);
}

std::string ListeningPrinter::Log() const {
  return ReadWholeFile(folder_ + "/sim.log");
}

bool ListeningPrinter::Start(std::string* error) {
  char folder[] = "/tmp/quillaroth-listen.XXXXXX";
  if (mkdtemp(folder) == nullptr) {
    *error = std::string("mkdtemp: ") + strerror(errno);
    return false;
  }
  folder_ = folder;
  std::vector<std::string> words = {sim_path_, "--listen", "127.0.0.1:0",
                                    "--log", folder_ + "/sim.log"};
  words.insert(words.end(), options_.begin(), options_.end());
  int out[2];
  if (pipe2(out, O_CLOEXEC) != 0) {
    *error = std::string("pipe: ") + strerror(errno);
    return false;
  }
  pid_ = fork();
  if (pid_ < 0) {
    *error = std::string("fork: ") + strerror(errno);
    return false;
  }
  if (pid_ == 0) {
    dup2(out[1], STDOUT_FILENO);
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(out[1]);
  std::string line;
  struct pollfd fd = {out[0], POLLIN, 0};
  while (line.find('\n') == std::string::npos &&
         poll(&fd, 1, kStartTimeoutMs) > 0) {
    char buffer[256];
    ssize_t n = read(out[0], buffer, sizeof buffer);
    if (n <= 0) break;
    line.append(buffer, static_cast<size_t>(n));
  }
  close(out[0]);
  size_t at = line.find(kListening);
  if (at != 0 || line.find('\n') == std::string::npos) {
    *error = "quillaroth-sim --listen said \"" + line + "\"";
    Stop();
    return false;
  }
  port_ = atoi(line.c_str() + sizeof kListening - 1);
  return true;
}

int ListeningPrinter::Stop() {
  if (pid_ <= 0) return -1;
  kill(pid_, SIGTERM);
  int status = 0;
  int waited_ms = 0;
  while (waitpid(pid_, &status, WNOHANG) == 0) {
    if (waited_ms == kStopTimeoutMs) kill(pid_, SIGKILL);
    usleep(10000);
    waited_ms += 10;
  }
  pid_ = -1;
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
}
