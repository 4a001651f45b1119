// Running the filter under the simulator, for the integration tests.

#include "tests/support/filter_run.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

namespace {

// A run may take the filter's real time-outs, never more than this.
constexpr double RUN_LIMIT_SECONDS = 120.0;

// Seconds on the monotonic clock.
double now() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

// The whole content of a file ("" when it does not exist).
std::string read_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in),
                     std::istreambuf_iterator<char>());
}

// Writes text to a new file.
void write_file(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

// A fresh private directory for one run's files.
std::string make_run_dir() {
  const char* base = getenv("TMPDIR");
  std::string pattern =
      std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") +
      "/quillaroth-run-XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (mkdtemp(buffer.data()) == nullptr) {
    perror("mkdtemp");
    abort();
  }
  return buffer.data();
}

// Appends an option to a colon-separated list held in an environment
// variable.
void append_env_option(const char* name, const char* option) {
  const char* old = getenv(name);
  std::string value = old != nullptr && old[0] != '\0'
                          ? std::string(old) + ":" + option
                          : std::string(option);
  setenv(name, value.c_str(), 1);
}

// The words of $QUILLAROTH_FILTER_WRAPPER, a command prefix put before the
// filter (for example "valgrind --log-file=/tmp/vg.%p ..."), split at
// blanks, the program looked up in $PATH since the filter is started with
// execv().  Empty without the variable.  The wrapper must keep its own
// output out of the filter's stderr (valgrind's --log-file does).
std::vector<std::string> filter_wrapper() {
  std::vector<std::string> words;
  const char* wrapper = getenv("QUILLAROTH_FILTER_WRAPPER");
  if (wrapper == nullptr) return words;
  std::string text = wrapper;
  size_t at = 0;
  while ((at = text.find_first_not_of(" \t", at)) != std::string::npos) {
    size_t end = text.find_first_of(" \t", at);
    words.push_back(text.substr(at, end == std::string::npos ? end : end - at));
    at = end;
  }
  if (!words.empty() && words[0].find('/') == std::string::npos) {
    const char* path = getenv("PATH");
    std::string dirs = path != nullptr ? path : "/usr/bin:/bin";
    size_t start = 0;
    while (start <= dirs.size()) {
      size_t colon = dirs.find(':', start);
      std::string candidate =
          dirs.substr(start, colon == std::string::npos ? colon : colon - start) +
          "/" + words[0];
      if (access(candidate.c_str(), X_OK) == 0) {
        words[0] = candidate;
        break;
      }
      if (colon == std::string::npos) break;
      start = colon + 1;
    }
  }
  return words;
}

// One descriptor that a child gets: target is made a copy of source.
struct Wiring {
  int target;
  int source;
};

// Starts words[0] with the given descriptors (and nothing else above 2)
// and these environment variables added.
pid_t spawn(const std::vector<std::string>& words,
            const std::vector<Wiring>& wiring,
            const std::vector<std::pair<std::string, std::string>>& env) {
  pid_t child = fork();
  if (child < 0) {
    perror("fork");
    abort();
  }
  if (child != 0) return child;

  // Lift every source out of the way before any target is overwritten.
  std::vector<int> lifted;
  for (const Wiring& w : wiring) lifted.push_back(fcntl(w.source, F_DUPFD, 64));
  int highest = 2;
  for (size_t i = 0; i < wiring.size(); i++) {
    if (lifted[i] < 0 || dup2(lifted[i], wiring[i].target) < 0) _exit(126);
    if (wiring[i].target > highest) highest = wiring[i].target;
  }
  close_range(static_cast<unsigned>(highest) + 1, ~0U, 0);
  for (const auto& [name, value] : env) {
    if (name == "ASAN_OPTIONS")
      append_env_option(name.c_str(), value.c_str());
    else
      setenv(name.c_str(), value.c_str(), 1);
  }
  std::vector<char*> argv;
  for (const std::string& word : words)
    argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  execv(argv[0], argv.data());
  _exit(127);
}

// Opens a file or gives up the whole test program.
int open_or_die(const std::string& path, int flags) {
  int fd = open(path.c_str(), flags | O_CLOEXEC, 0644);
  if (fd < 0) {
    perror(path.c_str());
    abort();
  }
  return fd;
}

// The environment that preloads the sleep interposer (and any further
// libraries), logging to dir.
std::vector<std::pair<std::string, std::string>> fake_sleep_env(
    const ToolPaths& tools, const std::string& dir,
    const std::vector<std::string>& preload = {}) {
  std::string libraries = tools.fake_sleep;
  for (const std::string& library : preload) libraries += ":" + library;
  // A filter built with AddressSanitizer refuses a preloaded library that
  // comes before its runtime unless told that this is fine.
  return {{"LD_PRELOAD", libraries},
          {"FAKE_SLEEP_LOG", dir + "/sleeps"},
          {"ASAN_OPTIONS", "verify_asan_link_order=0"}};
}

// Waits for the child, killing it if it outlives the limit.
int wait_for(pid_t child, double started) {
  int status = 0;
  for (;;) {
    pid_t done = waitpid(child, &status, WNOHANG);
    if (done == child) break;
    if (done < 0) return -1;
    if (now() - started > RUN_LIMIT_SECONDS) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      break;
    }
    struct timespec pause = {0, 2000000};
    nanosleep(&pause, nullptr);
  }
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return -1;
}

// Deletes the run's files and directory.
void remove_run_dir(const std::string& dir) {
  for (const char* name : {"stdin", "stderr", "stdout", "sim.log", "sleeps",
                           "commands", "backend.out", "backend.err"})
    unlink((dir + "/" + name).c_str());
  rmdir(dir.c_str());
}

}  // namespace

// Runs the simulator with the filter and gathers what it left behind.
FilterResult run_filter(const ToolPaths& tools, const FilterCall& call) {
  std::string dir = make_run_dir();
  write_file(dir + "/stdin", call.stdin_text);

  std::vector<std::string> words = {tools.sim, "--log", dir + "/sim.log",
                                    "--stdout-file", dir + "/stdout"};
  words.insert(words.end(), call.sim_options.begin(), call.sim_options.end());
  words.push_back("--");
  for (const std::string& word : filter_wrapper()) words.push_back(word);
  words.push_back(tools.filter);
  words.insert(words.end(), call.args.begin(), call.args.end());
  if (call.command_file) {
    write_file(dir + "/commands", *call.command_file);
    words.push_back(dir + "/commands");
  }

  int in = open_or_die(dir + "/stdin", O_RDONLY);
  int null = open_or_die("/dev/null", O_WRONLY);
  int err = open_or_die(dir + "/stderr", O_WRONLY | O_CREAT | O_TRUNC);
  FilterResult result;
  double started = now();
  pid_t child =
      spawn(words, {{0, in}, {1, null}, {2, err}},
            fake_sleep_env(tools, dir, call.preload));
  close(in);
  close(null);
  close(err);
  result.status = wait_for(child, started);
  result.seconds = now() - started;

  result.err = read_file(dir + "/stderr");
  result.out = read_file(dir + "/stdout");
  result.sim_log = read_file(dir + "/sim.log");
  result.sleeps = read_file(dir + "/sleeps");
  remove_run_dir(dir);
  return result;
}

// Runs the backend alone with the URI in its environment.
FilterResult run_backend(const std::string& backend,
                         const std::vector<std::string>& args,
                         const std::string& device_uri,
                         const std::string& stdin_text) {
  std::string dir = make_run_dir();
  write_file(dir + "/stdin", stdin_text);
  std::vector<std::string> words = {backend};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<std::pair<std::string, std::string>> env;
  if (!device_uri.empty()) env.push_back({"DEVICE_URI", device_uri});

  int in = open_or_die(dir + "/stdin", O_RDONLY);
  int out = open_or_die(dir + "/backend.out", O_WRONLY | O_CREAT | O_TRUNC);
  int err = open_or_die(dir + "/backend.err", O_WRONLY | O_CREAT | O_TRUNC);
  FilterResult result;
  double started = now();
  pid_t child = spawn(words, {{0, in}, {1, out}, {2, err}}, env);
  close(in);
  close(out);
  close(err);
  result.status = wait_for(child, started);
  result.seconds = now() - started;
  result.out = read_file(dir + "/backend.out");
  result.err = read_file(dir + "/backend.err");
  remove_run_dir(dir);
  return result;
}

// Runs filter and backend side by side on the channels that cupsd would
// give them.
FilterResult run_filter_with_backend(const ToolPaths& tools,
                                     const std::string& backend,
                                     const std::string& device_uri,
                                     const FilterCall& call) {
  std::string dir = make_run_dir();
  write_file(dir + "/stdin", call.stdin_text);
  std::vector<std::string> filter_words = filter_wrapper();
  filter_words.push_back(tools.filter);
  filter_words.insert(filter_words.end(), call.args.begin(), call.args.end());
  if (call.command_file) {
    write_file(dir + "/commands", *call.command_file);
    filter_words.push_back(dir + "/commands");
  }
  std::vector<std::string> backend_words = {backend, "1", "user", "title",
                                            "1", ""};

  int data[2];
  int back[2];
  int side[2];
  if (pipe2(data, O_CLOEXEC) != 0 || pipe2(back, O_CLOEXEC) != 0 ||
      socketpair(AF_LOCAL, SOCK_STREAM | SOCK_CLOEXEC, 0, side) != 0) {
    perror("pipe");
    abort();
  }
  int in = open_or_die(dir + "/stdin", O_RDONLY);
  int null = open_or_die("/dev/null", O_WRONLY);
  int filter_err = open_or_die(dir + "/stderr", O_WRONLY | O_CREAT | O_TRUNC);
  int backend_err =
      open_or_die(dir + "/backend.err", O_WRONLY | O_CREAT | O_TRUNC);

  FilterResult result;
  double started = now();
  pid_t filter = spawn(
      filter_words,
      {{0, in}, {1, data[1]}, {2, filter_err}, {3, back[0]}, {4, side[0]}},
      fake_sleep_env(tools, dir));
  pid_t backend_pid =
      spawn(backend_words,
            {{0, data[0]}, {1, null}, {2, backend_err}, {3, back[1]},
             {4, side[1]}},
            {{"DEVICE_URI", device_uri}});
  for (int fd : {data[0], data[1], back[0], back[1], side[0], side[1], in,
                 null, filter_err, backend_err})
    close(fd);

  result.status = wait_for(filter, started);
  result.backend_status = wait_for(backend_pid, started);
  result.seconds = now() - started;
  result.err = read_file(dir + "/stderr");
  result.sim_log = read_file(dir + "/backend.err");
  result.sleeps = read_file(dir + "/sleeps");
  remove_run_dir(dir);
  return result;
}
