#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "codec/bin_encoder.h"
#include "tests/faults/case_bytes.h"
#include "tests/faults/limited_child.h"
#include "tests/support/fake_platform.h"

// Quotes that were made to be shown as far more than they are.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr std::size_t kMegabyteOfText = 1u << 20;

std::string QuoteOf(const std::string& markFor, const std::string& components) {
  return "<PROJECT><TAGS><TAG><ATTRIBUTES_LIST><MARKFOR>" + markFor +
         "</MARKFOR></ATTRIBUTES_LIST><BASEUNITS><BASEUNIT SEQUENCE=\"1\"><COMPONENTS>" + components +
         "</COMPONENTS></BASEUNIT></BASEUNITS></TAG></TAGS></PROJECT>";
}

class HostileQuote : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& quote) const {
    WriteHostFile(folder_.Path() / name, quote);
    return (folder_.Path() / name).string();
  }
  ProgramOutcome Show(const std::vector<std::string>& files) const {
    std::vector<std::string> all = {PARVEX_PROGRAM, "show"};
    all.insert(all.end(), files.begin(), files.end());
    return InLimitedProgram(all, Shown());
  }
  std::string Shown() const { return (folder_.Path() / "shown").string(); }

 private:
  TemporaryFolder folder_;
};

TEST_F(HostileQuote, WithOneWideFieldIsShownInASmallMultipleOfItsBytes) {
  const std::string wide = "<COMPONENT TYPE=\"" + std::string(kMegabyteOfText / 2, 'w') + "\"/>";
  const std::string file = Write("quote.xml", QuoteOf("tag", wide + Repeat("<COMPONENT/>", 40'000)));
  const ProgramOutcome shown = Show({file});
  ExpectQuick(shown);
  EXPECT_EQ(shown.status, 0) << shown.answer;
  EXPECT_LT(std::filesystem::file_size(Shown()), 10 * kMegabyteOfText);
  const ProgramOutcome page = Show({"--html", "-", file});
  ExpectQuick(page);
  EXPECT_EQ(page.status, 0) << page.answer;
}

TEST_F(HostileQuote, WhoseLongNameStandsBeforeManyDifferencesIsComparedInASmallMultipleOfItsBytes) {
  const std::string name(4 * kMegabyteOfText, 'n');
  const std::string before = Write("before.xml", QuoteOf(name, Repeat("<COMPONENT PARTNUMBER=\"a\"/>", 20'000)));
  const std::string after =
      Write("after.xml", QuoteOf(name, Repeat("<COMPONENT PARTNUMBER=\"a\" QUANTITY=\"1\"/>", 20'000)));
  const ProgramOutcome shown = Show({before, after});
  ExpectQuick(shown);
  EXPECT_EQ(shown.status, 1) << shown.answer;
  EXPECT_LT(std::filesystem::file_size(Shown()), 10 * kMegabyteOfText);
  EXPECT_THAT(ReadHostFile(Shown()).substr(0, 1'000), HasSubstr("20000 differences\n~ tag nnnn"));
}

TEST_F(HostileQuote, OfMoreItemsThanAreShownIsRefused) {
  const std::string file = Write("quote.xml", QuoteOf("tag", Repeat("<COMPONENT/>", 300'000)));
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{file}, {file, file}, {"--html", "-", file}}) {
    const ProgramOutcome shown = Show(arguments);
    ExpectQuick(shown);
    EXPECT_EQ(shown.status, 2);
    EXPECT_THAT(shown.answer, HasSubstr("quote.xml holds more than 100000 tags, units, components"));
  }
}

TEST_F(HostileQuote, OfAsManyItemsAsAreShownIsShownAndComparedInTheMemoryThatHostileOnesMayTake) {
  const std::string before = Write("before.xml", QuoteOf("tag", Repeat("<COMPONENT/>", 99'998)));
  const std::string after = Write("after.xml", QuoteOf("tag", Repeat("<COMPONENT QUANTITY=\"1\"/>", 99'998)));
  const ProgramOutcome shown = Show({after});
  ExpectQuick(shown);
  EXPECT_EQ(shown.status, 0) << shown.answer;
  const ProgramOutcome compared = Show({before, after});
  ExpectQuick(compared);
  EXPECT_EQ(compared.status, 1) << compared.answer;
  const ProgramOutcome page = Show({"--html", "-", after});
  ExpectQuick(page);
  EXPECT_EQ(page.status, 0) << page.answer;
  const ProgramOutcome pageOfTwo = Show({"--html", "-", before, after});
  ExpectQuick(pageOfTwo);
  EXPECT_EQ(pageOfTwo.status, 1) << pageOfTwo.answer;
}

TEST_F(HostileQuote, WhoseStoredDataUnpackToGigabytesIsOpenedOnAPageWithinABound) {
  const std::string blob = "<TAG><ATTRIBUTES_LIST><BLOB>" +
                           EncodeBase64(Packed({{"Tag", std::string(31 * kMegabyteOfText, ' ')}})) +
                           "</BLOB></ATTRIBUTES_LIST></TAG>";
  const std::string file = Write("quote.xml", "<PROJECT><TAGS>" + Repeat(blob, 200) + "</TAGS></PROJECT>");
  const ProgramOutcome page = Show({"--html", "-", file});
  ExpectQuick(page);
  EXPECT_EQ(page.status, 0) << page.answer;
  EXPECT_THAT(ReadHostFile(Shown()), AllOf(HasSubstr("<summary>Stored data, "), HasSubstr("<p>Not opened: ")));
}

TEST_F(HostileQuote, OfManyDeepOrderConfigurationsIsAPageOfABoundedSize) {
  const std::string deep =
      "<BASEUNIT><SAP_XML><![CDATA[" + Repeat("<A>", 900) + Repeat("</A>", 900) + "]]></SAP_XML></BASEUNIT>";
  const std::string file = Write(
      "quote.xml", "<PROJECT><TAGS><TAG><BASEUNITS>" + Repeat(deep, 1'000) + "</BASEUNITS></TAG></TAGS></PROJECT>");
  const ProgramOutcome page = Show({"--html", "-", file});
  ExpectQuick(page);
  EXPECT_EQ(page.status, 0) << page.answer;
  EXPECT_LT(std::filesystem::file_size(Shown()), 12 * kMegabyteOfText);
}

}  // namespace
}  // namespace parvex::test
