// The simulated printer's replies, built from the scenario.

#include "sim/reply_plan.h"

#include <algorithm>
#include <cstring>

#include "sim/option_table.h"
#include "sim/sim_log.h"

namespace {

// Where the job status reply carries its four status bytes.
constexpr size_t kJobStatusOffset = 8;

// "error 06 02 02": a field of the reply as hex bytes, or "error cut off"
// when the reply ends before it.
std::string field_text(const Bytes& reply, const char* name, size_t offset,
                       size_t width) {
  if (reply.size() < offset + width) return std::string(name) + " cut off";
  return std::string(name) + " " + hex_text(reply.data() + offset, width);
}

// The big-endian count in the printer-information field called name.
long count_field(const Bytes& reply, const char* name) {
  const ReplyField& field = find_option(name, kPerQuery)->field;
  return reply[field.offset] << 8 | reply[field.offset + 1];
}

// What a reply carries, for the log: for printer information the power
// state, error code, ink-sheet type and ribbon counts (a field beyond a
// short reply's end is "cut off"), for job status its four status bytes.
std::string reply_contents(const ReplyPlan& plan) {
  const Bytes& b = plan.bytes;
  if (std::strcmp(plan.what, "job status") == 0)
    return field_text(b, "status", kJobStatusOffset, 4);
  std::string contents;
  for (const char* name : {"power", "error", "sheet"}) {
    const ReplyField& field = find_option(name, kPerQuery)->field;
    contents += field_text(b, name, field.offset, field.width) + ", ";
  }
  const ReplyField& last = find_option("remaining", kPerQuery)->field;
  if (b.size() < last.offset + last.width) return contents + "ribbon cut off";
  return contents + "ribbon " + std::to_string(count_field(b, "remaining")) +
         "/" + std::to_string(count_field(b, "total"));
}

// The power state of a printer that is still waking up.
constexpr uint8_t kAsleep = 0x01;

// Lays everything that top sets over base.
void overlay(ReplyShape* base, const ReplyShape& top) {
  for (const auto& field : top.fields) base->fields[field.first] = field.second;
  if (top.raw) base->raw = top.raw;
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
  ReplyShape shape = raw ? ReplyShape() : default_reply_shape();
  overlay(&shape, scenario.every);
  bool asleep = scenario.wake_after < 0 || query <= scenario.wake_after;
  if (asleep) shape.fields[kPowerField] = {kAsleep};
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
  for (const OptionSpec& option : option_table()) {
    auto value = shape.fields.find(option.name);
    if (option.field.width == 0 || value == shape.fields.end()) continue;
    for (size_t i = 0; i < value->second.size(); i++)
      put(&reply, option.field.offset + i, value->second[i], scenario.fill);
  }
  if (shape.size) reply.resize(*shape.size, scenario.fill);

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
  for (size_t i = 0; i < 4; i++)
    plan.bytes[kJobStatusOffset + i] = scenario.job_status[i];
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
