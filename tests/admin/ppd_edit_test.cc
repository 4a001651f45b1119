// EnableCommandFilter / DisableCommandFilter on each shape of PPD, and the
// facts that `quillaroth status` reads: RunsCommandFilter, ReasonTexts.

#include "admin/ppd_edit.h"

#include <gtest/gtest.h>

#include <string>

#include "admin/command_filter_lines.h"
#include "tests/admin/ppd_shapes.h"

namespace {

const char kFilterLine[] =
    "*cupsFilter: \"application/vnd.cups-command 0 commandtoquillaroth\"\n";
const char kFilter2Line[] =
    "*cupsFilter2: \"application/vnd.cups-command application/vnd.cups-command "
    "0 commandtoquillaroth\"\n";
const char kPostScriptLine[] =
    "*cupsFilter: \"application/vnd.cups-postscript 0 -\"\n";
const char kCommandsLine[] = "*cupsCommands: \"ReportLevels ReportStatus\"\n";

class PpdEditTest : public testing::Test {
 protected:
  // Enables, expecting success; the new text.
  std::string Enable(const std::string& ppd) {
    PpdEdit edit = EnableCommandFilter(ppd);
    EXPECT_NE(PpdEdit::Outcome::kRefused, edit.outcome) << edit.reason;
    return edit.text;
  }

  // Checks the edits' laws on ppd: enable twice is enable once, disable
  // gives back the PPD byte for byte, the enabled PPD runs the filter.
  void ExpectLaws(const std::string& ppd) {
    std::string enabled = Enable(ppd);
    PpdEdit again = EnableCommandFilter(enabled);
    EXPECT_EQ(PpdEdit::Outcome::kUnchanged, again.outcome);
    EXPECT_EQ(enabled, again.text);
    PpdEdit disabled = DisableCommandFilter(enabled);
    EXPECT_EQ(enabled != ppd ? PpdEdit::Outcome::kChanged
                              : PpdEdit::Outcome::kUnchanged,
              disabled.outcome)
        << disabled.reason;
    EXPECT_EQ(ppd, disabled.text);
    EXPECT_TRUE(RunsCommandFilter(enabled));
  }

  // Expects a refusal for this reason and the PPD handed back.
  void ExpectRefused(const std::string& ppd, const std::string& reason) {
    PpdEdit edit = EnableCommandFilter(ppd);
    EXPECT_EQ(PpdEdit::Outcome::kRefused, edit.outcome);
    EXPECT_EQ(ppd, edit.text);
    EXPECT_EQ(reason, edit.reason);
  }
};

// The whole output, written out: the readable example of this file.
TEST_F(PpdEditTest, FilterOnlyGoldenText) {
  PpdEdit edit = EnableCommandFilter(FilterOnlyPpd());
  EXPECT_EQ(PpdEdit::Outcome::kChanged, edit.outcome);
  EXPECT_EQ("enabled: a *cupsFilter line, *cupsCommands added, "
            "19 reason texts added",
            edit.reason);
  EXPECT_EQ(
      "*PPD-Adobe: \"4.3\"\n"
      "*FormatVersion: \"4.3\"\n"
      "*FileVersion: \"1.0\"\n"
      "*LanguageVersion: English\n"
      "*LanguageEncoding: ISOLatin1\n"
      "*PCFileName: \"VENDOR.PPD\"\n"
      "*Manufacturer: \"Vendor\"\n"
      "*Product: \"(Vendor Photo)\"\n"
      "*ModelName: \"Vendor Photo\"\n"
      "*ShortNickName: \"Vendor Photo\"\n"
      "*NickName: \"Vendor Photo\"\n"
      "*PSVersion: \"(3010.000) 0\"\n"
      "*cupsFilter: \"application/vnd.cups-raster 50 rastertopwg\"\n"
      "*% End of vendor.ppd\n"
      "*% quillaroth enable: begin\n"
      "*cupsFilter: \"application/vnd.cups-command 0 commandtoquillaroth\"\n"
      "*cupsCommands: \"ReportLevels ReportStatus\"\n"
      "*cupsIPPReason com.quillaroth-error0001/Printer error 0001 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0002/Printer error 0002 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0003/Printer error 0003 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0004/Printer error 0004 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0005/Ink ribbon used up: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0006/Printer error 0006 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0007/Printer error 0007 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0008/Printer error 0008 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0009/Printer error 0009 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0010/Printer error 0010 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0011/Printer error 0011 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0012/Printer error 0012 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0013/Printer error 0013 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0014/Printer error 0014 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0018/Printer error 0018 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0020/Printer error 0020 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0021/Printer error 0021 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0022/Printer error 0022 - see the printer's panel: \"\"\n"
      "*cupsIPPReason com.quillaroth-error0023/Printer not reachable or unknown printer error: \"\"\n"
      "*% quillaroth enable: end\n",
      edit.text);
  ExpectLaws(FilterOnlyPpd());
}

// CUPS ignores *cupsFilter lines beside a *cupsFilter2 line: ours must be
// a *cupsFilter2 line too.
TEST_F(PpdEditTest, Filter2GetsTheFilter2Form) {
  EXPECT_EQ(Filter2Ppd() + Block({kFilter2Line, kCommandsLine, ReasonLines()}),
            Enable(Filter2Ppd()));
  ExpectLaws(Filter2Ppd());
}

// The PPD's words come first, ours follow; its own line stays as a comment.
TEST_F(PpdEditTest, CommandsMergedIntoTheExistingLine) {
  std::string ppd = std::string(kHeader) + kVendorFilter +
                    "*cupsCommands: \"AutoConfigure Clean\"\n" + kTrailer;
  EXPECT_EQ(std::string(kHeader) + kVendorFilter +
                "*% quillaroth enable: was *cupsCommands: \"AutoConfigure Clean\"\n" +
                kTrailer +
                Block({kFilterLine,
                       "*cupsCommands: \"AutoConfigure Clean ReportLevels "
                       "ReportStatus\"\n",
                       ReasonLines()}),
            Enable(ppd));
  ExpectLaws(ppd);
}

TEST_F(PpdEditTest, CommandsWithOneOfOursKeepItOnce) {
  std::string ppd = std::string(kHeader) + kVendorFilter +
                    "*cupsCommands: \"ReportStatus Clean\"\n" + kTrailer;
  EXPECT_EQ(std::string(kHeader) + kVendorFilter +
                "*% quillaroth enable: was *cupsCommands: \"ReportStatus Clean\"\n" +
                kTrailer +
                Block({kFilterLine,
                       "*cupsCommands: \"ReportStatus Clean ReportLevels\"\n",
                       ReasonLines()}),
            Enable(ppd));
  ExpectLaws(ppd);
}

TEST_F(PpdEditTest, CommandsWithBothOfOursStayAsTheyAre) {
  std::string ppd = std::string(kHeader) + kVendorFilter +
                    "*cupsCommands: \"Clean ReportLevels ReportStatus\"\n" +
                    kTrailer;
  PpdEdit edit = EnableCommandFilter(ppd);
  EXPECT_EQ(ppd + Block({kFilterLine, ReasonLines()}), edit.text);
  EXPECT_EQ("enabled: a *cupsFilter line, *cupsCommands kept, "
            "19 reason texts added",
            edit.reason);
  ExpectLaws(ppd);
}

// "none" (no commands, and so no command filter) gives way to ours.
TEST_F(PpdEditTest, CommandsNoneGivesWayToOurs) {
  std::string ppd = std::string(kHeader) + kVendorFilter +
                    "*cupsCommands: none\n" + kTrailer;
  EXPECT_EQ(std::string(kHeader) + kVendorFilter +
                "*% quillaroth enable: was *cupsCommands: none\n" + kTrailer +
                Block({kFilterLine, kCommandsLine, ReasonLines()}),
            Enable(ppd));
  ExpectLaws(ppd);
}

TEST_F(PpdEditTest, EnabledTwiceChangesNothing) {
  std::string once = Enable(FilterOnlyPpd());
  PpdEdit twice = EnableCommandFilter(once);
  EXPECT_EQ(PpdEdit::Outcome::kUnchanged, twice.outcome);
  EXPECT_EQ(once, twice.text);
  EXPECT_EQ("already enabled by quillaroth", twice.reason);
}

TEST_F(PpdEditTest, CrlfPpdGetsCrlfLines) {
  std::string ppd = WithCrlf(FilterOnlyPpd());
  EXPECT_EQ(ppd + WithCrlf(Block({kFilterLine, kCommandsLine, ReasonLines()})),
            Enable(ppd));
  ExpectLaws(ppd);
}

TEST_F(PpdEditTest, LastLineWithoutLineEnd) {
  std::string ppd = std::string(kHeader) + kVendorFilter + "*% End";
  EXPECT_EQ(std::string(kHeader) + kVendorFilter + "*% End\n" +
                "*% quillaroth enable: begin (the line above had no line end)\n" +
                kFilterLine + kCommandsLine + ReasonLines() +
                "*% quillaroth enable: end\n",
            Enable(ppd));
  ExpectLaws(ppd);
}

// The PPD's own text of a reason stays; ours is not added beside it.
TEST_F(PpdEditTest, ReasonThePpdDescribesIsLeftOut) {
  std::string ppd = std::string(kHeader) + kVendorFilter +
                    "*cupsIPPReason com.quillaroth-error0005/Ribbon empty: \"\"\n" +
                    kTrailer;
  PpdEdit edit = EnableCommandFilter(ppd);
  EXPECT_EQ(ppd + Block({kFilterLine, kCommandsLine,
                         ReasonLines({"com.quillaroth-error0005"})}),
            edit.text);
  EXPECT_EQ("enabled: a *cupsFilter line, *cupsCommands added, "
            "18 reason texts added",
            edit.reason);
  EXPECT_EQ("Ribbon empty", ReasonTexts(edit.text).at("com.quillaroth-error0005"));
  ExpectLaws(ppd);
}

TEST_F(PpdEditTest, SimulatorPpdIsLeftAlone) {
  PpdEdit edit = EnableCommandFilter(kSimulatorPpd);
  EXPECT_EQ(PpdEdit::Outcome::kUnchanged, edit.outcome);
  EXPECT_EQ(kSimulatorPpd, edit.text);
  EXPECT_EQ("the PPD already runs commandtoquillaroth for command jobs",
            edit.reason);
  PpdEdit disabled = DisableCommandFilter(kSimulatorPpd);
  EXPECT_EQ(PpdEdit::Outcome::kUnchanged, disabled.outcome);
  EXPECT_EQ(kSimulatorPpd, disabled.text);
  EXPECT_EQ("not enabled by quillaroth", disabled.reason);
}

// A PostScript printer keeps the PostScript path that CUPS gave it while
// its PPD named no filter (tests/admin/print_path_test.cc runs cupsfilter
// on it).
TEST_F(PpdEditTest, PostScriptPpdKeepsItsPostScriptPath) {
  PpdEdit edit = EnableCommandFilter(PostScriptPpd());
  EXPECT_EQ(PostScriptPpd() + Block({kPostScriptLine, kFilterLine,
                                     kCommandsLine, ReasonLines()}),
            edit.text);
  EXPECT_EQ("enabled: a *cupsFilter line beside the PostScript path, "
            "*cupsCommands added, 19 reason texts added",
            edit.reason);
  ExpectLaws(PostScriptPpd());
}

TEST_F(PpdEditTest, BrokenPpdIsRefused) {
  ExpectRefused("*PPD-Adobe: \"4.3\"\nHello\n",
                "libcups cannot read the PPD: line 2: Missing asterisk in column 1");
  ExpectRefused("", "libcups cannot read the PPD: line 0: "
                    "Missing PPD-Adobe-4.x header");
}

// A quote left open swallows the block: libcups reads the result, but it
// would not run the filter.
TEST_F(PpdEditTest, OpenQuoteAtTheEndIsRefused) {
  ExpectRefused(std::string(kHeader) + kVendorFilter + "*VendorNote: \"abc\n",
                "the edited PPD would not run commandtoquillaroth");
}

TEST_F(PpdEditTest, AnotherCommandFilterIsRefused) {
  ExpectRefused(
      std::string(kHeader) + kVendorFilter +
          "*cupsFilter: \"application/vnd.cups-command 0 commandtoescpx\"\n",
      "the PPD sends command jobs to commandtoescpx; quillaroth does not "
      "replace another command filter");
}

TEST_F(PpdEditTest, DamagedBlockIsRefused) {
  std::string enabled = Enable(FilterOnlyPpd());
  std::string no_end = enabled.substr(0, enabled.rfind("*% quillaroth enable: end"));
  ExpectRefused(no_end,
                "the PPD has a \"*% quillaroth enable: begin\" line without an "
                "end line after it");
  PpdEdit disabled = DisableCommandFilter(no_end);
  EXPECT_EQ(PpdEdit::Outcome::kRefused, disabled.outcome);
  EXPECT_EQ(no_end, disabled.text);
}

TEST_F(PpdEditTest, LoneCarriageReturnsAreRefused) {
  std::string ppd = FilterOnlyPpd();
  for (char& c : ppd) c = c == '\n' ? '\r' : c;
  ExpectRefused(ppd, "the PPD has lines that end in a CR alone");
}

TEST_F(PpdEditTest, DisableWithoutTheBlockChangesNothing) {
  PpdEdit edit = DisableCommandFilter(FilterOnlyPpd());
  EXPECT_EQ(PpdEdit::Outcome::kUnchanged, edit.outcome);
  EXPECT_EQ(FilterOnlyPpd(), edit.text);
  EXPECT_EQ("not enabled by quillaroth", edit.reason);
}

TEST_F(PpdEditTest, DisableKeepsLinesAddedAfterTheBlock) {
  std::string enabled = Enable(FilterOnlyPpd());
  EXPECT_EQ(FilterOnlyPpd() + "*% later\n",
            DisableCommandFilter(enabled + "*% later\n").text);
}

// As CUPS picks a command job's filter: the *cupsFilter2 lines when there
// is one, else the *cupsFilter lines; the cheapest command filter wins.
TEST(RunsCommandFilterTest, AsCupsPicksTheFilter) {
  std::string head = std::string(kHeader) + kVendorFilter;
  EXPECT_FALSE(RunsCommandFilter(FilterOnlyPpd()));
  EXPECT_TRUE(RunsCommandFilter(head + kFilterLine));
  EXPECT_TRUE(RunsCommandFilter(
      head + "*cupsFilter: \"application/vnd.cups-command 0 "
             "/usr/lib/cups/filter/commandtoquillaroth\"\n"));
  EXPECT_TRUE(RunsCommandFilter(
      head + "*cupsFilter: \"application/vnd.cups-command 0 maxsize(100) "
             "commandtoquillaroth\"\n"));
  // Ignored beside a *cupsFilter2 line.
  EXPECT_FALSE(RunsCommandFilter(std::string(kHeader) + kVendorFilter2 +
                                 kFilterLine));
  EXPECT_TRUE(RunsCommandFilter(std::string(kHeader) + kVendorFilter2 +
                                kFilter2Line));
  // Not for command jobs, or not our program.
  EXPECT_FALSE(RunsCommandFilter(
      head + "*cupsFilter: \"application/vnd.cups-raster 0 commandtoquillaroth\"\n"));
  EXPECT_FALSE(RunsCommandFilter(
      head + "*cupsFilter: \"application/vnd.cups-command 0 commandtoquillaroth2\"\n"));
  // A cheaper command filter runs instead.
  EXPECT_FALSE(RunsCommandFilter(
      head + "*cupsFilter: \"application/vnd.cups-command 10 commandtoquillaroth\"\n"
             "*cupsFilter: \"application/vnd.cups-command 5 commandtops\"\n"));
  EXPECT_TRUE(RunsCommandFilter(kSimulatorPpd));
  EXPECT_FALSE(RunsCommandFilter("Hello\n"));
}

TEST(ReasonTextsTest, TextsByKeyword) {
  std::string ppd = std::string(kHeader) +
                    "*cupsIPPReason com.example-one/First text: \"\"\n"
                    "*cupsIPPReason com.example-two/Second, with - signs: "
                    "\"http://example.com/two\"\n";
  std::map<std::string, std::string> expected = {
      {"com.example-one", "First text"},
      {"com.example-two", "Second, with - signs"}};
  EXPECT_EQ(expected, ReasonTexts(ppd));
  EXPECT_TRUE(ReasonTexts("Hello\n").empty());
  EXPECT_EQ("Ink ribbon used up",
            ReasonTexts(kSimulatorPpd).at("com.quillaroth-error0005"));
}

// PPD lines without a PPD's header read too: the fragment's texts are the
// simulated printer's.
TEST(ReasonTextsTest, FragmentWithoutHeader) {
  std::map<std::string, std::string> texts = ReasonTexts(kCommandFilterFragment);
  EXPECT_EQ(19u, texts.size());
  EXPECT_EQ(ReasonTexts(kSimulatorPpd), texts);
}

}  // namespace
