#include "admin/atomic_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

namespace {

const char kTempSuffix[] = ".tmp-XXXXXX";
// Readable by the node exporter's own user, whatever our umask.
constexpr mode_t kFileMode = 0644;

// Writes all of text to fd; false with errno set on failure.
bool WriteAll(int fd, const std::string& text) {
  size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    done += static_cast<size_t>(n);
  }
  return true;
}

// Sets *error to "<what> <path>: <strerror(code)>" and returns false.
bool Fail(std::string* error, const char* what, const std::string& path,
          int code) {
  *error = std::string(what) + " " + path + ": " + std::strerror(code);
  return false;
}

}  // namespace

bool WriteFileAtomically(const std::string& path, const std::string& text,
                         std::string* error) {
  std::string temp_name = path + kTempSuffix;
  std::vector<char> temp(temp_name.begin(), temp_name.end());
  temp.push_back('\0');
  const int fd = mkostemp(temp.data(), O_CLOEXEC);
  if (fd < 0) {
    return Fail(error, "cannot create a temporary file beside", path, errno);
  }
  temp_name = temp.data();
  bool written = WriteAll(fd, text) && fsync(fd) == 0 &&
                 fchmod(fd, kFileMode) == 0;
  int code = written ? 0 : errno;
  // close() may report a late write error of a network file system.
  if (close(fd) != 0 && written) {
    written = false;
    code = errno;
  }
  if (!written) {
    unlink(temp_name.c_str());
    return Fail(error, "cannot write a temporary file beside", path, code);
  }
  if (rename(temp_name.c_str(), path.c_str()) != 0) {
    code = errno;
    unlink(temp_name.c_str());
    return Fail(error, "cannot replace", path, code);
  }
  error->clear();
  return true;
}
