// StderrRedirect: points file descriptor 2 somewhere else for a while.
//
// The one piece that StderrCapture and StderrWrites share: flush what stdio
// holds, keep a copy of the real stderr, put the given descriptor in its
// place, and later put the copy back, exactly once.

#ifndef QUILLAROTH_TESTS_SUPPORT_STDERR_REDIRECT_H_
#define QUILLAROTH_TESTS_SUPPORT_STDERR_REDIRECT_H_

class StderrRedirect {
 public:
  // Sends fd 2 to fd (which the caller still owns).
  explicit StderrRedirect(int fd);
  // Restores fd 2 if Restore() was not called.
  ~StderrRedirect();

  StderrRedirect(const StderrRedirect&) = delete;
  StderrRedirect& operator=(const StderrRedirect&) = delete;

  // Flushes stderr and gives fd 2 back to what it was; later calls do
  // nothing.
  void Restore();

 private:
  int saved_fd_;
};

#endif  // QUILLAROTH_TESTS_SUPPORT_STDERR_REDIRECT_H_
