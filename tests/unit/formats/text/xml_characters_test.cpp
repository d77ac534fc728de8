#include "formats/text/xml_characters.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex::xml {
namespace {

// Texts are looked at in blocks of several lengths: what is refused has to be found at every place in and around them.
constexpr std::size_t kLongest = 200;

TEST(ForbiddenCharacters, AreFoundAtEveryPlace) {
  for (const char bad : {'\0', '\x01', '\x1F', '\x0B', '\x80', '\xC1', '\xF5', '\xFF'}) {
    for (std::size_t size = 1; size <= kLongest; ++size) {
      std::string text(size, 'a');
      for (std::size_t pos = 0; pos < size; ++pos) {
        text[pos] = bad;
        ASSERT_EQ(FindForbidden(text), pos) << size << " bytes";
        text[pos] = 'a';
      }
    }
  }
}

TEST(ForbiddenCharacters, AreNotFoundInTextThatXmlCarries) {
  for (const std::string_view good : {"\t", "\n", "\r", " ", "\x7F", "\xC2\x80", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    for (std::size_t before = 0; before <= kLongest; ++before) {
      const std::string text = std::string(before, '~') + std::string(good) + std::string(kLongest - before, ' ');
      ASSERT_EQ(FindForbidden(text), std::string::npos) << before << " bytes before";
    }
  }
}

TEST(ForbiddenCharacters, AreCharactersThatTheEndCutsOff) {
  for (const std::string_view cut : {"\xC2", "\xE2\x82", "\xF0\x9F\x98"}) {
    for (std::size_t before = 0; before <= kLongest; ++before) {
      ASSERT_EQ(FindForbidden(std::string(before, 'a') + std::string(cut)), before);
    }
  }
}

TEST(ForbiddenCharacters, AreSurrogatesAndNonCharacters) {
  for (const std::string_view bad :
       {"\xED\xA0\x80", "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xE0\x80\x80", "\xF4\x90\x80\x80"}) {
    EXPECT_EQ(FindForbidden(std::string(70, 'a') + std::string(bad)), 70u);
  }
}

}  // namespace
}  // namespace parvex::xml
