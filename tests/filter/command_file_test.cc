// The command loop on hostile command files, in-process on a one-way link
// (so that no printer is queried): very long lines, NUL bytes, binary
// garbage, CR LF and bare CR line ends, a last line without a line end, and
// 100,000 unknown commands.  No crash, and every later line is still
// handled under its right line number.
//
// What a line turns into is decided by libcups' reader: cupsFileGetConf()
// takes its lines from cupsFileGets(), which
//   - ends a line at "\n", at "\r\n" and at a lone "\r";
//   - fills at most bufsize - 1 bytes (1023 here): the rest of a longer line
//     comes back from the next call as a line of its own, and each call
//     advances the line counter;
//   - copies NUL bytes like any other, so the C string ends at the first
//     NUL and the rest of that line is never seen;
// and cupsFileGetConf() then cuts the line at an unescaped "#", skips
// leading white space, skips a line that is then empty (still counted), and
// ends the command word at the first white space.

#include <cups/file.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

#include "filter/command_loop.h"
#include "tests/support/expected_trace.h"
#include "tests/support/files.h"
#include "tests/support/stderr_capture.h"

namespace {

// Runs the one-way command loop on a file holding text; returns its stderr.
std::string RunLoop(const std::string& text) {
  cups_file_t* file = cupsFileOpenFd(OpenTempFile(text), "r");
  if (file == nullptr) return "(cupsFileOpenFd failed)";
  StderrCapture capture;
  run_command_loop(file, false);
  std::string err = capture.Text();
  cupsFileClose(file);
  return err;
}

// The one-way answer to a "ReportStatus" line.
std::string Status() { return StateLines("0023"); }

// The one-way answer to a "ReportLevels" line.
std::string Levels() { return UnavailableLevelsLines(); }

TEST(CommandFileTest, CrLfAndBareCrEndLines) {
  EXPECT_EQ(CommandLine("ReportStatus", 1) + Status() +
                CommandLine("ReportLevels", 2) + Levels() +
                CommandLine("ReportStatus", 3) + Status(),
            RunLoop("ReportStatus\r\nReportLevels\rReportStatus\r\n"));
}

// The whole trace, written out: the readable example of this file.
// The last line has no line end; the one-way loop reports unavailable
// levels for it.
TEST(CommandFileTest, LastLineWithoutLineEndGoldenTrace) {
  EXPECT_EQ(
      "DEBUG: ====> command=[Other] linenum=1\n"
      "DEBUG: ====> command=[ReportLevels] linenum=2\n" +
          // The unavailable levels' six lines: written out in
          // filter/bidi_probe_itest.cc.
          UnavailableLevelsLines(),
      RunLoop("Other\nReportLevels"));
}

// A line of 3000 bytes is read as chunks of 1023, 1023 and 954 bytes, each
// a "line" of its own with its own number; the line after it is line 4.
TEST(CommandFileTest, LineFarLongerThanTheBuffer) {
  std::string word(3000, 'x');
  EXPECT_EQ(CommandLine(std::string(1023, 'x'), 1) +
                CommandLine(std::string(1023, 'x'), 2) +
                CommandLine(std::string(954, 'x'), 3) +
                CommandLine("ReportStatus", 4) + Status(),
            RunLoop(word + "\nReportStatus\n"));
}

// A known command followed by a long argument: the command is handled from
// the first chunk, the argument's later chunks are unknown commands.
TEST(CommandFileTest, KnownCommandWithAnArgumentLongerThanTheBuffer) {
  std::string line = "ReportLevels " + std::string(2100, 'a');
  // Chunks: 1023 bytes (the command and 1010 a's), 1023 a's, 67 a's.
  EXPECT_EQ(CommandLine("ReportLevels", 1) + Levels() +
                CommandLine(std::string(1023, 'a'), 2) +
                CommandLine(std::string(67, 'a'), 3) +
                CommandLine("ReportStatus", 4) + Status(),
            RunLoop(line + "\nReportStatus\n"));
}

// A line of exactly 1023 bytes fills the buffer without its line end, so
// the line end comes back as an empty line: skipped, but counted.
TEST(CommandFileTest, LineOfExactlyTheBufferSize) {
  EXPECT_EQ(CommandLine(std::string(1023, 'y'), 1) +
                CommandLine("ReportStatus", 3) + Status(),
            RunLoop(std::string(1023, 'y') + "\nReportStatus\n"));
}

// The command word ends at a NUL byte; what follows it on that line is
// never seen, and the next lines are handled as usual.
TEST(CommandFileTest, NulBytes) {
  std::string text("ReportStatus\0garbage ReportLevels\n", 34);
  text += std::string("\0\0\0\n", 4);
  text += std::string("Report\0Levels\n", 14);
  text += "ReportLevels\n";
  // Line 2 starts with a NUL: an empty string, skipped like a blank line.
  EXPECT_EQ(CommandLine("ReportStatus", 1) + Status() +
                CommandLine("Report", 3) +
                CommandLine("ReportLevels", 4) + Levels(),
            RunLoop(text));
}

// Comments, blank lines and leading blanks: skipped or cut, and counted.
TEST(CommandFileTest, CommentsAndBlanks) {
  EXPECT_EQ(CommandLine("reportstatus", 4) + Status() +
                CommandLine("REPORTLEVELS", 5) + Levels(),
            RunLoop("# comment\n\n   \t  # indented comment\n"
                    "  \treportstatus# trailing comment\n"
                    "REPORTLEVELS extra words\n"));
}

// 100,000 unknown commands: one debug line each, and the known command
// after them is line 100,001.
TEST(CommandFileTest, HundredThousandUnknownCommands) {
  std::string text, expected;
  for (int i = 1; i <= 100000; i++) {
    std::string word = "Unknown" + std::to_string(i);
    text += word + "\n";
    expected += CommandLine(word, i);
  }
  text += "ReportStatus\n";
  expected += CommandLine("ReportStatus", 100001) + Status();
  EXPECT_EQ(expected, RunLoop(text));
}

// The command word libcups makes of one physical line (no "#" in it, shorter
// than the buffer): leading white space skipped, the word up to the next
// white space (ASCII white space only, as libcups' own test); "" when the
// line is blank.
std::string WordOf(const std::string& line) {
  // libcups' white space: blank, tab, and the line and page controls.
  auto space = [](char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' ||
           c == '\r';
  };
  size_t first = 0;
  while (first < line.size() && space(line[first])) first++;
  size_t last = first;
  while (last < line.size() && !space(line[last])) last++;
  return line.substr(first, last - first);
}

// Random binary garbage (no "#", no NUL, no line longer than the buffer, so
// that every physical line is at most one command line), then known
// commands: one debug line per non-blank garbage line, and the known
// commands handled under their line numbers.
TEST(CommandFileTest, BinaryGarbage) {
  const unsigned seed = 20240611u;
  printf("[ seed     ] BinaryGarbage: %u\n", seed);
  std::mt19937 random(seed);
  for (int round = 0; round < 50; round++) {
    std::string text, line, expected;
    int linenum = 0;
    // Ends the physical line under construction.
    auto end_line = [&](const char* line_end) {
      text += line + line_end;
      linenum++;
      std::string word = WordOf(line);
      if (!word.empty()) expected += CommandLine(word, linenum);
      line.clear();
    };
    for (int i = 0; i < 5000; i++) {
      char byte = static_cast<char>(1 + random() % 255);
      if (byte == '#') continue;
      if (byte == '\n') end_line("\n");
      else if (byte == '\r') end_line(random() % 2 ? "\r" : "\r\n");
      else if (line.size() == 1000) end_line("\n");
      else line += byte;
    }
    end_line("\n");
    text += "ReportStatus\nReportLevels\n";
    expected += CommandLine("ReportStatus", linenum + 1) + Status() +
                CommandLine("ReportLevels", linenum + 2) + Levels();
    std::string err = RunLoop(text);
    EXPECT_EQ(expected, err) << "round " << round;
    EXPECT_EQ("", CheckTrace(err)) << "round " << round;
    if (::testing::Test::HasFailure()) break;
  }
}

// An empty file: nothing at all.
TEST(CommandFileTest, EmptyFile) { EXPECT_EQ("", RunLoop("")); }

// A null file handle ends the loop at once.
TEST(CommandFileTest, NullHandle) {
  StderrCapture capture;
  run_command_loop(nullptr, false);
  EXPECT_EQ("", capture.Text());
}

}  // namespace
