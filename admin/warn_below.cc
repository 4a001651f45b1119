#include "admin/warn_below.h"

#include <string>

namespace {

const char kVendorErrorPrefix[] = "com.quillaroth-error";
const char kErrorSuffix[] = "-error";

}  // namespace

bool IsErrorReason(const std::string& keyword) {
  const std::string prefix = kVendorErrorPrefix;
  const std::string suffix = kErrorSuffix;
  if (keyword.size() > prefix.size() &&
      keyword.compare(0, prefix.size(), prefix) == 0 &&
      keyword.find_first_not_of("0123456789", prefix.size()) ==
          std::string::npos) {
    return true;
  }
  return keyword.size() > suffix.size() &&
         keyword.compare(keyword.size() - suffix.size(), suffix.size(),
                         suffix) == 0;
}

std::vector<std::string> WarnLines(const std::vector<QueueStatus>& queues,
                                   int below) {
  std::vector<std::string> lines;
  for (const QueueStatus& queue : queues) {
    if (queue.prints_remaining && *queue.prints_remaining < below) {
      const int left = *queue.prints_remaining;
      lines.push_back(queue.queue + ": " + std::to_string(left) +
                      (left == 1 ? " print" : " prints") + " left (below " +
                      std::to_string(below) + ")");
    }
    for (const Reason& reason : queue.reasons) {
      if (!IsErrorReason(reason.keyword)) continue;
      std::string line = queue.queue + ": " + reason.keyword;
      if (!reason.text.empty()) line += " " + reason.text;
      lines.push_back(line);
    }
  }
  return lines;
}
