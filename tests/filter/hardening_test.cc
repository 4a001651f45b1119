// The built filter carries the hardening that the build promises: a
// position-independent executable (ELF type DYN), full RELRO (a GNU_RELRO
// segment and immediate binding), the stack protector (__stack_chk_fail)
// and, where the build fortifies, the checked libc calls (*_chk).
//
// The filter is this build's (HARDENED_FILTER_PATH), read with readelf(1).
// Which of the protections to expect follows from the flags that this test
// itself was compiled with, since the build gives the same flags to every
// target: sanitizer builds go without _FORTIFY_SOURCE, and a build with
// hardening switched off has nothing to check.

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "tests/support/subprocess.h"

namespace {

// What readelf -W prints with the option for the filter.
std::string Readelf(const std::string& option) {
  return RunProgram({"readelf", "-W", option, HARDENED_FILTER_PATH}).out;
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
    ASSERT_EQ(0, access(HARDENED_FILTER_PATH, R_OK)) << HARDENED_FILTER_PATH;
    header_ = Readelf("-h");
    segments_ = Readelf("-l");
    dynamic_ = Readelf("-d");
    symbols_ = Readelf("--dyn-syms");
    ASSERT_TRUE(Has(header_, "ELF Header:"))
        << "readelf failed on " << HARDENED_FILTER_PATH;
  }

  std::string header_, segments_, dynamic_, symbols_;
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
