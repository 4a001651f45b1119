#include "status/job_status.h"

#include <cstdio>

JobStatus JobStatus::Unavailable() { return JobStatus(Type::Unavailable); }

JobStatus JobStatus::Parse(const char* reply) {
  JobStatus status(Type::Available);
  for (int i = 0; i < 4; i++)
    status.status[i] = static_cast<uint8_t>(reply[8 + i]);
  return status;
}

JobStatus::JobStatus(Type type) : type(type), status{0, 0, 0, 0} {}

bool JobStatus::isAvailable() const { return type == Type::Available; }

bool JobStatus::isReady() const {
  if (type == Type::Unavailable) return false;
  if (status[0] == 0x10) return false;
  if (status[0] == 0x20) return false;
  if (status[0] == 0x50 && status[1] < 0x30) return false;
  return true;
}

std::string JobStatus::to_string() const {
  switch (type) {
    case Type::Unavailable:
      return "UNAVAILABLE";
    case Type::Available: {
      char text[32];
      snprintf(text, sizeof(text), "0x%02x,0x%02x,0x%02x,0x%02x", status[0],
               status[1], status[2], status[3]);
      return text;
    }
  }
  return "UNKNOWN";
}
