#include "formats/ini/profile_text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <iterator>
#include <string>

#include "formats/ini/profile_index.h"
#include "formats/text/unicode.h"
#include "formats/text/windows_1252.h"
#include "seams/automation_error.h"

namespace parvex::ini {
namespace {

posix::Windows1252 codePage;

// A literal with the NUL bytes in it.
template <std::size_t Size>
std::string Raw(const char (&literal)[Size]) {
  return std::string(literal, Size - 1);
}

// The file's bytes after a write; the same bytes when there was nothing to do.
std::string Written(const std::string& bytes, std::string_view section, std::string_view key, std::string_view value) {
  return ProfileText(bytes, codePage).WithValue(section, key, value).value_or(bytes);
}

std::string Found(const std::string& bytes, std::string_view section, std::string_view key) {
  const ProfileText text(bytes, codePage);
  const ProfileIndex index(text);
  const ProfileIndex::Section* found = index.FindSection(section);
  return found == nullptr ? "no section" : std::string(index.FindValue(*found, key).value_or("no value"));
}

TEST(ProfileWriting, EveryOtherLineStaysByteForByte) {
  const std::string head = "\x1A garbage\n\n =\r[q\r\n[s] ; x\n\n; c\rA  = \"1\" \n  B=";
  const std::string middle = Raw("\n\xE4\0=\r\n\n[t]\nB=");
  EXPECT_EQ(Written(head + "2" + middle + "3", "s", "b", "x"), head + "x" + middle + "3");
  EXPECT_EQ(Written(head + "2" + middle + "3", "t", "b", "x"), head + "2" + middle + "x");
}

TEST(ProfileWriting, ANewKeyGoesBeforeTheBlankLinesOfItsSection) {
  EXPECT_EQ(Written("[s]\r\na=1\r\n\r\n \r\n[t]\r\n", "s", "k", "v"), "[s]\r\na=1\r\nk=v\r\n\r\n \r\n[t]\r\n");
  EXPECT_EQ(Written("[s]\n\n[t]\n", "s", "k", "v"), "[s]\nk=v\r\n\n[t]\n");
  EXPECT_EQ(Written("[s]\r\na=1\r\n; c\r\n\r\n[t]", "s", "k", "v"), "[s]\r\na=1\r\n; c\r\nk=v\r\n\r\n[t]");
  EXPECT_EQ(Written("[s]\r\na=1\r\n\x1A", "s", "k", "v"), "[s]\r\na=1\r\nk=v\r\n\x1A");
}

TEST(ProfileWriting, ALastLineWithoutLineBreakGetsOne) {
  EXPECT_EQ(Written("[s]\r\na=1", "s", "k", "v"), "[s]\r\na=1\r\nk=v\r\n");
  EXPECT_EQ(Written("[s]\r\na=1", "t", "k", "v"), "[s]\r\na=1\r\n[t]\r\nk=v\r\n");
  EXPECT_EQ(Written("[s]", "s", "k", "v"), "[s]\r\nk=v\r\n");
  EXPECT_EQ(Written("[s]\r", "s", "k", "v"), "[s]\rk=v\r\n");
}

TEST(ProfileWriting, TheSectionOfNoNameIsBeforeTheFirstHeader) {
  EXPECT_EQ(Written("[s]\n", "", "k", "v"), "k=v\r\n[s]\n");
  EXPECT_EQ(Written("a=1\n\n[s]\n", "", "k", "v"), "a=1\nk=v\r\n\n[s]\n");
  EXPECT_EQ(Written("\xEF\xBB\xBF[s]\n", "", "k", "v"), "\xEF\xBB\xBFk=v\r\n[s]\n");
}

TEST(ProfileWriting, AKeyWithoutValueGetsOne) { EXPECT_EQ(Written("[s]\nk\n", "s", "K", "v"), "[s]\nk=v\n"); }

TEST(ProfileWriting, OnlyTheFirstOfTwoSectionsIsWrittenTo) {
  EXPECT_EQ(Written("[s]\n[t]\n[s]\nk=2\n", "s", "k", "v"), "[s]\nk=v\r\n[t]\n[s]\nk=2\n");
}

TEST(ProfileWriting, TheSameValueChangesNothingButItsQuotesDo) {
  EXPECT_FALSE(ProfileText("[s]\nk = \"1\" \n", codePage).WithValue("s", "k", "\"1\"").has_value());
  EXPECT_EQ(Written("[s]\nk = \"1\"\n", "s", "k", "1"), "[s]\nk=1\n");
}

TEST(ProfileWriting, HalfOfASurrogatePairElsewhereStaysAsItIs) {
  const std::string before = Raw("\xFF\xFE\x00\xD8=\0\x3D\xD8\x00\xDE\r\0\n\0[\0s\0]\0\n\0a\0=\0");
  EXPECT_EQ(Written(before + Raw("b\0"), "s", "a", "c"), before + Raw("c\0"));
}

TEST(ProfileWriting, AnOddByteAtTheEndOfAUtf16FileIsNoCharacter) {
  EXPECT_EQ(ProfileText(Raw("\xFF\xFE[\0s\0]\0k"), codePage).Text(), "[s]");
  EXPECT_EQ(ProfileText("\xFF\xFE", codePage).Text(), "");
}

TEST(ProfileNames, LetterCaseBeyondAsciiDoesNotCount) {
  EXPECT_EQ(Found("[\xC4]\nStra\xDF\x45\x8A=1\n", "\xE4", "STRA\xDF\x65\x9A"), "1");
  EXPECT_EQ(Found("\xEF\xBB\xBF[Ä]\nÖŠ=1\n", "ä", "öš"), "1");
  EXPECT_EQ(Found("[s]\n\xD7=1\n", "s", "\xF7"), "no value");  // signs, not letters
}

TEST(ProfileNames, OnlyLettersHaveCase) {
  EXPECT_EQ(Found("[s]\n@[`{=1\n", "s", "`[`{"), "no value");
  EXPECT_EQ(Found("[s]\nk[=1\n", "s", "k{"), "no value");
  EXPECT_EQ(Found("[s]\nAZaz=1\n", "s", "azAZ"), "1");
}

// Lengths around the eight and sixteen characters that are compared at once; one wrong character anywhere is noticed.
TEST(ProfileNames, EveryCharacterCounts) {
  for (std::size_t length = 1; length < 70; ++length) {
    const std::string name(length, 'k');
    const std::string file = "[s]\n" + name + "=1\n";
    EXPECT_EQ(Found(file, "s", std::string(length, 'K')), "1");
    EXPECT_EQ(Found(file, "s", name + "k"), "no value");
    for (std::size_t i = 0; i < length; ++i) {
      std::string other = name;
      other[i] = 'j';
      EXPECT_EQ(Found(file, "s", other), "no value") << length << " " << i;
    }
  }
}

TEST(ProfileNames, NamesOfMoreThan4096CharactersAreNotFound) {
  const std::string name(4096, 'k');
  EXPECT_EQ(Found("[s]\n" + name + "=1\n", "s", name), "1");
  EXPECT_EQ(Found("[s]\n" + name + "k=1\nl=2\n", "s", name + "k"), "no value");
  EXPECT_EQ(Found("[s]\n" + name + "k=1\nl=2\n", "s", "l"), "2");
  EXPECT_EQ(Found("[s]\nl=1\n[" + name + "]\nl=2\n[t]\nl=3\n", "t", "l"), "3");
  EXPECT_EQ(Found("[s]\na=1\n[" + name + "]\nl=2\n", "s", "l"), "no value");
}

// The index looks at blocks of 64 bytes: the same answers wherever a line falls among them.
TEST(ProfileIndexing, BlocksDoNotShow) {
  for (std::size_t shift = 0; shift < 140; ++shift) {
    for (const char* lineBreak : {"\r\n", "\n", "\r", "\n\r"}) {
      const std::string filler = shift == 0 ? "" : ";" + std::string(shift - 1, 'x') + lineBreak;
      std::string file = filler;
      for (const char* line : {"[s]", "a = 1 ", "bare", " b=2=3", "[t", "=4", "c"}) {
        file += std::string(line) + lineBreak;
      }
      file += "d=5";
      EXPECT_EQ(Found(file, "s", "a"), "1") << shift;
      EXPECT_EQ(Found(file, "s", "bare"), "no value") << shift;
      EXPECT_EQ(Found(file, "s", "b"), "2=3") << shift;
      EXPECT_EQ(Found(file, "s", "[t"), "no value") << shift;
      EXPECT_EQ(Found(file, "s", ""), "4") << shift;
      EXPECT_EQ(Found(file, "s", "d"), "5") << shift;
    }
  }
}

// The same by a walk over all lines: the value of the first line with this key in the first section of this name.
std::string FoundByWalking(const std::string& bytes, std::string_view section, std::string_view key) {
  const ProfileText file(bytes, codePage);
  const std::string_view text = file.Text();
  bool isIn = section.empty();
  bool wasIn = isIn;
  for (std::size_t pos = 0; pos < text.size();) {
    const ProfileLine line = ProfileLineAt(text, pos);
    const std::string_view content = text.substr(line.begin, line.end - line.begin);
    pos = line.next;
    if (const auto name = SectionName(content)) {
      isIn = !wasIn && file.SameName(*name, section);
      wasIn = wasIn || isIn;
    } else if (isIn && !line.IsBlank() && file.SameName(KeyName(content), key)) {
      return std::string(KeyValue(content).value_or("no value"));
    }
  }
  return wasIn ? "no value" : "no section";
}

TEST(ProfileIndexing, FindsWhatAWalkFinds) {
  const std::string pieces[] = {"[",
                                "]",
                                "=",
                                "a",
                                "A",
                                "b",
                                "[a]",
                                "[b]",
                                ";",
                                " ",
                                "\t",
                                "\n",
                                "\v",
                                "\x1A",
                                "\r",
                                "\n",
                                std::string(1, '\0'),
                                "\r\n",
                                "a=b",
                                "\xE4"};
  std::uint32_t state = 1;
  const auto random = [&](std::size_t below) {
    state = state * 1664525 + 1013904223;
    return (state >> 8) % below;
  };
  for (int round = 0; round < 20'000; ++round) {
    std::string file;
    for (std::size_t count = random(40); count > 0; --count) {
      file += pieces[random(std::size(pieces))];
    }
    for (const char* section : {"", "a", "b", "ab"}) {
      for (const char* key : {"", "a", "B", "[a", "[", "aa", "\xC4"}) {
        ASSERT_EQ(Found(file, section, key), FoundByWalking(file, section, key)) << testing::PrintToString(file);
      }
    }
  }
}

TEST(ProfileIndexing, FindsEveryOneOfManySectionsAndKeys) {
  std::string file;
  for (int s = 0; s < 300; ++s) {
    file += "[Section" + std::to_string(s) + "]\r\n";
    for (int k = 0; k < s; ++k) {
      file += "Key" + std::to_string(k) + "=" + std::to_string(s * 1000 + k) + "\r\n";
    }
  }
  const ProfileText text(file, codePage);
  const ProfileIndex index(text);
  for (int s = 0; s < 300; ++s) {
    const ProfileIndex::Section* section = index.FindSection("SECTION" + std::to_string(s));
    ASSERT_NE(section, nullptr);
    for (int k = 0; k < s; ++k) {
      EXPECT_EQ(index.FindValue(*section, "kEY" + std::to_string(k)), std::to_string(s * 1000 + k));
    }
    EXPECT_EQ(index.FindValue(*section, "Key" + std::to_string(s)), std::nullopt);
  }
}

// Shapes that would make an index look through one part of the file again and again. Each takes milliseconds; one of
// them taking its square would take minutes.
TEST(ProfileIndexing, HostileFilesCostNoMoreThanTheirSize) {
  const std::string monster(4'000'000, ' ');
  std::string repeated;
  for (int i = 0; i < 1'000'000; ++i) {
    repeated += "k=\n";
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Found("[s]\nk=" + monster + "x\n" + repeated, "s", "k"), "x");  // a long value
  EXPECT_EQ(Found("[s]\nk" + monster + "=x\n" + repeated, "s", "k"), "");   // a long way to the "="
  EXPECT_EQ(Found("[s]\n" + std::string(4'000'000, '\r') + repeated, "s", "k"), "");
  std::string headers = "[s]" + monster + ";\n";
  for (int i = 0; i < 500'000; ++i) {
    headers += "[s]\n";
  }
  EXPECT_EQ(Found(headers + "k=1\n", "t", "k"), "no section");
  EXPECT_EQ(Found(std::string(4'000'000, '['), "s", "k"), "no section");
  EXPECT_EQ(Found(std::string(4'000'000, '='), "", ""), std::string(3'999'999, '='));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

// Two bytes for a character, of which the second may look like a bracket: "\x83]" and "\x83[" are one each. A first
// byte takes what follows it with it, whatever it is.
class DoubleByte : public CodePage {
 public:
  std::string ToAnsi(std::string_view text) override {
    std::string bytes;
    for (const char16_t unit : ToUtf16(text)) {
      if (unit >= 0x30A0 && unit < 0x3100) {
        bytes += {'\x83', static_cast<char>(unit - 0x30A0 + 0x40)};
      } else {
        bytes += unit < 0x80 ? static_cast<char>(unit) : '?';
      }
    }
    return bytes;
  }
  std::string FromAnsi(std::string_view bytes) override {
    std::u16string units;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (bytes[i] != '\x83') {
        units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]));
      } else {
        ++i;
        const int second = i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0;
        units += static_cast<char16_t>(second >= 0x40 ? 0x30A0 + second - 0x40 : 0xFFFD);
      }
    }
    return FromUtf16(units);
  }
  bool IsSingleByte() override { return false; }
};

class DoubleByteProfile : public testing::Test {
 protected:
  DoubleByte page;

  std::string Value(const std::string& bytes, std::string_view section, std::string_view key, std::size_t most = 254) {
    const ProfileText text(bytes, page);
    const ProfileIndex index(text);
    const ProfileIndex::Section* found = index.FindSection(text.Piece(section));
    const auto value = found == nullptr ? std::nullopt : index.FindValue(*found, text.Piece(key));
    return value ? page.ToAnsi(text.Read(*value, most)) : "none";
  }
  std::string Set(const std::string& bytes, std::string_view section, std::string_view key, std::string_view value) {
    return ProfileText(bytes, page).WithValue(section, key, value).value_or(bytes);
  }
};

TEST_F(DoubleByteProfile, ASecondByteIsNoBracketAndNoSign) {
  EXPECT_EQ(Value("[a\x83]]\r\nk=1\r\n", "a\x83]", "k"), "1");
  EXPECT_EQ(Value("[s]\r\n\x83[x\x83]=1\r\n", "s", "\x83[x\x83]"), "1");
}

TEST_F(DoubleByteProfile, ACharacterThatDoesNotFitIsLeftOut) {
  EXPECT_EQ(Value("[s]\r\nk=a\x83]b\r\n", "s", "k", 2), "a");
  EXPECT_EQ(Value("[s]\r\nk=a\x83]b\r\n", "s", "k", 3), "a\x83]");
}

TEST_F(DoubleByteProfile, AWriteLeavesEveryOtherByte) {
  const std::string head = "\x83] x\r\n[s]\r\n  \x83[ = 1 \r\n";
  const std::string tail = "odd=\x83\x20\xFF\r\n\r\n[t\x83]]\r\n";
  EXPECT_EQ(Set(head + "k=\x83@\r\n" + tail, "s", "K", "\x83]"), head + "k=\x83]\r\n" + tail);
  EXPECT_EQ(Set(head + tail, "s", "\x83[", "2"), "\x83] x\r\n[s]\r\n  \x83[=2 \r\n" + tail);
  EXPECT_EQ(Set(head + tail, "t\x83]", "n", "\x83["), head + tail + "n=\x83[\r\n");
  EXPECT_EQ(Set(head + tail, "\x83\x83", "n", "1"), head + tail + "[\x83\x83]\r\nn=1\r\n");
}

TEST_F(DoubleByteProfile, HalfOfACharacterBeforeALinesEndTakesItsFirstByte) {
  const std::string bytes = "[s]\r\na=\x83\r\nk=1\r\n";
  EXPECT_EQ(Value(bytes, "s", "k"), "1");
  EXPECT_THROW(Set(bytes, "s", "k", "2"), AutomationError) << "where the line begins is not certain";
  EXPECT_EQ(Value("[s]\r\na=\x83\rk=1\r\n", "s", "k"), "none") << "the CR belongs to the character";
}

}  // namespace
}  // namespace parvex::ini
