// JobStatus: parsing of the job status reply and the readiness rule.

#include "status/job_status.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace {

// A 32-bit type tag, then the four status bytes.
static_assert(std::is_same_v<std::underlying_type_t<JobStatus::Type>,
                             int32_t>);
static_assert(static_cast<int32_t>(JobStatus::Type::Unavailable) == 0);
static_assert(static_cast<int32_t>(JobStatus::Type::Available) == 1);
static_assert(std::is_same_v<decltype(JobStatus::type), JobStatus::Type>);
static_assert(std::is_same_v<decltype(JobStatus::status), unsigned char[4]>);
static_assert(std::is_standard_layout_v<JobStatus>);
static_assert(std::is_trivially_copyable_v<JobStatus>);
static_assert(offsetof(JobStatus, type) == 0);
static_assert(offsetof(JobStatus, status) == 4);
static_assert(sizeof(JobStatus) == 8);

// A 20-byte reply, zero but for the four status bytes 8 to 11.
std::vector<char> Reply(unsigned char s0, unsigned char s1, unsigned char s2,
                        unsigned char s3) {
  std::vector<char> reply(20, '\0');
  reply[8] = static_cast<char>(s0);
  reply[9] = static_cast<char>(s1);
  reply[10] = static_cast<char>(s2);
  reply[11] = static_cast<char>(s3);
  return reply;
}

// Parses a reply with the four status bytes.
JobStatus ParseStatus(unsigned char s0, unsigned char s1, unsigned char s2 = 0,
                      unsigned char s3 = 0) {
  const std::vector<char> reply = Reply(s0, s1, s2, s3);
  return JobStatus::Parse(reply.data());
}

// A record of type 2 holding the four status bytes.
JobStatus TypeTwo(unsigned char s0, unsigned char s1) {
  JobStatus status(static_cast<JobStatus::Type>(2));
  status.status[0] = s0;
  status.status[1] = s1;
  status.status[2] = 0;
  status.status[3] = 0;
  return status;
}

TEST(JobStatusTest, UnavailableIsNeitherAvailableNorReady) {
  const JobStatus status = JobStatus::Unavailable();
  EXPECT_EQ(JobStatus::Type::Unavailable, status.type);
  EXPECT_FALSE(status.isAvailable());
  EXPECT_FALSE(status.isReady());
  EXPECT_EQ("UNAVAILABLE", status.to_string());
}

TEST(JobStatusTest, TypeZeroWithReadyBytesIsNotReady) {
  JobStatus status(JobStatus::Type::Unavailable);
  status.status[0] = 0x50;
  status.status[1] = 0x30;
  status.status[2] = 0;
  status.status[3] = 0;
  EXPECT_FALSE(status.isReady());
  EXPECT_EQ("UNAVAILABLE", status.to_string());
}

// The whole trace, written out: the readable example of this file.
// A reply of 20 bytes, zero but for the status bytes 8 to 11 (50 31 00 ff,
// "P1" and two more): available, ready, and logged as its four bytes.
TEST(JobStatusTest, ParseGoldenText) {
  const std::string reply(
      "\x00\x00\x00\x00\x00\x00\x00\x00"
      "\x50\x31\x00\xff"
      "\x00\x00\x00\x00\x00\x00\x00\x00",
      20);
  const JobStatus status = JobStatus::Parse(reply.data());
  EXPECT_EQ(JobStatus::Type::Available, status.type);
  EXPECT_TRUE(status.isAvailable());
  EXPECT_TRUE(status.isReady());
  EXPECT_EQ(0x50, status.status[0]);
  EXPECT_EQ(0x31, status.status[1]);
  EXPECT_EQ(0x00, status.status[2]);
  EXPECT_EQ(0xFF, status.status[3]);
  EXPECT_EQ("0x50,0x31,0x00,0xff", status.to_string());
}

TEST(JobStatusTest, AllZeroReplyIsAvailableAndReady) {
  const std::vector<char> reply(20, '\0');
  const JobStatus status = JobStatus::Parse(reply.data());
  EXPECT_TRUE(status.isAvailable());
  EXPECT_TRUE(status.isReady());
  EXPECT_EQ("0x00,0x00,0x00,0x00", status.to_string());
}

TEST(JobStatusTest, FirstByte10Or20IsNeverReady) {
  for (unsigned char first : {0x10, 0x20}) {
    for (unsigned char other : {0x00, 0x30, 0x50, 0xFF}) {
      EXPECT_FALSE(ParseStatus(first, other, other, other).isReady())
          << int(first) << " " << int(other);
    }
  }
}

TEST(JobStatusTest, FirstBytePNeedsASecondByteOfAtLeast30) {
  EXPECT_FALSE(ParseStatus(0x50, 0x00).isReady());
  EXPECT_FALSE(ParseStatus(0x50, 0x2F).isReady());
  EXPECT_TRUE(ParseStatus(0x50, 0x30).isReady());
  EXPECT_TRUE(ParseStatus(0x50, 0x80).isReady());
  EXPECT_TRUE(ParseStatus(0x50, 0xFF).isReady());
}

TEST(JobStatusTest, OtherFirstBytesAreReady) {
  for (unsigned char first : {0x00, 0x11, 0x1F, 0x21, 0x30, 0x4F, 0x51, 0x80,
                              0x90, 0xA0, 0xFF}) {
    EXPECT_TRUE(ParseStatus(first, 0x00).isReady()) << int(first);
  }
}

TEST(JobStatusTest, ThirdAndFourthBytesPlayNoPart) {
  EXPECT_TRUE(ParseStatus(0x50, 0x30, 0x10, 0x20).isReady());
  EXPECT_FALSE(ParseStatus(0x50, 0x2F, 0xFF, 0xFF).isReady());
  EXPECT_EQ("0x50,0x2f,0xff,0xff", ParseStatus(0x50, 0x2F, 0xFF, 0xFF).to_string());
}

TEST(JobStatusTest, OtherBytesOfTheReplyChangeNothing) {
  std::vector<char> noisy = Reply(0x50, 0x2F, 0x12, 0xAB);
  for (size_t i = 0; i < noisy.size(); ++i)
    if (i < 8 || i > 11) noisy[i] = static_cast<char>(0x10 + i);
  const std::vector<char> quiet = Reply(0x50, 0x2F, 0x12, 0xAB);
  const JobStatus a = JobStatus::Parse(noisy.data());
  const JobStatus b = JobStatus::Parse(quiet.data());
  EXPECT_EQ(a.type, b.type);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(a.status[i], b.status[i]) << i;
  EXPECT_EQ(a.isReady(), b.isReady());
  EXPECT_EQ(a.to_string(), b.to_string());
  EXPECT_EQ("0x50,0x2f,0x12,0xab", a.to_string());
}

TEST(JobStatusTest, PlainConstructorSetsTheType) {
  EXPECT_EQ(JobStatus::Type::Available,
            JobStatus(JobStatus::Type::Available).type);
}

TEST(JobStatusTest, TypeTwoIsJudgedByItsBytes) {
  EXPECT_FALSE(TypeTwo(0x00, 0x00).isAvailable());
  EXPECT_TRUE(TypeTwo(0x00, 0x00).isReady());
  EXPECT_FALSE(TypeTwo(0x10, 0x00).isReady());
  EXPECT_FALSE(TypeTwo(0x50, 0x2F).isReady());
  EXPECT_TRUE(TypeTwo(0x50, 0x30).isReady());
  EXPECT_EQ("UNKNOWN", TypeTwo(0x50, 0x30).to_string());
}

}  // namespace
