#include "admin/ppd_cache.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "tests/support/files.h"

namespace {

class PpdCacheTest : public ::testing::Test {
 protected:
  PpdCacheTest() : dir_(MakeTempDir("quillaroth-cache.")) {
    setenv("CACHE_DIRECTORY", (dir_ + "/cache").c_str(), 1);
  }
  ~PpdCacheTest() override {
    unsetenv("CACHE_DIRECTORY");
    RemoveTree(dir_);
  }

  std::string dir_;
};

TEST_F(PpdCacheTest, GoldenFile) {
  PpdCache cache = PpdCache::Load("/run/cups/cups.sock");
  PpdFacts facts;
  facts.has_ppd = true;
  facts.runs_filter = true;
  facts.reason_texts["com.quillaroth-error0005"] = "Ink ribbon\tused up";
  cache.Put("photo", 1790000000, facts);
  cache.Put("raw", 1790000001, PpdFacts());
  cache.Save();
  EXPECT_EQ(dir_ + "/cache/_run_cups_cups.sock.ppd-facts", cache.path());
  EXPECT_EQ(
      "Q\tphoto\t1790000000\t1\t1\n"
      "R\tcom.quillaroth-error0005\tInk ribbon used up\n"
      "Q\traw\t1790000001\t0\t0\n",
      ReadFile(cache.path()));

  PpdCache again = PpdCache::Load("/run/cups/cups.sock");
  ASSERT_NE(nullptr, again.Find("photo", 1790000000));
  EXPECT_EQ("Ink ribbon used up",
            again.Find("photo", 1790000000)
                ->reason_texts.at("com.quillaroth-error0005"));
  EXPECT_EQ(nullptr, again.Find("photo", 1790000099));
  EXPECT_EQ(nullptr, again.Find("other", 1790000000));
  again.Keep({"raw"});
  again.Save();
  EXPECT_EQ("Q\traw\t1790000001\t0\t0\n", ReadFile(cache.path()));
}

TEST_F(PpdCacheTest, UnwritableFolderCostsNothingButRequests) {
  setenv("CACHE_DIRECTORY", "/proc/no-cache-here", 1);
  PpdCache cache = PpdCache::Load("localhost:631");
  cache.Put("photo", 1, PpdFacts());
  cache.Save();
  EXPECT_EQ(nullptr, PpdCache::Load("localhost:631").Find("photo", 1));
}

}  // namespace
