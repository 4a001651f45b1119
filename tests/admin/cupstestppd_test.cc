// Enabled PPDs under cupstestppd(1), CUPS' own check of a PPD: it says of
// the enabled PPD what it says of the PPD before (PASS), so `lpadmin -P`
// takes it as it took the original.
//
// cupstestppd checks that each filter named exists below its -R folder: a
// private one here, holding rastertopwg and a stand-in for
// commandtoquillaroth.  It wants them owned by root: a plain user runs it
// under fakeroot, with the folder given to root there.

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

#include "admin/ppd_edit.h"
#include "tests/admin/ppd_shapes.h"
#include "tests/support/files.h"
#include "tests/support/subprocess.h"

namespace {

const char kFilterDir[] = "/usr/lib/cups/filter";

class CupstestppdTest : public testing::Test {
 protected:
  void SetUp() override {
    cupstestppd_ = FindProgram("cupstestppd");
    if (cupstestppd_.empty())
      GTEST_SKIP() << "cupstestppd is not installed (Debian package cups-client)";
    if (geteuid() != 0) {
      fakeroot_ = FindProgram("fakeroot");
      if (fakeroot_.empty())
        GTEST_SKIP() << "cupstestppd accepts only filters owned by root: run "
                        "as root or install fakeroot";
    }
    std::string vendor = std::string(kFilterDir) + "/rastertopwg";
    if (access(vendor.c_str(), X_OK) != 0) GTEST_SKIP() << "no " << vendor;
    dir_ = MakeTempDir("quillaroth-cupstestppd-");
    std::string filters = dir_;
    for (const char* part : {"/root", "/usr", "/lib", "/cups", "/filter"}) {
      filters += part;
      ASSERT_EQ(0, mkdir(filters.c_str(), 0700)) << filters;
    }
    ASSERT_EQ(0, symlink(vendor.c_str(), (filters + "/rastertopwg").c_str()));
    ASSERT_TRUE(WriteFile(filters + "/commandtoquillaroth",
                          "#!/bin/sh\nexit 0\n", 0755));
  }

  void TearDown() override {
    if (!dir_.empty()) RemoveTree(dir_);
  }

  // What cupstestppd says of the PPD, and its exit status.
  std::string Check(const std::string& ppd) {
    std::string path = dir_ + "/queue.ppd";
    EXPECT_TRUE(WriteFile(path, ppd));
    std::string root = dir_ + "/root";
    ProgramResult result =
        fakeroot_.empty()
            ? RunProgram({cupstestppd_, "-R", root, path})
            : RunProgram({fakeroot_, "--", "sh", "-c",
                          "chown -R 0:0 \"$1\" && exec \"$2\" -R \"$1\" \"$3\"",
                          "sh", root, cupstestppd_, path});
    return "status " + std::to_string(result.status) + "\n" + result.out +
           result.err;
  }

  // Expects PASS for the PPD (with the warnings given), and the same
  // report for it enabled.
  void ExpectSameReport(const std::string& ppd,
                        const std::string& warnings = "") {
    std::string before = Check(ppd);
    EXPECT_EQ("status 0\n" + dir_ + "/queue.ppd: PASS\n" + warnings, before);
    PpdEdit edit = EnableCommandFilter(ppd);
    ASSERT_EQ(PpdEdit::Outcome::kChanged, edit.outcome) << edit.reason;
    EXPECT_EQ(before, Check(edit.text));
  }

  std::string cupstestppd_;
  std::string fakeroot_;  // for a plain user
  std::string dir_;
};

TEST_F(CupstestppdTest, FilterOnly) { ExpectSameReport(WholePpd(kVendorFilter)); }

TEST_F(CupstestppdTest, Filter2) {
  ExpectSameReport(WholePpd(std::string(kVendorFilter2) + kVendorFilter));
}

TEST_F(CupstestppdTest, PostScript) { ExpectSameReport(WholePpd("")); }

TEST_F(CupstestppdTest, MergedCommands) {
  ExpectSameReport(WholePpd(std::string(kVendorFilter) +
                            "*cupsCommands: \"AutoConfigure Clean\"\n"));
}

// cupstestppd warns of CRLF line ends, before as after.
TEST_F(CupstestppdTest, Crlf) {
  ExpectSameReport(WithCrlf(WholePpd(kVendorFilter)),
                   "        WARN    Non-Windows PPD files should use lines "
                   "ending with only LF, not CR LF.\n");
}

}  // namespace
