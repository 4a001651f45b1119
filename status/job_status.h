// JobStatus: the job status reply (answer to ESC "V10" 00 00).
//
// The reply is at least 20 bytes; only bytes 8 to 11, the four status
// bytes, are read.  The printer is not ready for a job when the first status
// byte is 0x10 or 0x20, or 0x50 ('P') with a second byte below 0x30 ('0').

#ifndef QUILLAROTH_STATUS_JOB_STATUS_H_
#define QUILLAROTH_STATUS_JOB_STATUS_H_

#include <cstdint>
#include <string>

class JobStatus {
 public:
  enum class Type : int32_t { Unavailable = 0, Available = 1 };

  // No reply.
  static JobStatus Unavailable();
  // A record holding reply bytes 8 to 11 (the reply has at least 20 bytes).
  static JobStatus Parse(const char* reply);

  // Sets the type only; the status bytes are zeroed.
  explicit JobStatus(Type type);

  // True exactly when the type is Available.
  bool isAvailable() const;
  // The printer is ready for a job.
  bool isReady() const;
  // "0x%02x,0x%02x,0x%02x,0x%02x", "UNAVAILABLE" or "UNKNOWN".
  std::string to_string() const;

  Type type;
  uint8_t status[4];
};

#endif  // QUILLAROTH_STATUS_JOB_STATUS_H_
