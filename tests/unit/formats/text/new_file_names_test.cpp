#include "formats/text/new_file_names.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "seams/machine_locks.h"

namespace parvex {
namespace {

TEST(NewFileNames, AreAllDifferentAndKnownAgain) {
  std::set<std::string> names;
  for (int i = 0; i < 10'000; ++i) {
    names.insert(MakeNewFileName());
  }
  EXPECT_EQ(names.size(), 10'000u);
  for (const std::string& name : names) {
    EXPECT_TRUE(IsNewFileName(name)) << name;
    EXPECT_EQ(name.size(), std::string("~parvex-0123456789abcdef.tmp").size());
  }
}

TEST(NewFileNames, OfAnEarlierVersionAreKnown) { EXPECT_TRUE(IsNewFileName("~parvex-4711-12.tmp")); }

TEST(NewFileNames, AreNoOthers) {
  for (const std::string name :
       {"", "~parvex-.tmp", "~parvex-0123", "parvex-0123.tmp", "~parvex-0123.tmp.xml", "~parvex-letter.tmp",
        "~parvex-0123.txt", "my ~parvex-0123.tmp", "~PARVEX-0123.tmp", "~parvex-01 3.tmp"}) {
    EXPECT_FALSE(IsNewFileName(name)) << name;
  }
  EXPECT_FALSE(IsNewFileName(kLockFile));
}

}  // namespace
}  // namespace parvex
