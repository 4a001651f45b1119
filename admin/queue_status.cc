#include "admin/queue_status.h"

const char* StateName(QueueStatus::State state) {
  switch (state) {
    case QueueStatus::State::Idle:
      return "idle";
    case QueueStatus::State::Processing:
      return "processing";
    case QueueStatus::State::Stopped:
      return "stopped";
  }
  return "idle";
}
