// The print path of an enabled PPD, as CUPS builds it: cupsfilter(8) lists
// the filters that the scheduler would run for a document format on a
// queue with the PPD (its -e option takes the PPD's filter lines, as the
// scheduler's add_printer_filter does).  enable must leave the chain of
// every print format as it was and send command jobs to commandtoquillaroth.
//
// cupsfilter finds filters in the ServerBin of the cups-files.conf that it
// is given: a private one here, holding CUPS' installed filters and a
// stand-in for commandtoquillaroth (listing a chain does not run it).

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "admin/ppd_edit.h"
#include "tests/admin/ppd_shapes.h"
#include "tests/support/files.h"
#include "tests/support/subprocess.h"

namespace {

const char kServerBin[] = "/usr/lib/cups";
const char kDataDir[] = "/usr/share/cups";
const char kCommandType[] = "application/vnd.cups-command";
// Formats that a print job may come in.
const char* const kPrintFormats[] = {"image/jpeg", "application/pdf",
                                     "application/postscript", "text/plain"};

class PrintPathTest : public testing::Test {
 protected:
  void SetUp() override {
    cupsfilter_ = FindProgram("cupsfilter");
    if (cupsfilter_.empty()) cupsfilter_ = FindProgram("/usr/sbin/cupsfilter");
    if (cupsfilter_.empty())
      GTEST_SKIP() << "cupsfilter is not installed (Debian package cups)";
    std::string filters = std::string(kServerBin) + "/filter";
    DIR* dir = opendir(filters.c_str());
    if (dir == nullptr) GTEST_SKIP() << "no CUPS filters in " << filters;
    if (access((std::string(kDataDir) + "/mime/mime.types").c_str(), R_OK) != 0) {
      closedir(dir);
      GTEST_SKIP() << "no CUPS MIME types in " << kDataDir << "/mime";
    }
    // The folders are made with mode 0700: as root, cupsfilter accepts only
    // filters in folders that no other user can write to.
    dir_ = MakeTempDir("quillaroth-print-path-");
    std::string own_filters = dir_ + "/serverbin/filter";
    ASSERT_EQ(0, mkdir((dir_ + "/serverbin").c_str(), 0700));
    ASSERT_EQ(0, mkdir(own_filters.c_str(), 0700));
    while (dirent* entry = readdir(dir)) {
      std::string name = entry->d_name;
      if (name == "." || name == "..") continue;
      ASSERT_EQ(0, symlink((filters + "/" + name).c_str(),
                           (own_filters + "/" + name).c_str()))
          << name;
    }
    closedir(dir);
    ASSERT_TRUE(WriteFile(own_filters + "/commandtoquillaroth",
                          "#!/bin/sh\nexit 0\n", 0755));
    ASSERT_TRUE(WriteFile(dir_ + "/cups-files.conf",
                          "ServerBin " + dir_ + "/serverbin\nDataDir " +
                              kDataDir + "\n"));
  }

  void TearDown() override {
    if (!dir_.empty()) RemoveTree(dir_);
  }

  // The filters that CUPS runs for a document of the format on a queue
  // with the PPD, one a line; "" when it has none.
  std::string Chain(const std::string& ppd, const std::string& format) {
    std::string path = dir_ + "/queue.ppd";
    EXPECT_TRUE(WriteFile(path, ppd));
    ProgramResult result =
        RunProgram({cupsfilter_, "-c", dir_ + "/cups-files.conf", "-e", "-p",
                    path, "-m", "printer/queue", "-i", format, "--list-filters"});
    return result.status == 0 ? result.out : "";
  }

  // Expects the same chain for each print format before and after enable
  // (a chain for image/jpeg and application/pdf at least), and command
  // jobs to go to commandtoquillaroth after it.
  void ExpectPrintPathKept(const std::string& ppd) {
    PpdEdit edit = EnableCommandFilter(ppd);
    ASSERT_NE(PpdEdit::Outcome::kRefused, edit.outcome) << edit.reason;
    
    for (const char* format : kPrintFormats) {
      SCOPED_TRACE(format);
      std::string before = Chain(ppd, format);
      if (std::string(format) == "image/jpeg" ||
          std::string(format) == "application/pdf") {
        EXPECT_NE("", before);
      }
      EXPECT_EQ(before, Chain(edit.text, format));
    }
    EXPECT_EQ("commandtoquillaroth\n", Chain(edit.text, kCommandType));
  }

  std::string cupsfilter_;
  std::string dir_;
};

TEST_F(PrintPathTest, FilterOnlyPpd) {
  ExpectPrintPathKept(FilterOnlyPpd());
  EXPECT_EQ("", Chain(FilterOnlyPpd(), kCommandType));
}

TEST_F(PrintPathTest, Filter2Ppd) {
  ExpectPrintPathKept(Filter2Ppd());
  EXPECT_EQ("", Chain(Filter2Ppd(), kCommandType));
}

// CUPS' implicit PostScript path stays; commandtops gives way to ours.
TEST_F(PrintPathTest, PostScriptPpd) {
  ExpectPrintPathKept(PostScriptPpd());
  EXPECT_EQ("commandtops\n", Chain(PostScriptPpd(), kCommandType));
}

// What a *cupsFilter2 line appended to a *cupsFilter PPD would do, and
// why enable does not: the printer's own filter is gone.
TEST_F(PrintPathTest, Filter2LineWouldCutOffTheVendorFilter) {
  std::string wrong = FilterOnlyPpd() +
                      "*cupsFilter2: \"application/vnd.cups-command "
                      "application/vnd.cups-command 0 commandtoquillaroth\"\n";
  EXPECT_NE("", Chain(FilterOnlyPpd(), "image/jpeg"));
  EXPECT_EQ("", Chain(wrong, "image/jpeg"));
}

}  // namespace
