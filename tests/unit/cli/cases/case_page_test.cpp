#include "cli/cases/case_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/unit/cli/cases/recorded_steps.h"

namespace parvex::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(CasePage, PlacesTheBarOfAStepByItsTimes) {
  const std::string page = CasePage(CaseOf("{\"n\":1,\"at\":\"before\",\"us\":250,\"kind\":\"router\"}\n"
                                           "{\"n\":1,\"at\":\"after\",\"us\":750,\"success\":true}\n",
                                           {{"outcome", "reply"}, {"microseconds", 1000u}}),
                                    "a.pvxcase");
  EXPECT_THAT(page, AllOf(HasSubstr("class=\"step router\" id=\"step-1\""),
                          HasSubstr("style=\"--from: 25.000%; --long: 50.000%\""), HasSubstr("<p>Nothing.</p>")));
}

TEST(CasePage, OpensTheStepThatFailedAndLeadsToIt) {
  const std::string page = CasePage(CaseOf("{\"n\":4,\"at\":\"before\",\"us\":250,\"kind\":\"automation\"}\n",
                                           {{"outcome", "unfinished"}, {"microseconds", 1000u}}),
                                    "a.pvxcase");
  EXPECT_THAT(page, AllOf(HasSubstr("The call: unfinished"), HasSubstr("<a href=\"#step-4\">Step 4</a>"),
                          HasSubstr("class=\"step automation open\" id=\"step-4\" open"),
                          HasSubstr("--from: 25.000%; --long: 75.000%"), Not(HasSubstr("<p>Nothing.</p>"))));
}

TEST(CasePage, ShowsFilesBeforeAndAfter) {
  recording::RecordedCase read =
      CaseOf("{\"n\":1,\"at\":\"once\",\"kind\":\"file\",\"op\":\"gone\",\"path\":\"C:\\\\GONE.ini\"}\n",
             {{"outcome", "reply"}, {"namesOnly", {"machine/drive_c/named.blb"}}});
  read.files = {{"machine/drive_c/kept.ini", "[a]\r\nb=\xFC\r\n", false},
                {"machine/drive_c/gone.ini", "x", false},
                {"machine/drive_c/named.blb", "", false},
                {"machine/drive_c/blob.blb", std::string("\0\1", 2), false},
                {"machine/drive_c/folder", "", true},
                {"after/3/drive_c/Kept.ini", "[a]\r\n", false},
                {"after/9/drive_c/new.ini", "<new>", false}};
  const std::string page = CasePage(read, "a.pvxcase");
  const auto row = [](const char* kind, const char* file, const char* before, const char* after) {
    return "<tr" + std::string(kind) + " role=\"row\"><td role=\"cell\" data-column=\"File\">" + file +
           "</td><td role=\"cell\" class=\"n\" data-column=\"Before\">" + before + "</td><td role=\"cell\"" +
           (*after == 0 ? ">" : " data-column=\"After\">" + std::string(after)) + "</td></tr>";
  };
  EXPECT_THAT(page, AllOf(HasSubstr(row(" class=\"changed\"", "drive_c/kept.ini", "10 bytes", "5 bytes at step 3")),
                          HasSubstr(row(" class=\"removed\"", "drive_c/gone.ini", "1 byte", "removed")),
                          HasSubstr(row("", "drive_c/named.blb", "its name only", "")),
                          HasSubstr(row(" class=\"added\"", "drive_c/new.ini", "none", "5 bytes at step 9")),
                          HasSubstr("<pre>[a]\nb=\u00FC\n</pre>"), HasSubstr("<pre>&lt;new&gt;</pre>"),
                          Not(HasSubstr("drive_c/folder"))));
  EXPECT_THAT(page, Not(HasSubstr("<summary>drive_c/blob.blb")));
}

TEST(CasePage, SaysWhatIsMissing) {
  EXPECT_THAT(
      CasePage(CaseOf("", {{"outcome", "reply"}, {"missing", {{{"what", "a"}, {"why", "disk full"}}, 3}}}), "c"),
      AllOf(HasSubstr("Missing from the case"), HasSubstr("disk full")));
  EXPECT_THAT(CasePage(CaseOf(""), "c"), Not(HasSubstr("Missing from the case")));
}

TEST(CasePage, CutsLongTexts) {
  recording::RecordedCase read = CaseOf("");
  read.command = std::string(500'000, 'x');
  EXPECT_THAT(CasePage(read, "c"), HasSubstr("x\n... and 400000 bytes more</pre>"));
}

// A limit in seconds would depend on the machine. Eight times the steps: a square would be 64 times the work.
TEST(CasePage, OfManyStepsTakesATimeInProportion) {
  const auto took = [](int steps) {
    std::string lines;
    for (int i = 1; i <= steps; ++i) {
      const std::string n = std::to_string(i);
      lines += "{\"n\":" + n + ",\"at\":\"before\",\"us\":" + n + ",\"kind\":\"router\",\"request\":\"<A/>\"}\n" +
               "{\"n\":" + n + ",\"at\":\"after\",\"us\":" + n + ",\"answer\":\"<B/>\",\"success\":false}\n";
    }
    const recording::RecordedCase read = CaseOf(lines);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_GT(CasePage(read, "c").size(), static_cast<std::size_t>(steps) * 100);
    return std::chrono::steady_clock::now() - before;
  };
  const auto few = took(4'000);
  EXPECT_LT(took(32'000), 40 * few);
}

}  // namespace
}  // namespace parvex::cli
