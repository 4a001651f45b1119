#include "tests/support/files.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// Removes one entry of the tree walk (files before their folders).
int RemoveEntry(const char* path, const struct stat*, int, struct FTW*) {
  remove(path);
  return 0;
}

}  // namespace

double Now() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

std::string ReadFile(const std::string& path) {
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return "";
  std::string text = ReadDescriptor(fd);
  close(fd);
  return text;
}

std::string ReadDescriptor(int fd) {
  std::string text;
  lseek(fd, 0, SEEK_SET);
  char buffer[65536];
  ssize_t n;
  while ((n = read(fd, buffer, sizeof(buffer))) > 0)
    text.append(buffer, static_cast<size_t>(n));
  return text;
}

bool WriteFile(const std::string& path, const std::string& text, mode_t mode) {
  int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < text.size()) {
    ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  bool ok = done == text.size() && fchmod(fd, mode) == 0;
  return close(fd) == 0 && ok;
}

int OpenTempFile(const std::string& text) {
  std::string dir = MakeTempDir("quillaroth-file-");
  std::string path = dir + "/file";
  int fd = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  RemoveTree(dir);
  if (fd < 0 || write(fd, text.data(), text.size()) !=
                    static_cast<ssize_t>(text.size())) {
    perror(path.c_str());
    abort();
  }
  lseek(fd, 0, SEEK_SET);
  return fd;
}

bool CopyFile(const std::string& from, const std::string& to, mode_t mode) {
  int fd = open(from.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  std::string bytes = ReadDescriptor(fd);
  close(fd);
  return WriteFile(to, bytes, mode);
}

std::string MakeTempDir(const std::string& prefix, const std::string& base) {
  const char* tmpdir = getenv("TMPDIR");
  std::string folder = !base.empty()                           ? base
                       : tmpdir != nullptr && tmpdir[0] == '/' ? tmpdir
                                                               : "/tmp";
  std::string pattern = folder + "/" + prefix + "XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (mkdtemp(buffer.data()) == nullptr) {
    perror(pattern.c_str());
    abort();
  }
  return buffer.data();
}

void RemoveTree(const std::string& path) {
  nftw(path.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
}
