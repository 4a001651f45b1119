// The simulated printer's replies, built from the scenario.

#include "sim/reply_plan.h"

#include <algorithm>
#include <cstring>

#include "sim/sim_log.h"

namespace {

// What a reply carries, for the log: for printer information the power
// state, error code, ink-sheet type and ribbon counts (a field beyond a
// short reply's end is "cut off"), for job status its four status bytes.
std::string reply_contents(const ReplyPlan& plan) {
  const Bytes& b = plan.bytes;
  auto field = [&b](const char* name, size_t offset, size_t width) {
    if (b.size() < offset + width) return std::string(name) + " cut off";
    return std::string(name) + " " + hex_text(b.data() + offset, width);
  };
  if (std::strcmp(plan.what, "job status") == 0) return field("status", 8, 4);
  std::string contents = field("power", 5, 1) + ", " + field("error", 131, 3) +
                         ", " + field("sheet", 145, 2) + ", ";
  contents += b.size() < 152 ? "ribbon cut off"
                             : "ribbon " + std::to_string(b[150] << 8 | b[151]) +
                                   "/" + std::to_string(b[148] << 8 | b[149]);
  return contents;
}

// The printer's state when the script says nothing: awake, no error,
// mechanism and memory good, a PV-R31A(GX) ink sheet with 123 of 350 prints
// left.
ReplyShape default_shape() {
  ReplyShape shape;
  shape.power = 0x00;
  shape.memory = 0x00;
  shape.mech = std::array<uint8_t, 2>{0x00, 0x00};
  shape.error = std::array<uint8_t, 3>{0x00, 0x00, 0x00};
  shape.sheet = std::array<uint8_t, 2>{0x84, 0x10};
  shape.total = 350;
  shape.remaining = 123;
  return shape;
}

// Lays every field that top sets over base.
void overlay(ReplyShape* base, const ReplyShape& top) {
  if (top.power) base->power = top.power;
  if (top.memory) base->memory = top.memory;
  if (top.mech) base->mech = top.mech;
  if (top.error) base->error = top.error;
  if (top.sheet) base->sheet = top.sheet;
  if (top.total) base->total = top.total;
  if (top.remaining) base->remaining = top.remaining;
  if (top.size) base->size = top.size;
  if (top.split) base->split = top.split;
  if (top.reset) base->reset = top.reset;
  if (top.stall) base->stall = top.stall;
  if (top.none) base->none = true;
  if (top.close) base->close = true;
}

// Writes one byte at offset, growing the reply with fill bytes if needed.
void put(Bytes* reply, size_t offset, uint8_t value, uint8_t fill) {
  if (reply->size() <= offset) reply->resize(offset + 1, fill);
  (*reply)[offset] = value;
}

// Cuts the reply into the scripted pieces; what they leave over is sent as
// one last piece, and pieces beyond the reply's end are dropped.
std::vector<size_t> cut_pieces(size_t length,
                               const std::optional<std::vector<size_t>>& split) {
  std::vector<size_t> pieces;
  size_t sent = 0;
  if (split) {
    for (size_t piece : *split) {
      if (sent >= length) break;
      size_t n = std::min(piece, length - sent);
      pieces.push_back(n);
      sent += n;
    }
  }
  if (sent < length) pieces.push_back(length - sent);
  return pieces;
}

// Keeps only the pieces that carry the first `limit` bytes, the last one
// cut where the limit falls.
std::vector<size_t> clip_pieces(const std::vector<size_t>& pieces,
                                size_t limit) {
  std::vector<size_t> kept;
  size_t sent = 0;
  for (size_t piece : pieces) {
    if (sent >= limit) break;
    kept.push_back(std::min(piece, limit - sent));
    sent += kept.back();
  }
  return kept;
}

}  // namespace

// The number of bytes that the pieces carry.
size_t ReplyPlan::SentSize() const {
  size_t size = 0;
  for (size_t piece : pieces) size += piece;
  return size;
}

// The reply to the Nth printer-information query.
ReplyPlan plan_info_reply(const Scenario& scenario, long query) {
  ReplyPlan plan;
  plan.what = "printer information";
  auto own = scenario.per_query.find(query);

  // A raw reply stands on its own: only fields that the script names are
  // laid over it.  Otherwise the defaults fill every field.
  const std::optional<Bytes>& raw =
      own != scenario.per_query.end() && own->second.raw ? own->second.raw
                                                          : scenario.every.raw;
  ReplyShape shape = raw ? ReplyShape() : default_shape();
  overlay(&shape, scenario.every);
  bool asleep = scenario.wake_after < 0 || query <= scenario.wake_after;
  if (asleep) shape.power = 0x01;
  if (own != scenario.per_query.end()) overlay(&shape, own->second);

  if (shape.close) {
    plan.kind = ReplyPlan::Kind::kClose;
    return plan;
  }
  if (shape.none) {
    plan.kind = ReplyPlan::Kind::kNone;
    return plan;
  }

  Bytes reply = raw ? *raw : Bytes(kInfoReplySize, scenario.fill);
  uint8_t fill = scenario.fill;
  if (shape.memory) put(&reply, 4, *shape.memory, fill);
  if (shape.power) put(&reply, 5, *shape.power, fill);
  if (shape.mech) {
    put(&reply, 128, (*shape.mech)[0], fill);
    put(&reply, 129, (*shape.mech)[1], fill);
  }
  if (shape.error) {
    put(&reply, 131, (*shape.error)[0], fill);
    put(&reply, 132, (*shape.error)[1], fill);
    put(&reply, 133, (*shape.error)[2], fill);
  }
  if (shape.sheet) {
    put(&reply, 145, (*shape.sheet)[0], fill);
    put(&reply, 146, (*shape.sheet)[1], fill);
  }
  if (shape.total) {
    put(&reply, 148, static_cast<uint8_t>(*shape.total >> 8), fill);
    put(&reply, 149, static_cast<uint8_t>(*shape.total & 0xff), fill);
  }
  if (shape.remaining) {
    put(&reply, 150, static_cast<uint8_t>(*shape.remaining >> 8), fill);
    put(&reply, 151, static_cast<uint8_t>(*shape.remaining & 0xff), fill);
  }
  if (shape.size) reply.resize(*shape.size, fill);

  plan.bytes = reply;
  plan.pieces = cut_pieces(reply.size(), shape.split);
  if (shape.reset) {
    plan.end = ReplyPlan::End::kReset;
    plan.pieces = clip_pieces(plan.pieces, *shape.reset);
  } else if (shape.stall) {
    plan.end = ReplyPlan::End::kStall;
    plan.pieces = clip_pieces(plan.pieces, *shape.stall);
  }
  return plan;
}

// The reply to the Nth job-status query: 20 bytes, status at 8-11.
ReplyPlan plan_job_status_reply(const Scenario& scenario, long /*query*/) {
  ReplyPlan plan;
  plan.what = "job status";
  if (scenario.every.none) {
    plan.kind = ReplyPlan::Kind::kNone;
    return plan;
  }
  plan.bytes = Bytes(kJobStatusReplySize, scenario.fill);
  for (size_t i = 0; i < 4; i++) plan.bytes[8 + i] = scenario.job_status[i];
  plan.pieces = cut_pieces(plan.bytes.size(), std::nullopt);
  return plan;
}

// "reply 192 bytes: power 00, error 00 00 00, sheet 84 10, ribbon 123/350",
// "reply 192 bytes in pieces 100,92: ..." or "no reply to printer
// information".
std::string describe_reply(const ReplyPlan& plan) {
  if (plan.kind != ReplyPlan::Kind::kSend)
    return std::string("no reply to ") + plan.what;
  std::string text = "reply " + std::to_string(plan.bytes.size()) + " bytes";
  if (plan.pieces.size() > 1) {
    text += " in pieces ";
    for (size_t i = 0; i < plan.pieces.size(); i++)
      text += (i == 0 ? "" : ",") + std::to_string(plan.pieces[i]);
  }
  return text + ": " + reply_contents(plan);
}
