// The built filter carries the hardening that the build promises: a
// position-independent executable (ELF type DYN), full RELRO (a GNU_RELRO
// segment and immediate binding), the stack protector (__stack_chk_fail)
// and, where the build fortifies, the checked libc calls (*_chk).
//
// The filter is found beside this test's build tree (<build>/tests/unit_tests
// -> <build>/commandtoquillaroth) or at $QUILLAROTH_FILTER_BINARY, and read
// with readelf(1).  Which of the protections to expect follows from the
// flags that this test itself was compiled with, since the build gives the
// same flags to every target: sanitizer builds go without _FORTIFY_SOURCE,
// and a build with hardening switched off has nothing to check.

#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// The path of the filter binary of this build.
std::string FilterBinary() {
  const char* path = getenv("QUILLAROTH_FILTER_BINARY");
  if (path != nullptr) return path;
  char self[PATH_MAX];
  ssize_t n = readlink("/proc/self/exe", self, sizeof(self) - 1);
  if (n <= 0) return "";
  std::string dir(self, static_cast<size_t>(n));
  dir = dir.substr(0, dir.rfind('/'));          // <build>/tests
  dir = dir.substr(0, dir.rfind('/'));          // <build>
  return dir + "/commandtoquillaroth";
}

// The whole output of a shell command.
std::string Output(const std::string& command) {
  std::string text;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return text;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof(buffer), pipe)) > 0) text.append(buffer, n);
  pclose(pipe);
  return text;
}

// True when text holds the word.
bool Has(const std::string& text, const std::string& word) {
  return text.find(word) != std::string::npos;
}

class HardeningTest : public ::testing::Test {
 protected:
  // Reads the filter's ELF header, program headers, dynamic section and
  // symbols once per test.
  void SetUp() override {
#if !defined(__SSP_STRONG__)
    GTEST_SKIP() << "built without -fstack-protector-strong "
                    "(QUILLAROTH_HARDEN=OFF): nothing to check";
#endif
    binary_ = FilterBinary();
    ASSERT_EQ(0, access(binary_.c_str(), R_OK)) << binary_;
    std::string readelf = "readelf -W ";
    header_ = Output(readelf + "-h '" + binary_ + "'");
    segments_ = Output(readelf + "-l '" + binary_ + "'");
    dynamic_ = Output(readelf + "-d '" + binary_ + "'");
    symbols_ = Output(readelf + "--dyn-syms '" + binary_ + "'");
    ASSERT_TRUE(Has(header_, "ELF Header:")) << "readelf failed on " << binary_;
  }

  std::string binary_, header_, segments_, dynamic_, symbols_;
};

TEST_F(HardeningTest, PositionIndependentExecutable) {
  EXPECT_TRUE(Has(header_, "Type:                              DYN"))
      << header_;
  EXPECT_TRUE(Has(dynamic_, "PIE")) << dynamic_;
}

TEST_F(HardeningTest, FullRelro) {
  EXPECT_TRUE(Has(segments_, "GNU_RELRO")) << segments_;
  EXPECT_TRUE(Has(dynamic_, "(BIND_NOW)") || Has(dynamic_, "Flags: NOW"))
      << dynamic_;
  EXPECT_TRUE(Has(dynamic_, "(FLAGS_1)") && Has(dynamic_, "NOW")) << dynamic_;
}

TEST_F(HardeningTest, StackProtector) {
  EXPECT_TRUE(Has(symbols_, "__stack_chk_fail")) << symbols_;
}

TEST_F(HardeningTest, FortifiedCalls) {
#if defined(_FORTIFY_SOURCE) && _FORTIFY_SOURCE >= 2
  EXPECT_TRUE(Has(symbols_, "__fprintf_chk")) << symbols_;
  EXPECT_TRUE(Has(symbols_, "__snprintf_chk")) << symbols_;
  EXPECT_TRUE(Has(symbols_, "__sprintf_chk")) << symbols_;
#else
  GTEST_SKIP() << "this build does not fortify (sanitizers or -O0)";
#endif
}

}  // namespace
