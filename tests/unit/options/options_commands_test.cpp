#include "options/options_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protocol/command_document.h"
#include "protocol/reply_envelope.h"
#include "tests/support/fake_platform.h"
#include "tests/support/full_disk.h"
#include "tests/support/raised_by.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

constexpr const char* kPath = "C:\\Korvane\\TQ5-VX\\Bin\\Options.xml";
constexpr const char* kOptions =
    "<Options><!-- kept --><Tool ID=\"SOV02\"><Option><Name>cmbLanguage</Name><Value>English</Value></Option>"
    "<Option><Name>cmbUnitOfMeasure</Name><Value>IP</Value></Option><Option><Name>other</Name><Value>o</Value></Option>"
    "</Tool><Tool ID=\"SOV01\"><Option><Name>a</Name><Value>1</Value></Option><Option><Name>it's</Name><Value>2</Value>"
    "</Option></Tool><Tool ID=\"X\"><Option><Name>a</Name><Value>9</Value></Option></Tool></Options>";

std::string OptionsWith(const std::string& language, const std::string& unit, const std::string& a) {
  std::string text = kOptions;
  text.replace(text.find("English"), 7, language);
  text.replace(text.find("IP"), 2, unit);
  text.replace(text.find(">1<") + 1, 1, a);
  return text + "\r\n";
}

class OptionsCommandsTest : public testing::Test {
 protected:
  FakeMachine machine;
  LegacyLink link{machine.platform};

  std::string Get() { return GetOptions(link, {}).Xml(); }
  bool Set(std::initializer_list<std::pair<std::string_view, std::string_view>> options) { return Set(link, options); }
  bool Set(LegacyLink& through, std::initializer_list<std::pair<std::string_view, std::string_view>> options) {
    const xml::Document command = xml::Document::Parse("<COMMAND><NAME>setOptions</NAME></COMMAND>");
    AddParameters(command, options);
    return !IsFailedReply(SetOptions(through, command));
  }
};

TEST_F(OptionsCommandsTest, GetGivesACommandReadyToBeSentBack) {
  machine.Write(kPath, kOptions);
  EXPECT_EQ(Get(),
            "<COMMAND><NAME>setOptions</NAME><PARAMETER><NAME>cmbLanguage</NAME><VALUE>English</VALUE></PARAMETER>"
            "<PARAMETER><NAME>cmbUnitOfMeasure</NAME><VALUE>IP</VALUE></PARAMETER><PARAMETER><NAME>a</NAME>"
            "<VALUE>1</VALUE></PARAMETER><PARAMETER><NAME>it's</NAME><VALUE>2</VALUE></PARAMETER></COMMAND>\r\n");
}

TEST_F(OptionsCommandsTest, GetWithoutReadableFileHasNoParameters) {
  const std::string bare = "<COMMAND><NAME>setOptions</NAME></COMMAND>\r\n";
  EXPECT_EQ(Get(), bare);
  machine.Write(kPath, "<Options><Tool>");
  EXPECT_EQ(Get(), bare);
}

TEST_F(OptionsCommandsTest, GetWithoutBinPathHasNoParameters) {
  machine.Write(kPath, kOptions);
  machine.SetBinPath("");
  EXPECT_EQ(Get(), "<COMMAND><NAME>setOptions</NAME></COMMAND>\r\n");
}

TEST_F(OptionsCommandsTest, GetLeavesOutALanguageThatIsNotThere) {
  machine.Write(kPath, "<O><Tool ID=\"SOV02\"><Option><Name>cmbUnitOfMeasure</Name><Value/></Option></Tool></O>");
  EXPECT_EQ(
      Get(),
      "<COMMAND><NAME>setOptions</NAME><PARAMETER><NAME>cmbUnitOfMeasure</NAME><VALUE/></PARAMETER></COMMAND>\r\n");
}

TEST_F(OptionsCommandsTest, SetWhatGetGaveLeavesTheValues) {
  machine.Write(kPath, kOptions);
  EXPECT_FALSE(IsFailedReply(SetOptions(link, GetOptions(link, {}))));
  EXPECT_EQ(machine.Read(kPath), std::string(kOptions) + "\r\n");
}

TEST_F(OptionsCommandsTest, SetWritesAllThreeKinds) {
  machine.Write(kPath, kOptions);
  EXPECT_TRUE(Set({{"cmbLanguage", "Deutsch"}, {"cmbUnitOfMeasure", "SI"}, {"a", "7"}}));
  EXPECT_EQ(machine.Read(kPath), OptionsWith("Deutsch", "SI", "7"));
}

TEST_F(OptionsCommandsTest, SetWithoutLanguageLeavesIt) {
  machine.Write(kPath, kOptions);
  EXPECT_TRUE(Set({{"cmbUnitOfMeasure", "SI"}}));
  EXPECT_EQ(machine.Read(kPath), OptionsWith("English", "SI", "1"));
}

TEST_F(OptionsCommandsTest, SetIgnoresOptionsOfOtherToolsAndUnknownOnes) {
  machine.Write(kPath, kOptions);
  EXPECT_TRUE(Set({{"other", "x"}, {"unknown", "y"}}));
  EXPECT_EQ(machine.Read(kPath), OptionsWith("English", "IP", "1"));
}

TEST_F(OptionsCommandsTest, SetSkipsANameWithAnApostropheAndWritesTheOthers) {
  machine.Write(kPath, kOptions);
  EXPECT_TRUE(Set({{"it's", "x"}, {"a", "8"}}));
  EXPECT_EQ(machine.Read(kPath), OptionsWith("English", "IP", "8"));
}

TEST_F(OptionsCommandsTest, SetKeepsDeclarationEncodingAndComments) {
  machine.Write(kPath, "<?xml version=\"1.0\" encoding=\"windows-1252\"?><!-- \xE9 -->" + std::string(kOptions));
  EXPECT_TRUE(Set({{"a", "Größe"}}));
  const std::string written = machine.Read(kPath);
  EXPECT_THAT(written, HasSubstr("<?xml version=\"1.0\" encoding=\"windows-1252\"?>"));
  EXPECT_THAT(written, HasSubstr("<!-- \xE9 -->"));
  EXPECT_THAT(written, HasSubstr("<Value>Gr\xF6\xDF"
                                 "e</Value>"));
}

TEST_F(OptionsCommandsTest, SetFailsAndLeavesTheFolderAsItWasWithoutAReadableFile) {
  EXPECT_FALSE(Set({{"a", "1"}}));
  EXPECT_FALSE(machine.Exists(kPath));
  machine.Write(kPath, "<Options>&</Options>");
  EXPECT_FALSE(Set({{"a", "1"}}));
  EXPECT_EQ(machine.Read(kPath), "<Options>&</Options>");
}

TEST_F(OptionsCommandsTest, SetFailsAsAWholeWhenTheLanguageHasNoOption) {
  const std::string without = "<O><Tool ID=\"SOV01\"><Option><Name>a</Name><Value>1</Value></Option></Tool></O>";
  machine.Write(kPath, without);
  EXPECT_FALSE(Set({{"cmbLanguage", "x"}, {"a", "2"}}));
  EXPECT_EQ(machine.Read(kPath), without);
}

TEST_F(OptionsCommandsTest, SetFailsWhenTheFileIsReadOnly) {
  machine.Write(kPath, kOptions);
  std::filesystem::permissions(machine.folder.Path() / "drive_c/Korvane/TQ5-VX/Bin/Options.xml",
                               std::filesystem::perms::owner_read);
  EXPECT_FALSE(Set({{"a", "2"}}));
  EXPECT_EQ(machine.Read(kPath), kOptions);
}

TEST_F(OptionsCommandsTest, SetOnAFullDiskFailsAndLeavesTheOldFile) {
  machine.Write(kPath, kOptions);
  FullDisk disk(machine.platform, 0);
  LegacyLink full(disk.OfMachine());
  EXPECT_FALSE(Set(full, {{"a", "2"}}));
  EXPECT_EQ(machine.Read(kPath), kOptions);
  EXPECT_EQ(machine.platform.files->ListFiles("C:\\Korvane\\TQ5-VX\\Bin\\*"), std::vector<std::string>{"Options.xml"});
}

TEST_F(OptionsCommandsTest, SetWithoutBinPathFails) {
  machine.Write(kPath, kOptions);
  machine.SetBinPath("");
  EXPECT_FALSE(Set({{"a", "2"}}));
  EXPECT_EQ(machine.Read(kPath), kOptions);
}

TEST_F(OptionsCommandsTest, SetKeepsTheEncodingOfAFileInUtf16) {
  std::string bytes = "\xFF\xFE";
  for (const char c : "<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + std::string(kOptions)) {
    bytes += {c, '\0'};
  }
  machine.Write(kPath, bytes);
  EXPECT_TRUE(Set({{"a", "Größe"}}));
  const std::string written = machine.Read(kPath);
  EXPECT_TRUE(written.starts_with("\xFF\xFE"));
  EXPECT_EQ(xml::Document::Load(written).First("//Tool[@ID='SOV01']/Option/Value").Text(), "Größe");
}

TEST_F(OptionsCommandsTest, SetTakesTheLastOfTwoParametersOfAName) {
  machine.Write(kPath, kOptions);
  EXPECT_TRUE(Set({{"a", "3"}, {"a", "4"}}));
  EXPECT_EQ(machine.Read(kPath), OptionsWith("English", "IP", "4"));
}

TEST_F(OptionsCommandsTest, SetChangesTheFirstOfTwoOptionsOfAName) {
  machine.Write(kPath,
                "<O><Tool ID=\"SOV01\"><Option><Name>a</Name><Value>1</Value></Option><Option><Name>a</Name>"
                "<Value>2</Value></Option></Tool></O>");
  EXPECT_TRUE(Set({{"a", "9"}}));
  EXPECT_THAT(machine.Read(kPath), HasSubstr("<Value>9</Value></Option><Option><Name>a</Name><Value>2</Value>"));
}

TEST_F(OptionsCommandsTest, SetComparesNamesWithTheirLetterCase) {
  machine.Write(kPath, kOptions);
  EXPECT_TRUE(Set({{"A", "9"}, {"CMBLANGUAGE", "x"}}));
  EXPECT_EQ(machine.Read(kPath), OptionsWith("English", "IP", "1"));
}

TEST_F(OptionsCommandsTest, SetMatchesNothingByAnEmptyName) {
  machine.Write(kPath, "<O><Tool ID=\"SOV01\"><Option><Name/><Value>1</Value></Option></Tool></O>");
  EXPECT_TRUE(Set({{"", "2"}}));
  EXPECT_THAT(machine.Read(kPath), HasSubstr("<Value>1</Value>"));
}

TEST_F(OptionsCommandsTest, SetMatchesNoOptionWrittenWithBlanksAroundItsName) {
  const std::string options =
      "<O><Tool ID=\"SOV02\"><Option><Name> cmbUnitOfMeasure</Name><Value>u</Value></Option></Tool><Tool ID=\"SOV01\">"
      "<Option><Name> a </Name><Value>1</Value></Option><Option><Name>a\n</Name><Value>2</Value></Option>"
      "<Option><Name><![CDATA[ a]]></Name><Value>3</Value></Option></Tool></O>\r\n";
  machine.Write(kPath, options);
  EXPECT_TRUE(Set({{"a", "9"}, {" a ", "9"}}));
  EXPECT_EQ(machine.Read(kPath), options);
  EXPECT_FALSE(Set({{"cmbUnitOfMeasure", "9"}})) << "which is an option that has to be there";
}

TEST_F(OptionsCommandsTest, SetPassesOverANameWithBlanksToTheOneWithout) {
  machine.Write(kPath,
                "<O><Tool ID=\"SOV01\"><Option><Name>a </Name><Value>1</Value></Option><Option><Name>a</Name>"
                "<Value>2</Value></Option></Tool></O>");
  EXPECT_TRUE(Set({{"a", "9"}}));
  EXPECT_THAT(machine.Read(kPath), HasSubstr("<Value>1</Value></Option><Option><Name>a</Name><Value>9</Value>"));
}

TEST_F(OptionsCommandsTest, SetTakesANameFromTheTextBesideOtherContentOfTheElement) {
  machine.Write(kPath,
                "<O><Tool ID=\"SOV01\"><Option><Name>a<!-- b -->c</Name><Value>1</Value></Option><Option>"
                "<Name><![CDATA[d]]><x>e</x></Name><Value>2</Value></Option></Tool></O>");
  EXPECT_TRUE(Set({{"ac", "8"}, {"de", "8"}}));
  EXPECT_THAT(machine.Read(kPath), testing::Not(HasSubstr("8")));
  EXPECT_TRUE(Set({{"c", "7"}, {"d", "9"}}));
  EXPECT_THAT(machine.Read(kPath), HasSubstr("<Value>7</Value>"));
  EXPECT_THAT(machine.Read(kPath), HasSubstr("<Value>9</Value>"));
}

TEST_F(OptionsCommandsTest, SetFailsAsAWholeWhenAParameterHasNoValue) {
  machine.Write(kPath, kOptions);
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>setOptions</NAME><PARAMETER><NAME>a</NAME><VALUE>2</VALUE></PARAMETER>"
      "<PARAMETER><NAME>unknown</NAME></PARAMETER></COMMAND>");
  EXPECT_TRUE(IsFailedReply(SetOptions(link, command)));
  EXPECT_EQ(machine.Read(kPath), kOptions);
}

TEST_F(OptionsCommandsTest, GetEndsTheCallWhenAPassedOptionHasNoValue) {
  machine.Write(kPath, "<O><Tool ID=\"SOV01\"><Option><Name>a</Name></Option></Tool></O>");
  EXPECT_EQ(RaisedBy([&] { Get(); }), 91);
}

}  // namespace
}  // namespace parvex::test
