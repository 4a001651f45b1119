// The simulated printer's replies, built from the scenario.

#include "sim/printer.h"

#include <algorithm>

namespace {

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

}  // namespace

// The reply to the Nth printer-information query.
ReplyPlan plan_info_reply(const Scenario& scenario, long query) {
  ReplyPlan plan;
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
    plan.kind = ReplyPlan::Kind::Close;
    return plan;
  }
  if (shape.none) {
    plan.kind = ReplyPlan::Kind::None;
    return plan;
  }

  Bytes reply = raw ? *raw : Bytes(INFO_REPLY_SIZE, scenario.fill);
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
  return plan;
}

// The reply to the Nth job-status query: 20 bytes, status at 8-11.
ReplyPlan plan_job_status_reply(const Scenario& scenario, long /*query*/) {
  ReplyPlan plan;
  if (scenario.every.none) {
    plan.kind = ReplyPlan::Kind::None;
    return plan;
  }
  plan.bytes = Bytes(JOB_STATUS_REPLY_SIZE, scenario.fill);
  for (size_t i = 0; i < 4; i++) plan.bytes[8 + i] = scenario.job_status[i];
  plan.pieces = cut_pieces(plan.bytes.size(), std::nullopt);
  return plan;
}
