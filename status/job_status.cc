#include "status/job_status.h"

#include <cstdio>

// No reply from the printer.
JobStatus JobStatus::Unavailable() { return JobStatus(Type::Unavailable); }

// Takes the four status bytes 8 to 11 of a reply of at least 20 bytes.
JobStatus JobStatus::Parse(const char* reply) {
  JobStatus status(Type::Available);
  for (int i = 0; i < 4; i++)
    status.status[i] = static_cast<unsigned char>(reply[8 + i]);
  return status;
}

// Sets the type; the status bytes are zero until a reply fills them.
JobStatus::JobStatus(Type type) : type(type), status{0, 0, 0, 0} {}

// True exactly when the record holds a reply.
bool JobStatus::isAvailable() const { return type == Type::Available; }

// The printer is ready for a job unless its status bytes say otherwise.
bool JobStatus::isReady() const {
  if (type == Type::Unavailable) return false;
  if (status[0] == 0x10) return false;
  if (status[0] == 0x20) return false;
  if (status[0] == 0x50 && status[1] < 0x30) return false;
  return true;
}

// Renders the four status bytes for the log.
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
