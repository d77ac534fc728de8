#include "hybris/leading_number.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

struct Reading {
  const char* text;
  double number;
  const char* reason;
};

TEST(LeadingNumber, ReadsWhatTheTextBeginsWith) {
  const Reading readings[] = {
      {"", 0, "an empty text holds no number"},
      {"   ", 0, "nor do blanks"},
      {"abc", 0, "nor does a word"},
      {"x12", 0, "a number must lead"},
      {"12", 12, "a whole number"},
      {"12abc", 12, "what follows does not matter"},
      {"  7", 7, "blanks before"},
      {"1 2 3", 123, "blanks inside"},
      {"1\t2\n3", 123, "tabs and line feeds inside"},
      {"1\r2", 1, "a carriage return ends the number"},
      {"1\xC2\xA0"
       "2",
       1, "so does a no-break space"},
      {"-4", -4, "a sign"},
      {"- 4", -4, "a sign apart from its number"},
      {"+4", 4, "the other sign"},
      {"--4", 0, "two signs are no number"},
      {"+-4", 0, "neither are two different ones"},
      {"-", 0, "nor a sign alone"},
      {"1234.5", 1234.5, "a decimal point"},
      {".5", 0.5, "a point without digits before"},
      {"-.5", -0.5, "the same with a sign"},
      {"5.", 5, "a point without digits behind"},
      {".", 0, "a point alone"},
      {"1.2.3", 1.2, "a second point ends the number"},
      {"1,234", 1, "no group separators"},
      {"1,5", 1, "no decimal comma, whatever the machine's language"},
      {"$12", 0, "no currency"},
      {"1e3", 1000, "an exponent"},
      {"1E+2", 100, "with a sign"},
      {"25e-1", 2.5, "with the other sign"},
      {"1d2", 100, "the legacy runtime's other exponent letter"},
      {"1e", 1, "a letter without digits is what follows"},
      {"1e+", 1, "also with a sign"},
      {"1 e 3", 1000, "blanks count nowhere"},
      {"e3", 0, "an exponent needs a number"},
      {"&H10", 0, "hexadecimal notation is not known"},
      {"0x10", 0, "in no form"},
      {"inf", 0, "no infinity"},
      {"nan", 0, "no not-a-number"},
      {"1e-400", 0, "too small to be told from 0"},
      {"0.1", 0.1, "the nearest double"},
      {"\xEF\xBC\x91", 0, "a full-width digit is no digit"},
  };
  for (const Reading& reading : readings) {
    EXPECT_EQ(LeadingNumber(reading.text), reading.number) << '"' << reading.text << "\": " << reading.reason;
  }
}

TEST(LeadingNumber, ReadsANumberAsLongAsAnIniValue) {
  EXPECT_EQ(LeadingNumber(std::string(200, '0') + "42"), 42);
  EXPECT_EQ(LeadingNumber("1" + std::string(253, '0')), 1e253);
}

TEST(LeadingNumber, ANumberBeyondADoubleRaisesOverflowThatShowsTheText) {
  EXPECT_EQ(RaisedBy([] { LeadingNumber("1e400"); }), RuntimeError::Overflow);
  EXPECT_THAT(DescriptionOfErrorIn([] { LeadingNumber("1e400 tons"); }), testing::HasSubstr("1e400 tons"));
}

TEST(LeadingNumber, ANulEndsTheNumber) {
  EXPECT_EQ(LeadingNumber(std::string_view("1\0"
                                           "2",
                                           3)),
            1);
}

}  // namespace
}  // namespace parvex::test
