#include "seams/private_profile.h"

#include <gtest/gtest.h>

#include <ostream>

#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

constexpr std::size_t kBuffer = 255;

class PrivateProfileContract : public testing::Test {
 protected:
  ContractMachine machine;
  const std::string file = machine.Path("test.ini");

  void Write(std::string_view bytes) { machine.files.Replace(file, bytes); }
  std::string Bytes() { return machine.files.ReadAll(file); }
  std::unique_ptr<ProfileSection> Section(std::string_view name) { return machine.privateProfile.Section(name, file); }
  std::string Read(std::string_view section, std::string_view key, std::string_view fallback = "-",
                   std::size_t size = kBuffer) {
    return Section(section)->ReadString(key, fallback, size);
  }
  std::int32_t ReadInteger(std::string_view key) { return Section("s")->ReadInteger(key, 77); }
  bool Set(std::string_view section, std::string_view key, std::string_view value) {
    return Section(section)->WriteString(key, value);
  }
};

struct Row {
  const char* text;   // the file's bytes
  const char* key;    // looked up in section "s"
  const char* value;  // "-": not found
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << testing::PrintToString(row.text) << " " << row.key;
}

// So that a text may hold NUL bytes, "~" stands for one.
std::string WithNuls(std::string text) {
  for (char& c : text) {
    c = c == '~' ? '\0' : c;
  }
  return text;
}

class PrivateProfileRules : public PrivateProfileContract, public testing::WithParamInterface<Row> {};

TEST_P(PrivateProfileRules, Hold) {
  Write(WithNuls(GetParam().text));
  EXPECT_EQ(Read("s", GetParam().key), GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Names, PrivateProfileRules,
    testing::Values(Row{"[s]\r\nk=v\r\n", "k", "v"}, Row{"[S]\r\nKey=v\r\n", "kEY", "v"},  // letter case
                    Row{"  [ s ]  \r\n \t k \t = \t v \t \r\n", "k", "v"},                 // outer blanks
                    Row{"[s]\r\nk=v\r\n", "  k ", "v"},                    // blanks around the name that is asked for
                    Row{"[s]\r\na b=v\r\n", "a b", "v"},                   // inner blanks count
                    Row{"[s]\r\n\"k\"=v\r\n", "k", "-"},                   // quotes belong to a name
                    Row{"[s]\r\n=v\r\n", "", "v"},                         // an empty key
                    Row{"[s]\r\nk=1\r\nK=2\r\n", "k", "1"},                // the first of two keys
                    Row{"[s]\r\na=1\r\n[t]\r\n[S]\r\nk=2\r\n", "k", "-"},  // the first of two sections, and only it
                    Row{"[s]\r\nk\r\nk=2\r\n", "k", "-"},     // a line without "=" is the first, and has no value
                    Row{"k=1\r\n[s]\r\n", "k", "-"},          // before the first header
                    Row{"[s]\r\n[]\r\nk=1\r\n", "k", "-"},    // a header of no name ends a section
                    Row{"[s]\r\n;k=1\r\nk=2\r\n", "k", "2"},  // a comment
                    Row{"[s\r\nk=1\r\n", "k", "-"},           // no "]": no header
                    Row{"[t]\r\n[s\r\nk=1\r\n[s]\r\nk=2\r\n", "k", "2"},  //
                    Row{"[s] x\r\nk=1\r\n", "k", "1"},                    // text behind the header
                    Row{"[s] ; ]\r\nk=1\r\n", "k", "-"},                  // the last "]" ends the name
                    Row{"[s]k=1\r\nk=2\r\n", "k", "2"},                   // nothing but a header on its line
                    Row{"", "k", "-"}, Row{"[", "k", "-"}, Row{"[s]", "k", "-"}));

INSTANTIATE_TEST_SUITE_P(Values, PrivateProfileRules,
                         testing::Values(Row{"[s]\nk=a;b ; c\n", "k", "a;b ; c"},  // no comments in values
                                         Row{"[s]\nk==1=2\n", "k", "=1=2"},        //
                                         Row{"[s]\nk=\n", "k", ""},                // empty is a value
                                         Row{"[s]\nk=\"a\"\n", "k", "a"},          // a pair of quotes
                                         Row{"[s]\nk='a'\n", "k", "a"},            //
                                         Row{"[s]\nk=\" a \" \n", "k", " a "},     // blanks inside stay
                                         Row{"[s]\nk=\"\"\n", "k", ""},            //
                                         Row{"[s]\nk=\"'a'\"\n", "k", "'a'"},      // one pair only
                                         Row{"[s]\nk=\"a\"b\"\n", "k", "a\"b"},    //
                                         Row{"[s]\nk=\"a'\n", "k", "\"a'"},        // no pair
                                         Row{"[s]\nk=\"a\n", "k", "\"a"},          //
                                         Row{"[s]\nk=\"\n", "k", "\""},            // one character is no pair
                                         Row{"[s]\nk=\xE4\x80\n", "k", "ä€"}));

INSTANTIATE_TEST_SUITE_P(Lines, PrivateProfileRules,
                         testing::Values(Row{"[s]\nk=1", "k", "1"},                    // no line break at the end
                                         Row{"[s]\rk=1\rb=2\r", "k", "1"},             // lone CR
                                         Row{"[s]\n\rk=1\n\r", "k", "1"},              //
                                         Row{"\r\n\n\r[s]\r\r\n\n\nk=1\n", "k", "1"},  //
                                         Row{"[s]\nk=1\x1A", "k", "1"},                // ^Z ends a file of old: a blank
                                         Row{"[s]\n\x1Ak=1\x1A\x32\n", "k", "1\x1A\x32"},
                                         Row{"[s]\nk=1~2\n", "k", "1"},  // NUL ends a text
                                         Row{"[s]\nk~x=1\n", "k", "1"},  //
                                         Row{"[s~x]\nk=1\n", "k", "1"},  //
                                         Row{"[s]\nk ~=1\n", "k", "-"},  // what stands before the NUL is not trimmed
                                         Row{"[s]\nk=\v1\f\n", "k", "1"},
                                         Row{"\xEF\xBB\xBF[s]\nk=\xC3\xA4\n", "k", "ä"}));  // UTF-8

TEST_F(PrivateProfileContract, MissingFilesSectionsAndKeysGiveTheFallback) {
  EXPECT_EQ(Read("s", "k", "CANCEL"), "CANCEL");
  EXPECT_EQ(machine.privateProfile.Section("s", machine.Path("none\\x.ini"))->ReadString("k", "d", kBuffer), "d");
  Write("[s]\r\nk=1\r\n");
  EXPECT_EQ(Read("t", "k", "CANCEL"), "CANCEL");
  EXPECT_EQ(Read("s", "l", "CANCEL"), "CANCEL");
  EXPECT_EQ(Read("s", "l", ""), "");
}

TEST_F(PrivateProfileContract, AFallbackLosesItsTrailingBlanks) {
  EXPECT_EQ(Read("s", "k", "  ab  "), "  ab");
  EXPECT_EQ(Read("s", "k", "ä "), "ä");
}

TEST_F(PrivateProfileContract, LinesBeforeTheFirstHeaderAreTheSectionOfNoName) {
  Write("k=1\r\n[]\r\nk=2\r\nl=3\r\n");
  EXPECT_EQ(Read("", "k"), "1");
  EXPECT_EQ(Read(" ", "k"), "1");
  EXPECT_EQ(Read("", "l"), "-");
}

TEST_F(PrivateProfileContract, ABufferHoldsOneByteLessThanItsSize) {
  Write("[s]\r\nlong=" + std::string(300, 'x') + "\r\numlauts=" + std::string(300, '\xE4') + "\r\n");
  EXPECT_EQ(Read("s", "long", "", kBuffer), std::string(254, 'x'));
  EXPECT_EQ(Read("s", "umlauts", "", 4), "äää");
  EXPECT_EQ(Read("s", "none", "abcdef", 4), "abc");
  EXPECT_EQ(Read("s", "long", "", 1), "");
  EXPECT_EQ(Read("s", "long", "", 0), "");
  EXPECT_EQ(Read("s", "long", "", 1000), std::string(300, 'x'));
}

TEST_F(PrivateProfileContract, KeysOfAnyOrdinaryLengthAreFound) {
  const std::string key(300, 'k');
  Write("[s]\r\n" + key + "=1\r\n" + key + "k=2\r\n");
  EXPECT_EQ(Read("s", key), "1");
  EXPECT_EQ(Read("s", key + "K"), "2");
}

TEST_F(PrivateProfileContract, ReadsUtf16Files) {
  const std::string_view little("\xFF\xFE[\0s\0]\0\r\0\n\0k\0=\0\xE4\0\xAC\x20", 20);
  const std::string_view big("\xFE\xFF\0[\0s\0]\0\r\0\n\0k\0=\0\xE4\x20\xAC", 20);
  Write(little);
  EXPECT_EQ(Read("s", "k"), "ä€");
  Write(big);
  EXPECT_EQ(Read("s", "k"), "ä€");
}

TEST_F(PrivateProfileContract, Utf16WithoutAByteOrderMarkIsReadAsAnsi) {
  Write(std::string_view("[\0s\0]\0\r\0\n\0k\0=\0v\0", 16));
  EXPECT_EQ(Read("s", "k"), "-");
}

TEST_F(PrivateProfileContract, IntegersAreReadAsThePlatformReadsThem) {
  const struct {
    const char* text;
    std::int32_t value;
  } rows[] = {{"1", 1},
              {"-1", -1},
              {"+5", 5},
              {"\" 6\"", 6},
              {"12abc", 12},
              {"1.5", 1},
              {"017", 17},
              {"5 6", 5},
              {"abc", 0},
              {"- 5", 0},
              {"--5", 0},
              {"+-5", 0},
              {"0x1F", 31},
              {"0X1F", 0},
              {"-0x10", -16},
              {"0o17", 15},
              {"0b11", 3},
              {"0B1", 0},
              {"0x", 0},
              {"0xg", 0},
              {"0x-5", 0},
              {"4294967295", -1},
              {"4294967296", 0},
              {"-2147483649", 2147483647},
              {"99999999999", 1215752191},
              {"0xABCDEFabcdef", -273953297}};
  for (const auto& row : rows) {
    Write("[s]\r\nk=" + std::string(row.text) + "\r\n");
    EXPECT_EQ(ReadInteger("k"), row.value) << row.text;
  }
}

TEST_F(PrivateProfileContract, IntegersWithoutTextGiveTheFallback) {
  Write("[s]\r\nempty=\r\nquoted=''\r\nbare\r\n");
  for (const char* key : {"empty", "quoted", "bare", "none"}) {
    EXPECT_EQ(ReadInteger(key), 77) << key;
  }
}

TEST_F(PrivateProfileContract, WritingMakesFileAndSection) {
  EXPECT_TRUE(Set("Header", "Action", "ok"));
  EXPECT_TRUE(Set("Partnumber1", "filename", "C:\\Temp\\QPblob.tmp"));
  EXPECT_EQ(Bytes(), "[Header]\r\nAction=ok\r\n[Partnumber1]\r\nfilename=C:\\Temp\\QPblob.tmp\r\n");
}

TEST_F(PrivateProfileContract, WritingReplacesTheFirstValueOfTheName) {
  Write("[s]\r\nKey=1\r\nb=2\r\n[t]\r\nkey=3\r\n");
  EXPECT_TRUE(Set("S", "kEY", "9"));
  EXPECT_EQ(Bytes(), "[s]\r\nKey=9\r\nb=2\r\n[t]\r\nkey=3\r\n");
}

TEST_F(PrivateProfileContract, ANewKeyGoesToTheEndOfItsSection) {
  Write("[s]\r\na=1\r\n[t]\r\nb=2\r\n");
  EXPECT_TRUE(Set("s", "k", "v"));
  EXPECT_EQ(Bytes(), "[s]\r\na=1\r\nk=v\r\n[t]\r\nb=2\r\n");
}

TEST_F(PrivateProfileContract, LeadingBlanksOfAWrittenValueGo) {
  EXPECT_TRUE(Set("s", " k", " \t v"));
  EXPECT_EQ(Bytes(), "[s]\r\nk=v\r\n");
}

TEST_F(PrivateProfileContract, AWrittenValueIsCutWhereItIsRead) {
  EXPECT_TRUE(Set("s", "k", std::string(300, 'y')));
  EXPECT_EQ(Read("s", "k"), std::string(254, 'y'));
}

TEST_F(PrivateProfileContract, NewFilesAreAnsi) {
  EXPECT_TRUE(Set("s", "ö", "ä€"));
  EXPECT_EQ(Bytes(), "[s]\r\n\xF6=\xE4\x80\r\n");
  EXPECT_EQ(Read("s", "ö"), "ä€");
}

TEST_F(PrivateProfileContract, AUtf16FileStaysUtf16) {
  Write(std::string_view("\xFF\xFE[\0s\0]\0\r\0\n\0a\0=\0\x00\x4E\r\0\n\0", 22));
  EXPECT_TRUE(Set("s", "b", "ä"));
  EXPECT_EQ(Bytes(), std::string_view("\xFF\xFE[\0s\0]\0\r\0\n\0a\0=\0\x00\x4E\r\0\n\0b\0=\0\xE4\0\r\0\n\0", 32));
}

TEST_F(PrivateProfileContract, AUtf8FileStaysUtf8) {
  Write("\xEF\xBB\xBF[s]\r\na=\xC3\xA4\r\n");
  EXPECT_TRUE(Set("s", "b", "ö"));
  EXPECT_EQ(Bytes(), "\xEF\xBB\xBF[s]\r\na=\xC3\xA4\r\nb=\xC3\xB6\r\n");
}

TEST_F(PrivateProfileContract, WritingIsRefusedWithoutTheFolder) {
  EXPECT_FALSE(machine.privateProfile.Section("s", machine.Path("none\\x.ini"))->WriteString("k", "v"));
}

TEST_F(PrivateProfileContract, WritingAReadOnlyFileIsRefusedAndLeavesItAsItIs) {
  if (RunsUnderWine()) GTEST_SKIP() << "Wine leaves the refusal to the host, which lets root write";
  Write("[s]\r\nk=1\r\n");
  machine.SetReadOnly(file, true);
  EXPECT_FALSE(Set("s", "k", "2"));
  EXPECT_EQ(Bytes(), "[s]\r\nk=1\r\n");
  machine.SetReadOnly(file, false);
}

TEST_F(PrivateProfileContract, ASectionSeesItsOwnWrite) {
  const auto section = Section("s");
  EXPECT_EQ(section->ReadString("k", "-", kBuffer), "-");
  EXPECT_TRUE(section->WriteString("k", "1"));
  EXPECT_EQ(section->ReadString("k", "-", kBuffer), "1");
  EXPECT_TRUE(section->WriteString("k", "2"));
  EXPECT_EQ(section->ReadInteger("k", 77), 2);
}

TEST_F(PrivateProfileContract, ALaterSectionSeesWhatWasWrittenMeanwhile) {
  Write("[s]\r\nk=1\r\n");
  EXPECT_EQ(Read("s", "k"), "1");
  Write("[s]\r\nk=22\r\n");
  EXPECT_EQ(Read("s", "k"), "22");
  machine.files.Remove(file);
  EXPECT_EQ(Read("s", "k"), "-");
}

}  // namespace
}  // namespace parvex::test
