// Command files that the real filter cannot use: missing, unreadable, a
// symbolic-link loop, a directory.  The filter runs without back and side
// channels (one-way), as when started by hand.
//
// An open that fails is the filter's one clear error: perror() with
// "ERROR: Unable to open command file - " (the C library adds ": ", the
// error text and a line end), status 1, nothing on stdout.  A file that
// opens but cannot be read is not told apart from an empty one: libcups'
// line reader returns null for a read error exactly as for the end of the
// file, so the run ends normally after the wake-up, with status 0.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/hostile_backend.h"
#include "tests/support/hostile_expect.h"

namespace {

// A fresh directory under /tmp, removed by the test.
std::string TempDir() {
  char path[] = "/tmp/command-file-dir-XXXXXX";
  if (mkdtemp(path) == nullptr) abort();
  return path;
}

// Runs the filter on the command file path with no channels.
ExitInfo RunOn(const std::string& path, int uid = -1) {
  HostileOptions options;
  options.back_channel = false;
  options.side_channel = false;
  options.command_file = path;
  options.uid = uid;
  HostileBackend backend(FILTER_PATH, FAKE_SLEEP_PATH, "", options);
  return backend.Wait(5.0);
}

// What a run that cannot open its command file writes.
std::string OpenFailure(const std::string& error_text) {
  return "ERROR: Unable to open command file - : " + error_text + "\n";
}

// The one-way start of a run: probe failure and the wake-up.
std::string OneWayStart() {
  return ExpectProbeFailure(kScStatusTimeout) + ExpectWakeUp(kScStatusTimeout);
}

TEST(CommandFileOpenTest, MissingFile) {
  std::string dir = TempDir();
  ExitInfo run = RunOn(dir + "/missing");
  EXPECT_TRUE(run.exited);
  EXPECT_EQ(1, run.status);
  EXPECT_EQ(OpenFailure("No such file or directory"), run.err);
  EXPECT_EQ("", run.out);
  rmdir(dir.c_str());
}

// Tests run as root, which reads a file of mode 000 all the same; the
// filter is therefore started as the unprivileged user "nobody" (65534),
// for whom the file is really unreadable.
TEST(CommandFileOpenTest, UnreadableFile) {
  std::string dir = TempDir();
  chmod(dir.c_str(), 0755);
  std::string path = dir + "/commands";
  FILE* file = fopen(path.c_str(), "w");
  ASSERT_NE(nullptr, file);
  fputs("ReportStatus\n", file);
  fclose(file);
  chmod(path.c_str(), 0);
  ExitInfo run = RunOn(path, getuid() == 0 ? 65534 : -1);
  EXPECT_TRUE(run.exited);
  EXPECT_EQ(1, run.status);
  EXPECT_EQ(OpenFailure("Permission denied"), run.err);
  EXPECT_EQ("", run.out);
  unlink(path.c_str());
  rmdir(dir.c_str());
}

// A symbolic link to itself cannot be opened, not even by root.
TEST(CommandFileOpenTest, SymbolicLinkLoop) {
  std::string dir = TempDir();
  std::string path = dir + "/loop";
  ASSERT_EQ(0, symlink(path.c_str(), path.c_str()));
  ExitInfo run = RunOn(path);
  EXPECT_TRUE(run.exited);
  EXPECT_EQ(1, run.status);
  EXPECT_EQ(OpenFailure("Too many levels of symbolic links"), run.err);
  EXPECT_EQ("", run.out);
  unlink(path.c_str());
  rmdir(dir.c_str());
}

// A directory opens (open(2) allows O_RDONLY on one) but every read fails
// with EISDIR, which libcups' reader reports as the end of the file: no
// command line, status 0.
TEST(CommandFileOpenTest, Directory) {
  std::string dir = TempDir();
  ExitInfo run = RunOn(dir);
  EXPECT_TRUE(run.exited);
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(OneWayStart(), run.err);
  EXPECT_EQ(std::string(kWakeUpBytes, 4), run.out);
  rmdir(dir.c_str());
}

// A file that opens but whose first read fails (EIO: nothing is mapped at
// offset 0 of a process's memory): handled like an empty file.
TEST(CommandFileOpenTest, ReadErrorAfterOpen) {
  ExitInfo run = RunOn("/proc/self/mem");
  EXPECT_TRUE(run.exited);
  EXPECT_EQ(0, run.status);
  EXPECT_EQ(OneWayStart(), run.err);
  EXPECT_EQ(std::string(kWakeUpBytes, 4), run.out);
}

}  // namespace
