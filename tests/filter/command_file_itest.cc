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

#include <string>

#include "tests/support/built_tools.h"
#include "tests/support/expected_trace.h"
#include "tests/support/files.h"
#include "tests/support/hostile_backend.h"

namespace {

// The unprivileged user that root runs the filter as.
constexpr int kNobody = 65534;

class CommandFileOpenTest : public ::testing::Test {
 protected:
  // A fresh folder for the test's files.
  void SetUp() override { dir_ = MakeTempDir("quillaroth-command-file-"); }
  // Removes it.
  void TearDown() override { RemoveTree(dir_); }

  // Runs the filter on the command file with no channels, as uid when
  // uid >= 0; expects it to end by exit with the status, err and out.
  static void ExpectRun(const std::string& path, int status,
                        const std::string& err, const std::string& out,
                        int uid = -1) {
    HostileOptions options;
    options.back_channel = false;
    options.side_channel = false;
    options.command_file = path;
    options.uid = uid;
    ExitInfo run = HostileBackend("", options).Wait(5.0);
    EXPECT_TRUE(run.exit.exited) << run.exit.Describe();
    EXPECT_EQ(status, run.exit.code);
    EXPECT_EQ(err, run.err);
    EXPECT_EQ(out, run.out);
  }

  // What a run that cannot open its command file writes.
  static std::string OpenFailure(const std::string& error_text) {
    return "ERROR: Unable to open command file - : " + error_text + "\n";
  }

  // The one-way start of a run: probe failure and the wake-up.
  static std::string OneWayStart() {
    return ProbeFailureLine(CUPS_SC_STATUS_TIMEOUT) +
           WakeUpLines(CUPS_SC_STATUS_TIMEOUT);
  }

  std::string dir_;
};

TEST_F(CommandFileOpenTest, MissingFile) {
  ExpectRun(dir_ + "/missing", 1, OpenFailure("No such file or directory"), "");
}

// Root reads a file of mode 000 all the same; run as root, the filter is
// therefore started as the unprivileged user "nobody", for whom the file
// is really unreadable.  The file then lies in the folder under /tmp that
// every user can enter, and the filter is run from a copy there: the build
// tree may lie below a folder that nobody cannot enter.
TEST_F(CommandFileOpenTest, UnreadableFile) {
  bool root = getuid() == 0;
  std::string path = (root ? ReachableDir() : dir_) + "/commands";
  ASSERT_TRUE(WriteFile(path, "ReportStatus\n", 0));
  ExpectRun(path, 1, OpenFailure("Permission denied"), "", root ? kNobody : -1);
  unlink(path.c_str());
}

// A symbolic link to itself cannot be opened, not even by root.
TEST_F(CommandFileOpenTest, SymbolicLinkLoop) {
  std::string path = dir_ + "/loop";
  ASSERT_EQ(0, symlink(path.c_str(), path.c_str()));
  ExpectRun(path, 1, OpenFailure("Too many levels of symbolic links"), "");
}

// A directory opens (open(2) allows O_RDONLY on one) but every read fails
// with EISDIR, which libcups' reader reports as the end of the file: no
// command line, status 0.
// The whole trace, written out: the readable example of this file.
// Without a side channel the probe and the wake-up's drain time out at once.
TEST_F(CommandFileOpenTest, DirectoryGoldenTrace) {
  ExpectRun(dir_, 0,
            "DEBUG: Unable to retrieve supply status from printer - "
            "nobidirectional I/O available! CUPS_SC_STATUS_TIMEOUT(3)\n"
            "DEBUG: wr_esc_wakeup() START\n"
            "DEBUG: [CMD] size=4\n"
            "DEBUG: [CMD] 0000: 1b 45 57 55\n"
            "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=CUPS_SC_STATUS_TIMEOUT(3)\n"
            "DEBUG: wr_esc_wakeup() END\n",
            "\x1b\x45\x57\x55");
}

// A file that opens but whose first read fails (EIO: nothing is mapped at
// offset 0 of a process's memory): handled like an empty file.
TEST_F(CommandFileOpenTest, ReadErrorAfterOpen) {
  ExpectRun("/proc/self/mem", 0, OneWayStart(), kWakeUpCommand);
}

}  // namespace
