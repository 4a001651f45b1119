// Files and time for the tests: the whole content of a file, a fresh
// private folder, and the monotonic clock.

#ifndef QUILLAROTH_TESTS_SUPPORT_FILES_H_
#define QUILLAROTH_TESTS_SUPPORT_FILES_H_

#include <sys/types.h>

#include <string>

// Seconds on the monotonic clock.
double Now();

// The whole content of a file; "" when it cannot be read.
std::string ReadFile(const std::string& path);

// Everything in an open file from its start to its end.
std::string ReadDescriptor(int fd);

// Writes a whole file with the given mode (also on an existing file);
// false on any error.
bool WriteFile(const std::string& path, const std::string& text,
               mode_t mode = 0644);

// A new temporary file, already unlinked, holding text: a descriptor open
// for reading and writing at offset 0, closed on exec.  The test program
// ends (abort) when none can be made.
int OpenTempFile(const std::string& text = "");

// Copies a file, giving the copy the mode; false on any error.
bool CopyFile(const std::string& from, const std::string& to, mode_t mode);

// A fresh folder "<base>/<prefix>XXXXXX" of mode 0700, base being $TMPDIR
// or /tmp unless given; the test program ends (abort) when none can be
// made.
std::string MakeTempDir(const std::string& prefix,
                        const std::string& base = "");

// Deletes a folder and everything below it; a missing one is fine.
void RemoveTree(const std::string& path);

#endif  // QUILLAROTH_TESTS_SUPPORT_FILES_H_
