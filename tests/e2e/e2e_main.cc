// Entry of the end-to-end tests: GoogleTest with the environment that stops
// the private scheduler at the end.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/e2e/cupsd_test.h"

// Runs every end-to-end test.  lpadmin and cupsdisable live in /usr/sbin,
// which a plain user's PATH may lack.
int main(int argc, char** argv) {
  const char* path = getenv("PATH");
  std::string search = path != nullptr ? path : "";
  setenv("PATH", (search + ":/usr/sbin:/usr/bin:/sbin:/bin").c_str(), 1);
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::AddGlobalTestEnvironment(new CupsdEnvironment);
  return RUN_ALL_TESTS();
}
