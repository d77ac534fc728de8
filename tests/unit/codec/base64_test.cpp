#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "codec/base64_kernels.h"
#include "codec/bin_encoder.h"
#include "formats/text/unicode.h"

namespace parvex {
namespace {

using base64::Kernels;

// The rules, written down as plainly as they can be: whole texts, one step after the other.
std::string PlainDecode(const std::string& text) {
  std::u16string characters = ToUtf16(text, LoneSurrogates::Kept);
  std::u16string withoutBreaks;
  for (std::size_t i = 0; i < characters.size(); ++i) {
    if (characters[i] == u'\r' && i + 1 < characters.size() && characters[i + 1] == u'\n') {
      ++i;
    } else {
      withoutBreaks.push_back(characters[i]);
    }
  }
  std::vector<unsigned> values;
  for (const char16_t character : withoutBreaks) {
    if (character != u'=') {
      const std::size_t value = base64::kAlphabet.find(static_cast<char>(character & 0xFF));
      values.push_back(value == std::string_view::npos ? 0 : static_cast<unsigned>(value));
    }
  }
  std::string bytes;
  for (std::size_t i = 0; i + 1 < values.size(); ++i) {
    switch (i % 4) {
      case 0:
        bytes.push_back(static_cast<char>((values[i] << 2) + (values[i + 1] >> 4)));
        break;
      case 1:
        bytes.push_back(static_cast<char>(((values[i] & 15) << 4) + (values[i + 1] >> 2)));
        break;
      case 2:
        bytes.push_back(static_cast<char>(((values[i] & 3) << 6) + values[i + 1]));
        break;
      default:
        break;
    }
  }
  return bytes;
}

std::string PlainEncode(const std::string& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t group = std::min<std::size_t>(3, bytes.size() - i);
    unsigned bits = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      bits = bits << 8 | (j < group ? static_cast<unsigned char>(bytes[i + j]) : 0u);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      text.push_back(j <= group ? base64::kAlphabet[bits >> (18 - 6 * j) & 63] : '=');
    }
  }
  return text;
}

std::string RandomBytes(std::mt19937& random, std::size_t length) {
  std::string bytes(length, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random());
  }
  return bytes;
}

// Texts that are made of pieces drawn from a list.
std::string RandomMix(std::mt19937& random, const std::vector<std::string>& pieces, std::size_t atLeast) {
  std::string text;
  while (text.size() < atLeast) {
    text += pieces[random() % pieces.size()];
  }
  return text;
}

std::string CleanText(std::mt19937& random, std::size_t length) {
  std::string text(length, '\0');
  for (char& character : text) {
    character = base64::kAlphabet[random() % 64];
  }
  return text;
}

// The same text at every distance from a 64-byte boundary, each time in a buffer of exactly its size, so that the
// sanitizers see a read beyond it.
void ExpectPlainDecodeAtAllAlignments(const Kernels& kernels, const std::string& text) {
  const std::string expected = PlainDecode(text);
  for (std::size_t offset = 0; offset < 64; offset += 7) {
    const std::vector<char> buffer = [&] {
      std::vector<char> bytes(offset, 'Q');
      bytes.insert(bytes.end(), text.begin(), text.end());
      return bytes;
    }();
    const std::string_view view(buffer.data() + offset, text.size());
    ASSERT_EQ(base64::Decode(view, kernels), expected)
        << "at offset " << offset << ": " << testing::PrintToString(text);
  }
}

class Base64Kernels : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    kernels_ = std::string(GetParam()) == "Avx2" ? base64::Avx2Kernels() : &base64::PortableKernels();
    if (kernels_ == nullptr) {
      GTEST_SKIP() << "this processor lacks AVX2";
    }
  }

  std::string Decode(std::string_view text) const { return base64::Decode(text, *kernels_); }
  std::string Encode(std::string_view bytes) const { return base64::Encode(bytes, *kernels_); }

  const Kernels* kernels_ = nullptr;
  std::mt19937 random_{20260};
};

INSTANTIATE_TEST_SUITE_P(Every, Base64Kernels, testing::Values("Portable", "Avx2"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(Base64Kernels, EncodesTheKnownTexts) {
  EXPECT_EQ(Encode(""), "");
  EXPECT_EQ(Encode("M"), "TQ==");
  EXPECT_EQ(Encode("Ma"), "TWE=");
  EXPECT_EQ(Encode("Man"), "TWFu");
  EXPECT_EQ(Encode(std::string(3, '\0')), "AAAA");
  EXPECT_EQ(Encode("\xFF\xFF\xFF"), "////");
  EXPECT_EQ(Encode("\xFB\xEF\xBE"), "++++");
}

TEST_P(Base64Kernels, EncodesEveryLengthLikeThePlainRules) {
  for (std::size_t length = 0; length <= 300; ++length) {
    const std::string bytes = RandomBytes(random_, length);
    ASSERT_EQ(Encode(bytes), PlainEncode(bytes)) << length;
  }
}

TEST_P(Base64Kernels, EncodesAcrossThePiecesOfALongInput) {
  for (const std::size_t length : {12287u, 12288u, 12289u, 12290u, 24576u, 100001u}) {
    const std::string bytes = RandomBytes(random_, length);
    ASSERT_EQ(Encode(bytes), PlainEncode(bytes)) << length;
  }
}

TEST_P(Base64Kernels, EncodesEachOfTheSixBitValuesInEachOfTheFourPlaces) {
  std::string bytes;
  for (unsigned value = 0; value < 64; ++value) {
    for (unsigned place = 0; place < 4; ++place) {
      const unsigned bits = value << (6 * place);
      bytes += {static_cast<char>(bits >> 16), static_cast<char>(bits >> 8), static_cast<char>(bits)};
    }
  }
  EXPECT_EQ(Encode(bytes), PlainEncode(bytes));
}

TEST_P(Base64Kernels, InsertsNoLineBreakAtAnyLength) {
  const std::string text = Encode(std::string(3000, 'x'));
  EXPECT_EQ(text.size(), 4000u);
  EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
}

TEST_P(Base64Kernels, IgnoresLineBreaksAndPadding) { EXPECT_EQ(Decode("TWFu\r\nTWE="), "ManMa"); }

TEST_P(Base64Kernels, GivesNoBytesForATextOfLineBreaksAndPaddingOnly) {
  EXPECT_EQ(Decode(""), "");
  EXPECT_EQ(Decode("="), "");
  EXPECT_EQ(Decode("\r\n"), "");
  for (std::size_t length = 0; length <= 200; ++length) {
    ASSERT_EQ(Decode(std::string(length, '=')), "") << length;
    ASSERT_EQ(Decode(RandomMix(random_, {"\r\n", "="}, length)), "") << length;
  }
}

TEST_P(Base64Kernels, CountsALoneCarriageReturnOrLineFeedAsAZero) {
  EXPECT_EQ(Decode("\rTWF"), std::string("\x01\x35\x85", 3));  // as "ATWF"
  EXPECT_EQ(Decode("\nTWF"), Decode("ATWF"));
  EXPECT_EQ(Decode("\n\rWF"), Decode("AAWF"));
  EXPECT_EQ(Decode("TW\r"), Decode("TWA"));
}

TEST_P(Base64Kernels, LooksForLineBreaksBeforeItTakesPaddingAway) {
  // The "=" between them is gone only after the line breaks: CR and LF stay, and count.
  EXPECT_EQ(Decode("\r=\nTW"), Decode("AATW"));
  EXPECT_EQ(Decode("=\r\n=TW"), Decode("TW"));
}

TEST_P(Base64Kernels, TakesNoLineBreakThatOnlyTheRemovalOfAnotherOneForms) {
  EXPECT_EQ(Decode("\r\r\n\nTW"), Decode("AATW"));
  EXPECT_EQ(Decode("\r\r\nTW\n"), Decode("ATWA"));
}

TEST_P(Base64Kernels, CountsEveryOtherCharacterAsAZero) {
  for (unsigned code = 0; code < 0x80; ++code) {
    const char character = static_cast<char>(code);
    if (base64::kAlphabet.find(character) == std::string_view::npos && character != '=') {
      ASSERT_EQ(Decode(std::string("TW") + character + "u"), Decode("TWAu")) << code;
      ASSERT_EQ(Decode(std::string(64, character)), std::string(48, '\0')) << code;
    }
  }
}

TEST_P(Base64Kernels, LooksCharactersBeyondAsciiUpByTheLowEightBitsOfTheirCode) {
  EXPECT_EQ(Decode("\xC5\x82\xC5\x82\xC5\x82\xC5\x82"), Decode("BBBB"));  // U+0142
  EXPECT_EQ(Decode("\xE4\xB9\xA1"
                   "AAA"),
            Decode("aAAA"));  // U+4E61
  EXPECT_EQ(Decode("\xE2\x80\x94"
                   "TWF"),
            Decode("ATWF"));  // U+2014 ends like a control character
}

TEST_P(Base64Kernels, TakesNoCharacterBeyondAsciiForALineBreakOrPadding) {
  EXPECT_EQ(Decode("\xC4\xBD"
                   "TWF"),
            Decode("ATWF"));  // U+013D ends like "="
  EXPECT_EQ(Decode("\xC4\x8D\xC4\x8A"
                   "TW"),
            Decode("AATW"));  // U+010D U+010A end like CR LF
}

TEST_P(Base64Kernels, CountsACharacterBeyondTheBasePlaneAsTwo) {
  // U+10462 is the pair D801 DC62: a 1 that counts as 0, and a "b".
  EXPECT_EQ(Decode("\xF0\x90\x91\xA2"
                   "TW"),
            Decode("AbTW"));
  // U+1F442 is the pair D83D DC42: the first ends like "=", which does not make it one.
  EXPECT_EQ(Decode("\xF0\x9F\x91\x82"
                   "TW"),
            Decode("ABTW"));
}

// A text of the front end may hold half of a pair, which has a sequence of three bytes in a text of ours.
TEST_P(Base64Kernels, LooksHalfOfASurrogatePairUpByTheLowEightBitsOfItsCode) {
  const std::string firstHalf = "\xED\xA1\x82";   // D842
  const std::string secondHalf = "\xED\xB1\xA2";  // DC62
  EXPECT_EQ(Decode(firstHalf + firstHalf + firstHalf + firstHalf), Decode("BBBB"));
  EXPECT_EQ(Decode(secondHalf + firstHalf + "TW"), Decode("bBTW"));
  EXPECT_EQ(Decode("T" + secondHalf + "Fu"), Decode("TbFu"));
  EXPECT_EQ(Decode("TW" + firstHalf), Decode("TWB"));
}

TEST_P(Base64Kernels, CountsWhatIsNoCharacterAsAZero) {
  EXPECT_EQ(Decode("\xE0\x81\x82TWF"), Decode("ATWF"));      // "B" in three bytes
  EXPECT_EQ(Decode("\xF4\x90\x81\x82TWF"), Decode("ATWF"));  // beyond the last character
  EXPECT_EQ(Decode("\xED\xA1TW"), Decode("AATW"));           // a sequence that is cut
}

TEST_P(Base64Kernels, IgnoresASingleCharacterLeftOver) {
  EXPECT_EQ(Decode("T"), "");
  EXPECT_EQ(Decode("TW"), "M");
  EXPECT_EQ(Decode("TWF"), "Ma");
  EXPECT_EQ(Decode("TWFuT"), "Man");
}

TEST_P(Base64Kernels, DecodesEveryLengthLikeThePlainRules) {
  for (std::size_t length = 0; length <= 300; ++length) {
    ASSERT_NO_FATAL_FAILURE(ExpectPlainDecodeAtAllAlignments(*kernels_, CleanText(random_, length)));
  }
}

TEST_P(Base64Kernels, DecodesHostileMixesLikeThePlainRules) {
  const std::vector<std::vector<std::string>> mixes = {
      {"\r", "\n", "=", "\r\n", "A", "z"},
      {"Abc9", "+/+/", "\r\n"},
      {"AbCdEfGhIjKlMnOpQrStUvWxYz012345", "\r\n"},
      {"AbCdEfGhIjKlMnOpQrStUvWxYz012345", "\r", "\n", "=", " "},
      {"AB\r\n"},
      {"\r\n", "\xC5\x82", "Q"},
      {"\xC5\x82", "\xE4\xB9\xA1", "\xF0\x9F\x91\x82", "\xC4\xBD"},
      {"\xC5", "\xE4\xB9", "\xF0\x9F\x91", "\x82", "\r", "\n", "A", "\xFF", "\xC0\x80", "\xED\xA1\x82",
       "\xF4\xBF\xBF\xBF"},
      {"QQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQ", "\xC5\x82"},
  };
  for (const std::vector<std::string>& mix : mixes) {
    for (std::size_t length = 0; length <= 300; ++length) {
      ASSERT_NO_FATAL_FAILURE(ExpectPlainDecodeAtAllAlignments(*kernels_, RandomMix(random_, mix, length)));
    }
  }
}

TEST_P(Base64Kernels, DecodesRandomBytesLikeThePlainRules) {
  for (std::size_t length = 0; length <= 300; ++length) {
    ASSERT_NO_FATAL_FAILURE(ExpectPlainDecodeAtAllAlignments(*kernels_, RandomBytes(random_, length)));
  }
}

TEST_P(Base64Kernels, FindsALineBreakAtEveryPlaceOfABlock) {
  const std::string text = CleanText(random_, 200);
  for (std::size_t place = 0; place <= text.size(); ++place) {
    for (const char* inserted :
         {"\r\n", "\r", "\n", "=", "\r=\n", "\r\r\n", "\r\n\r\n", "\xC5\x82", "\xF0\x9F\x91\x82"}) {
      const std::string broken = text.substr(0, place) + inserted + text.substr(place);
      ASSERT_EQ(Decode(broken), PlainDecode(broken)) << place << " " << testing::PrintToString(inserted);
    }
  }
}

TEST_P(Base64Kernels, DecodesLinesOfEveryLength) {
  const std::string text = CleanText(random_, 12000);
  for (std::size_t width = 1; width <= 130; ++width) {
    std::string lines;
    for (std::size_t from = 0; from < text.size(); from += width) {
      lines.append(text, from, width).append("\r\n");
    }
    ASSERT_EQ(Decode(lines), PlainDecode(text)) << width;
  }
}

TEST_P(Base64Kernels, DecodesAllPairsOfBytesLikeThePlainRules) {
  for (unsigned first = 0; first < 256; ++first) {
    std::string text;
    for (unsigned second = 0; second < 256; ++second) {
      text += {static_cast<char>(first), static_cast<char>(second)};
    }
    ASSERT_EQ(Decode(text), PlainDecode(text)) << first;
  }
}

TEST_P(Base64Kernels, KeepsItsPlaceAcrossThePiecesOfALongText) {
  for (const std::vector<std::string>& mix : std::vector<std::vector<std::string>>{
           {"AbCd0", "\r\n", "="}, {"\xC5\x82"}, {"\xF0\x9F\x91\x82"}, {"a\xF0\x9F\x91\x82"}, {"Q"}}) {
    for (std::size_t extra = 0; extra < 70; ++extra) {
      const std::string text = RandomMix(random_, mix, 8192 + extra);
      ASSERT_EQ(Decode(text), PlainDecode(text)) << testing::PrintToString(mix) << extra;
    }
  }
}

TEST_P(Base64Kernels, DecodesWhatItEncoded) {
  for (std::size_t length = 0; length <= 300; ++length) {
    const std::string bytes = RandomBytes(random_, length);
    ASSERT_EQ(Decode(Encode(bytes)), bytes) << length;
  }
  const std::string large = RandomBytes(random_, 1000003);
  EXPECT_EQ(Decode(Encode(large)), large);
}

TEST(Base64, UsesVectorsWhereTheProcessorHasThem) {
  const Kernels* avx2 = base64::Avx2Kernels();
  EXPECT_EQ(&base64::BestKernels(), avx2 != nullptr ? avx2 : &base64::PortableKernels());
}

TEST(Base64, OffersBothWaysWithoutAnyChoice) {
  EXPECT_EQ(EncodeBase64("ManMa"), "TWFuTWE=");
  EXPECT_EQ(DecodeBase64("TWFu\r\nTWE="), "ManMa");
}

}  // namespace
}  // namespace parvex
