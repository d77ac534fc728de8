#include "formats/text/file_names.h"

#include <gtest/gtest.h>

#include "formats/text/letter_case.h"

namespace parvex {
namespace {

struct NameCase {
  const char* name;
  bool isFileName;
  const char* reason;
};

class FileNames : public testing::TestWithParam<NameCase> {};

TEST_P(FileNames, AreWhatWindowsTakes) {
  EXPECT_EQ(IsFileName(GetParam().name), GetParam().isFileName) << GetParam().name << ": " << GetParam().reason;
}

INSTANTIATE_TEST_SUITE_P(
    Table, FileNames,
    testing::Values(NameCase{"Tag", true, "an ordinary name"}, NameCase{"", false, "empty"},
                    NameCase{".", false, "the folder itself"}, NameCase{"..", false, "the folder above"},
                    NameCase{".hidden", true, "a dot in front is a letter like others"},
                    NameCase{"readme.", false, "the dot at the end is dropped: another name"},
                    NameCase{"readme ", false, "so is a blank"}, NameCase{"a\\b", false, "a separator"},
                    NameCase{"a/b", false, "a separator"}, NameCase{"a:b", false, "a stream of a file"},
                    NameCase{"a*b", false, "a pattern"}, NameCase{"a\x01", false, "a control character"},
                    NameCase{"NUL", false, "a device"}, NameCase{"nul.txt", false, "a device with an extension"},
                    NameCase{"nul .txt", false, "a device with a blank"}, NameCase{"AUX.tar.gz", false, "a device"},
                    NameCase{"com1", false, "a port"}, NameCase{"LPT9.x", false, "a port"},
                    NameCase{"COM\xC2\xB9", false, "a superscript one counts as a one"},
                    NameCase{"COM0", true, "no port has the number 0"}, NameCase{"COM10", true, "nor two digits"},
                    NameCase{"CONIN$", false, "a device"}, NameCase{"console", true, "only begins like a device"},
                    NameCase{"TAGDAT~1.ZIP", true, "the form of a short name is a name"}));

TEST(FoldedNames, AreUpperCaseWithTheLettersOfUnicode) {
  EXPECT_EQ(FoldName("Tag.zip"), "TAG.ZIP");
  EXPECT_EQ(FoldName("\xC3\xA4\xC3\xB6"), "\xC3\x84\xC3\x96");
  EXPECT_EQ(FoldName("\xD0\xB6"), "\xD0\x96") << "a Cyrillic letter";
  EXPECT_EQ(FoldName("\xC3\x9F"), "\xC3\x9F") << "sharp s has no upper case of one unit";
  EXPECT_EQ(FoldName("\xF0\x90\x90\xA8"), "\xF0\x90\x90\xA8") << "a letter of two units stays";
}

TEST(FoldedNames, KnowTheLettersOfOtherAlphabets) {
  EXPECT_EQ(FoldName("Größe š ž œ ÿ λ д"), "GRÖßE Š Ž Œ Ÿ Λ Д");
  EXPECT_EQ(FoldName("\U0001F600a"), "\U0001F600A");
}

TEST(FoldPath, IsOneForAllPathsThatMeanTheSame) {
  for (const char* path :
       {"C:\\Temp\\größe.dat", "c:/temp//GRÖßE.DAT", "C:\\TEMP\\.\\größe.dat. ", "C:\\x\\..\\Temp\\größe.dat\\"}) {
    EXPECT_EQ(FoldPath(path), FoldPath("C:\\Temp\\Größe.dat")) << path;
  }
  EXPECT_NE(FoldPath("C:\\Temp\\a"), FoldPath("C:\\Temp\\b"));
  EXPECT_EQ(FoldPath("..\\.."), "");
}

TEST(IsDevicePath, KnowsDevicesPipesAndStreams) {
  for (const char* path : {"\\\\.\\PhysicalDrive0", "\\\\?\\C:\\a", "//?/C:/a", "\\\\.", "\\??\\C:\\a", "C:\\a:b",
                           "a.dat:stream", "C:a:b", "NUL", "C:\\dir\\com1", "C:\\dir\\aux.txt", "c:con"}) {
    EXPECT_TRUE(IsDevicePath(path)) << path;
  }
  for (const char* path : {"C:\\a", "C:a", "a", "", "\\\\server\\share\\a", "C:\\console", "C:\\nul\\a", "\\.hidden"}) {
    EXPECT_FALSE(IsDevicePath(path)) << path;
  }
}

}  // namespace
}  // namespace parvex
