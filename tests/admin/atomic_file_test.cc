// WriteFileAtomically: the bytes and mode it leaves, the old file a reader
// still holds, and the one line it gives when it cannot write.

#include "admin/atomic_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/files.h"

namespace {

// The user that a test run by root becomes to meet a read-only folder
// (root writes into any folder whatever its mode).
constexpr uid_t kNobody = 65534;

class WriteFileAtomicallyTest : public ::testing::Test {
 protected:
  void SetUp() override { dir_ = MakeTempDir("atomic_file_"); }
  void TearDown() override {
    chmod(dir_.c_str(), 0700);
    RemoveTree(dir_);
  }

  std::string Path(const std::string& name) const {
    return dir_ + "/" + name;
  }

  // The names in the folder, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    DIR* dir = opendir(dir_.c_str());
    if (dir == nullptr) return names;
    while (const dirent* entry = readdir(dir)) {
      const std::string name = entry->d_name;
      if (name != "." && name != "..") names.push_back(name);
    }
    closedir(dir);
    std::sort(names.begin(), names.end());
    return names;
  }

  // The permission bits of a file; -1 when it cannot be read.
  static int Mode(const std::string& path) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0) return -1;
    return static_cast<int>(info.st_mode & 07777);
  }

  // Writes under umask 077, to show that the mode does not depend on it.
  static bool Write(const std::string& path, const std::string& text,
                    std::string* error) {
    const mode_t old_umask = umask(077);
    const bool written = WriteFileAtomically(path, text, error);
    umask(old_umask);
    return written;
  }

  std::string dir_;
};

TEST_F(WriteFileAtomicallyTest, Writes) {
  std::string error = "unchanged";
  ASSERT_TRUE(Write(Path("quillaroth.prom"), "quillaroth_reason 1\n", &error));
  EXPECT_EQ("", error);
  EXPECT_EQ("quillaroth_reason 1\n", ReadFile(Path("quillaroth.prom")));
  EXPECT_EQ(0644, Mode(Path("quillaroth.prom")));
  EXPECT_EQ(std::vector<std::string>{"quillaroth.prom"}, Names());
}

// A reader that opened the old file goes on reading the old bytes; the
// name gives the new ones, with the new mode.
TEST_F(WriteFileAtomicallyTest, ReplacesWhileRead) {
  ASSERT_TRUE(WriteFile(Path("quillaroth.prom"), "old\n", 0600));
  const int reader = open(Path("quillaroth.prom").c_str(), O_RDONLY);
  ASSERT_LE(0, reader);
  std::string error;
  EXPECT_TRUE(Write(Path("quillaroth.prom"), "new\n", &error)) << error;
  EXPECT_EQ("old\n", ReadDescriptor(reader));
  close(reader);
  EXPECT_EQ("new\n", ReadFile(Path("quillaroth.prom")));
  EXPECT_EQ(0644, Mode(Path("quillaroth.prom")));
  EXPECT_EQ(std::vector<std::string>{"quillaroth.prom"}, Names());
}

TEST_F(WriteFileAtomicallyTest, ReadOnlyFolder) {
  ASSERT_EQ(0, chmod(dir_.c_str(), 0555));
  // In a child, which drops root's rights first.
  int pipe_fds[2];
  ASSERT_EQ(0, pipe(pipe_fds));
  const pid_t child = fork();
  ASSERT_LE(0, child);
  if (child == 0) {
    close(pipe_fds[0]);
    if (geteuid() == 0 && (setgroups(0, nullptr) != 0 ||
                           setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
      _exit(2);
    }
    std::string error;
    const bool written = Write(Path("quillaroth.prom"), "x\n", &error);
    const std::string report = (written ? "written" : "failed") + error;
    _exit(write(pipe_fds[1], report.data(), report.size()) ==
                  static_cast<ssize_t>(report.size())
              ? 0
              : 1);
  }
  close(pipe_fds[1]);
  const std::string report = ReadDescriptor(pipe_fds[0]);
  close(pipe_fds[0]);
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  EXPECT_EQ("failedcannot create a temporary file beside " +
                Path("quillaroth.prom") + ": Permission denied",
            report);
  EXPECT_EQ(std::vector<std::string>{}, Names());
}

TEST_F(WriteFileAtomicallyTest, MissingFolder) {
  std::string error;
  EXPECT_FALSE(Write(Path("gone/quillaroth.prom"), "x\n", &error));
  EXPECT_EQ("cannot create a temporary file beside " +
                Path("gone/quillaroth.prom") + ": No such file or directory",
            error);
}

// The name is a folder: the rename fails and the temporary file goes.
TEST_F(WriteFileAtomicallyTest, FolderInTheWay) {
  ASSERT_EQ(0, mkdir(Path("quillaroth.prom").c_str(), 0755));
  std::string error;
  EXPECT_FALSE(Write(Path("quillaroth.prom"), "x\n", &error));
  EXPECT_EQ("cannot replace " + Path("quillaroth.prom") + ": Is a directory",
            error);
  EXPECT_EQ(std::vector<std::string>{"quillaroth.prom"}, Names());
}

}  // namespace
