// What the simulated printer answers to each query, as planned from its
// script.

#include "sim/reply_plan.h"

#include <gtest/gtest.h>

#include "tests/sim/sim_kit.h"

namespace {

class ReplyPlanTest : public ::testing::Test {
 protected:
  // Scripts the whole run with device-URI keys.
  void Script(const std::string& keys) {
    ASSERT_EQ("", ScriptUri(&scenario_, keys));
  }
  // Scripts the Nth query's reply with --reply keys.
  void Reply(long query, const std::string& keys) {
    ASSERT_EQ("", ScriptQuery(&scenario_, query, keys));
  }
  // The plan for the Nth printer-information query.
  ReplyPlan Plan(long query = 1) const {
    return plan_info_reply(scenario_, query);
  }
  // A plan's kind, size, writes and ending: "send 192 in 100+92, whole".
  static std::string Outline(const ReplyPlan& plan) {
    if (plan.kind == ReplyPlan::Kind::kNone) return "none";
    if (plan.kind == ReplyPlan::Kind::kClose) return "close";
    std::string pieces;
    for (size_t piece : plan.pieces)
      pieces += (pieces.empty() ? "" : "+") + std::to_string(piece);
    const char* end = plan.end == ReplyPlan::End::kWhole   ? "whole"
                      : plan.end == ReplyPlan::End::kReset ? "reset"
                                                           : "stall";
    if (pieces.empty()) pieces = "no piece";
    return "send " + std::to_string(plan.bytes.size()) + " in " + pieces +
           ", " + end;
  }

  Scenario scenario_;
};

TEST_F(ReplyPlanTest, UnscriptedPrinterSendsItsDefaultReplyWhole) {
  ReplyPlan plan = Plan();
  EXPECT_EQ("send 192 in 192, whole", Outline(plan));
  EXPECT_EQ(Hex("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 84 10 00 01 5e 00 7b 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"),
            plan.bytes);
  EXPECT_EQ("reply 192 bytes: power 00, error 00 00 00, sheet 84 10, "
            "ribbon 123/350",
            describe_reply(plan));
}

TEST_F(ReplyPlanTest, FieldsGoAtTheirOffsets) {
  Script("memory=ff&power=02&mech=2001&error=060202&sheet=8f10&total=65535&"
         "remaining=0");
  Bytes expected = DefaultInfoReply();
  expected = WithBytes(expected, 4, Hex("ff 02"));
  expected = WithBytes(expected, 128, Hex("20 01"));
  expected = WithBytes(expected, 131, Hex("06 02 02"));
  expected = WithBytes(expected, 145, Hex("8f 10"));
  expected = WithBytes(expected, 148, Hex("ff ff 00 00"));
  EXPECT_EQ(expected, Plan().bytes);
}

TEST_F(ReplyPlanTest, SleepingPrinterReportsPowerStateOne) {
  Script("wake-after=2");
  Bytes asleep = WithBytes(DefaultInfoReply(), 5, Hex("01"));
  EXPECT_EQ(asleep, Plan(1).bytes);
  EXPECT_EQ(asleep, Plan(2).bytes);
  EXPECT_EQ(DefaultInfoReply(), Plan(3).bytes);
}

TEST_F(ReplyPlanTest, PrinterThatNeverWakes) {
  Script("wake=never");
  EXPECT_EQ(WithBytes(DefaultInfoReply(), 5, Hex("01")), Plan(1000).bytes);
}

TEST_F(ReplyPlanTest, OneQueryOverridesTheRunAndTheWakeUp) {
  Script("wake-after=2&error=060202");
  Reply(2, "power=00,error=000000");
  EXPECT_EQ(DefaultInfoReply(), Plan(2).bytes);
  EXPECT_EQ(WithBytes(WithBytes(DefaultInfoReply(), 5, Hex("01")), 131,
                      Hex("06 02 02")),
            Plan(1).bytes);
}

TEST_F(ReplyPlanTest, RawReplyGetsOnlyTheNamedFields) {
  Script("raw=01 02&error=060202&fill=ee");
  Bytes expected(134, 0xee);
  expected = WithBytes(expected, 0, Hex("01 02"));
  expected = WithBytes(expected, 131, Hex("06 02 02"));
  EXPECT_EQ(expected, Plan().bytes);
}

TEST_F(ReplyPlanTest, SizeCutsOrPadsWithTheFillByte) {
  Script("fill=ff&size=194");
  Bytes expected(194, 0xff);
  expected = WithBytes(expected, 4, Hex("00 00"));
  expected = WithBytes(expected, 128, Hex("00 00"));
  expected = WithBytes(expected, 131, Hex("00 00 00"));
  expected = WithBytes(expected, 145, Hex("84 10"));
  expected = WithBytes(expected, 148, Hex("01 5e 00 7b"));
  EXPECT_EQ(expected, Plan().bytes);
  Reply(2, "short=150");
  EXPECT_EQ(Bytes(expected.begin(), expected.begin() + 150), Plan(2).bytes);
}

TEST_F(ReplyPlanTest, SplitSendsWhatThePiecesLeaveAsOneLastPiece) {
  Reply(1, "split=100+50");
  Reply(2, "split=300");
  Reply(3, "split=100+100+5");
  EXPECT_EQ("send 192 in 100+50+42, whole", Outline(Plan(1)));
  EXPECT_EQ("send 192 in 192, whole", Outline(Plan(2)));
  EXPECT_EQ("send 192 in 100+92, whole", Outline(Plan(3)));
  EXPECT_EQ("reply 192 bytes in pieces 100,50,42: power 00, error 00 00 00, "
            "sheet 84 10, ribbon 123/350",
            describe_reply(Plan(1)));
}

TEST_F(ReplyPlanTest, ResetAndStallSendOnlyTheFirstBytes) {
  Reply(1, "split=100,reset=150");
  Reply(2, "stall=0");
  Reply(3, "stall=500");
  EXPECT_EQ("send 192 in 100+50, reset", Outline(Plan(1)));
  EXPECT_EQ("send 192 in no piece, stall", Outline(Plan(2)));
  EXPECT_EQ("send 192 in 192, stall", Outline(Plan(3)));
  EXPECT_EQ(150u, Plan(1).SentSize());
  EXPECT_EQ(DefaultInfoReply(), Plan(1).bytes);
}

TEST_F(ReplyPlanTest, NoReplyAndCloseSendNothing) {
  Reply(2, "none");
  Reply(3, "close");
  EXPECT_EQ("send 192 in 192, whole", Outline(Plan(1)));
  EXPECT_EQ("none", Outline(Plan(2)));
  EXPECT_EQ("close", Outline(Plan(3)));
  EXPECT_EQ("no reply to printer information", describe_reply(Plan(2)));
  Script("fail-at=1");
  EXPECT_EQ("none", Outline(Plan(1)));
}

TEST_F(ReplyPlanTest, JobStatusReplyCarriesItsFourBytes) {
  Script("job-status=01020304");
  ReplyPlan plan = plan_job_status_reply(scenario_, 1);
  EXPECT_EQ("send 20 in 20, whole", Outline(plan));
  EXPECT_EQ(WithBytes(Bytes(kJobStatusReplySize, 0x00), 8,
                      Hex("01 02 03 04")),
            plan.bytes);
  Script("no-reply");
  EXPECT_EQ("no reply to job status",
            describe_reply(plan_job_status_reply(scenario_, 1)));
}

}  // namespace
