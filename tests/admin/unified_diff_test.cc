// UnifiedDiff against the output of `diff -u`, its timestamps cut off.

#include "admin/unified_diff.h"

#include <gtest/gtest.h>

#include <string>

#include "admin/ppd_edit.h"
#include "tests/admin/ppd_shapes.h"
#include "tests/support/files.h"
#include "tests/support/subprocess.h"

namespace {

class UnifiedDiffTest : public testing::Test {
 protected:
  // What `diff -u` prints for the two texts, with "--- old" and "+++ new"
  // as its first lines.
  std::string DiffU(const std::string& old_text, const std::string& new_text) {
    if (dir_.empty()) dir_ = MakeTempDir("quillaroth-diff-");
    std::string old_path = dir_ + "/old", new_path = dir_ + "/new";
    EXPECT_TRUE(WriteFile(old_path, old_text));
    EXPECT_TRUE(WriteFile(new_path, new_text));
    ProgramResult result = RunProgram({kDiff, "-u", old_path, new_path});
    EXPECT_EQ(old_text == new_text ? 0 : 1, result.status) << result.Describe();
    std::string out = result.out;
    // The header lines: "--- PATH\tTIMESTAMP" and "+++ PATH\tTIMESTAMP".
    if (!out.empty()) {
      std::string::size_type second_end = out.find('\n', out.find('\n') + 1);
      out.replace(0, second_end, "--- old\n+++ new");
    }
    return out;
  }

  // Expects UnifiedDiff to print what diff -u does.
  void ExpectAsDiff(const std::string& old_text, const std::string& new_text) {
    EXPECT_EQ(DiffU(old_text, new_text),
              UnifiedDiff("old", "new", old_text, new_text));
  }

  void TearDown() override {
    if (!dir_.empty()) RemoveTree(dir_);
  }

  void SetUp() override {
    if (FindProgram(kDiff).empty()) GTEST_SKIP() << kDiff << " is not installed";
  }

  static constexpr const char* kDiff = "/usr/bin/diff";
  std::string dir_;
};

// The whole output, written out: the readable example of this file.
TEST_F(UnifiedDiffTest, MergedCommandsGoldenText) {
  std::string old_text =
      "*PPD-Adobe: \"4.3\"\n"
      "*cupsFilter: \"application/vnd.cups-raster 50 rastertopwg\"\n"
      "*cupsCommands: \"Clean\"\n"
      "*% 1\n*% 2\n*% 3\n*% 4\n*% 5\n*% 6\n*% 7\n"
      "*% End\n";
  std::string new_text =
      "*PPD-Adobe: \"4.3\"\n"
      "*cupsFilter: \"application/vnd.cups-raster 50 rastertopwg\"\n"
      "*% quillaroth enable: was *cupsCommands: \"Clean\"\n"
      "*% 1\n*% 2\n*% 3\n*% 4\n*% 5\n*% 6\n*% 7\n"
      "*% End\n"
      "*% quillaroth enable: begin\n"
      "*cupsCommands: \"Clean ReportLevels ReportStatus\"\n"
      "*% quillaroth enable: end\n";
  EXPECT_EQ(
      "--- old\n"
      "+++ new\n"
      "@@ -1,6 +1,6 @@\n"
      " *PPD-Adobe: \"4.3\"\n"
      " *cupsFilter: \"application/vnd.cups-raster 50 rastertopwg\"\n"
      "-*cupsCommands: \"Clean\"\n"
      "+*% quillaroth enable: was *cupsCommands: \"Clean\"\n"
      " *% 1\n"
      " *% 2\n"
      " *% 3\n"
      "@@ -9,3 +9,6 @@\n"
      " *% 6\n"
      " *% 7\n"
      " *% End\n"
      "+*% quillaroth enable: begin\n"
      "+*cupsCommands: \"Clean ReportLevels ReportStatus\"\n"
      "+*% quillaroth enable: end\n",
      UnifiedDiff("old", "new", old_text, new_text));
  ExpectAsDiff(old_text, new_text);
}

TEST_F(UnifiedDiffTest, SameTextsGiveNothing) {
  EXPECT_EQ("", UnifiedDiff("old", "new", "a\n", "a\n"));
  ExpectAsDiff("a\n", "a\n");
}

TEST_F(UnifiedDiffTest, EnableOfEachShapeAsDiff) {
  for (const std::string& ppd :
       {FilterOnlyPpd(), Filter2Ppd(), PostScriptPpd(), WithCrlf(FilterOnlyPpd()),
        std::string(kHeader) + kVendorFilter + "*cupsCommands: \"Clean\"\n" +
            kTrailer + kTrailer + kTrailer + kTrailer + kTrailer,
        std::string(kHeader) + kVendorFilter + "*% End"}) {
    SCOPED_TRACE(ppd);
    std::string enabled = EnableCommandFilter(ppd).text;
    ExpectAsDiff(ppd, enabled);
    ExpectAsDiff(enabled, ppd);
  }
}

TEST_F(UnifiedDiffTest, EdgesAsDiff) {
  ExpectAsDiff("", "a\nb\n");
  ExpectAsDiff("a\nb\n", "");
  ExpectAsDiff("a", "a\n");
  ExpectAsDiff("a\n", "a");
  ExpectAsDiff("a\nb", "a\nc");
  ExpectAsDiff("x\n", "y\n");
  ExpectAsDiff("1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n13\n14\n15\n",
               "1\nX\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n13\nY\n15\n");
  ExpectAsDiff("1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n",
               "1\n2\nX\n4\n5\n6\n7\n8\nY\n10\n");
  ExpectAsDiff("a\nb\nc\nd\ne\n", "e\nd\nc\nb\na\n");
  ExpectAsDiff("a\nb\na\nb\n", "b\na\nb\na\nb\n");
}

}  // namespace
