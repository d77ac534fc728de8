#include "masking/path_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace parvex::masking {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> NamesIn(const std::string& path, bool isWhole = true) {
  const View view = Characters(path);
  std::vector<std::string> names;
  for (const Part name : NamesInPath(view, isWhole)) {
    names.push_back(Utf8(name));
  }
  return names;
}

TEST(PathNames, AreThoseOfUsersProjectsAndArchives) {
  EXPECT_THAT(NamesIn("C:\\Users\\anna b\\AppData\\x"), ElementsAre("anna b"));
  EXPECT_THAT(NamesIn("c:\\documents and settings\\anna"), ElementsAre("anna"));
  EXPECT_THAT(NamesIn("/home/anna/bin/parvex"), ElementsAre("anna"));
  EXPECT_THAT(NamesIn("C:\\Korvane\\TQ5-VX\\Projects\\Riverside Clinic\\project.mdb"), ElementsAre("Riverside Clinic"));
  EXPECT_THAT(NamesIn("C:\\Korvane\\TQ5-VX\\Projects\\\\Riverside Clinic"), ElementsAre("Riverside Clinic"));
  EXPECT_THAT(NamesIn("C:\\Korvane\\TQ5-VX\\Archives\\Harbour v1.2.E3A"), ElementsAre("Harbour v1.2"));
  EXPECT_THAT(NamesIn("drive_c/Users/anna/x"), ElementsAre("anna"));
  EXPECT_THAT(NamesIn("C:\\Users\\Public\\x"), IsEmpty());
  EXPECT_THAT(NamesIn("C:\\Korvane\\TQ5-VX\\Bin\\\\UIKeys.txt"), IsEmpty());
}

TEST(PathNames, AreComputersAndWhatTheyShare) {
  EXPECT_THAT(NamesIn("\\\\server7\\sales\\x"), ElementsAre("server7", "sales"));
  EXPECT_THAT(NamesIn("unc/server7/sales/x"), ElementsAre("server7", "sales"));
}

TEST(PathNames, InATextAreThoseThatAnotherComponentFollows) {
  EXPECT_THAT(NamesIn("cannot read \"C:\\Users\\al\\x\": no file; C:\\Users\\Bob\\y", false), ElementsAre("al", "Bob"));
  EXPECT_THAT(NamesIn("all Users / guests", false), IsEmpty());
  EXPECT_THAT(NamesIn("in C:\\Users\\al", false), IsEmpty());
}

}  // namespace
}  // namespace parvex::masking
