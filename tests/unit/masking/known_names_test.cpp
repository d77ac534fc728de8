#include "masking/known_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/masking/masked_text.h"

namespace parvex::masking {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KnownNamesTest : public testing::Test {
 protected:
  KnownNames names;

  void Add(const std::string& name, Place place = Place::Name) { names.Add(place, test::CodesIn(name)); }
  std::vector<std::string> Found(const std::string& text) {
    std::vector<std::string> found;
    for (const KnownNames::Found& one : names.FindIn(test::CodesIn(text))) {
      found.push_back(test::Utf8Of(test::CodesIn(text).substr(one.at, one.length)));
    }
    return found;
  }
};

TEST_F(KnownNamesTest, AreFoundInAnyLetterCaseTheLongestFirst) {
  Add("Harbour");
  Add("Harbour Annex");
  Add("S\xC3\xB6hne");
  names.Close();
  EXPECT_THAT(Found("harbour annex, HARBOUR; S\xC3\x96HNE"), ElementsAre("harbour annex", "HARBOUR", "S\xC3\x96HNE"));
}

TEST_F(KnownNamesTest, AreFoundInsideWordsWhenTheyAreLong) {
  Add("Harbour");
  Add("CH-1");
  names.Close();
  EXPECT_THAT(Found("Harbours MyHarbour_2 BATCH-1 CH-10 CH-1 (ch-1)"),
              ElementsAre("Harbour", "Harbour", "CH-1", "ch-1"));
}

TEST_F(KnownNamesTest, AreNotLookedForWhenTheyAreShortNumbersOrWordsOfTheProtocol) {
  names.AddProtocolText("Unit Report");
  for (const char* name : {"1", "AB", "4711", "Report", "unit report"}) {
    Add(name);
  }
  Add("As agreed", Place::Description);
  Add("Supply", Place::Description);
  names.Close();
  EXPECT_THAT(Found("1 AB 4711 Report unit report Supply as agreed"), ElementsAre("as agreed"));
}

TEST_F(KnownNamesTest, ThatArePartOfAWordOfTheProtocolStandAlone) {
  names.AddProtocolText("UnitReport");
  Add("Report");
  names.Close();
  EXPECT_THAT(Found("UnitReport, report"), ElementsAre("report"));
}

TEST_F(KnownNamesTest, AreTelephoneNumbersToo) {
  Add("+1 555 0162");
  names.Close();
  EXPECT_THAT(Found("call +1 555 0162, not 91 555 01627"), ElementsAre("+1 555 0162"));
}

TEST_F(KnownNamesTest, ArePricesWithAPointThatAreNoPartOfAnotherNumber) {
  Add("12.50", Place::Price);
  Add("1250", Place::Price);
  Add("1.5", Place::Price);
  names.Close();
  EXPECT_THAT(Found("12.50, 12.500 112.50 1,12.50 12.50.1 1250 1.5"), ElementsAre("12.50"));
}

TEST_F(KnownNamesTest, AreNoneOfMarksOnly) {
  Add("-- / --");
  names.Close();
  EXPECT_THAT(names.All(), IsEmpty());
}

}  // namespace
}  // namespace parvex::masking
