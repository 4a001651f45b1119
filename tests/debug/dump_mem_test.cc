// dump_mem: the hex dump of commands and replies in the log.

#include "debug/dump_mem.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/expected_trace.h"
#include "tests/support/stderr_capture.h"
#include "tests/support/stderr_writes.h"

namespace {

// Runs dump_mem and returns all it wrote to stderr.
std::string Dump(const char* label, const void* data, int size) {
  StderrCapture capture;
  dump_mem(label, data, size);
  return capture.Text();
}

// The bytes 0, 1, 2, ... (modulo 256), count of them.
std::vector<unsigned char> Counting(size_t count, unsigned start = 0) {
  std::vector<unsigned char> bytes(count);
  for (size_t i = 0; i < count; ++i)
    bytes[i] = static_cast<unsigned char>(start + i);
  return bytes;
}

// The expected dump of the bytes (the test kit's).
std::string ExpectedDump(const std::string& label,
                         const std::vector<unsigned char>& bytes) {
  return HexDump(label, std::string(bytes.begin(), bytes.end()));
}

TEST(DumpMemTest, WakeUpCommand) {
  EXPECT_EQ(
      "DEBUG: [CMD] size=4\n"
      "DEBUG: [CMD] 0000: 1b 45 57 55\n",
      Dump("[CMD]", "\x1b\x45\x57\x55", 4));
}

TEST(DumpMemTest, PrinterInformationCommand) {
  EXPECT_EQ(
      "DEBUG: [CMD] size=4\n"
      "DEBUG: [CMD] 0000: 1b 56 32 31\n",
      Dump("[CMD]", "\x1bV21", 4));
}

TEST(DumpMemTest, SizeZeroWritesAnEmptyOffsetLine) {
  EXPECT_EQ(
      "DEBUG: L size=0\n"
      "DEBUG: L 0000:\n",
      Dump("L", "", 0));
  EXPECT_EQ(
      "DEBUG: L size=0\n"
      "DEBUG: L 0000:\n",
      Dump("L", nullptr, 0));
}

TEST(DumpMemTest, NegativeSizeWritesTheHeadOnly) {
  EXPECT_EQ("DEBUG: L size=-3\n", Dump("L", "abc", -3));
  EXPECT_EQ("DEBUG: [STS] size=-1\n", Dump("[STS]", nullptr, -1));
  EXPECT_EQ("DEBUG: L size=-2147483648\n", Dump("L", nullptr, -2147483647 - 1));
}

TEST(DumpMemTest, OneByte) {
  EXPECT_EQ(
      "DEBUG: [STS] size=1\n"
      "DEBUG: [STS] 0000: 00\n",
      Dump("[STS]", "", 1));
}

TEST(DumpMemTest, FifteenAndSixteenBytesMakeOneLine) {
  for (size_t count : {15, 16}) {
    const std::vector<unsigned char> bytes = Counting(count);
    EXPECT_EQ(ExpectedDump("L", bytes),
              Dump("L", bytes.data(), static_cast<int>(count)));
  }
}

// The whole trace, written out: the readable example of this file.
TEST(DumpMemTest, SeventeenBytesMakeTwoLinesGoldenTrace) {
  const std::vector<unsigned char> bytes = Counting(17);
  EXPECT_EQ(
      "DEBUG: L size=17\n"
      "DEBUG: L 0000: 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n"
      "DEBUG: L 0010: 10\n",
      Dump("L", bytes.data(), 17));
}

TEST(DumpMemTest, PrinterInformationReplySize) {
  const std::vector<unsigned char> bytes = Counting(192, 0x40);
  const std::string text = Dump("[STS]", bytes.data(), 192);
  EXPECT_EQ(ExpectedDump("[STS]", bytes), text);
  size_t lines = 0;
  for (char c : text)
    if (c == '\n') ++lines;
  EXPECT_EQ(13u, lines);
}

TEST(DumpMemTest, TwoHundredBytesEndOnAShortLine) {
  const std::vector<unsigned char> bytes = Counting(200);
  const std::string text = Dump("[STS]", bytes.data(), 200);
  EXPECT_EQ(ExpectedDump("[STS]", bytes), text);
  const std::string tail =
      "DEBUG: [STS] 00b0: b0 b1 b2 b3 b4 b5 b6 b7 b8 b9 ba bb bc bd be bf\n"
      "DEBUG: [STS] 00c0: c0 c1 c2 c3 c4 c5 c6 c7\n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(tail, text.substr(text.size() - tail.size()));
}

TEST(DumpMemTest, HighBytesAreNotSignExtended) {
  const std::vector<unsigned char> bytes = Counting(128, 0x80);
  EXPECT_EQ(
      "DEBUG: L size=128\n"
      "DEBUG: L 0000: 80 81 82 83 84 85 86 87 88 89 8a 8b 8c 8d 8e 8f\n"
      "DEBUG: L 0010: 90 91 92 93 94 95 96 97 98 99 9a 9b 9c 9d 9e 9f\n"
      "DEBUG: L 0020: a0 a1 a2 a3 a4 a5 a6 a7 a8 a9 aa ab ac ad ae af\n"
      "DEBUG: L 0030: b0 b1 b2 b3 b4 b5 b6 b7 b8 b9 ba bb bc bd be bf\n"
      "DEBUG: L 0040: c0 c1 c2 c3 c4 c5 c6 c7 c8 c9 ca cb cc cd ce cf\n"
      "DEBUG: L 0050: d0 d1 d2 d3 d4 d5 d6 d7 d8 d9 da db dc dd de df\n"
      "DEBUG: L 0060: e0 e1 e2 e3 e4 e5 e6 e7 e8 e9 ea eb ec ed ee ef\n"
      "DEBUG: L 0070: f0 f1 f2 f3 f4 f5 f6 f7 f8 f9 fa fb fc fd fe ff\n",
      Dump("L", bytes.data(), 128));
}

TEST(DumpMemTest, SignedCharBufferPrintsUnsigned) {
  const char reply[3] = {static_cast<char>(0xff), static_cast<char>(0x80),
                         0x7f};
  EXPECT_EQ(
      "DEBUG: [STS] size=3\n"
      "DEBUG: [STS] 0000: ff 80 7f\n",
      Dump("[STS]", reply, 3));
}

TEST(DumpMemTest, SizeBelowTheBufferLengthStopsThere) {
  const std::vector<unsigned char> bytes = Counting(32);
  EXPECT_EQ(
      "DEBUG: L size=2\n"
      "DEBUG: L 0000: 00 01\n",
      Dump("L", bytes.data(), 2));
}

TEST(DumpMemTest, OffsetsBeyondFourDigitsWiden) {
  const std::vector<unsigned char> bytes = Counting(0x10001);
  const std::string text = Dump("L", bytes.data(), 0x10001);
  EXPECT_EQ(ExpectedDump("L", bytes), text);
  const std::string tail =
      "DEBUG: L fff0: f0 f1 f2 f3 f4 f5 f6 f7 f8 f9 fa fb fc fd fe ff\n"
      "DEBUG: L 10000: 00\n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(tail, text.substr(text.size() - tail.size()));
}

TEST(DumpMemTest, EmptyLabel) {
  EXPECT_EQ(
      "DEBUG:  size=1\n"
      "DEBUG:  0000: 2a\n",
      Dump("", "*", 1));
}

TEST(DumpMemTest, TwoDumpsInARow) {
  StderrCapture capture;
  dump_mem("[CMD]", "\x1bV21", 4);
  dump_mem("[STS]", "\x01\x02", 2);
  EXPECT_EQ(
      "DEBUG: [CMD] size=4\n"
      "DEBUG: [CMD] 0000: 1b 56 32 31\n"
      "DEBUG: [STS] size=2\n"
      "DEBUG: [STS] 0000: 01 02\n",
      capture.Text());
}

TEST(DumpMemTest, EachLineIsOneWrite) {
  const std::vector<unsigned char> bytes = Counting(200, 0x7f);
  StderrWrites writes;
  dump_mem("[STS]", bytes.data(), 200);
  dump_mem("[CMD]", "\x1bV21", 4);
  dump_mem("L", bytes.data(), 17);
  dump_mem("L", bytes.data(), 16);
  dump_mem("L", bytes.data(), 1);
  dump_mem("L", bytes.data(), 0);
  dump_mem("L", bytes.data(), -3);
  const std::vector<unsigned char> seventeen(bytes.begin(), bytes.begin() + 17);
  const std::vector<unsigned char> sixteen(bytes.begin(), bytes.begin() + 16);
  const std::vector<unsigned char> one(bytes.begin(), bytes.begin() + 1);
  EXPECT_EQ(SplitLines(ExpectedDump("[STS]", bytes) +
                       "DEBUG: [CMD] size=4\n"
                       "DEBUG: [CMD] 0000: 1b 56 32 31\n" +
                       ExpectedDump("L", seventeen) +
                       ExpectedDump("L", sixteen) + ExpectedDump("L", one) +
                       "DEBUG: L size=0\n"
                       "DEBUG: L 0000:\n"
                       "DEBUG: L size=-3\n"),
            writes.Writes());
}

}  // namespace
