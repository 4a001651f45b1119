// One way to carry out a reply plan, for every transport.

#include "sim/reply_transport.h"

void carry_out_reply(const ReplyPlan& plan, SimLog& log,
                     ReplyTransport& transport) {
  log.Line("%s", describe_reply(plan).c_str());
  if (plan.kind == ReplyPlan::Kind::kNone) return;
  if (plan.kind == ReplyPlan::Kind::kClose) {
    transport.CloseInstead();
    return;
  }
  if (plan.end == ReplyPlan::End::kReset)
    log.Line("%s after %zu of %zu bytes", transport.ResetWords().c_str(),
             plan.SentSize(), plan.bytes.size());
  size_t offset = 0;
  for (size_t piece : plan.pieces) {
    transport.SendPiece(plan.bytes.data() + offset, piece);
    offset += piece;
  }
  if (plan.end == ReplyPlan::End::kReset) transport.ResetAfterPieces();
}
