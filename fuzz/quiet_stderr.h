// Keeps the fuzz targets' scheduler lines off the terminal.
//
// The code under test writes its log through the C stream stderr; writing
// all of it to the terminal would slow the fuzzer down a hundredfold.
// quiet_stderr() points that stream at /dev/null.  libFuzzer and the
// sanitizers write their reports straight to file descriptor 2, which stays
// as it is, so crashes are still reported.

#ifndef QUILLAROTH_FUZZ_QUIET_STDERR_H_
#define QUILLAROTH_FUZZ_QUIET_STDERR_H_

// Sends everything written through stderr to /dev/null, once.
void quiet_stderr();

#endif  // QUILLAROTH_FUZZ_QUIET_STDERR_H_
