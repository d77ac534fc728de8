#include "cli/quote/quote_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/quote/differences_section.h"
#include "tests/unit/cli/quote/sample_quote.h"

namespace parvex::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(QuotePage, WritesPricesAndAmountsInOneWay) {
  const std::string page = QuotePage(SampleQuote(), "quote.xml");
  EXPECT_THAT(page, AllOf(HasSubstr("<p>1 \u00D7 8,450.00 = 8,450.00</p>"), HasSubstr(">100.00</td>"),
                          Not(HasSubstr("8450")), Not(HasSubstr(">100</td>"))));
}

TEST(QuotePage, ComparisonShowsTwoPricesThatReadAlikeAsTheyStand) {
  const Quote before = SampleQuote();
  Quote after = before;
  after.tags[0].units[0].price = "8450";
  const std::string page = ComparisonPage(before, after, Compare(before, after), "before.xml", "after.xml");
  EXPECT_THAT(page, AllOf(HasSubstr(">8450.00</td>"), HasSubstr(">8450</td>")));
}

TEST(QuotePage, ComparisonListsSomeDifferencesOfManyAndLeadsOnlyToThose) {
  Quote before = SampleQuote();
  before.tags.push_back(before.tags[0]);
  before.tags.back().markFor = "LAST";
  Quote after = before;
  after.tags[0].units[0].components.resize(kMostListedDifferences + 5);
  after.tags.back().units[0].price = "1";
  const QuoteComparison comparison = Compare(before, after);
  const std::string page = ComparisonPage(before, after, comparison, "before.xml", "after.xml");
  const std::size_t more = comparison.differences.size() - kMostListedDifferences;
  EXPECT_THAT(page, AllOf(HasSubstr("<p>... and " + std::to_string(more) + " more</p>"),
                          HasSubstr("id=\"difference-10000\""), Not(HasSubstr("id=\"difference-10001\""))));
  EXPECT_THAT(page, AllOf(HasSubstr("Changed: 1 difference</p>"), HasSubstr("Changed: <a href=\"#difference-1\">")));
}

}  // namespace
}  // namespace parvex::cli
