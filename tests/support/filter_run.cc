#include "tests/support/filter_run.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/built_tools.h"
#include "tests/support/files.h"

namespace {

// A run may take the filter's real time-outs, never more than this.
constexpr double kRunLimitSeconds = 120.0;

// Opens a file or gives up the whole test program.
int OpenOrDie(const std::string& path, int flags) {
  int fd = open(path.c_str(), flags | O_CLOEXEC, 0644);
  if (fd < 0) {
    perror(path.c_str());
    abort();
  }
  return fd;
}

// The environment that preloads the sleep interposer (and any further
// libraries), logging the sleeps to dir.  A filter built with
// AddressSanitizer refuses a preloaded library that comes before its
// runtime unless told that this is fine.
std::vector<std::string> FakeSleepEnv(const std::string& dir,
                                      const std::vector<std::string>& more) {
  std::vector<std::string> libraries = {BuiltTools().fake_sleep};
  libraries.insert(libraries.end(), more.begin(), more.end());
  const char* asan = getenv("ASAN_OPTIONS");
  std::string asan_options = asan != nullptr && asan[0] != '\0'
                                 ? std::string(asan) + ":"
                                 : std::string();
  return {"LD_PRELOAD=" + PreloadValue(libraries),
          "FAKE_SLEEP_LOG=" + dir + "/sleeps",
          "ASAN_OPTIONS=" + asan_options + "verify_asan_link_order=0"};
}

// The filter's command line: wrapper, filter, arguments, command file.
std::vector<std::string> FilterWords(const std::string& dir,
                                     const FilterCall& call) {
  std::vector<std::string> words = FilterCommand(BuiltTools().filter);
  words.insert(words.end(), call.args.begin(), call.args.end());
  if (call.command_file) {
    WriteFile(dir + "/commands", *call.command_file);
    words.push_back(dir + "/commands");
  }
  return words;
}

}  // namespace

FilterResult RunFilter(const FilterCall& call) {
  std::string dir = MakeTempDir("quillaroth-run-");
  WriteFile(dir + "/stdin", call.stdin_text);
  ProcessSetup sim;
  sim.argv = {BuiltTools().sim, "--log", dir + "/sim.log", "--stdout-file",
              dir + "/stdout"};
  sim.argv.insert(sim.argv.end(), call.sim_options.begin(),
                  call.sim_options.end());
  sim.argv.push_back("--");
  for (const std::string& word : FilterWords(dir, call))
    sim.argv.push_back(word);
  int in = OpenOrDie(dir + "/stdin", O_RDONLY);
  int null = OpenOrDie("/dev/null", O_WRONLY);
  int err = OpenOrDie(dir + "/stderr", O_WRONLY | O_CREAT | O_TRUNC);
  sim.fds = {{0, in}, {1, null}, {2, err}};
  sim.env = FakeSleepEnv(dir, call.preload);

  FilterResult result;
  Subprocess child(sim);
  for (int fd : {in, null, err}) close(fd);
  ExitStatus status = child.Wait(kRunLimitSeconds);
  result.status = status.ShellStatus();
  result.seconds = status.seconds;
  result.err = ReadFile(dir + "/stderr");
  result.out = ReadFile(dir + "/stdout");
  result.sim_log = ReadFile(dir + "/sim.log");
  result.sleeps = ReadFile(dir + "/sleeps");
  RemoveTree(dir);
  return result;
}

FilterResult RunCommands(const std::string& commands,
                         const std::vector<std::string>& sim_options) {
  FilterCall call;
  call.stdin_text = commands;
  call.sim_options = sim_options;
  return RunFilter(call);
}

FilterResult RunCommands(const std::string& commands,
                         const SimPrinter& printer) {
  return RunCommands(commands, printer.SimOptions());
}

FilterResult RunFilterWithBackend(const std::string& device_uri,
                                  const FilterCall& call) {
  std::string dir = MakeTempDir("quillaroth-run-");
  WriteFile(dir + "/stdin", call.stdin_text);
  int data[2], back[2], side[2];
  if (pipe2(data, O_CLOEXEC) != 0 || pipe2(back, O_CLOEXEC) != 0 ||
      socketpair(AF_LOCAL, SOCK_STREAM | SOCK_CLOEXEC, 0, side) != 0) {
    perror("pipe");
    abort();
  }
  int in = OpenOrDie(dir + "/stdin", O_RDONLY);
  int null = OpenOrDie("/dev/null", O_WRONLY);
  int filter_err = OpenOrDie(dir + "/stderr", O_WRONLY | O_CREAT | O_TRUNC);
  int backend_err =
      OpenOrDie(dir + "/backend.err", O_WRONLY | O_CREAT | O_TRUNC);

  ProcessSetup filter;
  filter.argv = FilterWords(dir, call);
  filter.fds = {
      {0, in}, {1, data[1]}, {2, filter_err}, {3, back[0]}, {4, side[0]}};
  filter.env = FakeSleepEnv(dir, call.preload);
  ProcessSetup backend;
  backend.argv = {BuiltTools().backend, "1", "user", "title", "1", ""};
  backend.fds = {
      {0, data[0]}, {1, null}, {2, backend_err}, {3, back[1]}, {4, side[1]}};
  backend.env = {"DEVICE_URI=" + device_uri};

  FilterResult result;
  Subprocess filter_child(filter);
  Subprocess backend_child(backend);
  for (int fd : {data[0], data[1], back[0], back[1], side[0], side[1], in, null,
                 filter_err, backend_err})
    close(fd);
  ExitStatus filter_status = filter_child.Wait(kRunLimitSeconds);
  ExitStatus backend_status = backend_child.Wait(kRunLimitSeconds);
  result.status = filter_status.ShellStatus();
  result.backend_status = backend_status.ShellStatus();
  result.seconds = backend_child.Elapsed();
  result.err = ReadFile(dir + "/stderr");
  result.sim_log = ReadFile(dir + "/backend.err");
  result.sleeps = ReadFile(dir + "/sleeps");
  RemoveTree(dir);
  return result;
}

ProgramResult RunBackend(const std::vector<std::string>& args,
                         const std::string& device_uri,
                         const std::string& stdin_text) {
  std::vector<std::string> argv = {BuiltTools().backend};
  argv.insert(argv.end(), args.begin(), args.end());
  std::vector<std::string> env;
  if (!device_uri.empty()) env.push_back("DEVICE_URI=" + device_uri);
  return RunProgram(argv, stdin_text, env);
}
