// The parsers of option values: each takes the whole text or nothing.

#include "sim/value_parsers.h"

#include <gtest/gtest.h>

#include "tests/sim/sim_kit.h"

namespace {

TEST(ValueParsers, HexExactTakesExactlyTwoDigitsPerByte) {
  Bytes out = {0xaa};
  EXPECT_TRUE(parse_hex_exact("060202", 3, &out));
  EXPECT_EQ(Bytes({0x06, 0x02, 0x02}), out);
  EXPECT_FALSE(parse_hex_exact("06020", 3, &out));
  EXPECT_FALSE(parse_hex_exact("0602020", 3, &out));
  EXPECT_FALSE(parse_hex_exact("06020g", 3, &out));
  EXPECT_EQ(Bytes({0x06, 0x02, 0x02}), out);  // untouched by the failures
}

TEST(ValueParsers, HexBytesAllowBlanksAndColonsBetweenBytes) {
  Bytes out;
  EXPECT_TRUE(parse_hex_bytes("1b 56:32\t31\nFF", &out));
  EXPECT_EQ(Bytes({0x1b, 0x56, 0x32, 0x31, 0xff}), out);
  EXPECT_TRUE(parse_hex_bytes("", &out));
  EXPECT_EQ(Bytes(), out);
  EXPECT_FALSE(parse_hex_bytes("1b5", &out));
  EXPECT_FALSE(parse_hex_bytes("1 b", &out));
}

TEST(ValueParsers, CountIsDecimalWithinItsRange) {
  long out = -5;
  EXPECT_TRUE(parse_count("65535", 0, 65535, &out));
  EXPECT_EQ(65535, out);
  EXPECT_FALSE(parse_count("65536", 0, 65535, &out));
  EXPECT_FALSE(parse_count("-1", -5, 5, &out));
  EXPECT_FALSE(parse_count("+1", 0, 5, &out));
  EXPECT_FALSE(parse_count("1x", 0, 5, &out));
  EXPECT_FALSE(parse_count("", 0, 5, &out));
  EXPECT_EQ(65535, out);
}

TEST(ValueParsers, PiecesAreJoinedWithPlusOrTheOlderComma) {
  std::vector<size_t> out;
  EXPECT_TRUE(parse_pieces("100+92", &out));
  EXPECT_EQ(std::vector<size_t>({100, 92}), out);
  EXPECT_TRUE(parse_pieces("1,4,1", &out));
  EXPECT_EQ(std::vector<size_t>({1, 4, 1}), out);
  EXPECT_FALSE(parse_pieces("100+0", &out));
  EXPECT_FALSE(parse_pieces("100+", &out));
  EXPECT_FALSE(parse_pieces("100,92+1", &out));
}

TEST(ValueParsers, SideChannelStatusByNameOrNumber) {
  int out = -1;
  EXPECT_TRUE(parse_sc_status("timeout", &out));
  EXPECT_EQ(CUPS_SC_STATUS_TIMEOUT, out);
  EXPECT_TRUE(parse_sc_status("CUPS_SC_STATUS_NOT_IMPLEMENTED", &out));
  EXPECT_EQ(CUPS_SC_STATUS_NOT_IMPLEMENTED, out);
  EXPECT_TRUE(parse_sc_status("200", &out));
  EXPECT_EQ(200, out);
  EXPECT_FALSE(parse_sc_status("256", &out));
  EXPECT_FALSE(parse_sc_status("FINE", &out));
  EXPECT_EQ("TIMEOUT", sc_status_name(CUPS_SC_STATUS_TIMEOUT));
  EXPECT_EQ("200", sc_status_name(200));
  EXPECT_EQ("GET_BIDI", sc_command_name(CUPS_SC_CMD_GET_BIDI));
  EXPECT_EQ("77", sc_command_name(77));
}

TEST(ValueParsers, SwitchIsBareOneOrZero) {
  bool out = false;
  EXPECT_TRUE(parse_switch("", &out));
  EXPECT_TRUE(out);
  EXPECT_TRUE(parse_switch("0", &out));
  EXPECT_FALSE(out);
  EXPECT_TRUE(parse_switch("1", &out));
  EXPECT_TRUE(out);
  EXPECT_FALSE(parse_switch("yes", &out));
}

TEST(ValueParsers, NumberedValuesAndNever) {
  long number = 0;
  std::string rest;
  EXPECT_TRUE(parse_numbered("2:error=060202,split=1+2", &number, &rest));
  EXPECT_EQ(2, number);
  EXPECT_EQ("error=060202,split=1+2", rest);
  EXPECT_FALSE(parse_numbered("0:x", &number, &rest));
  EXPECT_FALSE(parse_numbered("x", &number, &rest));
  long count = 0;
  EXPECT_TRUE(parse_count_or_never("never", &count));
  EXPECT_EQ(-1, count);
  EXPECT_TRUE(parse_count_or_never("3", &count));
  EXPECT_EQ(3, count);
  EXPECT_FALSE(parse_count_or_never("soon", &count));
}

TEST(ValueParsers, HostAndPort) {
  std::string host;
  int port = -1;
  EXPECT_TRUE(parse_host_port("127.0.0.1:0", &host, &port));
  EXPECT_EQ("127.0.0.1", host);
  EXPECT_EQ(0, port);
  EXPECT_TRUE(parse_host_port("[::1]:9100", &host, &port));
  EXPECT_EQ("::1", host);
  EXPECT_EQ(9100, port);
  EXPECT_FALSE(parse_host_port("::1:9100", &host, &port));
  EXPECT_FALSE(parse_host_port("localhost", &host, &port));
  EXPECT_FALSE(parse_host_port(":9100", &host, &port));
  EXPECT_FALSE(parse_host_port("localhost:65536", &host, &port));
}

}  // namespace
